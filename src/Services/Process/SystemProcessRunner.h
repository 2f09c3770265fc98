#pragma once
// The runner that starts real children. Holds nothing but what it was given, so any number of commands run at
// once; none of them occupies a thread while it waits.

#include "Services/Process/ProcessRunning.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/Executor.h"

namespace cairnfield {

/// What a caller may rely on, beyond ProcessRunning:
///
/// - The one signal that a child ever gets is a single SIGTERM to its process group, at its time limit or
/// when the
///   calling task is cancelled. A child that ignores it keeps `run` suspended for as long as it lives.
/// - A task that was cancelled before the launch starts its program all the same, leaves it alone and waits
/// for it.
/// - A descendant that keeps a stream open delays the result, and nothing else: the time limit is the child's
/// own.
/// - Both streams are read side by side while the child runs, without a cap.
/// - A failure to read or to wait, which no program can bring about, comes out as std::system_error: output
/// that may be
///   incomplete never passes for an answer.
class SystemProcessRunner final : public ProcessRunning {
public:
    /// Everything outlives the commands. Launching and reading take place on the pool, whoever calls.
    SystemProcessRunner(ChildProcessStarting& starter, const ContinuousClock& clock, Executor& pool) noexcept
        : starter_(starter), clock_(clock), pool_(pool) {}

    Task<CommandResult> run(CommandInvocation invocation) override;

private:
    Task<CommandResult> execute(CommandInvocation invocation);
    [[nodiscard]] std::unique_ptr<ChildProcess> launch(CommandInvocation invocation) const;

    ChildProcessStarting& starter_;
    const ContinuousClock& clock_;
    Executor& pool_;
};

}  // namespace cairnfield
