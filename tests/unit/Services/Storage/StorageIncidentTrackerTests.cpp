#include "Services/Storage/StorageIncidentTracker.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;
using enum StorageLevel;

constexpr std::int64_t gibibyte = 1'073'741'824;
constexpr std::int64_t margin = 5 * gibibyte;  // of every volume below 250 GiB
constexpr std::int64_t total = 200'000'000'000;
constexpr StorageThresholds limits{40 * gibibyte, 20 * gibibyte};
constexpr std::int64_t healthy = 100 * gibibyte;
constexpr std::int64_t low = 30 * gibibyte;
constexpr std::int64_t full = 10 * gibibyte;
const Date start{1'000'000'000s};
const std::optional<StorageLevel> noNews;

StorageIncidentTracker at(StorageLevel level) {
    return {.activeLevel = level};
}

struct Row {
    StorageLevel active;
    std::int64_t available;
    StorageThresholds thresholds;
    StorageLevel next;
    std::optional<StorageLevel> news;
};

TEST(StorageIncidentTracker, MovesThroughItsTwelveStates) {
    // Room between warning and normal above the critical limit's margin, and none.
    constexpr StorageThresholds far = limits;
    constexpr StorageThresholds near{22 * gibibyte, 20 * gibibyte};
    const std::vector<Row> rows{
        {normal, healthy, far, normal, noNews},          {normal, low, far, warning, warning},
        {normal, full, far, critical, critical},         {warning, 42 * gibibyte, far, warning, noNews},
        {warning, 46 * gibibyte, far, normal, noNews},   {warning, low, far, warning, noNews},
        {warning, full, far, critical, critical},        {critical, 23 * gibibyte, near, critical, noNews},
        {critical, 41 * gibibyte, far, normal, noNews},  {critical, 22 * gibibyte, far, critical, noNews},
        {critical, 26 * gibibyte, far, warning, noNews}, {critical, full, far, critical, noNews},
    };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Row& row = rows[i];
        StorageIncidentTracker tracker = at(row.active);
        EXPECT_EQ(tracker.evaluate(row.available, total, row.thresholds, start), row.news) << "row " << i;
        EXPECT_EQ(tracker.activeLevel, row.next) << "row " << i;
        EXPECT_EQ(tracker.lastNotifiedAt, row.news ? std::optional(start) : std::nullopt) << "row " << i;
        EXPECT_EQ(tracker.snoozedUntil, std::nullopt);
    }
}

TEST(StorageIncidentTracker, StartsWithoutAnIncident) {
    EXPECT_EQ(StorageIncidentTracker(), (StorageIncidentTracker{normal, std::nullopt, std::nullopt}));
}

TEST(StorageIncidentTracker, TellsOfOneIncidentTwiceAtMost) {
    StorageIncidentTracker tracker;
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), warning);
    EXPECT_EQ(tracker.evaluate(low, total, limits, start + 5min), noNews);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start + 10min), critical);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start + 15min), noNews);
    EXPECT_EQ(tracker.lastNotifiedAt, start + 10min);
}

TEST(StorageIncidentTracker, TellsOnceOfAFallPastBothLimits) {
    StorageIncidentTracker tracker;
    EXPECT_EQ(tracker.evaluate(full, total, limits, start), critical);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start), noNews);
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), noNews) << "coming down is no news";
    EXPECT_EQ(tracker.activeLevel, warning);
}

TEST(StorageIncidentTracker, TellsAgainOfAnEscalationAfterARecovery) {
    StorageIncidentTracker tracker = at(critical);
    EXPECT_EQ(tracker.evaluate(25 * gibibyte, total, limits, start), noNews) << "exactly the margin";
    EXPECT_EQ(tracker.activeLevel, warning);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start), critical);
}

TEST(StorageIncidentTracker, HoldsAnIncidentUntilAWholeMarginIsClimbed) {
    StorageIncidentTracker tracker = at(warning);
    EXPECT_EQ(tracker.evaluate(limits.warningBytes + margin - 1, total, limits, start), noNews);
    EXPECT_EQ(tracker.activeLevel, warning);
    EXPECT_EQ(tracker.evaluate(limits.warningBytes + margin, total, limits, start), noNews);
    EXPECT_EQ(tracker.activeLevel, normal);
}

