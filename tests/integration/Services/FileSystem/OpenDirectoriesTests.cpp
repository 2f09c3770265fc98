// The bookkeeping of open directories, driven as one walking thread drives it.

#include "Platform/Linux/OpenDirectories.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fcntl.h>
#include <filesystem>
#include <vector>

namespace cairnfield {
namespace {

struct OpenDirectoriesTest : testing::Test {
    TemporaryDirectory home;
    OpenDirectories directories;
    LargestChildren largest;
    std::vector<WalkedDirectory*> chain;

    static std::size_t openDescriptors() {
        std::size_t count = 0;
        for (int descriptor = 0; descriptor < 4096; ++descriptor)
            count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
        return count;
    }

    void begin() {
        FileDescriptor opened(open(home.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        struct stat standing = {};
        ASSERT_EQ(fstat(opened.get(), &standing), 0);
        chain.push_back(directories.addRoot(std::move(opened), standing));
    }
    /// One level down; the level above, which has more to be read, is let go of.
    void descend(const std::string& name) {
        WalkedDirectory& parent = *chain.back();
        auto* child = new WalkedDirectory(&parent, name);
        directories.found(parent, std::span<WalkedDirectory* const>(&child, 1));
        directories.unpin(&parent, 0, OpenDirectories::Listing::goesOn, largest);
        const OpenDirectories::Pinned pinned = directories.pin(parent, {});
        ASSERT_GE(pinned.descriptor, 0);
        OpenDirectories::Opened opened = directories.open(pinned.descriptor, name.c_str(), {});
        struct stat standing = {};
        ASSERT_TRUE(opened.descriptor);
        ASSERT_EQ(fstat(opened.descriptor.get(), &standing), 0);
        directories.entered(*child, std::move(opened.descriptor), standing);
        chain.push_back(child);
    }
    void descendTo(int depth) {
        std::string path = "d";
        for (int level = 1; level < depth; ++level) path += "/d";
        home.makeDirectory(path);
        begin();
        for (int level = 0; level < depth; ++level) descend("d");
        directories.unpin(chain.back(), 0, OpenDirectories::Listing::ended, largest);
        chain.pop_back();
    }
    void TearDown() override {
        for (; !chain.empty(); chain.pop_back()) directories.abandon(chain.back(), largest);
    }
};

TEST_F(OpenDirectoriesTest, NoMoreThanTheLimitAreOpenHoweverDeepTheWalkIs) {
    const std::size_t before = openDescriptors();
    descendTo(400);
    EXPECT_LE(openDescriptors() - before, OpenDirectories::descriptorLimit + 1);
    EXPECT_GT(openDescriptors() - before, 1U);
}

TEST_F(OpenDirectoriesTest, EveryDescriptorIsGivenBack) {
    const std::size_t before = openDescriptors();
    descendTo(400);
    TearDown();
    EXPECT_EQ(openDescriptors(), before);
}

TEST_F(OpenDirectoriesTest, AClosedDirectoryIsOpenedAgainAndIsTheSame) {
    descendTo(400);
    for (const std::size_t depth : {5U, 100U, 250U}) {
        struct stat now = {};
        const OpenDirectories::Pinned pinned = directories.pin(*chain[depth], {});
        ASSERT_GE(pinned.descriptor, 0);
        ASSERT_EQ(fstat(pinned.descriptor, &now), 0);
        EXPECT_EQ(now.st_ino, chain[depth]->inode);
        directories.unpin(chain[depth], 0, OpenDirectories::Listing::goesOn, largest);
    }
}

TEST_F(OpenDirectoriesTest, AnotherDirectoryInThePlaceOfAClosedOneIsNotTakenForIt) {
    descendTo(400);
    ASSERT_LT(chain[5]->descriptor, 0);
    std::filesystem::rename(home.path().appending("d").bytes(), home.path().appending("moved").bytes());
    home.makeDirectory("d/d/d/d/d/d/d");
    const OpenDirectories::Pinned pinned = directories.pin(*chain[5], {});
    EXPECT_EQ(pinned.descriptor, -1);
    EXPECT_EQ(pinned.error, ENOENT);
    std::filesystem::remove_all(home.path().appending("d").bytes());
    std::filesystem::create_directory_symlink("moved", home.path().appending("d").bytes());
    const OpenDirectories::Pinned linked = directories.pin(*chain[5], {});
    EXPECT_EQ(linked.descriptor, -1) << "a link was followed";
}

TEST_F(OpenDirectoriesTest, AChildOfTheRootIsOfferedWithItsSumWhenTheLastBelowItHasEnded) {
    home.makeDirectory("a/b");
    begin();
    descend("a");
    descend("b");
    directories.unpin(chain[2], 1000, OpenDirectories::Listing::ended, largest);
    chain.pop_back();
    EXPECT_TRUE(largest.ranked().empty());
    const OpenDirectories::Pinned pinned = directories.pin(*chain[1], {});
    ASSERT_GE(pinned.descriptor, 0);
    struct stat a = {}, b = {};
    ASSERT_EQ(fstat(pinned.descriptor, &a), 0);
    ASSERT_EQ(stat(home.path().appending("a/b").c_str(), &b), 0);
    directories.unpin(chain[1], 500, OpenDirectories::Listing::ended, largest);
    chain.pop_back();
    ASSERT_EQ(largest.ranked().size(), 1U);
    EXPECT_EQ(largest.ranked()[0].bytes, 1500 + (a.st_blocks + b.st_blocks) * 512);
    EXPECT_TRUE(largest.ranked()[0].isDirectory);
}

}  // namespace
}  // namespace cairnfield
