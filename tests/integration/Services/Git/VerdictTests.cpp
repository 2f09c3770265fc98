// Every verdict, reached by a real repository.

#include "GitServices.h"
#include "support/FakeGitHubService.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;

class Verdicts : public testing::Test {
protected:
    /// One commit, no remote.
    GitRepository localProject() {
        const GitRepository project = GitRepository::create(home / "project");
        project.commitFile("readme.txt");
        return project;
    }

    /// A clone whose remote has one commit on its default branch.
    GitRepository clonedProject() {
        const GitRepository seed = GitRepository::create(home / "seed");
        seed.commitFile("readme.txt");
        seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "hub.git").bytes()});
        return GitRepository::at(home / "hub.git").cloneTo(home / "project");
    }

    std::string_view verdictOn(const GitRepository& worktree) { return services.verdictOn(worktree); }

    TemporaryDirectory home;
    GitServices services;
};

TEST_F(Verdicts, MainWorktree) {
    const GitRepository project = localProject();
    project.write("untracked.txt");
    EXPECT_EQ(verdictOn(project), "mainWorktree");
}

TEST_F(Verdicts, BareRepository) {
    const GitRepository seed = localProject();
    seed.git({"clone", "--quiet", "--bare", seed.path().bytes(), (home / "bare.git").bytes()});
    const GitRepository bare = GitRepository::at(home / "bare.git");
    const GitRepository feature = bare.addWorktree(home / "feature", "feature");

    EXPECT_EQ(verdictOn(bare), "bareRepository");
    EXPECT_TRUE(services.commands.take().empty()) << "a bare repository is not looked into";
    EXPECT_EQ(verdictOn(feature), "cleanDisposable");
}

TEST_F(Verdicts, LockedWorktree) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.lock("on a drive that comes and goes");
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "activeOrLocked");
    EXPECT_TRUE(record.isActive);
    EXPECT_EQ(record.activityReason, "on a drive that comes and goes");
}

TEST_F(Verdicts, LockedWorktreeWithoutAReasonGetsOne) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.lock();
    EXPECT_EQ(services.inspect(feature).activityReason, "Git has this worktree locked.");
}

TEST_F(Verdicts, ActiveWorktree) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    services.clock.ahead = std::chrono::minutes(5);
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "activeOrLocked");
    EXPECT_EQ(record.activityReason, "Files changed about 5 minutes ago.");
}

TEST_F(Verdicts, ALockOutranksFreshActivityInTheReason) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.lock("kept");
    services.clock.ahead = std::chrono::seconds(0);
    EXPECT_EQ(services.inspect(feature).activityReason, "kept");
}

TEST_F(Verdicts, EveryKindOfTrackedChange) {
    using Change = std::function<void(const GitRepository&)>;
    const std::vector<std::pair<std::string, Change>> changes{
        {"edited", [](const GitRepository& tree) { tree.write("readme.txt", "edited\n"); }},
        {"deleted", [](const GitRepository& tree) { fs::remove((tree / "readme.txt").bytes()); }},
        {"executable",
         [](const GitRepository& tree) { fs::permissions((tree / "readme.txt").bytes(), fs::perms::all); }},
        {"type",
         [](const GitRepository& tree) {
             fs::remove((tree / "readme.txt").bytes());
             fs::create_symlink("elsewhere", (tree / "readme.txt").bytes());
         }},
        {"renamed", [](const GitRepository& tree) { tree.git({"mv", "readme.txt", "with a blank.txt"}); }},
        {"stagedDeletion", [](const GitRepository& tree) { tree.git({"rm", "--quiet", "readme.txt"}); }},
        {"stagedNew",
         [](const GitRepository& tree) {
             tree.write("new.txt");
             tree.git({"add", "new.txt"});
         }},
        {"intended",
         [](const GitRepository& tree) {
             tree.write("new.txt");
             tree.git({"add", "--intent-to-add", "new.txt"});
         }},
    };
    const GitRepository project = localProject();
    for (const auto& [name, change] : changes) {
        const GitRepository tree = project.addWorktree(home / name, name);
        change(tree);
        EXPECT_EQ(verdictOn(tree), "dirtyTrackedChanges") << name;
    }
}

TEST_F(Verdicts, UntrackedFiles) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.write("deep/down/new.txt");
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "untrackedChanges");
    EXPECT_EQ(record.status.untrackedPaths, std::vector<std::string>{"deep/down/new.txt"});
}

