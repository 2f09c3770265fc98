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
