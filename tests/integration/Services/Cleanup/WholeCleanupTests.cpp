// Cleanups that end well: the exact commands, what is where afterwards, and the receipt.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <future>
#include <map>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

/// Without those of an inspection.
std::vector<std::string> withoutInspection(std::vector<std::string> lines) {
    std::erase_if(lines, [](const std::string& line) {
        for (const char* words : {"feature: rev-parse --", "feature: submodule", "feature: remote",
                                  "feature: branch", "feature: merge-base", "feature: rev-list",
                                  "feature: symbolic-ref --quiet --short refs/", "feature: show-ref"}) {
            const bool isOurs = line == std::string("feature: show-ref --verify --quiet refs/heads/") +
                                            "cairnfield/recovery/project/20260105-090000";
            if (line.starts_with(words) && !isOurs) return true;
        }
        return false;
    });
    return lines;
}

TEST_F(Cleanup, PreservesProvesRemovesAndRecords) {
    feature.write("kept.txt", "changed\n");
    feature.write("new/file.txt", "new\n");
    feature.write(".env", "SECRET=1\n");
    const CleanupPlan made = plan();
    const CleanupReceipt receipt = execute(made);

    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.finalStage, CleanupStage::completed);
    EXPECT_TRUE(receipt.removalSucceeded);
    EXPECT_EQ(receipt.reclaimedBytes, made.worktree.sizeBytes);
    EXPECT_EQ(receipt.sizeBeforeBytes, made.worktree.sizeBytes);
    EXPECT_EQ(receipt.originalBranch, "feature");
    EXPECT_EQ(receipt.originalHeadSHA, made.worktree.headSHA);
    EXPECT_EQ(receipt.recoveryBranch, branch);
    EXPECT_EQ(receipt.preservedCommitSHA, hub.git({"rev-parse", branch}));
    EXPECT_EQ(receipt.remoteHost, std::nullopt);
    EXPECT_EQ(receipt.pullRequestURL, std::nullopt);

    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    EXPECT_EQ(onRemote("new/file.txt"), "new");
    EXPECT_EQ(hub.git({"log", "-1", "--format=%s", branch}),
              "chore(cairnfield): preserve worktree before cleanup");
    ASSERT_THAT(receipt.recoveryVaultPaths, SizeIs(1));
    EXPECT_EQ(contentOf(receipt.recoveryVaultPaths.front()), "SECRET=1\n");
    EXPECT_THAT(storedReceipts(), ElementsAre(receipt));
    EXPECT_TRUE(project.tryGit({"show-ref", "--verify", "refs/heads/feature"}));
}

TEST_F(Cleanup, RunsExactlyTheseCommandsInThisOrder) {
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt");
    execute(plan());
    const std::string status = "status --porcelain=v2 -z --untracked-files=all ";
    EXPECT_THAT(
        withoutInspection(commandLines()),
        ElementsAre("project: worktree list --porcelain -z", "feature: " + status + "--ignored=matching",
                    "feature: ls-remote --exit-code --heads origin",
                    "feature: " + status + "--ignored=matching", "feature: " + status + "--ignored=matching",
                    std::string("feature: show-ref --verify --quiet refs/heads/") + branch,
                    std::string("feature: switch --create ") + branch, "feature: add -- kept.txt new.txt",
                    "feature: commit --message chore(cairnfield): preserve worktree before cleanup",
                    "feature: rev-parse HEAD", "feature: rev-parse HEAD",
                    std::string("feature: ls-remote --heads origin ") + branch,
                    std::string("feature: push --set-upstream origin ") + branch + ":" + branch,
                    std::string("feature: ls-remote --heads origin ") + branch,
                    "project: worktree list --porcelain -z", "feature: " + status + "--ignored=no",
                    "project: worktree remove " + feature.path().bytes(),
                    "project: worktree list --porcelain -z",
                    std::string("project: ls-remote --heads origin ") + branch));
}

