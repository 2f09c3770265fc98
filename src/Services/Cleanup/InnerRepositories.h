#pragma once
// Repositories that lie in rebuildable output, where tools check out what a project depends on. Such a one
// comes back with the next build, unless somebody worked in it: it is no obstacle when reading shows that it
// holds nothing of its own. Everything else about it is a refusal, with its path and the reason.
//
// For the last look alone. Reads its files and asks git with commands that run no program of that
// repository's: no status, which would run its filters. Blocking, any thread. Throws std::system_error for
// what cannot be read.

#include "Services/Cleanup/GitAnswers.h"
#include "Services/Cleanup/RemovalRefusal.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// As a walk over the worktree met it.
struct InnerRepository {
    std::string path;         ///< of its folder, relative to the worktree
    bool hasWorkTree = true;  ///< it has a ".git" there, else it is a Git directory itself
};

/// `worktree` is the path of the worktree that they lie in. They are judged together, since one can be the
/// remote of another.
[[nodiscard]] std::optional<RemovalRefusal> refusalOfInnerRepositories(
    const FilePath& worktree, const std::vector<InnerRepository>& found, GitAnswers& git);

}  // namespace cairnfield
