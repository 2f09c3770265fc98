#include "Models/WorktreeSafety.h"

namespace cairnfield {

namespace {

struct Verdict {
    std::string_view rawValue;
    SafetyDisposition disposition;
    std::string_view explanation;
};

Verdict verdictOf(WorktreeSafety safety) {
    using enum SafetyDisposition;
    switch (safety) {
        case WorktreeSafety::mainWorktree:
            return {"mainWorktree", cannotClean,
                    "This is the repository's main checkout. Cairnfield never removes it."};
        case WorktreeSafety::bareRepository:
            return {"bareRepository", cannotClean,
                    "This is a bare repository. It holds Git data, not a working copy."};
        case WorktreeSafety::activeOrLocked:
            return {"activeOrLocked", inUse, "Something is using this worktree, or Git has it locked."};
        case WorktreeSafety::cleanDisposable:
            return {"cleanDisposable", safeToClean,
                    "No changes, no unique commits. Removing it loses nothing."};
        case WorktreeSafety::cleanMerged:
            return {"cleanMerged", safeToClean,
                    "Its commits are already reachable from the remote default branch."};
        case WorktreeSafety::remotelyPreserved:
            return {"remotelyPreserved", preservedRemotely, "Every commit here exists on the remote."};
        case WorktreeSafety::openPullRequest:
            return {"openPullRequest", preservedRemotely, "The branch is pushed and has a pull request."};
        case WorktreeSafety::committedButUnpushed:
            return {"committedButUnpushed", preserveFirst, "It has commits that exist only on this Mac."};
        case WorktreeSafety::dirtyTrackedChanges:
            return {"dirtyTrackedChanges", preserveFirst, "Tracked files were edited but not committed."};
        case WorktreeSafety::untrackedChanges:
            return {"untrackedChanges", preserveFirst, "It contains new files that Git is not tracking."};
        case WorktreeSafety::detachedWithUniqueCommits:
            return {"detachedWithUniqueCommits", preserveFirst,
                    "HEAD is detached and holds commits no branch points to."};
        case WorktreeSafety::sensitiveIgnoredFiles:
            return {"sensitiveIgnoredFiles", needsReview,
                    "It holds ignored files that look like secrets or local configuration."};
        case WorktreeSafety::mergeOrRebaseInProgress:
            return {"mergeOrRebaseInProgress", needsReview,
                    "A merge, rebase, or similar operation is unfinished."};
        case WorktreeSafety::unresolvedConflicts:
            return {"unresolvedConflicts", needsReview, "Merge conflicts are still unresolved."};
        case WorktreeSafety::submoduleRequiresReview:
            return {"submoduleRequiresReview", needsReview, "A submodule has its own uncommitted state."};
        case WorktreeSafety::unsupportedRemote:
            return {"unsupportedRemote", needsReview,
                    "Cairnfield cannot verify preservation against this remote."};
        case WorktreeSafety::inaccessible:
            return {"inaccessible", cannotClean, "Cairnfield could not read this worktree."};
        case WorktreeSafety::manualReview:
            break;
    }
    return {"manualReview", needsReview,
            "Cairnfield is not certain this is safe, so it will not act automatically."};
}

struct Group {
    std::string_view rawValue;
    std::string_view title;
    std::string_view symbolName;
    int sortRank;
};

Group groupOf(SafetyDisposition disposition) {
    switch (disposition) {
        case SafetyDisposition::safeToClean:
            return {"safeToClean", "Safe to clean", "checkmark.circle", 0};
        case SafetyDisposition::preservedRemotely:
            return {"preservedRemotely", "Preserved remotely", "cloud", 1};
        case SafetyDisposition::preserveFirst:
            return {"preserveFirst", "Preserve first", "arrow.up.doc", 2};
        case SafetyDisposition::inUse:
            return {"inUse", "In use", "person.fill.checkmark", 4};
        case SafetyDisposition::needsReview:
            return {"needsReview", "Needs review", "questionmark.circle", 3};
        case SafetyDisposition::cannotClean:
            break;
    }
    return {"cannotClean", "Cannot clean", "lock", 5};
}

}  // namespace

std::string_view rawValue(WorktreeSafety safety) {
    return verdictOf(safety).rawValue;
}
std::optional<WorktreeSafety> worktreeSafetyFromRawValue(std::string_view text) {
    for (int number = 0; number <= static_cast<int>(WorktreeSafety::manualReview); ++number) {
        const auto safety = static_cast<WorktreeSafety>(number);
        if (rawValue(safety) == text) return safety;
    }
    return std::nullopt;
}
std::string_view explanation(WorktreeSafety safety) {
    return verdictOf(safety).explanation;
}
SafetyDisposition disposition(WorktreeSafety safety) {
    return verdictOf(safety).disposition;
}

std::string_view rawValue(SafetyDisposition disposition) {
    return groupOf(disposition).rawValue;
}
std::string_view title(SafetyDisposition disposition) {
    return groupOf(disposition).title;
}
std::string_view symbolName(SafetyDisposition disposition) {
    return groupOf(disposition).symbolName;
}
int sortRank(SafetyDisposition disposition) {
    return groupOf(disposition).sortRank;
}

}  // namespace cairnfield
