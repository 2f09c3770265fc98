#pragma once

#include "Shared/Concurrency/Executor.h"

#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace cairnfield {

/// A fixed number of threads that take work in the order it came. Work of different callers runs at the same
/// time: what must not be entered twice belongs in an `Actor`. Work that blocks (files, `runOn`) gets a pool
/// of its own, so that it never holds up the rest.
class ThreadPool final : public Executor {
public:
    explicit ThreadPool(unsigned threads);

    /// Runs what is still queued, then joins its threads. Must not be called from one of them.
    ~ThreadPool();

    void post(Work* work) override;

private:
    void takeWork();

    std::mutex mutex_;
    std::condition_variable wake_;
    WorkQueue queue_;        // guarded by mutex_
    unsigned idle_ = 0;      // guarded by mutex_
    bool stopping_ = false;  // guarded by mutex_
    std::vector<std::thread> threads_;
};

}  // namespace cairnfield
