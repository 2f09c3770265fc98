#pragma once
// Owns "watched-folders.json": the folders, a day of size samples for each, and the pinned worktrees. An
// actor; every change is one mutation of the file, saved at once. Operations that write throw as
// JSONFileStore::save does, and then memory and disk keep the old content.

#include "Models/DirectoryScan.h"
#include "Models/WatchedFolder.h"
#include "Persistence/ApplicationSupport.h"
#include "Shared/Concurrency/Actor.h"
#include "Shared/Time/Date.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

template <class Value>
class JSONFileStore;

class WatchedFolderStore final : public Actor {
public:
    WatchedFolderStore(Executor& pool, const ApplicationSupport& support, const WallClock& clock);
    ~WatchedFolderStore();

    Task<WatchedFolderFile> load();
    Task<std::vector<WatchedFolder>> folders();

    /// A folder with this standardized path is returned as it is; nothing is written then.
    Task<WatchedFolder> add(FilePath url);
    /// With its samples; pins stay. An unknown identity changes nothing.
    Task<> remove(UUID id);
    /// Replaces the folder of the same identity.
    Task<> update(WatchedFolder folder);

    /// Sizes, time and samples of a good scan; samples older than the window go. Absent when no folder has
    /// this identity.
    Task<std::optional<WatchedFolder>> recordScan(UUID folderID, DirectoryScanResult result,
                                                  std::int64_t windowHours);
    /// Only the message changes.
    Task<> recordScanFailure(UUID folderID, std::string message);

    Task<std::vector<SizeSample>> samples(FilePath path);
    Task<std::set<FilePath>> pinnedWorktreePaths();
    /// A pin outlives its worktree and takes effect again when it comes back.
    Task<> setPinned(bool pinned, FilePath path);

private:
    const std::unique_ptr<JSONFileStore<WatchedFolderFile>> store_;
    const WallClock& clock_;
};

}  // namespace cairnfield
