#include "Services/Storage/StorageIncidentTracker.h"

#include "Services/Storage/ThresholdRecommendationService.h"

#include <algorithm>
#include <cstdlib>

namespace cairnfield {

namespace {

constexpr std::int64_t smallestMargin = 5'368'709'120;  // 5 GiB

std::int64_t recoveryMargin(std::int64_t totalCapacity) {
    return std::max(smallestMargin, static_cast<std::int64_t>(static_cast<double>(totalCapacity) * 0.02));
}

std::int64_t sumOrStop(std::int64_t limit, std::int64_t margin) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(limit, margin, &sum)) std::abort();
    return sum;
}

}  // namespace

std::optional<StorageLevel> StorageIncidentTracker::evaluate(std::int64_t available,
                                                             std::int64_t totalCapacity,
                                                             const StorageThresholds& thresholds, Date now) {
    const StorageLevel level = ThresholdRecommendationService::level(available, thresholds);
    if (level < activeLevel) {
        // The limit of the incident in force alone counts, wherever free space went from there.
        const std::int64_t limit =
            activeLevel == StorageLevel::warning ? thresholds.warningBytes : thresholds.criticalBytes;
        if (available >= sumOrStop(limit, recoveryMargin(totalCapacity))) activeLevel = level;
        return std::nullopt;
    }
    // The level in force is never news, snoozed or not.
    if (level == activeLevel) return std::nullopt;
    activeLevel = level;
    lastNotifiedAt = now;
    return level;
}

}  // namespace cairnfield
