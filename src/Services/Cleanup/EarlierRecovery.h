#pragma once
// The proof for a worktree that stands on the recovery branch of an earlier attempt. That attempt stopped, so
// that what it pushed may never have been confirmed, while the copy here of the remote's branch says that the
// commits are safe. The remote itself is asked once more. Belongs to one run of the coordinator and runs on
// its caller's executor.

#include "Services/Cleanup/CleanupPlan.h"
#include "Services/Git/GitCommandRunner.h"

namespace cairnfield::EarlierRecovery {

/// Whether the worktree is on such a branch, by the plan's own prefix, with commits that the default branch
/// is not known to have, and the plan itself proves nothing. Pure.
[[nodiscard]] bool needsProof(const CleanupPlan& plan);

/// Throws CairnfieldError when the remote does not name that branch, or names it without what HEAD is at.
[[nodiscard]] Task<> prove(GitCommandRunner git, CleanupPlan plan);

}  // namespace cairnfield::EarlierRecovery
