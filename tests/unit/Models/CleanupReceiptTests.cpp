#include "Models/CleanupReceipt.h"
#include "Models/RecoveryVaultEntry.h"
#include "Shared/Formatting/DateFormatting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <set>
#include <tuple>
#include <utility>

namespace cairnfield {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

CleanupReceipt minimal() {
    CleanupReceipt receipt;
    receipt.id = UUID::make();
    receipt.date = Date(1'750'000'000s);
    receipt.repositoryName = "project";
    receipt.repositoryRoot = FilePath("/home/me/project");
    receipt.worktreePath = FilePath("/home/me/project-feature");
    receipt.outcome = CleanupOutcome::succeeded;
    receipt.finalStage = CleanupStage::completed;
    receipt.removalSucceeded = true;
    return receipt;
}

CleanupReceipt complete() {
    CleanupReceipt receipt = minimal();
    receipt.originalBranch = "feature";
    receipt.originalHeadSHA = std::string(40, 'a');
    receipt.safety = WorktreeSafety::dirtyTrackedChanges;
    receipt.sizeBeforeBytes = 9'000'000'000;
    receipt.recoveryBranch = "cairnfield/recovery/project/20260131-174502";
    receipt.preservedCommitSHA = std::string(40, 'b');
    receipt.remoteHost = "github.com";
    receipt.pullRequestURL = "https://github.com/me/project/pull/7";
    receipt.pullRequestNumber = 7;
    receipt.recoveryVaultPaths = {FilePath("/vault/a/.env"), FilePath("/vault/a/caf\xE9")};
    receipt.reclaimedBytes = 9'000'000'000;
    receipt.errorSummary = "It broke.\nBadly.";
    return receipt;
}

CleanupReceipt read(const Json& json) {
    return Json::parse(json.dump()).get<CleanupReceipt>();
}

TEST(CleanupStage, HasItsTitlesInTheOrderOfTheList) {
    const std::vector<std::pair<std::string_view, std::string_view>> expected{
        {"preparing", "Preparing"},
        {"preflight", "Checking the worktree"},
        {"awaitingReview", "Waiting for your review"},
        {"creatingRecoveryBranch", "Creating the recovery branch"},
        {"staging", "Staging reviewed files"},
        {"committing", "Committing"},
        {"pushing", "Pushing to the remote"},
        {"creatingPullRequest", "Opening a draft pull request"},
        {"verifyingRemote", "Verifying the remote copy"},
        {"archivingLocalFiles", "Copying local-only files to the Recovery Vault"},
        {"removingWorktree", "Removing the worktree"},
        {"verifyingDeletion", "Verifying removal"},
        {"rescanningStorage", "Rescanning storage"},
        {"completed", "Completed"},
        {"failed", "Failed"},
        {"cancelled", "Cancelled"}};
    std::vector<std::pair<std::string_view, std::string_view>> found;
    for (const CleanupStage stage : allCleanupStages) found.emplace_back(rawValue(stage), title(stage));
    EXPECT_EQ(found, expected);
}

TEST(CleanupStage, ComesBackFromItsRawValue) {
    for (const CleanupStage stage : allCleanupStages)
        EXPECT_EQ(cleanupStageFromRawValue(rawValue(stage)), stage);
    EXPECT_EQ(cleanupStageFromRawValue("Preparing"), std::nullopt);
    EXPECT_EQ(cleanupStageFromRawValue(""), std::nullopt);
}

TEST(CleanupStage, KnowsWhereARunEndsAndWhereItTakesSomethingAway) {
    std::set<std::string_view> terminal;
    std::set<std::string_view> destructive;
    for (const CleanupStage stage : allCleanupStages) {
        if (isTerminal(stage)) terminal.insert(rawValue(stage));
        if (isDestructive(stage)) destructive.insert(rawValue(stage));
    }
    EXPECT_THAT(terminal, testing::ElementsAre("cancelled", "completed", "failed"));
    EXPECT_THAT(destructive, testing::ElementsAre("removingWorktree"));
}

TEST(CleanupOutcome, HasItsTitlesAndComesBackFromItsRawValue) {
    using enum CleanupOutcome;
    const std::vector<std::tuple<CleanupOutcome, std::string_view, std::string_view>> rows{
        {succeeded, "succeeded", "Cleaned"},
        {failed, "failed", "Failed"},
        {cancelled, "cancelled", "Cancelled"},
        {partiallyCompleted, "partiallyCompleted", "Preserved, not removed"}};
    for (const auto& [outcome, raw, shown] : rows) {
        EXPECT_EQ(rawValue(outcome), raw);
        EXPECT_EQ(title(outcome), shown);
        EXPECT_EQ(cleanupOutcomeFromRawValue(raw), outcome);
    }
    EXPECT_EQ(cleanupOutcomeFromRawValue("Cleaned"), std::nullopt);
}

TEST(CleanupOutcome, MarksEverythingButSuccess) {
    using enum CleanupOutcome;
    EXPECT_EQ(symbolName(succeeded), "checkmark.circle");
    for (const CleanupOutcome outcome : {failed, cancelled, partiallyCompleted})
        EXPECT_EQ(symbolName(outcome), "exclamationmark.triangle");
}

TEST(CleanupReceipt, GoesThroughJSONUnchanged) {
    for (const CleanupReceipt& receipt : {minimal(), complete()}) EXPECT_EQ(read(receipt), receipt);
}

TEST(CleanupReceipt, HasItsFieldsAsKeysAndNoneForWhatIsAbsent) {
    const Json json = complete();
    const Json without = minimal();
    std::set<std::string> keys;
    for (const auto& [key, value] : without.items()) keys.insert(key);
    const std::set<std::string> required{"schemaVersion",
                                         "id",
                                         "date",
                                         "repositoryName",
                                         "repositoryRoot",
                                         "worktreePath",
                                         "safety",
                                         "sizeBeforeBytes",
                                         "recoveryVaultPaths",
                                         "removalSucceeded",
                                         "reclaimedBytes",
                                         "finalStage",
                                         "outcome"};
    EXPECT_EQ(keys, required);
    keys.clear();
    for (const auto& [key, value] : json.items()) keys.insert(key);
    std::set<std::string> all = required;
    all.insert({"originalBranch", "originalHeadSHA", "recoveryBranch", "preservedCommitSHA", "remoteHost",
                "pullRequestURL", "pullRequestNumber", "errorSummary"});
    EXPECT_EQ(keys, all);

    EXPECT_EQ(json["safety"], "dirtyTrackedChanges");
    EXPECT_EQ(json["finalStage"], "completed");
    EXPECT_EQ(json["outcome"], "succeeded");
    EXPECT_EQ(json["date"], "2025-06-15T15:06:40Z");
    EXPECT_TRUE(UUID::parse(json["id"].get<std::string>()));
}

TEST(CleanupReceipt, DoesNotReadWithoutARequiredKeyOrWithAnOddValue) {
    const Json whole = complete();
    for (const char* key : {"schemaVersion", "id", "date", "repositoryName", "repositoryRoot", "worktreePath",
                            "safety", "sizeBeforeBytes", "recoveryVaultPaths", "removalSucceeded",
                            "reclaimedBytes", "finalStage", "outcome"}) {
        Json json = whole;
        json.erase(key);
        EXPECT_THROW((void)read(json), Json::exception) << "without " << key;
        json[key] = Json::object();
        EXPECT_THROW((void)read(json), Json::exception) << "odd " << key;
    }
    for (const char* key : {"safety", "finalStage", "outcome"}) {
        Json json = whole;
        json[key] = "somethingNew";
        EXPECT_THROW((void)read(json), Json::exception) << key;
    }
}

TEST(CleanupReceipt, ReadsEveryVerdict) {
    for (int number = 0; number <= static_cast<int>(WorktreeSafety::manualReview); ++number) {
        CleanupReceipt receipt = minimal();
        receipt.safety = static_cast<WorktreeSafety>(number);
        EXPECT_EQ(read(receipt).safety, receipt.safety);
    }
}

TEST(RecoverySummary, OfAReceiptWithoutOptionalValuesHasFourLines) {
    EXPECT_EQ(minimal().recoverySummary(), "Cairnfield cleanup \xE2\x80\x94 " +
                                               DateFormatting::absolute(minimal().date) +
                                               "\nRepository: project\n"
                                               "Worktree: /home/me/project-feature\n"
                                               "Result: Cleaned");
}

TEST(RecoverySummary, HasALineForEachValue) {
    const std::string summary = complete().recoverySummary();
    EXPECT_THAT(summary, EndsWith("\nRepository: project\n"
                                  "Worktree: /home/me/project-feature\n"
                                  "Original branch: feature\n"
                                  "Recovery branch: cairnfield/recovery/project/20260131-174502\n"
                                  "Preserved commit: " +
                                  std::string(40, 'b') +
                                  "\n"
                                  "Pull request: https://github.com/me/project/pull/7\n"
                                  "Recovery Vault files: 2\n"
                                  "Result: Cleaned\n"
                                  "Error: It broke.\nBadly."));
}

TEST(RecoverySummary, TellsOfPreservedWorkInItsOwnWords) {
    CleanupReceipt receipt = minimal();
    receipt.outcome = CleanupOutcome::partiallyCompleted;
    EXPECT_THAT(receipt.recoverySummary(), EndsWith("\nResult: Preserved, not removed"));
}

TEST(RecoverySummary, LetsNoNameMakeUpALine) {
    CleanupReceipt receipt = complete();
    receipt.worktreePath = FilePath("/w\nPreserved commit: forged");
    receipt.repositoryName = "r\r\nResult: forged";
    receipt.originalBranch = "b\xE2\x80\xA8Result: forged";
    EXPECT_THAT(receipt.recoverySummary(), Not(HasSubstr("\nPreserved commit: forged")));
    EXPECT_THAT(receipt.recoverySummary(), Not(HasSubstr("\nResult: forged")));
    EXPECT_THAT(receipt.recoverySummary(), Not(HasSubstr("\xE2\x80\xA8")));
}

TEST(RecoveryVaultEntry, GoesThroughJSONUnchanged) {
    RecoveryVaultEntry entry;
    entry.id = UUID::make();
    entry.receiptID = UUID::make();
    entry.repositoryName = "project";
    entry.originalWorktreePath = FilePath("/w/caf\xE9");
    entry.relativePath = FilePath("conf/.env\xFF");
    entry.storedPath = FilePath("/vault/conf/.env\xFF");
    entry.sizeBytes = 12;
    entry.reason = "Because.";
    entry.archivedAt = Date(1'750'000'000s);
    std::set<std::string> keys;
    const Json without(entry);
    for (const auto& [key, value] : without.items()) keys.insert(key);
    EXPECT_EQ(keys, (std::set<std::string>{"schemaVersion", "id", "receiptID", "repositoryName",
                                           "originalWorktreePath", "relativePath", "storedPath", "sizeBytes",
                                           "reason", "archivedAt"}));
    EXPECT_EQ(Json::parse(without.dump()).get<RecoveryVaultEntry>(), entry);
    entry.modifiedAt = Date(1'740'000'000s);
    entry.expiresAt = Date(1'760'000'000s);
    EXPECT_EQ(Json::parse(Json(entry).dump()).get<RecoveryVaultEntry>(), entry);
    for (const std::string& key : keys) {
        Json json = without;
        json.erase(key);
        EXPECT_THROW((void)json.get<RecoveryVaultEntry>(), Json::exception) << key;
    }
}

}  // namespace
}  // namespace cairnfield
