#include "Services/FileSystem/ChangeDebouncer.h"

#include <utility>

namespace cairnfield {

namespace {

Task<> endOf(TaskHandle<> task) {
    try {
        co_await task.value();
    } catch (const std::exception&) {
        // How it ended is nobody's concern.
    }
}

}  // namespace

ChangeDebouncer::ChangeDebouncer(Executor& pool, ContinuousClock& clock, const WallClock& wallClock,
                                 std::chrono::seconds settleInterval, Flush flush)
    : Actor(pool),
      pool_(pool),
      clock_(clock),
      wallClock_(wallClock),
      settleInterval_(settleInterval),
      flush_(std::move(flush)) {}

ChangeDebouncer::~ChangeDebouncer() {
    pendingFlush_.cancel();
}

Task<> ChangeDebouncer::markDirty(std::vector<FilePath> paths) {
    assertIsolated();
    if (isFinished_) co_return;
    dirtyPaths_.insert(std::make_move_iterator(paths.begin()), std::make_move_iterator(paths.end()));
    schedule();
}

void ChangeDebouncer::schedule() {
    if (pendingFlush_) return;
    const ContinuousClock::Instant end = BootClock::add(clock_.now(), settleInterval_);
    pendingFlush_ = spawn(pool_, window(weak_from_this(), clock_, end));
}

Task<> ChangeDebouncer::window(Weak debouncer, ContinuousClock& clock, ContinuousClock::Instant end) {
    try {
        co_await clock.sleepUntil(end);
    } catch (const std::exception&) {
        // A sleep that fails is a short one.
    }
    const std::shared_ptr<ChangeDebouncer> alive = debouncer.lock();
    if (!alive) co_return;
    co_await alive->performFlush();
}

Task<> ChangeDebouncer::performFlush() {
    assertIsolated();
    const TaskHandle<> self = std::exchange(pendingFlush_, {});
    if (dirtyPaths_.empty()) co_return;
    std::set<FilePath> batch;
    batch.swap(dirtyPaths_);
    lastFlush_ = wallClock_.now();
    const auto place = running_.insert(running_.end(), self);
    try {
        co_await flush_(std::move(batch));
    } catch (const std::exception&) {
        // Its receiver tells of its own failures; the next batch comes all the same.
    }
    running_.erase(place);
}

Task<> ChangeDebouncer::finished() {
    assertIsolated();
    isFinished_ = true;
    dirtyPaths_.clear();
    const TaskHandle<> pending = pendingFlush_;
    pending.cancel();
    for (const TaskHandle<>& flush : running_) flush.cancel();
    if (pending) co_await endOf(pending);
    while (!running_.empty()) co_await endOf(running_.front());
}

}  // namespace cairnfield
