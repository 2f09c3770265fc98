// How a run ends: by itself, at its limit, by cancellation; and who gets a signal.

#include "ProcessRunnerFixture.h"
#include "Shared/Concurrency/Cancelled.h"

#include <cerrno>
#include <csignal>
#include <fstream>
#include <thread>

using namespace cairnfield;
using namespace std::chrono_literals;

namespace {

using EndingTest = ProcessRunnerFixture;

/// Counts the signals it gets in $1, tells of each through $2, and ends when $3 exists.
constexpr const char* stubborn =
    "trap 'echo term >> \"$1\"; echo term > \"$2\"' TERM; echo ready > \"$2\";"
    "until [ -e \"$3\" ]; do sleep 0.02; done; echo done >> \"$1\"";

/// Far longer than any of these tests lasts when all goes well.
constexpr std::chrono::seconds tooLong{60};

const CairnfieldError::CommandTimedOut* asTimeOut(const CairnfieldError& error) {
    return error.as<CairnfieldError::CommandTimedOut>();
}

/// False for one that has ended, also while nobody has waited for it.
bool isAlive(pid_t process) {
    std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
    std::string number;
    std::string name;
    std::string state = "gone";
    stat >> number >> name >> state;
    return state != "gone" && state != "Z" && state != "X";
}

bool exists(pid_t process) {
    return kill(process, 0) == 0 || errno != ESRCH;
}

}  // namespace

TEST_F(EndingTest, GivesTheNumberOfTheSignalThatEndedTheChild) {
    EXPECT_EQ(run(shell("kill -KILL $$")).exitCode, SIGKILL);
    EXPECT_EQ(run(shell("kill -TERM $$")).exitCode, SIGTERM);
}

TEST_F(EndingTest, EndsAnObedientChildAtItsLimit) {
    CommandInvocation invocation = command("/bin/sleep", {"600"});
    invocation.timeout = 1100ms;
    const CairnfieldError error = failureOf(invocation);
    ASSERT_NE(asTimeOut(error), nullptr);
    EXPECT_EQ(asTimeOut(error)->command, "sleep 600");
    EXPECT_EQ(asTimeOut(error)->seconds, 1.0);
    EXPECT_GE(elapsed(), 1100ms);
    EXPECT_LT(elapsed(), tooLong);
}

TEST_F(EndingTest, SignalsOnceAtTheLimitAndWaitsForAStubbornChild) {
    NamedPipe news = makePipe("news");
    const FilePath log = directory_ / "log";
    const FilePath release = directory_ / "release";
    CommandInvocation invocation = shell(stubborn, {log.bytes(), news.path(), release.bytes()});
    invocation.timeout = 500ms;
    const TaskHandle<CommandResult> running = start(invocation);
    EXPECT_EQ(news.line(), "ready");
    EXPECT_EQ(news.line(), "term");
    // The limit has long passed when several other commands have come and gone.
    for (int i = 0; i < 3; ++i) run(command("/bin/sleep", {"0.2"}));
    EXPECT_FALSE(running.done());
    (void)directory_.write("release");
    EXPECT_THROW(waitFor(running), CairnfieldError);
    EXPECT_EQ(contentOf(log), "term\ndone\n");
}

TEST_F(EndingTest, SignalsOnceWhenCancelledAndWaitsForAStubbornChild) {
    NamedPipe news = makePipe("news");
    const FilePath log = directory_ / "log";
    const FilePath release = directory_ / "release";
    const TaskHandle<CommandResult> running =
        start(shell(stubborn, {log.bytes(), news.path(), release.bytes()}));
    EXPECT_EQ(news.line(), "ready");
    running.cancel();
    running.cancel();
    EXPECT_EQ(news.line(), "term");
    EXPECT_FALSE(running.done());
    (void)directory_.write("release");
    EXPECT_THROW(waitFor(running), Cancelled);
    EXPECT_EQ(contentOf(log), "term\ndone\n");
}

TEST_F(EndingTest, AppliesALimitThatHasPassedAtTheStart) {
    CommandInvocation invocation = command("/bin/sleep", {"600"});
    invocation.timeout = 0s;
    const CairnfieldError error = failureOf(invocation);
    ASSERT_NE(asTimeOut(error), nullptr);
    EXPECT_EQ(asTimeOut(error)->seconds, 0.0);
}

