#include "driver/Program.h"

#include "Platform/Linux/AutostartEntry.h"
#include "Platform/Linux/BaseDirectories.h"
#include "Platform/Linux/DescriptorLimit.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/Linux/InotifyEventStreams.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Platform/Linux/LinuxVolumeInformation.h"
#include "Platform/Linux/ProcessSignals.h"
#include "Services/Notifications/SystemNotificationService.h"
#include "Services/Permissions/LaunchAtLoginService.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Services/Storage/SystemVolumeCapacityReader.h"
#include "Services/Updates/DisabledUpdateService.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"
#include "Shared/Environment/Environment.h"
#include "driver/PrintedDesktop.h"

#include <exception>
#include <filesystem>

namespace cairnfield {

namespace {

FilePath programPath() {
    std::error_code ignored;
    return FilePath(std::filesystem::read_symlink("/proc/self/exe", ignored).native());
}

}  // namespace

struct Program::Parts {
    explicit Parts(JsonLines& lines) : notificationCenter(lines), application(lines), workspace(lines) {}

    BaseDirectories directories = BaseDirectories::current();
    ApplicationSupport support{directories.dataHome, directories.configHome};
    RunLoop loop;
    ThreadPool pool{2};
    ThreadPool blocking{2};
    ThreadPool walking{4};
    Reactor reactor;
    ReactorClock continuousClock{reactor};
    SystemWallClock wallClock;
    LinuxChildProcessStarter children{reactor};
    SystemProcessRunner processRunner{children, continuousClock, pool};
    LinuxTreeMeasurer treeMeasurer{walking, wallClock};
    DirectDistributionPathAuthorization authorization;
    LinuxVolumeInformation volumes;
    SystemVolumeCapacityReader capacityReader{volumes, wallClock};
    InotifyEventStreams fileEventStreams{reactor, blocking};
    PrintedNotificationCenter notificationCenter;
    SystemNotificationService notifications{notificationCenter};
    AutostartEntry autostartEntry{directories.configHome, programPath()};
    LaunchAtLoginService launchAtLogin{autostartEntry};
    DisabledUpdateService updates;
    PrintedApplication application;
    PrintedWorkspace workspace;
    FileUserDefaults defaults{support.settingsFile(), blocking, continuousClock, support.notices()};
    SettingsStore settings{defaults};
};

Program::Program(const std::function<void(SettingsStore&)>& settle, JsonLines& lines,
                 CleanupObserver cleanupObserver)
    : cleanupObserver_(std::move(cleanupObserver)) {
    static_cast<void>(environmentAtStart());
    settleSignals();
    raiseDescriptorLimit();
    parts_ = std::make_unique<Parts>(lines);
    settle(parts_->settings);
}

Program::~Program() = default;

PrintedNotificationCenter& Program::notificationCenter() {
    return parts_->notificationCenter;
}

ContinuousClock& Program::continuousClock() {
    return parts_->continuousClock;
}

Reactor& Program::reactor() {
    return parts_->reactor;
}

void Program::run(const std::function<Task<>(AppModel&)>& work) {
    Parts& parts = *parts_;
    AppModel model(parts.settings, AppEnvironment{.mainThread = parts.loop,
                                                  .pool = parts.pool,
                                                  .blocking = parts.blocking,
                                                  .walking = parts.walking,
                                                  .continuousClock = parts.continuousClock,
                                                  .wallClock = parts.wallClock,
                                                  .processRunner = parts.processRunner,
                                                  .treeMeasurer = parts.treeMeasurer,
                                                  .authorization = parts.authorization,
                                                  .capacityReader = parts.capacityReader,
                                                  .volumes = parts.volumes,
                                                  .fileEventStreams = parts.fileEventStreams,
                                                  .notifications = parts.notifications,
                                                  .notificationCenter = parts.notificationCenter,
                                                  .launchAtLogin = parts.launchAtLogin,
                                                  .updates = parts.updates,
                                                  .application = parts.application,
                                                  .workspace = parts.workspace,
                                                  .support = parts.support,
                                                  .home = parts.directories.home,
                                                  .cleanupReported = cleanupObserver_});
    runToEnd(parts.loop, model.start());
    std::exception_ptr failure;
    try {
        runToEnd(parts.loop, work(model));
    } catch (...) {
        failure = std::current_exception();
    }
    runToEnd(parts.loop, model.stop());
    if (failure) std::rethrow_exception(failure);
}

}  // namespace cairnfield
