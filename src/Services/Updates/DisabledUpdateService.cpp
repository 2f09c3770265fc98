#include "Services/Updates/DisabledUpdateService.h"

namespace cairnfield {

void DisabledUpdateService::setAutomaticallyChecksForUpdates(bool isOn) {
    checks_ = isOn;
    changes_.set(changes_.get() + 1);
}

void DisabledUpdateService::setAutomaticallyDownloadsUpdates(bool isOn) {
    downloads_ = isOn;
    changes_.set(changes_.get() + 1);
}

std::optional<std::string> DisabledUpdateService::configurationProblem() const {
    return "Updates are disabled in this build.";
}

Subscription DisabledUpdateService::observe(std::function<void()> observer) const {
    return changes_.observe(std::move(observer));
}

}  // namespace cairnfield
