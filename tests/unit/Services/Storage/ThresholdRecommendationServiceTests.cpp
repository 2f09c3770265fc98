#include "Services/Storage/ThresholdRecommendationService.h"

#include <gtest/gtest.h>

#include <limits>

namespace cairnfield {
namespace {

using namespace ThresholdRecommendationService;

constexpr std::int64_t gibibyte = 1'073'741'824;

StorageThresholds gibibytes(std::int64_t warning, std::int64_t critical) {
    return {warning * gibibyte, critical * gibibyte};
}

TEST(ThresholdRecommendation, FitsVolumesOfEverySize) {
    EXPECT_EQ(recommendation(100 * gibibyte), gibibytes(20, 10));
    EXPECT_EQ(recommendation(200 * gibibyte), gibibytes(40, 20));
    EXPECT_EQ(recommendation(300 * gibibyte), gibibytes(40, 20));
    EXPECT_EQ(recommendation(400 * gibibyte), gibibytes(40, 20));
    EXPECT_EQ(recommendation(1'000 * gibibyte), gibibytes(100, 50));
    EXPECT_EQ(recommendation(1'500 * gibibyte), gibibytes(150, 75));
    EXPECT_EQ(recommendation(2'000 * gibibyte), gibibytes(150, 75));
    EXPECT_EQ(recommendation(4'000 * gibibyte), gibibytes(150, 75));
    EXPECT_EQ(recommendation(std::numeric_limits<std::int64_t>::max()), gibibytes(150, 75));
}

TEST(ThresholdRecommendation, IsOffWithoutACapacity) {
    EXPECT_EQ(recommendation(0), StorageThresholds());
    EXPECT_EQ(recommendation(-5), StorageThresholds());
}

TEST(ThresholdRecommendation, RoundsToWholeBytes) {
    EXPECT_EQ(recommendation(1), StorageThresholds());
    EXPECT_EQ(recommendation(3), (StorageThresholds{1, 0})) << "0.6 and 0.3 bytes";
    EXPECT_EQ(recommendation(128'000'000'003), (StorageThresholds{25'600'000'001, 12'800'000'000}));
}

TEST(ThresholdRecommendation, ExplainsItselfInWords) {
    EXPECT_EQ(explanation(1'000 * gibibyte),
              "This volume holds 1.07 TB. Cairnfield warns when free space falls below 107.37 GB and treats "
              "anything under "
              "53.69 GB as critical. Larger disks get proportionally larger buffers, capped so a very large "
              "volume does not "
              "reserve an unreasonable amount.");
    EXPECT_TRUE(explanation(-1).starts_with(
        "This volume holds 0 kB. Cairnfield warns when free space falls below 0 kB and"));
}

TEST(StorageLevel, IsRaisedStrictlyBelowALimit) {
    const StorageThresholds limits{40, 20};
    EXPECT_EQ(level(41, limits), StorageLevel::normal);
    EXPECT_EQ(level(40, limits), StorageLevel::normal);
    EXPECT_EQ(level(39, limits), StorageLevel::warning);
    EXPECT_EQ(level(20, limits), StorageLevel::warning);
    EXPECT_EQ(level(19, limits), StorageLevel::critical);
    EXPECT_EQ(level(-1, limits), StorageLevel::critical);
}

TEST(StorageLevel, TestsEachLimitOnItsOwn) {
    EXPECT_EQ(level(10, {0, 20}), StorageLevel::critical);
    EXPECT_EQ(level(10, {-1, 20}), StorageLevel::critical);
    EXPECT_EQ(level(10, {20, 0}), StorageLevel::warning);
    EXPECT_EQ(level(0, {0, 0}), StorageLevel::normal);
    EXPECT_EQ(level(-100, {0, -1}), StorageLevel::normal);
    EXPECT_EQ(level(0, {0, 1}), StorageLevel::critical);
}

}  // namespace
}  // namespace cairnfield
