#pragma once

#include "Shared/Concurrency/RunLoop.h"
#include "Shared/Concurrency/TaskHandle.h"

namespace cairnfield {

/// Runs a task to its end on the loop of the calling thread, with whatever else is posted to that loop, and
/// gives its value or throws what it threw. For headless programs and tests. `quit` does not cut it short.
template <class T>
T runToEnd(RunLoop& loop, Task<T> task) {
    auto state = std::make_shared<detail::TaskState<T>>();
    const TaskHandle<T> handle(state);
    detail::rootOf<T>(state, std::move(task)).start(loop, state->token);
    while (!loop.runUntil([&handle] { return handle.done(); })) {
    }
    return state->outcome.take();
}

/// The same from a thread without a loop, which blocks meanwhile. Coroutines without a place of their own run
/// on the calling thread. A task that needs another loop of this very thread would wait for ever.
template <class T>
T runBlocking(Task<T> task) {
    RunLoop loop;
    return runToEnd(loop, std::move(task));
}

}  // namespace cairnfield
