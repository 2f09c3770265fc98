#include "CleanupReviewFixture.h"

namespace cairnfield {
namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

class CleanupReviewRuns : public CleanupReviewFixture {
protected:
    void remember() {
        subscription_ = state().activeCleanup.observe([this] {
            if (const auto& progress = state().activeCleanup.get()) stages.push_back(progress->stage);
        });
    }

    std::string onRemote(const std::string& path) const {
        return hub.git({"show", recoveryBranch() + ":" + path});
    }
    std::string outcome(const char* key) const {
        return review.outcome().value(key).toString().toStdString();
    }

    std::vector<CleanupStage> stages;

private:
    Subscription subscription_;
};

TEST_F(CleanupReviewRuns, PreserveAndRemoveAndShowTheReceipt) {
    feature.write("new.txt", "new\n");
    feature.write("kept.txt", "changed\n");
    openToReview();
    review.setCommitMessage("Keep this");
    startToEnd();
    EXPECT_EQ(outcome("title"), "Cleaned");
    EXPECT_EQ(outcome("failure"), "");
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_EQ(onRemote("new.txt"), "new");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(hub.git({"log", "-1", "--format=%s", recoveryBranch()}), "Keep this");
    EXPECT_THAT(state().worktrees.get(), SizeIs(1)) << "the list is up to date by then";
    EXPECT_TRUE(review.isOpen());
    EXPECT_EQ(review.subtitle(), "project · feature") << "though no list knows the worktree any more";
    EXPECT_TRUE(review.canClose());
    review.close();
    EXPECT_FALSE(review.isOpen());
}

TEST_F(CleanupReviewRuns, PutTheSummaryOnThePasteboard) {
    feature.write("new.txt");
    openToReview();
    review.copyRecoverySummary();
    EXPECT_EQ(pasteboard.writes, 0) << "there is nothing to copy yet";
    startToEnd();
    EXPECT_TRUE(review.canCopySummary());
    review.copyRecoverySummary();
    EXPECT_EQ(pasteboard.contents, review.receipt()->recoverySummary());
    EXPECT_THAT(pasteboard.contents, HasSubstr(recoveryBranch()));
}

TEST_F(CleanupReviewRuns, AreNeitherClosedNorStartedTwice) {
    feature.write("new.txt");
    openToReview();
    review.start();
    EXPECT_EQ(review.phaseName(), "running");
    EXPECT_FALSE(review.canClose());
    review.start();
    review.close();
    review.open(app.worktreeAt(project.path()));
    EXPECT_TRUE(review.isOpen());
    EXPECT_EQ(review.phaseName(), "running");
    EXPECT_EQ(review.subtitle(), "project · feature");
    waitWhile(Phase::running);
    review.start();
    EXPECT_EQ(review.phaseName(), "finished");
    EXPECT_THAT(state().receipts.get(), SizeIs(1));
    EXPECT_EQ(state().cleanupsUnderWay.get(), 0);
}

TEST_F(CleanupReviewRuns, CommitNoUntrackedFileThatWasNotIncluded) {
    feature.write("new.txt");
    feature.write("kept.txt", "changed\n");
    openToReview();
    review.setIncludeUntracked(false);
    startToEnd();
    EXPECT_EQ(outcome("title"), "Preserved, not removed");
    EXPECT_EQ(outcome("note"), "Your work was pushed. The worktree was left in place.");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_FALSE(hub.tryGit({"cat-file", "-e", recoveryBranch() + ":new.txt"}));
    EXPECT_TRUE(isThere(feature / "new.txt"));
}

TEST_F(CleanupReviewRuns, OpenNoPullRequestWhileNobodyIsSignedIn) {
    feature.write("new.txt");
    openToReview();
    state().githubStatus.set({});
    review.setCreatePullRequest(true);
    EXPECT_TRUE(review.createPullRequest()) << "the control shows what the person set";
    remember();
    startToEnd();
    EXPECT_EQ(outcome("title"), "Cleaned");
    EXPECT_THAT(stages, Contains(CleanupStage::pushing));
    EXPECT_THAT(stages, Not(Contains(CleanupStage::creatingPullRequest)));
}

TEST_F(CleanupReviewRuns, OpenThePullRequestOfOneWhoIsSignedIn) {
    feature.write("new.txt");
    openToReview();
    state().githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example.org"}});
    review.setCreatePullRequest(true);
    remember();
    startToEnd();
    EXPECT_THAT(stages, Contains(CleanupStage::creatingPullRequest));
    EXPECT_EQ(outcome("title"), "Preserved, not removed") << "no hosting service knows a folder";
}

TEST_F(CleanupReviewRuns, KeepSensitiveFilesInTheVaultWhateverTheSettingsSay) {
    app.settings.preserveSmallLocalFiles.set(false);
    feature.write(".env", "secret\n");
    openToReview();
    startToEnd();
    EXPECT_EQ(outcome("title"), "Cleaned");
    ASSERT_THAT(state().vaultEntries.get(), SizeIs(1));
    EXPECT_EQ(state().vaultEntries.get()[0].relativePath, FilePath(".env"));
    EXPECT_TRUE(isThere(state().vaultEntries.get()[0].storedPath));
}

TEST_F(CleanupReviewRuns, KeepNothingInTheVaultWhenThatIsSwitchedOff) {
    app.settings.preserveSmallLocalFiles.set(true);
    feature.write(".env", "secret\n");
    openToReview();
    review.setIncludeSensitiveInVault(false);
    startToEnd();
    EXPECT_EQ(outcome("title"), "Cleaned");
    EXPECT_THAT(state().vaultEntries.get(), SizeIs(0));
}

TEST_F(CleanupReviewRuns, ShowAFailureInItsOwnLines) {
    feature.write("new.txt");
    hook("pre-commit", "echo 'not on a Friday' >&2\nprintf 'ask \\033[1mRobin\\n' >&2\nexit 1");
    openToReview();
    startToEnd();
    EXPECT_EQ(outcome("title"), "Failed");
    EXPECT_THAT(outcome("failure"), HasSubstr("not on a Friday\nask ␛[1mRobin"));
    EXPECT_EQ(outcome("note"), "");
    EXPECT_TRUE(isThere(feature / "new.txt"));
    EXPECT_TRUE(review.canCopySummary());
}

}  // namespace
}  // namespace cairnfield
