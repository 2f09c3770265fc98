#pragma once

#include "Models/Storage.h"

namespace cairnfield {

/// One reading of the volume that a path lies on.
class VolumeCapacityReading {
public:
    virtual ~VolumeCapacityReading() = default;
    /// Blocks; never called on the main thread, and safe from any other. Throws std::system_error.
    [[nodiscard]] virtual StorageSnapshot snapshot(const FilePath& url) const = 0;
};

}  // namespace cairnfield
