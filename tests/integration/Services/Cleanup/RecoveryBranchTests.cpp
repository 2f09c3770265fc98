// What the worktree is put on must hold what it was reviewed at, whoever made the branch.

#include "Services/Cleanup/ReviewedHead.h"
#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::Contains;
using testing::HasSubstr;

class RecoveryBranch : public Cleanup {
protected:
    RecoveryBranch() : detached(project.addDetachedWorktree(home / "detached")) {}

    static std::string lacks(const std::string& commit) {
        return std::string("The branch ") + branch + " does not hold the reviewed commit " +
               commit.substr(0, 7) + ". Review the worktree again.";
    }
    static std::string lacksByQuestion(const std::string& commit) {
        return "git merge-base failed with exit code 1. " + lacks(commit);
    }
    static bool standsOnABranch(const GitRepository& worktree) {
        return worktree.tryGit({"symbolic-ref", "--quiet", "HEAD"});
    }
    /// It stopped before anything was staged, and says nothing of a branch.
    void expectNothingTouched(const CleanupReceipt& receipt, const GitRepository& worktree) {
        EXPECT_TRUE(isThere(worktree.path()));
        EXPECT_FALSE(receipt.removalSucceeded);
        EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
        EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
        EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
        EXPECT_EQ(worktree.git({"diff", "--cached", "--name-only"}), "");
        EXPECT_FALSE(remoteHasBranch());
        for (const std::string& line : commandLines()) {
            EXPECT_EQ(line.find(": add --"), std::string::npos) << line;
            EXPECT_EQ(line.find(": push"), std::string::npos) << line;
        }
    }
    /// As a repository whose references are not files. git itself goes by the files nevertheless.
    void keepReferencesElsewhere() const {
        std::filesystem::create_directory((project / ".git/reftable").bytes());
    }

    GitRepository detached;
};

TEST_F(RecoveryBranch, IsNotGoneToFromADetachedHeadThatItDoesNotHold) {
    const std::string work = detached.commitFile("work.txt");
    detached.write("kept.txt", "changed\n");
    project.git({"branch", branch, "main"});
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    EXPECT_EQ(detached.head(), work);
    EXPECT_FALSE(standsOnABranch(detached)) << "not even moved";
    EXPECT_EQ(contentOf(detached / "kept.txt"), "changed\n");
    expectNothingTouched(receipt, detached);
}

TEST_F(RecoveryBranch, IsNotGoneToFromABranchThatItDoesNotHold) {
    const std::string work = feature.commitFile("work.txt");
    project.git({"branch", branch, "main"});
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    EXPECT_EQ(feature.git({"symbolic-ref", "--short", "HEAD"}), "feature");
    expectNothingTouched(receipt, feature);
}

TEST_F(RecoveryBranch, IsNotGoneToWhenItHasAnotherHistory) {
    const std::string work = detached.commitFile("work.txt");
    const std::string other = project.git({"commit-tree", "HEAD^{tree}", "-m", "Of no parent"});
    project.git({"branch", branch, other});
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    EXPECT_EQ(project.git({"rev-parse", branch}), other);
    expectNothingTouched(receipt, detached);
}

TEST_F(RecoveryBranch, KeepsTheWorkOfTwoWorktreesThatAreReviewedInTheSameSecond) {
    const GitRepository second = project.addDetachedWorktree(home / "second");
    const std::string first = detached.commitFile("first.txt");
    const std::string later = second.commitFile("second.txt");
    const CleanupPlan firstPlan = plan(review(detached));
    const CleanupPlan secondPlan = plan(review(second));
    ASSERT_EQ(firstPlan.recoveryBranch, secondPlan.recoveryBranch);
    EXPECT_EQ(execute(firstPlan).outcome, CleanupOutcome::succeeded);
    const CleanupReceipt receipt = execute(secondPlan);
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(later));
    EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
    EXPECT_EQ(second.head(), later);
    EXPECT_EQ(hub.git({"rev-parse", branch}), first);

    CleanupPlan again = plan(review(second));
    again.recoveryBranch = std::string(branch) + "-later";
    EXPECT_EQ(execute(again).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(hub.git({"rev-parse", again.recoveryBranch}), later);
}

TEST_F(RecoveryBranch, IsLookedAtOnceMoreWhenTheWorktreeIsOnIt) {
    const std::string work = detached.commitFile("work.txt");
    detached.write("kept.txt", "changed\n");
    project.git({"branch", branch, work});
    commands.before(std::string("switch ") + branch,
                    [this] { project.git({"branch", "--force", branch, "main"}); });
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    EXPECT_EQ(contentOf(detached / "kept.txt"), "changed\n");
    expectNothingTouched(receipt, detached);
}

