#include "Services/GitHub/GitHubCLIService.h"
#include "Services/Process/CommandEnvironment.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/Failures.h"
#include "support/ScopedEnvironment.h"
#include "support/ScriptedProcessRunner.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <exception>
#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

const FilePath program("/opt/gh");
const FilePath directory("/repositories/project");
const std::string publicHost(GitRemoteURL::publicGitHubHost);
const std::string openOne =
    R"([{"number":7,"title":"T","state":"OPEN","isDraft":true,"url":"https://h/p/pull/7","mergedAt":null,)"
    R"("closedAt":null,"headRefName":"saved","baseRefName":"main"}])";

class GitHubCLIServiceTest : public testing::Test {
protected:
    template <class T>
    T wait(Task<T> task) {
        return waitFor(pool, std::move(task));
    }
    void timesOut(const std::string& words) { runner.failures[words] = std::make_exception_ptr(timeOut); }
    std::optional<PullRequestInfo> find(const std::optional<std::string>& host = std::nullopt) {
        return wait(gh.findPullRequest("saved", directory, host));
    }
    PullRequestInfo create() {
        return wait(gh.createDraftPullRequest("main", "saved", "Title", "Body", directory, std::nullopt));
    }
    template <class T>
    CairnfieldError failureOf(Task<T> task) {
        return cairnfield::failureOf([&] { (void)wait(std::move(task)); });
    }
    void expectCommand(const CommandInvocation& command, const std::vector<std::string>& arguments,
                       const std::optional<FilePath>& where, std::chrono::seconds limit) {
        EXPECT_EQ(command.executableURL, program);
        EXPECT_EQ(command.arguments, arguments);
        EXPECT_EQ(command.currentDirectory, where);
        EXPECT_EQ(command.timeout, limit);
        EXPECT_EQ(command.standardInput, std::nullopt);
    }

    const CairnfieldError timeOut{CairnfieldError::CommandTimedOut{"gh", 45}};
    ThreadPool pool{1};
    ScriptedProcessRunner runner;
    GitHubCLIService gh{runner, program};
};

TEST_F(GitHubCLIServiceTest, RunsEachCommandWhereAndAsLongAsItMay) {
    runner.results["auth status"] = {0, "Logged in to github.com as robin", ""};
    runner.results["pr list"] = {0, openOne, ""};
    (void)wait(gh.status());
    (void)wait(gh.defaultBranch(directory, std::nullopt));
    (void)find();
    (void)create();
    ASSERT_THAT(runner.invocations, SizeIs(6));
    expectCommand(runner.invocations[0], {"--version"}, std::nullopt, 15s);
    expectCommand(runner.invocations[1], {"auth", "status"}, std::nullopt, 20s);
    expectCommand(runner.invocations[2], {"repo", "view", "--json", "defaultBranchRef"}, directory, 30s);
    const std::vector<std::string> list{
        "pr",      "list",
        "--head",  "saved",
        "--state", "all",
        "--limit", "20",
        "--json",  "number,title,state,isDraft,url,mergedAt,closedAt,headRefName,baseRefName"};
    expectCommand(runner.invocations[3], list, directory, 45s);
    const std::string body = runner.invocations[4].arguments.back();
    expectCommand(runner.invocations[4],
                  {"pr", "create", "--draft", "--base", "main", "--head", "saved", "--title", "Title",
                   "--body-file", body},
                  directory, 90s);
    expectCommand(runner.invocations[5], list, directory, 45s);
}

TEST_F(GitHubCLIServiceTest, GivesEachCommandTheEnvironmentOfTheNetworkAndNoPrompts) {
    const ScopedEnvironment host("GH_HOST", "from.the.person");
    runner.results["pr list"] = {0, openOne, ""};
    (void)find();
    Environment expected = CommandEnvironment::network();
    expected["GH_PROMPT_DISABLED"] = "1";
    expected["GH_NO_UPDATE_NOTIFIER"] = "1";
    EXPECT_EQ(runner.invocations[0].environment, expected);
    EXPECT_EQ(runner.invocations[0].environment["GH_HOST"], "from.the.person");
}

TEST_F(GitHubCLIServiceTest, NamesTheHostUnlessItIsThePublicOne) {
    const ScopedEnvironment host("GH_HOST", std::nullopt);
    runner.results["pr list"] = {0, openOne, ""};
    (void)find("code.example.org");
    (void)wait(gh.defaultBranch(directory, "code.example.org"));
    (void)wait(gh.createDraftPullRequest("a", "b", "c", "d", directory, "code.example.org"));
    ASSERT_THAT(runner.invocations, SizeIs(4));
    for (const CommandInvocation& asked : std::exchange(runner.invocations, {}))
        EXPECT_EQ(asked.environment.at("GH_HOST"), "code.example.org");
    (void)find(publicHost);
    (void)find("GitHub.com");
    (void)find();
    (void)wait(gh.status());
    ASSERT_THAT(runner.invocations, SizeIs(5));
    for (const CommandInvocation& asked : runner.invocations)
        EXPECT_FALSE(asked.environment.contains("GH_HOST"));
}

