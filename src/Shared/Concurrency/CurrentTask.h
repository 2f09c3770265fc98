#pragma once

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/TaskPromise.h"

#include <concepts>
#include <coroutine>
#include <stop_token>

namespace cairnfield {

namespace detail {

struct StopTokenAwaiter {
    const std::stop_token* token = nullptr;
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <std::derived_from<PromiseBase> P>
    bool await_suspend(std::coroutine_handle<P> handle) noexcept {
        token = handle.promise().stop;
        return false;
    }
    [[nodiscard]] std::stop_token await_resume() const noexcept { return *token; }
};

struct CancellationCheck : StopTokenAwaiter {
    void await_resume() const {
        if (token->stop_requested()) throw Cancelled();
    }
};

struct Yield {
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <std::derived_from<PromiseBase> P>
    void await_suspend(std::coroutine_handle<P> handle) const noexcept {
        handle.promise().schedule();
    }
    void await_resume() const noexcept {}
};

}  // namespace detail

/// `const std::stop_token stop = co_await currentStopToken();` for handing to blocking code.
[[nodiscard]] inline detail::StopTokenAwaiter currentStopToken() noexcept {
    return {};
}

/// `co_await checkCancelled();` throws `Cancelled` when the current task was cancelled. It never suspends.
[[nodiscard]] inline detail::CancellationCheck checkCancelled() noexcept {
    return {};
}

/// `co_await yieldNow();` lets everything already queued on this executor run first. It ignores cancellation.
[[nodiscard]] inline detail::Yield yieldNow() noexcept {
    return {};
}

}  // namespace cairnfield
