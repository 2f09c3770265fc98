#pragma once
// Receipts and kept files that look like a person's own, for pictures.

#include "Models/CleanupReceipt.h"
#include "Models/RecoveryVaultEntry.h"

#include <vector>

namespace cairnfield {

/// One for each way that a cleanup ends; the first one failed with a message of many lines, the second went
/// well.
[[nodiscard]] std::vector<CleanupReceipt> sampleReceipts();
/// Names as long and as odd as they get.
[[nodiscard]] std::vector<CleanupReceipt> oddReceipts();
[[nodiscard]] std::vector<RecoveryVaultEntry> sampleVaultEntries();

}  // namespace cairnfield
