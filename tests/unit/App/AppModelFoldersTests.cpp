// What the model does with watched folders: adding, removing, scanning one and scanning all.

#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/App/AppHarness.h"
#include "support/CountingMeasurer.h"
#include "support/FakeTreeMeasurer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace cairnfield {
namespace {

struct Folders : testing::Test {
    SettableWallClock measurerClock{std::chrono::system_clock::now()};
    CountingMeasurer measurer{measurerClock};
    AppHarness app{{.treeMeasurer = &measurer}};
    FilePath projects = app.home.makeDirectory("projects");

    [[nodiscard]] WatchedFolder only() const {
        EXPECT_EQ(app.model->state().watchedFolders.get().size(), 1U);
        return app.model->state().watchedFolders.get().at(0);
    }
    void add(const FilePath& folder) { app.run(app.model->addWatchedFolder(folder)); }
    /// Through the store, as a later version's screen would.
    void change(WatchedFolder folder) { app.run(app.model->updateWatchedFolder(std::move(folder))); }
};

TEST_F(Folders, AddingOneListsItAndScansItAtOnce) {
    add(projects);
    EXPECT_EQ(only().path, projects);
    EXPECT_EQ(only().displayName, "projects");
    EXPECT_EQ(only().lastKnownSizeBytes, 1000);
    EXPECT_EQ(app.model->state().folderScanResults.get().at(only().id).totalBytes, 1000);
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Folders, AddingOneThatExistsRescansItAndAddsNothing) {
    add(projects);
    const UUID id = only().id;
    measurer.bytes = 3000;
    add(FilePath(projects.bytes() + "/./"));
    EXPECT_EQ(only().id, id);
    EXPECT_EQ(only().lastKnownSizeBytes, 3000);
    EXPECT_EQ(only().previousSizeBytes, 1000);
    EXPECT_EQ(measurer.walks, 2);
}

TEST_F(Folders, OneThatCannotBeStoredIsReportedAndNotListed) {
    app.home.write("data", "a file where the folder should be");
    add(projects);
    EXPECT_TRUE(app.model->state().watchedFolders.get().empty());
    EXPECT_TRUE(app.model->state().folderError.get().has_value());
    EXPECT_EQ(measurer.walks, 0);
}

TEST_F(Folders, TheReportGoesWithTheNextSuccess) {
    const FilePath obstacle = app.home.write("data", "in the way");
    add(projects);
    std::filesystem::remove(obstacle.bytes());
    add(projects);
    EXPECT_FALSE(app.model->state().folderError.get().has_value());
    EXPECT_EQ(only().path, projects);
}

TEST_F(Folders, AScanOfAGoneDirectorySaysSoAndKeepsTheKnownSize) {
    add(projects);
    std::filesystem::remove(projects.bytes());
    app.run(app.model->scan(only(), true));
    EXPECT_EQ(only().lastKnownSizeBytes, 1000);
    EXPECT_EQ(only().lastScanError,
              CairnfieldError(CairnfieldError::PathMissing{projects.bytes()}).errorDescription());
    EXPECT_TRUE(app.model->state().folderScanResults.get().contains(only().id));
    EXPECT_TRUE(app.model->state().scanningFolderIDs.get().empty());
}

TEST_F(Folders, UnreadableItemsAreCountedAndTheSizeStillCounts) {
    measurer.unreadable = 2;
    add(projects);
    EXPECT_EQ(only().lastScanError, "2 item(s) could not be read.");
    EXPECT_EQ(only().lastKnownSizeBytes, 1000);
    measurer.unreadable = 1;
    app.run(app.model->scan(only(), true));
    EXPECT_EQ(only().lastScanError, "1 item(s) could not be read.");
    measurer.unreadable = 0;
    app.run(app.model->scan(only(), true));
    EXPECT_EQ(only().lastScanError, std::nullopt);
}

TEST(FolderUnderScan, IsNotScannedASecondTime) {
    SettableWallClock clock{std::chrono::system_clock::now()};
    FakeTreeMeasurer walks{clock};
    AppHarness app{{.treeMeasurer = &walks}};
    const FilePath projects = app.home.makeDirectory("projects");
    walks.finish(projects, 1000);
    app.run(app.model->addWatchedFolder(projects));
    const WatchedFolder folder = app.model->state().watchedFolders.get().at(0);

    const TaskHandle<> first = spawn(app.loop, app.model->scan(folder, true));
    app.waitUntil([&] { return walks.running() == 1; });
    const TaskHandle<> second = spawn(app.loop, app.model->scan(folder, true));
    app.waitUntil([&] { return second.done() || walks.running() == 2; });
    EXPECT_TRUE(second.done());
    EXPECT_EQ(walks.started().size(), 2U) << "one for adding and one for the first scan";
    walks.finish(projects, 2000);
    walks.finish(projects, 2000);
    app.waitUntil([&] { return first.done() && second.done(); });
}

TEST_F(Folders, AFolderIsMarkedWhileItIsScanned) {
    std::vector<std::size_t> seen;
    const Subscription subscription = app.model->state().scanningFolderIDs.observe(
        [&] { seen.push_back(app.model->state().scanningFolderIDs.get().size()); });
    add(projects);
    EXPECT_EQ(seen, (std::vector<std::size_t>{1, 0}));
}

TEST_F(Folders, WithoutForceTheCacheAnswers) {
    add(projects);
    app.run(app.model->scan(only(), false));
    EXPECT_EQ(measurer.walks, 1);
    app.run(app.model->scan(only(), true));
    EXPECT_EQ(measurer.walks, 2);
}

TEST_F(Folders, ScanningAllPassesOverDisabledAndSnoozedOnes) {
    add(projects);
    add(app.home.makeDirectory("disabled"));
    add(app.home.makeDirectory("snoozed"));
    std::vector<WatchedFolder> folders = app.model->state().watchedFolders.get();
    folders[1].isEnabled = false;
    folders[2].snoozedUntil = app.wallClock.now() + std::chrono::hours(1);
    change(folders[1]);
    change(folders[2]);
    measurer.walks = 0;
    app.run(app.model->scanAllFolders(true));
    EXPECT_EQ(measurer.walks, 1);
}

TEST_F(Folders, ASnoozedFolderIsStillScannedByHand) {
    add(projects);
    WatchedFolder folder = only();
    folder.snoozedUntil = app.wallClock.now() + std::chrono::hours(1);
    change(folder);
    app.run(app.model->scan(only(), true));
    EXPECT_EQ(measurer.walks, 2);
}

TEST_F(Folders, RemovingOneForgetsItsScan) {
    add(projects);
    app.run(app.model->removeWatchedFolder(only()));
    EXPECT_TRUE(app.model->state().watchedFolders.get().empty());
    EXPECT_TRUE(app.model->state().folderScanResults.get().empty());
}

TEST_F(Folders, ARemovalThatCannotBeStoredKeepsTheFolderListedAndSaysWhy) {
    add(projects);
    // The folder of the stored files becomes a file, so nothing can be written any more.
    std::filesystem::remove_all(app.home.path().appending("data").bytes());
    app.home.write("data", "in the way");
    app.run(app.model->removeWatchedFolder(only()));
    EXPECT_EQ(only().path, projects);
    EXPECT_TRUE(app.model->state().folderScanResults.get().empty());
    EXPECT_TRUE(app.model->state().folderError.get().has_value());
}

TEST_F(Folders, TheLargestIsTheFirstOfEqualsAndNeedsASize) {
    EXPECT_EQ(app.model->largestWatchedFolder(), std::nullopt);
    add(projects);
    add(app.home.makeDirectory("equal"));
    add(app.home.path().appending("missing"));
    ASSERT_EQ(app.model->state().watchedFolders.get().size(), 3U);
    EXPECT_EQ(app.model->state().watchedFolders.get()[2].lastKnownSizeBytes, std::nullopt);
    EXPECT_EQ(app.model->largestWatchedFolder()->path, projects);
    measurer.bytes = 5000;
    app.run(app.model->scan(app.model->state().watchedFolders.get()[1], true));
    EXPECT_EQ(app.model->largestWatchedFolder()->displayName, "equal");
}

TEST_F(Folders, WhatWasAddedIsThereAfterARestart) {
    add(projects);
    app.settings.monitoringEnabled.set(false);
    app.restart();
    EXPECT_TRUE(app.model->state().watchedFolders.get().empty());
    app.run(app.model->start());
    EXPECT_EQ(only().path, projects);
    EXPECT_FALSE(app.model->state().isMonitoring.get());
}

}  // namespace
}  // namespace cairnfield
