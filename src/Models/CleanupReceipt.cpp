#include "Models/CleanupReceipt.h"

#include "Models/JSONFields.h"
#include "Shared/Formatting/DateFormatting.h"
#include "Shared/Text/Text.h"

#include <algorithm>

namespace cairnfield {

namespace {

struct StageNames {
    CleanupStage stage;
    std::string_view rawValue;
    std::string_view title;
};

constexpr std::array stageNames{
    StageNames{CleanupStage::preparing, "preparing", "Preparing"},
    StageNames{CleanupStage::preflight, "preflight", "Checking the worktree"},
    StageNames{CleanupStage::awaitingReview, "awaitingReview", "Waiting for your review"},
    StageNames{CleanupStage::creatingRecoveryBranch, "creatingRecoveryBranch",
               "Creating the recovery branch"},
    StageNames{CleanupStage::staging, "staging", "Staging reviewed files"},
    StageNames{CleanupStage::committing, "committing", "Committing"},
    StageNames{CleanupStage::pushing, "pushing", "Pushing to the remote"},
    StageNames{CleanupStage::creatingPullRequest, "creatingPullRequest", "Opening a draft pull request"},
    StageNames{CleanupStage::verifyingRemote, "verifyingRemote", "Verifying the remote copy"},
    StageNames{CleanupStage::archivingLocalFiles, "archivingLocalFiles",
               "Copying local-only files to the Recovery Vault"},
    StageNames{CleanupStage::removingWorktree, "removingWorktree", "Removing the worktree"},
    StageNames{CleanupStage::verifyingDeletion, "verifyingDeletion", "Verifying removal"},
    StageNames{CleanupStage::rescanningStorage, "rescanningStorage", "Rescanning storage"},
    StageNames{CleanupStage::completed, "completed", "Completed"},
    StageNames{CleanupStage::failed, "failed", "Failed"},
    StageNames{CleanupStage::cancelled, "cancelled", "Cancelled"},
};
static_assert(std::ranges::equal(stageNames, allCleanupStages, {}, &StageNames::stage));

const StageNames& namesOf(CleanupStage stage) {
    return stageNames[static_cast<std::size_t>(stage)];
}

}  // namespace

std::string_view rawValue(CleanupStage stage) {
    return namesOf(stage).rawValue;
}

std::string_view title(CleanupStage stage) {
    return namesOf(stage).title;
}

std::optional<CleanupStage> cleanupStageFromRawValue(std::string_view text) {
    const auto found = std::ranges::find(stageNames, text, &StageNames::rawValue);
    if (found == stageNames.end()) return std::nullopt;
    return found->stage;
}

bool isTerminal(CleanupStage stage) {
    return stage == CleanupStage::completed || stage == CleanupStage::failed ||
           stage == CleanupStage::cancelled;
}

bool isDestructive(CleanupStage stage) {
    return stage == CleanupStage::removingWorktree;
}

std::string_view rawValue(CleanupOutcome outcome) {
    switch (outcome) {
        case CleanupOutcome::succeeded:
            return "succeeded";
        case CleanupOutcome::failed:
            return "failed";
        case CleanupOutcome::cancelled:
            return "cancelled";
        case CleanupOutcome::partiallyCompleted:
            return "partiallyCompleted";
    }
    return {};
}

std::string_view title(CleanupOutcome outcome) {
    switch (outcome) {
        case CleanupOutcome::succeeded:
            return "Cleaned";
        case CleanupOutcome::failed:
            return "Failed";
        case CleanupOutcome::cancelled:
            return "Cancelled";
        case CleanupOutcome::partiallyCompleted:
            return "Preserved, not removed";
    }
    return {};
}

std::string_view symbolName(CleanupOutcome outcome) {
    return outcome == CleanupOutcome::succeeded ? "checkmark.circle" : "exclamationmark.triangle";
}

std::optional<CleanupOutcome> cleanupOutcomeFromRawValue(std::string_view text) {
    using enum CleanupOutcome;
    for (const CleanupOutcome outcome : {succeeded, failed, cancelled, partiallyCompleted})
        if (rawValue(outcome) == text) return outcome;
    return std::nullopt;
}

std::string CleanupReceipt::recoverySummary() const {
    std::string summary = "Cairnfield cleanup — " + DateFormatting::absolute(date);
    const auto addLine = [&](std::string_view label, std::string_view value) {
        summary.append("\n").append(label).append(": ").append(value);
    };
    const auto addOptional = [&](std::string_view label, const std::optional<std::string>& value) {
        if (value) addLine(label, visibleText(*value));
    };
    addLine("Repository", visibleText(repositoryName));
    addLine("Worktree", worktreePath.display());
    addOptional("Original branch", originalBranch);
    addOptional("Recovery branch", recoveryBranch);
    addOptional("Preserved commit", preservedCommitSHA);
    addOptional("Pull request", pullRequestURL);
    if (!recoveryVaultPaths.empty())
        addLine("Recovery Vault files", std::to_string(recoveryVaultPaths.size()));
    addLine("Result", cairnfield::title(outcome));
    if (errorSummary) addLine("Error", repairedUTF8(*errorSummary));
    return summary;
}

void to_json(Json& json, const CleanupReceipt& receipt) {
    json = {{"schemaVersion", receipt.schemaVersion},
            {"id", receipt.id},
            {"date", jsonFromDate(receipt.date)},
            {"repositoryName", jsonFromText(receipt.repositoryName)},
            {"repositoryRoot", receipt.repositoryRoot},
            {"worktreePath", receipt.worktreePath},
            {"safety", rawValue(receipt.safety)},
            {"sizeBeforeBytes", receipt.sizeBeforeBytes},
            {"recoveryVaultPaths", receipt.recoveryVaultPaths},
            {"removalSucceeded", receipt.removalSucceeded},
            {"reclaimedBytes", receipt.reclaimedBytes},
            {"finalStage", rawValue(receipt.finalStage)},
            {"outcome", rawValue(receipt.outcome)}};
    detail::writeOptional(json, "originalBranch", receipt.originalBranch);
    detail::writeOptional(json, "originalHeadSHA", receipt.originalHeadSHA);
    detail::writeOptional(json, "recoveryBranch", receipt.recoveryBranch);
    detail::writeOptional(json, "preservedCommitSHA", receipt.preservedCommitSHA);
    detail::writeOptional(json, "remoteHost", receipt.remoteHost);
    detail::writeOptional(json, "pullRequestURL", receipt.pullRequestURL);
    detail::writeOptional(json, "pullRequestNumber", receipt.pullRequestNumber);
    detail::writeOptional(json, "errorSummary", receipt.errorSummary);
}

void from_json(const Json& json, CleanupReceipt& receipt) {
    detail::readRequired(json, "schemaVersion", receipt.schemaVersion);
    detail::readRequired(json, "id", receipt.id);
    detail::readRequired(json, "date", receipt.date);
    detail::readRequired(json, "repositoryName", receipt.repositoryName);
    detail::readRequired(json, "repositoryRoot", receipt.repositoryRoot);
    detail::readRequired(json, "worktreePath", receipt.worktreePath);
    detail::readOptional(json, "originalBranch", receipt.originalBranch);
    detail::readOptional(json, "originalHeadSHA", receipt.originalHeadSHA);
    detail::readRawValue(json, "safety", receipt.safety, worktreeSafetyFromRawValue);
    detail::readRequired(json, "sizeBeforeBytes", receipt.sizeBeforeBytes);
    detail::readOptional(json, "recoveryBranch", receipt.recoveryBranch);
    detail::readOptional(json, "preservedCommitSHA", receipt.preservedCommitSHA);
    detail::readOptional(json, "remoteHost", receipt.remoteHost);
    detail::readOptional(json, "pullRequestURL", receipt.pullRequestURL);
    detail::readOptional(json, "pullRequestNumber", receipt.pullRequestNumber);
    detail::readRequired(json, "recoveryVaultPaths", receipt.recoveryVaultPaths);
    detail::readRequired(json, "removalSucceeded", receipt.removalSucceeded);
    detail::readRequired(json, "reclaimedBytes", receipt.reclaimedBytes);
    detail::readOptional(json, "errorSummary", receipt.errorSummary);
    detail::readRawValue(json, "finalStage", receipt.finalStage, cleanupStageFromRawValue);
    detail::readRawValue(json, "outcome", receipt.outcome, cleanupOutcomeFromRawValue);
}

}  // namespace cairnfield
