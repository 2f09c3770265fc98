// References that a worktree has for itself go with it, and so would what only they hold.

#include "integration/Services/Cleanup/LastLookStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class OwnReferences : public LastLook {
protected:
    const FilePath own = project / ".git/worktrees/feature";

    /// A commit that no reference holds.
    std::string looseCommit() const {
        return feature.git({"commit-tree", "-m", "Put aside", "-p", "HEAD", "HEAD^{tree}"});
    }
    static std::string holdsWhatNothingElseHolds(const std::string& name) {
        return "Its own reference " + name + " holds what nothing else holds.";
    }
};

TEST_F(OwnReferences, KeepTheWorktreeForACommitThatNothingElseHolds) {
    feature.git({"update-ref", "refs/worktree/wip/later", looseCommit()});
    EXPECT_EQ(look(), holdsWhatNothingElseHolds("refs/worktree/wip/later"));
    EXPECT_TRUE(gitWouldRemove());
}

TEST_F(OwnReferences, OfABisectionKeepItAfterTheBisectionToo) {
    feature.git({"update-ref", "refs/bisect/good", looseCommit()});
    EXPECT_EQ(look(), holdsWhatNothingElseHolds("refs/bisect/good"));
}

TEST_F(OwnReferences, ThatAPersonMadeBesideHeadKeepIt) {
    feature.git({"update-ref", "MY_WIP", looseCommit()});
    ASSERT_TRUE(isThere(own.appending("MY_WIP")));
    EXPECT_EQ(look(), holdsWhatNothingElseHolds("MY_WIP"));
}

TEST_F(OwnReferences, ToWhatIsNoCommitKeepItToo) {
    feature.write("aside.txt", "work\n");
    const std::string blob = feature.git({"hash-object", "-w", "aside.txt"});
    fs::remove((feature / "aside.txt").bytes());
    feature.git({"update-ref", "refs/worktree/aside", blob});
    EXPECT_EQ(look(), holdsWhatNothingElseHolds("refs/worktree/aside"));
}

TEST_F(OwnReferences, ToCommitsThatABranchOrATagHoldsAreNoObstacle) {
    const std::string commit = looseCommit();
    feature.git({"update-ref", "refs/worktree/wip", commit});
    feature.git({"symbolic-ref", "refs/worktree/current", "refs/heads/main"});
    feature.git({"update-ref", "refs/worktree/first", "HEAD"});
    ASSERT_NE(look(), "");
    project.git({"tag", "kept", commit});
    EXPECT_EQ(look(), "");
    project.git({"tag", "--delete", "kept"});
    ASSERT_NE(look(), "");
    project.git({"branch", "kept", commit});
    project.git({"pack-refs", "--all"});
    EXPECT_EQ(look(), "");
}

TEST_F(OwnReferences, OfAnotherWorktreeHoldNothingThatThisOneWouldTake) {
    const GitRepository other = project.addWorktree(home / "other", "other");
    other.git({"update-ref", "refs/worktree/wip", looseCommit()});
    EXPECT_EQ(look(), "");
}

TEST_F(OwnReferences, ThatGitNotesForItselfAreNoObstacle) {
    feature.commitFile("dropped.txt");
    feature.git({"reset", "--quiet", "--hard", "HEAD~1"});
    ASSERT_TRUE(isThere(own.appending("ORIG_HEAD")));
    EXPECT_EQ(look(), "");
}

TEST_F(OwnReferences, ThatCannotBeReadKeepIt) {
    const Worktree reviewed = review();
    fs::create_directories((own.appending("refs/worktree")).bytes());
    GitRepository::at(own).write("refs/worktree/torn", "3f");
    EXPECT_EQ(look(reviewed), "Its own reference refs/worktree/torn could not be read.");
    GitRepository::at(own).write("refs/worktree/torn", std::string(40, 'a') + "\n");
    EXPECT_EQ(look(reviewed),
              "Its own reference refs/worktree/torn could not be compared with the repository's.");
}

TEST_F(OwnReferences, AreAskedAboutOnlyWhereThereAreAny) {
    const Worktree reviewed = review();
    EXPECT_EQ(look(reviewed), "");
    EXPECT_THAT(commandLines(), IsEmpty());
    const std::string head = feature.head();
    feature.git({"update-ref", "refs/worktree/wip", head});
    EXPECT_EQ(look(reviewed), "");
    EXPECT_THAT(commandLines(), ElementsAre("project: rev-list --objects --filter=tree:0 --max-count=1 " +
                                            head + " --not --all " + head));
}

TEST_F(OwnReferences, KeepACleanupFromLosingTheirCommits) {
    const std::string commit = looseCommit();
    feature.git({"update-ref", "refs/worktree/wip", commit});
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_THAT(receipt.errorSummary.value_or(""), HasSubstr(holdsWhatNothingElseHolds("refs/worktree/wip")));
    EXPECT_EQ(feature.git({"rev-parse", "refs/worktree/wip"}), commit);
    expectIntact(receipt);
}

}  // namespace
}  // namespace cairnfield
