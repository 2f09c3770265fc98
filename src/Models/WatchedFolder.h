#pragma once
// The folders that the person chose, the sizes they had over the last day, and the worktrees that were
// pinned. Plain values, any thread.

#include "Models/JSON.h"
#include "Models/Storage.h"
#include "Models/UUID.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace cairnfield {

struct WatchedFolder {
    UUID id;                  ///< goes into notification identifiers
    std::string displayName;  ///< the path's last component as text; what screens call the folder
    FilePath path;            ///< standardized; the key of its samples, and what prefix tests look at
    bool isEnabled = true;    ///< a disabled folder is not scanned, watched or searched
    std::optional<std::int64_t> warningBytes;   ///< at or above this size the level is warning
    std::optional<std::int64_t> criticalBytes;  ///< at or above this size the level is critical
    bool growthAlertEnabled = true;
    std::optional<Date> lastScanAt;  ///< of the last good scan
    std::optional<std::int64_t> lastKnownSizeBytes;
    std::optional<std::int64_t> previousSizeBytes;
    std::optional<std::string>
        lastScanError;                 ///< why the last scan failed, or how many items could not be read
    std::optional<Date> snoozedUntil;  ///< scanning and alerts are off until then
    std::optional<std::string> bookmarkData;  ///< bytes for a sandboxed build; stays absent here

    /// A new record with the defaults above for a standardized path.
    [[nodiscard]] static WatchedFolder make(const FilePath& standardizedPath);

    [[nodiscard]] bool isSnoozed(Date now) const { return snoozedUntil && *snoozedUntil > now; }
    /// Judged on the last known size by this folder's own limits, which are upper limits and inclusive.
    [[nodiscard]] StorageLevel level() const;

    friend bool operator==(const WatchedFolder&, const WatchedFolder&) = default;
};

struct SizeSample {
    Date date{};
    std::int64_t bytes = 0;

    friend bool operator==(const SizeSample&, const SizeSample&) = default;
};

/// The content of "watched-folders.json".
struct WatchedFolderFile {
    std::int64_t schemaVersion = 1;
    std::vector<WatchedFolder> folders;                   ///< in the order they were added
    std::map<FilePath, std::vector<SizeSample>> samples;  ///< by folder path
    std::vector<FilePath> pinnedWorktreePaths;            ///< standardized, no duplicates

    friend bool operator==(const WatchedFolderFile&, const WatchedFolderFile&) = default;
};

/// When growth within a window is news.
struct GrowthAlertSettings {
    std::int64_t absoluteBytes = 5'368'709'120;
    double relativeFraction = 0.25;
    std::int64_t windowHours = 24;

    friend bool operator==(const GrowthAlertSettings&, const GrowthAlertSettings&) = default;
};

void to_json(Json& json, const WatchedFolder& folder);
void from_json(const Json& json, WatchedFolder& folder);
void to_json(Json& json, const SizeSample& sample);
void from_json(const Json& json, SizeSample& sample);
void to_json(Json& json, const WatchedFolderFile& file);
void from_json(const Json& json, WatchedFolderFile& file);

namespace GrowthAnalyzer {

/// Last minus first sample of the window that ends at `now`; absent when the window holds none.
[[nodiscard]] std::optional<std::int64_t> growth(const std::vector<SizeSample>& samples,
                                                 std::int64_t windowHours, Date now);

/// Growth by the absolute amount, or by the fraction of the first sample. Growth from nothing never counts.
[[nodiscard]] bool isAnomalous(const std::vector<SizeSample>& samples, const GrowthAlertSettings& settings,
                               Date now);

}  // namespace GrowthAnalyzer

}  // namespace cairnfield