TEST_F(GitHubCLIServiceTest, LeavesThePersonsHostAloneForThePublicOneAndForNone) {
    const ScopedEnvironment host("GH_HOST", "from.the.person");
    runner.results["pr list"] = {0, openOne, ""};
    (void)find(publicHost);
    (void)find("GitHub.com");
    (void)find();
    ASSERT_THAT(runner.invocations, SizeIs(3));
    for (const CommandInvocation& asked : runner.invocations)
        EXPECT_EQ(asked.environment.at("GH_HOST"), "from.the.person");
}

TEST_F(GitHubCLIServiceTest, ReportsWhatItFound) {
    runner.results["--version"] = {0, "gh version 2.60.1 (2024-10-25)\nhttps://example.org\n", ""};
    runner.results["auth status"] = {1, "Logged in to github.com account robin (keyring)\n",
                                     "Logged in to old.example as robin"};
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_TRUE(status.isInstalled);
    EXPECT_EQ(status.version, "gh version 2.60.1 (2024-10-25)");
    EXPECT_THAT(status.authenticatedHosts, ElementsAre("github.com", "old.example"))
        << "from both streams, whatever the exit status";
    EXPECT_EQ(status.executablePath, program.bytes());
    EXPECT_EQ(status.errorDescription, std::nullopt);
}

TEST_F(GitHubCLIServiceTest, ReportsThatNobodyIsSignedIn) {
    runner.results["--version"] = {0, "gh version 2.60.1\n", ""};
    runner.results["auth status"] = {1, "", "You are not logged into any GitHub hosts."};
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_TRUE(status.isInstalled);
    EXPECT_THAT(status.authenticatedHosts, IsEmpty());
    EXPECT_EQ(status.errorDescription, "No authenticated GitHub host.");
}

TEST_F(GitHubCLIServiceTest, ReportsAProgramThatDoesNotRun) {
    GitHubIntegrationStatus expected;
    expected.executablePath = program.bytes();
    expected.errorDescription = "gh could not be run.";
    runner.results["--version"] = {2, "gh version 2.60.1\n", ""};
    EXPECT_EQ(wait(gh.status()), expected);
    timesOut("--version");
    EXPECT_EQ(wait(gh.status()), expected);
    EXPECT_THAT(runner.invocations, SizeIs(2)) << "the login is not asked for then";
}

TEST_F(GitHubCLIServiceTest, ReportsALoginStateThatDoesNotCome) {
    runner.results["--version"] = {0, "gh version 2.60.1\n", ""};
    timesOut("auth status");
    const GitHubIntegrationStatus status = wait(gh.status());
    EXPECT_TRUE(status.isInstalled);
    EXPECT_EQ(status.version, "gh version 2.60.1");
    EXPECT_THAT(status.authenticatedHosts, IsEmpty());
    EXPECT_EQ(status.executablePath, program.bytes());
    EXPECT_EQ(status.errorDescription, "gh auth status did not complete.");
}

TEST_F(GitHubCLIServiceTest, KnowsNoDefaultBranchWithoutAGoodAnswer) {
    runner.results["repo view"] = {0, R"({"defaultBranchRef":{"name":"trunk"}})", ""};
    EXPECT_EQ(wait(gh.defaultBranch(directory, std::nullopt)), "trunk");
    runner.results["repo view"].exitCode = 1;
    EXPECT_EQ(wait(gh.defaultBranch(directory, std::nullopt)), std::nullopt);
    runner.results["repo view"] = {0, "rubbish", ""};
    EXPECT_EQ(wait(gh.defaultBranch(directory, std::nullopt)), std::nullopt);
    timesOut("repo view");
    EXPECT_EQ(wait(gh.defaultBranch(directory, std::nullopt)), std::nullopt);
}

TEST_F(GitHubCLIServiceTest, FailsTheLookupForAMissingLogin) {
    runner.results["pr list"] = {4, "", "populate GH_TOKEN with an API Authentication token."};
    EXPECT_EQ(failureOf(gh.findPullRequest("b", directory, "code.example.org")),
              CairnfieldError(CairnfieldError::GitHubCLINotAuthenticated{"code.example.org"}));
    EXPECT_EQ(failureOf(gh.findPullRequest("b", directory, std::nullopt)),
              CairnfieldError(CairnfieldError::GitHubCLINotAuthenticated{publicHost}));
}

TEST_F(GitHubCLIServiceTest, TakesOtherRefusalsForAbsence) {
    runner.results["pr list"] = {1, "authentication", "Could not resolve to a Repository."};
    EXPECT_EQ(find(), std::nullopt) << "only standard error counts";
    runner.results["pr list"] = {1, openOne, "error connecting"};
    EXPECT_EQ(find(), std::nullopt);
}

TEST_F(GitHubCLIServiceTest, PassesOnARunThatFailsAndAnAnswerThatMakesNoSense) {
    runner.results["pr list"] = {0, "no json", ""};
    EXPECT_THROW((void)find(), Json::exception);
    timesOut("pr list");
    EXPECT_EQ(failureOf(gh.findPullRequest("saved", directory, std::nullopt)), timeOut);
}

