#pragma once
// From one entry of the worktree list to a complete record with its verdict. Read-only: an inspection never
// changes a repository and never touches the network. Callable from any task.

#include "Models/Worktree.h"
#include "Shared/Concurrency/Task.h"

#include <set>
#include <vector>

namespace cairnfield {

struct WorktreeInspectionOptions {
    bool includeSize = false;           ///< walk the worktree when no recent size is at hand
    bool includeIgnoredEntries = true;  ///< list, classify and size what git ignores
    std::set<FilePath> pinnedPaths;     ///< standardized
    double activityWindow = 900;        ///< seconds
};

class WorktreeInspecting {
public:
    virtual ~WorktreeInspecting() = default;

    /// Throws CairnfieldError when git does not list them (CommandFailed, CommandTimedOut), and Cancelled.
    virtual Task<std::vector<GitWorktreeEntry>> listWorktrees(FilePath repositoryRoot) = 0;

    /// Never throws. What cannot be learned stays empty or absent in the record, and the verdict treats that
    /// as unsafe. A worktree that cannot be read at all, or whose path does not lead to it any more, comes
    /// back with the verdict `inaccessible` and the reason in `inspectionError`. In a cancelled task every
    /// question goes unanswered, so the record comes back soon and says little.
    virtual Task<Worktree> inspect(GitWorktreeEntry entry, FilePath repositoryRoot,
                                   WorktreeInspectionOptions options) = 0;
};

}  // namespace cairnfield
