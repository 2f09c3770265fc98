#pragma once
// Free space over time, as "storage-history.json" holds it. Plain values, any thread.

#include "Models/JSON.h"
#include "Models/Storage.h"

#include <cstdint>
#include <vector>

namespace cairnfield {

/// What one reading of the volume said; its date is its identity.
struct StorageHistorySample {
    Date date{};
    std::int64_t availableBytes = 0;
    std::int64_t totalBytes = 0;

    [[nodiscard]] static StorageHistorySample of(const StorageSnapshot& snapshot);

    friend bool operator==(const StorageHistorySample&, const StorageHistorySample&) = default;
};

/// The content of "storage-history.json".
struct StorageHistoryFile {
    std::int64_t schemaVersion = 1;
    std::vector<StorageHistorySample> samples;  ///< oldest first, as long as the clock was not set back

    friend bool operator==(const StorageHistoryFile&, const StorageHistoryFile&) = default;
};

void to_json(Json& json, const StorageHistorySample& sample);
void from_json(const Json& json, StorageHistorySample& sample);
void to_json(Json& json, const StorageHistoryFile& file);
void from_json(const Json& json, StorageHistoryFile& file);

}  // namespace cairnfield
