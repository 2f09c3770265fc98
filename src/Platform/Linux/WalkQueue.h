#pragma once
// How the threads of one walk share their work: each keeps a stack of its own, and one with nothing left asks
// here, where another leaves the lower half of its stack, which holds the larger subtrees. A thread that asks
// sleeps until there is something. The walk is over when all of them ask, or when one of them ends it early.
// Every operation may be called from any thread.

#include "Platform/Linux/OpenDirectories.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <mutex>
#include <vector>

namespace cairnfield {

class WalkQueue {
public:
    using Stack = std::vector<WalkedDirectory*>;

    /// One thread more. False when the walk is over already.
    [[nodiscard]] bool join();
    void leave();

    /// Whether a thread has nothing to do. A hint, for asking often.
    [[nodiscard]] bool isWanted() const noexcept { return wanted_.load(std::memory_order_relaxed); }

    /// Leaves the lower half of the stack, rounded up, to a thread that has nothing to do.
    void hand(Stack& stack);

    /// Fills the caller's empty stack, waiting if need be. False when the walk is over.
    [[nodiscard]] bool take(Stack& stack);

    /// Ends the walk early. The first failure is the one that counts.
    void end(std::exception_ptr failure);
    [[nodiscard]] bool isOver() const noexcept { return over_.load(std::memory_order_relaxed); }

    /// Waits until every thread has left. Gives the failure, or null, and what nobody took because of it.
    [[nodiscard]] std::exception_ptr awaitLeaving(Stack& untaken);

private:
    void finish();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::atomic<bool> wanted_ = false;  ///< written under mutex_
    std::atomic<bool> over_ = false;    ///< written under mutex_
    // Guarded by mutex_.
    Stack handed_;
    std::size_t threads_ = 0;
    std::size_t idle_ = 0;
    std::exception_ptr failure_;
};

}  // namespace cairnfield
