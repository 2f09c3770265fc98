// Reading the volume: start, the poll on a clock that the test steps, pausing, history, and what the status
// item is told.

#include "support/App/AppHarness.h"

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

constexpr std::int64_t gigabyte = 1'000'000'000;

struct StorageWatch : testing::Test {
    AppHarness app;

    const AppState& state() const { return app.model->state(); }
    void waitForSleepers(std::size_t count) {
        app.waitUntil([&] { return app.continuousClock.sleepers() == count; });
    }
    void waitForReadings(int count) {
        app.waitUntil([&] { return app.volume.readings() == count; });
    }
};

TEST_F(StorageWatch, TheFirstReadingComesWithTheStart) {
    app.run(app.model->start());
    ASSERT_TRUE(state().storage.get());
    EXPECT_EQ(state().storage.get()->availableCapacity, 300 * gigabyte);
    EXPECT_EQ(state().storage.get()->volumeURL, app.home.path());
    EXPECT_EQ(state().storageHistory.get().size(), 1U);
    EXPECT_EQ(app.volume.readings(), 1);
}

TEST_F(StorageWatch, ReadsAgainEveryFiveMinutesAndNotBefore) {
    app.run(app.model->start());
    waitForSleepers(2);
    app.continuousClock.advance(std::chrono::seconds(299));
    EXPECT_EQ(app.volume.readings(), 1);
    app.continuousClock.advance(std::chrono::seconds(1));
    waitForReadings(2);
    waitForSleepers(2);
    app.continuousClock.advance(std::chrono::seconds(300));
    waitForReadings(3);
}

TEST_F(StorageWatch, PollsWithoutAnyFolder) {
    app.run(app.model->start());
    waitForSleepers(2);
    EXPECT_EQ(app.fileEventStreams.running(), 0U);
    app.continuousClock.advance(std::chrono::seconds(300));
    waitForReadings(2);
}

TEST_F(StorageWatch, PausingTakesExactlyOneMoreReading) {
    app.run(app.model->start());
    waitForSleepers(2);
    app.model->pauseMonitoring();
    waitForSleepers(0);
    waitForReadings(2);
    app.continuousClock.advance(std::chrono::hours(1));
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(app.volume.readings(), 2);
}

TEST_F(StorageWatch, TwoQuickStartsMakeOnePollAndOneReconciliation) {
    app.model->startMonitoring();
    app.model->startMonitoring();
    waitForSleepers(2);
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(app.continuousClock.sleepers(), 2U);
}

TEST_F(StorageWatch, ASecondStartDuringMonitoringDoesNothing) {
    app.run(app.model->start());
    app.run(app.model->start());
    EXPECT_EQ(app.volume.readings(), 1);
}

TEST_F(StorageWatch, SwitchingStoresTheSettingToo) {
    app.run(app.model->start());
    app.model->setMonitoring(false);
    EXPECT_FALSE(app.settings.monitoringEnabled.get());
    EXPECT_FALSE(state().isMonitoring.get());
    app.model->setMonitoring(true);
    EXPECT_TRUE(app.settings.monitoringEnabled.get());
    EXPECT_TRUE(state().isMonitoring.get());
}

TEST_F(StorageWatch, TheSettingAloneStartsNothing) {
    app.settings.monitoringEnabled.set(false);
    app.run(app.model->start());
    app.settings.monitoringEnabled.set(true);
    app.run(app.model->refreshIntegrations());
    EXPECT_FALSE(state().isMonitoring.get());
    EXPECT_EQ(app.continuousClock.sleepers(), 0U);
}

TEST_F(StorageWatch, AFailedReadingKeepsTheLastGoodOne) {
    app.run(app.model->refreshStorage());
    const std::vector<StorageHistorySample> history = state().storageHistory.get();
    app.volume.fail(std::errc::io_error);
    app.run(app.model->refreshStorage());
    ASSERT_TRUE(state().lastStorageError.get());
    EXPECT_NE(state().lastStorageError.get()->find("nput/output error"), std::string::npos);
    EXPECT_EQ(state().storage.get()->availableCapacity, 300 * gigabyte);
    EXPECT_EQ(state().storageHistory.get(), history);

    app.volume.set(200 * gigabyte, 500 * gigabyte);
    app.run(app.model->refreshStorage());
    EXPECT_FALSE(state().lastStorageError.get());
    EXPECT_EQ(state().storage.get()->availableCapacity, 200 * gigabyte);
}

