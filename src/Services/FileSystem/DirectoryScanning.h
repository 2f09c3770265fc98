#pragma once
// How much disk a directory takes, as the rest of the program asks it.

#include "Models/DirectoryScan.h"
#include "Shared/Concurrency/Task.h"

#include <cstdint>
#include <optional>

namespace cairnfield {

class DirectoryScanning {
public:
    virtual ~DirectoryScanning() = default;

    /// With `useCache` a result younger than the cache's lifetime will do. Throws CairnfieldError
    /// (PathMissing, PermissionDenied), Cancelled, or std::system_error.
    virtual Task<DirectoryScanResult> size(FilePath url, bool useCache) = 0;

    /// A result younger than the cache's lifetime; never walks.
    virtual Task<std::optional<DirectoryScanResult>> cachedResult(FilePath url) = 0;

    /// The allocated bytes of one item. Throws std::system_error. Cheap, on the caller's thread.
    [[nodiscard]] virtual std::int64_t allocatedSize(const FilePath& item) = 0;
};

}  // namespace cairnfield
