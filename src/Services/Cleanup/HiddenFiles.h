#pragma once
// Files that git was told to overlook, or whose change it cannot see: its status and its refusals say nothing
// of them, whatever they hold. For the last look alone. Blocking, any thread. Throws std::system_error for
// what cannot be read.

#include "Services/Cleanup/GitIndexFile.h"

#include <sys/stat.h>

namespace cairnfield {

/// Whether the worktree holds something under a hidden entry's path that the index does not. Something that
/// is missing from the worktree does not differ: nothing would be lost. `indexModified` is when the index was
/// last written; a file that looks as it did then, and is older, was compared by git itself.
[[nodiscard]] bool differsFromIndex(const FilePath& worktree, const GitIndexEntry& entry,
                                    const timespec& indexModified);

/// Whether a tracked file was changed although it looks to git as it did when the index was written: git goes
/// by whole seconds, so it misses a change to the same size within the second if the file's time is set back.
/// Told only of a file that changed after the index was last written.
[[nodiscard]] bool changedUnseen(const FilePath& worktree, const GitIndexEntry& entry,
                                 const timespec& indexModified);

}  // namespace cairnfield
