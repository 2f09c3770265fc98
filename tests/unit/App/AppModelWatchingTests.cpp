// File events: which folders are watched, and which of them a batch of changes rescans.

#include "support/App/AppHarness.h"
#include "support/CountingMeasurer.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

using Paths = std::vector<FilePath>;

struct Watching : testing::Test {
    SettableWallClock measurerClock{std::chrono::system_clock::now()};
    CountingMeasurer measurer{measurerClock};
    AppHarness app{{.treeMeasurer = &measurer}};
    FilePath projects = app.home.makeDirectory("projects");
    FilePath sibling = app.home.makeDirectory("projects-old");
    FilePath last = app.home.path().appending("last");

    const AppState& state() const { return app.model->state(); }
    void waitForStreams(std::size_t count) {
        app.waitUntil([&] { return app.fileEventStreams.running() == count; });
    }
    void waitForRoots(const Paths& roots) {
        app.waitUntil([&] { return app.fileEventStreams.roots() == roots; });
    }
    /// Monitoring with this one folder, scanned as it was added.
    void watch(const FilePath& folder) {
        app.run(app.model->start());
        app.run(app.model->addWatchedFolder(folder));
        waitForRoots({folder});
        measurer.walks = 0;
    }
    /// One batch of events, and the ten seconds until it is looked at. The loops sleep beside it.
    void change(const FilePath& path) {
        app.waitUntil([&] { return app.continuousClock.sleepers() == 2; });
        app.fileEventStreams.report({path});
        app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
        app.continuousClock.advance(std::chrono::seconds(10));
    }
    /// Watches one more folder behind those that are watched. It was never scanned, so it is always due.
    void watchLast() {
        app.run(app.model->addWatchedFolder(last));
        std::filesystem::create_directory(last.bytes());
        app.waitUntil(
            [&] { return app.fileEventStreams.roots().size() == state().watchedFolders.get().size(); });
        measurer.walks = 0;
    }
    /// A batch that also touches the last folder. Folders are looked at in their order, so when that one has
    /// been scanned, all others have been scanned or passed over.
    int walksAfterAChangeOf(const FilePath& path) {
        app.waitUntil([&] { return app.continuousClock.sleepers() == 2; });
        app.fileEventStreams.report({path, last.appending("file")});
        app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
        app.continuousClock.advance(std::chrono::seconds(10));
        app.waitUntil([&] { return state().watchedFolders.get().back().lastScanAt.has_value(); });
        return measurer.walks - 1;
    }
};

TEST_F(Watching, StartsOverTheEnabledFoldersInTheirOrder) {
    app.run(app.model->addWatchedFolder(sibling));
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->start());
    waitForRoots({sibling, projects});
    app.waitUntil([&] { return app.fileEventStreams.latency() == std::chrono::seconds(3); });
}

TEST_F(Watching, FollowsTheFoldersThatAreAddedAndRemoved) {
    app.run(app.model->start());
    EXPECT_EQ(app.fileEventStreams.running(), 0U);
    app.run(app.model->addWatchedFolder(projects));
    waitForRoots({projects});
    app.run(app.model->addWatchedFolder(sibling));
    waitForRoots({projects, sibling});
    app.run(app.model->removeWatchedFolder(state().watchedFolders.get().at(0)));
    waitForRoots({sibling});
    app.run(app.model->removeWatchedFolder(state().watchedFolders.get().at(0)));
    waitForStreams(0);
}

TEST_F(Watching, IsOffWhileMonitoringIsOff) {
    app.settings.monitoringEnabled.set(false);
    app.run(app.model->start());
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(app.fileEventStreams.running(), 0U);
    app.model->setMonitoring(true);
    waitForRoots({projects});
    app.model->setMonitoring(false);
    waitForStreams(0);
}

TEST_F(Watching, ADisabledFolderIsNotWatched) {
    app.run(app.model->addWatchedFolder(projects));
    app.run(app.model->addWatchedFolder(sibling));
    WatchedFolder folder = state().watchedFolders.get().at(0);
    folder.isEnabled = false;
    app.run(app.model->updateWatchedFolder(folder));
    app.run(app.model->start());
    waitForRoots({sibling});
}

TEST_F(Watching, AStreamThatCannotBeMadeLeavesTheRestRunning) {
    app.fileEventStreams.refuses = true;
    app.run(app.model->start());
    app.run(app.model->addWatchedFolder(projects));
    EXPECT_EQ(state().watchedFolders.get().at(0).lastKnownSizeBytes, 1000);
    EXPECT_TRUE(state().isMonitoring.get());
}

