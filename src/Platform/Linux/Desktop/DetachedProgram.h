#pragma once
// Starting another program that lives on its own: in a session of its own, not our child, with nothing of
// ours open. For programs that a person uses; what we wait for and read goes through ChildProcess.

#include "Shared/Environment/Environment.h"
#include "Shared/Paths/FilePath.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// Returns once the program runs. `environment` is all that it gets, beside the default signals and no
/// standard input. Throws std::system_error when it cannot be started: it is missing, or the working
/// directory cannot be entered.
void startDetached(const FilePath& executable, const std::vector<std::string>& arguments,
                   const std::optional<FilePath>& workingDirectory, const Environment& environment);

/// The environment for a program that a person goes on to use: ours as it was at the start, but for the leave
/// to bring a window forward, which was meant for us and is used up. In its place stands `activationToken`,
/// unless it is empty.
[[nodiscard]] Environment environmentForPerson(Environment atStart, const std::string& activationToken);

/// The first of the programs that is found in one of the directories, directories first to last for each
/// program.
[[nodiscard]] std::optional<FilePath> findProgram(const std::vector<std::string>& names,
                                                  const std::vector<FilePath>& directories);

}  // namespace cairnfield
