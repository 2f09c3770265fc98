#pragma once
// Sizes directories with as little harm to the machine as possible: at most two walks at once, one walk for a
// directory however many callers ask, and a cache of half an hour. An actor, shared by everything that asks
// for sizes, and alone in owning these rules; what counts in a walk is TreeMeasuring's.
//
// A walk belongs to nobody: cancelling a caller does not stop it. Its result goes to the cache only if the
// caller that started it is still there to store it.

#include "Platform/TreeMeasuring.h"
#include "Services/FileSystem/DirectoryScanning.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Concurrency/Semaphore.h"
#include "Shared/Concurrency/TaskHandle.h"
#include "Shared/Time/Date.h"

#include <map>
#include <memory>

namespace cairnfield {

class DirectorySizeScanner final : public Actor, public DirectoryScanning {
public:
    static constexpr std::size_t defaultConcurrentScans = 2;
    static constexpr double defaultCacheLifetime = 1800;  ///< seconds; at exactly this age a result is stale

    /// `walking` is the pool that walks may block, `measurer` and `clock` outlive the scanner.
    DirectorySizeScanner(Executor& pool, Executor& walking, TreeMeasuring& measurer, const WallClock& clock,
                         std::size_t maxConcurrentScans = defaultConcurrentScans,
                         double cacheLifetime = defaultCacheLifetime);
    ~DirectorySizeScanner() override;

    /// A walk of the same path that is under way is joined, whatever `useCache` says, and its failure shared.
    Task<DirectoryScanResult> size(FilePath url, bool useCache) override;
    Task<std::optional<DirectoryScanResult>> cachedResult(FilePath url) override;
    [[nodiscard]] std::int64_t allocatedSize(const FilePath& item) override;

    /// Drops the entry of this path and no other: those of folders above and below stay.
    Task<> invalidate(FilePath url);
    Task<> invalidateAll();

    /// Cancels every walk and returns when the last has ended. For the program's end: from now on a call that
    /// would have to walk throws Cancelled.
    Task<> stop();

private:
    Task<DirectoryScanResult> walk(FilePath root);
    [[nodiscard]] std::optional<DirectoryScanResult> freshEntry(const FilePath& key) const;

    Executor& walking_;
    TreeMeasuring& measurer_;
    const WallClock& clock_;
    const double cacheLifetime_;
    Semaphore slots_;  ///< first in, first out
    // Isolated.
    bool isStopped_ = false;
    std::map<FilePath, DirectoryScanResult> cache_;
    std::map<FilePath, TaskHandle<DirectoryScanResult>> inFlight_;
};

}  // namespace cairnfield
