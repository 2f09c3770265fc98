#pragma once
// Whether each local file that was chosen for the vault is in it. One that is absent when the others are
// copied is passed over, and may be back before the worktree goes. Blocking, any thread; a few looks for each
// file.

#include "Models/RecoveryVaultEntry.h"
#include "Models/Worktree.h"
#include "Shared/Errors/CairnfieldError.h"

#include <optional>
#include <vector>

namespace cairnfield {

/// Why the worktree must not be removed: the first file that is there and of which `archived` has no copy.
/// Absent when there is none. A link that keeps nothing of its worktree needs no copy; what cannot be looked
/// at counts as there.
[[nodiscard]] std::optional<CairnfieldError> refusalForUnarchived(
    const std::vector<IgnoredEntry>& chosen, const std::vector<RecoveryVaultEntry>& archived,
    const FilePath& worktree);

}  // namespace cairnfield
