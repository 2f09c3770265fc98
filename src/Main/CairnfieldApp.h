#pragma once
// The composition root: makes every object of the program, gives each what it needs, and takes all of it down
// again in order. The only place that knows which implementations run. Main thread only.

#include "App/AppModel.h"
#include "Features/Root/AppearanceViewModel.h"
#include "Features/Root/RootViewModel.h"
#include "Features/WatchedFolders/WatchedFoldersViewModel.h"
#include "Features/Worktrees/WorktreesViewModel.h"
#include "Main/MainWindow.h"
#include "Main/QtMainThread.h"
#include "Persistence/SettingsStore.h"
#include "Platform/Linux/BaseDirectories.h"
#include "Platform/Linux/Desktop/LinuxAppearance.h"
#include "Platform/Linux/Desktop/LinuxWorkspace.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/ThreadPool.h"

#include <QEventLoop>

namespace cairnfield {

class CairnfieldApp final {
public:
    /// The application object exists and outlives this.
    explicit CairnfieldApp(const BaseDirectories& directories);
    ~CairnfieldApp();

    /// Shows the window and runs until the program is to end; then ends everything that is under way. Gives
    /// the exit status.
    int run();

private:
    [[nodiscard]] QVariantMap windowContent();
    Task<> end(QEventLoop& loop);

    // In the order in which things need each other: what comes later goes first.
    QtMainThread mainThread_;
    ThreadPool pool_{2};
    ThreadPool blocking_{2};
    ThreadPool walking_{4};
    Reactor reactor_;
    ReactorClock continuousClock_{reactor_};
    SystemWallClock wallClock_;
    LinuxChildProcessStarter childProcessStarter_{reactor_};
    SystemProcessRunner processRunner_{childProcessStarter_, continuousClock_, pool_};
    LinuxTreeMeasurer treeMeasurer_{walking_, wallClock_};
    DirectDistributionPathAuthorization authorization_;
    LinuxAppearance appearance_;
    LinuxWorkspace workspace_;
    ApplicationSupport support_;
    FileUserDefaults defaults_;
    SettingsStore settings_{defaults_};
    AppModel model_;
    TaskHandle<> started_;
    AppearanceViewModel appearanceViewModel_{appearance_};
    RootViewModel rootViewModel_{model_, started_};
    WorktreesViewModel worktreesViewModel_{model_, workspace_, wallClock_};
    WatchedFoldersViewModel watchedFoldersViewModel_;
    MainWindow window_;
};

}  // namespace cairnfield
