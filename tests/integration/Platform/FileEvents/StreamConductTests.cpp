// How a stream starts, waits and ends, whatever it watches.

#include "EventStage.h"
#include "support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/resource.h>

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <sched.h>
#include <system_error>
#include <thread>

using namespace cairnfield;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

/// A mount table of this process's own, which it may have only before it has threads.
bool enterOwnNamespace() {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

class StreamConduct : public testing::Test {
protected:
    /// What exists is older than a stream that begins now: the files' clock goes in steps.
    static void letTheTreeAge() {
        const auto begun = std::chrono::steady_clock::now();
        ASSERT_TRUE(eventually([&] { return std::chrono::steady_clock::now() - begun > 40ms; }));
    }

    TemporaryDirectory home;
    const FilePath root = home.makeDirectory("root");
};

TEST_F(StreamConduct, TheFirstChangeComesAtOnceAndTheNextAfterTheLatency) {
    constexpr auto latency = 700ms;
    letTheTreeAge();
    EventStage stage;
    stage.watch({root}, latency);
    ASSERT_TRUE(stage.watchesExactly({root}));
    std::ofstream(root.appending("first").bytes()) << "x";
    const auto first = stage.told.timeOf(0);
    std::ofstream(root.appending("second").bytes()) << "x";
    const auto second = stage.told.timeOf(1);
    EXPECT_GE(second - first, latency - 100ms);
    // With a quiet period before it a change comes at once again.
    ASSERT_EQ(stage.told.batches().size(), 2u);
}

TEST_F(StreamConduct, ALongLatencyDoesNotHoldUpTheFirstChange) {
    letTheTreeAge();
    EventStage stage;
    stage.watch({root}, 24h);
    ASSERT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(root));
}

TEST_F(StreamConduct, WhatChangesBetweenCreationAndTheSettingOfTheWatchIsReported) {
    fs::create_directories(root.appending("a/b").bytes());
    EventStage stage;
    {
        const HeldThread held(stage.blocking);
        stage.watch({root});
        std::ofstream(root.appending("a/b/file").bytes()) << "x";
        fs::create_directories(root.appending("new").bytes());
    }
    EXPECT_TRUE(stage.told.waitForPath(root));
    EXPECT_TRUE(stage.told.waitForPath(root.appending("a/b")));
}

TEST_F(StreamConduct, WhatStoodBeforeIsNotReported) {
    fs::create_directories(root.appending("a/b").bytes());
    letTheTreeAge();
    EventStage stage;
    stage.watch({root});
    ASSERT_TRUE(stage.watchesExactly({root}));
    EXPECT_TRUE(stage.notices(root));
    EXPECT_EQ(stage.told.paths(), std::set{root});
}

TEST_F(StreamConduct, EndingNeverWaitsForTheWorkThatIsUnderWay) {
    EventStage stage;
    const HeldThread held(stage.blocking);
    stage.watch({root});
    stage.stream.reset();  // would never return if it did
    EXPECT_TRUE(stage.told.batches().empty());
}

TEST_F(StreamConduct, EndingDuringSetUpIsPromptAndLeavesNothingOpen) {
    for (int i = 0; i < 3000; ++i) fs::create_directory(root.appending("d" + std::to_string(i)).bytes());
    std::chrono::steady_clock::duration shortest = 1h;
    for (int round = 0; round < 5; ++round) {
        EventStage stage;
        stage.watch({root});
        ASSERT_TRUE(eventually([] { return watchedDirectories().size() > 50; }));
        const auto start = std::chrono::steady_clock::now();
        stage.stream.reset();
        shortest = std::min(shortest, std::chrono::steady_clock::now() - start);
        EXPECT_TRUE(eventually([] { return watchedDirectories().empty(); }));
    }
    EXPECT_LT(shortest, 50ms);
}

TEST_F(StreamConduct, NothingIsToldOnceTheStreamIsGone) {
    std::atomic<bool> done = false;
    std::thread changing([&] {
        for (int i = 0; !done; ++i) {
            const FilePath directory = root.appending(std::to_string(i % 50));
            std::error_code ignored;
            fs::create_directories(directory.appending("deep").bytes(), ignored);
            fs::remove_all(directory.bytes(), ignored);
        }
    });
    EventStage stage;
    std::atomic<int> toldTooLate = 0;
    int toldAtAll = 0;
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> isGone = false;
        std::atomic<int> told = 0;
        auto stream = stage.streams.create({root}, 0ms, [&](const std::vector<FilePath>& paths) {
            EXPECT_FALSE(paths.empty());
            ++told;
            toldTooLate += isGone ? 1 : 0;
        });
        if (round % 2 == 0) ASSERT_TRUE(eventually([&] { return told > 0; }));
        stream.reset();
        isGone = true;
        toldAtAll += told;
    }
    done = true;
    changing.join();
    EXPECT_EQ(toldTooLate, 0);
    EXPECT_GE(toldAtAll, 100);
}

