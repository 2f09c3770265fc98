#pragma once
// Every value that a screen shows, each telling its observers on the main thread when, and only when, it
// really changed. Owned by AppModel alone; screens get it as a constant. Main thread only.

#include "Models/CleanupReceipt.h"
#include "Models/DirectoryScan.h"
#include "Models/ProjectUsage.h"
#include "Models/RecoveryVaultEntry.h"
#include "Models/Storage.h"
#include "Models/StorageHistory.h"
#include "Models/WatchedFolder.h"
#include "Models/Worktree.h"
#include "Services/Cleanup/CleanupPlan.h"
#include "Services/GitHub/GitHubServicing.h"
#include "Services/Storage/StorageIncidentTracker.h"
#include "Shared/Concurrency/Published.h"
#include "Shared/Files/StoredFileNotices.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

struct AppState {
    Published<std::optional<StorageSnapshot>> storage;  ///< the last good reading of the volume
    Published<StorageIncidentTracker> incident;
    Published<std::vector<StorageHistorySample>> storageHistory;  ///< what the store returned last
    Published<bool> isMonitoring{false};  ///< not the stored setting of nearly the same name
    Published<std::optional<std::string>> lastStorageError;

    Published<std::vector<WatchedFolder>> watchedFolders;              ///< a copy of what the store holds
    Published<std::map<UUID, DirectoryScanResult>> folderScanResults;  ///< of this run of the program
    Published<std::set<UUID>> scanningFolderIDs;
    Published<std::optional<std::string>> folderError;  ///< why the last folder could not be added or removed

    Published<std::vector<Worktree>> worktrees;  ///< of the last refresh, in the catalog's order
    Published<bool> isRefreshingWorktrees{false};
    Published<std::optional<Date>> lastWorktreeRefresh;
    Published<std::optional<std::string>> worktreeRefreshError;
    Published<std::optional<SizingProgress>> sizingProgress;  ///< absent when nothing is being sized

    Published<std::optional<std::string>>
        gitStatusMessage;                        ///< why git is unusable; absent when it was found
    Published<std::optional<FilePath>> gitPath;  ///< where git was found
    Published<GitHubIntegrationStatus> githubStatus{GitHubIntegrationStatus::unavailable()};

    Published<std::vector<CleanupReceipt>> receipts;          ///< newest first
    Published<std::vector<RecoveryVaultEntry>> vaultEntries;  ///< in the order of the vault's index
    Published<std::optional<CleanupProgress>> activeCleanup;  ///< what the cleanup under way reported last
    Published<int> cleanupsUnderWay{0};                       ///< the program does not end before they have
    Published<std::optional<CleanupReceipt>> lastReceipt;  ///< of the last cleanup of this run of the program

    /// What a person should know about the program's own files, by the name of the file; shown where its
    /// records are.
    Published<StoredFileNotices::ByFile> storedFileNotices;

    [[nodiscard]] std::string storedFileNotice(std::string_view fileName) const;  ///< empty while all is well

    Published<bool> notificationAuthorizationDenied{
        false};  ///< the last delivery or request for leave failed
    Published<std::optional<std::string>> lastNotificationError;
};

inline std::string AppState::storedFileNotice(std::string_view fileName) const {
    const StoredFileNotices::ByFile& notices = storedFileNotices.get();
    const auto place = notices.find(fileName);
    return place == notices.end() ? "" : place->second;
}

}  // namespace cairnfield
