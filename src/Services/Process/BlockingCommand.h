#pragma once

#include "Platform/ChildProcess.h"

namespace cairnfield {

/// The output of a small program, for the one lookup that cannot suspend: it blocks the calling thread until
/// the program has ended, without a time limit. Absent when the program cannot be launched or its exit status
/// is not 0. What it writes to standard error is dropped. Everything else goes through ProcessRunning.
[[nodiscard]] std::optional<std::string> outputOfBlockingCommand(const FilePath& executable,
                                                                 const std::vector<std::string>& arguments,
                                                                 const Environment& environment);

}  // namespace cairnfield
