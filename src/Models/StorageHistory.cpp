#include "Models/StorageHistory.h"

#include "Models/JSONFields.h"

namespace cairnfield {

StorageHistorySample StorageHistorySample::of(const StorageSnapshot& snapshot) {
    return {snapshot.measuredAt, snapshot.availableCapacity, snapshot.totalCapacity};
}

void to_json(Json& json, const StorageHistorySample& sample) {
    json = {{"date", jsonFromDate(sample.date)},
            {"availableBytes", sample.availableBytes},
            {"totalBytes", sample.totalBytes}};
}

void from_json(const Json& json, StorageHistorySample& sample) {
    detail::readRequired(json, "date", sample.date);
    detail::readRequired(json, "availableBytes", sample.availableBytes);
    detail::readRequired(json, "totalBytes", sample.totalBytes);
}

void to_json(Json& json, const StorageHistoryFile& file) {
    json = {{"schemaVersion", file.schemaVersion}, {"samples", file.samples}};
}

void from_json(const Json& json, StorageHistoryFile& file) {
    detail::readRequired(json, "schemaVersion", file.schemaVersion);
    detail::readRequired(json, "samples", file.samples);
}

}  // namespace cairnfield
