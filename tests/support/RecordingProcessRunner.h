#pragma once
// Passes every command on to another runner and remembers it. From any thread; what is answered instead is set
// before the first command.

#include "Services/Process/ProcessRunning.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class RecordingProcessRunner final : public ProcessRunning {
public:
    explicit RecordingProcessRunner(ProcessRunning& runner) : runner_(runner) {}

    /// What a command is answered without being run, by the beginning of its arguments, joined by blanks.
    std::map<std::string, CommandResult> instead;

    Task<CommandResult> run(CommandInvocation invocation) override {
        std::string words;
        for (const std::string& argument : invocation.arguments) words += argument + ' ';
        for (const auto& [beginning, result] : instead) {
            if (words.starts_with(beginning + ' ')) return answered(result);
        }
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
    static Task<CommandResult> answered(CommandResult result) { co_return result; }

    ProcessRunning& runner_;
    std::mutex mutex_;
    std::vector<CommandInvocation> invocations_;  // guarded by mutex_
};

}  // namespace cairnfield
