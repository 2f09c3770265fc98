#include "WorktreesFixture.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using WorktreesScreen = WorktreesFixture;

TEST_F(WorktreesScreen, SaysWithoutAFolderThatNoneIsWatched) {
    EXPECT_FALSE(screen.showsList());
    EXPECT_EQ(screen.emptyTitle(), "No folders are being watched");
    EXPECT_EQ(screen.emptyMessage(),
              "Add the folder that holds your repositories. Cairnfield only looks where you point it.");
    EXPECT_EQ(screen.emptySymbolName(), "folder.badge.plus");
    EXPECT_EQ(screen.emptyActionTitle(), "");
}

TEST_F(WorktreesScreen, SaysSoWithoutAFolderEvenWhileWorktreesAreLeft) {
    state().worktrees.set({worktree({})});
    screen.flush();
    EXPECT_FALSE(screen.showsList());
    EXPECT_EQ(screen.emptyTitle(), "No folders are being watched");
}

TEST_F(WorktreesScreen, LooksForRepositoriesDuringTheFirstRefresh) {
    watch();
    state().isRefreshingWorktrees.set(true);
    screen.flush();
    EXPECT_FALSE(screen.showsList());
    EXPECT_EQ(screen.emptyTitle(), "Looking for repositories…");
    EXPECT_EQ(screen.emptyMessage(),
              "Scan to ask Git which worktrees are registered under your watched folders.");
    EXPECT_EQ(screen.emptySymbolName(), "arrow.triangle.branch");
    EXPECT_EQ(screen.emptyActionTitle(), "");
    EXPECT_FALSE(screen.canScan());
}

TEST_F(WorktreesScreen, OffersToScanWhenNothingWasFound) {
    watch();
    screen.flush();
    EXPECT_EQ(screen.emptyTitle(), "No worktrees found yet");
    EXPECT_EQ(screen.emptyMessage(),
              "Scan to ask Git which worktrees are registered under your watched folders.");
    EXPECT_EQ(screen.emptyActionTitle(), "Scan now");
    EXPECT_TRUE(screen.canScan());
}

TEST_F(WorktreesScreen, TellsWhyTheRefreshFailed) {
    watch();
    state().worktreeRefreshError.set("Git was not found on this Mac.");
    screen.flush();
    EXPECT_EQ(screen.emptyMessage(), "Git was not found on this Mac.");
    EXPECT_EQ(screen.notice(), "");
    stage({worktree({})});
    EXPECT_TRUE(screen.showsList());
    EXPECT_EQ(screen.notice(), "Git was not found on this Mac.");
}

TEST_F(WorktreesScreen, KeepsTheListDuringALaterRefresh) {
    stage({worktree({})});
    state().isRefreshingWorktrees.set(true);
    screen.flush();
    EXPECT_TRUE(screen.showsList());
    EXPECT_FALSE(screen.canScan());
}

TEST_F(WorktreesScreen, KeepsTheListWhenTheFilterHidesEverything) {
    stage({worktree({})});
    screen.setSearchText("no such thing");
    EXPECT_TRUE(screen.showsList());
    EXPECT_THAT(titles(), IsEmpty());
}

TEST_F(WorktreesScreen, CountsWhatWasMeasured) {
    stage({worktree({}), worktree({.branch = "b"})});
    EXPECT_EQ(screen.progressText(), "");
    state().sizingProgress.set(SizingProgress{1, 4});
    screen.flush();
    EXPECT_EQ(screen.progressText(), "Measuring 1/4");
    EXPECT_DOUBLE_EQ(screen.progressFraction(), 0.25);
    state().sizingProgress.set(SizingProgress{0, 0});
    screen.flush();
    EXPECT_EQ(screen.progressText(), "");
}

TEST_F(WorktreesScreen, ChecksPullRequestsOnlyWithASignedInHostAndWorktrees) {
    stage({worktree({})});
    EXPECT_FALSE(screen.canCheckPullRequests());
    state().githubStatus.set({.isInstalled = true, .authenticatedHosts = {"git.example"}});
    screen.flush();
    EXPECT_TRUE(screen.canCheckPullRequests());
    state().worktrees.set({});
    screen.flush();
    EXPECT_FALSE(screen.canCheckPullRequests());
}

TEST_F(WorktreesScreen, NamesTheChoicesOfItsToolbar) {
    EXPECT_EQ(screen.groupingTitles(), (QStringList{"Project", "Safety"}));
    EXPECT_EQ(screen.filterTitles(),
              (QStringList{"All", "Safe to clean", "Preserved remotely", "Preserve first", "In use",
                           "Needs review", "Cannot clean"}));
    EXPECT_EQ(screen.groupingIndex(), 0);
    EXPECT_EQ(screen.filterIndex(), 0);
    EXPECT_EQ(screen.searchText(), "");
}

TEST_F(WorktreesScreen, FiltersByTheChosenDisposition) {
    stage({worktree({.branch = "safe"}),
           worktree({.branch = "used", .safety = WorktreeSafety::activeOrLocked})});
    screen.setFilterIndex(4);
    EXPECT_EQ(screen.filterIndex(), 4);
    EXPECT_THAT(titles(), ElementsAre("atlas", "used"));
    screen.setFilterIndex(0);
    EXPECT_THAT(titles(), ElementsAre("atlas", "safe", "used"));
    screen.setFilterIndex(7);
    EXPECT_EQ(screen.filterIndex(), 0);
}

