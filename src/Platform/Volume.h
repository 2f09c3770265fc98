#pragma once
// What the desktop knows about volumes: the one that a path lies on, and where all are mounted. Callable from
// any thread; blocks as long as the file system does, so never called on the main thread.

#include "Shared/Paths/FilePath.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

/// Each absent where the system gives none.
struct VolumeFacts {
    std::optional<std::int64_t> totalCapacity;  ///< bytes
    /// Bytes, with what the system would free by itself for something important.
    std::optional<std::int64_t> availableCapacityForImportantUsage;
    std::optional<std::int64_t> availableCapacity;  ///< bytes that an unprivileged user may take
    std::optional<std::string> name;                ///< what the person calls the volume
    std::optional<FilePath> root;                   ///< the topmost directory of the volume

    friend bool operator==(const VolumeFacts&, const VolumeFacts&) = default;
};

class VolumeInformation {
public:
    virtual ~VolumeInformation() = default;
    /// Throws std::system_error when nothing is at the path, or the system does not answer for it.
    [[nodiscard]] virtual VolumeFacts facts(const FilePath& path) const = 0;
    /// Where anything is mounted at this moment, as this process sees it. Throws std::system_error.
    [[nodiscard]] virtual std::vector<FilePath> mountPoints() const = 0;
};

}  // namespace cairnfield
