// Somebody works in the worktree, in the repository or on the remote between any two steps. Whatever they
// do, nothing of theirs is lost.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

TEST_F(Cleanup, RefusesWhenAnIgnoredFileAppearedSinceTheReview) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    feature.write(".env", "SECRET=1\n");
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary,
              "The worktree at " + feature.path().bytes() + " changed after you reviewed it.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
    EXPECT_EQ(feature.git({"symbolic-ref", "--short", "HEAD"}), "feature");
    EXPECT_EQ(contentOf(feature / ".env"), "SECRET=1\n");
    EXPECT_THAT(storedReceipts(), ElementsAre(receipt));
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesWhenAFileAppearsBetweenThePreflightAndTheBranch) {
    feature.write("kept.txt", "changed\n");
    commands.after("ls-remote --exit-code", [this] {
        // The next status is the preflight's own, and the one after it decides.
        commands.after("status", [this] { feature.write("late.txt"); });
    });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "The worktree at " + feature.path().bytes() + " changed after you reviewed it.");
    EXPECT_FALSE(project.tryGit({"show-ref", "--verify", "--quiet", std::string("refs/heads/") + branch}));
    EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
    expectIntact(receipt);
}

TEST_F(Cleanup, LeavesAFileThatIsEditedAfterTheCommitToGit) {
    feature.write("kept.txt", "changed\n");
    commands.after("commit", [this] { feature.write("second.txt", "edited meanwhile\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("contains modified or untracked files"));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(receipt.recoveryBranch, branch);
    EXPECT_EQ(contentOf(feature / "second.txt"), "edited meanwhile\n");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    expectIntact(receipt);
}

TEST_F(Cleanup, NamesHowManyReviewedFilesAreUncommittedAgain) {
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt");
    commands.after("commit", [this] {
        feature.write("kept.txt", "edited again\n");
        feature.write("new.txt", "edited again\n");
        feature.write("second.txt", "not in the plan\n");
    });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "git status failed with exit code 0. 2 reviewed file(s) are still uncommitted.");
    EXPECT_EQ(contentOf(feature / "kept.txt"), "edited again\n");
    expectIntact(receipt);
}

TEST_F(Cleanup, KeepsUntrackedFilesThatThePersonLeftOut) {
    feature.write("kept.txt", "changed\n");
    feature.write("left-out.txt", "mine\n");
    CleanupPlan made = plan();
    made.untrackedPathsToCommit.clear();
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("contains modified or untracked files"));
    EXPECT_EQ(contentOf(feature / "left-out.txt"), "mine\n");
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    expectIntact(receipt);
}

TEST_F(Cleanup, KeepsUntrackedFilesOfARepositoryThatTellsGitNotToLookForThem) {
    project.git({"config", "status.showUntrackedFiles", "no"});
    feature.write("left-out.txt", "mine\n");
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = plan();
    made.untrackedPathsToCommit.clear();
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("contains modified or untracked files"));
    EXPECT_EQ(contentOf(feature / "left-out.txt"), "mine\n");
    expectIntact(receipt);
}

TEST_F(Cleanup, RunsNoProgramThatTheRepositoryNamesToWatchItsFiles) {
    const FilePath trap = home / "trap";
    project.git({"config", "core.fsmonitor", "touch " + trap.bytes() + " #"});
    feature.write("kept.txt", "changed\n");
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(isThere(trap));
}

