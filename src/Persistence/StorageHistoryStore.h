#pragma once
// Owns "storage-history.json": free space over the last weeks. An actor; every reading is one mutation of the
// file, saved at once.
//
// Bounded three ways: a sample less than the spacing after the last one replaces it, samples older than the
// retention go, and of more than the maximum the oldest go. A clock that was set back gives a negative
// distance, which replaces the last sample too.

#include "Models/StorageHistory.h"
#include "Persistence/ApplicationSupport.h"
#include "Shared/Concurrency/Actor.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <vector>

namespace cairnfield {

template <class Value>
class JSONFileStore;

class StorageHistoryStore final : public Actor {
public:
    /// Reads nothing.
    StorageHistoryStore(Executor& pool, const ApplicationSupport& support, double retentionDays = 30,
                        std::chrono::seconds minimumSpacing = std::chrono::seconds(60),
                        std::size_t maximumSamples = 4000);
    ~StorageHistoryStore();

    /// The stored samples with this one. When the file cannot be written, the new sample alone: the file and
    /// the next call keep the old ones, and there is a line in the log.
    Task<std::vector<StorageHistorySample>> record(StorageSnapshot snapshot);
    Task<std::vector<StorageHistorySample>> samples();

private:
    const std::unique_ptr<JSONFileStore<StorageHistoryFile>> store_;
    const double retention_;       ///< seconds
    const double minimumSpacing_;  ///< seconds
    const std::size_t maximumSamples_;
};

}  // namespace cairnfield
