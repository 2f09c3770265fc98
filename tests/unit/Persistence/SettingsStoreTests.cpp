#include "Persistence/SettingsStore.h"
#include "support/InMemoryUserDefaults.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace cairnfield {
namespace {

using testing::IsEmpty;
using namespace std::string_literals;

constexpr std::int64_t gibibyte = 1'073'741'824;

class SettingsStoreTest : public testing::Test {
protected:
    InMemoryUserDefaults defaults;

    [[nodiscard]] std::optional<DefaultsValue> stored(const std::string& key) const {
        return defaults.value(key);
    }
};

StorageSnapshot snapshotOf(std::int64_t totalCapacity) {
    return {FilePath("/"), "", totalCapacity, 0, Date()};
}

TEST_F(SettingsStoreTest, StartsWithTheDefaultsAndLeavesTheStoreEmpty) {
    const SettingsStore settings(defaults);
    EXPECT_EQ(settings.thresholdMode.get(), ThresholdMode::smart);
    EXPECT_DOUBLE_EQ(settings.warningPercentage.get(), 0.15);
    EXPECT_DOUBLE_EQ(settings.criticalPercentage.get(), 0.07);
    EXPECT_EQ(settings.warningAbsoluteBytes.get(), 42'949'672'960);
    EXPECT_EQ(settings.criticalAbsoluteBytes.get(), 21'474'836'480);
    EXPECT_TRUE(settings.monitoringEnabled.get());
    EXPECT_FALSE(settings.notificationsEnabled.get());
    EXPECT_FALSE(settings.launchAtLogin.get());
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 30);
    EXPECT_EQ(settings.reconcileIntervalHours.get(), 6);
    EXPECT_EQ(settings.remoteRefreshIntervalHours.get(), 0);
    EXPECT_EQ(settings.growthAbsoluteBytes.get(), 5'368'709'120);
    EXPECT_DOUBLE_EQ(settings.growthRelativeFraction.get(), 0.25);
    EXPECT_TRUE(settings.createDraftPullRequests.get());
    EXPECT_TRUE(settings.preserveSmallLocalFiles.get());
    EXPECT_EQ(settings.recoveryBranchPrefix.get(), "cairnfield/recovery");
    EXPECT_EQ(settings.recoveryVaultRetentionDays.get(), 90);
    EXPECT_EQ(settings.recoveryVaultMaxFileBytes.get(), 8'388'608);
    EXPECT_EQ(settings.gitPathOverride.get(), std::nullopt);
    EXPECT_EQ(settings.gitHubCLIPathOverride.get(), std::nullopt);
    EXPECT_FALSE(settings.hasCompletedOnboarding.get());
    EXPECT_THAT(defaults.values, IsEmpty());
}

TEST_F(SettingsStoreTest, WritesEachSettingUnderItsOwnNameWithItsType) {
    SettingsStore settings(defaults);
    settings.thresholdMode.set(ThresholdMode::percentage);
    settings.warningPercentage.set(0.2);
    settings.criticalPercentage.set(0.1);
    settings.warningAbsoluteBytes.set(1);
    settings.criticalAbsoluteBytes.set(2);
    settings.monitoringEnabled.set(false);
    settings.notificationsEnabled.set(true);
    settings.launchAtLogin.set(true);
    settings.rescanIntervalMinutes.set(3);
    settings.reconcileIntervalHours.set(4);
    settings.remoteRefreshIntervalHours.set(5);
    settings.growthAbsoluteBytes.set(6);
    settings.growthRelativeFraction.set(0.5);
    settings.createDraftPullRequests.set(false);
    settings.preserveSmallLocalFiles.set(false);
    settings.recoveryBranchPrefix.set("mine");
    settings.recoveryVaultRetentionDays.set(7);
    settings.recoveryVaultMaxFileBytes.set(8);
    settings.gitPathOverride.set("/opt/git");
    settings.gitHubCLIPathOverride.set("/opt/gh");
    settings.hasCompletedOnboarding.set(true);

    const std::map<std::string, DefaultsValue, std::less<>> expected{
        {"thresholdMode", DefaultsData{"\"percentage\""}},
        {"warningPercentage", 0.2},
        {"criticalPercentage", 0.1},
        {"warningAbsoluteBytes", std::int64_t(1)},
        {"criticalAbsoluteBytes", std::int64_t(2)},
        {"monitoringEnabled", false},
        {"notificationsEnabled", true},
        {"launchAtLogin", true},
        {"rescanIntervalMinutes", std::int64_t(3)},
        {"reconcileIntervalHours", std::int64_t(4)},
        {"remoteRefreshIntervalHours", std::int64_t(5)},
        {"growthAbsoluteBytes", std::int64_t(6)},
        {"growthRelativeFraction", 0.5},
        {"createDraftPullRequests", false},
        {"preserveSmallLocalFiles", false},
        {"recoveryBranchPrefix", "mine"s},
        {"recoveryVaultRetentionDays", std::int64_t(7)},
        {"recoveryVaultMaxFileBytes", std::int64_t(8)},
        {"gitPathOverride", "/opt/git"s},
        {"gitHubCLIPathOverride", "/opt/gh"s},
        {"hasCompletedOnboarding", true}};
    EXPECT_EQ(expected.size(), 21U);
    EXPECT_EQ(defaults.values, expected);

    const SettingsStore again(defaults);
    EXPECT_EQ(again.thresholdMode.get(), ThresholdMode::percentage);
    EXPECT_DOUBLE_EQ(again.growthRelativeFraction.get(), 0.5);
    EXPECT_EQ(again.gitPathOverride.get(), "/opt/git");
    EXPECT_TRUE(again.hasCompletedOnboarding.get());
}

TEST_F(SettingsStoreTest, ReadsAValueOfAnotherTypeAsTheDefault) {
    defaults.values = {{"warningPercentage", "0.5"s},    {"monitoringEnabled", std::int64_t(0)},
                       {"rescanIntervalMinutes", 5.0},   {"recoveryBranchPrefix", true},
                       {"gitPathOverride", 7.5},         {"growthAbsoluteBytes", DefaultsData{"7"}},
                       {"reconcileIntervalHours", true}, {"thresholdMode", "absolute"s}};
    const auto before = defaults.values;
    const SettingsStore settings(defaults);
    EXPECT_DOUBLE_EQ(settings.warningPercentage.get(), 0.15);
    EXPECT_TRUE(settings.monitoringEnabled.get());
    EXPECT_EQ(settings.rescanIntervalMinutes.get(), 30);
    EXPECT_EQ(settings.recoveryBranchPrefix.get(), "cairnfield/recovery");
    EXPECT_EQ(settings.gitPathOverride.get(), std::nullopt);
    EXPECT_EQ(settings.growthAbsoluteBytes.get(), 5'368'709'120);
    EXPECT_EQ(settings.reconcileIntervalHours.get(), 6);
    EXPECT_EQ(settings.thresholdMode.get(), ThresholdMode::smart) << "text where data belongs";
    EXPECT_EQ(defaults.values, before) << "a read never writes";
}

TEST_F(SettingsStoreTest, ReadsAnIntegerWhereANumberIsWanted) {
    defaults.values = {{"growthRelativeFraction", std::int64_t(1)}};
    EXPECT_DOUBLE_EQ(SettingsStore(defaults).growthRelativeFraction.get(), 1);
}

TEST_F(SettingsStoreTest, ReadsAGarbledThresholdModeAsSmart) {
    for (const char* garbled :
         {"percentage", "\"Percentage\"", "\"percentage", "", "7", "null", "\xFF", "[\"absolute\"]"}) {
        defaults.values = {{"thresholdMode", DefaultsData{garbled}}};
        EXPECT_EQ(SettingsStore(defaults).thresholdMode.get(), ThresholdMode::smart) << garbled;
    }
    defaults.values = {{"thresholdMode", DefaultsData{" \"absolute\" "}}};
    EXPECT_EQ(SettingsStore(defaults).thresholdMode.get(), ThresholdMode::absolute);
}

TEST_F(SettingsStoreTest, RemovesTheKeyOfAnAbsentPath) {
    SettingsStore settings(defaults);
    settings.gitPathOverride.set("/opt/git");
    settings.gitPathOverride.set(std::nullopt);
    EXPECT_THAT(defaults.values, IsEmpty());
    EXPECT_EQ(settings.gitPathOverride.get(), std::nullopt);
}

TEST_F(SettingsStoreTest, WritesAnEqualValueAgainButTellsNobody) {
    SettingsStore settings(defaults);
    int told = 0;
    const Subscription subscription = settings.rescanIntervalMinutes.observe([&] { ++told; });
    settings.rescanIntervalMinutes.set(30);
    EXPECT_EQ(stored("rescanIntervalMinutes"), DefaultsValue(std::int64_t(30)));
    EXPECT_EQ(told, 0);
    settings.rescanIntervalMinutes.set(31);
    EXPECT_EQ(told, 1);
}

TEST_F(SettingsStoreTest, KeepsWhatItIsGiven) {
    SettingsStore settings(defaults);
    settings.reconcileIntervalHours.set(-5);
    settings.warningPercentage.set(-3.5);
    EXPECT_EQ(settings.reconcileIntervalHours.get(), -5);
    EXPECT_DOUBLE_EQ(SettingsStore(defaults).warningPercentage.get(), -3.5);
}

TEST_F(SettingsStoreTest, RecommendsLimitsInSmartMode) {
    const SettingsStore settings(defaults);
    EXPECT_EQ(settings.thresholds(snapshotOf(300 * gibibyte)),
              (StorageThresholds{40 * gibibyte, 20 * gibibyte}));
    EXPECT_EQ(settings.thresholds(std::nullopt), StorageThresholds());
}

TEST_F(SettingsStoreTest, TakesSharesOfTheCapacityInPercentageMode) {
    SettingsStore settings(defaults);
    settings.thresholdMode.set(ThresholdMode::percentage);
    EXPECT_EQ(settings.thresholds(snapshotOf(1000)), (StorageThresholds{150, 70}));
    EXPECT_EQ(settings.thresholds(std::nullopt), StorageThresholds());
    settings.warningPercentage.set(0.1999);
    settings.criticalPercentage.set(0.1999);
    EXPECT_EQ(settings.thresholds(snapshotOf(10)), (StorageThresholds{1, 0})) << "truncated, then normalized";
}

TEST_F(SettingsStoreTest, RepairsCrossedLimitsOnlyWhereTheyAreInForce) {
    SettingsStore settings(defaults);
    settings.thresholdMode.set(ThresholdMode::absolute);
    settings.warningAbsoluteBytes.set(40 * gibibyte);
    settings.criticalAbsoluteBytes.set(50 * gibibyte);
    EXPECT_EQ(settings.thresholds(std::nullopt), (StorageThresholds{40 * gibibyte, 20 * gibibyte}));
    EXPECT_EQ(settings.criticalAbsoluteBytes.get(), 50 * gibibyte);
}

TEST_F(SettingsStoreTest, NamesItsKeys) {
    const SettingsStore settings(defaults);
    EXPECT_EQ(settings.gitHubCLIPathOverride.key(), "gitHubCLIPathOverride");
}

using SettingsStoreDeathTest = SettingsStoreTest;

TEST_F(SettingsStoreDeathTest, StopsAtAShareThatFitsNoCount) {
    SettingsStore settings(defaults);
    settings.thresholdMode.set(ThresholdMode::percentage);
    settings.warningPercentage.set(1e30);
    EXPECT_DEATH((void)settings.thresholds(snapshotOf(1000)), "");
}

}  // namespace
}  // namespace cairnfield
