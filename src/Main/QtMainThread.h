#pragma once
// The main thread as an executor: work posted from anywhere runs in the Qt event loop of the thread that made
// it. The one place where the two meet.

#include "Shared/Concurrency/Executor.h"
#include "Shared/Concurrency/FileDescriptor.h"

#include <QSocketNotifier>

#include <mutex>
#include <thread>

namespace cairnfield {

class QtMainThread final : public Executor {
public:
    /// On the thread of the application object, which outlives this. Throws std::system_error.
    QtMainThread();
    /// Runs what is still queued, so that no task is lost half way.
    ~QtMainThread();

    void post(Work* work) override;
    /// For the whole thread: its objects are also used from events that no posted work brought about.
    [[nodiscard]] bool isCurrent() const noexcept override;

private:
    void runSome();
    /// Null when nothing is queued; then the descriptor falls silent.
    [[nodiscard]] Work* take();

    const std::thread::id owner_ = std::this_thread::get_id();
    const FileDescriptor event_;  ///< readable while the queue holds something
    QSocketNotifier notifier_;
    std::mutex mutex_;
    WorkQueue queue_;  // guarded by mutex_
};

}  // namespace cairnfield
