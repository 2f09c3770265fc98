#include "CleanupReviewFixture.h"

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using CleanupReview = CleanupReviewFixture;

std::string text(const QVariantMap& map, const char* key) {
    return map.value(key).toString().toStdString();
}

TEST_F(CleanupReview, ShowsNothingUntilItIsOpened) {
    EXPECT_FALSE(review.isOpen());
    EXPECT_TRUE(review.canClose());
    EXPECT_FALSE(review.canStart());
    EXPECT_EQ(review.worktree(), std::nullopt);
}

TEST_F(CleanupReview, ChecksFirstAndThenShowsThePlan) {
    feature.write("new.txt");
    feature.write("kept.txt", "changed\n");
    list();
    open();
    EXPECT_TRUE(review.isOpen());
    EXPECT_EQ(review.phaseName(), "checking");
    EXPECT_EQ(review.subtitle(), "project · feature");
    EXPECT_EQ(review.commitMessage(), "chore(cairnfield): preserve worktree before cleanup");
    EXPECT_TRUE(review.includeUntracked());
    EXPECT_TRUE(review.includeSensitiveInVault());
    EXPECT_FALSE(review.createPullRequest()) << "nobody is signed in";
    waitWhile(Phase::checking);
    EXPECT_EQ(review.phaseName(), "review");
    EXPECT_TRUE(review.canStart());
    EXPECT_TRUE(review.canClose());
    EXPECT_TRUE(review.preserved().value("isPushed").toBool());
    EXPECT_THAT(text(review.preserved(), "text"),
                HasSubstr("Committed and pushed to cairnfield/recovery/project/"));
    EXPECT_EQ(review.found().size(), 5);
    EXPECT_EQ(review.worktreePath().toStdString(), feature.path().display());
}

TEST_F(CleanupReview, TakesTheProposalOfAPullRequestFromThePlan) {
    app.settings.createDraftPullRequests.set(true);
    list();
    state().githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example.org"}});
    EXPECT_TRUE(review.isSignedIn());
    open();
    EXPECT_TRUE(review.createPullRequest());
    review.close();
    app.settings.createDraftPullRequests.set(false);
    open();
    EXPECT_FALSE(review.createPullRequest());
}

TEST_F(CleanupReview, OffersNothingToChooseWhereNothingNeedsPreserving) {
    feature.write(".env", "secret\n");
    openToReview();
    EXPECT_FALSE(review.preserved().value("isPushed").toBool());
    EXPECT_EQ(text(review.preserved(), "text"), "Every commit here already exists on the remote.");
    ASSERT_EQ(review.sensitiveLines().size(), 1) << "but the vault is offered";
    EXPECT_TRUE(review.sensitiveLines()[0].startsWith("• .env · "));
}

TEST_F(CleanupReview, IsBlockedByWhatThePreflightFinds) {
    list();
    const Worktree listed = app.worktreeAt(feature.path());
    project.git({"worktree", "remove", feature.path().bytes()});
    review.open(listed);
    waitWhile(Phase::checking);
    EXPECT_EQ(review.phaseName(), "blocked");
    EXPECT_NE(review.blockedMessage(), "");
    review.start();
    EXPECT_EQ(review.phaseName(), "blocked");
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
}

TEST_F(CleanupReview, IsBlockedWithoutGit) {
    Worktree worktree;
    worktree.path = feature.path();
    review.open(worktree);
    waitWhile(Phase::checking);
    EXPECT_EQ(review.blockedMessage(), "Git is unavailable.");
}

TEST_F(CleanupReview, ShowsOnlyTheFirstOfSeveralObjections) {
    list();
    open();
    CleanupReviewStaging::answer(review, {.failures = {"The first.", "The second."}});
    EXPECT_EQ(review.phaseName(), "blocked");
    EXPECT_EQ(review.blockedMessage(), "The first.");
}

TEST_F(CleanupReview, IsBlockedInItsOwnWordsWhenThereIsNoReason) {
    list();
    open();
    CleanupReviewStaging::answer(review, {.passed = false});
    EXPECT_EQ(review.blockedMessage(), "Preflight failed.");
}

