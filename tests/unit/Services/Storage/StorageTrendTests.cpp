#include "Services/Storage/StorageTrend.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;
using namespace StorageTrend;
using testing::ElementsAre;
using testing::IsEmpty;

using Samples = std::vector<StorageHistorySample>;

const Date now{1'000'000'000s};

StorageHistorySample ago(std::chrono::seconds age, std::int64_t available) {
    return {now - age, available, 1000};
}

// So many samples, a minute apart, the last one now.
Samples minutes(int count) {
    Samples samples;
    for (int i = 0; i < count; ++i) samples.push_back(ago((count - 1 - i) * 1min, i));
    return samples;
}

TEST(StorageTrend, KnowsNothingOfAnEmptyList) {
    EXPECT_EQ(delta({}, 24h, now), std::nullopt);
    EXPECT_THAT(series({}, 24h, 180, now), IsEmpty());
    EXPECT_EQ(projectedFullDate({}, 24h, now), std::nullopt);
}

TEST(StorageTrend, TellsHowFreeSpaceChanged) {
    EXPECT_EQ(delta({ago(20h, 100), ago(10h, 500), ago(0s, 130)}, 24h, now), 30);
    EXPECT_EQ(delta({ago(20h, 100), ago(0s, 40)}, 24h, now), -60);
    EXPECT_EQ(delta({ago(20h, 100), ago(0s, 100)}, 24h, now), 0);
}

TEST(StorageTrend, TellsNoChangeWithinOneMoment) {
    EXPECT_EQ(delta({ago(1h, 100)}, 24h, now), std::nullopt);
    EXPECT_EQ(delta({ago(1h, 100), ago(1h, 50)}, 24h, now), std::nullopt);
}

TEST(StorageTrend, LooksOnlyAtTheWindow) {
    EXPECT_EQ(delta({ago(25h, 7), ago(24h, 100), ago(1h, 90)}, 24h, now), -10) << "the start is inside";
    EXPECT_EQ(delta({ago(24h + 1s, 100), ago(1h, 90)}, 24h, now), std::nullopt);
    EXPECT_THAT(series({ago(25h, 7), ago(24h, 1), ago(1h, 2)}, 24h, 180, now),
                ElementsAre(ago(24h, 1), ago(1h, 2)));
    EXPECT_EQ(projectedFullDate({ago(25h, 1000), ago(24h, 5), ago(1h, 5)}, 24h, now), std::nullopt);
}

TEST(StorageTrend, NeedsNoOrder) {
    Samples samples{ago(1h, 2), ago(5h, 1), ago(3h, 7), ago(0s, 4)};
    EXPECT_EQ(delta(samples, 24h, now), 3);
    EXPECT_THAT(series(samples, 24h, 180, now), ElementsAre(ago(5h, 1), ago(3h, 7), ago(1h, 2), ago(0s, 4)));
}

TEST(StorageTrend, KeepsAllSamplesThatFitTheChart) {
    EXPECT_EQ(series(minutes(180), 24h, 180, now), minutes(180));
    EXPECT_EQ(series(minutes(1), 24h, 1, now), minutes(1));
}

TEST(StorageTrend, ThinsTheSeriesAndEndsAtTheNewestSample) {
    const Samples thinned = series(minutes(360), 24h, 180, now);
    ASSERT_EQ(thinned.size(), 181U);
    for (std::size_t i = 0; i < 180; ++i) EXPECT_EQ(thinned[i].availableBytes, std::int64_t(2 * i));
    EXPECT_EQ(thinned.back(), minutes(360).back());
}

TEST(StorageTrend, AddsNoSecondCopyOfTheNewestSample) {
    const Samples thinned = series(minutes(181), 24h, 180, now);
    ASSERT_EQ(thinned.size(), 91U) << "every second one, the last among them";
    EXPECT_EQ(thinned.back(), minutes(181).back());
    Samples same = minutes(4);
    same[3] = same[2];
    EXPECT_THAT(series(same, 24h, 2, now), ElementsAre(same[0], same[2]));
    same[3].totalBytes = 7;
    EXPECT_THAT(series(same, 24h, 2, now), ElementsAre(same[0], same[2], same[3]));
}

TEST(StorageTrend, ForecastsFromNowByTheTwoEndsOfTheWindow) {
    // A hundred bytes an hour, six hundred left; what lies between plays no part.
    const Samples samples{ago(5h, 1000), ago(3h, 1), ago(1h, 600)};
    EXPECT_EQ(projectedFullDate(samples, 7 * 24h, now), now + 6h);
}

TEST(StorageTrend, ForecastsFromAnHourOfData) {
    EXPECT_EQ(projectedFullDate({ago(3600s, 200), ago(0s, 100)}, 24h, now), now + 1h);
    EXPECT_EQ(projectedFullDate({ago(3599s, 200), ago(0s, 100)}, 24h, now), std::nullopt);
    EXPECT_EQ(projectedFullDate({ago(0s, 100)}, 24h, now), std::nullopt);
}

TEST(StorageTrend, ForecastsNothingWhileFreeSpaceHoldsOrGrows) {
    EXPECT_EQ(projectedFullDate({ago(5h, 100), ago(0s, 200)}, 24h, now), std::nullopt);
    EXPECT_EQ(projectedFullDate({ago(5h, 100), ago(0s, 100)}, 24h, now), std::nullopt);
    EXPECT_NE(projectedFullDate({ago(5h, 100), ago(0s, 99)}, 24h, now), std::nullopt);
}

TEST(StorageTrend, ForecastsAFullVolumeForNow) {
    EXPECT_EQ(projectedFullDate({ago(5h, 100), ago(1h, 0)}, 24h, now), now);
}

TEST(StorageTrend, ForecastsNothingThreeYearsAhead) {
    // One byte an hour.
    const auto in = [](std::int64_t hours) {
        return projectedFullDate({ago(1h, hours + 1), ago(0s, hours)}, 24h, now);
    };
    EXPECT_EQ(in(3 * 365 * 24), std::nullopt);
    EXPECT_EQ(in(3 * 365 * 24 - 1), now + std::chrono::hours(3 * 365 * 24 - 1));
}

TEST(StorageTrend, HoldsNumbersThatNoVolumeHas) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(delta({ago(1h, least), ago(0s, most)}, 24h, now), most);
    EXPECT_EQ(delta({ago(1h, most), ago(0s, least)}, 24h, now), -most);
    EXPECT_EQ(delta({ago(1h, 0), ago(0s, least)}, 24h, now), -most);
    EXPECT_EQ(projectedFullDate({ago(1h, least), ago(0s, most)}, 24h, now), std::nullopt);
}