TEST_F(EndingTest, EndsAChildThatNeverStopsWriting) {
    CommandInvocation invocation = shell("while :; do echo torrent; done");
    invocation.timeout = 300ms;
    ASSERT_NE(asTimeOut(failureOf(invocation)), nullptr);
    NamedPipe news = makePipe("news");
    const TaskHandle<CommandResult> running =
        start(shell("echo ready > \"$1\"; while :; do echo torrent >&2; done", {news.path()}));
    EXPECT_EQ(news.line(), "ready");
    running.cancel();
    EXPECT_THROW(waitFor(running), Cancelled);
    EXPECT_LT(elapsed(), tooLong);
}

TEST_F(EndingTest, EndsTheHelpersOfTheChildToo) {
    // Without the signal to the whole group the helper would hold both streams for ten minutes.
    NamedPipe news = makePipe("news");
    const TaskHandle<CommandResult> running =
        start(shell("sleep 600 & echo $! > \"$1\"; wait", {news.path()}));
    const pid_t helper = std::stoi(news.line());
    running.cancel();
    EXPECT_THROW(waitFor(running), Cancelled);
    EXPECT_LT(elapsed(), tooLong);
    EXPECT_FALSE(isAlive(helper));
}

TEST_F(EndingTest, WaitsForAHelperThatLeftTheGroupAndHoldsAStream) {
    NamedPipe news = makePipe("news");
    NamedPipe gate = makePipe("gate");
    const char* script = "setsid sh -c 'echo ready > \"$1\"; read -r line < \"$2\"' sh \"$1\" \"$2\" & wait";
    CommandInvocation invocation = shell(script, {news.path(), gate.path()});
    const TaskHandle<CommandResult> running = start(invocation);
    EXPECT_EQ(news.line(), "ready");
    running.cancel();
    for (int i = 0; i < 3; ++i) run(command("/bin/sleep", {"0.1"}));
    EXPECT_FALSE(running.done());
    gate.write("go\n");
    EXPECT_THROW(waitFor(running), Cancelled);
}

TEST_F(EndingTest, WaitsForADescendantThatHoldsAStreamBeyondTheLimit) {
    // The child itself was in time: the descendant delays its result and gets no signal.
    CommandInvocation invocation = shell("(sleep 1.5; echo late) & echo now");
    invocation.timeout = 1s;
    const CommandResult result = run(invocation);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.standardOutput, "now\nlate\n");
    EXPECT_GE(elapsed(), 1500ms);
}

TEST_F(EndingTest, GivesTheResultOfAChildThatEndedBeforeTheCancellation) {
    NamedPipe news = makePipe("news");
    NamedPipe gate = makePipe("gate");
    const char* script = "(read -r line < \"$2\"; echo late) & echo $$ > \"$1\"; exit 5";
    const TaskHandle<CommandResult> running = start(shell(script, {news.path(), gate.path()}));
    const pid_t child = std::stoi(news.line());
    while (exists(child)) std::this_thread::yield();
    running.cancel();
    gate.write("go\n");
    const CommandResult result = waitFor(running);
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.standardOutput, "late\n");
}

TEST_F(EndingTest, RunsACommandThatWasCancelledBeforeItsLaunch) {
    RunLoop loop;
    const FilePath log = directory_ / "log";
    const char* script = "trap 'echo term >> \"$1\"' TERM; sleep 0.5; echo done >> \"$1\"";
    CommandInvocation invocation = shell(script, {log.bytes()});
    invocation.timeout = 100ms;
    const TaskHandle<CommandResult> running = spawn(loop, runner_.run(invocation));
    running.cancel();  // before the loop has run any of it
    EXPECT_THROW(waitFor(loop, running), Cancelled);
    EXPECT_EQ(contentOf(log), "done\n");
}

TEST_F(EndingTest, CancellingARunThatHasEndedDoesNothing) {
    const TaskHandle<CommandResult> running = start(command("/bin/echo", {"done"}));
    EXPECT_EQ(waitFor(running).standardOutput, "done\n");
    running.cancel();
    EXPECT_EQ(waitFor(running).standardOutput, "done\n");
}
