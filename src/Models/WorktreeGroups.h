#pragma once
// The questions that totals and counts ask of a worktree's verdict. Pure functions, any thread.

#include "Models/Worktree.h"

namespace cairnfield {

/// Nothing in it is unique: safe to clean, or preserved remotely.
[[nodiscard]] bool isSafeOrPreserved(WorktreeSafety safety);

/// The same, of a worktree that may go: neither the main checkout nor pinned.
[[nodiscard]] bool isReclaimable(const Worktree& worktree);

/// A person has to preserve or to look at something first.
[[nodiscard]] bool needsAttention(const Worktree& worktree);

}  // namespace cairnfield
