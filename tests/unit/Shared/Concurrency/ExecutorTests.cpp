#include "Shared/Concurrency/RunLoop.h"
#include "Shared/Concurrency/Strand.h"
#include "Shared/Concurrency/ThreadPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace cairnfield {
namespace {

/// A piece of work that runs a function and frees itself.
struct Call : Work {
    explicit Call(std::function<void()> f) : function(std::move(f)) {
        run = [](Work* work) noexcept {
            const std::unique_ptr<Call> self(static_cast<Call*>(work));
            self->function();
        };
    }
    std::function<void()> function;
};

void post(Executor& executor, std::function<void()> function) {
    executor.post(new Call(std::move(function)));
}

TEST(WorkQueue, GivesWorkBackInTheOrderItCame) {
    WorkQueue queue;
    Work first, second, third;
    EXPECT_TRUE(queue.empty());
    queue.push(&first);
    queue.push(&second);
    EXPECT_EQ(queue.pop(), &first);
    queue.push(&third);
    EXPECT_EQ(queue.pop(), &second);
    EXPECT_EQ(queue.pop(), &third);
    EXPECT_EQ(queue.pop(), nullptr);
    queue.push(&first);
    EXPECT_EQ(queue.pop(), &first);
    EXPECT_TRUE(queue.empty());
}

TEST(ThreadPool, RunsEverythingQueuedBeforeItGoes) {
    std::atomic<int> ran = 0;
    {
        ThreadPool pool(2);
        for (int i = 0; i < 1000; ++i) post(pool, [&ran] { ++ran; });
    }
    EXPECT_EQ(ran, 1000);
}

TEST(ThreadPool, UsesAllItsThreads) {
    std::promise<void> first, second, done;
    auto firstSeen = first.get_future(), secondSeen = second.get_future();
    ThreadPool pool(2);
    // Each waits for the other, so this ends only when both run at once.
    post(pool, [&] {
        first.set_value();
        secondSeen.wait();
        done.set_value();
    });
    post(pool, [&] {
        second.set_value();
        firstSeen.wait();
    });
    done.get_future().wait();
}

TEST(ThreadPool, KnowsItsOwnThreads) {
    std::promise<std::pair<bool, bool>> answer;
    ThreadPool pool(1), other(1);
    post(pool, [&] { answer.set_value({pool.isCurrent(), other.isCurrent()}); });
    EXPECT_EQ(answer.get_future().get(), std::pair(true, false));
    EXPECT_FALSE(pool.isCurrent());
}

TEST(ThreadPool, SurvivesBeingDestroyedRightAfterItsLastWorkFromAnotherThread) {
    for (int i = 0; i < 300; ++i) {
        std::promise<void> ran;
        auto pool = std::make_unique<ThreadPool>(2);
        std::thread poster([&] { post(*pool, [&ran] { ran.set_value(); }); });
        ran.get_future().wait();
        pool.reset();
        poster.join();
    }
}

TEST(Strand, RunsOnePieceAtATimeInOrder) {
    std::vector<int> order;  // unguarded on purpose
    std::atomic<int> inside = 0, crowded = 0;
    std::promise<void> done;
    ThreadPool pool(4);
    Strand strand(pool);
    for (int i = 0; i < 5000; ++i) {
        post(strand, [&, i] {
            if (++inside != 1) ++crowded;
            order.push_back(i);
            --inside;
        });
    }
    post(strand, [&] { done.set_value(); });
    done.get_future().wait();
    EXPECT_EQ(crowded, 0);
    ASSERT_EQ(order.size(), 5000u);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(Strand, LetsOthersOfThePoolGoFirstNowAndThen) {
    std::atomic<bool> otherRan = false;
    std::promise<int> turnsUntilTheOtherRan;
    std::function<void(int)> again;
    ThreadPool pool(1);
    Strand strand(pool);
    again = [&](int turn) {
        if (otherRan) {
            turnsUntilTheOtherRan.set_value(turn);
            return;
        }
        if (turn == 0) post(pool, [&] { otherRan = true; });
        post(strand, [&again, turn] { again(turn + 1); });
    };
    post(strand, [&again] { again(0); });
    EXPECT_LT(turnsUntilTheOtherRan.get_future().get(), 200);
}

TEST(Strand, KnowsItsOwnWork) {
    std::promise<std::vector<bool>> answer;
    ThreadPool pool(1);
    Strand strand(pool), other(pool);
    post(strand, [&] { answer.set_value({strand.isCurrent(), other.isCurrent(), pool.isCurrent()}); });
    EXPECT_EQ(answer.get_future().get(), (std::vector<bool>{true, false, false}));
}

TEST(Strand, MayBeDestroyedByItsOwnLastWork) {
    std::array<std::promise<void>, 300> gone;
    ThreadPool pool(2);
    for (std::promise<void>& each : gone) {
        auto strand = std::make_unique<Strand>(pool);
        Strand& posted = *strand;
        post(posted, [&each, last = std::shared_ptr<Strand>(std::move(strand))]() mutable {
            last.reset();
            each.set_value();
        });
        each.get_future().wait();
    }
}

TEST(RunLoop, RunsPostedWorkOnItsOwnThreadUntilToldToQuit) {
    RunLoop loop;
    const auto here = std::this_thread::get_id();
    std::set<std::thread::id> seen;
    int ran = 0;
    std::thread poster([&] {
        for (int i = 0; i < 100; ++i) {
            post(loop, [&] {
                seen.insert(std::this_thread::get_id());
                ++ran;
            });
        }
        post(loop, [&] { loop.quit(); });
    });
    loop.run();
    poster.join();
    EXPECT_EQ(ran, 100);
    EXPECT_EQ(seen, std::set{here});
}

TEST(RunLoop, QuitsFromAnotherThreadWithNothingQueued) {
    RunLoop loop;
    std::thread other([&] { loop.quit(); });
    loop.run();
    other.join();
}

TEST(RunLoop, QuitLeavesTheRestQueuedForTheNextRun) {
    RunLoop loop;
    int ran = 0;
    post(loop, [&] {
        ++ran;
        loop.quit();
    });
    post(loop, [&] { ++ran; });
    loop.run();
    EXPECT_EQ(ran, 1);
    EXPECT_TRUE(loop.runUntil([&] { return ran == 2; }));
}

TEST(RunLoop, RunsUntilThePredicateHolds) {
    RunLoop loop;
    EXPECT_TRUE(loop.runUntil([] { return true; }));
    int ran = 0;
    for (int i = 0; i < 10; ++i) post(loop, [&] { ++ran; });
    EXPECT_TRUE(loop.runUntil([&] { return ran == 3; }));
    EXPECT_EQ(ran, 3);
    loop.quit();
    EXPECT_FALSE(loop.runUntil([&] { return ran == 10; }));
    EXPECT_EQ(ran, 3);
    EXPECT_TRUE(loop.runUntil([&] { return ran == 10; }));
}

TEST(RunLoopDeathTest, DestroyingItWithWorkQueuedIsAMistake) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            RunLoop loop;
            post(loop, [] {});
        },
        "a task outlives its loop");
}

TEST(RunLoop, IsCurrentOnItsWholeThread) {
    RunLoop loop;
    EXPECT_TRUE(loop.isCurrent());
    bool elsewhere = true;
    std::thread([&] { elsewhere = loop.isCurrent(); }).join();
    EXPECT_FALSE(elsewhere);
}

}  // namespace
}  // namespace cairnfield
