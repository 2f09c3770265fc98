// What is news is delivered or stays news: whatever is paused, added or not there yet.

#include "Shared/Errors/CairnfieldError.h"
#include "support/App/AppHarness.h"
#include "support/CountingMeasurer.h"
#include "support/FakeTreeMeasurer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t gigabyte = 1'000'000'000;

struct News : testing::Test {
    SettableWallClock measurerClock{std::chrono::system_clock::now()};
    CountingMeasurer measurer{measurerClock};
    SteppedClock deliveries;  ///< outlives the model, whose deliveries may wait for it
    AppHarness app{{.treeMeasurer = &measurer}};
    FilePath projects = app.home.makeDirectory("projects");

    News() { app.settings.notificationsEnabled.set(true); }

    const AppState& state() const { return app.model->state(); }
    WatchedFolder folder() const { return state().watchedFolders.get().at(0); }
    std::vector<std::string> told() const {
        std::vector<std::string> identifiers;
        for (const NotificationRequestPayload& payload : app.notifications.deliveries)
            identifiers.push_back(payload.identifier);
        return identifiers;
    }
    std::string threshold() const { return "folder.threshold." + folder().id.text(); }

    /// A watched folder that was small when it was added and is over its limit by the next scan.
    void watchAFolderThatGrew() {
        app.run(app.model->start());
        app.run(app.model->addWatchedFolder(projects));
        WatchedFolder limited = folder();
        limited.criticalBytes = 2000;
        limited.growthAlertEnabled = false;
        app.run(app.model->updateWatchedFolder(limited));
        measurer.bytes = 5000;
        app.wallClock.advance(std::chrono::hours(7));
    }
    void read(std::int64_t availableGigabytes) {
        app.volume.set(availableGigabytes * gigabyte, 500 * gigabyte);
        app.run(app.model->refreshStorage());
    }
    void takeTheServiceAway() { app.notifications.authorization = NotificationAuthorization::denied; }
    void bringTheService() {
        app.notifications.authorization = NotificationAuthorization::authorized;
        app.notificationCenter.appear();
        app.run(app.model->refreshIntegrations());  // a turn of the loop
    }
};

TEST_F(News, OfAFolderIsDeliveredThoughMonitoringIsPausedDuringTheReconciliation) {
    watchAFolderThatGrew();
    app.notifications.slowness = &deliveries;
    app.waitUntil([&] { return app.continuousClock.sleepers() == 2; });
    app.continuousClock.advance(std::chrono::hours(6));
    app.waitUntil([&] { return deliveries.sleepers() == 1; });
    app.model->pauseMonitoring();
    app.waitUntil([&] { return app.continuousClock.sleepers() == 0; });
    deliveries.advance(std::chrono::minutes(1));
    app.waitUntil([&] { return state().scanningFolderIDs.get().empty(); });
    EXPECT_THAT(told(), ElementsAre(threshold()));
    EXPECT_EQ(folder().lastKnownSizeBytes, 5000);
}

TEST_F(News, OfAFolderIsDeliveredThoughAnotherIsAddedWhileABatchIsLookedAt) {
    watchAFolderThatGrew();
    app.settings.rescanIntervalMinutes.set(0);
    app.notifications.slowness = &deliveries;
    app.waitUntil([&] {
        return app.continuousClock.sleepers() == 2 &&
               app.fileEventStreams.roots() == std::vector<FilePath>{projects};
    });
    app.fileEventStreams.report({projects});
    app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
    app.continuousClock.advance(std::chrono::seconds(10));
    app.waitUntil([&] { return deliveries.sleepers() == 1; });
    app.run(app.model->addWatchedFolder(app.home.makeDirectory("other")));
    app.waitUntil([&] { return app.fileEventStreams.roots().size() == 2; });
    deliveries.advance(std::chrono::minutes(1));
    app.waitUntil([&] { return state().scanningFolderIDs.get().empty(); });
    EXPECT_THAT(told(), ElementsAre(threshold()));
}

TEST_F(News, OfTheVolumeIsDeliveredThoughWhoeverReadItIsCancelled) {
    app.notifications.slowness = &deliveries;
    app.volume.set(15 * gigabyte, 500 * gigabyte);
    const TaskHandle<> reading = spawn(app.loop, app.model->refreshStorage());
    app.waitUntil([&] { return deliveries.sleepers() == 1; });
    reading.cancel();
    deliveries.advance(std::chrono::minutes(1));
    app.waitUntil([&] { return reading.done(); });
    EXPECT_THAT(told(), ElementsAre("storage.critical"));
}

TEST_F(News, ThatNoServiceWasThereForIsToldOnceOneAppears) {
    takeTheServiceAway();
    read(15);
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
    EXPECT_THAT(told(), IsEmpty());
    bringTheService();
    EXPECT_THAT(told(), ElementsAre("storage.critical"));
    EXPECT_FALSE(state().notificationAuthorizationDenied.get());
    EXPECT_EQ(state().lastNotificationError.get(), std::nullopt);
    bringTheService();
    EXPECT_EQ(told().size(), 1U) << "the next service is told nothing a second time";
}

