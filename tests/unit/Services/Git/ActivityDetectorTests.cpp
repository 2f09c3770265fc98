#include "Services/Git/ActivityDetecting.h"
#include "support/SettableWallClock.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <fcntl.h>

namespace cairnfield {
namespace {

constexpr double window = 900;

/// A worktree whose root was touched a day ago, and the parts that a test ages as it likes.
class ActivityDetector : public testing::Test {
protected:
    ActivityDetector() { touched(".", 86'400); }

    /// Makes the item look as if it had been changed so many seconds before now; a directory ends with a
    /// slash.
    void changed(const std::string& item, double secondsAgo) {
        if (item.ends_with('/')) home.makeDirectory(item);
        if (!item.ends_with('/')) home.write(item);
        touched(item, secondsAgo);
        touched(".", 86'400);
    }

    void touched(const std::string& item, double secondsAgo) {
        const double time = 1'800'000'000 - secondsAgo;
        const double second = std::floor(time);
        const timespec at{static_cast<time_t>(second), static_cast<long>((time - second) * 1e9)};
        const timespec times[2] = {at, at};
        ASSERT_EQ(utimensat(AT_FDCWD, home.path().appending(item).c_str(), times, AT_SYMLINK_NOFOLLOW), 0)
            << item;
    }

    ActivitySignal signal(const FilePath& path) { return runBlocking(detector.activity(path, window)); }
    ActivitySignal signal() { return signal(home.path()); }

    TemporaryDirectory home;
    SettableWallClock clock{Date(std::chrono::seconds(1'800'000'000))};
    FileSystemActivityDetector detector{clock};
};

TEST_F(ActivityDetector, FindsNothingWhereNothingIs) {
    EXPECT_EQ(signal(home.path().appending("missing")), ActivitySignal());
}

TEST_F(ActivityDetector, CallsAWorktreeTouchedADayAgoIdleAndSaysWhen) {
    const ActivitySignal idle = signal();
    EXPECT_FALSE(idle.isActive);
    EXPECT_EQ(idle.lastActivity, clock.now() - std::chrono::hours(24));
    EXPECT_EQ(idle.reason, std::nullopt);
}

TEST_F(ActivityDetector, RaisesLessThanAMinuteToOne) {
    touched(".", 30);
    EXPECT_EQ(signal().reason, "Files changed about 1 minute ago.");
    EXPECT_TRUE(signal().isActive);
}

TEST_F(ActivityDetector, TellsWholeMinutes) {
    touched(".", 119);
    EXPECT_EQ(signal().reason, "Files changed about 1 minute ago.");
    touched(".", 150);
    EXPECT_EQ(signal().reason, "Files changed about 2 minutes ago.");
    touched(".", 899);
    EXPECT_EQ(signal().reason, "Files changed about 14 minutes ago.");
}

TEST_F(ActivityDetector, EndsExactlyAtTheWindow) {
    touched(".", window);
    EXPECT_FALSE(signal().isActive);
    touched(".", window - 0.25);
    EXPECT_TRUE(signal().isActive);
}

TEST_F(ActivityDetector, TakesAChangeInTheFutureForOneJustNow) {
    touched(".", -7'200);
    EXPECT_TRUE(signal().isActive);
    EXPECT_EQ(signal().reason, "Files changed about 1 minute ago.");
}

TEST_F(ActivityDetector, SurvivesDatesAtTheEndsOfTime) {
    touched(".", -9'000'000'000.0);
    EXPECT_EQ(signal().reason, "Files changed about 1 minute ago.");
    touched(".", 4'000'000'000.0);
    EXPECT_FALSE(signal().isActive);
}

TEST_F(ActivityDetector, LooksAtTheControlFilesToo) {
    for (const char* place : {".git/", ".git/index", ".git/HEAD"}) {
        changed(".git/", 86'400);
        changed(place, 60);
        if (std::string_view(place) != ".git/") touched(".git", 86'400);
        EXPECT_EQ(signal().lastActivity, clock.now() - std::chrono::seconds(60)) << place;
        touched(place, 86'400);
    }
}

TEST_F(ActivityDetector, TakesTheNewestOfThem) {
    changed(".git/index", 500);
    changed(".git/HEAD", 400);
    touched(".git", 600);
    EXPECT_EQ(signal().lastActivity, clock.now() - std::chrono::seconds(400));
}

TEST_F(ActivityDetector, ReadsALinkedWorktreeWhoseControlDirectoryIsAFile) {
    changed(".git", 300);
    EXPECT_EQ(signal().reason, "Files changed about 5 minutes ago.");
}

TEST_F(ActivityDetector, DoesNotSeeAChangeDeepInTheTree) {
    changed("src/", 86'400);
    changed("src/deep.txt", 10);
    touched("src", 86'400);
    EXPECT_FALSE(signal().isActive);
}

}  // namespace
}  // namespace cairnfield
