// A second attempt at a worktree that an earlier one left on its recovery branch.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class EarlierRecovery : public Cleanup {
protected:
    static constexpr const char* secondBranch = "cairnfield/recovery/project/20260105-100000";
    const std::string unconfirmed =
        std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.";

    /// Work is pushed, and the attempt stops before it is removed.
    void stopOnce() {
        feature.write("kept.txt", "changed\n");
        commands.before("worktree remove", [this] { feature.write("late.txt"); });
        ASSERT_EQ(clean().outcome, CleanupOutcome::partiallyCompleted);
        std::filesystem::remove((feature / "late.txt").bytes());
    }
    CleanupPlan secondPlan() {
        CleanupPlan made = plan();
        made.recoveryBranch = secondBranch;
        return made;
    }
    /// Of the second attempt, which needs no preservation by what is known here.
    CleanupReceipt tryAgain() {
        const CleanupPlan second = secondPlan();
        EXPECT_FALSE(second.requiresPreservation());
        stages();
        commandLines();
        return execute(second);
    }
    const std::string question = std::string("feature: ls-remote --heads origin refs/heads/") + branch;
};

TEST_F(EarlierRecovery, ThatTheRemoteDroppedIsNoProofAtTheSecondAttempt) {
    feature.write("kept.txt", "changed\n");
    commands.after("push", [this] { hub.git({"update-ref", "-d", std::string("refs/heads/") + branch}); });
    EXPECT_EQ(clean().errorSummary, unconfirmed);
    const CleanupReceipt receipt = tryAgain();
    EXPECT_EQ(receipt.errorSummary, unconfirmed);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\n");
    EXPECT_THAT(stages(), ElementsAre("preflight", "removingWorktree", "failed: " + unconfirmed));
    expectIntact(receipt);
}

TEST_F(EarlierRecovery, ThatTheRemoteStillHasIsProofEnough) {
    stopOnce();
    const CleanupReceipt receipt = tryAgain();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(commandLines(), Contains(question).Times(1));
    EXPECT_THAT(stages(), ElementsAre("preflight", "removingWorktree", "verifyingDeletion", "completed"));
}

TEST_F(EarlierRecovery, ThatSomebodyContinuedHoldsTheCommitStill) {
    stopOnce();
    const GitRepository other = hub.cloneTo(home / "other");
    other.git({"switch", "--quiet", branch});
    other.commitFile("theirs.txt");
    other.git({"push", "--quiet", "origin", branch});
    EXPECT_THAT(tryAgain().errorSummary.value_or(""), HasSubstr("points at")) << "theirs is not known here";
    project.git({"fetch", "--quiet", "origin"});
    CleanupPlan second = secondPlan();
    EXPECT_EQ(execute(second).outcome, CleanupOutcome::succeeded);
}

TEST_F(EarlierRecovery, ThatWasOverwrittenStopsTheSecondAttempt) {
    stopOnce();
    const std::string head = feature.head();
    const std::string main = hub.git({"rev-parse", "main"});
    hub.git({"update-ref", std::string("refs/heads/") + branch, main});
    const CleanupReceipt receipt = tryAgain();
    EXPECT_EQ(receipt.errorSummary, std::string("The remote branch ") + branch + " points at " +
                                        main.substr(0, 7) + " but the local commit is " + head.substr(0, 7) +
                                        ".");
    expectIntact(receipt);
}

TEST_F(EarlierRecovery, IsNotTakenForAnotherBranchThatEndsInItsName) {
    stopOnce();
    hub.git({"branch", "--move", branch, std::string("a/refs/heads/") + branch});
    EXPECT_EQ(tryAgain().errorSummary, unconfirmed);
}

TEST_F(EarlierRecovery, OfAnUnreachableRemoteStopsTheSecondAttempt) {
    stopOnce();
    std::filesystem::rename(hub.path().bytes(), (home / "gone.git").bytes());
    EXPECT_EQ(tryAgain().errorSummary, unconfirmed);
}

TEST_F(EarlierRecovery, WithNothingOnItIsNotAskedFor) {
    feature.git({"switch", "--quiet", "--create", branch});
    EXPECT_EQ(tryAgain().outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(commandLines(), Not(Contains(HasSubstr("ls-remote"))));
}

TEST_F(EarlierRecovery, IsTheOnlyBranchThatIsAskedForAgain) {
    for (const char* name : {"work", "cairnfield/recovery/other/20260105-090000",
                             "cairnfield/recovery/project/20260105-09000x"}) {
        const GitRepository worktree = project.addWorktree(home / "work", name);
        worktree.commitFile(std::string(FilePath(name).lastComponent()) + ".txt");
        worktree.publish();
        CleanupPlan made = plan(review(worktree));
        made.recoveryBranch = secondBranch;
        ASSERT_FALSE(made.requiresPreservation());
        EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
        EXPECT_THAT(commandLines(), Not(Contains(HasSubstr("ls-remote")))) << name;
    }
}

}  // namespace
}  // namespace cairnfield
