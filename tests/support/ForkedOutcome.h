#pragma once

#include <functional>
#include <string>

namespace cairnfield {

/// Runs `body` in a child process, which can give up rights or change what it sees of the system, and gives
/// the text that it returned. Not while other threads run.
[[nodiscard]] std::string outcomeInChild(const std::function<std::string()>& body);

}  // namespace cairnfield
