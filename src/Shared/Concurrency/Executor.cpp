#include "Shared/Concurrency/Executor.h"

#include <utility>

namespace cairnfield {

namespace {
// Touched in this file only: a coroutine that reads a thread-local may resume on another thread with the
// address of the first one's still in a register.
thread_local const Executor* currentExecutor = nullptr;
}  // namespace

bool Executor::isCurrent() const noexcept {
    return currentExecutor == this;
}

void Executor::runNow(Work* work) const noexcept {
    const Executor* outer = std::exchange(currentExecutor, this);
    work->run(work);
    currentExecutor = outer;
}

}  // namespace cairnfield
