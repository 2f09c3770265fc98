#include "Services/Cleanup/ReceiptWriting.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr Date now{std::chrono::seconds(1'750'000'000)};

CleanupPlan planOfAll() {
    CleanupPlan plan;
    plan.worktree.path = FilePath("/home/robin/feature");
    plan.worktree.repositoryRoot = FilePath("/home/robin/project");
    plan.worktree.repositoryName = "project";
    plan.worktree.branch = "feature";
    plan.worktree.headSHA = "abc";
    plan.worktree.safety = WorktreeSafety::dirtyTrackedChanges;
    plan.worktree.sizeBytes = 5000;
    plan.worktree.remotes = {{"first", "", "git@first.example:a/b.git"},
                             {"second", "", "git@second.example:a/b.git"}};
    plan.remoteName = "second";
    plan.recoveryBranch = "recovery";
    return plan;
}

ReceiptWriting::Progress everythingReached() {
    PullRequestInfo pullRequest;
    pullRequest.url = "https://first.example/7";
    pullRequest.number = 7;
    return {"recovery", "def", pullRequest, {FilePath("/vault/.env")}};
}

TEST(ReceiptOfACleanup, SaysWhatWasReviewed) {
    const CleanupReceipt receipt = ReceiptWriting::stopped(planOfAll(), {}, "why", now);
    EXPECT_EQ(receipt.schemaVersion, 1);
    EXPECT_EQ(receipt.date, now);
    EXPECT_EQ(receipt.repositoryName, "project");
    EXPECT_EQ(receipt.repositoryRoot, FilePath("/home/robin/project"));
    EXPECT_EQ(receipt.worktreePath, FilePath("/home/robin/feature"));
    EXPECT_EQ(receipt.originalBranch, "feature");
    EXPECT_EQ(receipt.originalHeadSHA, "abc");
    EXPECT_EQ(receipt.safety, WorktreeSafety::dirtyTrackedChanges);
    EXPECT_EQ(receipt.sizeBeforeBytes, 5000);
    EXPECT_EQ(receipt.remoteHost, "first.example") << "always of the first remote";
    EXPECT_NE(receipt.id, ReceiptWriting::stopped(planOfAll(), {}, "why", now).id);
}

TEST(ReceiptOfACleanup, HasNoHostWithoutRemotes) {
    CleanupPlan plan = planOfAll();
    plan.worktree.remotes.clear();
    EXPECT_EQ(ReceiptWriting::stopped(plan, {}, "why", now).remoteHost, std::nullopt);
}

TEST(ReceiptOfACleanup, ThatStoppedIsPartialOnlyWithACommit) {
    ReceiptWriting::Progress reached = everythingReached();
    CleanupReceipt receipt = ReceiptWriting::stopped(planOfAll(), reached, "why", now);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(receipt.errorSummary, "why");
    EXPECT_EQ(receipt.finalStage, CleanupStage::failed);
    EXPECT_FALSE(receipt.removalSucceeded);
    EXPECT_EQ(receipt.reclaimedBytes, 0);
    EXPECT_EQ(receipt.recoveryVaultPaths, reached.vaultPaths);
    EXPECT_EQ(receipt.pullRequestNumber, 7);
    reached.preservedCommitSHA = std::nullopt;
    receipt = ReceiptWriting::stopped(planOfAll(), reached, "why", now);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(receipt.recoveryBranch, "recovery");
}

TEST(ReceiptOfACleanup, ThatSucceededTellsWhereEverythingIs) {
    const CleanupReceipt receipt = ReceiptWriting::succeeded(planOfAll(), everythingReached(), now);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.finalStage, CleanupStage::completed);
    EXPECT_TRUE(receipt.removalSucceeded);
    EXPECT_EQ(receipt.reclaimedBytes, 5000);
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.recoveryBranch, "recovery");
    EXPECT_EQ(receipt.preservedCommitSHA, "def");
    EXPECT_EQ(receipt.pullRequestURL, "https://first.example/7");
}

}  // namespace
}  // namespace cairnfield
