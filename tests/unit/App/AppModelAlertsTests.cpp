// What is news, what is told of it, and what the person's answers do.

#include "Shared/Errors/CairnfieldError.h"
#include "support/App/AppHarness.h"
#include "support/CountingMeasurer.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace cairnfield {
namespace {

constexpr std::int64_t gigabyte = 1'000'000'000;
using Calls = std::vector<std::string>;

struct StorageAlerts : testing::Test {
    AppHarness app;

    StorageAlerts() { app.settings.notificationsEnabled.set(true); }

    const AppState& state() const { return app.model->state(); }
    void read(std::int64_t availableGigabytes) {
        app.volume.set(availableGigabytes * gigabyte, 500 * gigabyte);
        app.run(app.model->refreshStorage());
    }
    const std::vector<NotificationRequestPayload>& deliveries() const { return app.notifications.deliveries; }
};

TEST_F(StorageAlerts, OneIncidentIsToldOnceAndOnceMoreWhenItGetsWorse) {
    for (const std::int64_t free : {300, 40, 39, 15, 14, 16, 13}) read(free);
    ASSERT_EQ(deliveries().size(), 2U);
    EXPECT_EQ(deliveries()[0].title, "Storage running low");
    EXPECT_EQ(deliveries()[0].body, "40 GB free on Home. 0 kB looks reclaimable.");
    EXPECT_EQ(deliveries()[0].identifier, "storage.warning");
    EXPECT_EQ(deliveries()[1].title, "Storage critically low");
    EXPECT_EQ(deliveries()[1].identifier, "storage.critical");
    EXPECT_TRUE(deliveries()[1].userInfo.empty());
    EXPECT_FALSE(deliveries()[1].delay);
}

TEST_F(StorageAlerts, WithNotificationsOffTheIncidentStillMovesAndIsNotToldLater) {
    app.settings.notificationsEnabled.set(false);
    read(15);
    EXPECT_EQ(state().incident.get().activeLevel, StorageLevel::critical);
    app.settings.notificationsEnabled.set(true);
    read(15);
    EXPECT_TRUE(deliveries().empty());
}

TEST_F(StorageAlerts, AFailedDeliveryIsPublishedAndNotTriedAgain) {
    app.notifications.authorization = NotificationAuthorization::denied;
    read(15);
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
    const CairnfieldError denied(CairnfieldError::NotificationPermissionDenied{});
    EXPECT_EQ(state().lastNotificationError.get(), denied.errorDescription());

    app.notifications.authorization = NotificationAuthorization::authorized;
    read(15);
    EXPECT_TRUE(deliveries().empty());
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
}

TEST_F(StorageAlerts, AGoodDeliveryClearsAnEarlierFailure) {
    app.notifications.authorization = NotificationAuthorization::denied;
    read(40);
    app.notifications.authorization = NotificationAuthorization::provisional;
    read(15);
    EXPECT_EQ(deliveries().size(), 1U);
    EXPECT_FALSE(state().notificationAuthorizationDenied.get());
    EXPECT_FALSE(state().lastNotificationError.get());
}

TEST_F(StorageAlerts, AnyFailureOfTheDesktopCountsAsDenied) {
    app.notifications.deliveryFailure = std::make_exception_ptr(std::runtime_error("the server is gone"));
    read(15);
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
    EXPECT_EQ(state().lastNotificationError.get(), "the server is gone");
    EXPECT_EQ(state().incident.get().activeLevel, StorageLevel::critical);
}

TEST_F(StorageAlerts, LeaveIsAskedForOnlyWhileItIsNotDetermined) {
    app.notifications.authorization = NotificationAuthorization::notDetermined;
    app.notifications.requestFailure = std::make_exception_ptr(std::runtime_error("nobody answers"));
    read(40);
    EXPECT_EQ(app.notifications.calls,
              (Calls{"authorizationStatus", "requestAuthorization", "registerCategories", "deliver"}));
    app.notifications.calls.clear();
    app.notifications.authorization = NotificationAuthorization::authorized;
    read(15);
    EXPECT_EQ(app.notifications.calls, (Calls{"authorizationStatus", "deliver"}));
}

TEST_F(StorageAlerts, LowSpaceAtTheFirstLaunchIsToldBeforeAnyoneListensToAnswers) {
    app.volume.set(15 * gigabyte, 500 * gigabyte);
    app.run(app.model->start());
    ASSERT_EQ(deliveries().size(), 1U);
    const Calls& calls = app.notifications.calls;
    const auto delivered = std::ranges::find(calls, "deliver");
    EXPECT_NE(std::find(delivered, calls.end(), "registerCategories"), calls.end());
}

TEST_F(StorageAlerts, AnswersReachTheIncident) {
    app.run(app.model->start());
    app.notificationCenter.respond({.actionIdentifier = "action.snooze.hour"});
    EXPECT_EQ(state().incident.get().snoozedUntil, app.wallClock.now() + std::chrono::hours(1));
    app.notificationCenter.respond({.actionIdentifier = "action.snooze.day"});
    EXPECT_EQ(state().incident.get().snoozedUntil, app.wallClock.now() + std::chrono::hours(24));
    app.notificationCenter.respond({.actionIdentifier = "action.ignore"});
    EXPECT_EQ(state().incident.get().snoozedUntil, distantFuture());
}

TEST_F(StorageAlerts, ASnoozeHoldsBackNeitherAnEscalationNorANewIncident) {
    read(40);
    app.model->ignoreCurrentIncident();
    read(15);
    read(300);
    read(40);
    EXPECT_EQ(deliveries().size(), 3U);
    EXPECT_EQ(state().incident.get().snoozedUntil, distantFuture());
}

TEST_F(StorageAlerts, EnablingStoresTheDesktopsAnswer) {
    app.settings.notificationsEnabled.set(false);
    app.run(app.model->enableNotifications());
    EXPECT_TRUE(app.settings.notificationsEnabled.get());
    EXPECT_FALSE(state().notificationAuthorizationDenied.get());
    EXPECT_EQ(app.notifications.calls, (Calls{"requestAuthorization", "registerCategories"}));

    app.notifications.calls.clear();
    app.notifications.grants = false;
    app.run(app.model->enableNotifications());
    EXPECT_FALSE(app.settings.notificationsEnabled.get());
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
    EXPECT_EQ(app.notifications.calls, Calls{"requestAuthorization"});
}

TEST_F(StorageAlerts, AFailedQuestionForLeaveCountsAsNo) {
    app.settings.notificationsEnabled.set(true);
    app.notifications.requestFailure = std::make_exception_ptr(std::runtime_error("nobody answers"));
    app.run(app.model->enableNotifications());
    EXPECT_FALSE(app.settings.notificationsEnabled.get());
    EXPECT_TRUE(state().notificationAuthorizationDenied.get());
    EXPECT_FALSE(state().lastNotificationError.get());
}

struct FolderAlerts : testing::Test {
    SettableWallClock measurerClock{std::chrono::system_clock::now()};
    CountingMeasurer measurer{measurerClock};
    AppHarness app{{.treeMeasurer = &measurer}};

