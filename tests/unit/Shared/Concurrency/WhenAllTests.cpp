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

Task<int> numberAfter(ContinuousClock* clock, BootClock::duration delay, int value) {
    co_await clock->sleep(delay);
    co_return value;
}

Task<> failAfter(ContinuousClock* clock, BootClock::duration delay, std::string what) {
    co_await clock->sleep(delay);
    throw std::runtime_error(what);
}

TEST(WhenAll, GivesTheValuesInTheGivenOrderWhateverEndsFirst) {
    ThreadPool pool(2);
    SteppedClock clock;
    auto all = tasks(numberAfter(&clock, 3s, 1), numberAfter(&clock, 1s, 2), numberAfter(&clock, 2s, 3));
    const auto handle = spawn(pool, whenAll(std::move(all)));
    for (std::size_t left = 3; left > 0; --left) {
        clock.waitForSleepers(left);
        EXPECT_FALSE(handle.done());
        clock.advance(1s);
    }
    EXPECT_EQ(waitFor(handle), (std::vector{1, 2, 3}));
}

TEST(WhenAll, OfNothingEndsAtOnce) {
    EXPECT_TRUE(runBlocking(whenAll(std::vector<Task<int>>{})).empty());
    runBlocking(whenAll(std::vector<Task<>>{}));
}

TEST(WhenAll, WaitsForAllAndThenThrowsTheFirstFailureInOrder) {
    ThreadPool pool(2);
    SteppedClock clock;
    std::atomic<bool> lastEnded = false;
    const auto last = [&]() -> Task<> {
        co_await clock.sleep(3s);
        lastEnded = true;
    };
    auto all = tasks(failAfter(&clock, 2s, "slow"), failAfter(&clock, 1s, "quick"), last());
    const auto handle = spawn(pool, whenAll(std::move(all)));
    clock.waitForSleepers(3);
    clock.advance(2s);
    clock.waitForSleepers(1);
    EXPECT_FALSE(handle.done()) << "two failures do not end it while the third runs";
    clock.advance(1s);
    try {
        waitFor(handle);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "slow");
    }
    EXPECT_TRUE(lastEnded);
}

TEST(WhenAll, PassesItsCancellationToEveryTask) {
    ThreadPool pool(2);
    SteppedClock clock;
    auto all = tasks(numberAfter(&clock, 1s, 1), numberAfter(&clock, 2s, 2));
    const auto handle = spawn(pool, whenAll(std::move(all)));
    clock.waitForSleepers(2);
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
    EXPECT_EQ(clock.sleepers(), 0u);
}

TEST(WhenAll, HandsOverValuesThatCannotBeCopied) {
    const auto boxed = [](int value) -> Task<std::unique_ptr<int>> {
        co_return std::make_unique<int>(value);
    };
    auto all = tasks(boxed(1), boxed(2));
    const auto boxes = runBlocking(whenAll(std::move(all)));
    EXPECT_EQ(*boxes[0] + *boxes[1], 3);
}

TEST(WhenAll, ResumesOnTheCallersExecutor) {
    ThreadPool pool(2), home(1);
    const auto nothing = []() -> Task<> { co_return; };
    int elsewhere = 0;
    const auto body = [&]() -> Task<> {
        for (int i = 0; i < 300; ++i) {
            auto all = tasks(nothing().on(pool), nothing(), nothing().on(pool));
            co_await whenAll(std::move(all));
            elsewhere += !home.isCurrent();
        }
    };
    waitFor(home, body());
    EXPECT_EQ(elsewhere, 0);
}

TEST(WhenAll, OfManyAcrossExecutors) {
    ThreadPool pool(2), other(2);
    const auto one = [](int i) -> Task<int> {
        co_await yieldNow();
        co_return i;
    };
    std::vector<Task<int>> all;
    for (int i = 0; i < 5000; ++i) {
        if (i % 2) {
            all.push_back(one(i).on(other));
        } else {
            all.push_back(one(i));
        }
    }
    const std::vector<int> values = waitFor(pool, whenAll(std::move(all)));
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(values[static_cast<std::size_t>(i)], i);
}

}  // namespace
}  // namespace cairnfield
