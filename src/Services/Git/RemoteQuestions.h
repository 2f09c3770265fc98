#pragma once
// The part of an inspection that asks where the commits of a worktree are besides here. Everything is read
// from the local refs, so the answers are as fresh as the last fetch and the same offline. A question without
// an answer leaves its field empty, absent or false. Part of GitWorktreeInspector; nobody else needs it.

#include "Models/Worktree.h"
#include "Services/Git/GitCommandRunner.h"

#include <chrono>

namespace cairnfield {

/// How long one question of an inspection may take.
inline constexpr std::chrono::seconds questionLimit{20};

/// Fills `remotes`, in git's order. A remote whose URL cannot be read has empty URLs. The record is the
/// caller's.
[[nodiscard]] Task<> readRemotes(GitCommandRunner git, Worktree& worktree);

/// Fills `tracking` from the record's `path`, `remotes` and `headSHA`: against "origin" if there is one,
/// otherwise against the first remote, otherwise against the local base branch. The record is the caller's.
[[nodiscard]] Task<> readTracking(GitCommandRunner git, Worktree& worktree);

}  // namespace cairnfield
