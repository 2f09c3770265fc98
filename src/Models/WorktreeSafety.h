#pragma once
// The single verdict on a worktree and the six groups into which the verdicts fall: what a person sees. Plain
// values.

#include <array>
#include <optional>
#include <string_view>

namespace cairnfield {

enum class WorktreeSafety {
    mainWorktree,
    bareRepository,
    activeOrLocked,
    cleanDisposable,
    cleanMerged,
    remotelyPreserved,
    openPullRequest,
    committedButUnpushed,
    dirtyTrackedChanges,
    untrackedChanges,
    detachedWithUniqueCommits,
    sensitiveIgnoredFiles,
    mergeOrRebaseInProgress,
    unresolvedConflicts,
    submoduleRequiresReview,
    unsupportedRemote,
    inaccessible,
    manualReview,
};

enum class SafetyDisposition {
    safeToClean,
    preservedRemotely,
    preserveFirst,
    inUse,
    needsReview,
    cannotClean
};

inline constexpr std::array allDispositions{
    SafetyDisposition::safeToClean, SafetyDisposition::preservedRemotely, SafetyDisposition::preserveFirst,
    SafetyDisposition::inUse,       SafetyDisposition::needsReview,       SafetyDisposition::cannotClean};

[[nodiscard]] std::string_view rawValue(WorktreeSafety safety);
[[nodiscard]] std::optional<WorktreeSafety> worktreeSafetyFromRawValue(std::string_view text);
/// One sentence that tells a person what the verdict means.
[[nodiscard]] std::string_view explanation(WorktreeSafety safety);
[[nodiscard]] SafetyDisposition disposition(WorktreeSafety safety);

[[nodiscard]] std::string_view rawValue(SafetyDisposition disposition);
[[nodiscard]] std::string_view title(SafetyDisposition disposition);
[[nodiscard]] std::string_view symbolName(SafetyDisposition disposition);
/// The order in which the groups are shown; not the order of declaration.
[[nodiscard]] int sortRank(SafetyDisposition disposition);

}  // namespace cairnfield
