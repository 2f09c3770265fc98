#include "Platform/Linux/WalkQueue.h"

#include <utility>

namespace cairnfield {

bool WalkQueue::join() {
    const std::lock_guard lock(mutex_);
    if (over_) return false;
    ++threads_;
    return true;
}

void WalkQueue::leave() {
    const std::lock_guard lock(mutex_);
    --threads_;
    changed_.notify_all();
}

void WalkQueue::hand(Stack& stack) {
    const std::lock_guard lock(mutex_);
    if (!wanted_ || over_ || stack.empty()) return;
    const auto half = stack.begin() + static_cast<Stack::difference_type>((stack.size() + 1) / 2);
    handed_.assign(stack.begin(), half);
    stack.erase(stack.begin(), half);
    wanted_ = false;
    changed_.notify_one();
}

bool WalkQueue::take(Stack& stack) {
    std::unique_lock lock(mutex_);
    ++idle_;
    if (idle_ == threads_ && handed_.empty()) finish();
    while (!over_) {
        if (!handed_.empty()) {
            stack.swap(handed_);
            handed_.clear();
            --idle_;
            wanted_ = idle_ > 0;
            return true;
        }
        wanted_ = true;
        changed_.wait(lock);
    }
    --idle_;
    return false;
}

void WalkQueue::end(std::exception_ptr failure) {
    const std::lock_guard lock(mutex_);
    if (!failure_) failure_ = std::move(failure);
    finish();
}

std::exception_ptr WalkQueue::awaitLeaving(Stack& untaken) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return threads_ == 0; });
    untaken.swap(handed_);
    return failure_;
}

void WalkQueue::finish() {
    over_ = true;
    wanted_ = false;
    changed_.notify_all();
}

}  // namespace cairnfield
