#pragma once
// The variables that a process is started with, as a value. The program reads its own once, at its start, and
// neither changes them nor asks for them again: a change beside a thread that reads them (ours, or one of a
// library) is a race that no lock of ours could prevent. What a child gets is a value made from this one.

#include <map>
#include <optional>
#include <string>

namespace cairnfield {

using Environment = std::map<std::string, std::string>;

/// What this process was given by whoever started it. Read at the first call, which belongs before the first
/// thread; the same value from then on, from any thread.
[[nodiscard]] const Environment& environmentAtStart();

/// Absent when the variable is not set; an empty value is one.
[[nodiscard]] std::optional<std::string> valueOf(const Environment& environment, const std::string& name);

namespace detail {

/// For tests that try other surroundings in one process: takes the process's variables for those of its start
/// once more. Not while another thread reads them.
void readEnvironmentAgain();

}  // namespace detail

}  // namespace cairnfield
