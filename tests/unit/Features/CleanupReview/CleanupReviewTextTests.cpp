#include "Features/CleanupReview/CleanupReviewText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t megabyte = 1'000'000;

Worktree worktree() {
    Worktree worktree;
    worktree.repositoryName = "atlas";
    worktree.branch = "feature";
    worktree.headSHA = "0123456789abcdef0123456789abcdef01234567";
    worktree.safety = WorktreeSafety::dirtyTrackedChanges;
    worktree.status = {.stagedCount = 2, .modifiedCount = 3, .untrackedCount = 4};
    worktree.sizeBytes = 12 * megabyte;
    return worktree;
}

IgnoredEntry ignored(const std::string& name, std::int64_t size, IgnoredEntryClass classification) {
    return {.name = name, .relativePath = name, .sizeBytes = size, .classification = classification};
}

std::string unpushedCommits(const RemoteTrackingState& tracking) {
    Worktree counted = worktree();
    counted.tracking = tracking;
    return foundRows(counted).at(3).value;
}

TEST(CleanupReviewText, NamesTheRepositoryAndTheBranch) {
    EXPECT_EQ(reviewSubtitle(worktree()), "atlas · feature");
    Worktree detached = worktree();
    detached.branch.reset();
    detached.isDetached = true;
    EXPECT_EQ(reviewSubtitle(detached), "atlas · detached at 0123456");
}

TEST(CleanupReviewText, KeepsWhatComesFromOutsideOnItsLine) {
    Worktree odd = worktree();
    odd.repositoryName = "at\nlas";
    odd.branch = "<b>x</b>\u202Ey\xff";
    EXPECT_EQ(reviewSubtitle(odd), "at␊las · <b>x</b>\uFFFDy\uFFFD");
    odd.ignoredEntries = {ignored(".env\n.real", 5, IgnoredEntryClass::sensitive)};
    EXPECT_THAT(sensitiveLines(odd), ElementsAre("• .env␊.real · 5 bytes"));
    EXPECT_THAT(warningLines({.warnings = {"one\ntwo"}}), ElementsAre("one␊two"));
}

TEST(CleanupReviewText, CountsWhatWasFound) {
    EXPECT_THAT(foundRows(worktree()),
                ElementsAre(LabelledText{"Safety", "Preserve first"}, LabelledText{"Tracked changes", "5"},
                            LabelledText{"Untracked files", "4"}, LabelledText{"Unpushed commits", "—"},
                            LabelledText{"Estimated reclaim", "12 MB"}));
}

TEST(CleanupReviewText, CountsTheCommitsThatNoRemoteHas) {
    EXPECT_EQ(unpushedCommits({.upstreamBranch = "origin/feature", .ahead = 2, .uniqueCommitCount = 7}), "2");
    EXPECT_EQ(unpushedCommits({.uniqueCommitCount = 3}), "3") << "nothing was ever pushed";
    EXPECT_EQ(unpushedCommits({.headIsRemotelyPreserved = true, .uniqueCommitCount = 3}), "0");
    EXPECT_EQ(unpushedCommits({}), "—") << "there is nothing to count against";
}

TEST(CleanupReviewText, BlocksWithTheFirstReason) {
    EXPECT_EQ(blockedText({}), "Preflight failed.");
    EXPECT_EQ(blockedText({.failures = {"The first.", "The second."}}), "The first.");
    EXPECT_EQ(blockedText({.failures = {"One line\nand\x1b[31m another"}}), "One line\nand␛[31m another");
}

TEST(CleanupReviewText, TellsWhereTheWorkIsPushed) {
    CleanupPlan plan;
    plan.worktree = worktree();
    plan.trackedPathsToCommit = {"file"};
    plan.recoveryBranch = "cairnfield/recovery/atlas/20260101-000000";
    const PreservedText bare = preservedText(plan, {});
    EXPECT_TRUE(bare.isPushed);
    EXPECT_EQ(
        bare.statement,
        (SymbolText{"arrow.up.doc", "Committed and pushed to cairnfield/recovery/atlas/20260101-000000"}));
    EXPECT_THAT(bare.rows, IsEmpty());
    plan.remoteName = "origin";
    EXPECT_THAT(preservedText(plan, {.resolvedBaseBranch = "trunk"}).rows,
                ElementsAre(LabelledText{"Remote", "origin"}, LabelledText{"Base branch", "trunk"}));
}