TEST_F(Cleanup, GivesEveryCommandItsLimitAndOnlyThePushTheNetwork) {
    feature.write("kept.txt", "changed\n");
    execute(plan());
    const std::map<std::string, int> limits{{"show-ref", 20}, {"switch", 60}, {"add", 120},
                                            {"commit", 180},  {"push", 180},  {"rev-parse", 20}};
    int removals = 0;
    for (const CommandInvocation& command : services.commands.take()) {
        const std::string& word = command.arguments.front();
        const bool isRemoval = word == "worktree" && command.arguments[1] == "remove";
        const bool isProof = word == "ls-remote" && command.arguments[1] == "--heads";
        const bool isReach = word == "ls-remote" && !isProof;
        if (limits.contains(word)) {
            EXPECT_EQ(command.timeout, std::chrono::seconds(limits.at(word))) << word;
        }
        if (isRemoval) {
            EXPECT_EQ(command.timeout, std::chrono::seconds(180));
        }
        if (isProof) {
            EXPECT_EQ(command.timeout, std::chrono::seconds(60));
        }
        if (isReach) {
            EXPECT_EQ(command.timeout, std::chrono::seconds(45));
        }
        removals += isRemoval ? 1 : 0;
        EXPECT_EQ(command.environment.contains("GIT_ASKPASS"), word == "push") << word;
        for (const std::string& argument : command.arguments) {
            EXPECT_FALSE(argument.starts_with("--force")) << command.displayName();
            EXPECT_NE(argument, "--no-verify");
            EXPECT_NE(argument, "--no-gpg-sign");
        }
    }
    EXPECT_EQ(removals, 1);
}

TEST_F(Cleanup, ReportsEveryStage) {
    feature.write("kept.txt", "changed\n");
    feature.write("new.txt");
    feature.write(".env");
    github.answeredDefaultBranch = "trunk";
    CleanupPlan made = plan();
    made.createPullRequest = true;
    execute(made);
    EXPECT_THAT(
        stages(),
        ElementsAre("preflight", std::string("creatingRecoveryBranch: ") + branch, "staging: 2 file(s)",
                    "committing", "pushing: origin", "verifyingRemote", "creatingPullRequest: main",
                    "archivingLocalFiles: 1 file(s)", "removingWorktree", "verifyingDeletion", "completed"));
}

TEST_F(Cleanup, GoesStraightToTheRemovalWhenNothingIsToBeKept) {
    const CleanupPlan made = plan();
    ASSERT_FALSE(made.requiresPreservation());
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.recoveryBranch, std::nullopt);
    EXPECT_EQ(receipt.preservedCommitSHA, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
    EXPECT_THAT(stages(), ElementsAre("preflight", "removingWorktree", "verifyingDeletion", "completed"));
    for (const std::string& line : commandLines()) EXPECT_EQ(line.find("ls-remote"), std::string::npos);
}

TEST_F(Cleanup, ArchivesWithoutARemoteWhenOnlyLocalFilesAreToBeKept) {
    feature.write(".env", "SECRET=1\n");
    project.git({"remote", "remove", "origin"});
    const CleanupPlan made = plan();
    ASSERT_FALSE(made.requiresPreservation());
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    ASSERT_THAT(receipt.recoveryVaultPaths, SizeIs(1));
    EXPECT_EQ(contentOf(receipt.recoveryVaultPaths.front()), "SECRET=1\n");
    EXPECT_THAT(stages(), ElementsAre("preflight", "archivingLocalFiles: 1 file(s)", "removingWorktree",
                                      "verifyingDeletion", "completed"));
}

TEST_F(Cleanup, PushesTheHeadOfACleanBranchThatIsAhead) {
    feature.publish();
    const std::string ahead = feature.commitFile("ahead.txt");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(receipt.preservedCommitSHA, ahead);
    EXPECT_EQ(hub.git({"rev-parse", branch}), ahead);
    for (const std::string& line : commandLines()) {
        EXPECT_FALSE(line.starts_with("feature: add"));
        EXPECT_FALSE(line.starts_with("feature: commit"));
    }
}

