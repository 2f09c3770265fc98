#include "Features/Preferences/PreferencesViewModel.h"
#include "Services/Permissions/LaunchAtLoginManaging.h"
#include "Services/Storage/ThresholdRecommendationService.h"
#include "support/App/AppHarness.h"
#include "support/AppModelStaging.h"
#include "support/QtApplication.h"
#include "support/ScopedEnvironment.h"
#include "support/SignalCount.h"

#include <gtest/gtest.h>

#include <system_error>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

constexpr std::int64_t gibibyte = 1'073'741'824;

/// Updates that are configured, as the desktop's program would have them.
class StagedUpdates final : public UpdateChecking {
public:
    [[nodiscard]] bool canCheckForUpdates() const override { return canCheck; }
    [[nodiscard]] bool automaticallyChecksForUpdates() const override { return checks; }
    void setAutomaticallyChecksForUpdates(bool isOn) override { change(checks, isOn); }
    [[nodiscard]] bool automaticallyDownloadsUpdates() const override { return downloads; }
    void setAutomaticallyDownloadsUpdates(bool isOn) override { change(downloads, isOn); }
    [[nodiscard]] std::optional<Date> lastUpdateCheckDate() const override { return lastCheck; }
    [[nodiscard]] std::optional<std::string> feedURLString() const override { return std::nullopt; }
    [[nodiscard]] std::optional<std::string> configurationProblem() const override { return problem; }
    void checkForUpdates() override { ++checksMade; }
    [[nodiscard]] Subscription observe(std::function<void()> observer) const override {
        return changes.observe(std::move(observer));
    }
    void change(bool& field, bool value) {
        field = value;
        changes.set(changes.get() + 1);
    }

    Published<int> changes{0};
    bool canCheck = true;
    bool checks = false;
    bool downloads = false;
    int checksMade = 0;
    std::optional<Date> lastCheck;
    std::optional<std::string> problem;
};

class StagedLaunchAtLogin final : public LaunchAtLoginManaging {
public:
    [[nodiscard]] bool isEnabled() const override { return enabled; }
    void setEnabled(bool wanted) override {
        if (fails) throw std::system_error(EACCES, std::generic_category(), "autostart");
        enabled = wanted;
    }
    bool enabled = false;
    bool fails = false;
};

class PreferencesScreen : public testing::Test {
protected:
    AppState& state() { return AppModelStaging::state(*app.model); }
    SettingsStore& settings() { return app.settings; }
    void measure(std::int64_t total) {
        state().storage.set(StorageSnapshot{FilePath("/"), "root", total, total / 2, app.wallClock.now()});
    }

    ScopedEnvironment locale{"LC_ALL", "en_US.UTF-8"};
    QtApplication qt;
    StagedUpdates updates;
    StagedLaunchAtLogin launchAtLogin;
    AppHarness app{{.launchAtLogin = &launchAtLogin, .updates = &updates}};
    PreferencesViewModel screen{*app.model, app.wallClock,
                                BundleInformation({{"CFBundleShortVersionString", "1.2.3"}})};
};

TEST_F(PreferencesScreen, OffersThreeWaysToChooseTheLimits) {
    EXPECT_EQ(PreferencesViewModel::thresholdModes(),
              QStringList({"Smart recommendation", "Percentage of capacity", "Fixed amount"}));
    EXPECT_EQ(screen.thresholdModeIndex(), 0);
    EXPECT_EQ(screen.thresholdMode(), "smart");
    const SignalCount changes(&screen, &PreferencesViewModel::freeSpaceChanged);
    screen.chooseThresholdMode(2);
    EXPECT_EQ(settings().thresholdMode.get(), ThresholdMode::absolute);
    EXPECT_EQ(screen.thresholdMode(), "absolute");
    screen.chooseThresholdMode(1);
    EXPECT_EQ(screen.thresholdModeIndex(), 1);
    EXPECT_EQ(screen.thresholdMode(), "percentage");
    EXPECT_EQ(changes.count(), 2);
    screen.chooseThresholdMode(3);
    screen.chooseThresholdMode(-1);
    EXPECT_EQ(settings().thresholdMode.get(), ThresholdMode::percentage);
}

TEST_F(PreferencesScreen, SaysNothingOfLimitsBeforeTheFirstReading) {
    for (const int mode : {0, 1, 2}) {
        screen.chooseThresholdMode(mode);
        EXPECT_EQ(screen.explanation(), "");
        EXPECT_EQ(screen.currently(), "");
    }
}

TEST_F(PreferencesScreen, ExplainsTheSmartLimitsAlone) {
    const SignalCount changes(&screen, &PreferencesViewModel::freeSpaceChanged);
    measure(1000 * gibibyte);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(screen.explanation().toStdString(),
              ThresholdRecommendationService::explanation(1000 * gibibyte));
    screen.chooseThresholdMode(1);
    EXPECT_EQ(screen.explanation(), "");
}