TEST_F(Watching, AChangeRescansTheFolderOnceTheIntervalIsOver) {
    watch(projects);
    app.wallClock.advance(std::chrono::minutes(app.settings.rescanIntervalMinutes.get()));
    change(projects.appending("repository"));
    app.waitUntil([&] { return measurer.walks == 1; });
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Watching, WithinTheIntervalOnlyTheCacheEntryGoes) {
    watch(projects);
    watchLast();
    app.wallClock.advance(std::chrono::minutes(app.settings.rescanIntervalMinutes.get()) -
                          std::chrono::seconds(1));
    app.run(app.model->directorySize(projects, true));
    EXPECT_EQ(measurer.walks, 0) << "the cache should still have known the size";
    EXPECT_EQ(walksAfterAChangeOf(projects), 0);
    measurer.walks = 0;
    app.run(app.model->directorySize(projects, true));
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Watching, AnIntervalOfZeroAlwaysRescans) {
    watch(projects);
    app.settings.rescanIntervalMinutes.set(0);
    change(projects);
    app.waitUntil([&] { return measurer.walks == 1 && state().scanningFolderIDs.get().empty(); });
    change(projects);
    app.waitUntil([&] { return measurer.walks == 2; });
}

TEST_F(Watching, AChangeInASiblingThatIsNamedAlikeCounts) {
    watch(projects);
    app.settings.rescanIntervalMinutes.set(0);
    change(sibling.appending("file"));
    app.waitUntil([&] { return measurer.walks == 1; });
}

TEST_F(Watching, AChangeElsewhereOrAboveTheFolderDoesNot) {
    watch(projects);
    watchLast();
    app.settings.rescanIntervalMinutes.set(0);
    EXPECT_EQ(walksAfterAChangeOf(app.home.path()), 0);
}

TEST_F(Watching, ASnoozedFolderIsLeftAlone) {
    watch(projects);
    watchLast();
    app.settings.rescanIntervalMinutes.set(0);
    WatchedFolder folder = state().watchedFolders.get().at(0);
    folder.snoozedUntil = app.wallClock.now() + std::chrono::hours(1);
    app.run(app.model->updateWatchedFolder(folder));
    EXPECT_EQ(walksAfterAChangeOf(projects), 0);
}

TEST_F(Watching, ADisabledFolderIsLeftAlone) {
    watch(projects);
    watchLast();
    app.settings.rescanIntervalMinutes.set(0);
    WatchedFolder folder = state().watchedFolders.get().at(0);
    folder.isEnabled = false;
    app.run(app.model->updateWatchedFolder(folder));
    EXPECT_EQ(walksAfterAChangeOf(projects), 0);
}

TEST_F(Watching, AFolderWhoseScansFailedIsScannedAtTheFirstEvent) {
    app.run(app.model->start());
    const FilePath later = app.home.path().appending("later");
    app.run(app.model->addWatchedFolder(later));
    waitForRoots({later});
    EXPECT_FALSE(state().watchedFolders.get().at(0).lastScanAt);
    measurer.walks = 0;
    std::filesystem::create_directory(later.bytes());
    change(later);
    app.waitUntil([&] { return measurer.walks == 1; });
}

TEST_F(Watching, ABatchIsLookedAtTenSecondsAfterItsFirstEventAndScansAFolderOnce) {
    watch(projects);
    watchLast();
    app.settings.rescanIntervalMinutes.set(0);
    app.waitUntil([&] { return app.continuousClock.sleepers() == 2; });
    app.fileEventStreams.report({projects.appending("a"), projects.appending("b"), last.appending("c")});
    app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
    EXPECT_EQ(app.continuousClock.nextWakeIn(), std::chrono::seconds(10));
    app.continuousClock.advance(std::chrono::seconds(10));
    app.waitUntil([&] { return state().watchedFolders.get().back().lastScanAt.has_value(); });
    EXPECT_EQ(measurer.walks, 2) << "one for each of the two folders";
}

TEST_F(Watching, EndsWithTheProgramEvenWithABatchWaiting) {
    watch(projects);
    app.waitUntil([&] { return app.continuousClock.sleepers() == 2; });
    app.fileEventStreams.report({projects});
    app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
    app.restart();
    EXPECT_EQ(app.fileEventStreams.running(), 0U);
    EXPECT_EQ(app.continuousClock.sleepers(), 0U);
}

}  // namespace
}  // namespace cairnfield
