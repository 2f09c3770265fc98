// Roots that move, go and come back.

#include "EventStage.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>

using namespace cairnfield;
namespace fs = std::filesystem;

namespace {

class RootEvents : public testing::Test {
protected:
    void watch(const std::vector<FilePath>& roots) {
        stage.watch(roots);
        ASSERT_TRUE(stage.watchesExactly(roots));
        stage.told.forget();
    }
    static void rename(const FilePath& from, const FilePath& to) { fs::rename(from.bytes(), to.bytes()); }
    void expectGone(const FilePath& root) {
        EXPECT_TRUE(stage.told.waitForPath(root));
        EXPECT_TRUE(eventually([] { return watchedDirectories().empty(); }));
        stage.told.forget();
    }
    void expectBack(const FilePath& root, const std::string& inner) {
        EXPECT_TRUE(stage.told.waitForPath(root));
        EXPECT_TRUE(stage.watchesExactly({root}));
        EXPECT_TRUE(stage.notices(root.appending(inner)));
    }

    TemporaryDirectory home;
    EventStage stage;
};

TEST_F(RootEvents, ARootMovedAwayIsReportedAndWatchedAgainWhenItComesBack) {
    const FilePath root = home.makeDirectory("root");
    home.makeDirectory("root/inner");
    watch({root});
    rename(root, home / "elsewhere");
    expectGone(root);
    rename(home / "elsewhere", root);
    expectBack(root, "inner");
}

TEST_F(RootEvents, ADeletedRootIsReportedAndWatchedAgainWhenItIsMadeAgain) {
    const FilePath root = home.makeDirectory("root");
    watch({root});
    for (int round = 0; round < 3; ++round) {
        fs::remove_all(root.bytes());
        expectGone(root);
        home.makeDirectory("root/again");
        expectBack(root, "again");
    }
}

TEST_F(RootEvents, ADeletedRootInWhichSomeoneStillSitsIsNoticedToo) {
    const FilePath root = home.makeDirectory("root");
    watch({root});
    const FileDescriptor sitting(open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    fs::remove(root.bytes());
    expectGone(root);
    home.makeDirectory("root/again");
    expectBack(root, "again");
}

TEST_F(RootEvents, ARenamedAncestorTakesTheRootWithItAndBringsItBack) {
    const FilePath root = home.makeDirectory("a/b/root");
    home.makeDirectory("a/b/root/inner");
    watch({root});
    rename(home / "a", home / "z");
    expectGone(root);
    home.makeDirectory("a/b");
    rename(home / "z/b/root", root);
    expectBack(root, "inner");
}

TEST_F(RootEvents, AMissingRootIsWatchedOnceItsWholeWayIsThere) {
    const FilePath root(home.path().appending("not/yet/there"));
    stage.watch({root});
    stage.told.forget();
    home.makeDirectory("other");
    home.makeDirectory("not");
    home.makeDirectory("not/yet");
    fs::create_directories(root.appending("inner").bytes());
    expectBack(root, "inner");
}

TEST_F(RootEvents, ARootReplacedByAnotherDirectoryIsWatchedAsThatOne) {
    const FilePath root = home.makeDirectory("root");
    home.makeDirectory("root/old");
    home.makeDirectory("next/new");
    watch({root});
    ASSERT_EQ(renameat2(AT_FDCWD, root.c_str(), AT_FDCWD, (home / "next").c_str(), RENAME_EXCHANGE), 0);
    expectBack(root, "new");
}

TEST_F(RootEvents, ARootThatIsALinkIsFollowedAlsoWhenItLeadsElsewhere) {
    home.makeDirectory("first/inner");
    home.makeDirectory("second/other");
    const FilePath root(home.path().appending("link"));
    fs::create_directory_symlink((home / "first").bytes(), root.bytes());
    watch({root});
    EXPECT_TRUE(stage.notices(home / "first/inner", root.appending("inner")));

    stage.told.forget();
    fs::create_directory_symlink((home / "second").bytes(), (home / "new").bytes());
    rename(home / "new", root);
    expectBack(root, "other");

    fs::remove(root.bytes());
    expectGone(root);
    fs::create_directory_symlink((home / "first").bytes(), root.bytes());
    expectBack(root, "inner");
}

TEST_F(RootEvents, ARootThatIsAFileIsReported) {
    const FilePath root = home.write("file", "content");
    stage.watch({root});
    ASSERT_TRUE(eventually([] { return watchedDirectories().size() == 1; }));
    std::ofstream(root.bytes(), std::ios::app) << "more";
    EXPECT_TRUE(stage.told.waitForPath(root));
    fs::remove(root.bytes());
    expectGone(root);
    home.write("file", "again");
    EXPECT_TRUE(stage.told.waitForPath(root));
}

TEST_F(RootEvents, RootsWithinRootsAndRootsGivenTwiceAreEachReportedUnderTheirOwnPath) {
    const FilePath outer = home.makeDirectory("outer");
    const FilePath inner = home.makeDirectory("outer/a/inner");
    home.makeDirectory("outer/a/inner/deep");
    const FilePath link(home.path().appending("link"));
    fs::create_directory_symlink(outer.bytes(), link.bytes());
    for (const auto& roots : {std::vector{outer, inner, link, inner}, std::vector{link, inner, outer}}) {
        watch(roots);
        EXPECT_TRUE(stage.notices(inner.appending("deep")));
        EXPECT_TRUE(stage.told.waitForPath(link.appending("a/inner/deep")));
    }
    rename(home / "outer/a", home / "b");
    EXPECT_TRUE(stage.told.waitForPath(inner));
    EXPECT_TRUE(stage.told.waitForPath(outer));
    EXPECT_TRUE(stage.watchesExactly({outer}));
    stage.told.forget();
    rename(home / "b", home / "outer/a");
    EXPECT_TRUE(stage.told.waitForPath(inner));
    EXPECT_TRUE(stage.watchesExactly({outer}));
    EXPECT_TRUE(stage.notices(inner.appending("deep")));
}

TEST_F(RootEvents, OneRootThatIsMissingDoesNotKeepTheOthersFromBeingWatched) {
    const FilePath there = home.makeDirectory("there");
    const FilePath missing(home.path().appending("missing"));
    stage.watch({missing, there});
    EXPECT_TRUE(stage.watchesExactly({there}));
    EXPECT_TRUE(stage.notices(there));
    EXPECT_FALSE(stage.told.paths().contains(missing));
}

}  // namespace
