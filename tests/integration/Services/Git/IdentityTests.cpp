// A listed path that git would answer for although it is no longer that worktree, and honest worktrees whose
// paths merely read differently.

#include "GitServices.h"
#include "Services/Git/WorktreeIdentity.h"
#include "support/SmallDisk.h"
#include "support/TemporaryDirectory.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mount.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

GitRepository projectAt(const FilePath& path) {
    GitRepository project = GitRepository::create(path);
    project.commitFile("readme.txt");
    return project;
}

class Identity : public testing::Test {
protected:
    /// As the repository lists the path now, which may be no worktree any more.
    Worktree inspect(const GitRepository& worktree) {
        const std::vector<GitWorktreeEntry> entries =
            waitFor(services.pool, services.inspector.listWorktrees(project.path()));
        const auto entry = std::ranges::find(entries, worktree.path(), &GitWorktreeEntry::path);
        if (entry == entries.end()) {
            ADD_FAILURE() << "git does not list " << worktree.path().display();
            return {};
        }
        services.commands.take();
        return waitFor(services.pool, services.inspector.inspect(*entry, entries.front().path, {}));
    }
    void expectSomethingElse(const GitRepository& worktree) {
        const Worktree record = inspect(worktree);
        EXPECT_EQ(rawValue(record.safety), "inaccessible");
        EXPECT_THAT(record.inspectionError.value_or(""),
                    HasSubstr("leads to something else than the worktree that Git lists there"));
        EXPECT_THAT(services.commands.take(), IsEmpty()) << "git was asked about another repository";
    }
    void expectItself(const GitRepository& worktree, const FilePath& root) {
        EXPECT_EQ(linkOf(worktree.path(), root), WorktreeLink::intact);
    }

    TemporaryDirectory home;
    GitRepository project = projectAt(home / "project");
    GitRepository feature = project.addWorktree(home / "feature", "feature");
    GitServices services;
};

TEST_F(Identity, IsNotThatOfAnEnclosingRepositoryWhenTheGitFileIsGone) {
    const GitRepository inner = project.addWorktree(project / ".claude/worktrees/task", "task");
    ASSERT_EQ(rawValue(inspect(inner).safety), "cleanDisposable");
    fs::remove((inner / ".git").bytes());
    const Worktree record = inspect(inner);
    EXPECT_THAT(services.commands.take(), IsEmpty()) << "git would have answered for the main checkout";
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_EQ(record.branch, "task");
    EXPECT_EQ(record.inspectionError,
              "Its Git file is missing, as after a removal that was interrupted. Its last commit is on the "
              "branch task. If Cairnfield had Git remove it, its work was proven to be elsewhere before. To "
              "see what it still holds and to clean it again, run in " +
                  project.path().bytes() + ": git worktree repair");

    project.git({"worktree", "repair"});
    EXPECT_EQ(rawValue(inspect(inner).safety), "cleanDisposable");
}

TEST_F(Identity, NamesTheCommitOfALeftoverThatIsOnNoBranch) {
    const GitRepository detached = project.addDetachedWorktree(home / "detached");
    const std::string head = detached.head();
    fs::remove((detached / ".git").bytes());
    EXPECT_THAT(inspect(detached).inspectionError.value_or(""),
                HasSubstr("Its last commit is " + head.substr(0, 7) + ", on no branch."));
}

TEST_F(Identity, IsNotThatOfAnotherCloneInTheSamePlace) {
    fs::remove_all(feature.path().bytes());
    (void)projectAt(home / "other").cloneTo(feature.path());
    expectSomethingElse(feature);
}

TEST_F(Identity, IsNotThatOfAWorktreeOfAnotherRepository) {
    const GitRepository other = projectAt(home / "other");
    const GitRepository theirs = other.addWorktree(home / "theirs", "theirs");
    feature.write(".git", contentOf(theirs / ".git"));
    expectSomethingElse(feature);
    // Even where the other repository takes the place for its worktree too.
    other.write(".git/worktrees/theirs/gitdir", (feature / ".git").bytes() + "\n");
    expectSomethingElse(feature);
}

TEST_F(Identity, IsNotThatOfAnotherWorktreeOfTheSameRepository) {
    const GitRepository sibling = project.addWorktree(home / "sibling", "sibling");
    feature.write(".git", contentOf(sibling / ".git"));
    expectSomethingElse(feature);
    fs::remove((feature / ".git").bytes());
    fs::create_hard_link((sibling / ".git").bytes(), (feature / ".git").bytes());
    expectSomethingElse(feature);
}

TEST_F(Identity, IsNotThatOfTheMainCheckoutThatTheGitFileNames) {
    feature.write(".git", "gitdir: " + (project / ".git").bytes() + "\n");
    expectSomethingElse(feature);
}

