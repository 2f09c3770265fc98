// Every step fails once: what the receipt says, what is left behind, and that nothing later ran.

#include "Shared/Concurrency/Cancelled.h"
#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

CommandResult refusal(std::int32_t code, std::string words) {
    return CommandResult{code, {}, std::move(words)};
}

std::exception_ptr timeOut() {
    return std::make_exception_ptr(CairnfieldError(CairnfieldError::CommandTimedOut{"git it", 30}));
}

class CleanupThatStops : public Cleanup {
protected:
    CleanupThatStops() { feature.write("kept.txt", "changed\n"); }

    CleanupReceipt stop() {
        CleanupReceipt receipt = clean();
        expectIntact(receipt);
        EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\n");
        EXPECT_THAT(storedReceipts(), ElementsAre(receipt));
        reported = stages();
        EXPECT_EQ(reported.back(), "failed: " + receipt.errorSummary.value_or(""));
        for (const std::string& line : commandLines()) EXPECT_THAT(line, Not(HasSubstr("worktree remove")));
        return receipt;
    }
    /// As every failure before a commit was in hand.
    void expectNothingInHand(const CleanupReceipt& receipt) const {
        EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
        EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
        EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
        EXPECT_THAT(receipt.recoveryVaultPaths, IsEmpty());
        EXPECT_FALSE(remoteHasBranch());
    }
    void expectCommitInHand(const CleanupReceipt& receipt) const {
        EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
        EXPECT_EQ(receipt.recoveryBranch, branch);
        EXPECT_EQ(receipt.preservedCommitSHA, feature.head());
    }

    std::vector<std::string> reported;
};

TEST_F(CleanupThatStops, WhenTheBranchCannotBeMade) {
    commands.answer("switch --create", refusal(128, "no room for it"));
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary,
              std::string("git switch --create ") + branch + " failed with exit code 128. no room for it");
    expectNothingInHand(receipt);
    EXPECT_EQ(feature.git({"symbolic-ref", "--short", "HEAD"}), "feature");
}

TEST_F(CleanupThatStops, WhenSwitchingTakesTooLong) {
    commands.fail("switch --create", timeOut());
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, "git it did not finish within 30 seconds.");
    expectNothingInHand(receipt);
}

TEST_F(CleanupThatStops, WhenStagingIsRefused) {
    feature.git({"config", "core.autocrlf", "input"});
    feature.git({"config", "core.safecrlf", "true"});
    feature.write("crlf.txt", "one\r\ntwo\r\n");
    const CleanupReceipt receipt = stop();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("git add -- kept.txt crlf.txt failed with"));
    expectNothingInHand(receipt);
    EXPECT_EQ(contentOf(feature / "crlf.txt"), "one\r\ntwo\r\n");
    EXPECT_EQ(feature.git({"symbolic-ref", "--short", "HEAD"}), branch);
}

TEST_F(CleanupThatStops, WhenAHookRefusesTheCommit) {
    hook("pre-commit", "echo 'tests are red' >&2; exit 1");
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, "A commit hook stopped the preservation commit. tests are red");
    expectNothingInHand(receipt);
    EXPECT_EQ(feature.git({"diff", "--cached", "--name-only"}), "kept.txt");
}

TEST_F(CleanupThatStops, WhenAHookRefusesWithoutAWord) {
    hook("commit-msg", "exit 1");
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, "A commit hook stopped the preservation commit. ");
    expectNothingInHand(receipt);
}

TEST_F(CleanupThatStops, AndKeepsWhatAHookWroteBeforeItRefused) {
    hook("pre-commit", "echo formatted > formatted.txt; exit 1");
    stop();
    EXPECT_EQ(contentOf(feature / "formatted.txt"), "formatted\n");
}

TEST_F(CleanupThatStops, WhenSigningIsConfiguredAndFails) {
    project.git({"config", "commit.gpgSign", "true"});
    project.git({"config", "gpg.program", "/bin/false"});
    const CleanupReceipt receipt = stop();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("Commit signing failed. "));
    expectNothingInHand(receipt);
}

