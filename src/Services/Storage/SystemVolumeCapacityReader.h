#pragma once

#include "Platform/Volume.h"
#include "Services/Storage/VolumeCapacityReading.h"

namespace cairnfield {

/// Reads what the desktop tells. Has no state; both arguments outlive it.
class SystemVolumeCapacityReader final : public VolumeCapacityReading {
public:
    SystemVolumeCapacityReader(const VolumeInformation& volumes, const WallClock& clock)
        : volumes_(volumes), clock_(clock) {}

    [[nodiscard]] StorageSnapshot snapshot(const FilePath& url) const override;

private:
    const VolumeInformation& volumes_;
    const WallClock& clock_;
};

}  // namespace cairnfield
