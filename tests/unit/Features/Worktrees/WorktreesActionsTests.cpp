#include "WorktreesFixture.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using WorktreesActions = WorktreesFixture;

TEST_F(WorktreesActions, ShowThePlaceOfTheSelectedWorktree) {
    stage({worktree({.branch = "a\xff"})});
    screen.reveal();
    screen.openTerminal();
    EXPECT_THAT(workspace.revealed, IsEmpty());
    EXPECT_THAT(workspace.terminals, IsEmpty());
    screen.select(1);
    screen.reveal();
    screen.openTerminal();
    EXPECT_THAT(workspace.revealed, ElementsAre(FilePath("/code/atlas/a\xff")));
    EXPECT_THAT(workspace.terminals, ElementsAre(FilePath("/code/atlas/a\xff")));
    EXPECT_EQ(screen.notice(), "");
}

TEST_F(WorktreesActions, TellWhyThePlaceCannotBeShown) {
    stage({worktree({}), worktree({.branch = "b"})});
    screen.select(1);
    workspace.answer = "No terminal was found.";
    screen.openTerminal();
    EXPECT_EQ(screen.notice(), "No terminal was found.");
    workspace.answer.reset();
    screen.openTerminal();
    EXPECT_EQ(screen.notice(), "");
}

TEST_F(WorktreesActions, PinAndUnpinTheSelectedWorktree) {
    stage({worktree({})});
    screen.togglePin();
    screen.select(1);
    EXPECT_EQ(screen.detail()->pinTitle(), "Pin");
    screen.togglePin();
    ASSERT_TRUE(app.loop.runUntil([&] { return state().worktrees.get()[0].isPinned; }));
    screen.flush();
    EXPECT_EQ(screen.detail()->pinTitle(), "Unpin");
    EXPECT_TRUE(screen.rows()->item(1).isPinned);
    EXPECT_EQ(screen.detail()->cleanupNote(), "Unpin this worktree to clean it.");
    EXPECT_TRUE(screen.detail()->offersCleanup());
    EXPECT_FALSE(screen.detail()->isCleanupEnabled());
}

TEST_F(WorktreesActions, OpenTheReviewOfTheWorktreeAsItThenWas) {
    stage({worktree({.branch = "a"})});
    screen.preserveAndClean();
    EXPECT_FALSE(review.isOpen());
    screen.select(1);
    screen.preserveAndClean();
    EXPECT_TRUE(review.isOpen());
    EXPECT_EQ(screen.cleanupTarget()->id(), FilePath("/code/atlas/a"));
    EXPECT_EQ(review.subtitle(), "atlas · a");
    stage({});
    EXPECT_TRUE(review.isOpen()) << "a refresh does not take the sheet away";
    const SignalCount ended(&screen, &WorktreesViewModel::reviewEnded);
    review.close();
    EXPECT_EQ(ended.count(), 1);
    EXPECT_EQ(screen.cleanupTarget(), std::nullopt);
}

TEST_F(WorktreesActions, NeverOpenTheReviewOfWhatCannotBeCleaned) {
    stage({worktree({.branch = "a", .safety = WorktreeSafety::mainWorktree, .isMain = true}),
           worktree({.branch = "b", .isPinned = true}),
           worktree({.branch = "c", .safety = WorktreeSafety::activeOrLocked})});
    for (int row = 1; row <= 3; ++row) {
        screen.select(row);
        screen.preserveAndClean();
        EXPECT_FALSE(review.isOpen()) << selected();
    }
}

TEST_F(WorktreesActions, ScanAsksGitForEverythingUnderTheFolders) {
    watch();
    screen.flush();
    screen.scan();
    ASSERT_TRUE(app.loop.runUntil([&] { return state().worktreeRefreshError.get().has_value(); }))
        << "git was not looked for, which a refresh tells";
    screen.flush();
    EXPECT_EQ(screen.emptyMessage(), "Git was not found on this Mac.");
}

TEST_F(WorktreesActions, CheckingPullRequestsNeedsASignedInHost) {
    stage({worktree({})});
    screen.checkPullRequests();
    EXPECT_FALSE(screen.canCheckPullRequests());
}

}  // namespace
}  // namespace cairnfield
