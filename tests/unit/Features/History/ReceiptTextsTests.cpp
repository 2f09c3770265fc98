#include "Features/History/ReceiptTexts.h"
#include "SampleReceipts.h"
#include "Shared/Formatting/DateFormatting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;

std::vector<std::string> labels(const CleanupReceipt& receipt) {
    std::vector<std::string> result;
    for (const LabelledText& row : receiptValueTexts(receipt)) result.push_back(row.label);
    return result;
}

TEST(ReceiptTexts, SayHowTheAttemptEndedOfWhatAndWhen) {
    const ReceiptRowText text = receiptRowText(bareReceipt("atlas", CleanupOutcome::partiallyCompleted));
    EXPECT_EQ(text.outcome, "Preserved, not removed");
    EXPECT_EQ(text.repository, "atlas");
    EXPECT_EQ(text.date, DateFormatting::absolute(sampleDate));
}

TEST(ReceiptTexts, ListEveryValueThatAReceiptHasInOrder) {
    EXPECT_THAT(
        receiptValueTexts(fullReceipt("atlas")),
        ElementsAre(LabelledText{"Worktree", "/code/atlas-work"},
                    LabelledText{"Original branch", "feature/tariffs"},
                    LabelledText{"Recovery branch", "cairnfield/recovery/feature-tariffs", true},
                    LabelledText{"Preserved commit", "89abcdef0123456789abcdef0123456789abcdef", true},
                    LabelledText{"Pull request", "#7"}, LabelledText{"Safety at the time", "Preserve first"},
                    LabelledText{"Reclaimed", "2 GB"}, LabelledText{"Final stage", "Completed"}));
}

TEST(ReceiptTexts, OmitWhatACancelledAttemptWithoutARecoveryBranchDoesNotHave) {
    CleanupReceipt receipt = bareReceipt("atlas", CleanupOutcome::cancelled);
    receipt.originalBranch = "main";
    receipt.finalStage = CleanupStage::cancelled;
    EXPECT_THAT(labels(receipt),
                ElementsAre("Worktree", "Original branch", "Safety at the time", "Reclaimed", "Final stage"));
    receipt.originalBranch.reset();
    EXPECT_THAT(labels(receipt), ElementsAre("Worktree", "Safety at the time", "Reclaimed", "Final stage"));
}

TEST(ReceiptTexts, NeedANumberForAPullRequest) {
    CleanupReceipt receipt = bareReceipt("atlas", CleanupOutcome::succeeded);
    receipt.pullRequestURL = "https://git.example.org/ada/atlas/pull/7";
    EXPECT_THAT(labels(receipt), testing::Not(testing::Contains("Pull request")));
}

TEST(ReceiptTexts, SayWhatStoppedAnAttemptLineByLine) {
    EXPECT_EQ(receiptFailureText(fullReceipt("atlas")), "");
    CleanupReceipt receipt = bareReceipt("atlas", CleanupOutcome::failed);
    receipt.errorSummary = "The hook refused.\nline 2 \x1B[31m\n";
    EXPECT_EQ(receiptFailureText(receipt), "The hook refused.\nline 2 ␛[31m");
}

TEST(ReceiptTexts, MakeHostileNamesSafeToLookAt) {
    CleanupReceipt receipt = bareReceipt("at\nlas\u202E", CleanupOutcome::failed);
    receipt.worktreePath = FilePath("/co\nde/\xff");
    receipt.recoveryBranch = "re\u202Ecovery";
    EXPECT_EQ(receiptRowText(receipt).repository, "at␊las\uFFFD");
    EXPECT_EQ(receiptValueTexts(receipt)[0].value, "/co␊de/\uFFFD");
    EXPECT_EQ(receiptValueTexts(receipt)[1].value, "re\uFFFDcovery");
}

}  // namespace
}  // namespace cairnfield
