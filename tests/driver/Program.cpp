#include "driver/Program.h"

#include "Platform/Linux/BaseDirectories.h"
#include "Platform/Linux/DescriptorLimit.h"
#include "Platform/Linux/FileUserDefaults.h"
#include "Platform/Linux/LinuxChildProcess.h"
#include "Platform/Linux/LinuxTreeMeasurer.h"
#include "Services/Permissions/PathAuthorization.h"
#include "Services/Process/SystemProcessRunner.h"
#include "Shared/Concurrency/Reactor.h"
#include "Shared/Concurrency/RunBlocking.h"
#include "Shared/Concurrency/ThreadPool.h"

#include <csignal>
#include <exception>

namespace cairnfield {

struct Program::Parts {
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
    FileUserDefaults defaults{support.settingsFile()};
    SettingsStore settings{defaults};
};

Program::Program(const std::function<void(SettingsStore&)>& settle) {
    std::signal(SIGPIPE, SIG_IGN);
    raiseDescriptorLimit();
    parts_ = std::make_unique<Parts>();
    settle(parts_->settings);
}

Program::~Program() = default;

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
                                                  .support = parts.support});
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
