#pragma once
// Turns a storm of changed paths into at most one batch per interval. The window opens with the first path
// and is fixed: later paths join it and neither extend nor restart it, so that a change that never stops
// yields a batch per interval rather than none. An actor, held by shared_ptr.

#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <chrono>
#include <functional>
#include <list>
#include <memory>
#include <set>
#include <vector>

namespace cairnfield {

class ChangeDebouncer final : public Actor, public std::enable_shared_from_this<ChangeDebouncer> {
public:
    using Flush = std::function<Task<>(std::set<FilePath>)>;

    /// `flush` is called on the actor and may suspend for long. What it throws is dropped. Pool and clocks
    /// outlive the debouncer and, where it is released without `finished`, the end of its window.
    ChangeDebouncer(Executor& pool, ContinuousClock& clock, const WallClock& wallClock,
                    std::chrono::seconds settleInterval, Flush flush);
    /// What waits is lost.
    ~ChangeDebouncer();

    /// Sees to it that the paths are flushed, the settle interval after the first that waits.
    Task<> markDirty(std::vector<FilePath> paths);

    /// For the end: drops what waits, cancels a flush that runs and returns when it has ended. From now on
    /// nothing is flushed.
    Task<> finished();

private:
    using Weak = std::weak_ptr<ChangeDebouncer>;

    static Task<> window(Weak debouncer, ContinuousClock& clock, ContinuousClock::Instant end);
    void schedule();
    Task<> performFlush();

    Executor& pool_;
    ContinuousClock& clock_;
    const WallClock& wallClock_;
    const std::chrono::seconds settleInterval_;
    const Flush flush_;
    // Isolated.
    std::set<FilePath> dirtyPaths_;
    Date lastFlush_{};
    TaskHandle<> pendingFlush_;
    std::list<TaskHandle<>> running_;  ///< windows whose flush has begun
    bool isFinished_ = false;
};

}  // namespace cairnfield
