// The distribution's gh, asked as the program asks it, against a service of our own.

#include "Platform/Linux/LinuxChildProcess.h"
#include "Services/GitHub/GitHubCLIService.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/Failures.h"
#include "support/GitHubStandIn.h"
#include "support/GitRepository.h"
#include "support/RecordingProcessRunner.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
namespace fs = std::filesystem;

const std::string publicHost(GitRemoteURL::publicGitHubHost);
const std::string otherHost = "code.example.org";
const std::string project = "robin/project";

Json pullRequest(int number, const std::string& head, const std::string& state,
                 const Json& mergedAt = nullptr) {
    return {{"number", number},
            {"title", "Title " + std::to_string(number)},
            {"state", state},
            {"isDraft", false},
            {"url", "https://github.com/robin/project/pull/" + std::to_string(number)},
            {"mergedAt", mergedAt},
            {"closedAt", mergedAt},
            {"headRefName", head},
            {"baseRefName", "trunk"}};
}

class GitHubCLI : public testing::Test {
protected:
    GitHubCLI() { service.addRepository(project, "trunk"); }

    GitRepository repositoryOn(const std::string& host) const {
        const GitRepository made = GitRepository::create(home / ("on-" + host));
        made.commitFile("readme.txt");
        made.git({"remote", "add", "origin", "https://" + host + "/" + project + ".git"});
        return made;
    }
    template <class T>
    T wait(Task<T> task) {
        return waitFor(pool, std::move(task));
    }
    std::optional<PullRequestInfo> find(const std::string& branch) {
        return wait(gh.findPullRequest(branch, repository.path(), publicHost));
    }
    PullRequestInfo create(const std::string& body) {
        return wait(gh.createDraftPullRequest("trunk", "saved", "Preserve \"it\"", body, repository.path(),
                                              publicHost));
    }
    template <class T>
    CairnfieldError failureOf(Task<T> task) {
        return cairnfield::failureOf([&] { (void)wait(std::move(task)); });
    }
    std::vector<std::string> hostsAsked() {
        std::vector<std::string> hosts;
        for (const Json& request : service.takeRequests()) hosts.push_back(request["host"]);
        return hosts;
    }

    TemporaryDirectory home;
    GitHubStandIn service{home.path()};  // before the threads
    GitRepository repository = repositoryOn(publicHost);
    ThreadPool pool{2};
    Reactor reactor;
    ReactorClock clock{reactor};
    LinuxChildProcessStarter starter{reactor};
    SystemProcessRunner processes{starter, clock, pool};
    RecordingProcessRunner commands{processes};
    GitHubCLIService gh{commands, GitHubStandIn::executable()};
};

TEST_F(GitHubCLI, ReportsItsVersionAndTheHostItIsSignedInTo) {
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_TRUE(status.isInstalled);
    EXPECT_THAT(status.version.value_or(""), StartsWith("gh version "));
    EXPECT_THAT(status.version.value_or(""), Not(HasSubstr("\n")));
    EXPECT_THAT(status.authenticatedHosts, ElementsAre(publicHost));
    EXPECT_EQ(status.executablePath, GitHubStandIn::executable().bytes());
    EXPECT_EQ(status.errorDescription, std::nullopt);
}

TEST_F(GitHubCLI, ReportsThatNobodyIsSignedIn) {
    service.signOut("GH_TOKEN");
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_TRUE(status.isInstalled);
    EXPECT_THAT(status.authenticatedHosts, IsEmpty());
    EXPECT_EQ(status.errorDescription, "No authenticated GitHub host.");
}

TEST_F(GitHubCLI, ReportsNoHostWhoseTokenIsRefused) {
    service.signInWithRefusedToken("GH_TOKEN");
    EXPECT_THAT(wait(gh.status()).authenticatedHosts, IsEmpty());
}

