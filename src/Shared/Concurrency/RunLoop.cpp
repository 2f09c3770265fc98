#include "Shared/Concurrency/RunLoop.h"

#include <cassert>
#include <utility>

namespace cairnfield {

RunLoop::RunLoop() : owner_(std::this_thread::get_id()) {}

RunLoop::~RunLoop() {
    assert(queue_.empty() && "a task outlives its loop");
}

void RunLoop::post(Work* work) {
    const std::lock_guard lock(mutex_);
    queue_.push(work);
    // Under the lock: once it is released, the work may run and let somebody destroy the loop.
    wake_.notify_one();
}

bool RunLoop::isCurrent() const noexcept {
    return std::this_thread::get_id() == owner_;
}

void RunLoop::run() {
    runUntil([] { return false; });
}

bool RunLoop::runUntil(const std::function<bool()>& predicate) {
    assert(isCurrent());
    while (!predicate()) {
        Work* work = nullptr;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return quitting_ || !queue_.empty(); });
            if (std::exchange(quitting_, false)) return false;
            work = queue_.pop();
        }
        runNow(work);
    }
    return true;
}

void RunLoop::quit() {
    const std::lock_guard lock(mutex_);
    quitting_ = true;
    wake_.notify_one();
}

}  // namespace cairnfield
