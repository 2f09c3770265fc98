#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Cleanup/PathsThatStay.h"
#include "Services/Cleanup/TreeLook.h"
#include "support/SmallDisk.h"
#include "support/TemporaryDirectory.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/mount.h>

#include <algorithm>
#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

/// A tree that belongs to the user without rights, as that user sees it.
class TreeOfAUserWithoutRights : public testing::Test {
protected:
    TreeOfAUserWithoutRights() {
        fs::permissions(home.path().bytes(), fs::perms(0777));
        home.write("tree/folder/file.txt");
        fs::permissions(tree.bytes(), fs::perms(0777));
        fs::permissions(folder.bytes(), fs::perms(0777));
    }
    std::string look() const {
        const TreeLookQuestion question{tree, {}, {}};
        return asUnprivilegedUser([&question] { return lookAtTree(question).objection.value_or("nothing"); });
    }

    TemporaryDirectory home;
    const FilePath tree = home.path().appending("tree");
    const FilePath folder = tree.appending("folder");
};

TEST_F(TreeOfAUserWithoutRights, MayGoWhenEveryFolderCanBeEmptied) {
    EXPECT_EQ(look(), "nothing");
}

TEST_F(TreeOfAUserWithoutRights, StaysForAFolderThatCannotBeEmptied) {
    fs::permissions(folder.bytes(), fs::perms(0555));
    EXPECT_EQ(look(), "folder cannot be emptied.");
}

TEST_F(TreeOfAUserWithoutRights, GoesWithAnEmptyFolderThatCannotBeWritten) {
    fs::remove(folder.appending("file.txt").bytes());
    fs::permissions(folder.bytes(), fs::perms(0555));
    EXPECT_EQ(look(), "nothing");
}

TEST_F(TreeOfAUserWithoutRights, StaysForAFolderThatCannotBeLookedInto) {
    fs::permissions(folder.bytes(), fs::perms(0000));
    EXPECT_EQ(look(), "folder cannot be looked into.");
}

TEST_F(TreeOfAUserWithoutRights, StaysWhenItsOwnFolderCannotBeDeleted) {
    fs::permissions(home.path().bytes(), fs::perms(0755));
    EXPECT_EQ(look(), "Its folder cannot be deleted.");
}

TEST_F(TreeOfAUserWithoutRights, StaysForWhatTheStickyBitKeeps) {
    if (geteuid() != 0) GTEST_SKIP() << "needs files of two users";
    fs::permissions(folder.bytes(), fs::perms(01777));
    EXPECT_EQ(look(), "folder/file.txt cannot be deleted.");
}

TEST(TreeLook, RefusesAnotherFileSystemInside) {
    const auto look = [](const FilePath& disk) -> std::string {
        const FilePath inner = disk.appending("tree/inner");
        fs::create_directories(inner.bytes());
        if (mount("tmpfs", inner.c_str(), "tmpfs", 0, nullptr) != 0) return "could not mount";
        const std::vector<FilePath> points = LinuxVolumeInformation().mountPoints();
        if (std::ranges::find(points, inner) == points.end()) return "not in the table";
        return lookAtTree({disk.appending("tree"), {}, {}}).objection.value_or("nothing");
    };
    const std::optional<std::string> seen = onSmallDisk(1 << 20, look);
    if (!seen) GTEST_SKIP() << "nothing may be mounted here";
    EXPECT_EQ(*seen, "Another file system begins inside it: inner.");
}

TEST(PlaceOfARemote, IsAPathOnThisDiskOrNothing) {
    const FilePath worktree("/w");
    EXPECT_EQ(placeOfRemote("/srv/hub.git", worktree), FilePath("/srv/hub.git"));
    EXPECT_EQ(placeOfRemote("file:///srv/a%20b", worktree), FilePath("/srv/a b"));
    EXPECT_EQ(placeOfRemote("file://localhost/srv/hub", worktree), FilePath("/srv/hub"));
    EXPECT_EQ(placeOfRemote("../hub.git", worktree), FilePath("/w/../hub.git"));
    EXPECT_EQ(placeOfRemote("./odd:name", worktree), FilePath("/w/./odd:name"));
    for (const char* elsewhere :
         {"", "https://code.example/a", "git@code.example:a/b.git", "ssh://code.example/a"})
        EXPECT_EQ(placeOfRemote(elsewhere, worktree), std::nullopt) << elsewhere;
}

}  // namespace
}  // namespace cairnfield