TEST_F(GitHubCLI, StillReportsTheGoodLoginBesideABadOne) {
    service.signInWithRefusedToken("GH_TOKEN");
    service.signIn("GH_ENTERPRISE_TOKEN");
    const ScopedEnvironment host("GH_HOST", otherHost);
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_THAT(status.authenticatedHosts, ElementsAre(otherHost));
    EXPECT_EQ(status.errorDescription, std::nullopt);
}

TEST_F(GitHubCLI, KnowsTheDefaultBranch) {
    EXPECT_EQ(wait(gh.defaultBranch(repository.path(), publicHost)), "trunk");
    EXPECT_EQ(wait(gh.defaultBranch(repository.path(), std::nullopt)), "trunk");
}

TEST_F(GitHubCLI, KnowsNoDefaultBranchWhereTheServiceGivesNone) {
    service.addRepository(project, "");
    EXPECT_EQ(wait(gh.defaultBranch(repository.path(), publicHost)), std::nullopt);
    service.fault("RepositoryInfo", 502, "<html>Bad gateway</html>");
    EXPECT_EQ(wait(gh.defaultBranch(repository.path(), publicHost)), std::nullopt);
    EXPECT_EQ(wait(gh.defaultBranch(home / "nowhere", publicHost)), std::nullopt);
}

TEST_F(GitHubCLI, FindsTheOpenPullRequestOfABranch) {
    service.addPullRequest(project, pullRequest(7, "feature", "OPEN"));
    service.addPullRequest(project, pullRequest(8, "other", "OPEN"));
    service.addPullRequest(project, pullRequest(9, "feature", "MERGED", "2026-03-04T05:06:07Z"));
    const std::optional<PullRequestInfo> found = find("feature");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->number, 7);
    EXPECT_EQ(found->title, "Title 7");
    EXPECT_EQ(found->state, PullRequestState::open);
    EXPECT_EQ(found->url, "https://github.com/robin/project/pull/7");
    EXPECT_EQ(found->headRefName, "feature");
    EXPECT_EQ(found->baseRefName, "trunk");
    EXPECT_EQ(found->mergedAt, std::nullopt);
}

TEST_F(GitHubCLI, FindsTheOneThatWasMergedLast) {
    service.addPullRequest(project, pullRequest(1, "feature", "MERGED", "2026-03-04T05:06:07Z"));
    service.addPullRequest(project, pullRequest(2, "feature", "CLOSED"));
    service.addPullRequest(project, pullRequest(3, "feature", "MERGED", "2025-03-04T05:06:07Z"));
    const std::optional<PullRequestInfo> found = find("feature");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->number, 1);
    EXPECT_EQ(found->state, PullRequestState::merged);
    EXPECT_EQ(found->mergedAt, dateFromISO8601("2026-03-04T05:06:07Z"));
}

TEST_F(GitHubCLI, FindsNoneForABranchWithoutOne) {
    service.addPullRequest(project, pullRequest(8, "other", "OPEN"));
    EXPECT_EQ(find("feature"), std::nullopt);
    EXPECT_EQ(find("--web"), std::nullopt) << "a branch is no option, whatever its name";
}

TEST_F(GitHubCLI, FailsTheLookupWhenNobodyIsSignedIn) {
    service.signOut("GH_TOKEN");
    const CairnfieldError expected(CairnfieldError::GitHubCLINotAuthenticated{publicHost});
    EXPECT_EQ(failureOf(gh.findPullRequest("feature", repository.path(), publicHost)), expected);
    EXPECT_EQ(failureOf(gh.findPullRequest("feature", repository.path(), std::nullopt)), expected);
}

TEST_F(GitHubCLI, TakesAnyOtherRefusalForTheAbsenceOfAPullRequest) {
    service.addPullRequest(project, pullRequest(7, "feature", "OPEN"));
    service.fault("PullRequestList", 500, "{}");
    EXPECT_EQ(find("feature"), std::nullopt);
    EXPECT_EQ(wait(gh.findPullRequest("feature", home.makeDirectory("no-repository"), publicHost)),
              std::nullopt);
}

