#include "App/NotificationCenterDelegate.h"

#include "Services/Notifications/Notification.h"
#include "Shared/Logging/Log.h"

#include <algorithm>
#include <utility>

namespace cairnfield {

namespace {

constexpr int hoursOfADay = 24;

}  // namespace

NotificationCenterDelegate::NotificationCenterDelegate(std::weak_ptr<NotificationAnswering> model,
                                                       Application& application, Workspace& workspace)
    : model_(std::move(model)), application_(application), workspace_(workspace) {}

void NotificationCenterDelegate::install(const std::shared_ptr<NotificationCenterDelegate>& delegate,
                                         NotificationCenter& center) {
    center.onResponse(
        [weak = std::weak_ptr<NotificationCenterDelegate>(delegate)](const NotificationResponse& response) {
            if (const auto held = weak.lock()) held->didReceive(response);
        });
}

void NotificationCenterDelegate::didReceive(const NotificationResponse& response) {
    const auto found = response.userInfo.find("path");
    std::optional<std::string> path;
    if (found != response.userInfo.end()) path = found->second;
    handle(response.actionIdentifier, path);
}

void NotificationCenterDelegate::handle(std::string_view actionIdentifier,
                                        const std::optional<std::string>& path) {
    const std::shared_ptr<NotificationAnswering> model = model_.lock();
    if (!model) return;
    if (const auto action = notificationActionFromRawValue(actionIdentifier)) {
        switch (*action) {
            case NotificationAction::review:
                activateApp();
                break;
            case NotificationAction::snoozeHour:
                model->snoozeIncident(1);
                break;
            case NotificationAction::snoozeDay:
                model->snoozeIncident(hoursOfADay);
                break;
            case NotificationAction::openFolder:
                if (path) reveal(*path);
                break;
            case NotificationAction::ignore:
                model->ignoreCurrentIncident();
                break;
        }
    } else if (actionIdentifier == NotificationResponse::defaultActionIdentifier) {
        activateApp();
    }
}

void NotificationCenterDelegate::activateApp() {
    application_.activate();
    const std::vector<ApplicationWindow*> windows = application_.windows();
    const auto main = std::ranges::find_if(windows, &ApplicationWindow::canBecomeMain);
    if (main != windows.end()) (*main)->bringForward();
}

void NotificationCenterDelegate::reveal(const std::string& path) {
    workspace_.reveal(FilePath(path), [](const std::optional<std::string>& problem) {
        if (problem) Log::notifications().error("{}", *problem);
    });
}

}  // namespace cairnfield
