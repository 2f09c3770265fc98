#pragma once
// The one object that holds state for the screens and decides when work happens. It owns every store and
// service; screens read state() and call the operations, services never call screens. Confined to the main
// thread: every operation runs there, gives it up only where it waits, and two operations can interleave only
// at those points. Operations do not throw, but where one says so: what goes wrong stands in a published text
// or in the log.
//
// One class, one header, a source for each concern: AppModel.cpp (construction, start, monitoring),
// AppModelFolders.cpp, AppModelWorktrees.cpp (git services, refresh, sizing, pins).

#include "App/AppState.h"
#include "Persistence/ApplicationSupport.h"
#include "Persistence/SettingsStore.h"
#include "Persistence/WatchedFolderStore.h"
#include "Platform/TreeMeasuring.h"
#include "Services/FileSystem/DirectorySizeScanner.h"
#include "Services/Git/ActivityDetecting.h"
#include "Services/Git/WorktreeCatalog.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/ProcessRunning.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/TaskScope.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace cairnfield {

/// What the model needs from outside; all of it outlives the model. Main chooses the implementations.
struct AppEnvironment {
    Executor& mainThread;
    Executor& pool;      ///< for actors and other work that never blocks
    Executor& blocking;  ///< for short blocking work, such as listing directories
    Executor& walking;   ///< for measuring trees
    ContinuousClock& continuousClock;
    const WallClock& wallClock;
    ProcessRunning& processRunner;
    TreeMeasuring& treeMeasurer;
    const PathAuthorizing& authorization;
    ApplicationSupport support;
};

class AppModel final : public Isolated {
public:
    AppModel(SettingsStore& settings, AppEnvironment environment);
    /// stop() must have finished.
    ~AppModel();

    [[nodiscard]] const AppState& state() const { return state_; }
    [[nodiscard]] SettingsStore& settings() const { return settings_; }

    // Derived values, worked out when read.
    [[nodiscard]] StorageThresholds thresholds() const;
    [[nodiscard]] StorageLevel storageLevel() const;               ///< normal while nothing was read
    [[nodiscard]] std::int64_t estimatedReclaimableBytes() const;  ///< 0 before sizing
    [[nodiscard]] std::vector<Worktree> worktreesNeedingAttention() const;
    [[nodiscard]] std::optional<WatchedFolder> largestWatchedFolder() const;
    [[nodiscard]] std::vector<ProjectUsage> projects() const;

    /// Once, at launch: finds the tools, loads what was stored, starts monitoring if that is set.
    Task<> start();
    /// At the program's end: cancels everything under way and returns when it has ended.
    Task<> stop();

    void startMonitoring();
    void pauseMonitoring();

    // Folders.
    Task<> addWatchedFolder(FilePath url);
    Task<> removeWatchedFolder(WatchedFolder folder);
    /// Replaces the stored folder of the same identity.
    Task<> updateWatchedFolder(WatchedFolder folder);
    /// A folder that is being scanned is not scanned a second time. With `force` the cache is not asked.
    Task<> scan(WatchedFolder folder, bool force);
    /// One after another, the enabled folders that are not snoozed.
    Task<> scanAllFolders(bool force);
    /// The size of any directory, through the one scanner. The one operation here that throws, as
    /// DirectoryScanning::size does.
    Task<DirectoryScanResult> directorySize(FilePath url, bool useCache);

    // Worktrees.
    /// Finds git and gh anew with the present settings. Blocks while it looks.
    Task<> refreshIntegrations();
    /// Asks git for everything under the enabled folders; sizing follows by itself when asked for. A call
    /// during a refresh does nothing.
    Task<> refreshWorktrees(bool includeSizes);
    void startSizing(bool force);
    void cancelSizing();
    /// Returns when sizing, if any is under way, has ended.
    Task<> sizingFinished();
    /// Looks up the pull requests of the listed worktrees.
    Task<> refreshRemoteState();
    Task<> togglePin(Worktree worktree);

    /// Starts an operation that a person asked for and that nobody waits for; it is joined by stop().
    void run(Task<> operation);

private:
    friend class AppModelStaging;  // tests and previews set the state that a screen shows

    Task<> loadPersistedState();
    void configureGitServices();
    Task<> reconcile();
    void startReconciliation();
    Task<> sizeAll(std::vector<FilePath> paths, bool force, std::uint64_t run);
    Task<> measureFolder(WatchedFolder folder, bool force);
    Task<> reloadFolders();

    SettingsStore& settings_;
    AppEnvironment environment_;
    AppState state_;
    DirectorySizeScanner scanner_;
    WatchedFolderStore folderStore_;
    FileSystemActivityDetector activityDetector_;
    std::shared_ptr<GitHubServicing> githubService_;  ///< absent until the tools were looked for
    std::shared_ptr<WorktreeCatalog>
        catalog_;  ///< absent while git is unusable; shared with a refresh under way
    TaskHandle<> reconcileTask_;
    TaskHandle<> sizingTask_;
    std::uint64_t sizingRun_ = 0;  ///< of the sizing that may touch progress; an abandoned one may not
    TaskScope operations_;
};

}  // namespace cairnfield