TEST_F(GitHubCLI, TalksToTheHostOfTheRemote) {
    service.signIn("GH_ENTERPRISE_TOKEN");
    service.addPullRequest(project, pullRequest(7, "feature", "OPEN"));
    const GitRepository other = repositoryOn(otherHost);
    const auto found = wait(gh.findPullRequest("feature", other.path(), otherHost));
    ASSERT_TRUE(found);
    EXPECT_EQ(found->number, 7);
    EXPECT_THAT(hostsAsked(), ElementsAre(otherHost));
    EXPECT_TRUE(find("feature"));
    EXPECT_THAT(hostsAsked(), ElementsAre(publicHost));
}

TEST_F(GitHubCLI, OpensADraftAndTellsWhatTheServiceMadeOfIt) {
    const std::string body =
        "First line\n\n| `a` | $HOME \"'\\ |\nümläut " + std::string(200'000, 'x') + "\n";
    const PullRequestInfo made = create(body);
    EXPECT_EQ(made.number, 1);
    EXPECT_EQ(made.title, "Preserve \"it\"");
    EXPECT_EQ(made.state, PullRequestState::draft);
    EXPECT_TRUE(made.isDraft);
    EXPECT_EQ(made.url, "https://github.com/robin/project/pull/1");
    EXPECT_EQ(made.headRefName, "saved");
    EXPECT_EQ(made.baseRefName, "trunk");

    const Json stored = service.state()["repositories"][project]["pullRequests"][0];
    EXPECT_EQ(stored["body"], body);
    EXPECT_EQ(stored["isDraft"], true);
    EXPECT_EQ(find("saved"), made);
}

TEST_F(GitHubCLI, LeavesNoBodyBehind) {
    const FilePath temporary = home.makeDirectory("tmp");
    const ScopedEnvironment place("TMPDIR", temporary.bytes());
    EXPECT_EQ(create("body").number, 1);
    EXPECT_TRUE(fs::is_empty(temporary.bytes()));
    EXPECT_THROW(create("once more"), CairnfieldError);
    EXPECT_TRUE(fs::is_empty(temporary.bytes()));
    const std::vector<CommandInvocation> asked = commands.take();
    EXPECT_THAT(asked.front().arguments.back(), StartsWith(temporary.bytes() + "/cairnfield-pr-"));
}

TEST_F(GitHubCLI, FailsWithItsWordsWhenTheServiceRefusesTheDraft) {
    create("first");
    const CairnfieldError twice = failureOf(
        gh.createDraftPullRequest("trunk", "saved", "title", "body", repository.path(), publicHost));
    const auto* refused = twice.as<CairnfieldError::PullRequestCreationFailed>();
    ASSERT_TRUE(refused) << twice.errorDescription();
    EXPECT_THAT(refused->message, HasSubstr("already exists"));
}

TEST_F(GitHubCLI, TellsOfTheDraftThoughTheLookupFails) {
    service.fault("PullRequestList", 500, "{}");
    const PullRequestInfo made = create("body");
    EXPECT_EQ(made.number, 1);
    EXPECT_EQ(made.url, "https://github.com/robin/project/pull/1");
    EXPECT_EQ(made.state, PullRequestState::draft);
    EXPECT_EQ(made.title, "Preserve \"it\"");
    EXPECT_EQ(made.headRefName, "saved");
    EXPECT_EQ(made.baseRefName, "trunk");
}

TEST_F(GitHubCLI, StoresNoToken) {
    (void)wait(gh.status());
    create("body");
    for (const auto& entry : fs::recursive_directory_iterator(home.path().bytes())) {
        if (!entry.is_regular_file() || entry.path().filename() == "service.json") continue;
        EXPECT_THAT(contentOf(FilePath(entry.path().native())), Not(HasSubstr("made-up-for-a-test")))
            << entry.path();
    }
}

}  // namespace
}  // namespace cairnfield
