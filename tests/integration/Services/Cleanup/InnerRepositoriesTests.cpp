// Repositories in rebuildable output, as build tools and package managers check them out with real git: no
// obstacle as long as nobody worked in them.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class InnerRepositories : public LastLook {
protected:
    InnerRepositories() {
        feature.ignore("build/");
        feature.ignore(".build/");
        feature.ignore(".venv/");
        upstream.write("lib.c", "int one;\n");
        upstream.write(".gitignore", "*.o\n");
        upstream.commit("Begin");
        upstream.git({"tag", "v1"});
        upstream.commitFile("more.c");
    }

    GitRepository checkOut(const FilePath& path, const std::vector<std::string>& options = {}) const {
        std::vector<std::string> clone{"clone", "--quiet"};
        clone.insert(clone.end(), options.begin(), options.end());
        clone.insert(clone.end(), {"file://" + upstream.path().bytes(), path.bytes()});
        upstream.git(clone);
        const GitRepository made = GitRepository::at(path);
        made.git({"config", "user.name", "Robin Example"});
        made.git({"config", "user.email", "robin@example.invalid"});
        return made;
    }
    /// As CMake's FetchContent does it.
    GitRepository fetchedContent() const {
        const GitRepository made = checkOut(feature / "build/_deps/lib-src", {"--no-checkout"});
        made.git({"checkout", "--quiet", "--detach", "v1"});
        return made;
    }
    static std::string objection(const std::string& why, const std::string& path = "build/_deps/lib-src") {
        return "Another repository lies inside it: " + path + ", " + why + ".";
    }
    static constexpr const char* ownCommits = "with commits that none of its remotes has";

    const GitRepository upstream = GitRepository::create(home / "upstream");
};

