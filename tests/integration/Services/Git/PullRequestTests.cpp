// The road of a pull request lookup with real git and the real gh, from the worktree to its verdict.

#include "GitServices.h"
#include "Services/GitHub/GitHubCLIService.h"
#include "support/GitHubStandIn.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::IsEmpty;
using testing::SizeIs;

class PullRequestLookup : public testing::Test {
protected:
    PullRequestLookup() {
        service.addRepository("robin/project", "main");
        GitRepository::createBare(home / "origin");
        project.addRemote("origin", home / "origin");
        project.publish();
        feature.commitFile("work.txt");
        feature.publish();
    }
    static GitRepository featureOf(const GitRepository& project, const FilePath& path) {
        project.commitFile("first.txt");
        return project.addWorktree(path, "feature");
    }
    void addPullRequest(const std::string& state) {
        service.addPullRequest("robin/project", {{"number", 7},
                                                 {"title", "Work"},
                                                 {"state", state},
                                                 {"isDraft", false},
                                                 {"url", "https://github.com/robin/project/pull/7"},
                                                 {"headRefName", "feature"},
                                                 {"baseRefName", "main"}});
    }
    /// The record of the feature's worktree after a refresh and a lookup.
    Worktree lookedUp() {
        std::vector<Worktree> before = services.refresh({project.path()});
        services.commands.take();
        return recordOf(waitFor(services.pool, services.catalog.attachPullRequests(std::move(before), gh)),
                        feature.path());
    }

    TemporaryDirectory home;
    GitHubStandIn service{home.path()};  // before the threads
    GitRepository project = GitRepository::create(home / "project");
    GitRepository feature = featureOf(project, home / "feature");
    GitServices services;
    GitHubCLIService gh{services.commands, GitHubStandIn::executable()};
};

TEST_F(PullRequestLookup, MakesTheVerdictAnew) {
    project.pretendRemoteIsAt("git@github.com:robin/project.git");
    addPullRequest("OPEN");
    const Worktree record = lookedUp();
    ASSERT_TRUE(record.pullRequest);
    EXPECT_EQ(record.pullRequest->number, 7);
    EXPECT_EQ(record.pullRequest->state, PullRequestState::open);
    EXPECT_EQ(rawValue(record.safety), "openPullRequest");
    EXPECT_THAT(service.takeRequests(), SizeIs(1)) << "for the feature alone, not for the main worktree";
}

TEST_F(PullRequestLookup, SpeaksToAHostOfItsOwn) {
    project.pretendRemoteIsAt("https://github.example.org/robin/project.git");
    service.signIn("GH_ENTERPRISE_TOKEN");
    addPullRequest("MERGED");
    const Worktree record = lookedUp();
    ASSERT_TRUE(record.pullRequest);
    EXPECT_EQ(record.pullRequest->state, PullRequestState::merged);
    const std::vector<Json> requests = service.takeRequests();
    ASSERT_THAT(requests, SizeIs(1));
    EXPECT_EQ(requests[0]["host"], "github.example.org");
}

TEST_F(PullRequestLookup, LeavesAWorktreeAsItWasWhenGhFails) {
    project.pretendRemoteIsAt("git@github.com:robin/project.git");
    addPullRequest("OPEN");
    service.signOut("GH_TOKEN");
    const Worktree record = lookedUp();
    EXPECT_EQ(record.pullRequest, std::nullopt);
    EXPECT_EQ(rawValue(record.safety), "remotelyPreserved");
    EXPECT_THAT(service.takeRequests(), IsEmpty());
}

TEST_F(PullRequestLookup, AsksNobodyAboutOtherHosts) {
    project.pretendRemoteIsAt("https://code.example.org/robin/project.git");
    EXPECT_EQ(lookedUp().pullRequest, std::nullopt);
    EXPECT_THAT(services.commands.take(), IsEmpty());
}

}  // namespace
}  // namespace cairnfield
