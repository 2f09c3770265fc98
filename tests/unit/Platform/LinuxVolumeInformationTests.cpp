#include "Platform/Linux/LinuxVolumeInformation.h"
#include "support/SmallDisk.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/sysmacros.h>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

struct statvfs capacityOf(const FilePath& path) {
    struct statvfs capacity{};
    EXPECT_EQ(statvfs(path.c_str(), &capacity), 0);
    return capacity;
}

dev_t deviceOf(const FilePath& path) {
    struct stat status{};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_dev;
}

TEST(VolumeInformation, TellsWhatTheFileSystemTells) {
    const TemporaryDirectory home;
    const struct statvfs capacity = capacityOf(home.path());
    const VolumeFacts facts = LinuxVolumeInformation(FilePath("/none"), FilePath("/none")).facts(home.path());
    EXPECT_EQ(facts.totalCapacity, std::int64_t(capacity.f_blocks * capacity.f_frsize));
    ASSERT_TRUE(facts.availableCapacity);
    EXPECT_LE(*facts.availableCapacity, *facts.totalCapacity);
    // Others write to this disk too; what is reserved for the superuser is not counted in any case.
    EXPECT_NEAR(double(*facts.availableCapacity), double(capacity.f_bavail * capacity.f_frsize), 4e9);
    EXPECT_EQ(facts.availableCapacityForImportantUsage, std::nullopt);
    EXPECT_EQ(facts.name, std::nullopt);
}

TEST(VolumeInformation, FindsTheTopOfTheVolume) {
    const TemporaryDirectory home;
    const FilePath inside = home.makeDirectory("a/b/c");
    const FilePath root = *LinuxVolumeInformation().facts(inside).root;
    EXPECT_TRUE(inside.bytes().starts_with(root.bytes()));
    EXPECT_EQ(deviceOf(root), deviceOf(inside));
    if (root != FilePath("/")) EXPECT_NE(deviceOf(root.parent()), deviceOf(root));
    EXPECT_EQ(LinuxVolumeInformation().facts(FilePath("/")).root, FilePath("/"));
    EXPECT_EQ(LinuxVolumeInformation().facts(FilePath("/proc/self")).root, FilePath("/proc"));
}

TEST(VolumeInformation, FollowsLinksToTheVolume) {
    const TemporaryDirectory home;
    fs::create_directory_symlink("/proc/self", (home / "link").bytes());
    EXPECT_EQ(LinuxVolumeInformation().facts(home / "link").root, FilePath("/proc"));
}

TEST(VolumeInformation, GivesNoCapacityWhereThereIsNoStorage) {
    const VolumeFacts facts = LinuxVolumeInformation().facts(FilePath("/proc"));
    EXPECT_EQ(facts.totalCapacity, std::nullopt);
    EXPECT_EQ(facts.availableCapacity, std::nullopt);
}

TEST(VolumeInformation, FailsForWhatIsNotThere) {
    const TemporaryDirectory home;
    try {
        (void)LinuxVolumeInformation().facts(home / "gone");
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& failure) {
        EXPECT_EQ(failure.code(), std::errc::no_such_file_or_directory);
    }
}

TEST(VolumeInformation, SeesASmallVolumeFill) {
    const auto outcome = onSmallDisk(1'048'576, [](const FilePath& disk) -> std::string {
        const LinuxVolumeInformation volumes;
        const VolumeFacts before = volumes.facts(disk);
        fillDisk(disk);
        const VolumeFacts after = volumes.facts(disk.appending("filler"));
        return std::to_string(before.totalCapacity.value_or(-1)) + " " +
               std::to_string(before.availableCapacity.value_or(-1)) + " " +
               std::to_string(after.availableCapacity.value_or(-1)) +
               (after.root == disk ? " same" : " other");
    });
    if (!outcome) GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(*outcome, "1048576 1048576 0 same");
}