TEST(StorageIncidentTracker, HoldsACriticalIncidentByItsOwnLimitAlone) {
    StorageIncidentTracker tracker = at(critical);
    (void)tracker.evaluate(limits.criticalBytes + margin - 1, total, limits, start);
    EXPECT_EQ(tracker.activeLevel, critical);
    // Healthy at once, though a warning would still hold here.
    (void)tracker.evaluate(limits.warningBytes + 1, total, limits, start);
    EXPECT_EQ(tracker.activeLevel, normal);
}

TEST(StorageIncidentTracker, TakesALimitItselfForEnoughSpace) {
    StorageIncidentTracker tracker;
    EXPECT_EQ(tracker.evaluate(limits.warningBytes, total, limits, start), noNews);
    EXPECT_EQ(tracker.evaluate(limits.warningBytes - 1, total, limits, start), warning);
    EXPECT_EQ(tracker.evaluate(limits.criticalBytes, total, limits, start), noNews);
    EXPECT_EQ(tracker.evaluate(limits.criticalBytes - 1, total, limits, start), critical);
}

// The free space at which an incident of `warning` ends, above its limit.
std::int64_t marginOf(std::int64_t capacity) {
    const auto ends = [capacity](std::int64_t above) {
        StorageIncidentTracker tracker = at(warning);
        (void)tracker.evaluate(limits.warningBytes + above, capacity, limits, start);
        return tracker.activeLevel == normal;
    };
    std::int64_t below = 0;
    std::int64_t enough = std::int64_t{1} << 61;
    while (enough - below > 1) {
        const std::int64_t middle = below + (enough - below) / 2;
        (ends(middle) ? enough : below) = middle;
    }
    return enough;
}

TEST(StorageIncidentTracker, HasAMarginOfFiveGibibytesOrTwoHundredths) {
    EXPECT_EQ(marginOf(100'000'000'000), 5 * gibibyte);
    EXPECT_EQ(marginOf(1'000'000'000'000), 20'000'000'000);
    EXPECT_EQ(marginOf(0), 5 * gibibyte);
    EXPECT_EQ(marginOf(-1), 5 * gibibyte);
    EXPECT_EQ(marginOf(1'000'000'000'049), 20'000'000'000) << "a part of a byte is dropped";
}

TEST(StorageIncidentTracker, ReportsAnIncidentThatIsSnoozed) {
    StorageIncidentTracker tracker;
    tracker.snoozedUntil = start + 24h;
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), warning);
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), noNews);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start), critical);
    EXPECT_EQ(tracker.evaluate(healthy, total, limits, start + 25h), noNews);
    EXPECT_EQ(tracker.snoozedUntil, start + 24h) << "never cleared here";
}

TEST(StorageIncidentTracker, LeavesAnIncidentOnceItsLimitsAreSwitchedOff) {
    for (const StorageLevel level : {warning, critical}) {
        StorageIncidentTracker tracker = at(level);
        (void)tracker.evaluate(margin - 1, total, {0, 0}, start);
        EXPECT_EQ(tracker.activeLevel, level);
        (void)tracker.evaluate(margin, total, {0, 0}, start);
        EXPECT_EQ(tracker.activeLevel, normal);
    }
}

TEST(StorageIncidentTracker, TellsOfCriticalSpaceWithTheWarningSwitchedOff) {
    StorageIncidentTracker tracker;
    EXPECT_EQ(tracker.evaluate(low, total, {0, 20 * gibibyte}, start), noNews);
    EXPECT_EQ(tracker.evaluate(full, total, {0, 20 * gibibyte}, start), critical);
}

TEST(StorageIncidentTracker, DoesNotMindAClockThatJumpsByAYear) {
    constexpr auto year = 365 * 24h;
    StorageIncidentTracker tracker;
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), warning);
    EXPECT_EQ(tracker.evaluate(low, total, limits, start - year), noNews);
    EXPECT_EQ(tracker.evaluate(full, total, limits, start + year), critical);
    EXPECT_EQ(tracker.lastNotifiedAt, start + year);
    EXPECT_EQ(tracker.evaluate(healthy, total, limits, start), noNews);
    EXPECT_EQ(tracker.evaluate(low, total, limits, start), warning);
    EXPECT_EQ(tracker.lastNotifiedAt, start);
}

TEST(StorageIncidentTrackerDeathTest, StopsTheProcessOverALimitBeyondAllBounds) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    StorageIncidentTracker tracker = at(warning);
    EXPECT_DEATH((void)tracker.evaluate(most, total, {most, 0}, start), "");
    EXPECT_EQ(tracker.evaluate(most, most, limits, start), noNews) << "the largest volume is fine";
}

}  // namespace
}  // namespace cairnfield
