#include "Services/FileSystem/ChangeDebouncer.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/SettableWallClock.h"
#include "support/SteppedClock.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

using namespace cairnfield;
using namespace std::chrono_literals;
using testing::ElementsAre;

namespace {

using Batch = std::set<FilePath>;

/// The batches that were flushed, from any thread.
class Batches {
public:
    void add(Batch batch) {
        const std::lock_guard lock(mutex_);
        all_.push_back(std::move(batch));
        changed_.notify_all();
    }
    std::vector<Batch> waitFor(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, 30s, [&] { return all_.size() >= count; });
        return all_;
    }
    [[nodiscard]] std::vector<Batch> now() {
        const std::lock_guard lock(mutex_);
        return all_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Batch> all_;  // guarded by mutex_
};

Task<> keep(Batches& batches, Batch batch) {
    batches.add(std::move(batch));
    co_return;
}

class ChangeDebouncerTest : public testing::Test {
protected:
    std::shared_ptr<ChangeDebouncer> debouncer(ChangeDebouncer::Flush flush) {
        return std::make_shared<ChangeDebouncer>(pool, clock, wallClock, 10s, std::move(flush));
    }
    std::shared_ptr<ChangeDebouncer> keepingDebouncer() {
        return debouncer([this](Batch batch) { return keep(batches, std::move(batch)); });
    }
    void mark(ChangeDebouncer& marked, std::vector<std::string> names) {
        std::vector<FilePath> paths;
        for (std::string& name : names) paths.emplace_back(std::move(name));
        waitFor(pool, marked.markDirty(std::move(paths)));
    }
    static Batch batchOf(const std::vector<std::string>& names) {
        Batch batch;
        for (const std::string& name : names) batch.emplace(name);
        return batch;
    }
    /// Lets everything run that the last step of the clock has woken.
    void runOut(ChangeDebouncer& debouncer) {
        waitFor(pool, debouncer.markDirty({}));
        waitFor(pool, debouncer.finished());
    }

