#include "Services/GitHub/GitHubServicing.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

const CairnfieldError reason(CairnfieldError::GitHubCLINotInstalled{});

template <class T>
void expectReason(Executor& pool, Task<T> task) {
    try {
        (void)waitFor(pool, std::move(task));
        FAIL() << "there is no gh to ask";
    } catch (const CairnfieldError& error) {
        EXPECT_EQ(error, reason);
    }
}

TEST(UnavailableGitHubService, ReportsItselfUnavailable) {
    ThreadPool pool(1);
    UnavailableGitHubService service(reason);
    EXPECT_EQ(waitFor(pool, service.status()), GitHubIntegrationStatus::unavailable());
    EXPECT_FALSE(GitHubIntegrationStatus::unavailable().isInstalled);
}

TEST(UnavailableGitHubService, KnowsNoDefaultBranch) {
    ThreadPool pool(1);
    UnavailableGitHubService service(reason);
    EXPECT_EQ(waitFor(pool, service.defaultBranch(FilePath("/r"), std::nullopt)), std::nullopt);
}

TEST(UnavailableGitHubService, FailsTheRestWithItsReason) {
    ThreadPool pool(1);
    UnavailableGitHubService service(reason);
    expectReason(pool, service.findPullRequest("branch", FilePath("/r"), "github.com"));
    expectReason(pool, service.createDraftPullRequest("main", "branch", "title", "body", FilePath("/r"),
                                                      std::nullopt));
}

TEST(UnavailableGitHubService, FailsOnlyWhenAwaited) {
    UnavailableGitHubService service(reason);
    EXPECT_NO_THROW((void)service.findPullRequest("branch", FilePath("/r"), std::nullopt));
}

}  // namespace
}  // namespace cairnfield
