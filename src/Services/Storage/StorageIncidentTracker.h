#pragma once
// Decides, reading after reading, when low space is news: once for each incident, and once more when it gets
// worse. An incident holds until free space has climbed a full margin above its own limit, so that a reading
// which hovers around a limit neither repeats the alarm nor ends it. A plain value, not stored: a restart in
// the middle of an incident reports it again.

#include "Models/Storage.h"

#include <cstdint>
#include <optional>

namespace cairnfield {

struct StorageIncidentTracker {
    StorageLevel activeLevel = StorageLevel::normal;  ///< of the incident in force; normal: there is none
    std::optional<Date> lastNotifiedAt;               ///< when there was news
    /// The person's answer, for the record. It mutes nothing: what it could mute is not news anyway.
    std::optional<Date> snoozedUntil;

    /// The level that is news, or absent. Byte counts. A limit so high that the margin above it does not fit
    /// 64 bits is a programming fault that stops the process.
    [[nodiscard]] std::optional<StorageLevel> evaluate(std::int64_t available, std::int64_t totalCapacity,
                                                       const StorageThresholds& thresholds, Date now);

    friend bool operator==(const StorageIncidentTracker&, const StorageIncidentTracker&) = default;
};

}  // namespace cairnfield
