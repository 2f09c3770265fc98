#include "Models/Storage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;

const StorageSnapshot snapshot{FilePath("/"), "System", 1000, 250, Date(1'000'000'000s)};

TEST(StorageSnapshot, ComputesWhatIsUsedAndWhatIsLeft) {
    EXPECT_EQ(snapshot.usedCapacity(), 750);
    EXPECT_DOUBLE_EQ(snapshot.availableFraction(), 0.25);
}

TEST(StorageSnapshot, HasNothingLeftOfNoCapacity) {
    EXPECT_EQ((StorageSnapshot{FilePath("/"), "", 0, 10, Date()}).availableFraction(), 0);
    EXPECT_EQ((StorageSnapshot{FilePath("/"), "", -1, 10, Date()}).availableFraction(), 0);
}

TEST(StorageSnapshot, GoesThroughJSON) {
    const Json json = snapshot;
    EXPECT_EQ(json.dump(),
              R"({"availableCapacity":250,"measuredAt":"2001-09-09T01:46:40Z","totalCapacity":1000,)"
              R"("volumeName":"System","volumeURL":"/"})");
    EXPECT_EQ(json.get<StorageSnapshot>(), snapshot);
}

TEST(StorageThresholds, ForceTheCriticalLimitUnderTheWarningLimit) {
    EXPECT_EQ((StorageThresholds{40, 50}).normalized(), (StorageThresholds{40, 20}));
    EXPECT_EQ((StorageThresholds{10, 3}).normalized(), (StorageThresholds{10, 3}));
    EXPECT_EQ((StorageThresholds{-1, 5}).normalized(), (StorageThresholds{-1, 0}));
    EXPECT_EQ((StorageThresholds{0, 0}).normalized(), (StorageThresholds{0, 0}));
    EXPECT_EQ((StorageThresholds{7, 7}).normalized(), (StorageThresholds{7, 3}));
    EXPECT_EQ((StorageThresholds{-3, -5}).normalized(), (StorageThresholds{-3, -5}));
}

TEST(StorageLevel, IsOrderedByAlarm) {
    EXPECT_LT(StorageLevel::normal, StorageLevel::warning);
    EXPECT_LT(StorageLevel::warning, StorageLevel::critical);
}

TEST(StorageLevel, HasItsWords) {
    using enum StorageLevel;
    EXPECT_EQ(rawValue(normal), "normal");
    EXPECT_EQ(rawValue(warning), "warning");
    EXPECT_EQ(rawValue(critical), "critical");
    EXPECT_EQ(title(normal), "Healthy");
    EXPECT_EQ(title(warning), "Low space");
    EXPECT_EQ(title(critical), "Critically low");
    EXPECT_EQ(symbolName(normal), "checkmark.circle");
    EXPECT_EQ(symbolName(warning), "exclamationmark.triangle");
    EXPECT_EQ(symbolName(critical), "exclamationmark.octagon");
}

TEST(ThresholdMode, HasItsWordsAndIsReadBack) {
    using enum ThresholdMode;
    EXPECT_EQ(title(smart), "Smart recommendation");
    EXPECT_EQ(title(percentage), "Percentage of capacity");
    EXPECT_EQ(title(absolute), "Fixed amount");
    EXPECT_EQ(rawValue(smart), "smart");
    EXPECT_EQ(rawValue(percentage), "percentage");
    EXPECT_EQ(rawValue(absolute), "absolute");
    for (const ThresholdMode mode : {smart, percentage, absolute})
        EXPECT_EQ(thresholdModeFromRawValue(rawValue(mode)), mode);
    EXPECT_EQ(thresholdModeFromRawValue("Smart"), std::nullopt);
    EXPECT_EQ(thresholdModeFromRawValue(""), std::nullopt);
}

TEST(ThresholdPreset, OffersFiveFractions) {
    std::vector<double> fractions;
    std::vector<std::string> titles;
    for (const ThresholdPreset preset : allThresholdPresets) {
        fractions.push_back(rawValue(preset));
        titles.push_back(title(preset));
        EXPECT_EQ(thresholdPresetFromRawValue(rawValue(preset)), preset);
    }
    EXPECT_THAT(fractions, testing::ElementsAre(0.05, 0.10, 0.15, 0.20, 0.25));
    EXPECT_THAT(titles, testing::ElementsAre("5%", "10%", "15%", "20%", "25%"));
}

TEST(ThresholdPreset, IsNoneForAnotherFraction) {
    for (const double fraction : {0.0, 0.051, 0.12, 0.5, 1.0, -0.05, std::nan("")})
        EXPECT_EQ(thresholdPresetFromRawValue(fraction), std::nullopt) << fraction;
}

}  // namespace
}  // namespace cairnfield
