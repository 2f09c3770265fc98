#include "Services/Storage/StorageTrend.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <iterator>
#include <limits>

namespace cairnfield {

namespace {

constexpr double shortestTrend = 3600;         // seconds
constexpr double furthestForecast = 94608000;  // seconds: three years of 365 days

std::vector<StorageHistorySample> within(std::chrono::seconds window, Date now,
                                         const std::vector<StorageHistorySample>& samples) {
    std::vector<StorageHistorySample> kept;
    std::ranges::copy_if(samples, std::back_inserter(kept),
                         [&](const StorageHistorySample& sample) { return sample.date >= now - window; });
    std::ranges::sort(kept, {}, &StorageHistorySample::date);
    return kept;
}

/// Held at what has a sign to show: the numbers come from a file that anyone may have written.
std::int64_t difference(std::int64_t from, std::int64_t to) {
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    std::int64_t result = 0;
    if (__builtin_sub_overflow(to, from, &result)) return to < 0 ? -most : most;
    return std::max(result, -most);
}

}  // namespace

std::optional<std::int64_t> StorageTrend::delta(const std::vector<StorageHistorySample>& samples,
                                                std::chrono::seconds window, Date now) {
    const std::vector<StorageHistorySample> kept = within(window, now, samples);
    if (kept.empty() || kept.front().date == kept.back().date) return std::nullopt;
    return difference(kept.front().availableBytes, kept.back().availableBytes);
}

std::vector<StorageHistorySample> StorageTrend::series(const std::vector<StorageHistorySample>& samples,
                                                       std::chrono::seconds window, int maximumPoints,
                                                       Date now) {
    assert(maximumPoints >= 1);
    std::vector<StorageHistorySample> kept = within(window, now, samples);
    const auto count = static_cast<std::int64_t>(kept.size());
    if (maximumPoints >= count) return kept;
    const auto stride = static_cast<std::size_t>((count + maximumPoints - 1) / maximumPoints);
    std::vector<StorageHistorySample> thinned;
    for (std::size_t i = 0; i < kept.size(); i += stride) thinned.push_back(kept[i]);
    if (thinned.back() != kept.back()) thinned.push_back(kept.back());
    return thinned;
}

std::optional<Date> StorageTrend::projectedFullDate(const std::vector<StorageHistorySample>& samples,
                                                    std::chrono::seconds window, Date now) {
    const std::vector<StorageHistorySample> kept = within(window, now, samples);
    if (kept.empty()) return std::nullopt;
    const StorageHistorySample& first = kept.front();
    const StorageHistorySample& last = kept.back();
    const double elapsed = secondsBetween(first.date, last.date);
    if (elapsed < shortestTrend) return std::nullopt;
    const std::int64_t consumed = difference(last.availableBytes, first.availableBytes);
    if (consumed < 1) return std::nullopt;
    const double rate = static_cast<double>(consumed) / elapsed;
    if (!(rate > 0)) return std::nullopt;
    const double seconds = static_cast<double>(last.availableBytes) / rate;
    if (!std::isfinite(seconds) || seconds >= furthestForecast) return std::nullopt;
    return now + std::chrono::duration_cast<Date::duration>(Seconds(seconds));
}

}  // namespace cairnfield
