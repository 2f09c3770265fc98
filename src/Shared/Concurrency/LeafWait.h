#pragma once

#include "Shared/Concurrency/TaskPromise.h"

#include <concepts>
#include <coroutine>
#include <optional>
#include <stop_token>

namespace cairnfield::detail {

enum class Stopping { heeded, shielded };

/// The beginning and the end that all waits share which cancellation may cut short.
///
/// A wait can be ended by its event and by its cancellation at the same moment, on two threads, and whoever
/// ends it may see the coroutine run on and destroy the wait. So each kind of wait keeps to one order: the
/// stop callback is installed first; `link` makes the wait known to those who may end it, as its very last
/// act; both look at the wait under one lock, which belongs to the derived class; and whoever takes the wait
/// out again schedules its waiter after the lock, touching nothing of the wait afterwards.
class LeafWait {
public:
    LeafWait(const LeafWait&) = delete;
    LeafWait& operator=(const LeafWait&) = delete;
    virtual ~LeafWait() = default;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <std::derived_from<PromiseBase> P>
    bool await_suspend(std::coroutine_handle<P> handle) {
        return begin(handle.promise());
    }

protected:
    explicit LeafWait(Stopping stopping = Stopping::heeded) noexcept : stopping_(stopping) {}

    /// False: there is nothing to wait for, or the stop came first; the coroutine goes on.
    virtual bool link() = 0;
    /// The task was cancelled. At most once, on any thread, possibly before `link`.
    virtual void stop() noexcept = 0;

    /// To be said first in `await_resume`: after it, `stop` is neither running nor will it be.
    void end() noexcept { callback_.reset(); }
    [[nodiscard]] PromiseBase* waiter() const noexcept { return waiter_; }

private:
    struct OnStop {
        LeafWait* wait;
        void operator()() const noexcept { wait->stop(); }
    };

    bool begin(PromiseBase& promise) {
        waiter_ = &promise;
        if (stopping_ == Stopping::heeded && promise.stop->stop_possible())
            callback_.emplace(*promise.stop, OnStop{this});
        return link();
    }

    const Stopping stopping_;
    PromiseBase* waiter_ = nullptr;
    std::optional<std::stop_callback<OnStop>> callback_;
};

}  // namespace cairnfield::detail
