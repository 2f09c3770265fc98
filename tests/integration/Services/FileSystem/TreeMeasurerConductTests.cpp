// How a walk behaves: its threads, its end when it is stopped, other mounts, and trees that
// change under it.

#include "RealTree.h"
#include "Shared/Concurrency/Cancelled.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <atomic>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sched.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace cairnfield {
namespace {

/// A pool without threads: what is posted runs when the test says so. A walk asks for help in the middle of
/// its work, so this is also where a test gets in there.
class IdlePool final : public Executor {
public:
    explicit IdlePool(std::function<void()> onPost = nullptr) : onPost_(std::move(onPost)) {}
    void post(Work* work) override {
        works_.push_back(work);
        if (onPost_) onPost_();
    }
    [[nodiscard]] std::size_t size() const { return works_.size(); }
    void runAll() {
        for (Work* work : works_) runNow(work);
        works_.clear();
    }

private:
    std::function<void()> onPost_;
    std::vector<Work*> works_;
};

/// Of this thread. What a walk does after it was stopped shows here even while others keep the machine busy.
double processorSeconds() {
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

struct Conduct : testing::Test {
    TemporaryDirectory home;
    SystemWallClock clock;

    void makeWideLevels(int levels, int width) const {
        cairnfield::makeWideLevels(home.path(), levels, width, 1);
    }
    void makeFiles(int count) const {
        const OpenFolder folder(home.path());
        for (int i = 0; i < count; ++i) folder.write("file" + std::to_string(i), 0);
    }
};

TEST_F(Conduct, AHelperThatGetsNoThreadDoesNotHoldUpTheWalk) {
    makeWideLevels(2, 1500);
    IdlePool pool;
    LinuxTreeMeasurer measurer(pool, clock);
    EXPECT_EQ(totalsOf(measurer.measure(home.path(), {})), oracleTotals(home.path()));
    EXPECT_EQ(pool.size(), 1U);
    pool.runAll();  // finds the walk over
}

TEST_F(Conduct, ASmallTreeAsksForNoHelp) {
    makeFiles(500);
    IdlePool pool;
    LinuxTreeMeasurer measurer(pool, clock);
    EXPECT_EQ(measurer.measure(home.path(), {}).fileCount, 500);
    EXPECT_EQ(pool.size(), 0U);
}

TEST_F(Conduct, OneHugeDirectoryIsSharedBetweenTwoThreads) {
    makeFiles(6000);
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(totalsOf(Measuring()(home.path())), oracleTotals(home.path()));
}

TEST_F(Conduct, AWalkThatIsStoppedInTheMiddleEndsWithinFiftyMilliseconds) {
    makeWideLevels(2, 500);
    makeFiles(6000);
    for (int round = 0; round < 5; ++round) {
        std::stop_source source;
        double stopped = 0;
        IdlePool pool([&] {
            stopped = processorSeconds();
            source.request_stop();
        });
        LinuxTreeMeasurer measurer(pool, clock);
        EXPECT_THROW(static_cast<void>(measurer.measure(home.path(), source.get_token())), Cancelled);
        EXPECT_GT(stopped, 0);
        EXPECT_LT(processorSeconds() - stopped, 0.050);
        pool.runAll();
    }
}

TEST_F(Conduct, StoppingAWalkOfTwoThreadsAtAnyMomentLosesNothing) {
    makeWideLevels(3, 800);
    for (int round = 0; round < 40; ++round) {
        std::stop_source source;
        std::thread stopping([&source, round] {
            for (int i = 0; i < round * 500; ++i) std::this_thread::yield();
            source.request_stop();
        });
        try {
            EXPECT_EQ(Measuring()(home.path(), source.get_token()).fileCount, 0);
        } catch (const Cancelled&) {
            // The leak check of the address sanitizer tells whether everything was given back.
        }
        stopping.join();
    }
}

TEST_F(Conduct, ATreeThatChangesUnderTheWalkNeitherFailsNorHangsIt) {
    makeWideLevels(1, 1500);
    std::atomic<bool> done = false;
    std::thread changing([&] {
        for (int i = 0; !done; i = (i + 1) % 1500) {
            const std::string path = home.path().bytes() + "/s" + std::to_string(i);
            std::error_code ignored;
            std::filesystem::remove(path, ignored);
            std::filesystem::create_directories(path + "/inner/deep", ignored);
            std::filesystem::rename(path + "/inner", path + "/renamed", ignored);
            std::filesystem::remove_all(path + "/renamed", ignored);
            if (i % 3 == 0) {
                std::filesystem::remove_all(path, ignored);
                std::filesystem::create_symlink("/", path, ignored);
            }
        }
    });
    for (int round = 0; round < 20; ++round) {
        const DirectoryScanResult result = Measuring()(home.path());
        EXPECT_TRUE(result.permissionErrorPaths.empty());
        EXPECT_LT(result.fileCount, 10000) << "a link was followed";
    }
    done = true;
    changing.join();
}

/// A mount namespace of the child's own; false when the test may not have one.
bool enterOwnNamespace() {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

TEST_F(Conduct, WhatIsMountedInsideTheTreeIsNotCounted) {
    const FilePath mountPoint = home.makeDirectory("root/mnt");
    const FilePath bound = home.write("root/bound", "covered");
    home.write("root/own/file", std::string(5000, 'x'));
    const FilePath root = home.path().appending("root");
    const std::string answer = inChild([&]() -> std::string {
        if (!enterOwnNamespace() || mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=8m") != 0)
            return "not allowed";
        OpenFolder(mountPoint).write("inside", 100000);
        OpenFolder(mountPoint).makeFolder("deeper").write("inside", 100000);
        if (mount(mountPoint.appending("inside").c_str(), bound.c_str(), nullptr, MS_BIND, nullptr) != 0)
            return "not allowed";
        const DirectoryScanResult result = Measuring()(root);
        std::string text = totalsOf(result) == oracleTotals(root) ? "same" : "differs";
        text += " " + std::to_string(result.fileCount);
        for (const ChildSize& child : result.largestChildren) text += " " + child.url.lastComponent();
        return text;
    });
    if (answer == "not allowed") GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(answer, "same 1 own");
}

}  // namespace
}  // namespace cairnfield
