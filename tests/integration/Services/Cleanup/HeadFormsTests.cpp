// HEAD in the forms that it has besides a commit in a file: an unborn branch, and references that are not
// kept in files.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::Contains;

class UnbornBranch : public LastLook {
protected:
    UnbornBranch() {
        feature.git({"switch", "--quiet", "--orphan", "fresh"});
        EXPECT_FALSE(feature.tryGit({"rev-parse", "--verify", "--quiet", "HEAD"}));
    }
};

TEST_F(UnbornBranch, IsWhereItWasAtTheReview) {
    EXPECT_EQ(preflight(review()).failures, std::vector<std::string>());
    EXPECT_EQ(look(), "");
}

TEST_F(UnbornBranch, GoesWhenThereIsNothingOnIt) {
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(UnbornBranch, IsPreservedWithItsFirstCommit) {
    feature.write("first.txt", "new\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(onRemote("first.txt"), "new");
}

TEST_F(UnbornBranch, ThatIsBornSinceTheReviewHasMoved) {
    const Worktree reviewed = review();
    feature.commitFile("first.txt");
    EXPECT_EQ(preflight(reviewed).failures,
              std::vector<std::string>{"HEAD moved since the worktree was reviewed."});
    EXPECT_EQ(look(reviewed), "Its HEAD is not where it was left.");
}

/// The directory by which a repository is known to keep its references elsewhere. The git that makes these
/// worlds reads and writes them in files all the same, and the program asks it for all that it needs.
class ReferencesElsewhere : public LastLook {
protected:
    ReferencesElsewhere() { std::filesystem::create_directories((project / ".git/reftable").bytes()); }
};

TEST_F(ReferencesElsewhere, AreReadThroughGit) {
    const Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    EXPECT_THAT(commandLines(), Contains("feature: rev-parse --verify --quiet HEAD"));
    feature.commitFile("later.txt");
    EXPECT_EQ(look(reviewed), "Its HEAD is not where it was left.");
    feature.git({"switch", "--quiet", "--orphan", "fresh"});
    EXPECT_EQ(look(reviewed), "Its HEAD is not where it was left.");
    EXPECT_EQ(look(), "");
}

TEST_F(ReferencesElsewhere, AreUnreadableWhenGitDoesNotSay) {
    const Worktree reviewed = review();
    commands.answer("rev-parse --verify", CommandResult{128, {}, "broken"});
    EXPECT_EQ(look(reviewed), "Its HEAD could not be read.");
    commands.answer("for-each-ref", CommandResult{128, {}, "broken"});
    EXPECT_EQ(look(reviewed), "Its own references could not be read.");
    commands.answer("for-each-ref", CommandResult{0, "rubbish\n", {}});
    EXPECT_EQ(look(reviewed), "Its own references could not be read.");
}

TEST_F(ReferencesElsewhere, OfTheWorktreeAloneAreAskedForToo) {
    feature.git({"update-ref", "refs/worktree/wip",
                 feature.git({"commit-tree", "-m", "Put aside", "-p", "HEAD", "HEAD^{tree}"})});
    EXPECT_EQ(look(), "Its own reference refs/worktree/wip holds what nothing else holds.");
}

TEST_F(ReferencesElsewhere, WithHeadOnOneOfTheWorktreesOwn) {
    feature.git({"update-ref", "refs/worktree/wip", "HEAD"});
    feature.git({"symbolic-ref", "HEAD", "refs/worktree/wip"});
    Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    reviewed.tracking.headIsRemotelyPreserved = false;
    reviewed.tracking.uniqueCommitCount = std::nullopt;
    EXPECT_EQ(look(reviewed), "Its commits are on a reference of its own.");
}

TEST_F(ReferencesElsewhere, AreNoObstacleToAWholeCleanup) {
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::succeeded);
    EXPECT_EQ(onRemote("kept.txt"), "changed");
}

}  // namespace
}  // namespace cairnfield
