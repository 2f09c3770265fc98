#include "ui/screenshots/SampleRecords.h"

#include "ui/screenshots/SampleState.h"

#include <string>

namespace cairnfield {

namespace {

using std::chrono::hours;
using std::chrono::minutes;

constexpr std::int64_t megabyte = 1'000'000;
const std::string vault = "/home/ada/.local/share/Cairnfield/Recovery/";

CleanupReceipt receipt(const std::string& repository, const std::string& branch, CleanupOutcome outcome,
                       minutes age) {
    CleanupReceipt receipt;
    receipt.id = UUID::make();
    receipt.date = sampleNow - age;
    receipt.repositoryName = repository;
    receipt.repositoryRoot = FilePath("/home/ada/code/" + repository);
    receipt.worktreePath = FilePath("/home/ada/code/" + repository + "-worktrees/" + branch);
    receipt.originalBranch = branch;
    receipt.originalHeadSHA = "4f1c2a9be07d35e86a1f0c92d4b7e3568a0d1c7f";
    receipt.safety = WorktreeSafety::dirtyTrackedChanges;
    receipt.sizeBeforeBytes = 3'420 * megabyte;
    receipt.outcome = outcome;
    return receipt;
}

CleanupReceipt cleaned() {
    CleanupReceipt result = receipt("lighthouse", "tariff-tables", CleanupOutcome::succeeded, hours(3));
    result.recoveryBranch = "cairnfield/recovery/tariff-tables-20270115-0800";
    result.preservedCommitSHA = "b7e3568a0d1c7f4f1c2a9be07d35e86a1f0c92d4";
    result.remoteHost = "git.example.org";
    result.pullRequestURL = "https://git.example.org/ada/lighthouse/pull/431";
    result.pullRequestNumber = 431;
    result.recoveryVaultPaths = {FilePath(vault + "A/.env.local"), FilePath(vault + "A/config/key.pem")};
    result.removalSucceeded = true;
    result.reclaimedBytes = 3'420 * megabyte;
    result.finalStage = CleanupStage::completed;
    return result;
}

CleanupReceipt refused() {
    CleanupReceipt result = receipt("pantry", "recipes-import", CleanupOutcome::failed, minutes(4));
    result.finalStage = CleanupStage::committing;
    result.recoveryBranch = "cairnfield/recovery/recipes-import-20270115-0756";
    result.errorSummary =
        "Git could not commit: .git/hooks/pre-commit failed\n"
        "  recipes/import.py:118:12: E0602 undefined name 'normalise'\n"
        "  recipes/import.py:131:5: W0612 unused variable 'unit'\n"
        "  recipes/tables/units_of_measurement_that_nobody_uses_any_more.py:7:1: E0401 cannot import "
        "'recipes.tables.conversion.imperial'\n"
        "Fix these before you commit. Nothing was deleted.";
    return result;
}

RecoveryVaultEntry kept(const std::string& repository, const std::string& relativePath, std::int64_t size,
                        minutes age, int days) {
    RecoveryVaultEntry entry;
    entry.id = UUID::make();
    entry.receiptID = UUID::make();
    entry.repositoryName = repository;
    entry.originalWorktreePath = FilePath("/home/ada/code/" + repository + "-work");
    entry.relativePath = FilePath(relativePath);
    entry.storedPath = FilePath(vault + entry.receiptID.text() + "/" + relativePath);
    entry.sizeBytes = size;
    entry.reason = "Ignored file that looks sensitive; never pushed to a remote.";
    entry.archivedAt = sampleNow - age;
    if (days > 0) entry.expiresAt = entry.archivedAt + hours(24 * days);
    return entry;
}

}  // namespace

std::vector<CleanupReceipt> sampleReceipts() {
    CleanupReceipt left =
        receipt("weather-station", "old-sensor", CleanupOutcome::partiallyCompleted, hours(26));
    left.recoveryBranch = "cairnfield/recovery/old-sensor-20270114-0800";
    left.preservedCommitSHA = "0d1c7f4f1c2a9be07d35e86a1f0c92d4b7e3568a";
    left.errorSummary = "The worktree changed while it was being preserved.";
    left.finalStage = CleanupStage::removingWorktree;
    CleanupReceipt cancelled = receipt("lighthouse", "fog-signal", CleanupOutcome::cancelled, hours(700));
    cancelled.finalStage = CleanupStage::cancelled;
    return {refused(), cleaned(), left, cancelled,
            receipt("pantry", "try-sqlite", CleanupOutcome::succeeded, hours(2'000))};
}

std::vector<CleanupReceipt> oddReceipts() {
    const std::string longWord(60, 'w');
    CleanupReceipt longest = cleaned();
    longest.repositoryName = "a-repository-whose-name-goes-on-and-on-until-nobody-reads-it-to-the-end";
    longest.worktreePath = FilePath("/home/ada/" + longWord + "/" + longWord + "/" + longWord + "/the-end");
    longest.originalBranch = "feature/" + longWord + "-" + longWord;
    longest.errorSummary = longWord + longWord + longWord + longWord;
    longest.outcome = CleanupOutcome::partiallyCompleted;
    CleanupReceipt spoof = receipt("spoof\n<b>bold</b>\u202Egnp", "x", CleanupOutcome::failed, hours(1));
    spoof.worktreePath = FilePath("/home/ada/two\nlines\xff");
    spoof.errorSummary = "<h1>Hello</h1>\n\x1B[31mred\x1B[0m \u202Etxt.exe";
    return {longest, spoof};
}

std::vector<RecoveryVaultEntry> sampleVaultEntries() {
    return {
        kept("lighthouse", ".env.local", 2'048, hours(3), 90),
        kept("lighthouse", "config/certificates/local-development.key.pem", 3'272, hours(3), 90),
        kept("pantry", ".env", 512, hours(24 * 40), 0),
        kept("a-repository-whose-name-goes-on-and-on-until-nobody-reads-it-to-the-end",
             "services/authentication/deployment/environments/production/credentials/"
             "a-file-with-a-very-long-name.secrets.json",
             7 * megabyte, hours(24 * 100), 90),
        kept("spoof", "two\nlines\u202Egnp.exe\xff", 1, minutes(2), 90),
    };
}

}  // namespace cairnfield
