#include "Moments.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/Semaphore.h"
#include "Shared/Concurrency/Strand.h"
#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

/// One caller at a time, so that tasks ask in the order in which they are started.
struct SemaphoreTest : testing::Test {
    Task<> hold(int who, BootClock::duration duration) {
        asked.push_back(who);
        const Semaphore::Permit permit = co_await semaphore.acquire();
        got.push_back(who);
        co_await clock.sleep(duration);
    }
    /// Until everything posted so far has run.
    void settle() {
        const auto nothing = []() -> Task<> { co_return; };
        waitFor(strand, nothing());
    }

    ThreadPool pool{2};
    Strand strand{pool};
    SteppedClock clock;
    Semaphore semaphore{2};
    std::vector<int> asked, got;  // touched on the strand
};

TEST_F(SemaphoreTest, ServesInTheOrderOfAskingAndNeverMoreThanItsPermits) {
    std::vector<TaskHandle<>> handles;
    for (int who = 1; who <= 5; ++who) handles.push_back(spawn(strand, hold(who, 1s)));
    settle();
    EXPECT_EQ(asked, (std::vector{1, 2, 3, 4, 5}));
    EXPECT_EQ(got, (std::vector{1, 2}));
    clock.advance(1s);
    clock.waitForSleepers(2);
    settle();
    EXPECT_EQ(got, (std::vector{1, 2, 3, 4}));
    clock.advance(1s);
    clock.waitForSleepers(1);
    clock.advance(1s);
    for (const auto& handle : handles) waitFor(handle);
    EXPECT_EQ(got, (std::vector{1, 2, 3, 4, 5}));
}

TEST_F(SemaphoreTest, SkipsAWaiterThatWasCancelled) {
    std::vector<TaskHandle<>> handles;
    for (int who = 1; who <= 4; ++who) handles.push_back(spawn(strand, hold(who, 1s)));
    settle();
    handles[2].cancel();
    EXPECT_THROW(waitFor(handles[2]), Cancelled);
    clock.advance(1s);
    clock.waitForSleepers(1);
    settle();
    EXPECT_EQ(got, (std::vector{1, 2, 4}));
    clock.advance(1s);
    waitFor(handles[3]);
}

TEST_F(SemaphoreTest, RefusesATaskThatIsAlreadyCancelledEvenWithAPermitFree) {
    const auto body = [this]() -> Task<> {
        bool stopped = false;
        while (!stopped) {
            co_await yieldNow();
            const std::stop_token stop = co_await currentStopToken();
            stopped = stop.stop_requested();
        }
        const Semaphore::Permit permit = co_await semaphore.acquire();
        got.push_back(1);
    };
    const auto handle = spawn(strand, body());
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
    EXPECT_TRUE(got.empty());
}

TEST_F(SemaphoreTest, PermitIsGivenBackEarlyOnceOnly) {
    Semaphore single(1);
    const auto body = [&single]() -> Task<int> {
        Semaphore::Permit first = co_await single.acquire();
        first.release();
        first.release();
        Semaphore::Permit second = co_await single.acquire();
        const Semaphore::Permit moved = std::move(second);
        co_return 1;
    };
    EXPECT_EQ(runBlocking(body()), 1);
    const auto again = [&single]() -> Task<int> {
        const Semaphore::Permit permit = co_await single.acquire();
        co_return 2;
    };
    EXPECT_EQ(runBlocking(again()), 2);
}

TEST(Semaphore, LosesNoPermitInAStormOfCancellations) {
    ThreadPool pool(2);
    Reactor reactor;
    Semaphore semaphore(2);
    std::atomic<int> inside = 0, most = 0, got = 0, refused = 0, interrupted = 0;
    const auto user = [&](int k) -> Task<> {
        try {
            const Semaphore::Permit permit = co_await semaphore.acquire();
            const int now = ++inside;
            int seen = most;
            while (now > seen && !most.compare_exchange_weak(seen, now)) {
            }
            ++got;
            try {
                if (k % 4 == 0) co_await reactor.sleep(std::chrono::microseconds(k % 50));
                co_await yieldNow();
            } catch (const Cancelled&) {
                ++interrupted;
            }
            --inside;
        } catch (const Cancelled&) {
            ++refused;
        }
    };
    for (int round = 0; round < 60; ++round) {
        std::vector<TaskHandle<>> handles;
        handles.reserve(60);
        for (int i = 0; i < 60; ++i) handles.push_back(spawn(pool, user(i * 7)));
        for (std::size_t i = 0; i < 60; i += 2) {
            passMoments(round);
            handles[i * 37 % 60].cancel();
        }
        for (const auto& handle : handles) waitFor(handle);
    }
    EXPECT_EQ(got + refused, 3600);
    EXPECT_GE(got, 1800) << "half of them were never cancelled";
    EXPECT_LE(interrupted, got);
    EXPECT_LE(most, 2);
    const auto both = [&semaphore]() -> Task<> {
        const Semaphore::Permit first = co_await semaphore.acquire();
        const Semaphore::Permit second = co_await semaphore.acquire();
    };
    waitFor(pool, both());
}

}  // namespace
}  // namespace cairnfield
