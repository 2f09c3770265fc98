#include "fault/FaultyProcessRunner.h"

#include <exception>
#include <utility>

namespace cairnfield {

Task<CommandResult> FaultyProcessRunner::run(CommandInvocation invocation) {
    std::string line = invocation.executableURL.lastComponent();
    for (const std::string& argument : invocation.arguments) line += " " + argument;
    makeFaulty(invocation, line);
    checkpoints_.reach(phase_ + "before " + line);

    CommandResult result;
    std::exception_ptr failure;
    try {
        result = co_await runner_.run(std::move(invocation));
    } catch (...) {
        failure = std::current_exception();
    }
    checkpoints_.reach(phase_ + "after " + line);
    if (failure) std::rethrow_exception(failure);
    co_return result;
}

void FaultyProcessRunner::makeFaulty(CommandInvocation& invocation, const std::string& line) {
    for (const auto& [beginning, limit] : request_.limits) {
        if (line.starts_with(beginning)) invocation.timeout = limit;
    }
    const std::optional<std::string> kind = faultOf(++started_, line);
    if (!kind) return;
    invocation.environment["FAULT_KIND"] = *kind;
    invocation.environment["FAULT_PROGRAM"] = invocation.executableURL.bytes();
    invocation.executableURL = *request_.faultScript;
    if (kind->starts_with("hang")) invocation.timeout = request_.hangLimit;
}

std::optional<std::string> FaultyProcessRunner::faultOf(std::size_t number, const std::string& line) const {
    const auto numbered = request_.faults.find(number);
    if (numbered != request_.faults.end()) return numbered->second;
    for (const auto& [beginning, kind] : request_.faultsByLine) {
        if ((phase_ + line).starts_with(beginning)) return kind;
    }
    return std::nullopt;
}

}  // namespace cairnfield
