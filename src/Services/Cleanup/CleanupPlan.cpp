#include "Services/Cleanup/CleanupPlan.h"

#include "Services/Cleanup/PreflightJudgement.h"
#include "Services/Cleanup/RecoveryBranchNaming.h"

#include <algorithm>
#include <iterator>

namespace cairnfield {

CleanupPlan CleanupPlan::makeDefault(const Worktree& worktree, const PlanDefaults& settings) {
    CleanupPlan plan;
    plan.worktree = worktree;
    plan.trackedPathsToCommit = worktree.status.changedPaths;
    plan.untrackedPathsToCommit = worktree.status.untrackedPaths;
    plan.excludedSensitiveFiles = worktree.sensitiveIgnoredEntries();
    if (settings.preserveSmallLocalFiles) {
        std::ranges::copy_if(plan.excludedSensitiveFiles, std::back_inserter(plan.filesToArchive),
                             [&](const IgnoredEntry& entry) {
                                 return entry.sizeBytes <= settings.maxVaultFileBytes && !entry.isDirectory;
                             });
    }
    plan.commitMessage = "chore(cairnfield): preserve worktree before cleanup";
    plan.recoveryBranch = RecoveryBranchNaming::branchName(settings.recoveryBranchPrefix,
                                                           worktree.repositoryName, settings.now);
    plan.baseBranch = worktree.tracking.defaultBranch;
    plan.remoteName = PreflightJudgement::remoteName(worktree);
    plan.createPullRequest = settings.createDraftPullRequests;
    plan.retentionDays = settings.retentionDays;
    return plan;
}

bool CleanupPlan::requiresPreservation() const {
    const RemoteTrackingState& tracking = worktree.tracking;
    if (!trackedPathsToCommit.empty() || !untrackedPathsToCommit.empty()) return true;
    if (tracking.ahead > 0) return true;
    if (worktree.isDetached && !tracking.headIsRemotelyPreserved) return true;
    if (!tracking.uniqueCommitCount || *tracking.uniqueCommitCount < 1) return false;
    return !tracking.headIsRemotelyPreserved;
}

std::vector<IgnoredEntry> CleanupPlan::allFilesToArchive() const {
    std::vector<IgnoredEntry> files = filesToArchive;
    files.insert(files.end(), nested.toArchive.begin(), nested.toArchive.end());
    return files;
}

}  // namespace cairnfield
