#pragma once
// The whole program without its window: the real settings, model and services, put together as the
// application does, with a plain loop for the main thread. One for each run of the driver; HOME and the XDG
// variables decide where it lives.

#include "App/AppModel.h"
#include "Persistence/SettingsStore.h"
#include "Shared/Concurrency/RunLoop.h"

#include <functional>
#include <memory>

namespace cairnfield {

class Program {
public:
    /// `settle` gets the settings before anything reads them.
    explicit Program(const std::function<void(SettingsStore&)>& settle);
    ~Program();

    /// Starts the model, does the work, and stops it again, whatever the work throws.
    void run(const std::function<Task<>(AppModel&)>& work);

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace cairnfield
