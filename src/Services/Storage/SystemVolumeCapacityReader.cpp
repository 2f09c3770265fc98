#include "Services/Storage/SystemVolumeCapacityReader.h"

namespace cairnfield {

StorageSnapshot SystemVolumeCapacityReader::snapshot(const FilePath& url) const {
    const VolumeFacts facts = volumes_.facts(url);
    const std::int64_t available =
        facts.availableCapacityForImportantUsage.value_or(facts.availableCapacity.value_or(0));
    return {.volumeURL = facts.root.value_or(url),
            .volumeName = facts.name.value_or(url.lastComponent()),
            .totalCapacity = facts.totalCapacity.value_or(0),
            .availableCapacity = available,
            .measuredAt = clock_.now()};
}

}  // namespace cairnfield
