#pragma once
// What forbids a cleanup, and in which words. Pure functions, any thread; the coordinator asks git and hands
// the answers over. Of several objections the first one counts.

#include "Models/Git.h"
#include "Models/Worktree.h"
#include "Services/Cleanup/WorktreeFingerprint.h"

#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct CleanupPreflightReport {
    bool passed = false;
    std::vector<std::string> failures;               ///< sentences for the person; in practice one
    std::vector<std::string> warnings;               ///< sentences that stop nothing
    std::optional<WorktreeFingerprint> fingerprint;  ///< only when passed
    bool remoteIsWritable = false;                   ///< a remote was needed and answered
    std::optional<std::string> resolvedBaseBranch;   ///< for a pull request

    [[nodiscard]] static CleanupPreflightReport failed(std::string sentence);

    friend bool operator==(const CleanupPreflightReport&, const CleanupPreflightReport&) = default;
};

namespace PreflightJudgement {

enum class PathOnDisk { missing, there };

/// Of what was reviewed.
[[nodiscard]] std::optional<std::string> objectionToSnapshot(const Worktree& snapshot, PathOnDisk path);

/// The entry of the reviewed worktree in git's present list.
[[nodiscard]] std::optional<GitWorktreeEntry> entryOf(const Worktree& snapshot,
                                                      const std::vector<GitWorktreeEntry>& listed);
/// Of git's present list beside what was reviewed.
[[nodiscard]] std::optional<std::string> objectionToListing(const Worktree& snapshot,
                                                            const std::optional<GitWorktreeEntry>& entry);

/// Of the fresh inspection.
[[nodiscard]] std::optional<std::string> objectionToState(const Worktree& fresh);

/// Whether a cleanup that was reviewed under one verdict must not go on under the other. The verdicts stand
/// in this order, from safe to unsafe, and only a step forward counts:
///   - the groups "safe to clean" and "preserved remotely": every commit is elsewhere. Which of the two it is
///     depends on what was asked at the time, such as a pull request;
///   - "needs review" that leaves everything else in order: local files, or a remote that proves nothing;
///   - "preserve first", which a plan without preservation would lose;
///   - "needs review" that cannot be preserved: a submodule, an unfinished operation, conflicts;
///   - "in use";
///   - "cannot clean".
[[nodiscard]] bool isLessSafe(WorktreeSafety fresh, WorktreeSafety reviewed);

/// Of the fresh inspection beside what was reviewed. `isPreserved` says that the cleanup puts HEAD's commit
/// on a remote; elsewhere a detached one must still be seen where the review saw it, whatever the verdict.
[[nodiscard]] std::optional<std::string> reasonInVerdict(const Worktree& reviewed, const Worktree& fresh,
                                                         bool isPreserved);

[[nodiscard]] std::vector<std::string> warningsAbout(const Worktree& fresh);

/// The remote that would take the work.
[[nodiscard]] std::optional<std::string> remoteName(const Worktree& snapshot);
/// The host that this remote pushes to.
[[nodiscard]] std::optional<std::string> pushHost(const Worktree& snapshot, const std::string& remote);

inline constexpr std::string_view noRemote = "This repository has no remote to preserve work to.";
inline constexpr std::string_view noBaseBranch =
    "The base branch could not be determined. Choose one manually.";
[[nodiscard]] std::string unreachable(const std::string& remote);

}  // namespace PreflightJudgement

}  // namespace cairnfield
