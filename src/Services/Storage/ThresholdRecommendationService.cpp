#include "Services/Storage/ThresholdRecommendationService.h"

#include "Shared/Formatting/ByteFormatting.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace cairnfield {

namespace {

constexpr double gibibyte = 1'073'741'824;

/// What a limit aims at, within which shares of the capacity it stays, and what it never exceeds.
struct Target {
    double bytes;
    double smallestShare;
    double largestShare;
    double cap;
};

constexpr Target warningTarget{40 * gibibyte, 0.10, 0.20, 150 * gibibyte};
constexpr Target criticalTarget{20 * gibibyte, 0.05, 0.10, 75 * gibibyte};

std::int64_t limitFor(const Target& target, double capacity) {
    const double wanted = std::min(capacity * target.largestShare, target.bytes);
    return std::llround(std::min(target.cap, std::max(capacity * target.smallestShare, wanted)));
}

}  // namespace

StorageThresholds ThresholdRecommendationService::recommendation(std::int64_t totalCapacity) {
    if (totalCapacity < 1) return {};
    const auto capacity = static_cast<double>(totalCapacity);
    return StorageThresholds{limitFor(warningTarget, capacity), limitFor(criticalTarget, capacity)}
        .normalized();
}

std::string ThresholdRecommendationService::explanation(std::int64_t totalCapacity) {
    const StorageThresholds limits = recommendation(totalCapacity);
    return fmt::format(
        "This volume holds {}. Cairnfield warns when free space falls below {} and treats anything under {} "
        "as critical. "
        "Larger disks get proportionally larger buffers, capped so a very large volume does not reserve an "
        "unreasonable "
        "amount.",
        ByteFormatting::string(totalCapacity), ByteFormatting::string(limits.warningBytes),
        ByteFormatting::string(limits.criticalBytes));
}

StorageLevel ThresholdRecommendationService::level(std::int64_t availableCapacity,
                                                   const StorageThresholds& thresholds) {
    if (thresholds.criticalBytes >= 1 && availableCapacity < thresholds.criticalBytes)
        return StorageLevel::critical;
    if (thresholds.warningBytes >= 1 && availableCapacity < thresholds.warningBytes)
        return StorageLevel::warning;
    return StorageLevel::normal;
}

}  // namespace cairnfield
