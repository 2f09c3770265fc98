#include "Platform/Linux/Automounts.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr std::string_view mountinfo =
    "22 27 0:20 / /proc rw,nosuid shared:14 - proc proc rw\n"
    "34 22 0:30 / /proc/sys/fs/binfmt_misc rw,relatime shared:16 - autofs systemd-1 rw,fd=29\n"
    "40 27 0:31 / /home/me/net\\040work rw,relatime - autofs /etc/auto.net rw\n"
    "41 27 254:1 / /data rw,relatime shared:1 master:2 - ext4 /dev/vdb rw\n";

TEST(Automounts, FindsAnAutomountPointAtOrBelowADirectory) {
    EXPECT_TRUE(hasAutomountBelow(mountinfo, FilePath("/home/me")));
    EXPECT_TRUE(hasAutomountBelow(mountinfo, FilePath("/home/me/net work")));
    EXPECT_TRUE(hasAutomountBelow(mountinfo, FilePath("/")));
    EXPECT_TRUE(hasAutomountBelow(mountinfo, FilePath("/proc/sys")));
}

TEST(Automounts, OtherMountsAndOtherPlacesAreNone) {
    EXPECT_FALSE(hasAutomountBelow(mountinfo, FilePath("/data")));
    EXPECT_FALSE(hasAutomountBelow(mountinfo, FilePath("/home/m")));
    EXPECT_FALSE(hasAutomountBelow(mountinfo, FilePath("/home/me/net work/inside")));
    EXPECT_FALSE(hasAutomountBelow("", FilePath("/")));
    EXPECT_FALSE(hasAutomountBelow("autofs is a word\n - autofs ", FilePath("/")));
}

}  // namespace
}  // namespace cairnfield
