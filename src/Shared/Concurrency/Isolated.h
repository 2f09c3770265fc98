#pragma once

#include "Shared/Concurrency/Executor.h"

#include <cassert>

namespace cairnfield {

/// Base of every object whose state belongs to one executor: an `Actor`, or what lives on the main thread.
///
/// Each coroutine that is a member of such an object, or that takes one as its first parameter, runs on the
/// object's executor, whoever awaits it. Ordinary member functions do not hop: they say `assertIsolated()`
/// first. Keep public operations coroutines, and the object alive until all of them have ended.
class Isolated {
public:
    using IsolatedTag = void;

    [[nodiscard]] Executor& executor() const noexcept { return *executor_; }

protected:
    explicit Isolated(Executor& executor) noexcept : executor_(&executor) {}
    ~Isolated() = default;

    void assertIsolated() const noexcept { assert(executor_->isCurrent()); }

private:
    Executor* executor_;
};

}  // namespace cairnfield
