#include "Persistence/WatchedFolderStore.h"

#include "Persistence/JSONFileStore.h"
#include "Persistence/StoredFileNames.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

WatchedFolder* folderOf(WatchedFolderFile& file, const UUID& id) {
    const auto place = std::ranges::find(file.folders, id, &WatchedFolder::id);
    return place == file.folders.end() ? nullptr : &*place;
}

const WatchedFolder* folderAt(const WatchedFolderFile& file, const FilePath& path) {
    const auto place = std::ranges::find(file.folders, path, &WatchedFolder::path);
    return place == file.folders.end() ? nullptr : &*place;
}

std::optional<std::string> messageAbout(const std::vector<FilePath>& unreadable) {
    if (unreadable.empty()) return std::nullopt;
    return std::to_string(unreadable.size()) + " item(s) could not be read.";
}

void applyScan(WatchedFolder& folder, const DirectoryScanResult& result) {
    folder.previousSizeBytes = folder.lastKnownSizeBytes;
    folder.lastKnownSizeBytes = result.totalBytes;
    folder.lastScanAt = result.scannedAt;
    folder.lastScanError = messageAbout(result.permissionErrorPaths);
}

}  // namespace

WatchedFolderStore::WatchedFolderStore(Executor& pool, const ApplicationSupport& support,
                                       const WallClock& clock)
    : Actor(pool),
      store_(std::make_unique<JSONFileStore<WatchedFolderFile>>(
          pool, support, StoredFileNames::watchedFolders, WatchedFolderFile())),
      clock_(clock) {}

WatchedFolderStore::~WatchedFolderStore() = default;

Task<WatchedFolderFile> WatchedFolderStore::load() {
    WatchedFolderFile file = co_await store_->load();
    co_return file;
}

Task<std::vector<WatchedFolder>> WatchedFolderStore::folders() {
    WatchedFolderFile file = co_await store_->load();
    co_return std::move(file.folders);
}

Task<WatchedFolder> WatchedFolderStore::add(FilePath url) {
    const FilePath path = url.standardized();
    const WatchedFolderFile before = co_await store_->load();
    if (const WatchedFolder* known = folderAt(before, path)) co_return *known;

    WatchedFolder added = WatchedFolder::make(path);
    // Asked again inside the mutation: the same path may have been added meanwhile.
    std::function<void(WatchedFolderFile&)> append = [&added](WatchedFolderFile& file) {
        if (const WatchedFolder* known = folderAt(file, added.path)) {
            added = *known;
        } else {
            file.folders.push_back(added);
        }
    };
    co_await store_->mutate(std::move(append));
    co_return added;
}

Task<> WatchedFolderStore::remove(UUID id) {
    std::function<void(WatchedFolderFile&)> erase = [id](WatchedFolderFile& file) {
        if (const WatchedFolder* folder = folderOf(file, id)) file.samples.erase(folder->path);
        std::erase_if(file.folders, [&](const WatchedFolder& folder) { return folder.id == id; });
    };
    co_await store_->mutate(std::move(erase));
}

Task<> WatchedFolderStore::update(WatchedFolder folder) {
    std::function<void(WatchedFolderFile&)> replace = [&folder](WatchedFolderFile& file) {
        if (WatchedFolder* known = folderOf(file, folder.id)) *known = folder;
    };
    co_await store_->mutate(std::move(replace));
}

Task<std::optional<WatchedFolder>> WatchedFolderStore::recordScan(UUID folderID, DirectoryScanResult result,
                                                                  std::int64_t windowHours) {
    const Date now = clock_.now();
    const double window = static_cast<double>(windowHours) * 3600;
    std::optional<WatchedFolder> updated;
    std::function<void(WatchedFolderFile&)> record = [&](WatchedFolderFile& file) {
        WatchedFolder* folder = folderOf(file, folderID);
        if (!folder) return;
        applyScan(*folder, result);
        std::vector<SizeSample>& samples = file.samples[folder->path];
        samples.push_back({result.scannedAt, result.totalBytes});
        std::erase_if(samples,
                      [&](const SizeSample& sample) { return secondsBetween(sample.date, now) > window; });
        updated = *folder;
    };
    co_await store_->mutate(std::move(record));
    co_return updated;
}

Task<> WatchedFolderStore::recordScanFailure(UUID folderID, std::string message) {
    std::function<void(WatchedFolderFile&)> record = [&](WatchedFolderFile& file) {
        if (WatchedFolder* folder = folderOf(file, folderID)) folder->lastScanError = message;
    };
    co_await store_->mutate(std::move(record));
}

Task<std::vector<SizeSample>> WatchedFolderStore::samples(FilePath path) {
    WatchedFolderFile file = co_await store_->load();
    const auto place = file.samples.find(path);
    if (place == file.samples.end()) co_return std::vector<SizeSample>();
    co_return std::move(place->second);
}

Task<std::set<FilePath>> WatchedFolderStore::pinnedWorktreePaths() {
    const WatchedFolderFile file = co_await store_->load();
    co_return std::set<FilePath>(file.pinnedWorktreePaths.begin(), file.pinnedWorktreePaths.end());
}

Task<> WatchedFolderStore::setPinned(bool pinned, FilePath path) {
    std::function<void(WatchedFolderFile&)> change = [&](WatchedFolderFile& file) {
        std::vector<FilePath>& pins = file.pinnedWorktreePaths;
        if (!pinned) {
            std::erase(pins, path);
        } else if (std::ranges::find(pins, path) == pins.end()) {
            pins.push_back(path);
        }
    };
    co_await store_->mutate(std::move(change));
}

}  // namespace cairnfield
