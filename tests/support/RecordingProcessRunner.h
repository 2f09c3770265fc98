#pragma once
// Passes every command on to another runner and remembers it. From any thread.

#include "Services/Process/ProcessRunning.h"

#include <mutex>
#include <utility>
#include <vector>

namespace cairnfield {

class RecordingProcessRunner final : public ProcessRunning {
public:
    explicit RecordingProcessRunner(ProcessRunning& runner) : runner_(runner) {}

    Task<CommandResult> run(CommandInvocation invocation) override {
        {
            const std::lock_guard lock(mutex_);
            invocations_.push_back(invocation);
        }
        return runner_.run(std::move(invocation));
    }

    /// What was asked for since the last time, in order.
    std::vector<CommandInvocation> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(invocations_, {});
    }

private:
    ProcessRunning& runner_;
    std::mutex mutex_;
    std::vector<CommandInvocation> invocations_;  // guarded by mutex_
};

}  // namespace cairnfield