TEST_F(GitHubCLIServiceTest, LooksTheDraftUpAfterMakingIt) {
    runner.results["pr create"] = {0, "https://h/p/pull/9\n", ""};
    runner.results["pr list"] = {0, openOne, ""};
    EXPECT_EQ(create().number, 7);
}

TEST_F(GitHubCLIServiceTest, TellsOfTheDraftFromWhatWasPrintedWhenTheLookupGivesNone) {
    runner.results["pr create"] = {0, "Warning: 2 uncommitted changes\nhttps://h/p/pull/9\n", ""};
    PullRequestInfo expected;
    expected.number = 9;
    expected.title = "Title";
    expected.state = PullRequestState::draft;
    expected.isDraft = true;
    expected.url = "https://h/p/pull/9";
    expected.headRefName = "saved";
    expected.baseRefName = "main";
    for (const CommandResult& answer : {CommandResult{0, "[]", ""}, CommandResult{1, "", "authentication"},
                                        CommandResult{0, "rubbish", ""}, CommandResult{1, "", ""}}) {
        runner.results["pr list"] = answer;
        EXPECT_EQ(create(), expected) << answer.standardOutput << answer.standardError;
    }
    timesOut("pr list");
    EXPECT_EQ(create(), expected);
}

TEST_F(GitHubCLIServiceTest, GivesTheNumberZeroForAnotherAddress) {
    runner.results["pr create"] = {0, "https://h/p/compare/saved\n", ""};
    runner.results["pr list"] = {0, "[]", ""};
    EXPECT_EQ(create().number, 0);
    EXPECT_EQ(create().url, "https://h/p/compare/saved");
}

TEST_F(GitHubCLIServiceTest, FailsWithWhatGhSaidWhenNoDraftWasMade) {
    runner.results["pr create"] = {1, "https://h/p/pull/9\n", "GraphQL: No commits between main and saved"};
    EXPECT_EQ(failureOf(gh.createDraftPullRequest("main", "saved", "t", "b", directory, std::nullopt)),
              CairnfieldError(
                  CairnfieldError::PullRequestCreationFailed{"GraphQL: No commits between main and saved"}));
    EXPECT_THAT(runner.invocations, SizeIs(1)) << "nothing is looked up";
}

class GitHubBodyFile : public GitHubCLIServiceTest {
protected:
    GitHubBodyFile() {
        runner.results["pr list"] = {0, openOne, ""};
        runner.look = [this](const CommandInvocation& command) {
            if (command.arguments[1] != "create") return;
            path = FilePath(command.arguments.back());
            content = contentOf(path);
            permissions = fs::status(path.bytes()).permissions();
        };
    }
    bool isTemporaryDirectoryEmpty() { return fs::is_empty(temporary.bytes()); }

    TemporaryDirectory home;
    const FilePath temporary = home.makeDirectory("tmp");
    const ScopedEnvironment variable{"TMPDIR", temporary.bytes()};
    FilePath path;
    std::string content;
    fs::perms permissions{};
};

TEST_F(GitHubBodyFile, HoldsTheBodyWhileGhRunsAndGoesThen) {
    const std::string body = "a\n`b` \xC3\xA9\n" + std::string(1'000'000, 'x');
    (void)wait(gh.createDraftPullRequest("main", "saved", "t", body, directory, std::nullopt));
    EXPECT_EQ(content, body);
    EXPECT_EQ(path.parent(), temporary);
    EXPECT_THAT(path.lastComponent(), testing::MatchesRegex("cairnfield-pr-[0-9A-F-]+\\.md"));
    EXPECT_EQ(permissions, fs::perms(0600));
    EXPECT_TRUE(isTemporaryDirectoryEmpty());
}

TEST_F(GitHubBodyFile, HoldsTextWhateverTheBodyIs) {
    (void)wait(gh.createDraftPullRequest("main", "saved", "t", "caf\xE9", directory, std::nullopt));
    EXPECT_EQ(content, "caf\xEF\xBF\xBD");
}

TEST_F(GitHubBodyFile, GoesOnEveryWayOut) {
    runner.results["pr create"].exitCode = 1;
    EXPECT_THROW((void)create(), CairnfieldError);
    EXPECT_FALSE(path.isEmpty());
    EXPECT_TRUE(isTemporaryDirectoryEmpty());
    timesOut("pr create");
    EXPECT_THROW((void)create(), CairnfieldError);
    EXPECT_TRUE(isTemporaryDirectoryEmpty());
}

TEST_F(GitHubBodyFile, ThatCannotBeWrittenFailsBeforeGhIsAsked) {
    const ScopedEnvironment nowhere("TMPDIR", temporary.appending("missing").bytes());
    EXPECT_THROW((void)create(), std::system_error);
    EXPECT_THAT(runner.invocations, IsEmpty());
}

}  // namespace
}  // namespace cairnfield
