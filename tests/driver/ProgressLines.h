#pragma once
// Tells what a cleanup reports as "progress" lines. At a chosen stage the process stops (SIGSTOP) behind the
// stage's line and before its work, until a script lets it go on.

#include "Services/Cleanup/CleanupPlan.h"
#include "driver/JsonLines.h"

#include <exception>
#include <mutex>
#include <optional>

namespace cairnfield {

class ProgressLines {
public:
    ProgressLines(JsonLines& lines, std::optional<CleanupStage> pause) : lines_(lines), pause_(pause) {}

    /// From any thread, before the work that is reported begins.
    void tell(const CleanupProgress& progress) noexcept;
    /// Throws what went wrong while telling.
    void check();

private:
    JsonLines& lines_;
    const std::optional<CleanupStage> pause_;
    std::mutex mutex_;
    std::exception_ptr failure_;  // guarded by mutex_
};

}  // namespace cairnfield
