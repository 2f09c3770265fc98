#pragma once
// One walk over a whole worktree for what a removal must not meet: another repository, another file system,
// files in a submodule that was never initialised, and places that cannot be emptied, where a removal would
// stop half-way. For the last look alone. Goes by descriptors and follows no link. Blocking, any thread; the
// cost is one look at every entry.

#include "Shared/Paths/FilePath.h"

#include <ctime>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace cairnfield {

struct TreeLookQuestion {
    FilePath root;
    std::unordered_set<std::string> submodules;    ///< paths that the index holds a submodule at
    std::unordered_set<std::string> trackedHeads;  ///< tracked files named "HEAD"
    timespec indexModified{};                      ///< when the index was last written
};

struct TreeLook {
    std::optional<std::string> objection;    ///< the first one that was met; the walk ends there
    std::vector<std::string> topLevelNames;  ///< all that lies directly under the root
    /// Files that something happened to after the index was written, but within the same second.
    std::unordered_set<std::string> changedInTheSecondOfTheIndex;
};

[[nodiscard]] TreeLook lookAtTree(const TreeLookQuestion& question);

}  // namespace cairnfield
