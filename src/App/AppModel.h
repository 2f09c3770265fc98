#pragma once
// The one object that holds state for the screens and decides when work happens. It owns every store and
// service; screens read state() and call the operations, services never call screens. Confined to the main
// thread, which operations give up only where they wait. They do not throw, but where one says so: what goes
// wrong stands in a published text or in the log.
//
// One source for each concern, by its name: Monitoring (loops, readings), Alerts (what is news), Watching
// (file events), Folders, Worktrees (git services, sizing, pins), Cleanup (records, vault), Settings.

#include "App/AppEnvironment.h"
#include "App/AppState.h"
#include "App/NotificationAnswering.h"
#include "Persistence/SettingsStore.h"
#include "Persistence/StorageHistoryStore.h"
#include "Persistence/WatchedFolderStore.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Git/ActivityDetecting.h"
#include "Services/Git/WorktreeCatalog.h"
#include "Shared/Concurrency/TaskScope.h"

#include <cstdint>
#include <memory>
#include <stop_token>
#include <vector>

namespace cairnfield {

class ChangeDebouncer;
class CleanupServices;
class FileSystemEventMonitoring;
class NotificationCenterDelegate;
class NotificationOutbox;
struct CleanupPlan;
struct CleanupPreflightReport;
struct NotificationRequestPayload;
struct ReviewLook;

class AppModel final : public Isolated, private NotificationAnswering {
public:
    AppModel(SettingsStore& settings, AppEnvironment environment);
    ~AppModel() override;  ///< stop() must have finished

    [[nodiscard]] const AppState& state() const { return state_; }
    [[nodiscard]] SettingsStore& settings() const { return settings_; }
    [[nodiscard]] UpdateChecking& updates() const { return environment_.updates; }

    // Derived values, worked out when read.
    [[nodiscard]] StorageThresholds thresholds() const;
    [[nodiscard]] StorageLevel storageLevel() const;  ///< of the reading alone; normal without one
    [[nodiscard]] std::optional<std::int64_t> freeSpaceDelta() const;         ///< bytes, over a day
    [[nodiscard]] std::vector<StorageHistorySample> freeSpaceSeries() const;  ///< thinned, of a week
    [[nodiscard]] std::optional<Date> projectedFullDate() const;              ///< from a week's trend
    [[nodiscard]] std::string menuBarSymbolName() const;
    [[nodiscard]] std::string menuBarAccessibilityValue() const;
    [[nodiscard]] std::int64_t estimatedReclaimableBytes() const;  ///< 0 before sizing
    [[nodiscard]] std::vector<Worktree> worktreesNeedingAttention() const;
    [[nodiscard]] std::optional<WatchedFolder> largestWatchedFolder() const;
    [[nodiscard]] std::vector<ProjectUsage> projects() const;
    [[nodiscard]] bool launchAtLoginEnabled() const;  ///< asks the desktop

    Task<> start();  ///< once, at launch
    Task<> stop();   ///< at the end: cancels what is under way, but a cleanup, and waits until all has ended
    void startMonitoring();         ///< the poll, the reconciliation and the watching of file events
    void pauseMonitoring();         ///< stops all three and sizing; the volume is read once more
    void setMonitoring(bool isOn);  ///< as a person does: the choice is stored
    /// One reading of the home's volume, its history, and whether it is news. Calls may overlap.
    Task<> refreshStorage();
    Task<> scanNow();  ///< the volume, all folders past the cache, all worktrees

    // Folders.
    Task<> addWatchedFolder(FilePath url);
    Task<> removeWatchedFolder(WatchedFolder folder);
    Task<> updateWatchedFolder(WatchedFolder folder);  ///< by its identity
    /// Not twice at a time. With `force` past the cache. To its end, alarms included, whoever is cancelled.
    Task<> scan(WatchedFolder folder, bool force);
    Task<> scanAllFolders(bool force);  ///< one after another, the enabled ones that are not snoozed
    Task<DirectoryScanResult> directorySize(FilePath url, bool useCache);  ///< throws as the scanner does
    Task<bool> isDirectory(FilePath path);  ///< a link to one counts; looked at off the main thread

