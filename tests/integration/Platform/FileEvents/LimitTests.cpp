// What the system does not give, and events that it lost.

#include "EventStage.h"
#include "Shared/Logging/Log.h"
#include "support/CapturedLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <unistd.h>

using namespace cairnfield;
namespace fs = std::filesystem;

namespace {

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++found;
    return found;
}

class Limits : public testing::Test {
protected:
    void makeTree(int width) const {
        for (int i = 0; i < width; ++i)
            fs::create_directories(root.appending("d" + std::to_string(i) + "/deep").bytes());
    }

    TemporaryDirectory home;
    const FilePath root = home.makeDirectory("root");
};

TEST_F(Limits, WithoutWatchesForAllTheRootIsReportedThenAndWithEveryBatch) {
    makeTree(20);
    const CapturedLog log(Log::events());
    {
        EventStage stage({.watches = 10});
        stage.watch({root});
        EXPECT_TRUE(stage.told.waitForPath(root));
        ASSERT_TRUE(eventually([] { return watchedDirectories().size() == 10; }));
        EXPECT_TRUE(stage.notices(root));
        for (int i = 0; i < 20; ++i) {
            const FilePath deep = root.appending("d" + std::to_string(i) + "/deep");
            EXPECT_FALSE(watchedDirectories().contains(*directoriesOf({deep}).begin()));
        }
        stage.told.forget();
        fs::create_directories(root.appending("late").bytes());
        EXPECT_TRUE(stage.told.waitForPath(root));
    }
    EXPECT_EQ(count(log.text(), "No more watches after 10 directories"), 1u) << log.text();
}

TEST_F(Limits, ABatchOfAnotherDirectoryNamesTheRootThatIsNotWholeToo) {
    makeTree(20);
    const FilePath small = home.makeDirectory("small");
    EventStage stage({.watches = 12});
    stage.watch({small, root});
    EXPECT_TRUE(stage.told.waitForPath(root));
    ASSERT_TRUE(eventually([] { return watchedDirectories().size() == 12; }));
    EXPECT_TRUE(stage.notices(small));
    EXPECT_TRUE(stage.told.paths().contains(root));
}

TEST_F(Limits, DirectoriesLeftOverAreWatchedOnceOthersGo) {
    makeTree(20);
    EventStage stage({.watches = 30});
    stage.watch({root});
    ASSERT_TRUE(eventually([] { return watchedDirectories().size() == 30; }));
    for (int i = 0; i < 8; ++i) fs::remove_all(root.appending("d" + std::to_string(i)).bytes());
    EXPECT_TRUE(stage.watchesExactly({root}));
    for (int i = 8; i < 20; ++i)
        EXPECT_TRUE(stage.notices(root.appending("d" + std::to_string(i) + "/deep")));
    // Whole again, the root is no longer part of what it is not about.
    ASSERT_TRUE(eventually([&] {
        static_cast<void>(stage.notices(root.appending("d9")));
        return !stage.told.paths().contains(root);
    }));
}

TEST_F(Limits, ADirectoryMovesOnWithItsWatchAlsoWhenThereAreNoMore) {
    makeTree(4);
    EventStage stage({.watches = 9});
    stage.watch({root});
    ASSERT_TRUE(stage.watchesExactly({root}));
    fs::rename(root.appending("d0").bytes(), root.appending("d1/moved").bytes());
    EXPECT_TRUE(stage.notices(root.appending("d1/moved/deep")));
    EXPECT_TRUE(stage.watchesExactly({root}));
}

/// This process and what it starts may have only so many watches. False when it may not limit itself.
bool limitWatches(int watches) {
    if (unshare(CLONE_NEWUSER) != 0) return false;
    std::ofstream limit("/proc/sys/user/max_inotify_watches");
    return static_cast<bool>(limit << watches << std::flush);
}

TEST_F(Limits, TheSystemsOwnLimitCountsToo) {
    makeTree(40);
    const std::string answer = inChild([&]() -> std::string {
        if (!limitWatches(30)) return "not allowed";
        EventStage stage;
        stage.watch({root});
        if (!stage.told.waitForPath(root)) return "not told";
        // Some of them are the ways to the root.
        if (!eventually([] { return watchedDirectories().size() >= 15; })) return "too few";
        if (watchedDirectories().size() >= 30) return "too many";
        if (!stage.notices(root)) return "not noticed";
        for (int i = 0; i < 35; ++i) fs::remove_all(root.appending("d" + std::to_string(i)).bytes());
        if (!stage.watchesExactly({root}))
            return "not watched later: " + std::to_string(watchedDirectories().size()) + " of " +
                   std::to_string(directoriesOf({root}).size());
        return stage.notices(root.appending("d39/deep")) ? "right" : "not noticed later";
    });
    if (answer == "not allowed") GTEST_SKIP() << "no user namespace of its own";
    EXPECT_EQ(answer, "right");
}

TEST_F(Limits, AfterAnOverflowTheRootsAreReportedAndTheWatchesTrueAgain) {
    makeTree(10);
    const FilePath other = home.makeDirectory("other");
    const CapturedLog log(Log::events());
    {
        EventStage stage;
        stage.watch({root, other});
        ASSERT_TRUE(stage.watchesExactly({root, other}));
        for (int round = 0; round < 2; ++round) {
            stage.told.forget();
            {
                const HeldThread held(stage.blocking);
                for (int i = 0; i < 17'000; ++i) {
                    const FilePath file = root.appending("f" + std::to_string(i));
                    close(open(file.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600));
                    fs::remove(file.bytes());
                }
                // Nothing of this is told any more.
                fs::remove_all(root.appending("d0").bytes());
                fs::rename(root.appending("d1").bytes(), root.appending("d2/moved").bytes());
                fs::create_directories(root.appending("d1/new/deep").bytes());
                fs::rename(root.appending("d3").bytes(), (home / "gone").bytes());
            }
            EXPECT_TRUE(stage.told.waitForPath(root));
            EXPECT_TRUE(stage.told.waitForPath(other));
            ASSERT_TRUE(stage.watchesExactly({root, other}));
            EXPECT_TRUE(stage.notices(root.appending("d2/moved/deep")));
            EXPECT_TRUE(stage.notices(root.appending("d1/new/deep")));
            fs::remove_all(root.appending("d2/moved").bytes());
            fs::remove_all(root.appending("d1/new").bytes());
            fs::rename((home / "gone").bytes(), root.appending("d3").bytes());
            fs::create_directories(root.appending("d1/deep").bytes());
            ASSERT_TRUE(stage.watchesExactly({root, other}));
        }
    }
    EXPECT_EQ(count(log.text(), "overflowed"), 1u) << log.text();
}

}  // namespace
