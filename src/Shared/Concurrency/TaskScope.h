#pragma once

#include "Shared/Concurrency/TaskHandle.h"

#include <exception>
#include <functional>
#include <memory>

namespace cairnfield {

/// Owns tasks that run on their own, so that all of them have ended before what they use goes. Finished tasks
/// are forgotten: the scope grows with what is running, not with what ever ran. From any thread.
///
/// Shutting down reads `scope.cancel(); co_await scope.join();` (or `joinBlocking()` from a thread that no
/// task needs). Destroying a scope with a task still in it is a mistake of the program and asserts.
class TaskScope {
public:
    /// Told of what a task threw, unless it was `Cancelled`, on the task's executor. Must not throw.
    using FailureHandler = std::function<void(std::exception_ptr)>;

    /// Without a handler a failure is known to the task's handle only.
    explicit TaskScope(FailureHandler failed = nullptr);
    ~TaskScope();
    TaskScope(const TaskScope&) = delete;
    TaskScope& operator=(const TaskScope&) = delete;

    /// Starts the task on the executor. In a scope that was cancelled it starts cancelled: it runs to its
    /// first wait.
    TaskHandle<> add(Executor& executor, Task<> task);

    /// Cancels every task in the scope, and from now on every one that is added.
    void cancel();

    /// Waits until the scope is empty. The wait itself is not cancelled. A task must not join its own scope.
    Task<> join();

    /// The same for a thread that may block. No task may need that thread: on a main thread run its loop over
    /// `join()`.
    void joinBlocking();

    /// How many tasks have not ended.
    [[nodiscard]] std::size_t size() const;

private:
    struct State;
    struct Emptied;
    static detail::Root rootOf(std::shared_ptr<State> scope, std::shared_ptr<detail::TaskState<void>> state,
                               Task<> body);

    std::shared_ptr<State> state_;  // held by each task's root too
};

}  // namespace cairnfield
