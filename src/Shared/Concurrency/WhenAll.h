#pragma once

#include "Shared/Concurrency/Task.h"

#include <atomic>
#include <cstddef>
#include <vector>

namespace cairnfield {

namespace detail {

struct Latch {
    std::atomic<std::size_t> left = 0;
    PromiseBase* parent = nullptr;
};

/// One child of `whenAll`: belongs to the parent's executor, so that the last one to end may resume the
/// parent directly.
class Branch {
public:
    struct promise_type : PromiseBase {
        Latch* latch = nullptr;

        struct Arrival {
            [[nodiscard]] bool await_ready() const noexcept { return false; }
            std::coroutine_handle<> await_suspend(std::coroutine_handle<promise_type> handle) const noexcept {
                Latch& shared = *handle.promise().latch;
                PromiseBase* parent = shared.parent;
                if (shared.left.fetch_sub(1, std::memory_order_acq_rel) == 1) return parent->self;
                return std::noop_coroutine();
            }
            void await_resume() const noexcept {}
        };

        Branch get_return_object() noexcept {
            const auto handle = std::coroutine_handle<promise_type>::from_promise(*this);
            bind(handle);
            return Branch(handle);
        }
        [[nodiscard]] std::suspend_always initial_suspend() const noexcept { return {}; }
        [[nodiscard]] Arrival final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };

    Branch(Branch&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Branch& operator=(Branch&&) = delete;
    ~Branch() {
        if (handle_) handle_.destroy();
    }
    [[nodiscard]] promise_type& promise() const noexcept { return handle_.promise(); }

private:
    explicit Branch(std::coroutine_handle<promise_type> handle) noexcept : handle_(handle) {}

    std::coroutine_handle<promise_type> handle_;
};

template <class T>
Branch branchOf(Task<T> body, Outcome<T>* outcome) {
    Task<T> task = std::move(body);
    try {
        if constexpr (std::is_void_v<T>) {
            co_await std::move(task);
            outcome->set();
        } else {
            T value = co_await std::move(task);
            outcome->set(std::move(value));
        }
    } catch (...) {
        outcome->fail();
    }
}

/// Starts all branches and suspends until the last has arrived. The parent holds one count itself while it
/// starts them.
struct BranchStart {
    std::vector<Branch>& branches;
    Latch& latch;
    [[nodiscard]] bool await_ready() const noexcept { return branches.empty(); }
    template <std::derived_from<PromiseBase> P>
    bool await_suspend(std::coroutine_handle<P> handle) const noexcept {
        PromiseBase& parent = handle.promise();
        Latch& shared = latch;
        shared.parent = &parent;
        shared.left.store(branches.size() + 1, std::memory_order_relaxed);
        for (const Branch& branch : branches) {
            branch.promise().latch = &shared;
            branch.promise().adopt(parent);
            branch.promise().schedule();
        }
        return shared.left.fetch_sub(1, std::memory_order_acq_rel) != 1;
    }
    void await_resume() const noexcept {}
};

}  // namespace detail

/// Runs all tasks at once and waits for every one of them, whatever fails. Then gives their values in the
/// given order, or throws the first failure in that order. A failure does not cancel the others; a
/// cancellation reaches all.
template <class T>
Task<std::vector<T>> whenAll(std::vector<Task<T>> tasks) {
    std::vector<detail::Outcome<T>> outcomes(tasks.size());
    std::vector<detail::Branch> branches;
    branches.reserve(tasks.size());
    for (std::size_t i = 0; i < tasks.size(); ++i)
        branches.push_back(detail::branchOf<T>(std::move(tasks[i]), &outcomes[i]));
    detail::Latch latch;
    co_await detail::BranchStart{branches, latch};
    std::vector<T> values;
    values.reserve(outcomes.size());
    for (detail::Outcome<T>& outcome : outcomes) values.push_back(outcome.take());
    co_return values;
}

inline Task<> whenAll(std::vector<Task<>> tasks) {
    std::vector<detail::Outcome<void>> outcomes(tasks.size());
    std::vector<detail::Branch> branches;
    branches.reserve(tasks.size());
    for (std::size_t i = 0; i < tasks.size(); ++i)
        branches.push_back(detail::branchOf<void>(std::move(tasks[i]), &outcomes[i]));
    detail::Latch latch;
    co_await detail::BranchStart{branches, latch};
    for (detail::Outcome<void>& outcome : outcomes) outcome.take();
}

/// The tasks as a vector: they cannot be copied, so an initialiser list does not do.
template <class T, class... Rest>
[[nodiscard]] std::vector<Task<T>> tasks(Task<T> first, Rest... rest) {
    std::vector<Task<T>> all;
    all.reserve(1 + sizeof...(rest));
    all.push_back(std::move(first));
    (all.push_back(std::move(rest)), ...);
    return all;
}

}  // namespace cairnfield
