#pragma once
// One walk over a whole worktree for what a removal must not meet: another repository, another file system,
// files in a submodule that was never initialised, places that cannot be emptied, where a removal would stop
// half-way, and files that nobody accounts for. For the last look alone. Goes by descriptors and follows no
// link. Blocking, any thread; the cost is one look at every entry.

#include "Services/Cleanup/AccountedFiles.h"
#include "Services/Cleanup/InnerRepositories.h"
#include "Shared/Paths/FilePath.h"

#include <ctime>
#include <optional>
#include <string>
#include <unordered_set>

namespace cairnfield {

struct TreeLookQuestion {
    FilePath root;
    std::unordered_set<std::string> submodules;    ///< paths that the index holds a submodule at
    std::unordered_set<std::string> trackedHeads;  ///< tracked files named "HEAD"
    timespec indexModified{};                      ///< when the index was last written
    AccountedFiles* accounted = nullptr;           ///< asked about each file; without it all may go
    /// Ignored directories of rebuildable output: repositories below them are told of, not objected to.
    std::unordered_set<std::string> rebuildable;
};

struct TreeLook {
    std::optional<std::string> objection;    ///< the first one that was met; the walk ends there
    std::optional<std::string> unaccounted;  ///< what is said against one of the files, if anything is
    std::vector<InnerRepository> repositoriesInRebuildableOutput;
    /// Files that something happened to after the index was written, but within the same second.
    std::unordered_set<std::string> changedInTheSecondOfTheIndex;
};

[[nodiscard]] TreeLook lookAtTree(const TreeLookQuestion& question);

}  // namespace cairnfield