TEST(CleanupReviewText, SaysWhenNothingNeedsPreserving) {
    CleanupPlan plan;
    plan.worktree = worktree();
    plan.remoteName = "origin";
    EXPECT_EQ(preservedText(plan, {.resolvedBaseBranch = "trunk"}),
              (PreservedText{false, {"cloud", "Every commit here already exists on the remote."}, {}}));
}

TEST(CleanupReviewText, ListsWhatDisappearsAndHowItComesBack) {
    Worktree full = worktree();
    full.ignoredEntries = {ignored("node_modules", 1'240 * megabyte, IgnoredEntryClass::rebuildable),
                           ignored("made-up-output", 2 * megabyte, IgnoredEntryClass::rebuildable),
                           ignored("recordings", megabyte, IgnoredEntryClass::unknown),
                           ignored(".env", 2'048, IgnoredEntryClass::sensitive)};
    EXPECT_THAT(rebuildableLines(full),
                ElementsAre("node_modules · 1.24 GB · rebuilt by npm install / pnpm install / yarn",
                            "made-up-output · 2 MB"));
    EXPECT_THAT(sensitiveLines(full), ElementsAre("• .env · 2 kB"));
}

TEST(CleanupReviewText, HeadsAReceiptByItsOutcome) {
    const auto head = [](CleanupOutcome outcome) {
        CleanupReceipt receipt;
        receipt.outcome = outcome;
        return receiptText(receipt).title;
    };
    EXPECT_EQ(head(CleanupOutcome::succeeded), (SymbolText{"checkmark.circle", "Cleaned"}));
    EXPECT_EQ(head(CleanupOutcome::failed), (SymbolText{"exclamationmark.triangle", "Failed"}));
    EXPECT_EQ(head(CleanupOutcome::cancelled), (SymbolText{"exclamationmark.triangle", "Cancelled"}));
    EXPECT_EQ(head(CleanupOutcome::partiallyCompleted),
              (SymbolText{"exclamationmark.triangle", "Preserved, not removed"}));
}

TEST(CleanupReviewText, SaysThatPushedWorkWasPushedWhenTheRestFailed) {
    CleanupReceipt receipt;
    EXPECT_EQ(receiptText(receipt).failure, "");
    receipt.outcome = CleanupOutcome::partiallyCompleted;
    EXPECT_EQ(receiptText(receipt).note, "") << "nothing failed that a note could stand beside";
    receipt.errorSummary = "remote: no\r\nremote: never";
    EXPECT_EQ(receiptText(receipt).failure, "remote: no\nremote: never");
    EXPECT_EQ(receiptText(receipt).note, "Your work was pushed. The worktree was left in place.");
    receipt.outcome = CleanupOutcome::failed;
    EXPECT_EQ(receiptText(receipt).failure, "remote: no\nremote: never");
    EXPECT_EQ(receiptText(receipt).note, "");
}

TEST(CleanupReviewText, NamesOnlyThePlacesWhereWorkIs) {
    CleanupReceipt receipt;
    EXPECT_THAT(receiptText(receipt).whereabouts, IsEmpty());
    receipt.recoveryBranch = "cairnfield/recovery/atlas/20260101-000000";
    receipt.preservedCommitSHA = "0123";
    receipt.pullRequestNumber = 12;
    receipt.recoveryVaultPaths = {FilePath("/vault/a"), FilePath("/vault/b")};
    receipt.reclaimedBytes = 3 * megabyte;
    EXPECT_THAT(
        receiptText(receipt).whereabouts,
        ElementsAre(LabelledText{"Recovery branch", "cairnfield/recovery/atlas/20260101-000000", true},
                    LabelledText{"Commit", "0123", true}, LabelledText{"Pull request", "#12"},
                    LabelledText{"Recovery Vault", "2 file(s)"}, LabelledText{"Reclaimed", "3 MB"}));
}

TEST(CleanupReviewText, SaysPlainlyWhenNothingRan) {
    const ReceiptText text = neverBegunText(std::nullopt);
    EXPECT_EQ(text.title, (SymbolText{"hand.raised", "Nothing was changed"}));
    EXPECT_EQ(text.failure, "Git is unavailable.");
    EXPECT_EQ(text.note, "The cleanup did not begin.");
    EXPECT_EQ(neverBegunText("Git was not found on this Mac.").failure, "Git was not found on this Mac.");
}

}  // namespace
}  // namespace cairnfield
