#pragma once

#include "Shared/Concurrency/Executor.h"

#include <coroutine>
#include <exception>
#include <stop_token>
#include <utility>
#include <variant>

/// What every coroutine of this folder carries. For the other headers here, and for those who write a wait of
/// their own.
namespace cairnfield::detail {

/// The token of work that nothing cancels.
inline const std::stop_token neverStops;

/// A suspended coroutine as a piece of work, with the executor it belongs to and the cancellation it
/// inherits.
struct PromiseBase : Work {
    Executor* executor = nullptr;
    const std::stop_token* stop = nullptr;
    PromiseBase* continuation = nullptr;
    std::coroutine_handle<> self;

    void bind(std::coroutine_handle<> handle) noexcept {
        self = handle;
        run = [](Work* work) noexcept { static_cast<PromiseBase*>(work)->self.resume(); };
    }
    /// Takes from the awaiting coroutine what this one was not given itself.
    void adopt(const PromiseBase& parent) noexcept {
        if (!executor) executor = parent.executor;
        if (!stop) stop = parent.stop;
    }
    /// Resumes the coroutine on its executor. It may already have run to its end when this returns.
    void schedule() noexcept { executor->post(this); }
};

/// How a task ended: with a value or with what it threw.
template <class T>
class Outcome {
public:
    template <class U>
    void set(U&& value) {
        result_.template emplace<1>(std::forward<U>(value));
    }
    void fail() noexcept { result_.template emplace<2>(std::current_exception()); }
    [[nodiscard]] std::exception_ptr failure() const noexcept {
        return result_.index() == 2 ? std::get<2>(result_) : nullptr;
    }
    T take() {
        if (result_.index() == 2) std::rethrow_exception(std::get<2>(result_));
        return std::move(std::get<1>(result_));
    }
    const T& get() const {
        if (result_.index() == 2) std::rethrow_exception(std::get<2>(result_));
        return std::get<1>(result_);
    }

private:
    std::variant<std::monostate, T, std::exception_ptr> result_;
};

template <>
class Outcome<void> {
public:
    void set() noexcept {}
    void fail() noexcept { failure_ = std::current_exception(); }
    [[nodiscard]] std::exception_ptr failure() const noexcept { return failure_; }
    void take() const {
        if (failure_) std::rethrow_exception(failure_);
    }
    void get() const { take(); }

private:
    std::exception_ptr failure_;
};

/// At the end of a coroutine: on to the one that awaits it, directly when both belong to one executor.
struct FinalAwaiter {
    [[nodiscard]] bool await_ready() const noexcept { return false; }
    template <class P>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<P> handle) const noexcept {
        const PromiseBase& ended = handle.promise();
        PromiseBase* next = ended.continuation;
        if (next->executor == ended.executor) return next->self;
        next->schedule();  // from here on the ended frame may be gone
        return std::noop_coroutine();
    }
    void await_resume() const noexcept {}
};

}  // namespace cairnfield::detail
