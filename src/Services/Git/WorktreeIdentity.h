#pragma once
// Whether the path of a listed worktree is still that worktree. git finds the repository of a directory by
// looking upwards, and so answers for an enclosing repository, or for another one that was put in the place,
// as readily as for the worktree that is meant. Read from two or three small files without git, links
// followed, so that a home that was moved, a bind mount and relative paths change nothing. Blocking, any
// thread.

#include "Models/Worktree.h"

#include <optional>
#include <string>

namespace cairnfield {

enum class WorktreeLink {
    intact,          ///< the path and its own Git directory name each other
    gitFileMissing,  ///< as after a removal that was interrupted
    leadsNowhere,    ///< its Git file names nothing that is there
    leadsElsewhere,  ///< to another repository, another worktree, or it is no directory at all
};

/// Of a linked worktree. `repositoryRoot` is the main worktree, or the Git directory of a bare repository.
/// Throws std::system_error for what is there and cannot be read.
[[nodiscard]] WorktreeLink linkOf(const FilePath& worktree, const FilePath& repositoryRoot);

/// Why the path must not be taken for the entry's worktree, and what can be done about it, in words for a
/// person; absent when it may. A main worktree is always itself, and what cannot be read is a reason.
[[nodiscard]] std::optional<std::string> whyNotTheListedWorktree(const GitWorktreeEntry& entry,
                                                                 const FilePath& repositoryRoot);

/// The same for a linked worktree that was reviewed, in a word. False when that cannot be read.
[[nodiscard]] bool isStillTheReviewedWorktree(const Worktree& reviewed);

/// Whether git's answer to where the repository of a checkout is comes from the checkout's own ".git", and
/// not from one above it. False when that cannot be read.
[[nodiscard]] bool isOwnRepository(const FilePath& checkout, const FilePath& commonDirectory);

}  // namespace cairnfield
