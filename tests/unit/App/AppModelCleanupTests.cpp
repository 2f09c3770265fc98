// A cleanup as the model carries it out: what is shown meanwhile, what it brings up to date afterwards, and
// what it tells the person.

#include "Shared/Formatting/ByteFormatting.h"
#include "unit/App/CleanupModel.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CleanupRun : CleanupModel {};

TEST_F(CleanupRun, WithoutGitNothingRunsAndThereIsNoReceipt) {
    app.settings.notificationsEnabled.set(true);
    CleanupPlan plan;
    plan.worktree.path = feature.path();
    EXPECT_EQ(app.run(app.model->execute(plan)), std::nullopt);
    EXPECT_TRUE(exists(feature));
    EXPECT_THAT(state().receipts.get(), IsEmpty());
    EXPECT_EQ(state().lastReceipt.get(), std::nullopt);
    EXPECT_EQ(state().activeCleanup.get(), std::nullopt);
    EXPECT_THAT(app.notifications.deliveries, IsEmpty());
}

TEST_F(CleanupRun, BringsWhatIsShownUpToDate) {
    start();
    app.settings.preserveSmallLocalFiles.set(true);
    ASSERT_GT(app.worktreeAt(feature.path()).sizeBytes, 0);
    app.volume.set(250'000'000'000, 500'000'000'000);
    const CleanupReceipt receipt = clean(feature);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded) << receipt.errorSummary.value_or("");
    EXPECT_FALSE(exists(feature));
    EXPECT_EQ(state().lastReceipt.get(), receipt);
    EXPECT_THAT(state().receipts.get(), ElementsAre(receipt));
    ASSERT_EQ(state().vaultEntries.get().size(), 1U);
    EXPECT_THAT(receipt.recoveryVaultPaths, ElementsAre(state().vaultEntries.get()[0].storedPath));
    EXPECT_EQ(state().activeCleanup.get(), std::nullopt);
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
    ASSERT_EQ(state().worktrees.get().size(), 1U);
    EXPECT_EQ(state().worktrees.get()[0].path, alpha.path());
    EXPECT_EQ(state().storage.get()->availableCapacity, 250'000'000'000);
}

TEST_F(CleanupRun, LeavesSizesThatAreNotKnownToTheNextWholeRefresh) {
    start();
    ASSERT_GT(app.worktreeAt(alpha.path()).sizeBytes, 0);
    app.wallClock.advance(std::chrono::hours(1));  // what was measured is too old by now
    int sizings = 0;
    const Subscription subscription = state().sizingProgress.observe([&] { ++sizings; });
    EXPECT_TRUE(clean(feature).removalSucceeded);
    EXPECT_EQ(app.worktreeAt(alpha.path()).sizeBytes, 0);
    EXPECT_EQ(sizings, 0);
    app.run(app.model->refreshWorktrees(true));
    app.run(app.model->sizingFinished());
    EXPECT_GT(app.worktreeAt(alpha.path()).sizeBytes, 0);
}

TEST_F(CleanupRun, ShowsEachStepFromPreparingOnAndClearsIt) {
    start();
    app.settings.preserveSmallLocalFiles.set(true);
    std::vector<std::optional<CleanupProgress>> seen;
    std::vector<int> underWay;
    const Subscription steps =
        state().activeCleanup.observe([&] { seen.push_back(state().activeCleanup.get()); });
    const Subscription counts =
        state().cleanupsUnderWay.observe([&] { underWay.push_back(state().cleanupsUnderWay.get()); });
    const CleanupReceipt receipt = clean(feature);
    ASSERT_FALSE(seen.empty());
    EXPECT_EQ(seen.back(), std::nullopt);
    seen.pop_back();
    std::vector<CleanupStage> stages;
    stages.reserve(seen.size());
    for (const auto& step : seen) stages.push_back(step.value_or(CleanupProgress{}).stage);
    EXPECT_EQ(seen.front(), (CleanupProgress{CleanupStage::preparing, std::nullopt}));
    using enum CleanupStage;
    EXPECT_THAT(stages, ElementsAre(preparing, preflight, creatingRecoveryBranch, staging, committing,
                                    pushing, verifyingRemote, archivingLocalFiles, removingWorktree,
                                    verifyingDeletion, completed));
    EXPECT_EQ(seen.at(2), (CleanupProgress{creatingRecoveryBranch, receipt.recoveryBranch}));
    EXPECT_THAT(underWay, ElementsAre(1, 0));
}

