#include "Services/Process/SystemProcessRunner.h"

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <system_error>
#include <utility>

namespace cairnfield {

Task<CommandResult> SystemProcessRunner::run(CommandInvocation invocation) {
    return execute(std::move(invocation)).on(pool_);
}

Task<CommandResult> SystemProcessRunner::execute(CommandInvocation invocation) {
    const std::stop_token stop = co_await currentStopToken();
    const bool cancelledBefore = stop.stop_requested();
    const std::string name = invocation.displayName();
    const std::chrono::nanoseconds timeout = invocation.timeout;
    const ContinuousClock::Instant started = clock_.now();

    const std::unique_ptr<ChildProcess> child = launch(std::move(invocation));
    ChildProcessOutput output;
    if (cancelledBefore) {
        co_await child->waitForEndShielded(output);
        throw Cancelled();
    }
    const ChildProcessWait wait = co_await child->waitForEnd(BootClock::add(started, timeout), output);
    if (wait != ChildProcessWait::ended) {
        child->terminate();
        co_await child->waitForEndShielded(output);
    }
    if (wait == ChildProcessWait::cancelled) throw Cancelled();
    if (wait == ChildProcessWait::deadline) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(timeout);
        throw CairnfieldError(CairnfieldError::CommandTimedOut{name, static_cast<double>(seconds.count())});
    }

    CommandResult result{child->end().status, std::move(output.output),
                         std::string(trimmed(repairedUTF8(output.error)))};
    const auto elapsed = std::chrono::duration_cast<std::chrono::seconds>(clock_.now() - started);
    Log::git().debug("{} exited {} in {}s", visibleText(name), result.exitCode, elapsed.count());
    co_return result;
}

std::unique_ptr<ChildProcess> SystemProcessRunner::launch(CommandInvocation invocation) const {
    const std::string name = invocation.displayName();
    try {
        return starter_.start({std::move(invocation.executableURL), std::move(invocation.arguments),
                               std::move(invocation.currentDirectory), std::move(invocation.environment),
                               std::move(invocation.standardInput)});
    } catch (const std::system_error& error) {
        throw CairnfieldError(CairnfieldError::CommandFailed{name, -1, visibleText(error.what())});
    }
}

}  // namespace cairnfield