    ThreadPool pool{2};
    SteppedClock clock;
    SettableWallClock wallClock;
    Batches batches;
};

TEST_F(ChangeDebouncerTest, PathsOfOneWindowArriveTogetherTenSecondsAfterTheFirst) {
    const auto tested = keepingDebouncer();
    clock.advance(1s);
    mark(*tested, {"/a"});
    clock.waitForSleepers(1);
    clock.advance(8s);
    mark(*tested, {"/b"});
    EXPECT_EQ(clock.sleepers(), 1u) << "the window was opened again";
    EXPECT_EQ(clock.nextWakeIn(), 2s) << "the window was extended";
    clock.advance(2s - 1ns);
    EXPECT_EQ(clock.sleepers(), 1u);
    EXPECT_TRUE(batches.now().empty());
    clock.advance(1ns);
    EXPECT_THAT(batches.waitFor(1), ElementsAre(batchOf({"/a", "/b"})));
    runOut(*tested);
    EXPECT_EQ(batches.now().size(), 1u);
}

TEST_F(ChangeDebouncerTest, APathMarkedTwiceArrivesOnce) {
    const auto tested = keepingDebouncer();
    mark(*tested, {"/a", "/a"});
    mark(*tested, {"/a"});
    clock.waitForSleepers(1);
    clock.advance(10s);
    EXPECT_THAT(batches.waitFor(1), ElementsAre(batchOf({"/a"})));
    runOut(*tested);
    EXPECT_EQ(batches.now().size(), 1u);
}

TEST_F(ChangeDebouncerTest, AChangeThatNeverStopsYieldsABatchPerInterval) {
    const auto tested = keepingDebouncer();
    for (int second = 0; second < 30; ++second) {
        mark(*tested, {"/" + std::to_string(second)});
        clock.waitForSleepers(1);
        clock.advance(1s);
        if (second % 10 == 9) batches.waitFor(static_cast<std::size_t>(second / 10) + 1);
    }
    const std::vector<Batch> all = batches.now();
    ASSERT_EQ(all.size(), 3u);
    for (const Batch& batch : all) EXPECT_EQ(batch.size(), 10u);
    runOut(*tested);
}

TEST_F(ChangeDebouncerTest, WhatIsMarkedDuringAFlushArrivesInTheNextBatch) {
    auto flush = [this](Batch batch) -> Task<> {
        return [](Batches& into, SteppedClock& until, Batch given) -> Task<> {
            into.add(std::move(given));
            co_await until.sleep(12s);
        }(batches, clock, std::move(batch));
    };
    const auto tested = debouncer(flush);
    mark(*tested, {"/first"});
    clock.waitForSleepers(1);
    clock.advance(10s);
    batches.waitFor(1);
    clock.waitForSleepers(1);  // that flush, which goes on meanwhile
    clock.advance(1s);
    mark(*tested, {"/second"});
    clock.waitForSleepers(2);
    EXPECT_EQ(clock.nextWakeIn(), 10s);
    clock.advance(10s);
    EXPECT_THAT(batches.waitFor(2), ElementsAre(batchOf({"/first"}), batchOf({"/second"})));
    runOut(*tested);
}

TEST_F(ChangeDebouncerTest, AWindowWithoutPathsFlushesNothing) {
    const auto tested = keepingDebouncer();
    mark(*tested, {});
    clock.waitForSleepers(1);
    clock.advance(10s);
    // The window is over: the next path opens another.
    for (;;) {
        mark(*tested, {"/a"});
        if (clock.sleepers() > 0) break;
    }
    clock.advance(10s);
    EXPECT_THAT(batches.waitFor(1), ElementsAre(batchOf({"/a"})));
    runOut(*tested);
}

TEST_F(ChangeDebouncerTest, ReleasedWhileWaitingItFlushesNothing) {
    auto tested = keepingDebouncer();
    mark(*tested, {"/a"});
    clock.waitForSleepers(1);
    tested.reset();
    while (clock.sleepers() > 0) std::this_thread::yield();
    clock.advance(1h);
    waitFor(pool, [](ThreadPool&) -> Task<> { co_await yieldNow(); }(pool));
    EXPECT_TRUE(batches.now().empty());
}

TEST_F(ChangeDebouncerTest, AFlushThatFailsDoesNotEndIt) {
    const auto tested = debouncer([this](Batch batch) -> Task<> {
        batches.add(std::move(batch));
        throw std::runtime_error("before the first suspension");
    });
    for (const char* name : {"/a", "/b"}) {
        const std::size_t before = batches.now().size();
        while (clock.sleepers() == 0) mark(*tested, {name});
        clock.advance(10s);
        batches.waitFor(before + 1);
    }
    EXPECT_THAT(batches.now(), ElementsAre(batchOf({"/a"}), batchOf({"/b"})));
    runOut(*tested);
}

TEST_F(ChangeDebouncerTest, OnceFinishedNothingIsFlushed) {
    const auto tested = keepingDebouncer();
    mark(*tested, {"/a"});
    clock.waitForSleepers(1);
    waitFor(pool, tested->finished());
    EXPECT_EQ(clock.sleepers(), 0u);
    mark(*tested, {"/b"});
    EXPECT_EQ(clock.sleepers(), 0u);
    clock.advance(1h);
    waitFor(pool, tested->finished());
    EXPECT_TRUE(batches.now().empty());
}

TEST_F(ChangeDebouncerTest, FinishingCancelsAFlushAndWaitsForItsEnd) {
    std::atomic<bool> hasEnded = false;
    auto flush = [this, &hasEnded](Batch batch) -> Task<> {
        return [](Batches& into, SteppedClock& clock, std::atomic<bool>& ended, Batch given) -> Task<> {
            into.add(std::move(given));
            try {
                co_await clock.sleep(24h);
            } catch (const Cancelled&) {
                ended = true;
            }
        }(batches, clock, hasEnded, std::move(batch));
    };
    const auto tested = debouncer(flush);
    mark(*tested, {"/a"});
    clock.waitForSleepers(1);
    clock.advance(10s);
    batches.waitFor(1);
    waitFor(pool, tested->finished());
    EXPECT_TRUE(hasEnded);
}

}  // namespace
