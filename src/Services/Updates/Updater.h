#pragma once

#include "Shared/Time/Date.h"

#include <functional>
#include <optional>

namespace cairnfield {

/// What looks for updates, verifies and installs them, with windows of its own. Made without being started;
/// until then it does nothing by itself. Main thread only.
class Updater {
public:
    virtual ~Updater() = default;

    virtual void start() = 0;
    /// Tells at once whether a check may start, and after each change, from any thread. Nobody is told after
    /// this object has gone.
    virtual void observeCanCheckForUpdates(std::function<void(bool)> observer) = 0;

    [[nodiscard]] virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool isOn) = 0;
    [[nodiscard]] virtual bool automaticallyDownloadsUpdates() const = 0;
    virtual void setAutomaticallyDownloadsUpdates(bool isOn) = 0;
    [[nodiscard]] virtual std::optional<Date> lastUpdateCheckDate() const = 0;
    virtual void checkForUpdates() = 0;
};

}  // namespace cairnfield
