#include "Services/Cleanup/PreflightJudgement.h"

#include "Services/Git/GitWorktreeInspector.h"
#include "Shared/Errors/CairnfieldError.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

CleanupPreflightReport CleanupPreflightReport::failed(std::string sentence) {
    CleanupPreflightReport report;
    report.failures.push_back(std::move(sentence));
    return report;
}

namespace PreflightJudgement {

namespace {

/// The place in the order that isLessSafe tells.
int danger(WorktreeSafety safety) {
    using enum WorktreeSafety;
    switch (safety) {
        case cleanDisposable:
        case cleanMerged:
        case remotelyPreserved:
        case openPullRequest:
            return 0;
        case sensitiveIgnoredFiles:
        case unsupportedRemote:
        case manualReview:
            return 1;
        case committedButUnpushed:
        case dirtyTrackedChanges:
        case untrackedChanges:
        case detachedWithUniqueCommits:
            return 2;
        case submoduleRequiresReview:
        case mergeOrRebaseInProgress:
        case unresolvedConflicts:
            return 3;
        case activeOrLocked:
            return 4;
        case mainWorktree:
        case bareRepository:
        case inaccessible:
            break;
    }
    return 5;
}

}  // namespace

std::optional<std::string> objectionToSnapshot(const Worktree& snapshot, PathOnDisk path) {
    if (path == PathOnDisk::missing) return "The worktree path no longer exists.";
    if (snapshot.isMain) return "This is the repository's main worktree.";
    if (snapshot.isBare) return "This is a bare repository.";
    if (snapshot.isPinned) return "This worktree is pinned in Cairnfield.";
    return std::nullopt;
}

std::optional<GitWorktreeEntry> entryOf(const Worktree& snapshot,
                                        const std::vector<GitWorktreeEntry>& listed) {
    const FilePath wanted = snapshot.id();
    const auto found = std::ranges::find_if(
        listed, [&](const GitWorktreeEntry& entry) { return entry.path.standardized() == wanted; });
    if (found == listed.end()) return std::nullopt;
    return *found;
}

std::optional<std::string> objectionToListing(const Worktree& snapshot,
                                              const std::optional<GitWorktreeEntry>& entry) {
    if (!entry) return "Git no longer lists this worktree.";
    if (entry->isMain) return "Git reports this as the main worktree.";
    if (entry->isLocked && entry->lockReason) return "The worktree is locked: " + *entry->lockReason;
    if (entry->isLocked) return "The worktree is locked.";
    if (commitOf(*entry) != snapshot.headSHA) return "HEAD moved since the worktree was reviewed.";
    if (entry->branch != snapshot.branch) return "The branch changed since the worktree was reviewed.";
    return std::nullopt;
}

std::optional<std::string> objectionToState(const Worktree& fresh) {
    if (fresh.isActive) return fresh.activityReason.value_or("The worktree looks active.");
    if (fresh.status.conflictedCount >= 1) return "The worktree has unresolved merge conflicts.";
    if (fresh.operationInProgress)
        return "A " + std::string(displayName(*fresh.operationInProgress)) + " is in progress.";
    return std::nullopt;
}

bool isLessSafe(WorktreeSafety fresh, WorktreeSafety reviewed) {
    return danger(fresh) > danger(reviewed);
}

std::optional<std::string> reasonInVerdict(const Worktree& reviewed, const Worktree& fresh,
                                           bool isPreserved) {
    const bool wasElsewhere = reviewed.tracking.headIsRemotelyPreserved;
    const bool isElsewhere = fresh.tracking.headIsRemotelyPreserved;
    const bool losesCommit = fresh.isDetached && !isPreserved && wasElsewhere && !isElsewhere;
    if (!losesCommit && !isLessSafe(fresh.safety, reviewed.safety)) return std::nullopt;
    return CairnfieldError(CairnfieldError::WorktreeChangedAfterReview{reviewed.path.bytes()})
        .errorDescription();
}

std::vector<std::string> warningsAbout(const Worktree& fresh) {
    std::vector<std::string> warnings;
    if (fresh.submodulesDirty)
        warnings.emplace_back("A submodule has uncommitted state; it will not be preserved.");
    if (!fresh.sensitiveIgnoredEntries().empty())
        warnings.emplace_back("Ignored files that look sensitive were found. Review them before continuing.");
    return warnings;
}

std::optional<std::string> remoteName(const Worktree& snapshot) {
    if (snapshot.tracking.remoteName) return snapshot.tracking.remoteName;
    if (snapshot.remotes.empty()) return std::nullopt;
    return snapshot.remotes.front().name;
}

std::optional<std::string> pushHost(const Worktree& snapshot, const std::string& remote) {
    const auto found = std::ranges::find(snapshot.remotes, remote, &GitRemote::name);
    if (found == snapshot.remotes.end()) return std::nullopt;
    return found->host();
}

std::string unreachable(const std::string& remote) {
    return "The remote " + remote + " could not be reached.";
}

}  // namespace PreflightJudgement

}  // namespace cairnfield
