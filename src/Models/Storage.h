#pragma once
// What the storage side speaks in: one reading of a volume, the pair of limits it is judged by, and the three
// levels. Plain values without input or output, any thread.

#include "Models/JSON.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cairnfield {

/// One reading of one volume.
struct StorageSnapshot {
    FilePath volumeURL;  ///< the volume's root
    std::string volumeName;
    std::int64_t totalCapacity = 0;      ///< bytes; 0 when the system gives none
    std::int64_t availableCapacity = 0;  ///< bytes that an unprivileged user may take
    Date measuredAt{};

    [[nodiscard]] std::int64_t usedCapacity() const { return totalCapacity - availableCapacity; }
    /// 0 when the total is below 1.
    [[nodiscard]] double availableFraction() const;

    friend bool operator==(const StorageSnapshot&, const StorageSnapshot&) = default;
};

void to_json(Json& json, const StorageSnapshot& snapshot);
void from_json(const Json& json, StorageSnapshot& snapshot);

/// Free space below a limit raises its level. A limit of 0 or less is switched off.
struct StorageThresholds {
    std::int64_t warningBytes = 0;
    std::int64_t criticalBytes = 0;

    /// The critical limit forced under the warning limit: at or above it, it becomes half of it, and never
    /// negative.
    [[nodiscard]] StorageThresholds normalized() const;

    friend bool operator==(const StorageThresholds&, const StorageThresholds&) = default;
};

/// Ordered: normal is the smallest.
enum class StorageLevel { normal, warning, critical };

[[nodiscard]] std::string_view rawValue(StorageLevel level);
[[nodiscard]] std::string_view title(StorageLevel level);       ///< "Healthy", "Low space", "Critically low"
[[nodiscard]] std::string_view symbolName(StorageLevel level);  ///< of the status symbol

/// How the limits are chosen.
enum class ThresholdMode { smart, percentage, absolute };

[[nodiscard]] std::string_view rawValue(ThresholdMode mode);
[[nodiscard]] std::string_view title(ThresholdMode mode);
[[nodiscard]] std::optional<ThresholdMode> thresholdModeFromRawValue(std::string_view text);

/// The fractions of the capacity that are offered for a limit. Another fraction is as valid, only not
/// offered.
enum class ThresholdPreset { fivePercent, tenPercent, fifteenPercent, twentyPercent, twentyFivePercent };

inline constexpr std::array allThresholdPresets{
    ThresholdPreset::fivePercent, ThresholdPreset::tenPercent, ThresholdPreset::fifteenPercent,
    ThresholdPreset::twentyPercent, ThresholdPreset::twentyFivePercent};

[[nodiscard]] double rawValue(ThresholdPreset preset);    ///< the fraction
[[nodiscard]] std::string title(ThresholdPreset preset);  ///< "5%", in the user's locale
[[nodiscard]] std::optional<ThresholdPreset> thresholdPresetFromRawValue(double fraction);

}  // namespace cairnfield
