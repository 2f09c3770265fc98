// Worktrees, Git files and remotes that are put elsewhere while a cleanup runs. Wherever it stops, the work
// is where the person has put it.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* lastStatus = "status --porcelain=v2 -z --untracked-files=all --ignored=no";

class CleanupOnTheMove : public Cleanup {
protected:
    CleanupOnTheMove() {
        feature.write("kept.txt", "changed\n");
        feature.write(".env", "SECRET=1\n");
    }
    void expectAllAt(const GitRepository& place) const {
        EXPECT_EQ(contentOf(place / "kept.txt"), "changed\n");
        EXPECT_EQ(contentOf(place / "second.txt"), "as reviewed\n");
        EXPECT_EQ(contentOf(place / ".env"), "SECRET=1\n");
        EXPECT_TRUE(place.tryGit({"status"}));
    }

    const GitRepository moved = GitRepository::at(home / "moved");
};

class CleanupOnTheMoveAt : public CleanupOnTheMove, public testing::WithParamInterface<const char*> {};

TEST_P(CleanupOnTheMoveAt, StopsWhenTheWorktreeIsMovedByGit) {
    commands.before(GetParam(), [this] {
        project.git({"worktree", "move", feature.path().bytes(), moved.path().bytes()});
    });
    const CleanupReceipt receipt = clean();
    EXPECT_NE(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_FALSE(receipt.removalSucceeded);
    expectAllAt(moved);
}

INSTANTIATE_TEST_SUITE_P(EveryMoment, CleanupOnTheMoveAt,
                         testing::Values("show-ref --verify --quiet refs/heads/cairnfield", "switch", "add",
                                         "commit", "push", lastStatus, "worktree remove"));

TEST_F(CleanupOnTheMove, StopsWhenTheWorktreeIsMovedBehindGitsBack) {
    commands.before(lastStatus, [this] { fs::rename(feature.path().bytes(), moved.path().bytes()); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_FALSE(receipt.removalSucceeded);
    EXPECT_EQ(contentOf(moved / "kept.txt"), "changed\n");
    EXPECT_EQ(contentOf(moved / ".env"), "SECRET=1\n");
}

TEST_F(CleanupOnTheMove, StopsWhenAnotherFolderHasTakenItsPlace) {
    const CleanupPlan made = plan();
    commands.before(lastStatus, [this] {
        fs::rename(feature.path().bytes(), moved.path().bytes());
        fs::copy(moved.path().bytes(), feature.path().bytes(), fs::copy_options::recursive);
        feature.write(".env", "ANOTHER=1\n");
    });
    const CleanupReceipt receipt = execute(made);
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(".env changed after it was copied"));
    EXPECT_EQ(contentOf(feature / ".env"), "ANOTHER=1\n");
    EXPECT_EQ(contentOf(moved / ".env"), "SECRET=1\n");
    expectIntact(receipt);
}

TEST_F(CleanupOnTheMove, StopsWhenTheGitFileLeadsToAnotherWorktree) {
    const GitRepository other = project.addWorktree(home / "other", "other");
    commands.before(lastStatus, [&] { feature.write(".git", contentOf(other / ".git")); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\n");
    EXPECT_TRUE(isThere(other / "kept.txt"));
    expectIntact(receipt);
}

TEST_F(CleanupOnTheMove, StopsWhenTheGitFileLeadsToACopyOfTheGitDirectory) {
    commands.before(lastStatus, [this] {
        const FilePath copy = home / "copy";
        fs::copy((project / ".git").bytes(), copy.bytes(), fs::copy_options::recursive);
        feature.write(".git", "gitdir: " + (home / "copy/worktrees/feature").bytes() + "\n");
    });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr(feature.path().bytes() + " moved or was deleted since the last scan."));
    EXPECT_EQ(contentOf(feature / "kept.txt"), "changed\n");
    expectIntact(receipt);
}

TEST_F(CleanupOnTheMove, StopsWhenTheRemoteWasPutIntoTheWorktreeSinceTheReview) {
    const CleanupPlan made = plan();
    fs::create_directories((feature / "logs").bytes());
    fs::rename(hub.path().bytes(), (feature / "logs/hub.git").bytes());
    project.git({"remote", "set-url", "origin", (feature / "logs/hub.git").bytes()});
    CleanupPlan again = made;
    again.worktree.ignoredEntries = review().ignoredEntries;  // as if it had been there at the review
    const CleanupReceipt receipt = execute(again);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_EQ(receipt.errorSummary, "The worktree cannot be removed. The remote origin lies inside it.");
    EXPECT_TRUE(isThere(feature / "logs/hub.git/objects"));
    expectIntact(receipt);
}

TEST_F(CleanupOnTheMove, StopsForASecretThatAppearsAfterThePush) {
    commands.after("push", [this] { feature.write("late.key", "SECRET\n"); });
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""),
                HasSubstr("late.key looks sensitive and appeared after the review."));
    EXPECT_EQ(contentOf(feature / "late.key"), "SECRET\n");
    expectIntact(receipt);
}

}  // namespace
}  // namespace cairnfield
