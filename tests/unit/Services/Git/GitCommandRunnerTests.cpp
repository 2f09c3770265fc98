#include "Services/Git/GitCommandRunner.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/FakeProcessRunner.h"
#include "support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>

using namespace cairnfield;
using namespace std::chrono_literals;

namespace {

class GitCommandRunnerTest : public testing::Test {
protected:
    void answer(CommandResult result) {
        processes_.expect([](const CommandInvocation&) { return true; }, std::move(result));
    }
    [[nodiscard]] GitCommandRunner git() { return {processes_, FilePath("/opt/git/bin/git")}; }

    [[nodiscard]] std::optional<std::string> stringFor(std::string output, std::int32_t exitCode = 0) {
        answer({exitCode, std::move(output), ""});
        return runBlocking(git().optionalString({"config", "x"}, FilePath("/repo"), 5s));
    }
    [[nodiscard]] std::optional<FilePath> pathFor(std::string output, std::int32_t exitCode = 0) {
        answer({exitCode, std::move(output), ""});
        return runBlocking(git().optionalPath({"rev-parse", "--git-dir"}, FilePath("/repo"), 5s));
    }

    FakeProcessRunner processes_;
};

/// Fails every command in one way.
class FailingProcessRunner final : public ProcessRunning {
public:
    explicit FailingProcessRunner(std::function<void()> fail) : fail_(std::move(fail)) {}

    Task<CommandResult> run(CommandInvocation /*invocation*/) override {
        fail_();
        co_return CommandResult{};
    }

private:
    std::function<void()> fail_;
};

void timeOut() {
    throw CairnfieldError(CairnfieldError::CommandTimedOut{"git status", 5});
}
void failToLaunch() {
    throw CairnfieldError(CairnfieldError::CommandFailed{"git status", -1, "No such file or directory"});
}
void beCancelled() {
    throw Cancelled();
}
void failToRead() {
    throw std::system_error(std::make_error_code(std::errc::io_error));
}

}  // namespace

TEST_F(GitCommandRunnerTest, RunsTheLocatedProgramInTheDirectoryWithinTheLimit) {
    answer({});
    runBlocking(git().run({"status", "-z"}, FilePath("/my repo"), 20s));
    ASSERT_EQ(processes_.invocations().size(), 1U);
    const CommandInvocation invocation = processes_.invocations().front();
    EXPECT_EQ(invocation.executableURL, FilePath("/opt/git/bin/git"));
    EXPECT_EQ(invocation.arguments, (std::vector<std::string>{"status", "-z"}));
    EXPECT_EQ(invocation.currentDirectory, FilePath("/my repo"));
    EXPECT_EQ(invocation.timeout, 20s);
    EXPECT_EQ(invocation.standardInput, std::nullopt);
}

TEST_F(GitCommandRunnerTest, TakesTheNetworkEnvironmentOnlyWhenTold) {
    answer({});
    const ScopedEnvironment asking("GIT_ASKPASS", std::nullopt);
    runBlocking(git().run({"fetch"}, FilePath("/repo"), 5s));
    runBlocking(git().runChecked({"status"}, FilePath("/repo"), 5s));
    EXPECT_EQ(runBlocking(git().succeeds({"ls-remote"}, FilePath("/repo"), 5s)), true);
    EXPECT_EQ(runBlocking(git().optionalString({"remote"}, FilePath("/repo"), 5s)), std::nullopt);
    EXPECT_EQ(runBlocking(git().optionalPath({"remote"}, FilePath("/repo"), 5s)), std::nullopt);
    runBlocking(git().run({"push"}, FilePath("/repo"), 5s, GitCommandRunner::UsesNetwork::yes));
    runBlocking(git().runChecked({"push"}, FilePath("/repo"), 5s, GitCommandRunner::UsesNetwork::yes));
    const std::vector<CommandInvocation> all = processes_.invocations();
    ASSERT_EQ(all.size(), 7U);
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_EQ(all[i].environment.count("GIT_ASKPASS"), i < 5 ? 0U : 1U) << i;
        EXPECT_EQ(all[i].environment.at("GIT_TERMINAL_PROMPT"), "0") << i;
        EXPECT_EQ(all[i].environment.at("GIT_OPTIONAL_LOCKS"), "0") << i;
    }
}

TEST_F(GitCommandRunnerTest, KeepsTheApplicationsRedirectionsAway) {
    answer({});
    const ScopedEnvironment elsewhere("GIT_DIR", "/elsewhere/.git");
    runBlocking(git().run({"status"}, FilePath("/repo"), 5s));
    runBlocking(git().run({"push"}, FilePath("/repo"), 5s, GitCommandRunner::UsesNetwork::yes));
    for (const CommandInvocation& invocation : processes_.invocations())
        EXPECT_EQ(invocation.environment.count("GIT_DIR"), 0U);
}

TEST_F(GitCommandRunnerTest, GivesAnyStatusFromRun) {
    answer({128, "output", "fatal"});
    const CommandResult result = runBlocking(git().run({"status"}, FilePath("/repo"), 5s));
    EXPECT_EQ(result.exitCode, 128);
    EXPECT_EQ(result.standardOutput, "output");
    EXPECT_EQ(result.standardError, "fatal");
}