TEST_F(CleanupThatStops, WhenGitSaysOnStandardErrorThatThereIsNothing) {
    commands.answer("commit", refusal(1, "GPG says: Nothing to commit"));
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, "There was nothing to preserve.");
    expectNothingInHand(receipt);
}

TEST_F(CleanupThatStops, WhenAServerHookRejectsThePush) {
    hub.write("hooks/pre-receive", "#!/bin/sh\necho 'not on a Saturday' >&2\nexit 1\n");
    std::filesystem::permissions((hub / "hooks/pre-receive").bytes(), std::filesystem::perms(0755));
    const CleanupReceipt receipt = stop();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("The push was rejected. "));
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("not on a Saturday"));
    expectCommitInHand(receipt);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_EQ(feature.git({"show", "HEAD:kept.txt"}), "changed");
}

TEST_F(CleanupThatStops, WhenALocalHookRefusesThePush) {
    hook("pre-push", "exit 1");
    const CleanupReceipt receipt = stop();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("The push was rejected. "));
    expectCommitInHand(receipt);
    EXPECT_FALSE(remoteHasBranch());
}

TEST_F(CleanupThatStops, WhenThePushTakesTooLong) {
    commands.fail("push", timeOut());
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, "git it did not finish within 30 seconds.");
    expectCommitInHand(receipt);
}

TEST_F(CleanupThatStops, WhenAPushSaysItWentWellAndDidNot) {
    commands.answer("push", CommandResult{});
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary,
              std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.");
    expectCommitInHand(receipt);
}

TEST_F(CleanupThatStops, WhenTheRemoteVanishesBeforeTheProof) {
    commands.after("push",
                   [this] { std::filesystem::rename(hub.path().bytes(), (home / "gone.git").bytes()); });
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary,
              std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.");
    expectCommitInHand(receipt);
}

TEST_F(CleanupThatStops, WhenTheRemoteIsWrittenToElsewhereThanItIsReadFrom) {
    const GitRepository elsewhere = GitRepository::createBare(home / "elsewhere.git");
    project.git({"remote", "set-url", "--push", "origin", elsewhere.path().bytes()});
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary,
              std::string("Cairnfield could not confirm that ") + branch + " exists on the remote.");
    expectCommitInHand(receipt);
}

TEST_F(CleanupThatStops, WhenThePullRequestFails) {
    github.failure = CairnfieldError(CairnfieldError::PullRequestCreationFailed{"gh says no"});
    CleanupPlan made = plan();
    made.createPullRequest = true;
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary, "The draft pull request could not be created. gh says no");
    expectCommitInHand(receipt);
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(receipt.pullRequestURL, std::nullopt);
    expectIntact(receipt);
}

TEST_F(CleanupThatStops, WhenALocalFileCannotBeArchived) {
    feature.write(".env", "SECRET=1\n");
    volume.answer.availableCapacity = 1;
    const CleanupReceipt receipt = stop();
    EXPECT_THAT(receipt.errorSummary.value_or(""), StartsWith("Preserving local files needs "));
    expectCommitInHand(receipt);
    EXPECT_THAT(receipt.recoveryVaultPaths, IsEmpty());
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

TEST_F(Cleanup, IsNotStoppedBySensitiveLinksThatKeepNothing) {
    const FilePath outside = home.write("outside", "not of this worktree\n");
    feature.write("logs/inner", "in a folder\n");
    std::filesystem::create_symlink(outside.bytes(), (feature / ".env").bytes());
    std::filesystem::create_symlink("nowhere", (feature / "dangling.key").bytes());
    std::filesystem::create_symlink("logs", (feature / "folder.key").bytes());
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_THAT(receipt.recoveryVaultPaths, IsEmpty());
    EXPECT_EQ(contentOf(outside), "not of this worktree\n");
}

TEST_F(CleanupThatStops, WhenTheLastStatusFails) {
    commands.answer("status --porcelain=v2 -z --untracked-files=all --ignored=no", refusal(128, "bad"));
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(
        receipt.errorSummary,
        "git status --porcelain=v2 -z --untracked-files=all --ignored=no failed with exit code 128. bad");
    expectCommitInHand(receipt);
}

TEST_F(CleanupThatStops, WhenGitListsNothingBeforeTheRemoval) {
    commands.after("push", [this] { commands.answer("worktree list", refusal(128, "bad")); });
    const CleanupReceipt receipt = stop();
    EXPECT_EQ(receipt.errorSummary, feature.path().bytes() + " no longer exists.");
    expectCommitInHand(receipt);
}

TEST_F(Cleanup, SaysWhatGitSaysWhenItRefusesTheRemoval) {
    commands.answer("worktree remove", refusal(128, "fatal: no"));
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "Git refused to remove the worktree at " + feature.path().bytes() + ". fatal: no");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    expectIntact(receipt);
}

