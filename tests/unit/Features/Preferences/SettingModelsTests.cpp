#include "Features/Preferences/SettingModels.h"
#include "support/InMemoryUserDefaults.h"
#include "support/ScopedEnvironment.h"
#include "support/SignalCount.h"

#include <gtest/gtest.h>

#include <limits>

namespace cairnfield {
namespace {

constexpr std::int64_t gibibyte = 1'073'741'824;

class SettingModels : public testing::Test {
protected:
    ScopedEnvironment locale{"LC_ALL", "en_US.UTF-8"};
    InMemoryUserDefaults defaults;
    SettingsStore settings{defaults};
};

TEST_F(SettingModels, ASwitchIsItsSetting) {
    SwitchSetting model(settings.createDraftPullRequests);
    const SignalCount changes(&model, &SwitchSetting::changed);
    EXPECT_TRUE(model.isOn());
    model.turn(false);
    EXPECT_FALSE(model.isOn());
    EXPECT_FALSE(settings.createDraftPullRequests.get());
    settings.createDraftPullRequests.set(true);
    EXPECT_TRUE(model.isOn());
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(SettingModels, AStepperStopsAtBothEnds) {
    SteppedSetting model(settings.rescanIntervalMinutes, {5, 240, 5}, "every %1 min");
    EXPECT_EQ(model.text(), "every 30 min");
    model.increase();
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 35);
    EXPECT_EQ(model.text(), "every 35 min");

    settings.rescanIntervalMinutes.set(240);
    EXPECT_FALSE(model.canIncrease());
    EXPECT_TRUE(model.canDecrease());
    model.increase();
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 240);

    settings.rescanIntervalMinutes.set(5);
    EXPECT_TRUE(model.canIncrease());
    EXPECT_FALSE(model.canDecrease());
    model.decrease();
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 5);
    model.increase();
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 10);
}

TEST_F(SettingModels, AStepperTellsOfItsRange) {
    const SteppedSetting model(settings.recoveryVaultRetentionDays, {7, 365, 7}, "%1 days");
    EXPECT_EQ(model.value(), 90);
    EXPECT_EQ(model.minimum(), 7);
    EXPECT_EQ(model.maximum(), 365);
    EXPECT_EQ(model.step(), 7);
}

TEST_F(SettingModels, AStepperGoesFromWhereItStands) {
    SteppedSetting model(settings.recoveryVaultRetentionDays, {7, 365, 7}, "%1 days");
    model.increase();
    EXPECT_EQ(settings.recoveryVaultRetentionDays.get(), 97);
    model.decrease();
    model.decrease();
    EXPECT_EQ(settings.recoveryVaultRetentionDays.get(), 83);
    settings.recoveryVaultRetentionDays.set(363);
    model.increase();
    EXPECT_EQ(settings.recoveryVaultRetentionDays.get(), 365);
    settings.recoveryVaultRetentionDays.set(8);
    model.decrease();
    EXPECT_EQ(settings.recoveryVaultRetentionDays.get(), 7);
}

TEST_F(SettingModels, AStepperBringsAStoredNumberBackIntoItsRange) {
    SteppedSetting model(settings.reconcileIntervalHours, {1, 24, 1}, "Reconcile every %1 h");
    settings.reconcileIntervalHours.set(std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(model.text(), "Reconcile every 9223372036854775807 h") << "shown as it is";
    EXPECT_FALSE(model.canIncrease());
    model.increase();
    model.decrease();
    EXPECT_EQ(settings.reconcileIntervalHours.get(), 24);
    settings.reconcileIntervalHours.set(std::numeric_limits<std::int64_t>::min());
    EXPECT_FALSE(model.canDecrease());
    model.decrease();
    model.increase();
    EXPECT_EQ(settings.reconcileIntervalHours.get(), 1);
}

TEST_F(SettingModels, AFractionIsPickedFromAFew) {
    FractionSetting model(settings.growthRelativeFraction, {{0.1, "10%"}, {0.25, "25%"}, {0.5, "50%"}});
    EXPECT_EQ(model.options(), QStringList({"10%", "25%", "50%"}));
    EXPECT_EQ(model.index(), 1);
    EXPECT_EQ(model.text(), "25%");
    model.choose(2);
    EXPECT_EQ(settings.growthRelativeFraction.get(), 0.5);
    EXPECT_EQ(model.text(), "50%");
    model.choose(3);
    model.choose(-1);
    EXPECT_EQ(settings.growthRelativeFraction.get(), 0.5);
}

TEST_F(SettingModels, AStoredFractionThatIsNotOfferedIsShownAllTheSame) {
    const FractionSetting model(settings.criticalPercentage, {{0.05, "5%"}, {0.10, "10%"}});
    EXPECT_EQ(settings.criticalPercentage.get(), 0.07);
    EXPECT_EQ(model.index(), -1);
    EXPECT_EQ(model.text(), "7%");
}

TEST_F(SettingModels, AByteCountIsTypedInGigabytes) {
    GigabyteSetting model(settings.warningAbsoluteBytes);
    EXPECT_EQ(model.text(), "40");
    model.commit("1.5");
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), 1'610'612'736);
    EXPECT_EQ(model.text(), "1.5");
    model.commit("0");
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), 0) << "switched off";
}

TEST_F(SettingModels, WhatIsNoNumberChangesNoByteCount) {
    GigabyteSetting model(settings.warningAbsoluteBytes);
    for (const char* typed : {"", "x", "1.5 GB", "99999999999999", "nan"}) model.commit(typed);
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), 40 * gibibyte);
    EXPECT_TRUE(defaults.values.empty()) << "nothing is even written";
}

TEST_F(SettingModels, LeavingAFieldDoesNotStoreItsRoundedNumber) {
    settings.warningAbsoluteBytes.set(gibibyte + 1);
    GigabyteSetting model(settings.warningAbsoluteBytes);
    EXPECT_EQ(model.text(), "1");
    model.commit(model.text());
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), gibibyte + 1);
}

}  // namespace
}  // namespace cairnfield
