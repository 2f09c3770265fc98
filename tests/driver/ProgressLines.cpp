#include "driver/ProgressLines.h"

#include "driver/Records.h"

#include <csignal>

namespace cairnfield {

void ProgressLines::tell(const CleanupProgress& progress) noexcept {
    try {
        lines_.print("progress", jsonOf(progress));
    } catch (...) {
        const std::lock_guard lock(mutex_);
        failure_ = std::current_exception();
    }
    // To this very thread, which is the one that must not go on.
    if (progress.stage == pause_) std::raise(SIGSTOP);
}

void ProgressLines::check() {
    const std::lock_guard lock(mutex_);
    if (failure_) std::rethrow_exception(failure_);
}

}  // namespace cairnfield