TEST_F(Cleanup, PreservesADetachedHeadThatNobodyElseHas) {
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    const std::string work = detached.commitFile("work.txt");
    const CleanupReceipt receipt = execute(plan(review(detached)));
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(hub.git({"rev-parse", branch}), work);
    EXPECT_FALSE(isThere(detached.path()));
}

TEST_F(Cleanup, StagesAPathThatReadsAsAPatternAndNothingElse) {
    feature.write("a*b.txt", "chosen\n");
    feature.write(":odd", "chosen\n");
    const Worktree reviewed = review();
    feature.write("axb.txt", "left out\n");
    CleanupPlan made = plan(review());
    made.untrackedPathsToCommit = reviewed.status.untrackedPaths;
    const CleanupReceipt receipt = execute(made);
    EXPECT_EQ(onRemote("a*b.txt"), "chosen");
    EXPECT_EQ(hub.git({"ls-tree", "--name-only", branch, "--", ":(literal):odd"}), ":odd");
    EXPECT_EQ(hub.git({"ls-tree", "--name-only", branch, "--", "axb.txt"}), "");
    EXPECT_EQ(contentOf(feature / "axb.txt"), "left out\n");
    expectIntact(receipt);
}

TEST_F(Cleanup, PreservesStagedHalfStagedRenamedAndOddlyNamedWork) {
    feature.write("kept.txt", "staged\n");
    feature.git({"add", "kept.txt"});
    feature.write("kept.txt", "staged, then changed\n");
    feature.git({"mv", "second.txt", "renamed.txt"});
    const std::string odd = "odd \n\xff name";
    feature.write(odd, "odd\n");
    feature.write("-dash", "dash\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("kept.txt"), "staged, then changed");
    EXPECT_EQ(onRemote("renamed.txt"), "as reviewed");
    EXPECT_EQ(onRemote(odd), "odd");
    EXPECT_EQ(onRemote("-dash"), "dash");
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(Cleanup, StagesMorePathsThanOneCommandHolds) {
    const std::string longName(200, 'n');
    for (int i = 0; i < 6000; ++i) feature.write("many/" + longName + std::to_string(i), std::to_string(i));
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(onRemote("many/" + longName + "0"), "0");
    EXPECT_EQ(onRemote("many/" + longName + "5999"), "5999");
    int additions = 0;
    for (const std::string& line : commandLines()) additions += line.starts_with("feature: add --") ? 1 : 0;
    EXPECT_GT(additions, 1);
}

TEST_F(Cleanup, OpensADraftPullRequestAfterTheProof) {
    feature.write("kept.txt", "changed\n");
    project.git({"remote", "set-url", "--push", "origin", hub.path().bytes()});
    CleanupPlan made = plan();
    made.createPullRequest = true;
    made.worktree.remotes.front().pushURL = "git@code.example:robin/project.git";
    const CleanupReceipt receipt = execute(made);
    ASSERT_THAT(github.drafts, SizeIs(1));
    const MadeUpGitHub::Draft& draft = github.drafts.front();
    EXPECT_EQ(draft.base, "main");
    EXPECT_EQ(draft.head, branch);
    EXPECT_EQ(draft.title, "Preserve project worktree feature");
    EXPECT_EQ(draft.host, "code.example");
    EXPECT_EQ(draft.directory, feature.path());
    EXPECT_THAT(draft.body,
                testing::HasSubstr("| Preserved commit | `" + *receipt.preservedCommitSHA + "` |"));
    EXPECT_EQ(receipt.pullRequestURL, "https://code.example/robin/project/pull/7");
    EXPECT_EQ(receipt.pullRequestNumber, 7);
    EXPECT_EQ(receipt.remoteHost, "code.example");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
}

TEST_F(Cleanup, RunsOnThoughItsCallerIsCancelled) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    std::promise<TaskHandle<CleanupReceipt>> started;
    commands.before("commit", [&started] { started.get_future().get().cancel(); });
    const TaskHandle<CleanupReceipt> handle = spawn(services.pool, coordinator.execute(made, nullptr));
    started.set_value(handle);
    const CleanupReceipt receipt = waitFor(handle);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

}  // namespace
}  // namespace cairnfield
