#pragma once
// What a list of samples tells: the change of free space, a line for the chart, and when the volume will be
// full. Pure functions. Each looks only at samples dated at or after `now` minus the window, in the order of
// their dates, whatever order they come in.

#include "Models/StorageHistory.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace cairnfield::StorageTrend {

/// Bytes that free space grew by between the first and the last sample; negative when it shrank. Absent
/// without two samples of different dates.
[[nodiscard]] std::optional<std::int64_t> delta(const std::vector<StorageHistorySample>& samples,
                                                std::chrono::seconds window, Date now);

/// Evenly thinned to at most `maximumPoints`, which is at least 1, and the newest sample at its end whatever
/// the thinning: one point more at most.
[[nodiscard]] std::vector<StorageHistorySample> series(const std::vector<StorageHistorySample>& samples,
                                                       std::chrono::seconds window, int maximumPoints,
                                                       Date now);

/// When free space is used up if it goes on as it went between the first and the last sample. Absent when
/// they are less than an hour apart, when free space does not shrink, and when it is three years away or
/// more.
[[nodiscard]] std::optional<Date> projectedFullDate(const std::vector<StorageHistorySample>& samples,
                                                    std::chrono::seconds window, Date now);

}  // namespace cairnfield::StorageTrend
