#pragma once
// A child that never was: its streams, its end and what a wait meets are the test's, and what is done to it
// is counted.

#include "Platform/ChildProcess.h"

#include <functional>
#include <system_error>

namespace cairnfield {

/// What happens to the children of one starter, and what was done to them. Outlives them.
struct ChildProcessScript {
    ChildProcessOutput output;
    int status = 0;
    ChildProcessWait wait = ChildProcessWait::ended;
    std::optional<std::error_code> launchFailure;
    std::function<void()> whileWaiting = [] {};

    std::optional<ChildProcessDescription> started;
    std::optional<ContinuousClock::Instant> deadline;  ///< of the wait that heeds one
    int shieldedWaits = 0;
    int terminations = 0;
};

class ScriptedChildProcessStarter final : public ChildProcessStarting {
public:
    explicit ScriptedChildProcessStarter(ChildProcessScript& script) : script_(script) {}

    [[nodiscard]] std::unique_ptr<ChildProcess> start(const ChildProcessDescription& description) override;

private:
    ChildProcessScript& script_;
};

}  // namespace cairnfield
