#include "Services/FileSystem/DirectorySizeScanner.h"

#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/CurrentTask.h"
#include "Shared/Concurrency/RunOn.h"

#include <stop_token>
#include <utility>

namespace cairnfield {

DirectorySizeScanner::DirectorySizeScanner(Executor& pool, Executor& walking, TreeMeasuring& measurer,
                                           const WallClock& clock, std::size_t maxConcurrentScans,
                                           double cacheLifetime)
    : Actor(pool),
      walking_(walking),
      measurer_(measurer),
      clock_(clock),
      cacheLifetime_(cacheLifetime),
      slots_(maxConcurrentScans) {}

DirectorySizeScanner::~DirectorySizeScanner() = default;

Task<DirectoryScanResult> DirectorySizeScanner::size(FilePath url, bool useCache) {
    assertIsolated();
    const FilePath key = url.standardized();
    if (useCache) {
        if (std::optional<DirectoryScanResult> fresh = freshEntry(key)) co_return std::move(*fresh);
    }
    if (const auto running = inFlight_.find(key); running != inFlight_.end()) {
        const TaskHandle<DirectoryScanResult> joined = running->second;
        DirectoryScanResult shared = co_await joined.value();
        co_return shared;
    }
    if (isStopped_) throw Cancelled();
    const TaskHandle<DirectoryScanResult> started = spawn(executor(), walk(key));
    inFlight_.emplace(key, started);
    try {
        DirectoryScanResult result = co_await started.value();
        cache_.insert_or_assign(key, result);
        inFlight_.erase(key);
        co_return result;
    } catch (...) {
        inFlight_.erase(key);  // an older entry of the cache stays
        throw;
    }
}

Task<std::optional<DirectoryScanResult>> DirectorySizeScanner::cachedResult(FilePath url) {
    assertIsolated();
    co_return freshEntry(url.standardized());
}

std::int64_t DirectorySizeScanner::allocatedSize(const FilePath& item) {
    return measurer_.allocatedSize(item);
}

Task<> DirectorySizeScanner::invalidate(FilePath url) {
    assertIsolated();
    cache_.erase(url.standardized());
    co_return;
}

Task<> DirectorySizeScanner::invalidateAll() {
    assertIsolated();
    cache_.clear();
    co_return;
}

Task<> DirectorySizeScanner::stop() {
    assertIsolated();
    isStopped_ = true;
    for (const auto& [key, walk] : inFlight_) walk.cancel();
    while (!inFlight_.empty()) {
        const TaskHandle<DirectoryScanResult> walk = inFlight_.begin()->second;
        try {
            static_cast<void>(co_await walk.value());
        } catch (const std::exception&) {
            // Whoever asked for the walk hears of it.
        }
        co_await yieldNow();  // the one who started it takes it out
    }
}

Task<DirectoryScanResult> DirectorySizeScanner::walk(FilePath root) {
    assertIsolated();
    const Semaphore::Permit slot = co_await slots_.acquire();
    const std::stop_token stop = co_await currentStopToken();
    auto measure = [this, &root, &stop] { return measurer_.measure(root, stop); };
    DirectoryScanResult result = co_await runOn(walking_, measure);
    co_return result;
}

std::optional<DirectoryScanResult> DirectorySizeScanner::freshEntry(const FilePath& key) const {
    assertIsolated();
    const auto entry = cache_.find(key);
    if (entry == cache_.end() || secondsBetween(entry->second.scannedAt, clock_.now()) >= cacheLifetime_)
        return std::nullopt;
    return entry->second;
}

}  // namespace cairnfield
