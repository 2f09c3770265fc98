#include "Shared/Concurrency/RunBlocking.h"
#include "support/FakeProcessRunner.h"

#include <gtest/gtest.h>

using namespace cairnfield;

namespace {

CommandInvocation gitStatus() {
    CommandInvocation invocation;
    invocation.executableURL = FilePath("/usr/bin/git");
    invocation.arguments = {"status"};
    return invocation;
}

bool anything(const CommandInvocation&) {
    return true;
}

}  // namespace

TEST(FakeProcessRunner, SaysWhatHasNoStub) {
    FakeProcessRunner runner;
    const CommandResult result = runBlocking(runner.run(gitStatus()));
    EXPECT_EQ(result.exitCode, 127);
    EXPECT_EQ(result.standardOutput, "");
    EXPECT_EQ(result.standardError, "no stub for git status");
}

TEST(FakeProcessRunner, AsksTheLastExpectationFirst) {
    FakeProcessRunner runner;
    runner.expect(anything, {0, "first", ""});
    runner.expect(anything, {0, "second", ""});
    runner.expectArguments({"log"}, {0, "third", ""});
    EXPECT_EQ(runBlocking(runner.run(gitStatus())).standardOutput, "second");
}

TEST(FakeProcessRunner, RemembersEveryInvocation) {
    FakeProcessRunner runner;
    runner.expectArguments({"status"}, {});
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(runBlocking(runner.run(gitStatus())).succeeded());
    const std::vector<CommandInvocation> seen = runner.invocations();
    ASSERT_EQ(seen.size(), 2U);
    EXPECT_EQ(seen[1].displayName(), "git status");
}
