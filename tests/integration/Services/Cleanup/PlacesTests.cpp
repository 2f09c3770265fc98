// Worktrees and repositories in the places and forms that people have them in.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

class CleanupAnywhere : public Cleanup {
protected:
    void expectWholeCleanup(const GitRepository& worktree, const GitRepository& remote) {
        worktree.write("kept.txt", "changed\n");
        const CleanupReceipt receipt = execute(plan(review(worktree)));
        EXPECT_EQ(receipt.errorSummary, std::nullopt);
        EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
        EXPECT_FALSE(isThere(worktree.path()));
        EXPECT_EQ(remote.git({"show", std::string(branch) + ":kept.txt"}), "changed");
    }
};

TEST_F(CleanupAnywhere, InsideTheMainWorktree) {
    project.ignore(".claude/");
    expectWholeCleanup(project.addWorktree(project / ".claude/worktrees/task", "task"), hub);
    EXPECT_TRUE(isThere(project / "kept.txt"));
}

TEST_F(CleanupAnywhere, OfABareRepository) {
    project.git({"clone", "--quiet", "--bare", hub.path().bytes(), (home / "bare").bytes()});
    const GitRepository bare = GitRepository::at(home / "bare");
    bare.git({"config", "user.name", "Robin Example"});
    bare.git({"config", "user.email", "robin@example.invalid"});
    bare.git({"config", "remote.origin.fetch", "+refs/heads/*:refs/remotes/origin/*"});
    bare.git({"fetch", "--quiet", "origin"});
    bare.git({"remote", "set-head", "origin", "main"});
    const GitRepository worktree = bare.addWorktree(home / "of-bare", "work");
    expectWholeCleanup(worktree, hub);
}

TEST_F(CleanupAnywhere, ReachedThroughALink) {
    fs::create_directory_symlink(project.path().bytes(), (home / "link").bytes());
    const GitRepository linked = GitRepository::at(home / "link");
    (void)linked.addWorktree(home / "link/inner", "inner");
    project.ignore("inner");
    expectWholeCleanup(GitRepository::at(project / "inner"), hub);
}

TEST_F(CleanupAnywhere, WithLongObjectNames) {
    const GitRepository main = GitRepository::at(home / "long");
    fs::create_directories(main.path().bytes());
    main.git({"init", "--quiet", "--object-format=sha256"});
    main.git({"config", "user.name", "Robin Example"});
    main.git({"config", "user.email", "robin@example.invalid"});
    main.commitFile("kept.txt");
    main.git({"clone", "--quiet", "--bare", main.path().bytes(), (home / "long-hub").bytes()});
    main.addRemote("origin", home / "long-hub");
    main.git({"fetch", "--quiet", "origin"});
    main.git({"remote", "set-head", "origin", "main"});
    const GitRepository worktree = main.addWorktree(home / "long-work", "work");
    worktree.git({"update-index", "--assume-unchanged", "kept.txt"});
    worktree.git({"update-index", "--no-assume-unchanged", "kept.txt"});
    expectWholeCleanup(worktree, GitRepository::at(home / "long-hub"));
}

TEST_F(CleanupAnywhere, WithAnOddName) {
    expectWholeCleanup(project.addWorktree(home / "odd \n\xff name*", "odd"), hub);
}

TEST_F(CleanupAnywhere, ThroughAFileURL) {
    project.git({"remote", "set-url", "origin", "file://" + hub.path().bytes()});
    expectWholeCleanup(feature, hub);
}

TEST_F(CleanupAnywhere, WithASparseCheckout) {
    feature.write("left/out.txt");
    feature.commit("Folders");
    feature.git({"sparse-checkout", "init", "--cone"});
    expectWholeCleanup(feature, hub);
    EXPECT_EQ(onRemote("left/out.txt"), "content");
}

TEST_F(CleanupAnywhere, WithTwoRemotesToTheOneThatThePlanNames) {
    const GitRepository second = GitRepository::createBare(home / "second.git");
    project.addRemote("another", second.path());
    project.git({"push", "--quiet", "another", "main"});
    feature.write("kept.txt", "changed\n");
    CleanupPlan made = plan();
    made.remoteName = "another";
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(second.git({"show", std::string(branch) + ":kept.txt"}), "changed");
    EXPECT_FALSE(remoteHasBranch());
}

TEST_F(CleanupAnywhere, WhereHooksChangeWhatIsCommitted) {
    hook("pre-commit", "echo formatted >> kept.txt && git add kept.txt");
    feature.write("kept.txt", "changed\n");
    EXPECT_EQ(clean().outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(onRemote("kept.txt"), "changed\nformatted");
}

TEST_F(CleanupAnywhere, StopsWhereAHookChangesAFileBehindTheCommit) {
    hook("post-commit", "echo generated >> kept.txt");
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary,
              "git status failed with exit code 0. 1 reviewed file(s) are still uncommitted.");
    EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\ngenerated\n");
    expectIntact(receipt);
}

TEST_F(CleanupAnywhere, StopsAtAnUntrackedRepositoryInside) {
    GitRepository::create(feature / "inner").commitFile("only-here.txt");
    const CleanupReceipt receipt = clean();
    EXPECT_NE(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(contentOf(feature / "inner/only-here.txt"), "content\n");
    EXPECT_TRUE(isThere(feature / "inner/.git/objects"));
    expectIntact(receipt);
}

TEST_F(CleanupAnywhere, StopsWhereAnotherBranchOfTheRemoteEndsInTheSameName) {
    const GitRepository other = hub.cloneTo(home / "other");
    other.commitFile("theirs.txt");
    other.git({"push", "--quiet", "origin", std::string("HEAD:refs/heads/a/") + branch});
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_EQ(feature.git({"show", "HEAD:kept.txt"}), "changed");
    expectIntact(receipt);
}

TEST_F(CleanupAnywhere, OfTwoRepositoriesAtOnce) {
    const GitRepository second = hub.cloneTo(home / "second");
    second.git({"config", "user.name", "Robin Example"});
    second.git({"config", "user.email", "robin@example.invalid"});
    const GitRepository worktree = second.addWorktree(home / "of-second", "work");
    worktree.write("second.txt", "changed\n");
    CleanupPlan other = plan(review(worktree));
    other.recoveryBranch = "cairnfield/recovery/second/20260105-090000";
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    TaskHandle<CleanupReceipt> handle;
    commands.before("push", [&] { handle = spawn(services.pool, coordinator.execute(other, nullptr)); });
    EXPECT_EQ(execute(made).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(waitFor(handle).outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(onRemote("second.txt", other.recoveryBranch), "changed");
}

}  // namespace
}  // namespace cairnfield