TEST(StorageTrend, HoldsAClockThatJumpedByAYear) {
    constexpr auto year = 365 * 24h;
    const Samples samples{ago(2h, 100), ago(-year, 50), ago(year, 70), ago(0s, 80)};
    EXPECT_EQ(delta(samples, 24h, now), -50) << "what is dated ahead lies in the window";
    EXPECT_EQ(delta(samples, 24h, now + 2 * year), std::nullopt);
    EXPECT_EQ(series(samples, 24h, 180, now).size(), 3U);
    EXPECT_NE(projectedFullDate(samples, 24h, now), std::nullopt);
}

TEST(StorageTrend, ThinsEverySeriesAlike) {
    std::mt19937 random(7);
    for (int round = 0; round < 300; ++round) {
        const int count = std::uniform_int_distribution(1, 700)(random);
        const int maximum = std::uniform_int_distribution(1, 200)(random);
        Samples samples = minutes(count);
        const Samples ordered = samples;
        std::ranges::shuffle(samples, random);
        const Samples thinned = series(samples, 24h, maximum, now);
        ASSERT_LE(thinned.size(), std::size_t(maximum) + 1);
        ASSERT_EQ(thinned.front(), ordered.front());
        ASSERT_EQ(thinned.back(), ordered.back());
        ASSERT_TRUE(std::ranges::is_sorted(thinned, {}, &StorageHistorySample::date));
        if (thinned.size() > 2) {
            const std::int64_t stride = thinned[1].availableBytes;
            for (std::size_t i = 0; i + 1 < thinned.size(); ++i)
                ASSERT_EQ(thinned[i].availableBytes, std::int64_t(i) * stride);
        }
    }
}

}  // namespace
}  // namespace cairnfield
