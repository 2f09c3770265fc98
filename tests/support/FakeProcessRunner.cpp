#include "support/FakeProcessRunner.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

void FakeProcessRunner::expect(Match match, CommandResult result) {
    const std::lock_guard lock(mutex_);
    expectations_.push_back({std::move(match), std::move(result)});
}

void FakeProcessRunner::expectArguments(std::vector<std::string> arguments, CommandResult result) {
    const auto match = [arguments = std::move(arguments)](const CommandInvocation& invocation) {
        return invocation.arguments == arguments;
    };
    expect(match, std::move(result));
}

std::vector<CommandInvocation> FakeProcessRunner::invocations() const {
    const std::lock_guard lock(mutex_);
    return invocations_;
}

CommandResult FakeProcessRunner::answer(const CommandInvocation& invocation) {
    const std::lock_guard lock(mutex_);
    invocations_.push_back(invocation);
    const auto matches = [&invocation](const Expectation& expectation) {
        return expectation.match(invocation);
    };
    const auto found = std::find_if(expectations_.rbegin(), expectations_.rend(), matches);
    if (found != expectations_.rend()) return found->result;
    return {127, "", "no stub for " + invocation.displayName()};
}

Task<CommandResult> FakeProcessRunner::run(CommandInvocation invocation) {
    co_return answer(invocation);
}

}  // namespace cairnfield
