#pragma once
// Opening a file of a worktree whose owner nobody vouches for: by descriptors, without waiting for a pipe's
// writer, and never by a link to what lies elsewhere. Blocking, any thread.

#include "Models/Worktree.h"
#include "Shared/Concurrency/FileDescriptor.h"
#include "Shared/Paths/FilePath.h"

#include <optional>

namespace cairnfield {

/// The components of a path inside a worktree. Throws CairnfieldError::RecoveryVaultFailure for a path that
/// could lead out by its text alone.
[[nodiscard]] std::vector<std::string> componentsInside(const IgnoredEntry& entry);

/// The file of that name, for reading; where it is a link, the file that the link leads to, provided that it
/// lies in the worktree as well and not in the vault. Absent when nothing has the name any more. Throws
/// CairnfieldError::RecoveryVaultFailure, with the name, for everything else that cannot be copied.
[[nodiscard]] std::optional<FileDescriptor> openLocalFile(const FilePath& worktree, const IgnoredEntry& entry,
                                                          int vault);

}  // namespace cairnfield
