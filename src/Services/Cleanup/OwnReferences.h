#pragma once
// References that one worktree has for itself, and that go with it: "refs/worktree/", a bisection's, and
// those that somebody made beside HEAD. Git's own notes there (ORIG_HEAD, FETCH_HEAD, AUTO_MERGE and their
// like) are not asked about: git overwrites them as it works, and nobody keeps anything in them. For the last
// look alone. Blocking, any thread. Throws std::system_error for what cannot be read.

#include "Models/Worktree.h"
#include "Services/Cleanup/GitAnswers.h"
#include "Services/Cleanup/RemovalRefusal.h"
#include "Services/Git/WorktreeGitFiles.h"

#include <optional>

namespace cairnfield {

/// Names the first of them that holds a commit which nothing that stays holds. Asks git only when there is
/// such a reference, or when references are not kept in files.
[[nodiscard]] std::optional<RemovalRefusal> refusalOfOwnReferences(const Worktree& worktree,
                                                                   const WorktreeGitFiles& files,
                                                                   GitAnswers& git);

}  // namespace cairnfield