TEST_F(RecoveryBranch, IsLookedAtWhenTheWorktreeIsOnItAlready) {
    feature.git({"switch", "--quiet", "--create", branch});
    const std::string work = feature.commitFile("work.txt");
    commands.after("symbolic-ref --quiet --short HEAD",
                   [this] { feature.git({"reset", "--quiet", "--hard", "main"}); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    expectNothingTouched(receipt, feature);
}

TEST_F(RecoveryBranch, IsLookedAtWhenItWasMadeForThisCleanup) {
    const std::string work = detached.commitFile("work.txt");
    commands.after("switch --create", [this] { detached.git({"switch", "--quiet", "--detach", "main"}); });
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    expectNothingTouched(receipt, detached);
    EXPECT_EQ(project.git({"rev-parse", branch}), work) << "made, and nothing undone";
}

TEST_F(RecoveryBranch, IsLookedAtAfterTheHooksOfACommitOnADetachedHead) {
    const std::string work = detached.commitFile("work.txt");
    detached.write("kept.txt", "changed\n");
    hook("post-commit", "git update-ref HEAD $(git commit-tree -m squashed 'HEAD^{tree}')");
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
    EXPECT_TRUE(isThere(detached.path()));
    EXPECT_FALSE(remoteHasBranch());
}

TEST_F(RecoveryBranch, IsNotWhatAHeadWithoutACommitStandsOn) {
    const std::string work = feature.commitFile("work.txt");
    commands.after("switch --create", [this] {
        feature.git({"symbolic-ref", "HEAD", "refs/heads/nothing-yet"});
        feature.git({"read-tree", "--empty"});
    });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "git switch failed with exit code 0. " + lacks(work));
    expectNothingTouched(receipt, feature);
}

TEST_F(RecoveryBranch, MayBeAheadOfTheReviewedCommit) {
    const std::string work = detached.commitFile("work.txt");
    const std::string ahead = detached.git({"commit-tree", "HEAD^{tree}", "-p", "HEAD", "-m", "Ahead"});
    project.git({"branch", branch, ahead});
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.preservedCommitSHA, ahead);
    EXPECT_EQ(hub.git({"rev-parse", std::string(branch) + "~1"}), work);
}

TEST_F(RecoveryBranch, MayBeAheadByACommitThatIsMadeMeanwhile) {
    feature.commitFile("work.txt");
    std::string later;
    commands.after("switch --create", [this, &later] { later = feature.commitFile("meanwhile.txt"); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.preservedCommitSHA, later);
    EXPECT_EQ(hub.git({"rev-parse", branch}), later);
}

TEST_F(RecoveryBranch, CostsNoQuestionWhenItIsNew) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    bool isOn = false;
    std::vector<std::string> between;
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    for (const std::string& line : commandLines()) {
        if (line.starts_with("feature: add")) isOn = false;
        if (isOn) between.push_back(line);
        if (line.starts_with("feature: switch --create")) isOn = true;
    }
    EXPECT_THAT(between, testing::IsEmpty());
}

TEST_F(RecoveryBranch, MayHoldAnythingWhenTheReviewedBranchHadNoCommit) {
    Worktree reviewed = review(detached);
    project.git({"branch", branch, "main"});
    detached.git({"symbolic-ref", "HEAD", "refs/heads/fresh"});
    ReviewedHead head(git, services.pool, reviewed);
    EXPECT_THROW(waitFor(services.pool, head.assertHeldByHead(branch)), CairnfieldError);
    const std::string zeros(40, '0');
    for (const std::optional<std::string>& none : {std::optional<std::string>(), std::optional(zeros)}) {
        reviewed.headSHA = none;
        EXPECT_NO_THROW(waitFor(services.pool, head.assertHeldByHead(branch)));
        EXPECT_NO_THROW(waitFor(services.pool, head.assertHeldBy(branch)));
    }
}

TEST_F(RecoveryBranch, IsAskedOfGitWhereReferencesAreNoFiles) {
    keepReferencesElsewhere();
    const std::string work = detached.commitFile("work.txt");
    commands.after("switch --create", [this] { detached.git({"switch", "--quiet", "--detach", "main"}); });
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, lacksByQuestion(work));
    expectNothingTouched(receipt, detached);
}

TEST_F(RecoveryBranch, IsPushedWhereReferencesAreNoFiles) {
    keepReferencesElsewhere();
    const std::string work = detached.commitFile("work.txt");
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_THAT(commandLines(), Contains("detached: merge-base --is-ancestor " + work + " HEAD"));
    EXPECT_EQ(receipt.preservedCommitSHA, work);
    EXPECT_EQ(hub.git({"rev-parse", branch}), work);
}

/// git does not say where HEAD is after the commit.
class RecoveryBranchAtAnUnknownCommit : public Cleanup {
protected:
    RecoveryBranchAtAnUnknownCommit() {
        feature.write("kept.txt", "changed\n");
        commands.after("commit",
                       [this] { commands.answer("rev-parse HEAD", CommandResult{128, {}, "bad"}); });
    }
};

TEST_F(RecoveryBranchAtAnUnknownCommit, IsCleanedWhenHeadIsWhereTheRemoteSays) {
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

TEST_F(RecoveryBranchAtAnUnknownCommit, KeepsACommitThatTheRemoteDoesNotName) {
    std::string later;
    commands.before("status --porcelain=v2 -z --untracked-files=all --ignored=no", [this, &later] {
        feature.git({"switch", "--quiet", "--detach"});
        later = feature.commitFile("later.txt");
    });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its HEAD is not where it was left."));
    EXPECT_EQ(feature.head(), later);
    EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    expectIntact(receipt);
}

TEST_F(RecoveryBranchAtAnUnknownCommit, KeepsWhatTheRemoteHasLessOf) {
    commands.after("push", [this] { hub.git({"update-ref", std::string("refs/heads/") + branch, "main"}); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("Its HEAD is not where it was left."));
    EXPECT_EQ(feature.git({"show", "HEAD:kept.txt"}), "changed");
    expectIntact(receipt);
}

}  // namespace
}  // namespace cairnfield