TEST_F(Cleanup, DoesNotBelieveARemovalThatLeavesTheFolder) {
    commands.answer("worktree remove", CommandResult{});
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "Git refused to remove the worktree at " + feature.path().bytes() +
                                        ". The directory is still present.");
    expectIntact(receipt);
}

TEST_F(Cleanup, DoesNotBelieveARemovalThatGitStillLists) {
    commands.answer("worktree remove", CommandResult{});
    commands.before("worktree remove",
                    [this] { std::filesystem::rename(feature.path().bytes(), (home / "aside").bytes()); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "Git refused to remove the worktree at " + feature.path().bytes() +
                                        ". Git still lists the worktree.");
    EXPECT_FALSE(receipt.removalSucceeded);
}

TEST_F(Cleanup, PushesWithoutAKnownCommitAndFailsLaterAsAFailure) {
    feature.write("kept.txt", "changed\n");
    commands.after("commit", [this] { commands.answer("rev-parse HEAD", refusal(128, "bad")); });
    commands.answer("worktree remove", refusal(1, "no"));
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(receipt.recoveryBranch, branch);
    EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(storedReceipts(), std::vector{receipt});
}

TEST_F(Cleanup, SkipsThePullRequestWithoutABase) {
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = plan();
    made.createPullRequest = true;
    made.worktree.tracking.defaultBranch = std::nullopt;
    made.worktree.remotes.front().pushURL = "git@code.example:robin/project.git";
    github.answeredDefaultBranch = "trunk";
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    ASSERT_THAT(github.drafts, SizeIs(1));
    EXPECT_EQ(github.drafts.front().base, "trunk");
}

TEST_F(Cleanup, NeverNamesARemoteToGitThatReadsAsAnOption) {
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = plan();
    const FilePath trap = home / "trap";
    made.remoteName = "--upload-pack=touch " + trap.bytes();
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr("a remote Cairnfield cannot work with"));
    Worktree reviewed = review();
    reviewed.tracking.remoteName = made.remoteName;
    EXPECT_THAT(preflight(reviewed, true).failures,
                ElementsAre("The remote " + *made.remoteName + " could not be reached."));
    EXPECT_FALSE(isThere(trap));
    expectIntact(receipt);
}

TEST_F(Cleanup, StopsWithoutARemoteName) {
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = plan();
    made.remoteName = std::nullopt;
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.errorSummary, "This repository uses a remote Cairnfield cannot work with: none");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    expectIntact(receipt);
}

TEST_F(Cleanup, StoresNothingWhenThePreflightRefuses) {
    feature.write("kept.txt", "changed\n");
    feature.lock("mine");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "The worktree is locked: mine");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_THAT(storedReceipts(), IsEmpty());
    EXPECT_THAT(stages(), ElementsAre("preflight"));
    expectIntact(receipt);
    project.git({"worktree", "unlock", feature.path().bytes()});
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded) << "the repository is free again";
}

}  // namespace
}  // namespace cairnfield
