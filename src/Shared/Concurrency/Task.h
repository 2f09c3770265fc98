#pragma once

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/TaskPromise.h"

#include <cassert>
#include <concepts>
#include <coroutine>
#include <type_traits>
#include <utility>

namespace cairnfield {

namespace detail {

template <class T>
concept IsolatedObject = requires { typename std::remove_cvref_t<T>::IsolatedTag; };

template <class T>
struct TaskResult : PromiseBase {
    Outcome<T> outcome;
    template <class U = T>
        requires std::constructible_from<T, U&&>
    void return_value(U&& value) {
        outcome.set(std::forward<U>(value));
    }
    void unhandled_exception() noexcept { outcome.fail(); }
};

template <>
struct TaskResult<void> : PromiseBase {
    Outcome<void> outcome;
    void return_void() noexcept {}
    void unhandled_exception() noexcept { outcome.fail(); }
};

}  // namespace detail

/// A lazy coroutine: nothing happens until it is awaited, once, or handed to `spawn`, `whenAll` or a
/// `TaskScope`.
///
/// Where it runs: a coroutine of an `Isolated` object on that object's executor, any other on its caller's.
/// Awaiting hops there and back; between coroutines of one executor it is a plain transfer, without a hop.
///
/// How it fails: what the coroutine throws comes out of the `co_await`. Cancellation is a flag that every
/// awaited task inherits; only waits and `checkCancelled()` react to it, by throwing `Cancelled` or answering
/// so. Nothing else stops.
///
/// Parameters are taken by value, or belong to the caller that awaits. A `Task` that is dropped unawaited
/// never runs.
template <class T = void>
class [[nodiscard]] Task {
    static_assert(!std::is_reference_v<T>, "a task hands over a value");

public:
    struct promise_type : detail::TaskResult<T> {
        promise_type() noexcept = default;
        template <detail::IsolatedObject First, class... Rest>
        explicit promise_type(First& first, Rest&...) noexcept {
            this->executor = &first.executor();
        }
        Task get_return_object() noexcept {
            const Handle handle = Handle::from_promise(*this);
            this->bind(handle);
            return Task(handle);
        }
        [[nodiscard]] std::suspend_always initial_suspend() const noexcept { return {}; }
        [[nodiscard]] detail::FinalAwaiter final_suspend() const noexcept { return {}; }
    };
    using Handle = std::coroutine_handle<promise_type>;

    Task(Task&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Task& operator=(Task&&) = delete;
    ~Task() {
        if (handle_) handle_.destroy();
    }

    /// Runs on the given executor, whatever awaits it. Not for a coroutine of an isolated object, which has
    /// its place.
    Task on(Executor& executor) && {
        assert(!handle_.promise().executor);
        handle_.promise().executor = &executor;
        return std::move(*this);
    }

    /// Does not see the cancellation of what awaits it: for clean-up that must wait to the end.
    Task shielded() && {
        handle_.promise().stop = &detail::neverStops;
        return std::move(*this);
    }

    struct Awaiter {
        Handle handle;
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <std::derived_from<detail::PromiseBase> P>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<P> awaiting) const noexcept {
            detail::PromiseBase& parent = awaiting.promise();
            detail::PromiseBase& child = handle.promise();
            child.continuation = &parent;
            child.adopt(parent);
            if (child.executor == parent.executor) return handle;
            child.schedule();
            return std::noop_coroutine();
        }
        T await_resume() const { return handle.promise().outcome.take(); }
    };
    Awaiter operator co_await() && noexcept {
        assert(handle_);
        return Awaiter{handle_};
    }

private:
    explicit Task(Handle handle) noexcept : handle_(handle) {}

    Handle handle_;
};

}  // namespace cairnfield
