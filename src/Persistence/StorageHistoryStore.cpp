#include "Persistence/StorageHistoryStore.h"

#include "Persistence/JSONFileStore.h"
#include "Persistence/StoredFileNames.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <utility>

namespace cairnfield {

StorageHistoryStore::StorageHistoryStore(Executor& pool, const ApplicationSupport& support,
                                         double retentionDays, std::chrono::seconds minimumSpacing,
                                         std::size_t maximumSamples)
    : Actor(pool),
      store_(std::make_unique<JSONFileStore<StorageHistoryFile>>(
          pool, support, StoredFileNames::storageHistory, StorageHistoryFile())),
      retention_(retentionDays * 24 * 3600),
      minimumSpacing_(static_cast<double>(minimumSpacing.count())),
      maximumSamples_(maximumSamples) {}

StorageHistoryStore::~StorageHistoryStore() = default;

Task<std::vector<StorageHistorySample>> StorageHistoryStore::record(StorageSnapshot snapshot) {
    const StorageHistorySample sample = StorageHistorySample::of(snapshot);
    std::function<void(StorageHistoryFile&)> append = [this, sample](StorageHistoryFile& file) {
        std::vector<StorageHistorySample>& samples = file.samples;
        if (!samples.empty() && secondsBetween(samples.back().date, sample.date) < minimumSpacing_)
            samples.pop_back();
        samples.push_back(sample);
        std::erase_if(samples, [&](const StorageHistorySample& kept) {
            return secondsBetween(kept.date, sample.date) > retention_;
        });
        if (samples.size() > maximumSamples_)
            samples.erase(samples.begin(), samples.end() - static_cast<std::ptrdiff_t>(maximumSamples_));
    };
    try {
        StorageHistoryFile file = co_await store_->mutate(std::move(append));
        co_return std::move(file.samples);
    } catch (const std::exception& failure) {
        Log::persistence().error("Could not write {}: {}", StoredFileNames::storageHistory,
                                 visibleText(describe(failure)));
    }
    co_return std::vector<StorageHistorySample>{sample};
}

Task<std::vector<StorageHistorySample>> StorageHistoryStore::samples() {
    StorageHistoryFile file = co_await store_->load();
    co_return std::move(file.samples);
}

}  // namespace cairnfield
