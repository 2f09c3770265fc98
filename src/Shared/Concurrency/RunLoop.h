#pragma once

#include "Shared/Concurrency/Executor.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace cairnfield {

/// A main thread without a window: the executor of headless programs and of tests. It belongs to the thread
/// that made it, which alone may run it; `post` and `quit` come from any thread. Sleeps while there is
/// nothing to do.
class RunLoop final : public Executor {
public:
    RunLoop();

    /// Nothing may be queued any more: end and join the tasks first.
    ~RunLoop();

    void post(Work* work) override;
    [[nodiscard]] bool isCurrent() const noexcept override;

    /// Runs work until `quit`.
    void run();

    /// Runs work until the predicate holds, and answers whether it does: `quit` ends it too. The predicate is
    /// asked before the first and after each piece of work, so what it looks at must change in this loop's
    /// own work.
    bool runUntil(const std::function<bool()>& predicate);

    /// Ends the present or else the next `run` or `runUntil`, after the piece of work under way. What is
    /// queued stays.
    void quit();

private:
    const std::thread::id owner_;
    std::mutex mutex_;
    std::condition_variable wake_;
    WorkQueue queue_;        // guarded by mutex_
    bool quitting_ = false;  // guarded by mutex_
};

}  // namespace cairnfield
