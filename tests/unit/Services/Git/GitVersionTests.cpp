#include "Services/Git/GitVersion.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

std::optional<std::string> reason(std::string_view answer) {
    return GitVersion::whyTooOld(answer, FilePath("/usr/bin/git"));
}

TEST(GitVersion, IsNamedWhenItIsTooOld) {
    EXPECT_EQ(reason("git version 2.35.8"),
              "The git at /usr/bin/git is version 2.35, which is too old. Cairnfield needs 2.36 or newer.");
    for (const char* old : {"git version 2.9", "git version 1.99.0", "git version 2.30.2 (Apple Git-154)"})
        EXPECT_NE(reason(old), std::nullopt) << old;
}

TEST(GitVersion, IsAcceptedFromTheFirstThatListsWorktreesInFull) {
    for (const char* recent : {"git version 2.36.0", "git version 2.36", "git version 2.39.GIT",
                               "git version 2.100.1.windows.1", "git version 3.0"})
        EXPECT_EQ(reason(recent), std::nullopt) << recent;
}

TEST(GitVersion, IsAcceptedWhenItIsNotUnderstood) {
    for (const char* odd : {"", "git version", "git version x.y", "git version 2", "2.30.2", "git version 2.",
                            "git version 99999999999999999999.1"})
        EXPECT_EQ(reason(odd), std::nullopt) << odd;
}

}  // namespace
}  // namespace cairnfield