TEST_F(CleanupRun, ForgetsTheSizeThatWasKnownOfTheWorktreeAndNoOther) {
    start();
    feature.lock();  // it stays, and so can be sized again
    const auto sizeOf = [&](const FilePath& path) {
        return app.run(app.model->directorySize(path, true)).totalBytes;
    };
    const std::int64_t featureBefore = sizeOf(feature.path());
    const std::int64_t alphaBefore = sizeOf(alpha.path());
    feature.writeLarge("large", 1'000'000);
    alpha.writeLarge("large", 1'000'000);
    ASSERT_EQ(sizeOf(feature.path()), featureBefore) << "the size is not remembered at all";
    EXPECT_EQ(clean(feature).outcome, CleanupOutcome::failed);
    EXPECT_GE(sizeOf(feature.path()), featureBefore + 1'000'000);
    EXPECT_EQ(sizeOf(alpha.path()), alphaBefore);
}

TEST_F(CleanupRun, OneThatIsRefusedIsTheLastReceiptAndNoRecord) {
    start();
    feature.lock();
    const CleanupReceipt receipt = clean(feature);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(state().lastReceipt.get(), receipt);
    EXPECT_THAT(state().receipts.get(), IsEmpty());
    EXPECT_EQ(state().activeCleanup.get(), std::nullopt);
    EXPECT_TRUE(app.worktreeAt(feature.path()).isLocked) << "the list was not refreshed";
}

TEST_F(CleanupRun, ReceiptsStandNewestFirst) {
    const GitRepository other = workIn(alpha, "alpha-other");
    start();
    const CleanupReceipt first = clean(feature);
    app.wallClock.advance(std::chrono::minutes(1));
    const CleanupReceipt second = clean(other);
    EXPECT_THAT(state().receipts.get(), ElementsAre(second, first));
    EXPECT_EQ(state().lastReceipt.get(), second);
}

struct CleanupNotification : CleanupModel {};

TEST_F(CleanupNotification, TellsWhatWasReclaimed) {
    start();
    app.settings.notificationsEnabled.set(true);
    const CleanupReceipt receipt = clean(feature);
    ASSERT_GT(receipt.reclaimedBytes, 0);
    const NotificationRequestPayload expected{
        .kind = NotificationKind::cleanupCompleted,
        .title = "Cleanup complete",
        .body = "Reclaimed about " + ByteFormatting::string(receipt.reclaimedBytes) + " from alpha.",
        .identifier = "cleanup." + receipt.id.text()};
    EXPECT_THAT(app.notifications.deliveries, ElementsAre(expected));
}

TEST_F(CleanupNotification, TellsWhatStoppedIt) {
    start();
    app.settings.notificationsEnabled.set(true);
    std::filesystem::remove_all((app.home / "alpha.git").bytes());
    const CleanupReceipt receipt = clean(feature);
    ASSERT_TRUE(receipt.errorSummary.has_value());
    const NotificationRequestPayload expected{.kind = NotificationKind::cleanupFailed,
                                              .title = "Cleanup stopped, work is safe",
                                              .body = *receipt.errorSummary,
                                              .identifier = "cleanup." + receipt.id.text()};
    EXPECT_THAT(app.notifications.deliveries, ElementsAre(expected));
}

TEST_F(CleanupNotification, IsNotSentWhenTheyAreOffAndTheRecordsAreKept) {
    start();
    app.settings.notificationsEnabled.set(false);
    const CleanupReceipt receipt = clean(feature);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(app.notifications.deliveries, IsEmpty());
    EXPECT_THAT(state().receipts.get(), ElementsAre(receipt));
}

TEST_F(CleanupNotification, ThatCannotBeSentChangesNothingOfTheResult) {
    start();
    app.settings.notificationsEnabled.set(true);
    app.notifications.authorization = NotificationAuthorization::denied;
    EXPECT_EQ(clean(feature).outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(app.notifications.deliveries, IsEmpty());
    EXPECT_EQ(std::ranges::count(app.notifications.calls, "deliver"), 1);
}

}  // namespace
}  // namespace cairnfield
