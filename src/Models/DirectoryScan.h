#pragma once
// What one walk of a directory found. Plain values, any thread.

#include "Models/JSON.h"
#include "Shared/Paths/FilePath.h"
#include "Shared/Time/Date.h"

#include <cstdint>
#include <string>
#include <vector>

namespace cairnfield {

/// A direct child of a scanned directory with everything below it.
struct ChildSize {
    FilePath url;
    std::int64_t bytes = 0;
    bool isDirectory = false;

    friend bool operator==(const ChildSize&, const ChildSize&) = default;
};

struct DirectoryScanResult {
    FilePath url;                 ///< the standardized path that was walked
    std::int64_t totalBytes = 0;  ///< allocated on disk; the root's own entry and symbolic links do not count
    std::int64_t fileCount = 0;   ///< counted entries that are not directories
    bool isEstimated = true;      ///< always: a hard link counts under each of its names
    std::vector<FilePath> permissionErrorPaths;  ///< what the walk could not enter
    std::vector<ChildSize> largestChildren;      ///< at most 12, largest first
    double duration = 0;                         ///< seconds; 0 for a single file
    Date scannedAt{};                            ///< end of the walk

    friend bool operator==(const DirectoryScanResult&, const DirectoryScanResult&) = default;
};

void to_json(Json& json, const ChildSize& child);
void to_json(Json& json, const DirectoryScanResult& result);

}  // namespace cairnfield
