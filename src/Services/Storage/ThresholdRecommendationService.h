#pragma once
// Limits that fit a volume of any size, and the level that a reading has under given limits. Pure functions.

#include "Models/Storage.h"

#include <cstdint>
#include <string>

namespace cairnfield::ThresholdRecommendationService {

/// A target of 40 and 20 GiB, kept within 10 to 20 % and 5 to 10 % of the capacity, and capped at 150 and 75
/// GiB. A capacity below 1 switches both limits off.
[[nodiscard]] StorageThresholds recommendation(std::int64_t totalCapacity);

/// The recommendation in words for the person.
[[nodiscard]] std::string explanation(std::int64_t totalCapacity);

/// Free space strictly below a limit that is at least 1 raises that limit's level.
[[nodiscard]] StorageLevel level(std::int64_t availableCapacity, const StorageThresholds& thresholds);

}  // namespace cairnfield::ThresholdRecommendationService
