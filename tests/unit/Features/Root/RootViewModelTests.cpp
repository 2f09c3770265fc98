#include "Features/Root/RootViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/QtApplication.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

class RootScreen : public testing::Test {
protected:
    AppState& state() { return AppModelStaging::state(*app.model); }
    void setFree(std::int64_t bytes) {
        state().storage.set(StorageSnapshot{.totalCapacity = 500'000'000'000, .availableCapacity = bytes});
    }
    static Task<> nothing() { co_return; }
    /// Everything that is queued has run.
    void settle() {
        for (int turn = 0; turn < 10; ++turn) app.run(nothing());
    }

    QtApplication qt;
    AppHarness app;
    TaskHandle<> started = spawn(app.loop, nothing());
    RootViewModel root{*app.model, started};
};

TEST_F(RootScreen, StartsWithTheOverview) {
    EXPECT_EQ(root.selection(), SidebarSection::overview);
    EXPECT_EQ(root.selectedRow(), 0);
    EXPECT_EQ(root.section(), "overview");
    EXPECT_EQ(root.title(), "Overview");
    EXPECT_EQ(root.symbolName(), "square.grid.2x2");
}

TEST_F(RootScreen, ListsTheVisibleSections) {
    SidebarModel& rows = *root.sections();
    ASSERT_EQ(rows.rowCount(), 8);
    EXPECT_EQ(rows.data(rows.index(2), SidebarModel::titleRole), "Watched Folders");
    EXPECT_EQ(rows.data(rows.index(2), SidebarModel::symbolNameRole), "folder");
    EXPECT_FALSE(rows.data(rows.index(8), SidebarModel::titleRole).isValid());
    EXPECT_FALSE(rows.data(rows.index(2), Qt::UserRole + 99).isValid());
}

TEST_F(RootScreen, SelectsARowAndTellsOnce) {
    const SignalCount changes(&root, &RootViewModel::selectionChanged);
    root.select(1);
    root.select(1);
    EXPECT_EQ(root.selection(), SidebarSection::worktrees);
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(RootScreen, StaysWhereItIsForARowThatDoesNotExist) {
    root.select(3);
    root.select(-1);
    root.select(8);
    EXPECT_EQ(root.selection(), SidebarSection::developerFiles);
}

TEST_F(RootScreen, ShowsASectionWithoutARow) {
    root.setSelection(SidebarSection::notificationLab);
    EXPECT_EQ(root.selectedRow(), -1);
    EXPECT_EQ(root.title(), "Notification Lab");
}

TEST_F(RootScreen, FindsASectionByItsFirstLetters) {
    root.typeAhead("h");
    EXPECT_EQ(root.selection(), SidebarSection::history);
}

TEST_F(RootScreen, HasAFooterOnlyWhileSpaceIsLow) {
    app.settings.thresholdMode.set(ThresholdMode::absolute);
    app.settings.warningAbsoluteBytes.set(50'000'000'000);
    app.settings.criticalAbsoluteBytes.set(10'000'000'000);
    EXPECT_FALSE(root.showsStorageFooter()) << "nothing was read yet";
    const SignalCount changes(&root, &RootViewModel::storageChanged);
    setFree(100'000'000'000);
    EXPECT_FALSE(root.showsStorageFooter());
    setFree(20'000'000'000);
    EXPECT_TRUE(root.showsStorageFooter());
    EXPECT_EQ(root.levelText(), "Low space");
    EXPECT_EQ(root.levelSymbolName(), "exclamationmark.triangle");
    EXPECT_EQ(root.levelTint(), "orange");
    EXPECT_EQ(root.freeText(), "20 GB free");
    setFree(100'000'000'000);
    EXPECT_FALSE(root.showsStorageFooter());
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(RootScreen, FollowsTheLimitsAsTheyAreSet) {
    app.settings.thresholdMode.set(ThresholdMode::percentage);
    app.settings.warningPercentage.set(0.1);
    app.settings.criticalPercentage.set(0.01);
    setFree(60'000'000'000);
    EXPECT_FALSE(root.showsStorageFooter());
    const SignalCount changes(&root, &RootViewModel::storageChanged);
    app.settings.warningPercentage.set(0.2);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_TRUE(root.showsStorageFooter());
    app.settings.criticalPercentage.set(0.15);
    EXPECT_EQ(root.levelText(), "Critically low");
    EXPECT_EQ(root.levelTint(), "red");
}

TEST_F(RootScreen, ShowsADashForFreeSpaceThatIsNotKnown) {
    EXPECT_EQ(root.freeText(), "— free");
    setFree(-1);
    EXPECT_EQ(root.freeText(), "0 kB free");
}

TEST_F(RootScreen, LeadsFromTheFooterToTheWorktrees) {
    root.selectPreferences();
    EXPECT_EQ(root.selection(), SidebarSection::preferences);
    root.selectWorktrees();
    EXPECT_EQ(root.selection(), SidebarSection::worktrees);
}

TEST_F(RootScreen, LooksForWorktreesAtTheFirstAppearanceWhenThereAreFoldersAndNothingWasFound) {
    state().watchedFolders.set({WatchedFolder::make(FilePath("/nowhere"))});
    root.appeared();
    ASSERT_TRUE(app.loop.runUntil([&] { return state().worktreeRefreshError.get().has_value(); }))
        << "git was not looked for, which a refresh tells";
    state().worktreeRefreshError.set(std::nullopt);
    root.appeared();
    settle();
    EXPECT_EQ(state().worktreeRefreshError.get(), std::nullopt) << "once";
}

TEST_F(RootScreen, LooksForNothingWithoutFolders) {
    root.appeared();
    settle();
    EXPECT_EQ(state().worktreeRefreshError.get(), std::nullopt);
}

TEST_F(RootScreen, LooksForNothingAgainThatIsThere) {
    state().watchedFolders.set({WatchedFolder::make(FilePath("/nowhere"))});
    state().worktrees.set({Worktree{}});
    root.appeared();
    settle();
    EXPECT_EQ(state().worktreeRefreshError.get(), std::nullopt);
}

TEST(RootScreenAtStart, WaitsForTheModelToHaveLoadedWhatWasStored) {
    const QtApplication qt;
    AppHarness app;
    AppState& state = AppModelStaging::state(*app.model);
    const auto loading = [&app, &state]() -> Task<> {
        co_await app.continuousClock.sleep(std::chrono::seconds(1));
        state.watchedFolders.set({WatchedFolder::make(FilePath("/nowhere"))});
    };
    const TaskHandle<> started = spawn(app.loop, loading());
    RootViewModel root(*app.model, started);
    root.appeared();
    ASSERT_TRUE(app.loop.runUntil([&] { return app.continuousClock.sleepers() == 1; }));
    app.continuousClock.advance(std::chrono::seconds(1));
    EXPECT_TRUE(app.loop.runUntil([&] { return state.worktreeRefreshError.get().has_value(); }));
}

}  // namespace
}  // namespace cairnfield
