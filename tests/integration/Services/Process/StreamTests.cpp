// What goes in and what comes out, whatever its size and its bytes.

#include "ProcessRunnerFixture.h"

using namespace cairnfield;

namespace {

using StreamTest = ProcessRunnerFixture;

constexpr std::size_t fiftyMegabytes = 50'000'000;

}  // namespace

TEST_F(StreamTest, TakesFiftyMegabytesOnBothStreamsAtOnce) {
    const CommandResult result =
        run(shell("head -c 50000000 /dev/zero & head -c 50000000 /dev/zero | tr '\\0' x >&2; wait"));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.standardOutput, std::string(fiftyMegabytes, '\0'));
    EXPECT_EQ(result.standardError, std::string(fiftyMegabytes, 'x'));
}

TEST_F(StreamTest, TakesOneStreamWhileTheOtherWaits) {
    const CommandResult result =
        run(shell("head -c 300000 /dev/zero >&2; echo; head -c 300000 /dev/zero >&2"));
    EXPECT_EQ(result.standardError.size(), 600'000U);
    EXPECT_EQ(result.standardOutput, "\n");
}

TEST_F(StreamTest, KeepsEveryByteOfTheOutput) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) bytes += static_cast<char>(i);
    CommandInvocation invocation = command("/bin/cat");
    invocation.standardInput = bytes;
    EXPECT_EQ(run(invocation).standardOutput, bytes);
}

TEST_F(StreamTest, RepairsAndTrimsTheErrorText) {
    const CommandResult result = run(shell("printf ' \\n\\377a\\303b\\n\\n' >&2"));
    EXPECT_EQ(result.standardError, "\uFFFDa\uFFFDb");
    EXPECT_EQ(result.standardOutput, "");
}

TEST_F(StreamTest, FeedsALargeInput) {
    CommandInvocation invocation = command("/bin/cat");
    invocation.standardInput = std::string(fiftyMegabytes / 5, 'i');
    EXPECT_EQ(run(invocation).standardOutput, *invocation.standardInput);
}

TEST_F(StreamTest, IsNotHeldUpByAChildThatNeverReadsItsInput) {
    CommandInvocation invocation = command("/bin/echo", {"done"});
    invocation.standardInput = std::string(fiftyMegabytes / 5, 'i');
    EXPECT_EQ(run(invocation).standardOutput, "done\n");
    invocation = shell("exec 0<&-; echo closed");
    invocation.standardInput = std::string(fiftyMegabytes / 5, 'i');
    EXPECT_EQ(run(invocation).standardOutput, "closed\n");
}

TEST_F(StreamTest, EndsAnEmptyInputAtOnce) {
    CommandInvocation invocation = command("/bin/cat");
    invocation.standardInput = "";
    const CommandResult result = run(invocation);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.standardOutput, "");
}

TEST_F(StreamTest, SurvivesAChildThatClosesItsStreamsEarly) {
    NamedPipe gate = makePipe("gate");
    const TaskHandle<CommandResult> running =
        start(shell("echo before; exec >&- 2>&-; read -r line < \"$1\"; exit 4", {gate.path()}));
    gate.write("go\n");
    const CommandResult result = waitFor(running);
    EXPECT_EQ(result.standardOutput, "before\n");
    EXPECT_EQ(result.exitCode, 4);
}
