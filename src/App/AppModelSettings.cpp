#include "App/AppModel.h"
#include "Services/Notifications/NotificationDelivering.h"
#include "Services/Permissions/LaunchAtLoginManaging.h"
#include "Shared/Concurrency/Cancelled.h"
#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

namespace cairnfield {

Task<> AppModel::enableNotifications() {
    bool isGranted = false;
    bool isAnswered = false;
    try {
        isGranted = co_await environment_.notifications.requestAuthorization();
        isAnswered = true;
    } catch (const Cancelled&) {
        throw;
    } catch (const std::exception&) {
        // Refused as far as the person is concerned; the screen says so.
    }
    settings_.notificationsEnabled.set(isGranted);
    state_.notificationAuthorizationDenied.set(!isGranted);
    if (isAnswered && isGranted) co_await environment_.notifications.registerCategories();
}

bool AppModel::launchAtLoginEnabled() const {
    return environment_.launchAtLogin.isEnabled();
}

void AppModel::setLaunchAtLogin(bool isOn) {
    assertIsolated();
    try {
        environment_.launchAtLogin.setEnabled(isOn);
    } catch (const std::exception& error) {
        Log::app().error("Launch at login failed: {}", describe(error));
        return;
    }
    settings_.launchAtLogin.set(isOn);
}

}  // namespace cairnfield
