#include "Services/Process/SafeEnvironment.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace cairnfield {
namespace {

TEST(SafeEnvironment, TellsGitItsSettings) {
    const Environment safe = safeForGit({{"HOME", "/home/robin"}});
    EXPECT_EQ(safe.at("HOME"), "/home/robin");
    EXPECT_EQ(safe.at("GIT_CONFIG_COUNT"), "6");
    EXPECT_EQ(safe.at("GIT_CONFIG_KEY_0"), "status.showUntrackedFiles");
    EXPECT_EQ(safe.at("GIT_CONFIG_VALUE_0"), "all");
    EXPECT_EQ(safe.at("GIT_CONFIG_KEY_5"), "protocol.ext.allow");
    EXPECT_EQ(safe.at("GIT_CONFIG_VALUE_5"), "never");
}

TEST(SafeEnvironment, KeepsTheSettingsThatAreThereInFrontOfItsOwn) {
    const Environment safe = safeForGit(
        {{"GIT_CONFIG_COUNT", "1"}, {"GIT_CONFIG_KEY_0", "core.fsmonitor"}, {"GIT_CONFIG_VALUE_0", "true"}});
    EXPECT_EQ(safe.at("GIT_CONFIG_COUNT"), "7");
    EXPECT_EQ(safe.at("GIT_CONFIG_VALUE_0"), "true");
    EXPECT_EQ(safe.at("GIT_CONFIG_KEY_1"), "status.showUntrackedFiles");
    EXPECT_EQ(safe.at("GIT_CONFIG_KEY_2"), "core.fsmonitor");
    EXPECT_EQ(safe.at("GIT_CONFIG_VALUE_2"), "false");
}

TEST(SafeEnvironment, TakesANumberThatIsNoneForNothing) {
    for (const char* count : {"", "x", "-1", "3x", "4294967295"})
        EXPECT_EQ(safeForGit({{"GIT_CONFIG_COUNT", count}}).at("GIT_CONFIG_COUNT"), "6") << count;
}

TEST(SafeEnvironment, LeavesNothingThatLeadsGitElsewhere) {
    for (const char* name :
         {"GIT_DIR", "GIT_COMMON_DIR", "GIT_OBJECT_DIRECTORY", "GIT_NAMESPACE", "GIT_LITERAL_PATHSPECS",
          "GIT_ICASE_PATHSPECS", "GIT_ATTR_SOURCE", "GIT_CONFIG_PARAMETERS"})
        EXPECT_FALSE(safeForGit({{name, "1"}}).contains(name)) << name;
}

TEST(SafeEnvironment, HasGitFetchNoMissingObjectsInPassing) {
    EXPECT_EQ(safeForGit({{"GIT_NO_LAZY_FETCH", "0"}}).at("GIT_NO_LAZY_FETCH"), "1");
}

TEST(SafeEnvironment, LooksForProgramsAndLibrariesInAbsolutePlacesOnly) {
    const std::map<std::string, std::string> lists{{"/usr/bin:/bin", "/usr/bin:/bin"},
                                                   {"./node_modules/.bin:/usr/bin", "/usr/bin"},
                                                   {"/usr/bin:", "/usr/bin"},
                                                   {":/usr/bin", "/usr/bin"},
                                                   {"/a::/b", "/a:/b"},
                                                   {"/a:.:bin:/b", "/a:/b"}};
    for (const char* name : {"PATH", "LD_LIBRARY_PATH"}) {
        for (const auto& [before, after] : lists)
            EXPECT_EQ(safeForGit({{name, before}}).at(name), after) << name << " " << before;
        for (const char* nothing : {"", ".", ":", "::", "bin"})
            EXPECT_FALSE(safeForGit({{name, nothing}}).contains(name)) << name << " " << nothing;
        EXPECT_FALSE(safeForGit({}).contains(name));
    }
}

}  // namespace
}  // namespace cairnfield