TEST_F(Identity, IsNotThatOfAFileOrAnEmptyGitDirectory) {
    fs::remove((feature / ".git").bytes());
    fs::create_directories((feature / ".git").bytes());
    expectSomethingElse(feature);
    fs::remove_all(feature.path().bytes());
    home.write("feature");
    expectSomethingElse(feature);
}

TEST_F(Identity, SaysHowToMendALinkThatTheRepositoryLeftBehind) {
    fs::rename(project.path().bytes(), (home / "moved").bytes());
    project = GitRepository::at(home / "moved");
    const Worktree record = inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_EQ(record.inspectionError,
              "Its Git file leads nowhere, as after the repository was moved. Its last commit is on the "
              "branch feature. To see what it still holds and to clean it again, run in " +
                  project.path().bytes() + ": git worktree repair");
    project.git({"worktree", "repair"});
    EXPECT_EQ(rawValue(inspect(feature).safety), "cleanDisposable");
}

TEST_F(Identity, CannotBeKnownFromAFileThatCannotBeRead) {
    fs::remove((feature / ".git").bytes());
    fs::create_directory_symlink("a-loop", (feature / "a-loop").bytes());
    fs::create_symlink("a-loop", (feature / ".git").bytes());
    const Worktree record = inspect(feature);
    EXPECT_EQ(rawValue(record.safety), "inaccessible");
    EXPECT_THAT(record.inspectionError.value_or(""), HasSubstr("symbolic links"));
}

TEST_F(Identity, StaysInAHomeThatWasMovedAndIsReachedByALink) {
    const GitRepository main = projectAt(home / "old/project");
    (void)main.addWorktree(home / "old/feature", "feature");
    fs::rename((home / "old").bytes(), (home / "new").bytes());
    fs::create_directory_symlink((home / "new").bytes(), (home / "old").bytes());
    expectItself(GitRepository::at(home / "new/feature"), home / "new/project");
    project = GitRepository::at(home / "old/project");
    EXPECT_EQ(rawValue(inspect(GitRepository::at(home / "old/feature")).safety), "cleanDisposable");
}

TEST_F(Identity, StaysWithRelativePaths) {
    feature.write(".git", "gitdir: ../project/.git/worktrees/feature\n");
    EXPECT_EQ(rawValue(inspect(feature).safety), "cleanDisposable");
    // As a newer git writes them; this one may not be able to list it.
    project.write(".git/worktrees/feature/gitdir", "../../../../feature/.git\n");
    expectItself(feature, project.path());
}

TEST_F(Identity, StaysWithSettingsOfItsOwn) {
    project.git({"config", "extensions.worktreeConfig", "true"});
    feature.git({"config", "--worktree", "core.quotePath", "false"});
    EXPECT_EQ(rawValue(inspect(feature).safety), "cleanDisposable");
}

TEST_F(Identity, StaysWhereverTheRepositoryKeepsItsGitDirectory) {
    const FilePath bare = home / "layout/.bare";
    project.git({"clone", "--quiet", "--bare", project.path().bytes(), bare.bytes()});
    home.write("layout/.git", "gitdir: ./.bare\n");
    expectItself(GitRepository::at(bare).addWorktree(home / "layout/main", "beside-bare"), bare);

    const FilePath apart = home / "apart.git";
    project.git({"clone", "--quiet", "--separate-git-dir", apart.bytes(), project.path().bytes(),
                 (home / "apart").bytes()});
    const GitRepository ofApart =
        GitRepository::at(home / "apart").addWorktree(home / "of-apart", "of-apart");
    expectItself(ofApart, apart);
    expectItself(ofApart, home / "apart");

    const GitRepository super = projectAt(home / "super");
    super.addSubmodule(project, "module");
    expectItself(GitRepository::at(super / "module").addWorktree(home / "of-module", "of-module"),
                 super / ".git/modules/module");
    const std::vector<Worktree> worktrees = services.refresh({home.path()});
    for (const char* name : {"layout/main", "of-apart", "of-module"})
        EXPECT_EQ(recordOf(worktrees, home / name).inspectionError, std::nullopt) << name;
}

TEST(IdentityBehindABindMount, Stays) {
    const auto outcome = onSmallDisk(16U << 20U, [](const FilePath& disk) -> std::string {
        const GitRepository main = projectAt(disk.appending("real/project"));
        const GitRepository worktree = main.addWorktree(disk.appending("real/feature"), "feature");
        const FilePath view = disk.appending("view");
        fs::create_directory(view.bytes());
        if (mount(disk.appending("real").c_str(), view.c_str(), nullptr, MS_BIND, nullptr) != 0)
            return "no bind mount";
        const bool isItself = linkOf(worktree.path(), view.appending("project")) == WorktreeLink::intact &&
                              linkOf(view.appending("feature"), main.path()) == WorktreeLink::intact;
        return isItself ? "itself" : "another";
    });
    if (!outcome) GTEST_SKIP() << "no mount namespace of its own";
    EXPECT_EQ(*outcome, "itself");
}

}  // namespace
}  // namespace cairnfield
