#pragma once

#include "Shared/Concurrency/Task.h"

#include <memory>
#include <mutex>
#include <vector>

namespace cairnfield {

namespace detail {

/// Outlives the task: shared by its root coroutine and every handle.
template <class T>
struct TaskState {
    std::mutex mutex;
    bool done = false;                  // guarded by mutex
    std::vector<PromiseBase*> waiters;  // guarded by mutex
    Outcome<T> outcome;                 // written once, before done
    std::stop_source source;
    const std::stop_token token = source.get_token();

    void finish() noexcept {
        std::vector<PromiseBase*> all;
        {
            const std::lock_guard lock(mutex);
            done = true;
            all.swap(waiters);
        }
        for (PromiseBase* waiter : all) waiter->schedule();
    }
};

/// The coroutine at the bottom of a task that nobody awaits directly. Its frame frees itself.
struct Root {
    struct promise_type : PromiseBase {
        Root get_return_object() noexcept {
            bind(std::coroutine_handle<promise_type>::from_promise(*this));
            return {this};
        }
        [[nodiscard]] std::suspend_always initial_suspend() const noexcept { return {}; }
        [[nodiscard]] std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };
    PromiseBase* promise;

    void start(Executor& executor, const std::stop_token& stop) const noexcept {
        promise->executor = &executor;
        promise->stop = &stop;
        promise->schedule();
    }
};

template <class T>
Root rootOf(std::shared_ptr<TaskState<T>> state, Task<T> body) {
    {
        Task<T> task = std::move(body);  // its frame, arguments too, is gone before anyone hears of the end
        try {
            if constexpr (std::is_void_v<T>) {
                co_await std::move(task);
                state->outcome.set();
            } else {
                T value = co_await std::move(task);
                state->outcome.set(std::move(value));
            }
        } catch (...) {
            state->outcome.fail();
        }
    }
    state->finish();
}

}  // namespace detail

/// A task that runs on its own, as made by `spawn`. Copies mean the same task; dropping all of them neither
/// cancels nor ends it. From any thread. Everything but the question whether it is empty needs a handle that
/// holds a task.
template <class T = void>
class TaskHandle {
public:
    TaskHandle() = default;
    explicit TaskHandle(std::shared_ptr<detail::TaskState<T>> state) noexcept : state_(std::move(state)) {}

    [[nodiscard]] explicit operator bool() const noexcept { return state_ != nullptr; }

    /// Asks the task to end: its present and later waits throw `Cancelled`. Returns at once; asking twice is
    /// fine.
    void cancel() const {
        const auto state = state_;  // the handle itself may go while the task reacts
        if (state) state->source.request_stop();
    }

    [[nodiscard]] bool done() const {
        const std::lock_guard lock(state_->mutex);
        return state_->done;
    }

    class [[nodiscard]] Awaiter {
    public:
        explicit Awaiter(std::shared_ptr<detail::TaskState<T>> state) noexcept : state_(std::move(state)) {}
        [[nodiscard]] bool await_ready() const noexcept { return false; }
        template <std::derived_from<detail::PromiseBase> P>
        bool await_suspend(std::coroutine_handle<P> handle) const {
            const auto state = state_;  // once linked, this awaiter may go at any moment
            const std::lock_guard lock(state->mutex);
            if (state->done) return false;
            state->waiters.push_back(&handle.promise());
            return true;
        }
        T await_resume() const { return state_->outcome.get(); }

    private:
        std::shared_ptr<detail::TaskState<T>> state_;
    };

    /// `co_await handle.value()` gives a copy of the task's value or throws what it threw. Any number of
    /// tasks may wait. The wait itself is not cancelled: a waiter that is cancelled still waits for the
    /// task's end.
    Awaiter value() const { return Awaiter(state_); }

private:
    std::shared_ptr<detail::TaskState<T>> state_;
};

/// Starts a task of its own on the executor, with a cancellation of its own.
template <class T>
TaskHandle<T> spawn(Executor& executor, Task<T> task) {
    auto state = std::make_shared<detail::TaskState<T>>();
    detail::rootOf<T>(state, std::move(task)).start(executor, state->token);
    return TaskHandle<T>(std::move(state));
}

}  // namespace cairnfield
