#include "Models/Storage.h"

#include "Models/JSONFields.h"
#include "Shared/Formatting/ByteFormatting.h"

#include <algorithm>

namespace cairnfield {

double StorageSnapshot::availableFraction() const {
    if (totalCapacity < 1) return 0;
    return static_cast<double>(availableCapacity) / static_cast<double>(totalCapacity);
}

void to_json(Json& json, const StorageSnapshot& snapshot) {
    json = {{"volumeURL", snapshot.volumeURL},
            {"volumeName", jsonFromText(snapshot.volumeName)},
            {"totalCapacity", snapshot.totalCapacity},
            {"availableCapacity", snapshot.availableCapacity},
            {"measuredAt", jsonFromDate(snapshot.measuredAt)}};
}

void from_json(const Json& json, StorageSnapshot& snapshot) {
    detail::readRequired(json, "volumeURL", snapshot.volumeURL);
    detail::readRequired(json, "volumeName", snapshot.volumeName);
    detail::readRequired(json, "totalCapacity", snapshot.totalCapacity);
    detail::readRequired(json, "availableCapacity", snapshot.availableCapacity);
    detail::readRequired(json, "measuredAt", snapshot.measuredAt);
}

StorageThresholds StorageThresholds::normalized() const {
    if (criticalBytes < warningBytes) return *this;
    return {warningBytes, std::max<std::int64_t>(warningBytes / 2, 0)};
}

std::string_view rawValue(StorageLevel level) {
    switch (level) {
        case StorageLevel::normal:
            return "normal";
        case StorageLevel::warning:
            return "warning";
        case StorageLevel::critical:
            return "critical";
    }
    return {};
}

std::string_view title(StorageLevel level) {
    switch (level) {
        case StorageLevel::normal:
            return "Healthy";
        case StorageLevel::warning:
            return "Low space";
        case StorageLevel::critical:
            return "Critically low";
    }
    return {};
}

std::string_view symbolName(StorageLevel level) {
    switch (level) {
        case StorageLevel::normal:
            return "checkmark.circle";
        case StorageLevel::warning:
            return "exclamationmark.triangle";
        case StorageLevel::critical:
            return "exclamationmark.octagon";
    }
    return {};
}

std::string_view rawValue(ThresholdMode mode) {
    switch (mode) {
        case ThresholdMode::smart:
            return "smart";
        case ThresholdMode::percentage:
            return "percentage";
        case ThresholdMode::absolute:
            return "absolute";
    }
    return {};
}

std::string_view title(ThresholdMode mode) {
    switch (mode) {
        case ThresholdMode::smart:
            return "Smart recommendation";
        case ThresholdMode::percentage:
            return "Percentage of capacity";
        case ThresholdMode::absolute:
            return "Fixed amount";
    }
    return {};
}

std::optional<ThresholdMode> thresholdModeFromRawValue(std::string_view text) {
    for (const ThresholdMode mode :
         {ThresholdMode::smart, ThresholdMode::percentage, ThresholdMode::absolute})
        if (rawValue(mode) == text) return mode;
    return std::nullopt;
}

double rawValue(ThresholdPreset preset) {
    switch (preset) {
        case ThresholdPreset::fivePercent:
            return 0.05;
        case ThresholdPreset::tenPercent:
            return 0.10;
        case ThresholdPreset::fifteenPercent:
            return 0.15;
        case ThresholdPreset::twentyPercent:
            return 0.20;
        case ThresholdPreset::twentyFivePercent:
            return 0.25;
    }
    return 0;
}

std::string title(ThresholdPreset preset) {
    return ByteFormatting::percentString(rawValue(preset));
}

std::optional<ThresholdPreset> thresholdPresetFromRawValue(double fraction) {
    for (const ThresholdPreset preset : allThresholdPresets)
        if (rawValue(preset) == fraction) return preset;
    return std::nullopt;
}

}  // namespace cairnfield
