#pragma once
// Passes commands on to real children, with a checkpoint before and after each, and lets chosen ones go
// wrong: in their place the driver's script is started, which knows how each fault looks. One cleanup at a
// time.

#include "Services/Process/ProcessRunning.h"
#include "fault/Checkpoints.h"
#include "fault/RunRequest.h"

#include <atomic>
#include <optional>
#include <string>

namespace cairnfield {

class FaultyProcessRunner final : public ProcessRunning {
public:
    /// Everything outlives the commands.
    FaultyProcessRunner(ProcessRunning& runner, Checkpoints& checkpoints, const RunRequest& request)
        : runner_(runner), checkpoints_(checkpoints), request_(request) {}

    Task<CommandResult> run(CommandInvocation invocation) override;

    /// Stands before the names of the checkpoints from then on.
    void enter(const std::string& phase) { phase_ = phase; }

private:
    void makeFaulty(CommandInvocation& invocation, const std::string& line);
    /// The kind of the fault that the command of this number and line has.
    [[nodiscard]] std::optional<std::string> faultOf(std::size_t number, const std::string& line) const;

    ProcessRunning& runner_;
    Checkpoints& checkpoints_;
    const RunRequest& request_;
    std::string phase_;  ///< changed between commands only
    std::atomic<std::size_t> started_ = 0;
};

}  // namespace cairnfield
