#include "Platform/Linux/BaseDirectories.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

BaseDirectories from(const Environment& environment) {
    return BaseDirectories::from(environment, FilePath("/home/account"));
}

TEST(BaseDirectories, AreTheDefaultsInTheHome) {
    const BaseDirectories directories = from({{"HOME", "/home/a"}});
    EXPECT_EQ(directories.home, FilePath("/home/a"));
    EXPECT_EQ(directories.dataHome, FilePath("/home/a/.local/share"));
    EXPECT_EQ(directories.configHome, FilePath("/home/a/.config"));
}

TEST(BaseDirectories, AreWhatTheEnvironmentSays) {
    const BaseDirectories directories =
        from({{"HOME", "/home/a"}, {"XDG_DATA_HOME", "/data//x/"}, {"XDG_CONFIG_HOME", "/config"}});
    EXPECT_EQ(directories.dataHome, FilePath("/data/x"));
    EXPECT_EQ(directories.configHome, FilePath("/config"));
}

TEST(BaseDirectories, IgnoreRelativeAndEmptyValues) {
    const BaseDirectories directories =
        from({{"HOME", "/home/a"}, {"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", ""}});
    EXPECT_EQ(directories.dataHome, FilePath("/home/a/.local/share"));
    EXPECT_EQ(directories.configHome, FilePath("/home/a/.config"));
}

TEST(BaseDirectories, FallBackToTheHomeOfTheAccount) {
    EXPECT_EQ(from({}).dataHome, FilePath("/home/account/.local/share"));
    EXPECT_EQ(from({{"HOME", "relative"}}).home, FilePath("/home/account"));
}

TEST(BaseDirectories, KeepBytesThatAreNoText) {
    EXPECT_EQ(from({{"XDG_DATA_HOME", "/d\xFF"}}).dataHome, FilePath("/d\xFF"));
}

}  // namespace
}  // namespace cairnfield
