#pragma once
// Whether the vault's copies of local files still are what the worktree holds. For the last look alone.
// Blocking, any thread. Throws std::system_error.

#include "Models/RecoveryVaultEntry.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// The first file whose copy is missing or says something else, in words; absent when every copy is good. A
/// file that is gone from the worktree needs none.
[[nodiscard]] std::optional<std::string> objectionToCopies(const std::vector<RecoveryVaultEntry>& copies);

}  // namespace cairnfield
