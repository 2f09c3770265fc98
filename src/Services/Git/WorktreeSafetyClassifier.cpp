#include "Services/Git/WorktreeSafetyClassifier.h"

#include <algorithm>

namespace cairnfield::WorktreeSafetyClassifier {

namespace {

bool has(const Worktree& worktree, IgnoredEntryClass classification) {
    return std::ranges::any_of(worktree.ignoredEntries, [classification](const IgnoredEntry& entry) {
        return entry.classification == classification;
    });
}

bool hasLargeUnknownEntry(const Worktree& worktree) {
    return std::ranges::any_of(worktree.ignoredEntries, [](const IgnoredEntry& entry) {
        return entry.classification == IgnoredEntryClass::unknown &&
               entry.sizeBytes >= largeIgnoredEntryBytes;
    });
}

/// A clean worktree whose commits are not known to be anywhere else: with a remote that can be worked with a
/// person may decide, elsewhere there is no way to verify that anything was preserved.
WorktreeSafety unverified(const Worktree& worktree) {
    const bool canBeVerified =
        std::ranges::any_of(worktree.remotes, [](const GitRemote& remote) { return remote.isGitHub(); });
    return canBeVerified ? WorktreeSafety::manualReview : WorktreeSafety::unsupportedRemote;
}

}  // namespace

WorktreeSafety classify(const Worktree& worktree) {
    using enum WorktreeSafety;
    const GitStatusSummary& status = worktree.status;
    const RemoteTrackingState& tracking = worktree.tracking;

    if (worktree.inspectionError) return inaccessible;
    if (worktree.isMain) return mainWorktree;
    if (worktree.isBare) return bareRepository;
    if (worktree.isLocked || worktree.isActive) return activeOrLocked;

    if (status.hasConflicts()) return unresolvedConflicts;
    if (worktree.operationInProgress) return mergeOrRebaseInProgress;
    if (worktree.submodulesDirty) return submoduleRequiresReview;
    if (status.stagedCount > 0 || status.modifiedCount > 0) return dirtyTrackedChanges;
    if (status.untrackedCount > 0) return untrackedChanges;

    if (worktree.isDetached && !tracking.headIsRemotelyPreserved) return detachedWithUniqueCommits;
    if (tracking.ahead > 0) return committedButUnpushed;

    // These files exist only here, whatever git says about the commits.
    if (has(worktree, IgnoredEntryClass::sensitive)) return sensitiveIgnoredFiles;
    if (hasLargeUnknownEntry(worktree)) return manualReview;

    // Whether the pull request is open, merged or closed plays no part: what counts is that HEAD is on a
    // remote.
    if (worktree.pullRequest && tracking.headIsRemotelyPreserved) return openPullRequest;
    if (tracking.reachableFromDefaultBranch) return cleanMerged;
    if (tracking.headIsRemotelyPreserved) return remotelyPreserved;
    if (tracking.uniqueCommitCount == 0) return cleanDisposable;

    return unverified(worktree);
}

}  // namespace cairnfield::WorktreeSafetyClassifier
