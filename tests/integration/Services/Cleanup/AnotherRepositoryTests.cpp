// A path that leads git to another repository than the reviewed one. Nothing of that other repository is
// touched, and what an interrupted removal left can be brought to its end.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class CleanupOfAnother : public Cleanup {
protected:
    /// Every reference and what HEAD names, and what is changed.
    static std::string stateOf(const GitRepository& repository) {
        return repository.git({"show-ref", "--head"}) + repository.git({"symbolic-ref", "HEAD"}) +
               repository.git({"status", "--porcelain"});
    }
    std::string changedAfterReview() const {
        return "The worktree at " + feature.path().bytes() + " changed after you reviewed it.";
    }
    void putAnotherCloneInItsPlace() {
        const GitRepository other = otherHub.cloneTo(home / "other");
        other.write("kept.txt", "changed\n");
        fs::rename(feature.path().bytes(), (home / "aside").bytes());
        fs::rename(other.path().bytes(), feature.path().bytes());
    }

    /// Has the same files as the project.
    const GitRepository otherHub = hub.cloneTo(home / "other-hub");
};

TEST_F(CleanupOfAnother, LeavesTheMainCheckoutAloneWhenTheGitFileIsGone) {
    project.ignore(".claude/");
    const GitRepository inner = project.addWorktree(project / ".claude/worktrees/task", "task");
    const CleanupPlan made = plan(review(inner));
    fs::remove((inner / ".git").bytes());
    project.commitFile("unpushed.txt");
    const std::string before = stateOf(project);
    for (const bool preserves : {false, true}) {
        CleanupPlan attempt = made;
        if (preserves) attempt.worktree.tracking.ahead = 1;
        ASSERT_EQ(attempt.requiresPreservation(), preserves);
        const CleanupReceipt receipt = execute(attempt);
        EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its Git file is missing"));
        EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    }
    EXPECT_THAT(preflight(made.worktree).failures, ElementsAre(HasSubstr("Its Git file is missing")));
    EXPECT_THAT(storedReceipts(), IsEmpty());
    EXPECT_EQ(stateOf(project), before);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_TRUE(isThere(inner / "kept.txt"));
}

TEST_F(CleanupOfAnother, LeavesAnotherCloneAloneThatTookThePlaceSinceTheReview) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    putAnotherCloneInItsPlace();
    const std::string before = stateOf(feature);
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr("leads to something else than the worktree that Git lists there"));
    EXPECT_EQ(stateOf(feature), before);
    EXPECT_EQ(contentOf(home / "aside/kept.txt"), "changed\n");
    expectIntact(receipt);
}

TEST_F(CleanupOfAnother, LeavesAnotherCloneAloneThatTakesThePlaceBeforeTheBranchIsMade) {
    feature.write("kept.txt", "changed\n");
    std::string before;
    commands.after("ls-remote --exit-code", [&] {
        commands.after("status", [&] {  // the preflight's; the next one is compared with it
            commands.after("status", [&] {
                putAnotherCloneInItsPlace();
                before = stateOf(feature);
            });
        });
    });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, changedAfterReview());
    EXPECT_EQ(stateOf(feature), before);
    EXPECT_FALSE(project.tryGit({"show-ref", "--verify", "--quiet", std::string("refs/heads/") + branch}));
    EXPECT_EQ(contentOf(home / "aside/kept.txt"), "changed\n");
    expectIntact(receipt);
}

TEST_F(CleanupOfAnother, KnowsWhatAnInterruptedRemovalLeftAndCanBeBroughtToItsEnd) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    commands.before("worktree remove", [this] {
        fs::remove((feature / ".git").bytes());
        fs::remove((feature / "second.txt").bytes());
    });
    commands.answer("worktree remove", CommandResult{9, {}, {}});
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::partiallyCompleted);

    const Worktree leftover = recordOf(services.refresh({home.path()}), feature.path());
    EXPECT_EQ(rawValue(leftover.safety), "inaccessible");
    const std::string words = leftover.inspectionError.value_or("");
    EXPECT_THAT(words, HasSubstr("Its Git file is missing, as after a removal that was interrupted. Its last "
                                 "commit is on the branch " +
                                 std::string(branch) + "."));
    EXPECT_THAT(preflight(leftover).failures, ElementsAre(words));
    EXPECT_EQ(onRemote("kept.txt"), "changed");

    project.git({"worktree", "repair"});
    CleanupPlan second = plan();
    second.recoveryBranch = std::string(branch) + "-2";
    EXPECT_EQ(execute(second).outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(onRemote("second.txt"), "as reviewed");
}

