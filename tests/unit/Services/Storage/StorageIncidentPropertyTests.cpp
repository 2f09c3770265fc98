// The tracker on long walks of free space, each from its own seed: what must hold whatever the volume, its
// limits and the readings are.

#include "Services/Storage/StorageIncidentTracker.h"
#include "Services/Storage/ThresholdRecommendationService.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace cairnfield {
namespace {

using namespace std::chrono_literals;
using enum StorageLevel;

constexpr std::int64_t gibibyte = 1'073'741'824;
constexpr int walks = 4000;
constexpr int stepsOfAWalk = 300;

/// A volume, the limits that are set for it, and free space that wanders: mostly a little, around the limits
/// more often than anywhere else, and now and then to anywhere.
class Walk {
public:
    explicit Walk(unsigned seed) : random_(seed) {
        total = between(1, 20'000) * gibibyte / 10;
        limits = chosenLimits();
        available = between(0, total);
    }

    void step() {
        const std::int64_t way = between(0, 99);
        if (way < 3) {
            available = between(0, total);
        } else if (way < 15) {
            const std::int64_t limit = way % 2 == 0 ? limits.warningBytes : limits.criticalBytes;
            available = limit + between(-2, 2) + (way % 3 == 0 ? margin() : 0);
        } else {
            const std::int64_t stride = std::max<std::int64_t>(total / 50, 2);
            available += between(-stride, stride);
        }
        available = std::clamp<std::int64_t>(available, 0, total);
        now += std::chrono::seconds(between(-400, 900));
    }

    [[nodiscard]] std::int64_t margin() const { return std::max(5 * gibibyte, total / 50); }
    [[nodiscard]] StorageLevel level() const {
        return ThresholdRecommendationService::level(available, limits);
    }
    std::int64_t between(std::int64_t least, std::int64_t most) {
        return std::uniform_int_distribution<std::int64_t>(least, most)(random_);
    }

    std::int64_t total = 0;
    std::int64_t available = 0;
    StorageThresholds limits;
    Date now{1'000'000'000s};

private:
    StorageThresholds chosenLimits() {
        switch (between(0, 4)) {
            case 0:
                return {between(0, total), 0};
            case 1:
                return {0, between(0, total)};
            case 2:
                return StorageThresholds{between(0, total), between(0, total)}.normalized();
            default:
                return ThresholdRecommendationService::recommendation(total);
        }
    }

    std::mt19937_64 random_;
};

template <class F>
void forEveryStep(F check) {
    for (unsigned seed = 1; seed <= walks && !testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Walk walk(seed);
        StorageIncidentTracker tracker;
        for (int step = 0; step < stepsOfAWalk; ++step, walk.step()) {
            const StorageIncidentTracker before = tracker;
            const std::optional<StorageLevel> news =
                tracker.evaluate(walk.available, walk.total, walk.limits, walk.now);
            check(walk, before, news, tracker);
        }
    }
}

TEST(StorageIncidentProperty, NewsIsARiseToTheLevelOfTheReadingAndNothingElse) {
    forEveryStep([](const Walk& walk, const StorageIncidentTracker& before, std::optional<StorageLevel> news,
                    const StorageIncidentTracker& after) {
        ASSERT_EQ(news.has_value(), after.activeLevel > before.activeLevel);
        ASSERT_EQ(news.has_value(), walk.level() > before.activeLevel);
        if (news) {
            ASSERT_EQ(*news, walk.level());
            ASSERT_EQ(*news, after.activeLevel);
        }
        ASSERT_EQ(after.lastNotifiedAt, news ? std::optional(walk.now) : before.lastNotifiedAt);
        ASSERT_EQ(after.snoozedUntil, before.snoozedUntil);
    });
}

TEST(StorageIncidentProperty, OneIncidentGivesTwoPiecesOfNewsAtMost) {
    int news = 0;  // since the incident began or last came down a level
    StorageLevel first = normal;
    int incidents = 0;
    forEveryStep([&](const Walk& walk, const StorageIncidentTracker& before, std::optional<StorageLevel> told,
                     const StorageIncidentTracker& after) {
        if (before == StorageIncidentTracker()) news = 0;
        if (after.activeLevel < before.activeLevel) news = after.activeLevel == warning ? 1 : 0;
        if (after.activeLevel == warning && before.activeLevel == critical) first = warning;
        if (told && before.activeLevel == normal) {
            ++incidents;
            news = 0;
            first = *told;
        }
        if (told) ++news;
        ASSERT_LE(news, first == critical ? 1 : 2);
        if (told && news == 2) ASSERT_EQ(*told, critical) << "the second one is the escalation";
        if (walk.level() == before.activeLevel) ASSERT_FALSE(told) << "a repeated level is never news";
    });
    EXPECT_GT(incidents, walks) << "the walks met incidents at all";
}

TEST(StorageIncidentProperty, AnIncidentComesDownOnlyAWholeMarginAboveItsOwnLimit) {
    forEveryStep([](const Walk& walk, const StorageIncidentTracker& before, std::optional<StorageLevel>,
                    const StorageIncidentTracker& after) {
        if (before.activeLevel == normal) return;
        const std::int64_t limit =
            before.activeLevel == warning ? walk.limits.warningBytes : walk.limits.criticalBytes;
        const bool isClear = walk.available >= limit + walk.margin();
        const bool cameDown = after.activeLevel < before.activeLevel;
        ASSERT_EQ(cameDown, isClear && walk.level() < before.activeLevel);
        if (cameDown) ASSERT_EQ(after.activeLevel, walk.level());
    });
}

TEST(StorageIncidentProperty, HoveringAroundALimitTellsOnce) {
    for (unsigned seed = 1; seed <= walks && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Walk walk(seed);
        walk.limits = ThresholdRecommendationService::recommendation(walk.total);
        StorageIncidentTracker tracker;
        int news = 0;
        for (int step = 0; step < stepsOfAWalk; ++step) {
            // Between the critical limit and just below where a warning ends.
            const std::int64_t available =
                walk.between(walk.limits.criticalBytes, walk.limits.warningBytes + walk.margin() - 1);
            if (tracker.evaluate(available, walk.total, walk.limits, walk.now)) ++news;
        }
        ASSERT_LE(news, 1);
    }
}

TEST(StorageIncidentProperty, ASnoozeChangesNoAnswer) {
    for (unsigned seed = 1; seed <= walks && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        Walk walk(seed);
        StorageIncidentTracker plain;
        StorageIncidentTracker snoozed;
        for (int step = 0; step < stepsOfAWalk; ++step, walk.step()) {
            if (walk.between(0, 9) == 0) snoozed.snoozedUntil = walk.now + std::chrono::hours(1);
            ASSERT_EQ(plain.evaluate(walk.available, walk.total, walk.limits, walk.now),
                      snoozed.evaluate(walk.available, walk.total, walk.limits, walk.now));
            ASSERT_EQ(plain.activeLevel, snoozed.activeLevel);
            ASSERT_EQ(plain.lastNotifiedAt, snoozed.lastNotifiedAt);
        }
    }
}

}  // namespace
}  // namespace cairnfield