    // Worktrees.
    Task<> refreshIntegrations();  ///< finds git and gh anew; blocks while it looks
    /// Asks git for everything under the enabled folders, then sizes. A call during a refresh does nothing.
    Task<> refreshWorktrees(bool includeSizes);
    void startSizing(bool force);
    void cancelSizing();
    Task<> sizingFinished();      ///< returns when none is under way
    Task<> refreshRemoteState();  ///< looks up pull requests
    Task<> togglePin(Worktree worktree);

    // Cleanup.
    [[nodiscard]] CleanupPlan makePlan(const Worktree& worktree) const;  ///< what the settings propose
    Task<CleanupPreflightReport> preflight(Worktree worktree);
    Task<ReviewLook> lookForReview(Worktree worktree, std::stop_token abandoned);  ///< off the main thread
    /// Runs to its end, whatever is cancelled. Absent when git is unusable: nothing ran.
    Task<std::optional<CleanupReceipt>> execute(CleanupPlan plan);
    Task<std::optional<std::string>> removeVaultEntry(RecoveryVaultEntry entry);  ///< gives what to say of it
    Task<> restoreVaultEntry(RecoveryVaultEntry entry, FilePath destination);  ///< throws as the vault does

    // The desktop.
    Task<> enableNotifications();  ///< asks for leave, and stores the answer as the setting
    Task<std::optional<std::string>> deliver(NotificationRequestPayload payload);  ///< gives what went wrong
    void snoozeIncident(int hours) override;
    void ignoreCurrentIncident() override;
    void setLaunchAtLogin(bool isOn);  ///< a failure leaves the setting as it was, with a line in the log
    void run(Task<> operation);        ///< what a person asked for and nobody waits for but stop()

private:
    friend class AppModelStaging;  // tests and previews set the state that a screen shows

    Task<> loadPersistedState();
    Task<> listenToAnswers();
    void configureGitServices();
    Task<> refuseGitThatIsTooOld();
    Task<> pollCapacity();
    Task<> reconcile();
    Task<> evaluateIncident(StorageSnapshot snapshot);
    Task<> evaluateFolderAlerts(WatchedFolder folder);
    void restartFileSystemWatching();
    Task<> invalidate(std::set<FilePath> paths);
    Task<> handleInvalidatedPaths(std::set<FilePath> paths);
    Task<> sizeAll(std::vector<FilePath> paths, bool force, std::uint64_t run);
    Task<> scanToItsEnd(WatchedFolder folder, bool force);
    Task<> measureFolder(WatchedFolder folder, bool force);
    Task<> reloadFolders();
    Task<> reloadCleanupRecords();
    Task<> show(CleanupProgress progress);

    SettingsStore& settings_;
    AppEnvironment environment_;
    AppState state_;
    DirectorySizeScanner scanner_;
    WatchedFolderStore folderStore_;
    StorageHistoryStore historyStore_;
    FileSystemActivityDetector activityDetector_;
    std::unique_ptr<CleanupServices> cleanup_;
    std::shared_ptr<GitHubServicing> githubService_;  ///< absent until the tools were looked for
    std::shared_ptr<WorktreeCatalog> catalog_;        ///< absent without git; shared with a refresh under way
    std::shared_ptr<NotificationAnswering> answering_;  ///< this model, for those who must not keep it alive
    std::shared_ptr<NotificationCenterDelegate> notificationDelegate_;
    std::shared_ptr<FileSystemEventMonitoring> eventMonitor_;
    std::shared_ptr<ChangeDebouncer> debouncer_;
    TaskHandle<> monitorTask_;
    TaskHandle<> reconcileTask_;
    TaskHandle<> sizingTask_;
    std::uint64_t sizingRun_ = 0;  ///< of the sizing that may touch progress; an abandoned one may not
    bool isEnding_ = false;
    TaskScope operations_;
    std::unique_ptr<NotificationOutbox> outbox_;
};

}  // namespace cairnfield