// What the fresh inspection says beside what was reviewed.

class CleanupThatBecameLessSafe : public CleanupOfAnother {};

TEST_F(CleanupThatBecameLessSafe, StopsWhenTheRemoteBranchOfADetachedCommitWasPruned) {
    const std::string commit = feature.commitFile("work.txt");
    feature.publish();
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    detached.git({"switch", "--quiet", "--detach", "feature"});
    project.git({"worktree", "remove", feature.path().bytes()});
    project.git({"branch", "--quiet", "-D", "feature"});
    const CleanupPlan made = plan(review(detached));
    ASSERT_EQ(rawValue(made.worktree.safety), "remotelyPreserved");
    ASSERT_FALSE(made.requiresPreservation());
    project.git({"push", "--quiet", "origin", ":feature"});
    project.git({"fetch", "--quiet", "--prune", "origin"});

    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary,
              "The worktree at " + detached.path().bytes() + " changed after you reviewed it.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(detached.head(), commit);
    EXPECT_TRUE(isThere(detached / "work.txt"));
}

TEST_F(CleanupThatBecameLessSafe, StopsWhenItWasPrunedBehindAVerdictThatStaysTheSame) {
    feature.commitFile("work.txt");
    feature.publish();
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    detached.git({"switch", "--quiet", "--detach", "feature"});
    project.git({"worktree", "remove", feature.path().bytes()});
    project.git({"branch", "--quiet", "-D", "feature"});
    detached.write("left-out.txt");
    CleanupPlan made = plan(review(detached));
    ASSERT_EQ(rawValue(made.worktree.safety), "untrackedChanges");
    made.untrackedPathsToCommit.clear();
    ASSERT_FALSE(made.requiresPreservation());
    project.git({"push", "--quiet", "origin", ":feature"});
    project.git({"fetch", "--quiet", "--prune", "origin"});
    fs::remove((detached / "left-out.txt").bytes());

    EXPECT_EQ(execute(made).errorSummary,
              "The worktree at " + detached.path().bytes() + " changed after you reviewed it.");
    EXPECT_TRUE(isThere(detached / "work.txt"));
}

TEST_F(CleanupThatBecameLessSafe, GoesOnWhenItsCommitsReachedTheRemoteMeanwhile) {
    feature.commitFile("work.txt");
    const CleanupPlan made = plan();
    ASSERT_TRUE(made.requiresPreservation());
    feature.publish();
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    EXPECT_TRUE(remoteHasBranch());
}

TEST_F(CleanupThatBecameLessSafe, GoesOnWhenThePullRequestOfTheReviewIsNotKnownNow) {
    feature.commitFile("work.txt");
    feature.publish();
    Worktree reviewed = review();
    reviewed.pullRequest = PullRequestInfo{.number = 12};
    reviewed.safety = WorktreeSafety::openPullRequest;
    EXPECT_TRUE(preflight(reviewed).passed);
}

TEST_F(CleanupThatBecameLessSafe, KeepsTheSentencesOfItsOwnChecks) {
    const Worktree reviewed = review();
    feature.git({"bisect", "start"});
    EXPECT_THAT(preflight(reviewed).failures, ElementsAre("A bisect is in progress."));
    feature.git({"bisect", "reset"});
    feature.write("late.txt");
    EXPECT_THAT(preflight(reviewed).failures, ElementsAre(changedAfterReview()));
    services.clock.ahead = std::chrono::seconds(0);
    EXPECT_THAT(preflight(reviewed).failures, ElementsAre(HasSubstr("Files changed about")));
}

}  // namespace
}  // namespace cairnfield
