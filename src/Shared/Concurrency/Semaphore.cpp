#include "Shared/Concurrency/Semaphore.h"

#include <iterator>

namespace cairnfield {

bool Semaphore::Acquisition::link() {
    const std::lock_guard lock(semaphore_.mutex_);
    if (state_ == State::stopped) return false;
    if (semaphore_.free_ > 0) {
        --semaphore_.free_;
        state_ = State::granted;
        return false;
    }
    semaphore_.waiting_.push_back(this);
    place_ = std::prev(semaphore_.waiting_.end());
    state_ = State::waiting;
    return true;
}

void Semaphore::Acquisition::stop() noexcept {
    {
        const std::lock_guard lock(semaphore_.mutex_);
        if (state_ == State::granted) return;
        const bool waiting = state_ == State::waiting;
        state_ = State::stopped;
        if (!waiting) return;
        semaphore_.waiting_.erase(place_);
    }
    waiter()->schedule();
}

Semaphore::Permit Semaphore::Acquisition::await_resume() {
    end();
    if (state_ != State::granted) throw Cancelled();
    return Permit(&semaphore_);
}

void Semaphore::release() noexcept {
    detail::PromiseBase* next = nullptr;
    {
        const std::lock_guard lock(mutex_);
        if (waiting_.empty()) {
            ++free_;
            return;
        }
        Acquisition* acquisition = waiting_.front();
        waiting_.pop_front();
        acquisition->state_ = Acquisition::State::granted;
        next = acquisition->waiter();
    }
    next->schedule();
}

}  // namespace cairnfield
