#pragma once
// git's machine-readable output as records. Pure functions in one pass, no failure: what is not recognised is
// skipped, so that a newer git breaks nothing. Paths and names stay the bytes that git wrote.

#include "Models/Git.h"

#include <string>
#include <string_view>
#include <vector>

namespace cairnfield::GitPorcelainParser {

/// Pieces between NULs; empty ones are kept, and one after the last NUL is not made up.
[[nodiscard]] std::vector<std::string_view> splitNulTerminated(std::string_view bytes);

/// Of `git worktree list --porcelain -z`. The first entry is the main worktree.
[[nodiscard]] std::vector<GitWorktreeEntry> parseWorktreeList(std::string_view bytes);

/// Of `git status --porcelain=v2 -z ...`. Empty input reads as clean, so the caller tests the exit status
/// first.
[[nodiscard]] GitStatusSummary parseStatus(std::string_view bytes);

/// Of `git submodule status --recursive`: some submodule is at another commit than recorded, or in conflict.
[[nodiscard]] bool submodulesNeedReview(std::string_view output);

/// Without "refs/heads/" or "refs/remotes/" in front.
[[nodiscard]] std::string shortBranchName(std::string_view ref);

}  // namespace cairnfield::GitPorcelainParser
