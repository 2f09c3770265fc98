#pragma once
// What git must not be told by the surroundings that the program happens to be started in. Set once, at the
// start, in the program's own environment, so that every child inherits it.
//
// Settings outrank those of the repository, the user and the system: git always looks for untracked files
// itself (else its own refusal to remove a worktree that holds some can vanish), asks no program of the
// repository's which files changed, trusts every time stamp, and never takes a remote's URL for a command.
// Objects that a repository lacks are not fetched in passing, since its settings say by which program. The
// variables go that point git to another repository, or change what a path or its content means. Programs and
// libraries are looked up in absolute places only, never in the folder that a command runs in.
//
// docs/security.md says what this leaves open.

#include "Platform/ChildProcess.h"

namespace cairnfield {

/// The environment as it should be. Settings that it carries for git already stay, and ours stand behind
/// them, where they win. Pure.
[[nodiscard]] Environment safeForGit(Environment environment);

/// Gives this process that environment. Before any thread starts.
void makeOwnEnvironmentSafe();

}  // namespace cairnfield
