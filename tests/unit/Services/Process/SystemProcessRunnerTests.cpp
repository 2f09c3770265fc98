#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "support/ScriptedChildProcess.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>
#include <spdlog/sinks/ostream_sink.h>

#include <algorithm>
#include <sstream>

using namespace cairnfield;
using namespace std::chrono_literals;

namespace {

/// What the category "git" says at debug level while this lives.
class GitLog {
public:
    GitLog() : level_(Log::git().level()) {
        auto sink = std::make_shared<spdlog::sinks::ostream_sink_mt>(stream_, true);
        sink->set_pattern("%l: %v");
        sinks_.swap(Log::git().sinks());
        Log::git().sinks().push_back(std::move(sink));
        Log::git().set_level(spdlog::level::debug);
    }
    ~GitLog() {
        sinks_.swap(Log::git().sinks());
        Log::git().set_level(level_);
    }
    GitLog(const GitLog&) = delete;
    GitLog& operator=(const GitLog&) = delete;

    [[nodiscard]] std::string text() const { return stream_.str(); }

private:
    std::ostringstream stream_;
    std::vector<spdlog::sink_ptr> sinks_;
    spdlog::level::level_enum level_;
};

class SystemProcessRunnerTest : public testing::Test {
protected:
    [[nodiscard]] static CommandInvocation invocation(std::chrono::nanoseconds timeout = 60s) {
        CommandInvocation command;
        command.executableURL = FilePath("/usr/bin/git");
        command.arguments = {"worktree", "list", "--porcelain", "-z"};
        command.timeout = timeout;
        return command;
    }
    CommandResult run(CommandInvocation command) { return waitFor(pool_, runner_.run(std::move(command))); }

    CairnfieldError failureOf(CommandInvocation command) {
        try {
            run(std::move(command));
        } catch (const CairnfieldError& error) {
            return error;
        }
        ADD_FAILURE() << "did not fail";
        return CairnfieldError(CairnfieldError::Offline{});
    }

    ChildProcessScript script_;
    ScriptedChildProcessStarter starter_{script_};
    SteppedClock clock_;
    ThreadPool pool_{1};
    SystemProcessRunner runner_{starter_, clock_, pool_};
};

}  // namespace

TEST_F(SystemProcessRunnerTest, StartsExactlyWhatItWasGiven) {
    CommandInvocation command = invocation();
    command.currentDirectory = FilePath("/some/where");
    command.environment = {{"KEY", "value"}};
    command.standardInput = "input";
    run(command);
    EXPECT_EQ(script_.started->executable, command.executableURL);
    EXPECT_EQ(script_.started->arguments, command.arguments);
    EXPECT_EQ(script_.started->workingDirectory, command.currentDirectory);
    EXPECT_EQ(script_.started->environment, command.environment);
    EXPECT_EQ(script_.started->standardInput, command.standardInput);
}

TEST_F(SystemProcessRunnerTest, GivesAnyStatusAsAResult) {
    script_.status = 128;
    script_.output.output = std::string("a\0b\n", 4);
    script_.output.error = " \nfatal: \xFF\n";
    const CommandResult result = run(invocation());
    EXPECT_EQ(result.exitCode, 128);
    EXPECT_EQ(result.standardOutput, std::string("a\0b\n", 4));
    EXPECT_EQ(result.standardError, "fatal: \uFFFD");
}

TEST_F(SystemProcessRunnerTest, CountsTheLimitFromTheStart) {
    run(invocation(1500ms));
    EXPECT_EQ(script_.deadline, clock_.now() + 1500ms);
    EXPECT_EQ(script_.terminations, 0);
}

TEST_F(SystemProcessRunnerTest, ReportsWholeSecondsOfTheLimit) {
    script_.wait = ChildProcessWait::deadline;
    const std::string name = "git worktree list --porcelain";
    EXPECT_EQ(failureOf(invocation(1500ms)), CairnfieldError(CairnfieldError::CommandTimedOut{name, 1.0}));
    EXPECT_EQ(failureOf(invocation(999ms)), CairnfieldError(CairnfieldError::CommandTimedOut{name, 0.0}));
    EXPECT_EQ(failureOf(invocation(20s)), CairnfieldError(CairnfieldError::CommandTimedOut{name, 20.0}));
}

TEST_F(SystemProcessRunnerTest, SignalsOnceAtTheLimitAndWaitsForTheEnd) {
    script_.wait = ChildProcessWait::deadline;
    failureOf(invocation());
    EXPECT_EQ(script_.terminations, 1);
    EXPECT_EQ(script_.shieldedWaits, 1);
}

TEST_F(SystemProcessRunnerTest, SignalsOnceWhenCancelledAndWaitsForTheEnd) {
    script_.wait = ChildProcessWait::cancelled;
    EXPECT_THROW(run(invocation()), Cancelled);
    EXPECT_EQ(script_.terminations, 1);
    EXPECT_EQ(script_.shieldedWaits, 1);
}

TEST_F(SystemProcessRunnerTest, RunsWhatWasCancelledBeforeTheLaunchWithoutASignalOrALimit) {
    RunLoop loop;
    const TaskHandle<CommandResult> handle = spawn(loop, runner_.run(invocation(0s)));
    handle.cancel();
    EXPECT_THROW(waitFor(loop, handle), Cancelled);
    EXPECT_TRUE(script_.started);
    EXPECT_FALSE(script_.deadline);
    EXPECT_EQ(script_.shieldedWaits, 1);
    EXPECT_EQ(script_.terminations, 0);
}

TEST_F(SystemProcessRunnerTest, ReportsAFailedLaunchWithTheSystemsWords) {
    script_.launchFailure = std::make_error_code(std::errc::permission_denied);
    const CairnfieldError error = failureOf(invocation());
    const auto* failed = error.as<CairnfieldError::CommandFailed>();
    ASSERT_NE(failed, nullptr);
    EXPECT_EQ(failed->command, "git worktree list --porcelain");
    EXPECT_EQ(failed->exitCode, -1);
    EXPECT_EQ(failed->message, "launch: Permission denied");
}

TEST_F(SystemProcessRunnerTest, LogsOneLineForEveryResult) {
    const GitLog log;
    script_.status = 3;
    script_.whileWaiting = [this] { clock_.advance(2900ms); };
    run(invocation());
    EXPECT_EQ(log.text(), "debug: git worktree list --porcelain exited 3 in 2s\n");
}

TEST_F(SystemProcessRunnerTest, LogsNoFailure) {
    const GitLog log;
    script_.wait = ChildProcessWait::deadline;
    failureOf(invocation());
    script_.wait = ChildProcessWait::cancelled;
    EXPECT_THROW(run(invocation()), Cancelled);
    script_.launchFailure = std::make_error_code(std::errc::no_such_file_or_directory);
    failureOf(invocation());
    EXPECT_EQ(log.text(), "");
}

TEST_F(SystemProcessRunnerTest, KeepsAHostileArgumentOnOneLogLine) {
    const GitLog log;
    CommandInvocation command = invocation();
    command.arguments = {"{}", "two\nlines", "\xFF"};
    run(command);
    const std::string text = log.text();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_TRUE(text.starts_with("debug: git {} two")) << text;
}