TEST_F(GitCommandRunnerTest, FailsWithTheWholeCommandLineWhenChecked) {
    answer({1, "output", "fatal: no"});
    try {
        runBlocking(git().runChecked({"worktree", "list", "--porcelain", "-z"}, FilePath("/repo"), 5s));
        FAIL();
    } catch (const CairnfieldError& error) {
        EXPECT_EQ(error, CairnfieldError(CairnfieldError::CommandFailed{"git worktree list --porcelain -z", 1,
                                                                        "fatal: no"}));
    }
}

TEST_F(GitCommandRunnerTest, FailsWithAnEmptyMessageWhenThereIsNone) {
    answer({2, "", ""});
    try {
        runBlocking(git().runChecked({"status"}, FilePath("/repo"), 5s));
        FAIL();
    } catch (const CairnfieldError& error) {
        EXPECT_EQ(error, CairnfieldError(CairnfieldError::CommandFailed{"git status", 2, ""}));
    }
}

TEST_F(GitCommandRunnerTest, GivesTheResultWhenTheCheckPasses) {
    answer({0, "main\n", "warning"});
    EXPECT_EQ(runBlocking(git().runChecked({"branch"}, FilePath("/repo"), 5s)).standardOutput, "main\n");
}

TEST_F(GitCommandRunnerTest, GivesTheTrimmedTextAsAnswer) {
    EXPECT_EQ(stringFor(" origin/main \n\n"), "origin/main");
    EXPECT_EQ(stringFor("bad \xFF\n"), "bad \uFFFD");
}

TEST_F(GitCommandRunnerTest, TakesBlankOutputForNoAnswer) {
    EXPECT_EQ(stringFor(" \n\t\n"), std::nullopt);
    EXPECT_EQ(stringFor(""), std::nullopt);
}

TEST_F(GitCommandRunnerTest, LosesTheTextOfACommandThatFailed) {
    EXPECT_EQ(stringFor("text\n", 1), std::nullopt);
    EXPECT_EQ(pathFor("/path\n", 1), std::nullopt);
}

TEST_F(GitCommandRunnerTest, GivesAPathByteForByte) {
    EXPECT_EQ(pathFor("/a b\xFF\n"), FilePath("/a b\xFF"));
    EXPECT_EQ(pathFor(" /blank \n"), FilePath(" /blank "));
    EXPECT_EQ(pathFor("/ends with newline\n\n"), FilePath("/ends with newline\n"));
    EXPECT_EQ(pathFor("/no newline"), FilePath("/no newline"));
}

TEST_F(GitCommandRunnerTest, TakesAnEmptyPathForNoAnswer) {
    EXPECT_EQ(pathFor(""), std::nullopt);
    EXPECT_EQ(pathFor("\n"), std::nullopt);
}

TEST_F(GitCommandRunnerTest, SucceedsWithStatusZeroOnly) {
    answer({0, "", "warning"});
    EXPECT_TRUE(runBlocking(git().succeeds({"merge-base"}, FilePath("/repo"), 5s)));
    answer({1, "", ""});
    EXPECT_FALSE(runBlocking(git().succeeds({"merge-base"}, FilePath("/repo"), 5s)));
}

TEST(GitCommandRunnerFailure, IsNoAnswerToAQuestion) {
    for (const auto& failure : {timeOut, failToLaunch, beCancelled, failToRead}) {
        FailingProcessRunner processes(failure);
        const GitCommandRunner git(processes, FilePath("/usr/bin/git"));
        EXPECT_FALSE(runBlocking(git.succeeds({"status"}, FilePath("/repo"), 5s)));
        EXPECT_EQ(runBlocking(git.optionalString({"status"}, FilePath("/repo"), 5s)), std::nullopt);
        EXPECT_EQ(runBlocking(git.optionalPath({"status"}, FilePath("/repo"), 5s)), std::nullopt);
    }
}

TEST(GitCommandRunnerFailure, IsPassedOnByTheOtherForms) {
    FailingProcessRunner late(timeOut);
    FailingProcessRunner missing(failToLaunch);
    FailingProcessRunner cancelled(beCancelled);
    const CairnfieldError timedOut(CairnfieldError::CommandTimedOut{"git status", 5});
    const auto expectFailure = [](ProcessRunning& processes, const auto& check) {
        const GitCommandRunner git(processes, FilePath("/usr/bin/git"));
        check([git] { runBlocking(git.run({"status"}, FilePath("/repo"), 5s)); });
        check([git] { runBlocking(git.runChecked({"status"}, FilePath("/repo"), 5s)); });
    };
    expectFailure(late, [](const auto& ask) {
        try {
            ask();
            ADD_FAILURE();
        } catch (const CairnfieldError& error) {
            EXPECT_EQ(error.caseName(), "commandTimedOut");
        }
    });
    expectFailure(missing, [](const auto& ask) {
        try {
            ask();
            ADD_FAILURE();
        } catch (const CairnfieldError& error) {
            EXPECT_EQ(error.as<CairnfieldError::CommandFailed>()->exitCode, -1);
        }
    });
    expectFailure(cancelled, [](const auto& ask) { EXPECT_THROW(ask(), Cancelled); });
}

TEST_F(GitCommandRunnerTest, MayBeGoneBeforeItsCommandsEnd) {
    answer({0, "kept\n", ""});
    Task<std::optional<std::string>> question = [this] {
        const GitCommandRunner shortLived = git();
        return shortLived.optionalString({"status"}, FilePath("/repo"), 5s);
    }();
    EXPECT_EQ(runBlocking(std::move(question)), "kept");
}
