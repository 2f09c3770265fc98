#include "Platform/Linux/MountTable.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr std::string_view table =
    "22 1 0:20 / / rw,relatime shared:1 - overlay overlay rw,lowerdir=/l\n"
    "40 22 0:33 /@home /home rw shared:12 master:3 - btrfs /dev/mapper/vg-home rw,subvol=/@home\n"
    "41 22 8:2 / /mnt/my\\040disk rw - ext4 /dev/disk\\134two rw\n"
    "42 22 0:40 / /run/user rw - tmpfs tmpfs rw\n"
    "43 22 0:41 / /run/user rw - tmpfs second rw\n"
    "44 22 0:42 / /short -\n"
    "garbage\n";

TEST(MountTable, NamesWhatIsMountedAtADirectory) {
    EXPECT_EQ(sourceOfMount(table, FilePath("/")), FilePath("overlay"));
    EXPECT_EQ(sourceOfMount(table, FilePath("/home")), FilePath("/dev/mapper/vg-home"));
    EXPECT_EQ(sourceOfMount(table, FilePath("/mnt/my disk")), FilePath("/dev/disk\\two"));
    EXPECT_EQ(sourceOfMount(table, FilePath("/run/user")), FilePath("second")) << "the topmost one";
}

TEST(MountTable, NamesNothingElsewhere) {
    EXPECT_EQ(sourceOfMount(table, FilePath("/home/ada")), std::nullopt);
    EXPECT_EQ(sourceOfMount(table, FilePath("/mnt/my\\040disk")), std::nullopt);
    EXPECT_EQ(sourceOfMount(table, FilePath("/short")), std::nullopt);
    EXPECT_EQ(sourceOfMount("", FilePath("/")), std::nullopt);
}

TEST(MountTable, ReadsMountPointsWithOddNames) {
    EXPECT_EQ(
        mountPointsIn("22 1 8:1 / / rw - ext4 /dev/sda1 rw\n"
                      "40 22 0:5 / /mnt/a\\040b\\134c rw,nosuid shared:1 - tmpfs tmpfs rw\nshort line\n"),
        (std::vector{FilePath("/"), FilePath("/mnt/a b\\c")}));
}

TEST(MountTable, ReadsEscapedFields) {
    EXPECT_EQ(unescapedMountField("a\\040b\\011c\\134d"), "a b\tc\\d");
    EXPECT_EQ(unescapedMountField("\\04"), "\\04");
    EXPECT_EQ(unescapedMountField("\\089"), "\\089");
}

}  // namespace
}  // namespace cairnfield
