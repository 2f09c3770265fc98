// What the model proposes for a worktree, and what it says of it before a cleanup.

#include "Services/Cleanup/ReviewLook.h"
#include "Shared/Concurrency/Cancelled.h"
#include "support/AppModelStaging.h"
#include "unit/App/CleanupModel.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct CleanupProposal : CleanupModel {};

TEST_F(CleanupProposal, FollowsTheSettingsAndTheClock) {
    start();
    app.settings.recoveryBranchPrefix.set("kept");
    app.settings.preserveSmallLocalFiles.set(true);
    app.settings.recoveryVaultMaxFileBytes.set(1'000'000);
    app.settings.recoveryVaultRetentionDays.set(12);
    app.wallClock.set(*dateFromISO8601("2026-01-31T17:45:02Z"));
    const CleanupPlan made = plan(feature);
    EXPECT_EQ(made.worktree, app.worktreeAt(feature.path()));
    EXPECT_EQ(made.recoveryBranch, "kept/alpha/20260131-174502");
    ASSERT_EQ(made.filesToArchive.size(), 1U);
    EXPECT_EQ(made.filesToArchive[0].name, ".env");
    EXPECT_EQ(made.retentionDays, 12);

    app.wallClock.advance(std::chrono::seconds(1));
    EXPECT_EQ(plan(feature).recoveryBranch, "kept/alpha/20260131-174503") << "made anew each time";
    app.settings.recoveryVaultMaxFileBytes.set(1);
    EXPECT_THAT(plan(feature).filesToArchive, IsEmpty());
    app.settings.recoveryVaultMaxFileBytes.set(1'000'000);
    app.settings.preserveSmallLocalFiles.set(false);
    EXPECT_THAT(plan(feature).filesToArchive, IsEmpty());
}

TEST_F(CleanupProposal, OpensNoPullRequestWhileNobodyIsSignedInWhateverTheSettingSays) {
    start();
    app.settings.createDraftPullRequests.set(true);
    EXPECT_FALSE(plan(feature).createPullRequest);
    signIn(true);
    app.run(app.model->refreshIntegrations());
    EXPECT_TRUE(plan(feature).createPullRequest);
    app.settings.createDraftPullRequests.set(false);
    EXPECT_FALSE(plan(feature).createPullRequest);
}

struct Preflight : CleanupModel {};

TEST_F(Preflight, SaysThatGitIsUnavailableBeforeItWasLookedFor) {
    Worktree worktree;
    worktree.path = feature.path();
    const CleanupPreflightReport report = app.run(app.model->preflight(worktree));
    EXPECT_EQ(report, CleanupPreflightReport::failed("Git is unavailable."));
    EXPECT_FALSE(report.passed);
    EXPECT_THAT(report.failures, ElementsAre("Git is unavailable."));
    EXPECT_THAT(report.warnings, IsEmpty());
    EXPECT_EQ(report.fingerprint, std::nullopt);
    EXPECT_FALSE(report.remoteIsWritable);
    EXPECT_EQ(report.resolvedBaseBranch, std::nullopt);
}

TEST_F(Preflight, SaysWhyGitIsUnusable) {
    // This machine has a git, so the reason is put where the search would have put it.
    AppModelStaging::state(*app.model).gitStatusMessage.set("Git was not found.");
    Worktree worktree;
    worktree.path = feature.path();
    EXPECT_EQ(app.run(app.model->preflight(worktree)), CleanupPreflightReport::failed("Git was not found."));
}

TEST_F(Preflight, AsksTheRemoteOnlyWhenThereIsWorkToKeep) {
    const GitRepository idle = cleanWorktree(alpha, "idle");
    start();
    ASSERT_TRUE(plan(feature).requiresPreservation());
    CleanupPreflightReport report = preflight(feature);
    EXPECT_TRUE(report.passed) << report.failures.front();
    EXPECT_TRUE(report.remoteIsWritable);
    EXPECT_EQ(report.resolvedBaseBranch, "main");

    ASSERT_FALSE(plan(idle).requiresPreservation());
    std::filesystem::remove_all((app.home / "alpha.git").bytes());
    report = preflight(idle);
    EXPECT_TRUE(report.passed) << report.failures.front();
    EXPECT_FALSE(report.remoteIsWritable);
    EXPECT_FALSE(preflight(feature).passed);
}

TEST_F(Preflight, ChangesNothingThatIsShown) {
    start();
    feature.lock();
    const std::vector<Worktree> before = state().worktrees.get();
    const CleanupPreflightReport report = preflight(feature);
    EXPECT_FALSE(report.passed);
    EXPECT_EQ(report.failures.size(), 1U);
    EXPECT_EQ(state().worktrees.get(), before);
    EXPECT_EQ(state().activeCleanup.get(), std::nullopt);
    EXPECT_EQ(state().lastReceipt.get(), std::nullopt);
    EXPECT_THAT(state().receipts.get(), IsEmpty());
}

struct LookForAReview : CleanupModel {
    [[nodiscard]] ReviewLook look(std::stop_token abandoned = {}) {
        return app.run(app.model->lookForReview(app.worktreeAt(feature.path()), std::move(abandoned)));
    }
};

TEST_F(LookForAReview, FindsWhatTheRecordOfAWorktreeDoesNotHold) {
    feature.write("packages/api/.env", "API=1\n");
    feature.setLastTouched(app.wallClock.now() - std::chrono::hours(24));
    start();
    const ReviewLook found = look();
    ASSERT_EQ(found.nested.seen.size(), 1U);
    EXPECT_EQ(found.nested.seen[0].relativePath, "packages/api/.env");
    EXPECT_EQ(found.missing, std::nullopt);
    EXPECT_THAT(plan(feature).nested.seen, IsEmpty()) << "a plan is the settings' proposal alone";
}

TEST_F(LookForAReview, GoesByTheLimitThatTheVaultHas) {
    const std::int64_t atTheStart = app.settings.recoveryVaultMaxFileBytes.get();
    start();
    app.settings.recoveryVaultMaxFileBytes.set(atTheStart + 1);
    EXPECT_EQ(look().nested.maximumFileBytes, atTheStart);
}

TEST_F(LookForAReview, EndsWhenNobodyWaitsForItAnyMore) {
    start();
    std::stop_source review;
    review.request_stop();
    EXPECT_THROW((void)look(review.get_token()), Cancelled);
}

}  // namespace
}  // namespace cairnfield