TEST_F(StorageWatch, AFailedReadingDoesNotEndThePoll) {
    app.run(app.model->start());
    app.volume.fail(std::errc::io_error);
    for (int reading = 2; reading < 5; ++reading) {
        waitForSleepers(2);
        app.continuousClock.advance(std::chrono::seconds(300));
        waitForReadings(reading);
    }
    EXPECT_TRUE(state().isMonitoring.get());
}

TEST_F(StorageWatch, NoFailureOfAReadingEndsThePoll) {
    app.settings.notificationsEnabled.set(true);
    app.notifications.authorizationFailure = std::make_exception_ptr(std::runtime_error("out of order"));
    app.run(app.model->start());
    app.volume.set(gigabyte, 500 * gigabyte);
    for (int reading = 2; reading < 5; ++reading) {
        waitForSleepers(2);
        app.continuousClock.advance(std::chrono::seconds(300));
        waitForReadings(reading);
    }
    EXPECT_EQ(state().incident.get().activeLevel, StorageLevel::critical);
}

TEST_F(StorageWatch, HistoryOutlivesTheProgram) {
    app.run(app.model->refreshStorage());
    app.wallClock.advance(std::chrono::minutes(5));
    app.volume.set(250 * gigabyte, 500 * gigabyte);
    app.run(app.model->refreshStorage());
    EXPECT_EQ(app.model->freeSpaceDelta(), -50 * gigabyte);
    app.restart();
    app.run(app.model->start());
    EXPECT_EQ(state().storageHistory.get().size(), 2U);  // the start's own reading replaced the last one
    EXPECT_EQ(app.model->freeSpaceSeries().size(), 2U);
}

TEST_F(StorageWatch, AGarbledHistoryCostsOnlyItself) {
    app.home.write("data/Cairnfield/storage-history.json", "{\"samples\": [{");
    const FilePath projects = app.home.makeDirectory("projects");
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->start());
    EXPECT_EQ(state().storageHistory.get().size(), 1U);
    EXPECT_EQ(state().watchedFolders.get().size(), 1U);
}

TEST_F(StorageWatch, AClockThatJumpsByAYearBreaksNeitherLoopNorHistory) {
    app.run(app.model->start());
    const std::chrono::hours year(24 * 365);
    int readings = 1;
    for (const std::chrono::hours jump : {year, -2 * year, 2 * year}) {
        waitForSleepers(2);
        app.wallClock.advance(jump);
        app.continuousClock.advance(std::chrono::seconds(300));
        waitForReadings(++readings);
        app.waitUntil([&] { return state().storage.get()->measuredAt == app.wallClock.now(); });
    }
    EXPECT_FALSE(state().storageHistory.get().empty());
    EXPECT_FALSE(state().lastStorageError.get());
}

TEST_F(StorageWatch, TheStatusItemSaysWhatThereIsToSay) {
    EXPECT_EQ(app.model->menuBarSymbolName(), "internaldrive");
    EXPECT_EQ(app.model->menuBarAccessibilityValue(), "Cairnfield: checking storage");
    app.run(app.model->refreshStorage());
    EXPECT_EQ(app.model->menuBarAccessibilityValue(), "Cairnfield: 300 GB free, Healthy");
    app.volume.set(30 * gigabyte, 500 * gigabyte);
    app.run(app.model->refreshStorage());
    EXPECT_EQ(app.model->menuBarSymbolName(), "exclamationmark.triangle");
    EXPECT_EQ(app.model->menuBarAccessibilityValue(), "Cairnfield: 30 GB free, Low space");
    app.volume.set(-5, 500 * gigabyte);
    app.run(app.model->refreshStorage());
    EXPECT_EQ(app.model->menuBarSymbolName(), "exclamationmark.octagon");
    EXPECT_EQ(app.model->menuBarAccessibilityValue(), "Cairnfield: 0 kB free, Critically low");
}

TEST_F(StorageWatch, ScanNowReadsTheVolumeThenTheFoldersThenTheWorktrees) {
    app.run(app.model->addWatchedFolder(app.home.makeDirectory("projects")));
    app.run(app.model->refreshIntegrations());
    const Date before = *state().watchedFolders.get().at(0).lastScanAt;
    app.wallClock.advance(std::chrono::hours(1));
    app.run(app.model->scanNow());
    EXPECT_EQ(app.volume.readings(), 1);
    EXPECT_GT(*state().watchedFolders.get().at(0).lastScanAt, before);
    EXPECT_TRUE(state().lastWorktreeRefresh.get());
}

}  // namespace
}  // namespace cairnfield
