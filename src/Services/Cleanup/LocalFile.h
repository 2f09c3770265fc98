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

/// Whether the name is a link that holds no content of its worktree: it leads out of it, to a folder, in a
/// circle or to nothing. What it leads to stays where it is, or goes by its own name's rules, so that there
/// is nothing to keep. False for all that is no link, and for what cannot be told.
[[nodiscard]] bool isLinkThatKeepsNothing(const FilePath& worktree, const IgnoredEntry& entry);

/// The file of that name, for reading; where it is a link, the file that the link leads to, provided that it
/// lies in the worktree as well and not in the vault. Absent when nothing has the name any more, and for a
/// link that keeps nothing. Throws CairnfieldError::RecoveryVaultFailure, with the name, for everything else
/// that cannot be copied.
[[nodiscard]] std::optional<FileDescriptor> openLocalFile(const FilePath& worktree, const IgnoredEntry& entry,
                                                          int vault);

/// The size at review, in bytes; of a file with holes, which takes less than it is long, its length when that
/// is more. What cannot be opened has its size at review.
[[nodiscard]] std::int64_t sizeThatCounts(const FilePath& worktree, const IgnoredEntry& entry);

}  // namespace cairnfield
