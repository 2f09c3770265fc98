#include "App/AppModel.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Concurrency/RunOn.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <sys/stat.h>

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

/// Samples older than this are forgotten at a scan; it is the window of the growth alarm.
constexpr std::int64_t sampleWindowHours = 24;

/// Membership of a folder in the set of those under scan, for as long as the scan runs.
class ScanMark {
public:
    ScanMark(Published<std::set<UUID>>& folders, UUID id) : folders_(folders), id_(id) {
        folders_.mutate([&](std::set<UUID>& ids) { return ids.insert(id_).second; });
    }
    ~ScanMark() {
        folders_.mutate([&](std::set<UUID>& ids) { return ids.erase(id_) > 0; });
    }
    ScanMark(const ScanMark&) = delete;
    ScanMark& operator=(const ScanMark&) = delete;

private:
    Published<std::set<UUID>>& folders_;
    UUID id_;
};

/// Gives an access back when the work that needed it is over.
class ScopedAccess {
public:
    explicit ScopedAccess(PathAccessToken token) : token_(std::move(token)) {}
    ~ScopedAccess() {
        if (token_.release) token_.release();
    }
    ScopedAccess(const ScopedAccess&) = delete;
    ScopedAccess& operator=(const ScopedAccess&) = delete;

private:
    PathAccessToken token_;
};

}  // namespace

std::optional<WatchedFolder> AppModel::largestWatchedFolder() const {
    std::optional<WatchedFolder> largest;
    for (const WatchedFolder& folder : state_.watchedFolders.get()) {
        if (!folder.lastKnownSizeBytes) continue;
        if (!largest || *folder.lastKnownSizeBytes > *largest->lastKnownSizeBytes) largest = folder;
    }
    return largest;
}

Task<> AppModel::reloadFolders() {
    std::vector<WatchedFolder> folders = co_await folderStore_.folders();
    state_.watchedFolders.set(std::move(folders));
}

Task<> AppModel::addWatchedFolder(FilePath url) {
    std::optional<std::string> failure;
    try {
        co_await folderStore_.add(url);
    } catch (const std::exception& error) {
        failure = describe(error);
        Log::persistence().error("Adding folder failed: {}", *failure);
    }
    state_.folderError.set(failure);
    if (failure) co_return;

    co_await reloadFolders();
    restartFileSystemWatching();
    const FilePath standardized = url.standardized();
    const std::vector<WatchedFolder>& folders = state_.watchedFolders.get();
    const auto added = std::ranges::find(folders, standardized, &WatchedFolder::path);
    if (added == folders.end()) co_return;
    WatchedFolder folder = *added;
    co_await scan(std::move(folder), true);
}

Task<> AppModel::removeWatchedFolder(WatchedFolder folder) {
    std::optional<std::string> failure;
    try {
        co_await folderStore_.remove(folder.id);
    } catch (const std::exception& error) {
        failure = describe(error);
        Log::persistence().error("Removing folder failed: {}", *failure);
    }
    state_.folderError.set(failure);
    co_await reloadFolders();
    state_.folderScanResults.mutate([&](auto& results) { return results.erase(folder.id) > 0; });
    restartFileSystemWatching();
}

Task<> AppModel::updateWatchedFolder(WatchedFolder folder) {
    std::optional<std::string> failure;
    try {
        co_await folderStore_.update(std::move(folder));
    } catch (const std::exception& error) {
        failure = describe(error);
        Log::persistence().error("Changing folder failed: {}", *failure);
    }
    state_.folderError.set(failure);
    co_await reloadFolders();
}

Task<> AppModel::scan(WatchedFolder folder, bool force) {
    // A task of its own: a scan that is cut short would forget what it has found, and an alarm with it.
    const TaskHandle<> scanning =
        operations_.add(environment_.mainThread, scanToItsEnd(std::move(folder), force));
    co_await scanning.value();
}

Task<> AppModel::scanToItsEnd(WatchedFolder folder, bool force) {
    if (state_.scanningFolderIDs.get().contains(folder.id)) co_return;
    const ScanMark mark(state_.scanningFolderIDs, folder.id);
    const UUID id = folder.id;

    std::optional<std::string> failure;
    try {
        co_await measureFolder(std::move(folder), force);
    } catch (const Cancelled&) {
        co_return;  // the program is ending, which says nothing of the folder
    } catch (const std::exception& error) {
        failure = describe(error);
    }
    if (!failure) co_return;

    try {
        co_await folderStore_.recordScanFailure(id, *failure);
    } catch (const std::exception& error) {
        Log::persistence().error("Recording a failed scan failed: {}", describe(error));
    }
    co_await reloadFolders();
}

/// The part of a scan that can fail: access, measuring, and storing the result. Then the alarms, which
/// cannot.
Task<> AppModel::measureFolder(WatchedFolder folder, bool force) {
    PathAccessToken token = environment_.authorization.beginAccess(folder.path);
    const ScopedAccess access(std::move(token));
    const DirectoryScanResult result = co_await scanner_.size(folder.path, !force);
    state_.folderScanResults.mutate([&](auto& results) {
        results.insert_or_assign(folder.id, result);
        return true;
    });
    std::optional<WatchedFolder> updated =
        co_await folderStore_.recordScan(folder.id, result, sampleWindowHours);
    co_await reloadFolders();
    if (updated) co_await evaluateFolderAlerts(std::move(*updated));
}

Task<> AppModel::scanAllFolders(bool force) {
    const std::vector<WatchedFolder> folders = state_.watchedFolders.get();
    for (const WatchedFolder& folder : folders) {
        if (folder.isEnabled && !folder.isSnoozed(environment_.wallClock.now())) co_await scan(folder, force);
    }
}

Task<bool> AppModel::isDirectory(FilePath path) {
    const auto look = [path = std::move(path)] {
        struct stat facts{};
        return ::stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
    };
    const bool isOne = co_await runOn(environment_.blocking, look);
    co_return isOne;
}

Task<DirectoryScanResult> AppModel::directorySize(FilePath url, bool useCache) {
    DirectoryScanResult result = co_await scanner_.size(std::move(url), useCache);
    co_return result;
}

}  // namespace cairnfield
