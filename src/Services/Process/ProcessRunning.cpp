#include "Services/Process/ProcessRunning.h"

#include "Shared/Text/Text.h"

#include <algorithm>
#include <cstddef>

namespace cairnfield {

namespace {

/// Later arguments can hold paths, which have no place in a log line.
constexpr std::size_t shownArguments = 3;

}  // namespace

std::string CommandInvocation::displayName() const {
    std::string name = executableURL.lastComponent();
    const std::size_t shown = std::min(arguments.size(), shownArguments);
    for (std::size_t i = 0; i < shown; ++i) name.append(" ").append(arguments[i]);
    return name;
}

std::string CommandResult::outputString() const {
    return repairedUTF8(standardOutput);
}

std::string CommandResult::trimmedOutput() const {
    return std::string(trimmed(outputString()));
}

}  // namespace cairnfield