TEST_F(InnerRepositories, ThatABuildToolFetchedAreNoObstacle) {
    const GitRepository inner = fetchedContent();
    inner.write("lib.o");
    inner.write("__pycache__/x.pyc");
    EXPECT_EQ(look(), "");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(InnerRepositories, OfASwiftPackageAreNoObstacle) {
    const GitRepository mirror = checkOut(feature / ".build/repositories/lib-1a2b", {"--mirror"});
    mirror.git({"clone", "--quiet", "--no-checkout", "--shared", mirror.path().bytes(),
                (feature / ".build/checkouts/lib").bytes()});
    GitRepository::at(feature / ".build/checkouts/lib").git({"checkout", "--quiet", "v1"});
    EXPECT_EQ(look(), "");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(InnerRepositories, OfAnEditableInstallationAreNoObstacle) {
    upstream.git({"config", "uploadpack.allowFilter", "true"});
    const GitRepository inner = checkOut(feature / ".venv/src/lib", {"--filter=blob:none"});
    inner.git({"checkout", "--quiet", "--detach", "HEAD~1"});
    inner.write("lib.egg-info/PKG-INFO");
    EXPECT_EQ(look(), "");
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(InnerRepositories, OfOneCommitAndOneTagAreNoObstacle) {
    (void)checkOut(feature / "build/_deps/lib-src", {"--depth=1", "--branch=v1"});
    EXPECT_EQ(look(), "");
}

TEST_F(InnerRepositories, WithSubmodulesAreNoObstacle) {
    const GitRepository other = GitRepository::create(home / "other-upstream");
    other.commitFile("other.c");
    upstream.addSubmodule(other, "third_party/other");
    upstream.git({"-c", "protocol.file.allow=always", "clone", "--quiet", "--recurse-submodules",
                  upstream.path().bytes(), (feature / "build/lib").bytes()});
    ASSERT_TRUE(isThere(feature / "build/lib/third_party/other/other.c"));
    EXPECT_EQ(look(), "");
    GitRepository::at(feature / "build/lib/third_party/other").write("other.c", "changed\n");
    EXPECT_EQ(look(), objection("in which other.c was changed", "build/lib/third_party/other"));
}

TEST_F(InnerRepositories, KeepItForACommitOfTheirOwn) {
    const GitRepository inner = fetchedContent();
    inner.commitFile("patch.c");
    EXPECT_EQ(look(), objection(ownCommits));
    inner.git({"tag", "mine"});
    EXPECT_EQ(look(), objection(ownCommits)) << "a tag of somebody's own holds it nowhere else";
    inner.git({"checkout", "--quiet", "--detach", "origin/main"});
    EXPECT_EQ(look(), objection(ownCommits)) << "the tag is still there";
    inner.git({"tag", "--delete", "mine"});
    EXPECT_EQ(look(), "");
}

TEST_F(InnerRepositories, KeepItForABranchAheadOfItsRemote) {
    const GitRepository inner = fetchedContent();
    inner.git({"switch", "--quiet", "--create", "patched"});
    inner.commitFile("patch.c");
    inner.git({"checkout", "--quiet", "--detach", "v1"});
    EXPECT_EQ(look(), objection(ownCommits));
    inner.git({"push", "--quiet", "origin", "patched"});
    EXPECT_EQ(look(), "");
}

TEST_F(InnerRepositories, KeepItForAStash) {
    const GitRepository inner = fetchedContent();
    inner.write("lib.c", "int two;\n");
    inner.git({"stash", "push", "--quiet"});
    EXPECT_EQ(look(), objection(ownCommits));
}

TEST_F(InnerRepositories, KeepItForAChangedFile) {
    const GitRepository inner = fetchedContent();
    inner.write("lib.c", "int two;\n");
    EXPECT_EQ(look(), objection("in which lib.c was changed"));
    inner.git({"add", "lib.c"});
    EXPECT_EQ(look(), objection("with changes that are staged"));
    inner.git({"reset", "--quiet", "--hard"});
    EXPECT_EQ(look(), "");
    fs::remove((inner / "lib.c").bytes());
    EXPECT_EQ(look(), "") << "a file that is gone is no work";
}

TEST_F(InnerRepositories, KeepItForANewFile) {
    const GitRepository inner = fetchedContent();
    inner.write("idea.c");
    EXPECT_EQ(look(), objection("in which idea.c is untracked"));
}

TEST_F(InnerRepositories, KeepItForAnUnfinishedOperation) {
    const GitRepository inner = fetchedContent();
    inner.git({"bisect", "start"});
    EXPECT_EQ(look(), objection("in which an operation is unfinished"));
}

TEST_F(InnerRepositories, KeepItForWorktreesOfTheirOwn) {
    const GitRepository inner = fetchedContent();
    (void)inner.addDetachedWorktree(home / "of-inner");
    EXPECT_EQ(look(), objection("which has worktrees of its own"));
}

TEST_F(InnerRepositories, WithoutARemoteKeepIt) {
    GitRepository::create(feature / "build/own").commitFile("only-here.txt");
    EXPECT_EQ(look(), objection("which has no remote", "build/own"));
    (void)GitRepository::createBare(feature / "build/own.git");
    fs::remove_all((feature / "build/own").bytes());
    EXPECT_EQ(look(), objection("which has no remote", "build/own.git"));
}

TEST_F(InnerRepositories, ThatAreEachOthersRemotesKeepIt) {
    const GitRepository first = fetchedContent();
    const GitRepository second = first.cloneTo(feature / "build/second");
    EXPECT_EQ(look(), "") << "what the second has, the first one's remote has";
    second.commitFile("patch.c");
    second.git({"push", "--quiet", "origin", "HEAD:refs/heads/patched"});
    EXPECT_EQ(look(), objection(ownCommits));
    first.git({"remote", "set-url", "origin", second.path().bytes()});
    first.git({"fetch", "--quiet", "origin"});
    first.git({"update-ref", "refs/remotes/origin/patched", "patched"});
    EXPECT_THAT(look(), HasSubstr("whose remote lies inside it as well."));
}

TEST_F(InnerRepositories, OfTheSameRepositoryKeepItWhateverTheyHold) {
    const GitRepository inner = project.addWorktree(feature / "build/inner", "inner");
    EXPECT_EQ(look(), "Another worktree lies inside it: " + inner.path().bytes() + ".");
    project.git({"worktree", "lock", inner.path().bytes()});
    const FilePath elsewhere = home / "elsewhere";
    fs::rename((project / ".git/worktrees/inner").bytes(), elsewhere.bytes());
    inner.write(".git", "gitdir: " + (project / ".git").bytes() + "\n");
    EXPECT_EQ(look(), objection("which belongs to one elsewhere", "build/inner"));
}

TEST_F(InnerRepositories, ThatAreTheOutputDirectoryItselfKeepIt) {
    (void)checkOut(feature / "build");
    EXPECT_EQ(look(), "Another repository lies inside it: build/.git.");
}

TEST_F(InnerRepositories, InWhatTheReviewDidNotTellAsRebuildableKeepIt) {
    (void)checkOut(feature / "logs/lib");
    EXPECT_EQ(look(), "Another repository lies inside it: logs/lib/.git.");
    fs::remove_all((feature / "logs").bytes());
    const Worktree before = review();
    (void)fetchedContent();
    EXPECT_EQ(look(before), "Another repository lies inside it: build/_deps/lib-src/.git.");
}

TEST_F(InnerRepositories, RunNoneOfTheirProgramsWhenLookedAt) {
    const FilePath trap = home / "trap";
    const std::string command = "touch " + trap.bytes() + "; cat";
    const GitRepository inner = fetchedContent();
    inner.write(".git/info/attributes", "* filter=trap\n");
    for (const char* setting : {"filter.trap.clean", "filter.trap.smudge", "core.fsmonitor", "diff.external",
                                "core.pager", "core.sshCommand", "core.alternateRefsCommand"})
        inner.git({"config", setting, command});
    inner.git({"config", "core.hooksPath", (home / "hooks").bytes()});
    fs::last_write_time((inner / "lib.c").bytes(), fs::file_time_type::clock::now());
    const Worktree reviewed = review();
    fs::remove(trap.bytes());
    EXPECT_EQ(look(reviewed), "");
    EXPECT_FALSE(isThere(trap));
    (void)inner.tryGit({"status"});
    EXPECT_TRUE(isThere(trap)) << "it was not armed";
}

TEST_F(InnerRepositories, AreNotChangedByBeingLookedAt) {
    const GitRepository inner = fetchedContent();
    const Worktree reviewed = review();
    const auto indexTime = fs::last_write_time((inner / ".git/index").bytes());
    const auto folderTime = fs::last_write_time((inner / ".git").bytes());
    EXPECT_EQ(look(reviewed), "");
    EXPECT_EQ(fs::last_write_time((inner / ".git/index").bytes()), indexTime);
    EXPECT_EQ(fs::last_write_time((inner / ".git").bytes()), folderTime);
}

TEST_F(InnerRepositories, GoWithAWholeCleanup) {
    (void)fetchedContent();
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(isThere(feature.path()));
}

}  // namespace
}  // namespace cairnfield