TEST_F(News, IsTriedAgainOnlyOnce) {
    takeTheServiceAway();
    read(15);
    app.notificationCenter.appear();  // and is gone again before it could be asked
    app.run(app.model->refreshIntegrations());
    EXPECT_EQ(std::ranges::count(app.notifications.calls, "deliver"), 2);
    bringTheService();
    EXPECT_EQ(std::ranges::count(app.notifications.calls, "deliver"), 2);
}

TEST_F(News, ThatIsNoLongerTrueWhenTheServiceComesIsNotTold) {
    takeTheServiceAway();
    read(40);
    read(300);
    bringTheService();
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(News, ThatGotWorseMeanwhileIsToldAsItIs) {
    takeTheServiceAway();
    read(40);
    read(15);
    bringTheService();
    EXPECT_THAT(told(), ElementsAre("storage.critical"));
}

TEST_F(News, IsNotToldByAServiceThatComesAfterNotificationsWereSwitchedOff) {
    takeTheServiceAway();
    read(15);
    app.settings.notificationsEnabled.set(false);
    bringTheService();
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(News, OfAFolderThatNoServiceWasThereForIsToldWhileTheFolderIsLarge) {
    watchAFolderThatGrew();
    takeTheServiceAway();
    app.run(app.model->scan(folder(), true));
    EXPECT_THAT(told(), IsEmpty());
    bringTheService();
    EXPECT_THAT(told(), ElementsAre(threshold()));

    takeTheServiceAway();
    app.run(app.model->scan(folder(), true));
    measurer.bytes = 10;
    app.run(app.model->scan(folder(), true));
    bringTheService();
    EXPECT_EQ(told().size(), 1U) << "it is small again";
}

TEST_F(News, ThatTheServiceItselfRefusedIsNotTriedAgain) {
    app.notifications.deliveryFailure = std::make_exception_ptr(NotificationRefused("no room"));
    read(15);
    app.notifications.deliveryFailure = nullptr;
    bringTheService();
    EXPECT_THAT(told(), IsEmpty());
}

TEST_F(News, OfAServiceThatWentWhileItWasSpokenToIsTriedAgain) {
    app.notifications.deliveryFailure = std::make_exception_ptr(NotificationServiceMissing("gone"));
    read(15);
    app.notifications.deliveryFailure = nullptr;
    bringTheService();
    EXPECT_THAT(told(), ElementsAre("storage.critical"));
}

TEST_F(News, IsTriedAgainAtOnceWhenTheServiceCameBesideTheTry) {
    takeTheServiceAway();
    app.notifications.slowness = &deliveries;
    app.volume.set(15 * gigabyte, 500 * gigabyte);
    const TaskHandle<> reading = spawn(app.loop, app.model->refreshStorage());
    app.waitUntil([&] { return deliveries.sleepers() == 1; });
    app.notificationCenter.appear();  // it tells of itself before the try has failed
    deliveries.advance(std::chrono::minutes(1));
    app.waitUntil([&] { return deliveries.sleepers() == 1; });
    app.notifications.authorization = NotificationAuthorization::authorized;
    deliveries.advance(std::chrono::minutes(1));
    app.waitUntil([&] { return reading.done(); });
    EXPECT_THAT(told(), ElementsAre("storage.critical"));
}

struct Quitting : testing::Test {
    SettableWallClock measurerClock{std::chrono::system_clock::now()};
    FakeTreeMeasurer measurer{measurerClock};
    AppHarness app{{.treeMeasurer = &measurer}};
    FilePath projects = app.home.makeDirectory("projects");

    /// Monitoring, and a walk that an event has brought about and that does not end by itself.
    void holdAWalkOfAnEvent() {
        app.settings.rescanIntervalMinutes.set(0);
        app.run(app.model->start());
        measurer.finish(projects, 1000);
        app.run(app.model->addWatchedFolder(projects));
        app.waitUntil([&] {
            return app.continuousClock.sleepers() == 2 &&
                   app.fileEventStreams.roots() == std::vector<FilePath>{projects};
        });
        app.fileEventStreams.report({projects});
        app.waitUntil([&] { return app.continuousClock.sleepers() == 3; });
        app.continuousClock.advance(std::chrono::seconds(10));
        app.waitUntil([&] { return measurer.started().size() == 2; });
    }
};

TEST_F(Quitting, EndsTheWalkThatAnEventBroughtAbout) {
    holdAWalkOfAnEvent();
    const TaskHandle<> ending = spawn(app.loop, app.model->stop());
    app.waitUntil([&] { return ending.done(); });
    EXPECT_EQ(measurer.running(), 0U);
    measurer.finish(projects, 1000);  // where the walk was waited for, the test can go on
    app.waitUntil([&] { return ending.done(); });
}

TEST_F(Quitting, WhileAWatchIsBeingReplacedDoesNotWaitForItsWalk) {
    holdAWalkOfAnEvent();
    const FilePath other = app.home.makeDirectory("other");
    measurer.finish(other, 1);
    app.run(app.model->addWatchedFolder(other));
    EXPECT_EQ(measurer.running(), 1U) << "the walk of the event goes on beside";
    const TaskHandle<> ending = spawn(app.loop, app.model->stop());
    app.waitUntil([&] { return ending.done(); });
    EXPECT_EQ(measurer.running(), 0U);
}

}  // namespace
}  // namespace cairnfield