TEST_F(CleanupReview, IgnoresAnAnswerThatComesAfterItWasClosed) {
    list();
    open();
    review.close();
    EXPECT_FALSE(review.isOpen());
    const SignalCount changes(&review, &CleanupReviewViewModel::phaseChanged);
    // By the time that three more have been answered in turn, the first has.
    for (int times = 0; times < 3; ++times) app.run(app.model->preflight(app.worktreeAt(feature.path())));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_FALSE(review.isOpen());
}

TEST_F(CleanupReview, IgnoresTheAnswerToAnEarlierReview) {
    list();
    const Worktree listed = app.worktreeAt(feature.path());
    Worktree gone = listed;
    gone.path = app.home / "code/never-there";
    std::vector<Phase> phases;
    QObject::connect(&review, &CleanupReviewViewModel::phaseChanged,
                     [&] { phases.push_back(review.phase()); });
    review.open(gone);
    review.open(listed);
    waitWhile(Phase::checking);
    EXPECT_THAT(phases, ElementsAre(Phase::checking, Phase::checking, Phase::review));
    EXPECT_EQ(review.worktreePath().toStdString(), feature.path().display());
}

TEST_F(CleanupReview, MayGoBeforeItsAnswerComes) {
    list();
    auto other = std::make_unique<CleanupReviewViewModel>(*app.model, pasteboard);
    other->open(app.worktreeAt(feature.path()));
    other.reset();
    EXPECT_TRUE(app.run(app.model->preflight(app.worktreeAt(feature.path()))).passed);
}

TEST_F(CleanupReview, BeginsAnewEachTime) {
    feature.write("new.txt");
    openToReview();
    review.setIncludeUntracked(false);
    review.setIncludeSensitiveInVault(false);
    review.setCreatePullRequest(true);
    review.setCommitMessage("mine");
    EXPECT_EQ(review.commitMessage(), "mine");
    review.close();
    open();
    EXPECT_EQ(review.phaseName(), "checking");
    EXPECT_TRUE(review.includeUntracked());
    EXPECT_TRUE(review.includeSensitiveInVault());
    EXPECT_FALSE(review.createPullRequest());
    EXPECT_EQ(review.commitMessage(), "chore(cairnfield): preserve worktree before cleanup");
}

TEST_F(CleanupReview, TellsWhenSomebodySignsIn) {
    const SignalCount changes(&review, &CleanupReviewViewModel::signedInChanged);
    state().githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example.org"}});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(review.isSignedIn());
}

TEST_F(CleanupReview, FollowsTheStagesOnlyWhileItRuns) {
    list();
    open();
    const auto progress = [&](int row) {
        return review.stages()
            ->data(review.stages()->index(row), CleanupStageModel::progressRole)
            .toString()
            .toStdString();
    };
    state().activeCleanup.set(CleanupProgress{CleanupStage::pushing, "origin"});
    EXPECT_EQ(progress(0), "In progress") << "somebody else's";
    CleanupReviewStaging::run(review, CleanupStage::preparing);
    state().activeCleanup.set(CleanupProgress{CleanupStage::committing, std::nullopt});
    EXPECT_EQ(progress(2), "Done");
    EXPECT_EQ(progress(3), "In progress");
    state().activeCleanup.set(std::nullopt);
    EXPECT_EQ(progress(3), "In progress") << "the lists are being brought up to date";
}

TEST_F(CleanupReview, SaysPlainlyThatNothingRanWhenGitIsGone) {
    Worktree worktree;
    worktree.path = feature.path();
    review.open(worktree);
    waitWhile(Phase::checking);
    CleanupReviewStaging::answer(review, {.passed = true});
    startToEnd();
    EXPECT_EQ(review.receipt(), std::nullopt);
    EXPECT_FALSE(review.canCopySummary());
    EXPECT_EQ(text(review.outcome(), "title"), "Nothing was changed");
    EXPECT_EQ(text(review.outcome(), "failure"), "Git is unavailable.");
    review.copyRecoverySummary();
    EXPECT_EQ(pasteboard.writes, 0);
    review.close();
    EXPECT_FALSE(review.isOpen());
}

}  // namespace
}  // namespace cairnfield
