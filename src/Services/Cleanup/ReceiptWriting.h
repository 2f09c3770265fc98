#pragma once
// The receipts of a cleanup, one for each way in which it can end. Pure functions, any thread.

#include "Models/CleanupReceipt.h"
#include "Services/Cleanup/CleanupPlan.h"

namespace cairnfield::ReceiptWriting {

/// What a run has in hand. Once a step has succeeded, its result stays.
struct Progress {
    std::optional<std::string> recoveryBranch;
    std::optional<std::string> preservedCommitSHA;
    std::optional<PullRequestInfo> pullRequest;
    std::vector<FilePath> vaultPaths;
};

/// Stopped, with the words of the failure.
[[nodiscard]] CleanupReceipt stopped(const CleanupPlan& plan, const Progress& reached, std::string why,
                                     Date now);
/// Removed and verified.
[[nodiscard]] CleanupReceipt succeeded(const CleanupPlan& plan, const Progress& reached, Date now);

}  // namespace cairnfield::ReceiptWriting
