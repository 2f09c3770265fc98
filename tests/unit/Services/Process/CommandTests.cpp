#include "Services/Process/ProcessRunning.h"

#include <gtest/gtest.h>

using namespace cairnfield;

namespace {

CommandInvocation gitWith(std::vector<std::string> arguments) {
    CommandInvocation invocation;
    invocation.executableURL = FilePath("/usr/bin/git");
    invocation.arguments = std::move(arguments);
    return invocation;
}

}  // namespace

TEST(CommandInvocation, IsNamedForTheProgramAndItsOnlyArgument) {
    EXPECT_EQ(gitWith({"status"}).displayName(), "git status");
    EXPECT_EQ(gitWith({}).displayName(), "git");
}

TEST(CommandInvocation, ShowsNoArgumentPastTheThird) {
    EXPECT_EQ(gitWith({"worktree", "list", "--porcelain", "-z"}).displayName(),
              "git worktree list --porcelain");
    EXPECT_EQ(gitWith({"a", "b", "c", "/secret/path", "e"}).displayName(), "git a b c");
    EXPECT_EQ(gitWith({"a", "b", "c"}).displayName(), "git a b c");
}

TEST(CommandResult, SucceedsWithStatusZeroOnly) {
    EXPECT_TRUE((CommandResult{0, "", "warning"}).succeeded());
    EXPECT_FALSE((CommandResult{1, "output", ""}).succeeded());
    EXPECT_FALSE((CommandResult{-1, "", ""}).succeeded());
}

TEST(CommandResult, GivesItsOutputAsRepairedText) {
    const CommandResult result{0, " \nname\xFF \n", ""};
    EXPECT_EQ(result.outputString(), " \nname\uFFFD \n");
    EXPECT_EQ(result.trimmedOutput(), "name\uFFFD");
}

TEST(CommandResult, TrimsBlankOutputToNothing) {
    EXPECT_EQ((CommandResult{0, " \t\r\n\n", ""}).trimmedOutput(), "");
}
