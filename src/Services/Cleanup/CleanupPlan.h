#pragma once
// What one cleanup will do to one worktree: made from the reviewed snapshot and the settings, adjusted on the
// review sheet, handed over whole. Plain values, any thread. The snapshot inside is what the pipeline
// measures change against.

#include "Models/CleanupReceipt.h"
#include "Models/Worktree.h"
#include "Services/Cleanup/NestedSensitiveFiles.h"
#include "Shared/Time/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// What the settings say at the moment that a plan is made.
struct PlanDefaults {
    std::string recoveryBranchPrefix = "cairnfield/recovery";
    bool createDraftPullRequests = false;
    bool preserveSmallLocalFiles = false;  ///< archive what fits by default
    std::int64_t maxVaultFileBytes = 0;    ///< the largest file that is archived by default
    std::int64_t retentionDays = 0;
    Date now;  ///< what the branch's name records

    friend bool operator==(const PlanDefaults&, const PlanDefaults&) = default;
};

struct CleanupPlan {
    Worktree worktree;                                ///< as reviewed
    std::vector<std::string> trackedPathsToCommit;    ///< relative to the worktree
    std::vector<std::string> untrackedPathsToCommit;  ///< relative to the worktree
    std::vector<IgnoredEntry> filesToArchive;
    /// Every sensitive ignored entry, the ones to archive among them: for the review sheet alone.
    std::vector<IgnoredEntry> excludedSensitiveFiles;
    std::string commitMessage;
    std::string recoveryBranch;
    std::optional<std::string> baseBranch;  ///< as last known; the preflight finds the one that is used
    std::optional<std::string> remoteName;
    bool createPullRequest = false;
    std::int64_t retentionDays = 0;
    /// What was seen below the top, and what of it goes to the vault as well. Empty unless it was looked for.
    NestedSensitiveFiles nested;

    [[nodiscard]] static CleanupPlan makeDefault(const Worktree& worktree, const PlanDefaults& settings);

    /// Whether something must be on a remote before the worktree may go. Files to archive need none.
    [[nodiscard]] bool requiresPreservation() const;

    /// Everything that goes to the vault, from the top of the worktree and from below, in this order.
    [[nodiscard]] std::vector<IgnoredEntry> allFilesToArchive() const;

    friend bool operator==(const CleanupPlan&, const CleanupPlan&) = default;
};

/// What a cleanup reports while it runs.
struct CleanupProgress {
    CleanupStage stage = CleanupStage::preparing;
    std::optional<std::string> detail;

    friend bool operator==(const CleanupProgress&, const CleanupProgress&) = default;
};

}  // namespace cairnfield
