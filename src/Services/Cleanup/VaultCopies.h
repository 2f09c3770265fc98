#pragma once
// The copies of the Recovery Vault as they lie on disk, when the index does not tell: which there are, and
// which one elsewhere is the vault's own. By descriptors; no link is followed below a folder that an
// archiving call made. Blocking, any thread.

#include "Models/RecoveryVaultEntry.h"

#include <vector>

namespace cairnfield {

/// An entry for each plain file below a folder of the vault that is named by an identity, as if it had been
/// archived from a worktree that nobody knows any more (RecoveryVaultEntry::isFound); in the order in which
/// they were put there. Empty when there is no vault. What cannot be looked at is left out, with a line in
/// the log.
[[nodiscard]] std::vector<RecoveryVaultEntry> copiesIn(const FilePath& vault);

/// Deletes the entry's copy where the data folder was before it was moved: a plain file below a folder that
/// is named by the entry's identity or by that of its call. False when it is not such a file, and stays.
/// Throws std::system_error when it is one and cannot be deleted.
[[nodiscard]] bool deleteCopyElsewhere(const RecoveryVaultEntry& entry);

}  // namespace cairnfield