TEST(VolumeLabel, IsTheNameOfTheLinkToTheDevice) {
    const TemporaryDirectory home;
    home.makeDirectory("labels");
    fs::create_symlink("/dev/null", (home / "labels/My\\x20Disk\\x2f2").bytes());
    fs::create_symlink("/dev/zero", (home / "labels/other").bytes());
    fs::create_symlink("/dev/gone", (home / "labels/stale").bytes());
    home.write("labels/no device");
    const FilePath labels = home / "labels";
    EXPECT_EQ(labelOfDevice(makedev(1, 3), labels), "My Disk/2");
    EXPECT_EQ(labelOfDevice(makedev(1, 5), labels), "other");
    EXPECT_EQ(labelOfDevice(makedev(7, 99), labels), std::nullopt);
    EXPECT_EQ(labelOfDevice(makedev(1, 3), home / "none"), std::nullopt);
}

TEST(VolumeLabel, IsFoundThroughTheTableOfMounts) {
    // The file system of /proc has a made-up device number, as one that spans devices has.
    const TemporaryDirectory home;
    home.makeDirectory("labels");
    fs::create_symlink("/dev/null", (home / "labels/Pool").bytes());
    const auto nameWith = [&](std::string_view table) {
        return LinuxVolumeInformation(home / "labels", home.write("mountinfo", table))
            .facts(FilePath("/proc/self"))
            .name;
    };
    EXPECT_EQ(nameWith("9 1 0:5 / /proc rw - btrfs /dev/null rw\n"), "Pool");
    EXPECT_EQ(nameWith("9 1 0:5 / /proc rw - proc proc rw\n"), std::nullopt) << "no device at all";
    EXPECT_EQ(nameWith("9 1 0:5 / /elsewhere rw - btrfs /dev/null rw\n"), std::nullopt);
    EXPECT_EQ(nameWith("9 1 0:5 / /proc rw - btrfs /dev/zero rw\n"), std::nullopt) << "without a label";
}

TEST(VolumeLabel, IsAllThatIsMissingWithoutAReadableTableOfMounts) {
    const TemporaryDirectory home;
    for (const FilePath& table : {home.makeDirectory("a directory"), home / "nothing"}) {
        const VolumeFacts facts = LinuxVolumeInformation(home.path(), table).facts(FilePath("/proc/self"));
        EXPECT_EQ(facts.root, FilePath("/proc")) << table.display();
        EXPECT_EQ(facts.name, std::nullopt) << table.display();
    }
    EXPECT_THROW((void)LinuxVolumeInformation(home.path(), home / "a directory").mountPoints(),
                 std::system_error);
}

TEST(VolumeLabel, IsDecoded) {
    EXPECT_EQ(decodedLabel("plain"), "plain");
    EXPECT_EQ(decodedLabel("a\\x20b\\x5cc"), "a b\\c");
    EXPECT_EQ(decodedLabel("\\xc3\\xa4\\xC3\\xA4"), "\xc3\xa4\xc3\xa4");
    EXPECT_EQ(decodedLabel("\\x2"), "\\x2");
    EXPECT_EQ(decodedLabel("\\x"), "\\x");
    EXPECT_EQ(decodedLabel("\\xzz\\x41"), "\\xzzA");
    EXPECT_EQ(decodedLabel(""), "");
}

TEST(LinuxVolumeInformation, KnowsTheRootOfThisMachine) {
    const std::vector<FilePath> points = LinuxVolumeInformation().mountPoints();
    EXPECT_NE(std::ranges::find(points, FilePath("/")), points.end());
}

TEST(LinuxVolumeInformation, FailsWithoutATableOfMounts) {
    const TemporaryDirectory home;
    const LinuxVolumeInformation volumes(FilePath("/nowhere"), home.path().appending("missing"));
    EXPECT_THROW((void)volumes.mountPoints(), std::system_error);
}

}  // namespace
}  // namespace cairnfield