TEST_F(Cleanup, KeepsAnUntrackedFileThatAppearsBeforeTheRemovalOfACleanWorktree) {
    commands.before("worktree remove", [this] { feature.write("late.txt", "mine\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(contentOf(feature / "late.txt"), "mine\n");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesACommitMadeAfterThePreservation) {
    feature.write("kept.txt", "changed\n");
    commands.before("ls-remote --heads origin", [this] { feature.commitFile("later.txt"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("points at"));
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesACommitMadeAfterTheProof) {
    feature.write("kept.txt", "changed\n");
    std::string later;
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                    [this, &later] { later = feature.commitFile("later.txt"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its HEAD is not where it was left."));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(feature.head(), later);
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesACommitMadeOnAWorktreeThatNeededNoPreservation) {
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    std::string later;
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                    [&] { later = detached.commitFile("later.txt"); });
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its HEAD is not where it was left."));
    EXPECT_EQ(detached.head(), later);
    EXPECT_FALSE(receipt.removalSucceeded);
}

TEST_F(Cleanup, RefusesABranchThatIsSwitchedToAfterTheProof) {
    feature.write("kept.txt", "changed\n");
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                    [this] { feature.git({"switch", "--quiet", "feature"}); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its HEAD is not where it was left."));
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesWorkThatARebaseHasPutAsideMeanwhile) {
    feature.commitFile("more.txt");
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no", [this] {
        feature.write("kept.txt", "put aside\n");
        // Stops at once, with HEAD where it was and nothing uncommitted.
        EXPECT_FALSE(feature.tryGit({"rebase", "--autostash", "--exec", "false", "HEAD~1"}));
        EXPECT_EQ(feature.git({"status", "--porcelain"}), "");
    });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "A rebase is in progress at " + feature.path().bytes() + ".");
    expectIntact(receipt);
    feature.git({"rebase", "--abort"});
    EXPECT_EQ(contentOf(feature / "kept.txt"), "put aside\n");
}

TEST_F(Cleanup, RefusesAWorktreeThatIsLockedMeanwhile) {
    feature.write("kept.txt", "changed\n");
    commands.after("push", [this] { feature.lock("in use"); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "The worktree at " + feature.path().bytes() + " is locked: in use");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesWhenTheRemoteHasTheBranchAtAnotherCommit) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    const GitRepository other = hub.cloneTo(home / "other");
    const std::string theirs = other.commitFile("theirs.txt");
    other.git({"push", "--quiet", "origin", std::string("HEAD:refs/heads/") + branch});
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary, std::string("The remote branch ") + branch + " points at " +
                                        theirs.substr(0, 7) + " but the local commit is " +
                                        feature.head().substr(0, 7) + ".");
    EXPECT_EQ(hub.git({"rev-parse", branch}), theirs);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    for (const std::string& line : commandLines()) EXPECT_FALSE(line.starts_with("feature: push"));
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesWhenASecondClonePushesBetweenTheQuestionAndThePush) {
    feature.write("kept.txt", "changed\n");
    const GitRepository other = hub.cloneTo(home / "other");
    const std::string theirs = other.commitFile("theirs.txt");
    commands.before(
        "push", [&] { other.git({"push", "--quiet", "origin", std::string("HEAD:refs/heads/") + branch}); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("The push was rejected."));
    EXPECT_EQ(hub.git({"rev-parse", branch}), theirs);
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesWhenASecondCloneMovesTheBranchAfterThePush) {
    feature.write("kept.txt", "changed\n");
    commands.after("push", [&] {
        const GitRepository other = hub.cloneTo(home / "other");
        other.git({"switch", "--quiet", branch});
        other.commitFile("theirs.txt");
        other.git({"push", "--quiet", "origin", branch});
    });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("The remote branch"));
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    expectIntact(receipt);
}

TEST_F(Cleanup, BelievesNoPushThatTheRemoteForgets) {
    feature.write("kept.txt", "changed\n");
    commands.after("push", [this] { hub.git({"update-ref", "-d", std::string("refs/heads/") + branch}); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    expectIntact(receipt);
}

TEST_F(Cleanup, SaysSoWhenTheRemoteForgetsAfterTheRemoval) {
    feature.write("kept.txt", "changed\n");
    commands.after("worktree remove",
                   [this] { hub.git({"update-ref", "-d", std::string("refs/heads/") + branch}); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_FALSE(receipt.removalSucceeded);
    EXPECT_EQ(receipt.reclaimedBytes, 0);
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_EQ(project.git({"show", std::string(branch) + ":kept.txt"}), "changed");
}

TEST_F(Cleanup, SkipsThePushOfARetryThatTheRemoteHasAlready) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan first = plan();
    commands.before("worktree remove", [this] { feature.write("late.txt"); });
    EXPECT_EQ(execute(first).outcome, CleanupOutcome::partiallyCompleted);
    std::filesystem::remove((feature / "late.txt").bytes());
    feature.git({"branch", "--unset-upstream"});  // so that the work does not count as preserved
    CleanupPlan second = plan();
    second.worktree.tracking.headIsRemotelyPreserved = false;
    second.worktree.tracking.ahead = 1;
    commandLines();
    const CleanupReceipt receipt = execute(second);
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
    for (const std::string& line : commandLines()) {
        EXPECT_FALSE(line.starts_with("feature: push")) << line;
        EXPECT_FALSE(line.starts_with("feature: switch")) << line;
    }
}

TEST_F(Cleanup, GoesBackToARecoveryBranchThatIsThereWithoutResettingIt) {
    feature.git({"branch", branch});
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_THAT(commandLines(), testing::Contains(std::string("feature: switch ") + branch));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

TEST_F(Cleanup, RefusesAnArchivedFileThatChangesBeforeTheRemoval) {
    feature.write(".env", "SECRET=1\n");
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                    [this] { feature.write(".env", "SECRET=2\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr(".env changed after it was copied to the Recovery Vault."));
    EXPECT_THAT(receipt.recoveryVaultPaths, SizeIs(1));
    EXPECT_EQ(contentOf(feature / ".env"), "SECRET=2\n");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesASecretThatAppearsInAWorktreeThatNeedsNoPreservation) {
    const CleanupPlan made = plan();
    ASSERT_FALSE(made.requiresPreservation());
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no",
                    [this] { feature.write("late.key", "secret\n"); });
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr("late.key looks sensitive and appeared after the review."));
    expectIntact(receipt);
}

TEST_F(Cleanup, RefusesASecondCleanupOfTheSameRepositoryAtOnce) {
    const GitRepository sibling = project.addWorktree(home / "sibling", "sibling");
    const CleanupPlan other = plan(review(sibling));
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    TaskHandle<CleanupReceipt> second;
    commands.before("push", [&] { second = spawn(services.pool, coordinator.execute(other, nullptr)); });
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    const CleanupReceipt busy = waitFor(second);
    EXPECT_EQ(busy.errorSummary, "Another cleanup is already running for this repository.");
    EXPECT_EQ(busy.outcome, CleanupOutcome::failed);
    EXPECT_EQ(busy.finalStage, CleanupStage::failed);
    EXPECT_THAT(storedReceipts(), SizeIs(1));
    EXPECT_TRUE(isThere(sibling.path()));
    EXPECT_EQ(execute(other).outcome, CleanupOutcome::succeeded) << "the repository is free again";
}

}  // namespace
}  // namespace cairnfield
