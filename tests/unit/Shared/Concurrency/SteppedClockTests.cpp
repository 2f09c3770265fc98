#include "Moments.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

TEST(SteppedClock, StandsStillUntilStepped) {
    SteppedClock clock;
    const auto start = clock.now();
    EXPECT_EQ(clock.now(), start);
    clock.advance(90s);
    EXPECT_EQ(clock.now() - start, 90s);
}

TEST(SteppedClock, WakesASleeperWhenItsTimeHasComeAndNotBefore) {
    RunLoop main;
    SteppedClock clock;
    const auto handle = spawn(main, clock.sleep(10s));
    main.runUntil([&] { return clock.sleepers() == 1; });
    EXPECT_EQ(clock.nextWakeIn(), 10s);
    clock.advance(10s - 1ns);
    EXPECT_EQ(clock.sleepers(), 1u);
    EXPECT_EQ(clock.nextWakeIn(), 1ns);
    clock.advance(1ns);
    EXPECT_EQ(clock.sleepers(), 0u);
    EXPECT_EQ(clock.nextWakeIn(), std::nullopt);
    waitFor(main, handle);
}

TEST(SteppedClock, DoesNotPutAnyoneToSleepForThePast) {
    SteppedClock clock;
    runBlocking(clock.sleepUntil(clock.now()));
    runBlocking(clock.sleepUntil(clock.now() - 1s));
    runBlocking(clock.sleep(-5s));
}

TEST(SteppedClock, WakesInTheOrderOfTheInstants) {
    RunLoop main;
    SteppedClock clock;
    std::vector<int> order;
    const auto body = [&](int seconds) -> Task<> {
        co_await clock.sleep(seconds * 1s);
        order.push_back(seconds);
    };
    std::vector<TaskHandle<>> handles;
    for (const int seconds : {3, 1, 2}) handles.push_back(spawn(main, body(seconds)));
    main.runUntil([&] { return clock.sleepers() == 3; });
    clock.advance(5s);
    for (const auto& handle : handles) waitFor(main, handle);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(SteppedClock, OneStepIsOneJump) {
    RunLoop main;
    SteppedClock clock;
    int ticks = 0;
    const auto body = [&]() -> Task<> {
        for (;;) {
            co_await clock.sleep(1s);
            ++ticks;
        }
    };
    const auto handle = spawn(main, body());
    main.runUntil([&] { return clock.sleepers() == 1; });
    clock.advance(10s);
    main.runUntil([&] { return clock.sleepers() == 1; });
    EXPECT_EQ(ticks, 1);
    EXPECT_EQ(clock.nextWakeIn(), 1s);
    handle.cancel();
    EXPECT_THROW(waitFor(main, handle), Cancelled);
}

TEST(SteppedClock, CancellationWakesTheSleeperAndNobodyElse) {
    ThreadPool pool(2);
    SteppedClock clock;
    const auto one = spawn(pool, clock.sleep(1h)), other = spawn(pool, clock.sleep(1h));
    clock.waitForSleepers(2);
    one.cancel();
    EXPECT_THROW(waitFor(one), Cancelled);
    EXPECT_EQ(clock.sleepers(), 1u);
    EXPECT_FALSE(other.done());
    clock.advance(1h);
    waitFor(other);
}

TEST(SteppedClock, CancelledTaskDoesNotSleepAtAll) {
    ThreadPool pool(1);
    SteppedClock clock;
    const auto body = [&clock]() -> Task<> {
        bool stopped = false;
        while (!stopped) {
            co_await yieldNow();
            const std::stop_token stop = co_await currentStopToken();
            stopped = stop.stop_requested();
        }
        co_await clock.sleep(1h);
    };
    const auto handle = spawn(pool, body());
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
}

TEST(SteppedClock, SleepsToTheEndOfTime) {
    ThreadPool pool(1);
    SteppedClock clock;
    const auto handle = spawn(pool, clock.sleep(BootClock::duration::max()));
    clock.waitForSleepers(1);
    clock.advance(24h * 365);
    EXPECT_FALSE(handle.done());
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
}

TEST(SteppedClock, WithstandsStepsAndCancellationsAtOnce) {
    ThreadPool pool(2);
    SteppedClock clock;
    int woken = 0, cancelled = 0;
    for (int k = 0; k < 3000; ++k) {
        const auto handle = spawn(pool, clock.sleep(1s));
        std::thread canceller;
        if (k % 8 == 0) {
            clock.waitForSleepers(1);
            canceller = std::thread([&handle] { handle.cancel(); });
        } else {
            passMoments(k % 500);
            handle.cancel();
        }
        clock.advance(1s);
        try {
            waitFor(handle);
            ++woken;
        } catch (const Cancelled&) {
            ++cancelled;
        }
        if (canceller.joinable()) canceller.join();
    }
    EXPECT_EQ(woken + cancelled, 3000);
    EXPECT_EQ(clock.sleepers(), 0u);
}

TEST(ReactorClock, IsTheClockThatRunsOnThroughSuspend) {
    Reactor reactor;
    ReactorClock clock(reactor);
    const auto before = BootClock::now();
    const auto now = clock.now();
    EXPECT_LE(before, now);
    EXPECT_LE(now, BootClock::now());
    runBlocking(clock.sleep(2ms));
    EXPECT_GE(clock.now() - now, 2ms);
    runBlocking(clock.sleepUntil(now));
}

TEST(ReactorClock, SleepIsCancelled) {
    Reactor reactor;
    ThreadPool pool(1);
    ReactorClock clock(reactor);
    const auto handle = spawn(pool, clock.sleep(1h));
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
}

}  // namespace
}  // namespace cairnfield