TEST_F(PreferencesScreen, TellsTheLimitsInForceInEveryMode) {
    measure(1000 * gibibyte);
    EXPECT_EQ(screen.currently(), "Warn below 107.37 GB, critical below 53.69 GB");
    screen.chooseThresholdMode(1);
    EXPECT_EQ(screen.currently(), "Warn below 161.06 GB, critical below 75.16 GB");
    screen.chooseThresholdMode(2);
    EXPECT_EQ(screen.currently(), "Warn below 42.95 GB, critical below 21.47 GB");
    const SignalCount changes(&screen, &PreferencesViewModel::freeSpaceChanged);
    screen.criticalBytes()->commit("50");
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(screen.currently(), "Warn below 42.95 GB, critical below 21.47 GB")
        << "held to half of the warning limit";
}

TEST_F(PreferencesScreen, BindsEachLimitToItsSetting) {
    EXPECT_EQ(screen.warningPercentage()->options(), QStringList({"5%", "10%", "15%", "20%", "25%"}));
    EXPECT_EQ(screen.criticalPercentage()->options(), screen.warningPercentage()->options());
    screen.warningPercentage()->choose(4);
    screen.criticalPercentage()->choose(0);
    EXPECT_EQ(settings().warningPercentage.get(), 0.25);
    EXPECT_EQ(settings().criticalPercentage.get(), 0.05);
    screen.warningBytes()->commit("30");
    screen.criticalBytes()->commit("15.5");
    EXPECT_EQ(settings().warningAbsoluteBytes.get(), 30 * gibibyte);
    EXPECT_EQ(settings().criticalAbsoluteBytes.get(), 15 * gibibyte + gibibyte / 2);
}

