#pragma once

#include "Shared/Concurrency/RunBlocking.h"

#include <type_traits>

namespace cairnfield {

namespace detail {
template <class T>
Task<T> relayed(Task<T> task) {
    if constexpr (std::is_void_v<T>) {
        co_await std::move(task);
    } else {
        T value = co_await std::move(task);
        co_return value;
    }
}

template <class T>
Task<T> valueOf(TaskHandle<T> handle) {
    if constexpr (std::is_void_v<T>) {
        co_await handle.value();
    } else {
        T value = co_await handle.value();
        co_return value;
    }
}
}  // namespace detail

/// Runs a task to its end on the executor while the test's thread blocks, and gives its value or throws what
/// it threw. The executor is one with threads of its own.
template <class T>
T waitFor(Executor& executor, Task<T> task) {
    return runBlocking(detail::relayed<T>(std::move(task)).on(executor));
}

/// The same where the test's thread is the main thread: it runs the loop meanwhile.
template <class T>
T waitFor(RunLoop& loop, Task<T> task) {
    return runToEnd(loop, std::move(task));
}

/// Waits for the end of a task that was started already. Not for one that needs the test's thread.
template <class T>
T waitFor(TaskHandle<T> handle) {
    return runBlocking(detail::valueOf<T>(std::move(handle)));
}

/// The same for one that needs the loop of the test's thread.
template <class T>
T waitFor(RunLoop& loop, TaskHandle<T> handle) {
    return runToEnd(loop, detail::valueOf<T>(std::move(handle)));
}

}  // namespace cairnfield
