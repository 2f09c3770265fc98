// Trees that change while they are watched. After each scenario the watches are compared with the whole tree.

#include "EventStage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

using namespace cairnfield;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

class TreeEvents : public testing::Test {
protected:
    FilePath at(const std::string& relative) const { return root.appending(relative); }
    void make(const std::string& relative) const { fs::create_directories(at(relative).bytes()); }
    void rename(const std::string& from, const std::string& to) const {
        fs::rename(at(from).bytes(), at(to).bytes());
    }
    void watch() {
        stage.watch({root});
        ASSERT_TRUE(stage.watchesExactly({root}));
    }

    TemporaryDirectory home;
    const FilePath root = home.makeDirectory("root");
    const FilePath outside = home.makeDirectory("outside");
    EventStage stage;
};

TEST_F(TreeEvents, ReportsTheDirectoryInWhichAFileAppearsChangesAndGoes) {
    make("a/b");
    watch();
    const std::string file = at("a/b/file").bytes();
    std::ofstream(file) << "x";
    EXPECT_TRUE(stage.told.waitForPath(at("a/b")));
    stage.told.forget();
    std::ofstream(file, std::ios::app) << "more";
    EXPECT_TRUE(stage.told.waitForPath(at("a/b")));
    stage.told.forget();
    fs::permissions(file, fs::perms::owner_read);
    EXPECT_TRUE(stage.told.waitForPath(at("a/b")));
    stage.told.forget();
    fs::remove(file);
    EXPECT_TRUE(stage.told.waitForPath(at("a/b")));
}

TEST_F(TreeEvents, ADirectoryIsReportedWithWhatWasInItBeforeItsWatch) {
    watch();
    fs::create_directories(outside.appending("new/deep").bytes());
    std::ofstream(outside.appending("new/deep/file").bytes()) << "x";
    fs::rename(outside.appending("new").bytes(), at("new").bytes());
    EXPECT_TRUE(stage.told.waitForPath(root));
    EXPECT_TRUE(stage.told.waitForPath(at("new")));
    EXPECT_TRUE(stage.told.waitForPath(at("new/deep")));
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at("new/deep")));
}

TEST_F(TreeEvents, KeepsUpWithDirectoriesMadeOneInAnother) {
    watch();
    std::string path = "0";
    for (int depth = 1; depth < 60; ++depth) path += "/" + std::to_string(depth);
    make(path);
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at(path)));
}

TEST_F(TreeEvents, ARenamedSubtreeStaysWatchedUnderItsNewName) {
    make("a/one/two");
    make("b");
    watch();
    const InodeNumbers before = watchedDirectories();
    rename("a", "b/renamed");
    EXPECT_TRUE(stage.told.waitForPath(root));
    EXPECT_TRUE(stage.told.waitForPath(at("b")));
    EXPECT_TRUE(stage.notices(at("b/renamed/one/two")));
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_EQ(watchedDirectories(), before);
}

TEST_F(TreeEvents, SubtreesThatChangePlacesKeepTheirWatches) {
    make("a/in-a");
    make("b/in-b");
    watch();
    ASSERT_EQ(renameat2(AT_FDCWD, at("a").c_str(), AT_FDCWD, at("b").c_str(), RENAME_EXCHANGE), 0);
    EXPECT_TRUE(stage.notices(at("b/in-a")));
    EXPECT_TRUE(stage.notices(at("a/in-b")));
    EXPECT_TRUE(stage.watchesExactly({root}));
}

TEST_F(TreeEvents, ASubtreeMovedAwayIsNotWatchedAnyMoreAndOneMovedInIs) {
    make("goes/deep");
    fs::create_directories(outside.appending("comes/deep").bytes());
    watch();
    fs::rename(at("goes").bytes(), outside.appending("gone").bytes());
    EXPECT_TRUE(stage.told.waitForPath(root));
    EXPECT_TRUE(stage.watchesExactly({root}));
    fs::rename(outside.appending("comes").bytes(), at("comes").bytes());
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at("comes/deep")));
}

TEST_F(TreeEvents, ADirectoryThatReplacesAnotherIsWatchedInItsPlace) {
    make("x/old");
    make("y/new/deep");
    watch();
    fs::remove_all(at("x").bytes());
    rename("y", "x");
    make("y/again");
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at("x/new/deep")));
    EXPECT_TRUE(stage.notices(at("y/again")));
}