TEST_F(WorktreesScreen, GroupsBySafetyWhenAsked) {
    stage({worktree({.branch = "used", .safety = WorktreeSafety::activeOrLocked}),
           worktree({.branch = "safe"})});
    screen.setGroupingIndex(1);
    EXPECT_THAT(titles(), ElementsAre("Safe to clean", "safe", "In use", "used"));
    screen.setGroupingIndex(0);
    EXPECT_THAT(titles(), ElementsAre("atlas", "used", "safe"));
}

TEST_F(WorktreesScreen, FindsABranchWhateverTheCase) {
    stage({worktree({.branch = "Feature/LogIn"}), worktree({.branch = "other"})});
    screen.setSearchText("lOGiN");
    EXPECT_THAT(titles(), ElementsAre("atlas", "Feature/LogIn"));
}

TEST_F(WorktreesScreen, BringsManyChangesToTheScreenInOneUpdate) {
    std::vector<Worktree> worktrees;
    for (int count = 0; count < 50; ++count) worktrees.push_back(worktree({.branch = std::to_string(count)}));
    stage(worktrees);
    state().sizingProgress.set(SizingProgress{0, 50});
    screen.flush();
    SignalCount updates(&screen, &WorktreesViewModel::selectionChanged);
    for (std::size_t position = 0; position < 50; ++position) {
        state().worktrees.mutate([&](std::vector<Worktree>& all) {
            all[position].sizeBytes = 1'000'000;
            return true;
        });
        QtApplication::processEvents();
    }
    EXPECT_LE(updates.count(), 1);
    updates.waitForFirst();
    EXPECT_EQ(updates.count(), 1);
    EXPECT_EQ(screen.rows()->item(50).size, "1 MB");
}

TEST_F(WorktreesScreen, ShowsTheDetailOfTheSelectedWorktree) {
    stage({worktree({.branch = "a", .size = 2}), worktree({.branch = "b", .size = 1})});
    EXPECT_FALSE(screen.detail()->isPresent());
    EXPECT_EQ(screen.selectedRow(), -1);
    screen.select(2);
    EXPECT_EQ(screen.selection(), FilePath("/code/atlas/b"));
    EXPECT_EQ(screen.selectedRow(), 2);
    EXPECT_EQ(selected(), "b");
    screen.select(0);
    EXPECT_EQ(selected(), "b") << "a header cannot be selected";
}

TEST_F(WorktreesScreen, KeepsTheSelectionThroughARescanAsLongAsTheWorktreeExists) {
    stage({worktree({.branch = "a"}), worktree({.branch = "b"})});
    screen.select(2);
    stage({worktree({.branch = "new", .size = 9}), worktree({.branch = "a"}),
           worktree({.branch = "b", .size = 1})});
    EXPECT_EQ(selected(), "b");
    EXPECT_EQ(screen.selectedRow(), 2);
    stage({worktree({.branch = "a"})});
    EXPECT_EQ(screen.selection(), std::nullopt);
    EXPECT_EQ(screen.selectedRow(), -1);
    EXPECT_FALSE(screen.detail()->isPresent());
}

TEST_F(WorktreesScreen, KeepsTheDetailOfASelectedWorktreeThatTheSearchHides) {
    stage({worktree({.branch = "a"}), worktree({.branch = "b"})});
    screen.select(2);
    screen.setSearchText("las/a");
    EXPECT_EQ(screen.selectedRow(), -1);
    EXPECT_EQ(selected(), "b");
    screen.setSearchText("");
    EXPECT_EQ(screen.selectedRow(), 2);
}

TEST_F(WorktreesScreen, MovesTheSelectionOverHeadersAndStopsAtTheEnds) {
    stage({worktree({.repository = "one", .branch = "a", .size = 2}),
           worktree({.repository = "two", .branch = "b"}), worktree({.repository = "two", .branch = "c"})});
    screen.moveSelection(1);
    EXPECT_EQ(selected(), "a");
    screen.moveSelection(1);
    EXPECT_EQ(selected(), "b");
    screen.moveSelection(-1);
    EXPECT_EQ(selected(), "a");
    screen.moveSelection(-1);
    EXPECT_EQ(selected(), "a");
    screen.moveSelection(20);
    EXPECT_EQ(selected(), "c");
    screen.selectFirst();
    EXPECT_EQ(selected(), "a");
    screen.selectLast();
    EXPECT_EQ(selected(), "c");
}

TEST_F(WorktreesScreen, SelectsNothingInAnEmptyList) {
    screen.moveSelection(1);
    screen.selectFirst();
    screen.selectLast();
    screen.typeAhead("a");
    EXPECT_EQ(screen.selection(), std::nullopt);
}

TEST_F(WorktreesScreen, SelectsByTheStartOfABranch) {
    stage({worktree({.branch = "alpha"}), worktree({.branch = "beta"}), worktree({.branch = "Berlin"})});
    screen.typeAhead("b");
    EXPECT_EQ(selected(), "beta");
    screen.typeAhead("e");
    screen.typeAhead("r");
    EXPECT_EQ(selected(), "Berlin");
}

TEST_F(WorktreesScreen, ChangesOnlyThePartOfTheDetailThatASizeIsIn) {
    stage({worktree({.branch = "a"})});
    screen.select(1);
    SignalCount gitState(screen.detail(), &WorktreeDetail::gitStateChanged);
    SignalCount header(screen.detail(), &WorktreeDetail::headerChanged);
    SignalCount cleanup(screen.detail(), &WorktreeDetail::cleanupChanged);
    stage({worktree({.branch = "a", .size = 7})});
    EXPECT_EQ(gitState.count(), 1);
    EXPECT_EQ(header.count(), 0);
    EXPECT_EQ(cleanup.count(), 0);
}

}  // namespace
}  // namespace cairnfield
