#pragma once
// What must outlive a worktree and could all the same lie inside it: then it would go as well. For the last
// look alone. Blocking, any thread. Throws std::system_error when what git keeps about the repository cannot
// be read.

#include "Models/Worktree.h"
#include "Services/Git/WorktreeGitFiles.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// Where a remote is on this disk, seen from the worktree; absent for one elsewhere.
[[nodiscard]] std::optional<FilePath> placeOfRemote(const std::string& url, const FilePath& worktree);

/// The first thing that must stay and lies in the worktree, in words: "The repository lies inside it."
[[nodiscard]] std::optional<std::string> whatMustStayInside(const Worktree& worktree,
                                                            const WorktreeGitFiles& files,
                                                            const std::vector<FilePath>& ours);

}  // namespace cairnfield
