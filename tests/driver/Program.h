#pragma once
// The whole program without its window: the real settings, model and services, put together as the
// application does, with a plain loop for the main thread and a desktop that prints. One for each run of the
// driver; HOME and the XDG variables decide where it lives.

#include "App/AppModel.h"
#include "Persistence/SettingsStore.h"
#include "Shared/Concurrency/ContinuousClock.h"
#include "Shared/Concurrency/RunLoop.h"
#include "driver/JsonLines.h"

#include <functional>
#include <memory>

namespace cairnfield {

class PrintedNotificationCenter;
class Reactor;

class Program {
public:
    /// What a cleanup reports, on the thread that does the work.
    using CleanupObserver = std::function<void(const CleanupProgress&)>;

    /// `settle` gets the settings before anything reads them.
    Program(const std::function<void(SettingsStore&)>& settle, JsonLines& lines,
            CleanupObserver cleanupObserver = {});
    ~Program();

    /// Starts the model, does the work, and stops it again, whatever the work throws.
    void run(const std::function<Task<>(AppModel&)>& work);

    [[nodiscard]] PrintedNotificationCenter& notificationCenter();
    [[nodiscard]] ContinuousClock& continuousClock();
    [[nodiscard]] Reactor& reactor();

private:
    struct Parts;
    const CleanupObserver cleanupObserver_;
    std::unique_ptr<Parts> parts_;
};

}  // namespace cairnfield
