#pragma once
// Receipts of every kind.

#include "Models/CleanupReceipt.h"

#include <string>

namespace cairnfield {

inline constexpr Date sampleDate = Date(std::chrono::seconds(1'800'000'000));

/// With nothing but what every receipt has.
[[nodiscard]] inline CleanupReceipt bareReceipt(const std::string& repository, CleanupOutcome outcome) {
    CleanupReceipt receipt;
    receipt.id = UUID::make();
    receipt.date = sampleDate;
    receipt.repositoryName = repository;
    receipt.repositoryRoot = FilePath("/code/" + repository);
    receipt.worktreePath = FilePath("/code/" + repository + "-work");
    receipt.safety = WorktreeSafety::dirtyTrackedChanges;
    receipt.outcome = outcome;
    return receipt;
}

/// With everything that a receipt can have, but a failure.
[[nodiscard]] inline CleanupReceipt fullReceipt(const std::string& repository) {
    CleanupReceipt receipt = bareReceipt(repository, CleanupOutcome::succeeded);
    receipt.originalBranch = "feature/tariffs";
    receipt.originalHeadSHA = "0123456789abcdef0123456789abcdef01234567";
    receipt.recoveryBranch = "cairnfield/recovery/feature-tariffs";
    receipt.preservedCommitSHA = "89abcdef0123456789abcdef0123456789abcdef";
    receipt.remoteHost = "git.example.org";
    receipt.pullRequestURL = "https://git.example.org/ada/atlas/pull/7";
    receipt.pullRequestNumber = 7;
    receipt.recoveryVaultPaths = {FilePath("/vault/one/.env"), FilePath("/vault/two/key\xff.pem")};
    receipt.removalSucceeded = true;
    receipt.reclaimedBytes = 2'000'000'000;
    receipt.finalStage = CleanupStage::completed;
    return receipt;
}

}  // namespace cairnfield
