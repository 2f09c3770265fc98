// What would stop a removal at its end is said before anything is done, once for the review and once more
// when the cleanup begins.

#include "integration/Services/Cleanup/CleanupStage.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class StandingReasons : public Cleanup {
protected:
    using Failures = std::vector<std::string>;

    static constexpr const char* secondLook = "status --porcelain=v2 -z --untracked-files=all --ignored=no";
    const std::string innerRepository =
        "The worktree cannot be removed. Another repository lies inside it: logs/inner/.git.";

    void addInnerRepository() const { GitRepository::create(feature / "logs/inner").commitFile("mine.txt"); }
    Failures failures(bool requiresRemote = true) { return preflight(review(), requiresRemote).failures; }
};

TEST_F(StandingReasons, AreFailuresOfTheReview) {
    addInnerRepository();
    EXPECT_THAT(failures(false), ElementsAre(innerRepository));
    EXPECT_THAT(failures(true), ElementsAre(innerRepository));
    EXPECT_EQ(preflight(review()), CleanupPreflightReport::failed(innerRepository));
}

TEST_F(StandingReasons, StopACleanupBeforeAnythingIsPushed) {
    addInnerRepository();
    feature.write("kept.txt", "changed\n");
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, innerRepository);
    EXPECT_EQ(receipt.outcome, CleanupOutcome::failed);
    EXPECT_FALSE(remoteHasBranch());
    EXPECT_EQ(feature.git({"symbolic-ref", "--short", "HEAD"}), "feature");
    EXPECT_EQ(feature.git({"status", "--porcelain"}), " M kept.txt");
    EXPECT_THAT(storedReceipts(), IsEmpty());
    EXPECT_THAT(stages(), ElementsAre("preflight"));
    expectIntact(receipt);
}

TEST_F(StandingReasons, AreThoseOfTheWholeLook) {
    feature.git({"update-index", "--assume-unchanged", "second.txt"});
    feature.write("second.txt", "work that git overlooks\n");
    EXPECT_THAT(failures(), ElementsAre("The worktree cannot be removed. second.txt differs from what Git "
                                        "holds, and Git was told to overlook it."));
    feature.git({"update-index", "--no-assume-unchanged", "second.txt"});
    EXPECT_THAT(failures(), IsEmpty());
    feature.git({"update-ref", "refs/worktree/wip",
                 feature.git({"commit-tree", "-m", "Put aside", "-p", "HEAD", "HEAD^{tree}"})});
    EXPECT_THAT(failures(), ElementsAre("The worktree cannot be removed. Its own reference refs/worktree/wip "
                                        "holds what nothing else holds."));
}

TEST_F(StandingReasons, ComeAfterWhatGitAndTheRemoteSay) {
    addInnerRepository();
    std::filesystem::rename(hub.path().bytes(), (home / "gone.git").bytes());
    EXPECT_THAT(failures(true), ElementsAre("The remote origin could not be reached."));
    feature.lock("mine");
    EXPECT_THAT(failures(true), ElementsAre("The worktree is locked: mine"));
}

TEST_F(StandingReasons, AreNotWhatThePreservationCures) {
    feature.git({"update-ref", "refs/worktree/wip", "HEAD"});
    feature.git({"symbolic-ref", "HEAD", "refs/worktree/wip"});
    feature.commitFile("second.txt", "on a reference of its own\n");
    feature.write("kept.txt", "staged\n");
    feature.git({"add", "kept.txt"});
    feature.write("kept.txt", "and changed again\n");
    feature.write("new.txt");
    feature.write(".env", "SECRET=1\n");
    EXPECT_THAT(failures(), IsEmpty());
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, std::nullopt);
    EXPECT_FALSE(isThere(feature.path()));
}

TEST_F(StandingReasons, AreNotWhatChangedSinceTheReview) {
    feature.write("kept.txt", "changed\n");
    const CleanupPlan made = plan();
    feature.write(".env", "SECRET=1\n");
    EXPECT_EQ(execute(made).errorSummary,
              "The worktree at " + feature.path().bytes() + " changed after you reviewed it.");
}

TEST_F(StandingReasons, AreLookedForOnceMoreBeforeTheRemoval) {
    feature.write("kept.txt", "changed\n");
    commands.before(secondLook, [this] { addInnerRepository(); });
    const CleanupReceipt receipt = clean();
    EXPECT_EQ(receipt.errorSummary, "The worktree at " + feature.path().bytes() +
                                        " looks active. Another repository lies inside it: logs/inner/.git.");
    EXPECT_EQ(receipt.outcome, CleanupOutcome::partiallyCompleted);
    EXPECT_TRUE(isThere(feature / "logs/inner/mine.txt"));
    EXPECT_EQ(onRemote("kept.txt"), "changed");
    expectIntact(receipt);
}

TEST_F(StandingReasons, CostAnOrdinaryWorktreeNoCommand) {
    const Worktree reviewed = review();
    EXPECT_TRUE(preflight(reviewed).passed);
    for (const std::string& line : commandLines())
        EXPECT_THAT(line, Not(testing::AnyOf(
                              testing::HasSubstr("rev-list --objects"), testing::HasSubstr("for-each-ref"),
                              testing::HasSubstr("--verify --quiet HEAD"), testing::HasSubstr("--git-dir"))));
}

}  // namespace
}  // namespace cairnfield
