#include "Moments.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

Task<std::string> textAfter(ContinuousClock* clock) {
    co_await clock->sleep(1s);
    co_return "done";
}

TEST(TaskHandle, IsEmptyUntilItHoldsATask) {
    TaskHandle<> handle;
    EXPECT_FALSE(handle);
    handle.cancel();
    ThreadPool pool(1);
    const auto body = []() -> Task<> { co_return; };
    handle = spawn(pool, body());
    EXPECT_TRUE(handle);
    waitFor(handle);
}

TEST(TaskHandle, GivesTheValueToManyWaitersBeforeAndAfterTheEnd) {
    ThreadPool pool(2);
    SteppedClock clock;
    const auto handle = spawn(pool, textAfter(&clock));
    const auto waiter = [&handle]() -> Task<std::string> {
        std::string text = co_await handle.value();
        co_return text;
    };
    std::vector<TaskHandle<std::string>> waiters;
    waiters.reserve(20);
    for (int i = 0; i < 20; ++i) waiters.push_back(spawn(pool, waiter()));
    clock.waitForSleepers(1);
    EXPECT_FALSE(handle.done());
    clock.advance(1s);
    for (const auto& each : waiters) EXPECT_EQ(waitFor(each), "done");
    EXPECT_TRUE(handle.done());
    EXPECT_EQ(waitFor(handle), "done");
}

TEST(TaskHandle, ThrowsTheTasksFailureToEveryWaiter) {
    ThreadPool pool(2);
    const auto body = []() -> Task<int> {
        throw std::runtime_error("broken");
        co_return 1;
    };
    const auto handle = spawn(pool, body());
    EXPECT_THROW(waitFor(handle), std::runtime_error);
    EXPECT_THROW(waitFor(handle), std::runtime_error);
}

TEST(TaskHandle, DroppingItNeitherCancelsNorEndsTheTask) {
    ThreadPool pool(1);
    SteppedClock clock;
    std::atomic<bool> ended = false;
    const auto body = [&]() -> Task<> {
        co_await clock.sleep(1s);
        ended = true;
    };
    (void)spawn(pool, body());
    clock.waitForSleepers(1);
    clock.advance(1s);
    const auto seen = [&]() -> Task<> {
        while (!ended) co_await yieldNow();
    };
    waitFor(pool, seen());
}

TEST(TaskHandle, CancellingAWaiterDoesNotEndItsWait) {
    ThreadPool pool(2);
    SteppedClock clock;
    const auto handle = spawn(pool, textAfter(&clock));
    const auto body = [&handle]() -> Task<std::string> {
        std::string text = co_await handle.value();
        co_return text;
    };
    const auto waiter = spawn(pool, body());
    clock.waitForSleepers(1);
    waiter.cancel();
    clock.advance(1s);
    EXPECT_EQ(waitFor(waiter), "done");
}

TEST(TaskHandle, CancellingItCancelsTheTaskForEveryWaiter) {
    ThreadPool pool(2);
    SteppedClock clock;
    const auto handle = spawn(pool, textAfter(&clock));
    clock.waitForSleepers(1);
    handle.cancel();
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
    EXPECT_THROW(waitFor(handle), Cancelled);
    handle.cancel();
}

TEST(TaskHandle, FreesTheTasksFrameBeforeAnyoneHearsOfTheEnd) {
    ThreadPool pool(2);
    const auto body = [](std::shared_ptr<int> held) -> Task<> {
        co_await yieldNow();
        EXPECT_EQ(*held, 1);
    };
    for (int i = 0; i < 500; ++i) {
        auto token = std::make_shared<int>(1);
        const std::weak_ptr<int> watched = token;
        const auto handle = spawn(pool, body(std::move(token)));
        waitFor(handle);
        ASSERT_TRUE(watched.expired());
    }
}

TEST(TaskHandle, WithstandsCancellationAtEveryMomentOfItsLife) {
    ThreadPool pool(2);
    Reactor reactor;
    const auto child = [&reactor](int k) -> Task<int> {
        co_await yieldNow();
        if (k % 3 == 0) co_await reactor.sleep(std::chrono::microseconds(k % 40));
        co_await checkCancelled();
        co_return k;
    };
    int ended = 0, cancelled = 0;
    for (int k = 0; k < 3000; ++k) {
        const auto handle = spawn(pool, child(k));
        const auto body = [](TaskHandle<int> awaited) -> Task<int> {
            const int value = co_await awaited.value();
            co_return value;
        };
        const auto first = spawn(pool, body(handle)), second = spawn(pool, body(handle));
        passMoments(k % 700);
        if (k % 2) first.cancel();
        handle.cancel();
        for (const auto& each : {first, second}) {
            try {
                const int value = waitFor(each);
                EXPECT_EQ(value, k);
                ++ended;
            } catch (const Cancelled&) {
                ++cancelled;
            }
        }
    }
    EXPECT_EQ(ended + cancelled, 6000);
}

TEST(TaskHandle, WithstandsBeingCancelledFromManyThreadsAtOnce) {
    ThreadPool pool(2);
    SteppedClock clock;
    for (int k = 0; k < 200; ++k) {
        const auto handle = spawn(pool, textAfter(&clock));
        std::vector<std::thread> threads;
        threads.reserve(3);
        for (int i = 0; i < 3; ++i) threads.emplace_back([&handle] { handle.cancel(); });
        EXPECT_THROW(waitFor(handle), Cancelled);
        for (std::thread& thread : threads) thread.join();
    }
}

}  // namespace
}  // namespace cairnfield