TEST_F(TreeEvents, ADeletedSubtreeLeavesNothingBehind) {
    for (int i = 0; i < 300; ++i) make("d" + std::to_string(i % 10) + "/s" + std::to_string(i) + "/deep");
    watch();
    for (int i = 0; i < 10; ++i) fs::remove_all(at("d" + std::to_string(i)).bytes());
    EXPECT_TRUE(stage.told.waitForPath(root));
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_EQ(watchedDirectories().size(), 1u);
}

TEST_F(TreeEvents, LinksAreReportedAndNotFollowed) {
    fs::create_directories(outside.appending("inner").bytes());
    fs::create_directory_symlink(outside.bytes(), at("early").bytes());
    watch();
    EXPECT_FALSE(watchedDirectories().contains(*directoriesOf({outside}).begin()));
    fs::create_directory_symlink(outside.bytes(), at("late").bytes());
    EXPECT_TRUE(stage.told.waitForPath(root));
    make("directory/inner");
    ASSERT_TRUE(stage.watchesExactly({root}));
    fs::remove_all(at("directory").bytes());
    fs::create_directory_symlink(outside.bytes(), at("directory").bytes());
    EXPECT_TRUE(stage.watchesExactly({root}));
}

TEST_F(TreeEvents, NamesAreBytes) {
    const std::string name = "two\nlines \xff\xfe \\x20";
    watch();
    make(name + "/" + name);
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at(name + "/" + name)));
    rename(name, "plain");
    EXPECT_TRUE(stage.notices(at("plain/" + name)));
}

TEST_F(TreeEvents, ABurstOfFiftyThousandFilesIsOneDirectoryInFewBatches) {
    make("burst");
    watch();
    stage.stream.reset();
    stage.watch({root}, 200ms);
    ASSERT_TRUE(stage.watchesExactly({root}));
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 50'000; ++i) {
        const int file = open(at("burst/" + std::to_string(i)).c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        ASSERT_GE(file, 0);
        close(file);
    }
    ASSERT_TRUE(stage.notices(root));
    const auto spent = std::chrono::steady_clock::now() - start;
    EXPECT_TRUE(stage.told.waitForPath(root));
    std::set<FilePath> all;
    const auto batches = stage.told.batches();
    for (const auto& batch : batches) all.insert(batch.begin(), batch.end());
    EXPECT_THAT(all, testing::UnorderedElementsAre(root, at("burst")));
    EXPECT_LE(static_cast<long>(batches.size()), spent / 200ms + 3);
}

TEST_F(TreeEvents, ABurstOfDirectoriesIsWatchedToTheLast) {
    watch();
    for (int i = 0; i < 3'000; ++i) ASSERT_EQ(mkdir(at("d" + std::to_string(i)).c_str(), 0700), 0);
    EXPECT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(at("d2999")));
}

/// Random changes, made while the watches are kept up, end in watches that are true to the tree.
TEST_F(TreeEvents, StaysTrueToATreeThatChangesAtRandom) {
    watch();
    std::mt19937 random(static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed()));
    const auto pick = [&] {
        std::string path;
        for (unsigned depth = 1 + random() % 4; depth > 0; --depth)
            path += (path.empty() ? "n" : "/n") + std::to_string(random() % 5);
        return path;
    };
    for (int round = 0; round < 15; ++round) {
        for (int step = 0; step < 400; ++step) {
            std::error_code ignored;
            const std::string one = at(pick()).bytes();
            const std::string other = at(pick()).bytes();
            switch (random() % 8) {
                case 0:
                    fs::remove_all(one, ignored);
                    break;
                case 1:
                case 2:
                    fs::rename(one, other, ignored);
                    break;
                case 3:
                    static_cast<void>(
                        renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE));
                    break;
                case 4:
                    fs::rename(one, outside.appending("kept" + std::to_string(random() % 3)).bytes(),
                               ignored);
                    break;
                case 5:
                    fs::rename(outside.appending("kept" + std::to_string(random() % 3)).bytes(), other,
                               ignored);
                    break;
                default:
                    fs::create_directories(one, ignored);
            }
        }
        ASSERT_TRUE(stage.watchesExactly({root})) << "round " << round << ": " << watchedDirectories().size()
                                                  << " of " << directoriesOf({root}).size();
        make("last");
        ASSERT_TRUE(stage.notices(at("last")));
        for (const auto& entry : fs::recursive_directory_iterator(root.bytes())) {
            if (!entry.is_directory() || random() % 20 != 0) continue;
            ASSERT_TRUE(stage.notices(FilePath(entry.path().native())));
        }
    }
}

}  // namespace
