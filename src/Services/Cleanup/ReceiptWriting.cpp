#include "Services/Cleanup/ReceiptWriting.h"

#include <utility>

namespace cairnfield::ReceiptWriting {

namespace {

CleanupReceipt receiptOf(const CleanupPlan& plan, const Progress& reached, Date now) {
    const Worktree& worktree = plan.worktree;
    CleanupReceipt receipt;
    receipt.id = UUID::make();
    receipt.date = now;
    receipt.repositoryName = worktree.repositoryName;
    receipt.repositoryRoot = worktree.repositoryRoot;
    receipt.worktreePath = worktree.path;
    receipt.originalBranch = worktree.branch;
    receipt.originalHeadSHA = worktree.headSHA;
    receipt.safety = worktree.safety;
    receipt.sizeBeforeBytes = worktree.sizeBytes;
    if (!worktree.remotes.empty()) receipt.remoteHost = worktree.remotes.front().host();
    receipt.recoveryBranch = reached.recoveryBranch;
    receipt.preservedCommitSHA = reached.preservedCommitSHA;
    receipt.recoveryVaultPaths = reached.vaultPaths;
    if (reached.pullRequest) {
        receipt.pullRequestURL = reached.pullRequest->url;
        receipt.pullRequestNumber = reached.pullRequest->number;
    }
    return receipt;
}

}  // namespace

CleanupReceipt stopped(const CleanupPlan& plan, const Progress& reached, std::string why, Date now) {
    CleanupReceipt receipt = receiptOf(plan, reached, now);
    receipt.errorSummary = std::move(why);
    receipt.finalStage = CleanupStage::failed;
    receipt.outcome =
        reached.preservedCommitSHA ? CleanupOutcome::partiallyCompleted : CleanupOutcome::failed;
    return receipt;
}

CleanupReceipt succeeded(const CleanupPlan& plan, const Progress& reached, Date now) {
    CleanupReceipt receipt = receiptOf(plan, reached, now);
    receipt.removalSucceeded = true;
    receipt.reclaimedBytes = plan.worktree.sizeBytes;
    receipt.finalStage = CleanupStage::completed;
    receipt.outcome = CleanupOutcome::succeeded;
    return receipt;
}

}  // namespace cairnfield::ReceiptWriting
