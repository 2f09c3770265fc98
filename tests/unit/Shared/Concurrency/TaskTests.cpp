#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Concurrency/Task.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Concurrency/WhenAll.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace cairnfield {
namespace {

Task<int> number(int value) {
    co_return value;
}

Task<int> sum(int count) {
    int total = 0;
    for (int i = 0; i < count; ++i) {
        const int one = co_await number(1);
        total += one;
    }
    co_return total;
}

Task<std::unique_ptr<int>> boxed(int value) {
    co_return std::make_unique<int>(value);
}

Task<> failing() {
    throw std::runtime_error("broken");
    co_return;
}

struct Place : Isolated {
    explicit Place(Executor& executor) : Isolated(executor) {}
    Task<bool> isHere() {
        assertIsolated();
        co_return executor().isCurrent();
    }
};

/// Free, but runs where its first parameter lives.
Task<bool> isAt(const Place& place) {
    co_return place.executor().isCurrent();
}

Task<bool> isIn(Executor* executor) {
    co_return executor->isCurrent();
}

TEST(Task, DoesNothingUntilItIsAwaited) {
    bool ran = false;
    const auto body = [&ran]() -> Task<> {
        ran = true;
        co_return;
    };
    {
        const Task<> dropped = body();
    }
    EXPECT_FALSE(ran);
    runBlocking(body());
    EXPECT_TRUE(ran);
}

TEST(Task, HandsOverValuesThatCannotBeCopied) {
    const auto box = runBlocking(boxed(4));
    EXPECT_EQ(*box, 4);
}

TEST(Task, ThrowsWhatItsCoroutineThrew) {
    EXPECT_THROW(runBlocking(failing()), std::runtime_error);
    std::string caught;
    const auto body = [&caught]() -> Task<> {
        try {
            co_await failing();
        } catch (const std::runtime_error& error) {
            caught = error.what();
        }
    };
    runBlocking(body());
    EXPECT_EQ(caught, "broken");
}

TEST(Task, AMillionCallsInARowDoNotGrowTheStack) {
    EXPECT_EQ(runBlocking(sum(1'000'000)), 1'000'000);
}

TEST(Task, FreeCoroutineRunsOnItsCallersExecutor) {
    ThreadPool pool(1);
    EXPECT_TRUE(waitFor(pool, isIn(&pool)));
    EXPECT_FALSE(runBlocking(isIn(&pool)));
}

TEST(Task, RunsWhereItIsToldWhoeverAwaits) {
    ThreadPool pool(1);
    std::vector<bool> seen;
    const auto body = [&]() -> Task<> {
        const bool inside = co_await isIn(&pool).on(pool);
        seen.push_back(inside);
        seen.push_back(pool.isCurrent());
    };
    runBlocking(body());
    EXPECT_EQ(seen, (std::vector{true, false})) << "there, and back again";
}

TEST(Task, CoroutineOfAnIsolatedObjectRunsOnItsExecutorAndReturnsToTheCallers) {
    ThreadPool home(1), away(1);
    Place place(home);
    std::vector<bool> seen;
    const auto body = [&]() -> Task<> {
        bool inside = co_await place.isHere();
        seen.push_back(inside);
        seen.push_back(away.isCurrent());
        inside = co_await isAt(place);
        seen.push_back(inside);
        seen.push_back(away.isCurrent());
    };
    waitFor(away, body());
    EXPECT_EQ(seen, (std::vector{true, true, true, true}));
}

TEST(Task, ObjectOfTheMainThreadStaysThere) {
    RunLoop main;
    ThreadPool pool(2);
    struct Model : Isolated {
        Model(Executor& executor, Executor& elsewhere) : Isolated(executor), pool(elsewhere) {}
        Task<> refresh() {
            assertIsolated();
            for (int i = 0; i < 50; ++i) {
                const int one = co_await number(1).on(pool);
                assertIsolated();
                off += std::this_thread::get_id() != owner;
                count += one;
            }
        }
        Executor& pool;
        const std::thread::id owner = std::this_thread::get_id();
        int count = 0, off = 0;
    };
    Model model(main, pool);
    auto all = tasks(model.refresh(), model.refresh(), model.refresh());
    waitFor(main, whenAll(std::move(all)));
    EXPECT_EQ(model.count, 150);
    EXPECT_EQ(model.off, 0);
}

struct Counter : Actor {
    explicit Counter(Executor& pool) : Actor(pool) {}
    void enter() {
        assertIsolated();
        crowded += inside;
        inside = true;
        ++count;
        inside = false;
    }
    Task<> addTwice() {
        enter();
        co_await yieldNow();
        enter();
    }
    Task<int> add() {
        assertIsolated();
        co_return ++count;
    }
    Task<int> addThroughItself(int times) {
        int last = 0;
        for (int i = 0; i < times; ++i) last = co_await add();
        co_return last;
    }
    int count = 0, crowded = 0;
    bool inside = false;
};

TEST(Actor, IsEnteredByOneCallerAtATime) {
    ThreadPool pool(4);
    Counter counter(pool);
    const auto caller = [&counter]() -> Task<> {
        for (int i = 0; i < 1000; ++i) co_await counter.addTwice();
    };
    auto all = tasks(caller(), caller(), caller(), caller());
    waitFor(pool, whenAll(std::move(all)));
    EXPECT_EQ(counter.count, 8000);
    EXPECT_EQ(counter.crowded, 0);
}

TEST(Actor, CallsItselfWithoutAHop) {
    ThreadPool pool(2);
    Counter counter(pool);
    EXPECT_EQ(waitFor(pool, counter.addThroughItself(1000)), 1000);
}

TEST(Actor, LetsOthersInAtASuspension) {
    ThreadPool pool(2);
    struct Gate : Actor {
        explicit Gate(Executor& executor) : Actor(executor) {}
        Task<> pass(int who) {
            log.push_back(who);
            while (!open) co_await yieldNow();  // suspended, not blocked: the other call opens
            log.push_back(-who);
        }
        Task<> unlock() {
            open = true;
            co_return;
        }
        bool open = false;
        std::vector<int> log;
    };
    Gate gate(pool);
    auto all = tasks(gate.pass(1), gate.pass(2), gate.unlock());
    waitFor(pool, whenAll(std::move(all)));
    EXPECT_EQ(gate.log.size(), 4u);
}

TEST(RunOn, CallsAnOrdinaryFunctionElsewhere) {
    ThreadPool blocking(1);
    const auto place = [&blocking] { return blocking.isCurrent(); };
    EXPECT_TRUE(runBlocking(runOn(blocking, place)));
    const auto broken = [] { throw std::runtime_error("broken"); };
    EXPECT_THROW(runBlocking(runOn(blocking, broken)), std::runtime_error);
}

TEST(RunOn, TakesAFunctionThatCannotBeCopied) {
    ThreadPool blocking(1);
    auto function = [box = std::make_unique<int>(3)] { return *box; };
    EXPECT_EQ(runBlocking(runOn(blocking, std::move(function))), 3);
}

TEST(Cancellation, IsAFlagThatEveryAwaitedTaskInherits) {
    ThreadPool pool(1);
    const auto inner = []() -> Task<bool> {
        const std::stop_token stop = co_await currentStopToken();
        co_return stop.stop_requested();
    };
    const auto outer = [&inner](std::atomic<bool>* go) -> Task<std::vector<bool>> {
        while (!*go) co_await yieldNow();
        std::vector<bool> seen;
        bool stopped = co_await inner();
        seen.push_back(stopped);
        stopped = co_await inner().shielded();
        seen.push_back(stopped);
        co_return seen;
    };
    std::atomic<bool> go = false;
    const auto handle = spawn(pool, outer(&go));
    handle.cancel();
    go = true;
    EXPECT_EQ(waitFor(handle), (std::vector{true, false})) << "nothing but a wait or a check reacts";
}

TEST(Cancellation, IsThrownByACheck) {
    ThreadPool pool(1);
    const auto body = []() -> Task<> {
        for (;;) {
            co_await checkCancelled();
            co_await yieldNow();
        }
    };
    const auto handle = spawn(pool, body());
    handle.cancel();
    EXPECT_THROW(waitFor(handle), Cancelled);
}

TEST(Cancellation, DoesNotReachAShieldedCleanUp) {
    ThreadPool pool(1);
    std::atomic<bool> cleaned = false;
    const auto cleanUp = [&cleaned]() -> Task<> {
        co_await yieldNow();
        co_await checkCancelled();
        cleaned = true;
    };
    const auto body = [&cleanUp]() -> Task<> {
        for (;;) {
            bool stopped = false;
            try {
                co_await checkCancelled();
            } catch (const Cancelled&) {
                stopped = true;
            }
            if (stopped) break;
            co_await yieldNow();
        }
        co_await cleanUp().shielded();
    };
    const auto handle = spawn(pool, body());
    handle.cancel();
    waitFor(handle);
    EXPECT_TRUE(cleaned);
}

TEST(Cancellation, NothingCancelsATaskRunFromABlockingThread) {
    const auto body = []() -> Task<bool> {
        co_await checkCancelled();
        const std::stop_token stop = co_await currentStopToken();
        co_return stop.stop_requested();
    };
    EXPECT_FALSE(runBlocking(body()));
}

}  // namespace
}  // namespace cairnfield
