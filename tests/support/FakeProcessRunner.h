#pragma once
// Answers commands from what the test expects, and remembers them. No program is started. From any thread.

#include "Services/Process/ProcessRunning.h"

#include <functional>
#include <mutex>
#include <vector>

namespace cairnfield {

class FakeProcessRunner final : public ProcessRunning {
public:
    using Match = std::function<bool(const CommandInvocation&)>;

    struct Expectation {
        Match match;
        CommandResult result;
    };

    /// The last one that matches answers, so a test can override what its fixture expects.
    void expect(Match match, CommandResult result);
    /// Commands with exactly these arguments, whatever the program.
    void expectArguments(std::vector<std::string> arguments, CommandResult result);

    /// What it was asked to run, in order.
    [[nodiscard]] std::vector<CommandInvocation> invocations() const;

    /// Exit code 127 and the standard error "no stub for {displayName}" when nothing matches.
    Task<CommandResult> run(CommandInvocation invocation) override;

private:
    [[nodiscard]] CommandResult answer(const CommandInvocation& invocation);

    mutable std::mutex mutex_;
    std::vector<Expectation> expectations_;       // guarded by mutex_
    std::vector<CommandInvocation> invocations_;  // guarded by mutex_
};

}  // namespace cairnfield
