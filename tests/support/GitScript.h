#pragma once
// git run by a test's script, as a person would run it in a terminal: what the script asks for really
// happens. The surroundings are always the same: no settings but the repository's own, one identity, one
// date, no housekeeping in the background. Blocks. The program under test never comes this way.

#include "Shared/Paths/FilePath.h"

#include <string>
#include <vector>

namespace cairnfield {

struct GitOutcome {
    int exitCode = 0;
    std::string output;  ///< both streams, as they came
};

/// The commits of scripts bear this date, so that equal scripts make equal commits.
inline constexpr const char* scriptedCommitDate = "2026-01-05T09:00:00Z";

/// Throws std::system_error when git cannot be started.
[[nodiscard]] GitOutcome runGit(const FilePath& directory, const std::vector<std::string>& arguments);

}  // namespace cairnfield
