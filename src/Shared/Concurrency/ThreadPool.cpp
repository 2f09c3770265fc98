#include "Shared/Concurrency/ThreadPool.h"

#include <cassert>

namespace cairnfield {

ThreadPool::ThreadPool(unsigned threads) {
    assert(threads > 0);
    threads_.reserve(threads);
    for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this] { takeWork(); });
}

ThreadPool::~ThreadPool() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        wake_.notify_all();
    }
    for (std::thread& thread : threads_) thread.join();
}

void ThreadPool::post(Work* work) {
    const std::lock_guard lock(mutex_);
    queue_.push(work);
    // Under the lock: once it is released, the work may run and let somebody destroy the pool.
    if (idle_ > 0) wake_.notify_one();
}

void ThreadPool::takeWork() {
    std::unique_lock lock(mutex_);
    for (;;) {
        if (Work* work = queue_.pop()) {
            lock.unlock();
            runNow(work);
            lock.lock();
        } else if (stopping_) {
            return;
        } else {
            ++idle_;
            wake_.wait(lock);
            --idle_;
        }
    }
}

}  // namespace cairnfield