    FolderAlerts() {
        app.settings.notificationsEnabled.set(true);
        app.run(app.model->addWatchedFolder(app.home.makeDirectory("projects")));
    }

    WatchedFolder folder() const { return app.model->state().watchedFolders.get().at(0); }
    void change(const std::function<void(WatchedFolder&)>& edit) {
        WatchedFolder changed = folder();
        edit(changed);
        app.run(app.model->updateWatchedFolder(std::move(changed)));
    }
    void scan(std::int64_t bytes) {
        measurer.bytes = bytes;
        app.run(app.model->scan(folder(), true));
    }
    const std::vector<NotificationRequestPayload>& deliveries() const { return app.notifications.deliveries; }
};

TEST_F(FolderAlerts, AFolderOverItsLimitAlarmsAtEachScanUnderTheSameIdentifier) {
    change([](WatchedFolder& changed) {
        changed.warningBytes = 2000;
        changed.criticalBytes = 4'000'000'000'000;
        changed.growthAlertEnabled = false;
    });
    scan(3'200'000'000);
    scan(3'300'000'000);
    ASSERT_EQ(deliveries().size(), 2U);
    EXPECT_EQ(deliveries()[0].title, "projects is large");
    EXPECT_EQ(deliveries()[0].body, "~3.2 GB on disk.");
    EXPECT_EQ(deliveries()[0].identifier, "folder.threshold." + folder().id.text());
    EXPECT_EQ(deliveries()[1].identifier, deliveries()[0].identifier);
    EXPECT_EQ(deliveries()[0].userInfo.at("path"), folder().path.bytes());
}

TEST_F(FolderAlerts, BothAlarmsCanComeFromOneScanTheSizeFirst) {
    change([](WatchedFolder& changed) { changed.criticalBytes = 2000; });
    app.wallClock.advance(std::chrono::hours(1));
    scan(6'000'001'000);
    ASSERT_EQ(deliveries().size(), 2U);
    EXPECT_EQ(deliveries()[0].kind, NotificationKind::watchedFolderThreshold);
    EXPECT_EQ(deliveries()[1].kind, NotificationKind::growthAnomaly);
    EXPECT_EQ(deliveries()[1].title, "projects is growing fast");
    EXPECT_EQ(deliveries()[1].body, "+6 GB in the last 24 hours.");
    EXPECT_EQ(deliveries()[1].identifier, "folder.growth." + folder().id.text());
}

TEST_F(FolderAlerts, WithoutGrowthAlertsACriticalFolderGetsTheSizeAlarmOnly) {
    change([](WatchedFolder& changed) {
        changed.criticalBytes = 2000;
        changed.growthAlertEnabled = false;
    });
    app.wallClock.advance(std::chrono::hours(1));
    scan(6'000'001'000);
    ASSERT_EQ(deliveries().size(), 1U);
    EXPECT_EQ(deliveries()[0].kind, NotificationKind::watchedFolderThreshold);
}

TEST_F(FolderAlerts, ASnoozedFolderIsScannedByHandWithoutAlarm) {
    change([&](WatchedFolder& changed) {
        changed.criticalBytes = 2000;
        changed.snoozedUntil = app.wallClock.now() + std::chrono::hours(1);
    });
    app.run(app.model->scanAllFolders(true));
    EXPECT_EQ(measurer.walks, 1);
    scan(5000);
    EXPECT_EQ(folder().lastKnownSizeBytes, 5000);
    EXPECT_TRUE(deliveries().empty());
}

TEST_F(FolderAlerts, NothingIsToldWithNotificationsOff) {
    change([](WatchedFolder& changed) { changed.criticalBytes = 2000; });
    app.settings.notificationsEnabled.set(false);
    scan(5000);
    EXPECT_TRUE(deliveries().empty());
}

TEST_F(FolderAlerts, AFailedScanRaisesNone) {
    change([](WatchedFolder& changed) { changed.criticalBytes = 500; });
    std::filesystem::remove(folder().path.bytes());
    app.run(app.model->scan(folder(), true));
    EXPECT_TRUE(folder().lastScanError);
    EXPECT_EQ(folder().lastKnownSizeBytes, 1000);
    EXPECT_TRUE(deliveries().empty());
}

TEST_F(FolderAlerts, AFailedDeliveryDoesNotFailTheScan) {
    change([](WatchedFolder& changed) { changed.criticalBytes = 2000; });
    app.notifications.authorization = NotificationAuthorization::denied;
    scan(5000);
    EXPECT_FALSE(folder().lastScanError);
    EXPECT_EQ(folder().lastKnownSizeBytes, 5000);
}

class RefusingLogin final : public LaunchAtLoginManaging {
public:
    [[nodiscard]] bool isEnabled() const override { return false; }
    void setEnabled(bool) override {
        throw std::system_error(std::make_error_code(std::errc::permission_denied), "autostart");
    }
};

TEST(LaunchAtLogin, IsStoredOnceTheDesktopTookIt) {
    AppHarness app;
    app.model->setLaunchAtLogin(true);
    EXPECT_TRUE(app.settings.launchAtLogin.get());
    EXPECT_TRUE(app.model->launchAtLoginEnabled());
    app.model->setLaunchAtLogin(false);
    EXPECT_FALSE(app.settings.launchAtLogin.get());
}

TEST(LaunchAtLogin, ThatFailsLeavesTheSettingAsItWas) {
    RefusingLogin login;
    AppHarness app{{.launchAtLogin = &login}};
    app.model->setLaunchAtLogin(true);
    EXPECT_FALSE(app.settings.launchAtLogin.get());
}

}  // namespace
}  // namespace cairnfield