TEST_F(Verdicts, UnresolvedConflicts) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.stopAtConflict();
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "unresolvedConflicts");
    EXPECT_EQ(record.operationInProgress, GitOperationInProgress::merge) << "which conflicts outrank";
}

TEST_F(Verdicts, EachOperationInProgress) {
    const GitRepository project = localProject();
    for (const GitOperationInProgress operation :
         {GitOperationInProgress::merge, GitOperationInProgress::rebase, GitOperationInProgress::cherryPick,
          GitOperationInProgress::revert, GitOperationInProgress::bisect}) {
        const std::string name(rawValue(operation));
        const GitRepository tree = project.addWorktree(home / name, name);
        tree.stopIn(operation);
        const Worktree record = services.inspect(tree);
        EXPECT_EQ(rawValue(record.safety), "mergeOrRebaseInProgress") << name;
        EXPECT_EQ(record.operationInProgress, operation) << name;
        project.git({"branch", "--force", "theirs"});
        project.git({"branch", "-D", "theirs"});
    }
    const GitRepository patches = project.addWorktree(home / "patches", "patches");
    patches.stopInRebaseByPatches();
    EXPECT_EQ(services.inspect(patches).operationInProgress, GitOperationInProgress::rebase);
    EXPECT_EQ(services.inspect(project).operationInProgress, std::nullopt) << "each worktree has its own";
}

TEST_F(Verdicts, SubmoduleAtAnotherCommit) {
    const GitRepository library = GitRepository::create(home / "library");
    library.commitFile("library.txt");
    const GitRepository project = localProject();
    project.addSubmodule(library, "library");
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    EXPECT_EQ(verdictOn(feature), "cleanDisposable") << "a submodule that was never fetched holds nothing";

    feature.git({"-c", "protocol.file.allow=always", "submodule", "--quiet", "update", "--init"});
    EXPECT_EQ(verdictOn(feature), "cleanDisposable");
    GitRepository::at(feature / "library").commitFile("more.txt");
    EXPECT_EQ(verdictOn(feature), "submoduleRequiresReview");
}

TEST_F(Verdicts, DetachedWithUniqueCommits) {
    const GitRepository detached = clonedProject().addDetachedWorktree(home / "detached");
    detached.commitFile("unique.txt");
    EXPECT_EQ(verdictOn(detached), "detachedWithUniqueCommits");
}

TEST_F(Verdicts, DetachedWithoutARemoteIsNeverTakenForPreserved) {
    const GitRepository detached = localProject().addDetachedWorktree(home / "detached");
    EXPECT_EQ(verdictOn(detached), "detachedWithUniqueCommits");
}

TEST_F(Verdicts, DetachedAtPreservedCommits) {
    const GitRepository project = clonedProject();
    const GitRepository merged = project.addDetachedWorktree(home / "merged");
    EXPECT_EQ(verdictOn(merged), "cleanMerged");

    const GitRepository preserved = project.addDetachedWorktree(home / "preserved");
    preserved.commitFile("kept.txt");
    preserved.git({"push", "--quiet", "origin", "HEAD:refs/heads/kept"});
    EXPECT_EQ(verdictOn(preserved), "remotelyPreserved");
}

TEST_F(Verdicts, CommittedButUnpushed) {
    const GitRepository feature = clonedProject().addWorktree(home / "feature", "feature");
    feature.commitFile("first.txt");
    feature.publish();
    feature.commitFile("second.txt");
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "committedButUnpushed");
    EXPECT_EQ(record.tracking.ahead, 1);
    EXPECT_EQ(record.tracking.behind, 0);
    EXPECT_EQ(record.tracking.uniqueCommitCount, 2);
}

TEST_F(Verdicts, SensitiveIgnoredFiles) {
    const GitRepository feature = clonedProject().addWorktree(home / "feature", "feature");
    feature.ignore(".env*");
    feature.write(".env.local");
    EXPECT_EQ(verdictOn(feature), "sensitiveIgnoredFiles");
}

TEST_F(Verdicts, LargeUnknownIgnoredFile) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.ignore("*.bin");
    feature.writeLarge("dump.bin", 255 * 1024 * 1024);
    EXPECT_EQ(verdictOn(feature), "cleanDisposable");
    feature.writeLarge("dump.bin", 256 * 1024 * 1024);
    EXPECT_EQ(verdictOn(feature), "manualReview");
}

