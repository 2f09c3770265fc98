#pragma once
// What git must not be told by the surroundings that the program happens to be started in. Every command that
// we run and read (Services/Process) gets an environment that is made from this one; programs that a person
// goes on to use, such as a terminal, get the program's own.
//
// Settings outrank those of the repository, the user and the system: git always looks for untracked files
// itself (else its own refusal to remove a worktree that holds some can vanish), asks no program of the
// repository's which files changed, trusts every time stamp, and never takes a remote's URL for a command.
// Objects that a repository lacks are not fetched in passing, since its settings say by which program. The
// variables go that point git to another repository, or change what a path or its content means. Programs and
// libraries are looked up in absolute places only, never in the folder that a command runs in.
//
// docs/security.md says what this leaves open.

#include "Shared/Environment/Environment.h"

namespace cairnfield {

/// The environment as it should be. Settings that it carries for git already stay, and ours stand behind
/// them, where they win. Pure.
[[nodiscard]] Environment safeForGit(Environment environment);

}  // namespace cairnfield
