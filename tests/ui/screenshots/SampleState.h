#pragma once
// Folders and worktrees that look like a person's own, for pictures and for measuring.

#include "Models/WatchedFolder.h"
#include "Models/Worktree.h"

#include <vector>

namespace cairnfield {

inline constexpr Date sampleNow = Date(std::chrono::seconds(1'800'000'000));

/// A handful of projects with worktrees in every verdict.
[[nodiscard]] std::vector<Worktree> sampleWorktrees();
/// So many worktrees over a few hundred projects; the same ones at every call.
[[nodiscard]] std::vector<Worktree> manyWorktrees(std::size_t count);
/// Names as long and as odd as they get.
[[nodiscard]] std::vector<Worktree> oddWorktrees();
/// One for each thing that a row can say.
[[nodiscard]] std::vector<WatchedFolder> sampleFolders();

}  // namespace cairnfield