TEST_F(Verdicts, AHoleIsNotLarge) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.ignore("*.bin");
    feature.write("hole.bin");
    fs::resize_file((feature / "hole.bin").bytes(), std::uintmax_t{1} << 30);
    EXPECT_EQ(verdictOn(feature), "cleanDisposable");
}

TEST_F(Verdicts, LargeUnknownIgnoredDirectory) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.ignore("dumps/");
    feature.write("dumps/one.txt");
    services.scanner.sizes[feature / "dumps"] = 268'435'456;
    EXPECT_EQ(verdictOn(feature), "manualReview");
}

TEST_F(Verdicts, CleanMerged) {
    const GitRepository feature = clonedProject().addWorktree(home / "feature", "feature");
    feature.commitFile("done.txt");
    feature.git({"push", "--quiet", "origin", "feature:main"});
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "cleanMerged");
    EXPECT_EQ(record.tracking.baseRef, "origin/main");
}

TEST_F(Verdicts, RemotelyPreserved) {
    const GitRepository feature = clonedProject().addWorktree(home / "feature", "feature");
    feature.commitFile("work.txt");
    feature.publish();
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "remotelyPreserved");
    EXPECT_EQ(record.tracking.upstreamBranch, "origin/feature");
}

TEST_F(Verdicts, OpenPullRequest) {
    const GitRepository project = clonedProject();
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.commitFile("work.txt");
    feature.publish();
    project.pretendRemoteIsAt("git@github.com:owner/project.git");
    FakeGitHubService github;
    github.pullRequests["feature"] = PullRequestInfo{.number = 7, .state = PullRequestState::merged};

    const std::vector<Worktree> before = services.refresh({project.path()});
    EXPECT_EQ(rawValue(recordOf(before, feature.path()).safety), "remotelyPreserved");
    const std::vector<Worktree> after =
        waitFor(services.pool, services.catalog.attachPullRequests(before, github));
    EXPECT_EQ(rawValue(recordOf(after, feature.path()).safety), "openPullRequest");
    EXPECT_EQ(recordOf(after, feature.path()).pullRequest->number, 7);
}

TEST_F(Verdicts, CleanDisposable) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    const Worktree record = services.inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "cleanDisposable");
    EXPECT_EQ(record.tracking.baseRef, "main");
    EXPECT_EQ(record.tracking.uniqueCommitCount, 0);
}

TEST_F(Verdicts, UniqueCommitsWithoutARemoteCannotBeVerified) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.commitFile("unique.txt");
    EXPECT_EQ(verdictOn(feature), "unsupportedRemote");
}

TEST_F(Verdicts, UniqueCommitsBesideASelfHostedRemoteCannotBeVerified) {
    const GitRepository project = clonedProject();
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.commitFile("unique.txt");
    project.pretendRemoteIsAt("https://git.example.org/owner/project.git");
    EXPECT_EQ(verdictOn(feature), "unsupportedRemote");
}

TEST_F(Verdicts, UniqueCommitsBesideARemoteThatCanBeAskedNeedAPerson) {
    const GitRepository project = clonedProject();
    const GitRepository feature = project.addWorktree(home / "feature", "feature");
    feature.commitFile("unique.txt");
    project.pretendRemoteIsAt("https://github.example.org/owner/project.git");
    EXPECT_EQ(verdictOn(feature), "manualReview");
}

TEST_F(Verdicts, VanishedDirectory) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    fs::remove_all(feature.path().bytes());
    const std::vector<Worktree> worktrees = services.refresh({home / "project"});
    const Worktree record = recordOf(worktrees, feature.path());
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_EQ(record.inspectionError, "The worktree path no longer exists.");
    EXPECT_TRUE(record.isPrunable);
}

TEST_F(Verdicts, ALockedWorktreeWhoseDirectoryVanishedIsInaccessibleAndStaysLocked) {
    const GitRepository feature = localProject().addWorktree(home / "feature", "feature");
    feature.lock("on a drive that comes and goes");
    fs::remove_all(feature.path().bytes());
    const std::vector<Worktree> worktrees = services.refresh({home / "project"});
    const Worktree record = recordOf(worktrees, feature.path());
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_EQ(record.inspectionError, "The worktree path no longer exists.");
    EXPECT_TRUE(record.isLocked);
    EXPECT_EQ(record.lockReason, "on a drive that comes and goes");
    EXPECT_FALSE(record.isPrunable) << "git prunes nothing that is locked";
}

}  // namespace
}  // namespace cairnfield
