#pragma once
// The permanent record of one attempt to clean a worktree up: what it was, where its work went, what was
// removed and how it ended. A plain value that is made once and never changes, any thread.

#include "Models/JSON.h"
#include "Models/WorktreeSafety.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

/// Declared in the order in which the review sheet lists them, which is not quite the order of a run.
enum class CleanupStage {
    preparing,
    preflight,
    awaitingReview,
    creatingRecoveryBranch,
    staging,
    committing,
    pushing,
    creatingPullRequest,
    verifyingRemote,
    archivingLocalFiles,
    removingWorktree,
    verifyingDeletion,
    rescanningStorage,
    completed,
    failed,
    cancelled,
};

inline constexpr std::array allCleanupStages{CleanupStage::preparing,
                                             CleanupStage::preflight,
                                             CleanupStage::awaitingReview,
                                             CleanupStage::creatingRecoveryBranch,
                                             CleanupStage::staging,
                                             CleanupStage::committing,
                                             CleanupStage::pushing,
                                             CleanupStage::creatingPullRequest,
                                             CleanupStage::verifyingRemote,
                                             CleanupStage::archivingLocalFiles,
                                             CleanupStage::removingWorktree,
                                             CleanupStage::verifyingDeletion,
                                             CleanupStage::rescanningStorage,
                                             CleanupStage::completed,
                                             CleanupStage::failed,
                                             CleanupStage::cancelled};

[[nodiscard]] std::string_view rawValue(CleanupStage stage);
[[nodiscard]] std::string_view title(CleanupStage stage);
[[nodiscard]] std::optional<CleanupStage> cleanupStageFromRawValue(std::string_view text);
/// Nothing comes after it.
[[nodiscard]] bool isTerminal(CleanupStage stage);
/// Something of the person's is taken away in it.
[[nodiscard]] bool isDestructive(CleanupStage stage);

enum class CleanupOutcome {
    succeeded,
    failed,              ///< stopped with no commit in hand
    cancelled,           ///< no cleanup ends so today
    partiallyCompleted,  ///< stopped after a commit was known
};

[[nodiscard]] std::string_view rawValue(CleanupOutcome outcome);
[[nodiscard]] std::string_view title(CleanupOutcome outcome);
[[nodiscard]] std::string_view symbolName(CleanupOutcome outcome);
[[nodiscard]] std::optional<CleanupOutcome> cleanupOutcomeFromRawValue(std::string_view text);

struct CleanupReceipt {
    std::int64_t schemaVersion = 1;
    UUID id;
    Date date;  ///< the end of the attempt
    std::string repositoryName;
    FilePath repositoryRoot;
    FilePath worktreePath;
    std::optional<std::string> originalBranch;             ///< at review
    std::optional<std::string> originalHeadSHA;            ///< at review
    WorktreeSafety safety = WorktreeSafety::manualReview;  ///< at review
    std::int64_t sizeBeforeBytes = 0;                      ///< at review
    std::optional<std::string> recoveryBranch;
    std::optional<std::string> preservedCommitSHA;
    std::optional<std::string> remoteHost;  ///< of the first remote, whichever was pushed to
    std::optional<std::string> pullRequestURL;
    std::optional<std::int64_t> pullRequestNumber;
    std::vector<FilePath> recoveryVaultPaths;  ///< of the stored copies
    bool removalSucceeded = false;
    std::int64_t reclaimedBytes = 0;  ///< 0 unless removed
    std::optional<std::string> errorSummary;
    CleanupStage finalStage = CleanupStage::failed;
    CleanupOutcome outcome = CleanupOutcome::failed;

    /// What a person pastes or keeps to find the work again: a line for each value that is there, no newline
    /// at the end. Values from outside stay on their line, all but the failure's own words, which come last.
    [[nodiscard]] std::string recoverySummary() const;

    friend bool operator==(const CleanupReceipt&, const CleanupReceipt&) = default;
};

void to_json(Json& json, const CleanupReceipt& receipt);
void from_json(const Json& json, CleanupReceipt& receipt);

}  // namespace cairnfield
