#pragma once
// The real model with the real services in a home of its own: real git, real files, a real walk. What the
// desktop gives (the volume, events, notifications, the clocks) is a fake that the test sets, and so is what
// a test puts in by name. It belongs to the test's thread, which is the main thread of the model.

#include "App/AppModel.h"
#include "Persistence/SettingsStore.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Services/Permissions/InMemoryLaunchAtLoginService.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Services/Updates/DisabledUpdateService.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/RunLoop.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "support/FakeApplication.h"
#include "support/FakeFileEventStreams.h"
#include "support/FakeNotificationCenter.h"
#include "support/FakeNotifications.h"
#include "support/FakeVolume.h"
#include "support/FakeWorkspace.h"
#include "support/InMemoryUserDefaults.h"
#include "support/SettableWallClock.h"
#include "support/SteppedClock.h"
#include "support/TemporaryDirectory.h"

#include <functional>
#include <memory>

namespace cairnfield {

class AppHarness {
public:
    struct Replacements {
        TreeMeasuring* treeMeasurer = nullptr;
        ProcessRunning* processRunner = nullptr;
        LaunchAtLoginManaging* launchAtLogin = nullptr;
        UpdateChecking* updates = nullptr;
    };

    AppHarness() : AppHarness(Replacements{}) {}
    explicit AppHarness(Replacements replacements);
    /// Ends the model as the program does.
    ~AppHarness();

    /// Runs an operation of the model to its end.
    template <class T>
    T run(Task<T> operation) {
        return runToEnd(loop, std::move(operation));
    }

    /// Runs the loop until the condition holds, whichever thread brings it about. Fails the test after a
    /// minute.
    void waitUntil(const std::function<bool()>& condition);

    /// Ends the model and makes a new one on the same home.
    void restart();

    /// Adds the folder and starts from a refreshed list, as a screen would.
    void watch(const FilePath& folder);
    /// The listed worktree at this path. Fails the test when there is none.
    [[nodiscard]] Worktree worktreeAt(const FilePath& path) const;

    TemporaryDirectory home;
    RunLoop loop;
    ThreadPool pool{2};
    ThreadPool blocking{2};
    ThreadPool walking{4};
    Reactor reactor;
    SteppedClock continuousClock;
    SettableWallClock wallClock{std::chrono::system_clock::now()};  ///< real files are dated by the real one
    LinuxChildProcessStarter children{reactor};
    ReactorClock processClock{reactor};
    SystemProcessRunner processRunner{children, processClock, pool};
    LinuxTreeMeasurer treeMeasurer{walking, wallClock};
    DirectDistributionPathAuthorization authorization;
    ApplicationSupport support{home.path().appending("data"), home.path().appending("config")};
    FakeVolume volume{wallClock};
    LinuxVolumeInformation mounts;
    FakeFileEventStreams fileEventStreams;
    FakeNotifications notifications;
    FakeNotificationCenter notificationCenter;
    InMemoryLaunchAtLoginService launchAtLogin;
    DisabledUpdateService updates;
    FakeApplication application;
    FakeWorkspace workspace;
    InMemoryUserDefaults defaults;
    SettingsStore settings{defaults};
    std::unique_ptr<AppModel> model;

private:
    [[nodiscard]] std::unique_ptr<AppModel> makeModel();

    const Replacements replacements_;
};

}  // namespace cairnfield
