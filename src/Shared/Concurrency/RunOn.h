#pragma once

#include "Shared/Concurrency/Task.h"

#include <type_traits>
#include <utility>

namespace cairnfield {

namespace detail {
template <class F>
Task<std::invoke_result_t<F&>> invocationOf(F function) {
    co_return function();
}
}  // namespace detail

/// `co_await runOn(blockingPool, f)` calls an ordinary function on another executor: the place for calls that
/// block. Cancelling does not interrupt the call; give it the task's stop token if it should look. Name a
/// lambda before handing it over; what it refers to must live until the end of the await.
template <class F>
[[nodiscard]] Task<std::invoke_result_t<F&>> runOn(Executor& executor, F function) {
    return detail::invocationOf<F>(std::move(function)).on(executor);
}

}  // namespace cairnfield
