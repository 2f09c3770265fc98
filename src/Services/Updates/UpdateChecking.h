#pragma once

#include "Shared/Concurrency/Published.h"
#include "Shared/Time/Date.h"

#include <functional>
#include <optional>
#include <string>

namespace cairnfield {

/// Looking for a newer version of this program, as the rest of it sees that. Main thread only; nothing fails.
class UpdateChecking {
public:
    virtual ~UpdateChecking() = default;

    /// A check may start now.
    [[nodiscard]] virtual bool canCheckForUpdates() const = 0;
    [[nodiscard]] virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool isOn) = 0;
    [[nodiscard]] virtual bool automaticallyDownloadsUpdates() const = 0;
    virtual void setAutomaticallyDownloadsUpdates(bool isOn) = 0;
    [[nodiscard]] virtual std::optional<Date> lastUpdateCheckDate() const = 0;
    [[nodiscard]] virtual std::optional<std::string> feedURLString() const = 0;
    /// Why checks cannot run, in words for the person; absent when all is well.
    [[nodiscard]] virtual std::optional<std::string> configurationProblem() const = 0;
    /// Starts a check that the person sees.
    virtual void checkForUpdates() = 0;

    /// Told after any of the above changed.
    [[nodiscard]] virtual Subscription observe(std::function<void()> observer) const = 0;
};

}  // namespace cairnfield