TEST_F(PreferencesScreen, SwitchesMonitoringAndRemembersIt) {
    EXPECT_FALSE(screen.isMonitoring());
    const SignalCount changes(&screen, &PreferencesViewModel::monitoringChanged);
    settings().monitoringEnabled.set(false);
    screen.setMonitoring(true);
    EXPECT_TRUE(screen.isMonitoring());
    EXPECT_TRUE(settings().monitoringEnabled.get());
    screen.setMonitoring(false);
    EXPECT_FALSE(screen.isMonitoring());
    EXPECT_FALSE(settings().monitoringEnabled.get());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(PreferencesScreen, ShowsWhatIsGoingOnRatherThanWhatIsStored) {
    EXPECT_TRUE(settings().monitoringEnabled.get());
    EXPECT_FALSE(screen.isMonitoring()) << "it was not started";
}

TEST_F(PreferencesScreen, AsksTheDesktopWhetherItStartsAtLogin) {
    EXPECT_FALSE(screen.launchesAtLogin());
    const SignalCount changes(&screen, &PreferencesViewModel::launchAtLoginChanged);
    screen.setLaunchAtLogin(true);
    EXPECT_TRUE(screen.launchesAtLogin());
    EXPECT_TRUE(launchAtLogin.enabled);
    EXPECT_TRUE(settings().launchAtLogin.get());
    EXPECT_EQ(changes.count(), 1);

    launchAtLogin.enabled = false;
    EXPECT_TRUE(screen.launchesAtLogin());
    screen.refresh();
    EXPECT_FALSE(screen.launchesAtLogin()) << "somebody switched it off elsewhere";
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(PreferencesScreen, LeavesTheLoginSwitchWhereTheDesktopSays) {
    launchAtLogin.fails = true;
    screen.setLaunchAtLogin(true);
    EXPECT_FALSE(screen.launchesAtLogin());
    EXPECT_FALSE(settings().launchAtLogin.get());
}

TEST_F(PreferencesScreen, StepsTheIntervalsInTheirRanges) {
    EXPECT_EQ(screen.rescanInterval()->text(), "Rescan a changed folder at most every 30 min");
    EXPECT_EQ(screen.rescanInterval()->minimum(), 5);
    EXPECT_EQ(screen.rescanInterval()->maximum(), 240);
    screen.rescanInterval()->increase();
    EXPECT_EQ(settings().rescanIntervalMinutes.get(), 35);
    EXPECT_EQ(screen.reconcileInterval()->text(), "Reconcile every 6 h");
    EXPECT_EQ(screen.reconcileInterval()->minimum(), 1);
    EXPECT_EQ(screen.reconcileInterval()->maximum(), 24);
    screen.reconcileInterval()->decrease();
    EXPECT_EQ(settings().reconcileIntervalHours.get(), 5);
    EXPECT_EQ(screen.vaultRetention()->text(), "Keep Recovery Vault files for 90 days");
    EXPECT_EQ(screen.vaultRetention()->minimum(), 7);
    EXPECT_EQ(screen.vaultRetention()->maximum(), 365);
    screen.vaultRetention()->increase();
    EXPECT_EQ(settings().recoveryVaultRetentionDays.get(), 97);
}

TEST_F(PreferencesScreen, TurnsNotificationsOnOnceTheDesktopGrantsThem) {
    EXPECT_FALSE(screen.notifies());
    screen.setNotifies(true);
    ASSERT_TRUE(app.loop.runUntil([&] { return settings().notificationsEnabled.get(); }));
    EXPECT_TRUE(screen.notifies());
    EXPECT_FALSE(screen.areNotificationsDenied());
    screen.setNotifies(false);
    EXPECT_FALSE(settings().notificationsEnabled.get()) << "at once";
    EXPECT_FALSE(screen.areNotificationsDenied());
}

TEST_F(PreferencesScreen, LeavesNotificationsOffWhenTheDesktopRefuses) {
    app.notifications.grants = false;
    const SignalCount changes(&screen, &PreferencesViewModel::notificationsChanged);
    screen.setNotifies(true);
    ASSERT_TRUE(app.loop.runUntil([&] { return screen.areNotificationsDenied(); }));
    EXPECT_FALSE(screen.notifies());
    EXPECT_GE(changes.count(), 1);
}

TEST_F(PreferencesScreen, BindsTheGrowthAlerts) {
    EXPECT_EQ(screen.growthBytes()->text(), "5");
    screen.growthBytes()->commit("2.5");
    EXPECT_EQ(settings().growthAbsoluteBytes.get(), 2 * gibibyte + gibibyte / 2);
    EXPECT_EQ(screen.growthFraction()->options(), QStringList({"10%", "25%", "50%", "100%"}));
    EXPECT_EQ(screen.growthFraction()->index(), 1);
    screen.growthFraction()->choose(3);
    EXPECT_EQ(settings().growthRelativeFraction.get(), 1.0);
    screen.growthFraction()->choose(0);
    EXPECT_EQ(settings().growthRelativeFraction.get(), 0.1);
}

TEST_F(PreferencesScreen, ShowsTheVersionAndTheUpdates) {
    EXPECT_EQ(screen.version(), "1.2.3");
    EXPECT_EQ(screen.updateProblem(), "");
    EXPECT_TRUE(screen.canCheckForUpdates());
    EXPECT_EQ(screen.lastChecked(), "Never");
    updates.lastCheck = app.wallClock.now() - 5min;
    EXPECT_EQ(screen.lastChecked(), "5 min. ago");
    const SignalCount changes(&screen, &PreferencesViewModel::updatesChanged);
    screen.setChecksForUpdates(true);
    screen.setDownloadsUpdates(true);
    EXPECT_TRUE(screen.checksForUpdates());
    EXPECT_TRUE(screen.downloadsUpdates());
    EXPECT_TRUE(updates.checks && updates.downloads);
    EXPECT_EQ(changes.count(), 2);
    screen.checkForUpdates();
    EXPECT_EQ(updates.checksMade, 1);
}

TEST_F(PreferencesScreen, SaysWhyThereAreNoUpdates) {
    updates.problem = "Updates are disabled in this build.";
    updates.change(updates.canCheck, false);
    EXPECT_EQ(screen.updateProblem(), "Updates are disabled in this build.");
    EXPECT_FALSE(screen.canCheckForUpdates());
}

TEST_F(PreferencesScreen, BindsWhatIsPreserved) {
    screen.draftPullRequests()->turn(false);
    screen.smallLocalFiles()->turn(false);
    EXPECT_FALSE(settings().createDraftPullRequests.get());
    EXPECT_FALSE(settings().preserveSmallLocalFiles.get());
    EXPECT_EQ(screen.branchPrefix(), "cairnfield/recovery");
    const SignalCount changes(&screen, &PreferencesViewModel::branchPrefixChanged);
    screen.setBranchPrefix("rettung/ä");
    EXPECT_EQ(settings().recoveryBranchPrefix.get(), "rettung/ä");
    screen.setBranchPrefix("");
    EXPECT_EQ(settings().recoveryBranchPrefix.get(), "") << "kept as given";
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(PreferencesScreen, SaysWhatShouldBeKnownAboutTheFileOfTheSettings) {
    const SignalCount changes(&screen, &PreferencesViewModel::fileNoticeChanged);
    EXPECT_EQ(screen.fileNotice(), "");
    state().storedFileNotices.set({{"settings.json", "It is kept."}, {"other.json", "not shown here"}});
    EXPECT_EQ(screen.fileNotice(), "It is kept.");
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(PreferencesScreen, StoresWhatIsTypedWhenTheTypingIsDone) {
    screen.setBranchPrefix("m");
    screen.setBranchPrefix("mine");
    EXPECT_EQ(app.settings.recoveryBranchPrefix.get(), "mine") << "in force at once";
    EXPECT_TRUE(app.defaults.isTyping);
    screen.doneTyping();
    EXPECT_FALSE(app.defaults.isTyping);
    EXPECT_EQ(app.defaults.value("recoveryBranchPrefix"), DefaultsValue(std::string("mine")));
}

}  // namespace
}  // namespace cairnfield
