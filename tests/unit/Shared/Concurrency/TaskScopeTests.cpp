#include "Moments.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/TaskScope.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

Task<> sleeping(ContinuousClock* clock) {
    co_await clock->sleep(1h);
}

TEST(TaskScope, IsJoinedAtOnceWhenEmpty) {
    TaskScope scope;
    EXPECT_EQ(scope.size(), 0u);
    scope.joinBlocking();
    runBlocking(scope.join());
}

TEST(TaskScope, JoinsEveryTask) {
    ThreadPool pool(2);
    SteppedClock clock;
    TaskScope scope;
    std::atomic<int> ended = 0;
    const auto body = [&](BootClock::duration delay) -> Task<> {
        co_await clock.sleep(delay);
        ++ended;
    };
    for (int i = 1; i <= 10; ++i) scope.add(pool, body(i * 1s));
    const auto joining = spawn(pool, scope.join());
    clock.waitForSleepers(10);
    clock.advance(9s);
    EXPECT_FALSE(joining.done());
    clock.advance(1s);
    waitFor(joining);
    EXPECT_EQ(ended, 10);
    EXPECT_EQ(scope.size(), 0u);
}

TEST(TaskScope, CancelsEveryTaskAndThoseAddedLater) {
    ThreadPool pool(2);
    SteppedClock clock;
    TaskScope scope;
    const auto first = scope.add(pool, sleeping(&clock));
    const auto second = scope.add(pool, sleeping(&clock));
    clock.waitForSleepers(2);
    scope.cancel();
    const auto late = scope.add(pool, sleeping(&clock));
    scope.joinBlocking();
    for (const auto& handle : {first, second, late}) {
        EXPECT_TRUE(handle.done());
        EXPECT_THROW(waitFor(handle), Cancelled);
    }
}

TEST(TaskScope, OneTaskCanBeCancelledByItsHandle) {
    ThreadPool pool(2);
    SteppedClock clock;
    TaskScope scope;
    const auto one = scope.add(pool, sleeping(&clock));
    const auto other = scope.add(pool, sleeping(&clock));
    clock.waitForSleepers(2);
    one.cancel();
    EXPECT_THROW(waitFor(one), Cancelled);
    EXPECT_FALSE(other.done());
    scope.cancel();
    scope.joinBlocking();
}

TEST(TaskScope, ForgetsFinishedTasks) {
    ThreadPool pool(2);
    TaskScope scope;
    const auto nothing = []() -> Task<> { co_return; };
    const auto isSmall = [&scope]() -> Task<> {
        while (scope.size() > 0) co_await yieldNow();
    };
    for (int i = 0; i < 1000; ++i) scope.add(pool, nothing());
    waitFor(pool, isSmall());
    EXPECT_EQ(scope.size(), 0u);
}

TEST(TaskScope, TellsOfFailuresButNotOfCancellation) {
    ThreadPool pool(1);
    SteppedClock clock;
    std::vector<std::string> failures;  // only touched on the pool's one thread until the join
    TaskScope scope([&failures](const std::exception_ptr& failure) {
        try {
            std::rethrow_exception(failure);
        } catch (const std::exception& error) {
            failures.emplace_back(error.what());
        }
    });
    const auto broken = []() -> Task<> {
        throw std::runtime_error("broken");
        co_return;
    };
    const auto handle = scope.add(pool, broken());
    scope.add(pool, sleeping(&clock));
    clock.waitForSleepers(1);
    scope.cancel();
    scope.joinBlocking();
    EXPECT_EQ(failures, std::vector<std::string>{"broken"});
    EXPECT_THROW(waitFor(handle), std::runtime_error);
}

TEST(TaskScope, TasksMayAddTasks) {
    ThreadPool pool(2);
    TaskScope scope;
    std::atomic<int> ran = 0;
    std::function<Task<>(int)> tree = [&](int depth) -> Task<> {
        ++ran;
        if (depth == 0) co_return;
        scope.add(pool, tree(depth - 1));
        scope.add(pool, tree(depth - 1));
        co_await yieldNow();
    };
    scope.add(pool, tree(8));
    scope.joinBlocking();
    EXPECT_EQ(ran, 511);
}

TEST(TaskScope, IsJoinedFromTheMainLoopThatItsTasksNeed) {
    RunLoop main;
    ThreadPool pool(1);
    TaskScope scope;
    int ran = 0;
    const auto away = []() -> Task<> { co_return; };
    const auto body = [&]() -> Task<> {
        co_await away().on(pool);
        ++ran;
    };
    for (int i = 0; i < 10; ++i) scope.add(main, body());
    waitFor(main, scope.join());
    EXPECT_EQ(ran, 10);
}

TEST(TaskScope, EverythingMayGoRightAfterTheJoin) {
    for (int round = 0; round < 300; ++round) {
        ThreadPool pool(2);
        Reactor reactor;
        TaskScope scope;
        const auto body = [](Reactor* waits, int k) -> Task<> {
            co_await waits->sleep(std::chrono::microseconds(k * 10));
        };
        for (int k = 0; k < 10; ++k) scope.add(pool, body(&reactor, k));
        passMoments(round);
        if (round % 2) scope.cancel();
        scope.joinBlocking();
    }
}

TEST(TaskScope, WithstandsAddingCancellingAndJoiningAtOnce) {
    ThreadPool pool(2);
    SteppedClock clock;
    for (int round = 0; round < 100; ++round) {
        TaskScope scope;
        std::thread adding([&] {
            for (int i = 0; i < 30; ++i) scope.add(pool, sleeping(&clock));
        });
        passMoments(round * 5);
        scope.cancel();
        scope.joinBlocking();
        adding.join();
        scope.joinBlocking();
        EXPECT_EQ(scope.size(), 0u);
    }
}

TEST(TaskScopeDeathTest, DestroyingItWithATaskInsideIsAMistake) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            ThreadPool pool(1);
            SteppedClock clock;
            TaskScope scope;
            scope.add(pool, sleeping(&clock));
        },
        "a task outlives its scope");
}

}  // namespace
}  // namespace cairnfield