TEST_F(StreamConduct, NothingWakesWhileNothingChanges) {
#if __has_feature(thread_sanitizer)
    GTEST_SKIP() << "the thread sanitizer starts a thread of its own, which wakes";
#endif
    EventStage stage;
    stage.watch({root, FilePath(home.path().appending("missing"))});
    ASSERT_TRUE(stage.watchesExactly({root}));
    ASSERT_TRUE(stage.notices(root));
    const auto switches = [] {
        long sum = 0;
        for (const auto& task : fs::directory_iterator("/proc/self/task")) {
            if (std::stol(task.path().filename()) == getpid()) continue;
            std::ifstream lines(task.path() / "status");
            for (std::string line; std::getline(lines, line);) {
                if (line.starts_with("voluntary_ctxt_switches:"))
                    sum += std::stol(line.substr(line.find(':') + 1));
            }
        }
        return sum;
    };
    // The last batch is told and everything sleeps once a whole second passes without a switch.
    const auto quietSeconds = [&] {
        const long before = switches();
        pollfd none{-1, 0, 0};
        poll(&none, 1, 1000);
        return switches() - before;
    };
    EXPECT_TRUE(eventually([&] { return quietSeconds() == 0; }));
    EXPECT_EQ(quietSeconds(), 0);
    const long before = switches();
    EXPECT_TRUE(stage.notices(root));
    EXPECT_GT(switches(), before) << "the count sees no wake-up at all";
}

TEST_F(StreamConduct, WithoutDescriptorsCreationThrows) {
    EventStage stage;
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{.rlim_cur = 0, .rlim_max = before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    EXPECT_THROW(static_cast<void>(stage.streams.create({root}, 1s, [](const auto&) {})), std::system_error);
    setrlimit(RLIMIT_NOFILE, &before);
    stage.watch({root});
    EXPECT_TRUE(stage.watchesExactly({root}));
}

TEST_F(StreamConduct, ADirectoryThatMayNotBeReadIsLeftOutUntilItMay) {
    fs::permissions(home.path().bytes(), fs::perms::all);
    fs::permissions(root.bytes(), fs::perms::all);
    const std::string answer = asUnprivilegedUser([&]() -> std::string {
        const FilePath closed = root.appending("closed");
        fs::create_directories(closed.appending("deep").bytes());
        fs::create_directories(root.appending("open").bytes());
        fs::permissions(closed.bytes(), fs::perms::none);
        EventStage stage;
        stage.watch({root});
        if (!eventually([] { return watchedDirectories().size() == 2; })) return "not the two";
        if (!stage.notices(root.appending("open"))) return "open not noticed";
        fs::permissions(closed.bytes(), fs::perms::owner_all);
        if (!stage.watchesExactly({root})) return "not watched when opened";
        return stage.notices(closed.appending("deep")) ? "right" : "not noticed when opened";
    });
    EXPECT_EQ(answer, "right");
}

TEST_F(StreamConduct, AnotherFileSystemBelowARootIsNotEnteredAndOneThatCoversTheRootIsNoticed) {
    const FilePath mountPoint = home.makeDirectory("root/mnt");
    home.makeDirectory("root/own/deep");
    const std::string answer = inChild([&]() -> std::string {
        if (!enterOwnNamespace()) return "not allowed";
        if (mount("tmpfs", mountPoint.c_str(), "tmpfs", 0, "size=1m") != 0) return "not allowed";
        fs::create_directories(mountPoint.appending("inside").bytes());
        const FilePath deep = root.appending("own/deep");
        if (mount(deep.c_str(), deep.c_str(), nullptr, MS_BIND, nullptr) != 0) return "not allowed";
        EventStage stage;
        stage.watch({root});
        if (!eventually([] { return watchedDirectories().size() == 3; })) return "not the three";
        stage.told.forget();
        if (mount("tmpfs", root.c_str(), "tmpfs", 0, "size=1m") != 0) return "not allowed";
        if (!stage.told.waitForPath(root)) return "cover not noticed";
        if (!stage.watchesExactly({root})) return "cover not watched";
        if (!stage.notices(root)) return "change in cover not noticed";
        stage.told.forget();
        if (umount(root.c_str()) != 0) return "in use";
        if (!stage.told.waitForPath(root)) return "uncovering not noticed";
        return eventually([] { return watchedDirectories().size() == 3; }) ? "right" : "not as before";
    });
    if (answer == "not allowed") GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(answer, "right");
}

TEST_F(StreamConduct, ATreeMountedInsideItselfIsWatchedOnce) {
    home.makeDirectory("root/a/b");
    const std::string answer = inChild([&]() -> std::string {
        if (!enterOwnNamespace()) return "not allowed";
        if (mount(root.c_str(), root.appending("a/b").c_str(), nullptr, MS_BIND, nullptr) != 0)
            return "not allowed";
        EventStage stage;
        stage.watch({root});
        if (!eventually([] { return watchedDirectories().size() == 2; })) return "not the two";
        return stage.notices(root.appending("a")) ? "right" : "not noticed";
    });
    if (answer == "not allowed") GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(answer, "right");
}

}  // namespace
