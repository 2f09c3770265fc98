#include "Features/MenuBar/MenuBarViewModel.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/FakeUpdates.h"
#include "support/QtApplication.h"
#include "support/SignalCount.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::ElementsAre;

class MenuBarScreen : public testing::Test {
protected:
    MenuBarScreen() {
        app.settings.thresholdMode.set(ThresholdMode::absolute);
        app.settings.warningAbsoluteBytes.set(50'000'000'000);
        app.settings.criticalAbsoluteBytes.set(10'000'000'000);
        app.application.all.emplace_back(false);
        app.application.all.emplace_back(true);
    }

    AppState& state() { return AppModelStaging::state(*app.model); }
    void setFree(std::int64_t available, std::int64_t total = 500'000'000'000) {
        state().storage.set(StorageSnapshot{
            .volumeURL = FilePath("/"), .totalCapacity = total, .availableCapacity = available});
        screen.flush();
    }
    static Worktree worktree(WorktreeSafety safety, std::int64_t size) {
        Worktree worktree;
        worktree.safety = safety;
        worktree.sizeBytes = size;
        return worktree;
    }
    std::vector<std::string> titles() {
        std::vector<std::string> all;
        for (const StatusMenuItem& item : screen.menu()) all.push_back(item.title);
        return all;
    }

    QtApplication qt;
    FakeUpdates updates;
    AppHarness app{{.updates = &updates}};
    MenuBarViewModel screen{*app.model, app.application};
};

TEST_F(MenuBarScreen, ShowsADashAndNothingWrongBeforeTheFirstReading) {
    EXPECT_EQ(screen.availableText(), "—");
    EXPECT_EQ(screen.totalText(), "free of —");
    EXPECT_EQ(screen.levelText(), "Healthy");
    EXPECT_EQ(screen.levelSymbolName(), "checkmark.circle");
    EXPECT_EQ(screen.levelTint(), "green");
    const StatusItemState item = screen.itemState();
    EXPECT_EQ(item.title, "Cairnfield storage status");
    EXPECT_EQ(item.symbolName, "internaldrive");
    EXPECT_EQ(item.accessibilityValue, "Cairnfield: checking storage");
    EXPECT_FALSE(item.needsAttention);
}

TEST_F(MenuBarScreen, ShowsTheReadingAndItsLevel) {
    setFree(123'000'000'000);
    EXPECT_EQ(screen.availableText(), "123 GB");
    EXPECT_EQ(screen.totalText(), "free of 500 GB");
    EXPECT_EQ(screen.itemState().accessibilityValue, "Cairnfield: 123 GB free, Healthy");
    setFree(20'000'000'000);
    EXPECT_EQ(screen.levelText(), "Low space");
    EXPECT_EQ(screen.levelSymbolName(), "exclamationmark.triangle");
    EXPECT_EQ(screen.levelTint(), "orange");
    EXPECT_EQ(screen.itemState().symbolName, "exclamationmark.triangle");
    EXPECT_TRUE(screen.itemState().needsAttention);
    setFree(3'000'000'000);
    EXPECT_EQ(screen.levelText(), "Critically low");
    EXPECT_EQ(screen.levelSymbolName(), "exclamationmark.octagon");
    EXPECT_EQ(screen.levelTint(), "red");
    EXPECT_EQ(screen.itemState().symbolName, "exclamationmark.octagon");
    EXPECT_EQ(screen.itemState().accessibilityValue, "Cairnfield: 3 GB free, Critically low");
}

TEST_F(MenuBarScreen, ReadsNegativeCapacitiesAsZero) {
    setFree(-5'000'000'000, -1);
    EXPECT_EQ(screen.availableText(), "0 kB");
    EXPECT_EQ(screen.totalText(), "free of 0 kB");
    EXPECT_EQ(screen.itemState().accessibilityValue, "Cairnfield: 0 kB free, Critically low");
}

TEST_F(MenuBarScreen, FollowsTheLimits) {
    setFree(20'000'000'000);
    const SignalCount changes(&screen, &MenuBarViewModel::changed);
    app.settings.warningAbsoluteBytes.set(15'000'000'000);
    QtApplication::processEvents();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(screen.levelText(), "Healthy");
}

TEST_F(MenuBarScreen, SumsUpTheWorktrees) {
    EXPECT_EQ(screen.reclaimableText(), "0 kB");
    EXPECT_EQ(screen.attentionText(), "0");
    state().worktrees.set({worktree(WorktreeSafety::cleanDisposable, 2'000'000'000),
                           worktree(WorktreeSafety::manualReview, 7'000'000'000),
                           worktree(WorktreeSafety::dirtyTrackedChanges, 1'000'000'000)});
    EXPECT_EQ(screen.reclaimableText(), "2 GB");
    EXPECT_EQ(screen.attentionText(), "2");
}

TEST_F(MenuBarScreen, HasARowForTheLargestFolderOnlyOnceOneIsSized) {
    EXPECT_FALSE(screen.showsFolder());
    WatchedFolder code = WatchedFolder::make(FilePath("/home/ada/code"));
    state().watchedFolders.set({code});
    EXPECT_FALSE(screen.showsFolder());
    WatchedFolder odd =
        WatchedFolder::make(FilePath("/home/ada/od\x1b"
                                     "d"));
    odd.lastKnownSizeBytes = 41'000'000'000;
    code.lastKnownSizeBytes = 12'000'000'000;
    state().watchedFolders.set({code, odd});
    EXPECT_TRUE(screen.showsFolder());
    EXPECT_EQ(screen.folderName(), QString::fromUtf8("od␛d")) << "what cannot be seen is made visible";
    EXPECT_EQ(screen.folderSizeText(), "41 GB");
}

TEST_F(MenuBarScreen, OffersTheSameActionsInItsMenuWithQuitApart) {
    EXPECT_THAT(titles(), ElementsAre("Scan now", "Review cleanup", "Open Cairnfield", "Resume monitoring",
                                      "", "Quit Cairnfield"));
    EXPECT_FALSE(screen.menu()[4].action);
    EXPECT_EQ(screen.menu()[0].symbolName, "arrow.clockwise");
}

TEST_F(MenuBarScreen, OffersUpdatesOnlyWhileACheckMayStart) {
    const SignalCount changes(&screen, &MenuBarViewModel::actionsChanged);
    updates.canCheck.set(true);
    QtApplication::processEvents();
    EXPECT_EQ(changes.count(), 1);
    EXPECT_THAT(titles(), ElementsAre("Scan now", "Review cleanup", "Open Cairnfield", "Check for updates…",
                                      "Resume monitoring", "", "Quit Cairnfield"));
    screen.perform(3);
    EXPECT_EQ(updates.checks, 1);
    updates.canCheck.set(false);
    QtApplication::processEvents();
    EXPECT_EQ(screen.actions()->rowCount(), 5);
}

TEST_F(MenuBarScreen, PausesAndResumesMonitoringAndKeepsIt) {
    app.model->startMonitoring();
    QtApplication::processEvents();
    EXPECT_EQ(titles()[3], "Pause monitoring");
    screen.perform(3);
    EXPECT_FALSE(state().isMonitoring.get());
    EXPECT_FALSE(app.settings.monitoringEnabled.get());
    QtApplication::processEvents();
    EXPECT_EQ(titles()[3], "Resume monitoring");
    screen.perform(3);
    EXPECT_TRUE(state().isMonitoring.get());
    EXPECT_TRUE(app.settings.monitoringEnabled.get());
}

TEST_F(MenuBarScreen, ScansTheVolumeTheFoldersAndTheWorktrees) {
    app.home.write("code/file", "content");
    app.run(app.model->addWatchedFolder(app.home.path().appending("code")));
    const int readings = app.volume.readings();
    state().worktreeRefreshError.set(std::nullopt);
    screen.perform(MenuBarAction::scanNow);
    ASSERT_TRUE(app.loop.runUntil([&] { return state().worktreeRefreshError.get().has_value(); }))
        << "git was not looked for, which the last of the three steps tells";
    EXPECT_EQ(app.volume.readings(), readings + 1);
    EXPECT_EQ(state().folderScanResults.get().size(), 1U);
}

TEST_F(MenuBarScreen, OpensTheOneWindowForAPersonAndLeavesItsSection) {
    const SignalCount leaving(&screen, &MenuBarViewModel::leftForWindow);
    screen.perform(MenuBarAction::reviewCleanup);
    EXPECT_EQ(app.application.all[0].timesForward, 0) << "a panel cannot become the main window";
    EXPECT_EQ(app.application.all[1].timesForward, 1);
    EXPECT_EQ(app.application.activations, 1);
    screen.perform(MenuBarAction::openCairnfield);
    EXPECT_EQ(app.application.all[1].timesForward, 2);
    EXPECT_EQ(leaving.count(), 2);
}

TEST_F(MenuBarScreen, ActivatesTheProgramEvenWithoutAWindow) {
    app.application.all.pop_back();
    screen.perform(MenuBarAction::openCairnfield);
    EXPECT_EQ(app.application.activations, 1);
    EXPECT_EQ(app.application.all[0].timesForward, 0);
}

TEST_F(MenuBarScreen, AsksForTheEnd) {
    const SignalCount quits(&screen, &MenuBarViewModel::quitRequested);
    screen.menu().back().action();
    EXPECT_EQ(quits.count(), 1);
    screen.perform(-1);
    screen.perform(99);
    EXPECT_EQ(quits.count(), 1);
}

TEST_F(MenuBarScreen, TellsOnceForManyChanges) {
    const SignalCount changes(&screen, &MenuBarViewModel::changed);
    for (int i = 1; i <= 50; ++i)
        state().storage.set(StorageSnapshot{.totalCapacity = 1000, .availableCapacity = i});
    QtApplication::processEvents();
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(MenuBarScreen, SaysWhatShouldBeKnownAboutItsFileAndNoOther) {
    EXPECT_EQ(screen.fileNotice(), "");
    state().storedFileNotices.set(
        {{"storage-history.json", "It is kept."}, {"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "It is kept.");
    state().storedFileNotices.set({{"other.json", "not shown here"}});
    screen.flush();
    EXPECT_EQ(screen.fileNotice(), "");
}

}  // namespace
}  // namespace cairnfield
