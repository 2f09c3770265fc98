#pragma once
// Answers or fails by the first two words of a command, and remembers what it was asked. No program is
// started. One thread at a time.

#include "Services/Process/ProcessRunning.h"

#include <exception>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace cairnfield {

class ScriptedProcessRunner final : public ProcessRunning {
public:
    std::map<std::string, CommandResult> results;
    std::map<std::string, std::exception_ptr> failures;
    std::vector<CommandInvocation> invocations;
    std::function<void(const CommandInvocation&)> look;

    Task<CommandResult> run(CommandInvocation invocation) override {
        std::string words = invocation.arguments.front();
        if (invocation.arguments.size() > 1) words += " " + invocation.arguments[1];
        invocations.push_back(invocation);
        if (look) look(invocation);
        if (failures.contains(words)) std::rethrow_exception(failures[words]);
        co_return results[words];
    }
};

}  // namespace cairnfield
