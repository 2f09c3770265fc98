#include "driver/PrintedDesktop.h"

#include <utility>

namespace cairnfield {

void PrintedNotificationCenter::respond(NotificationResponse response) const {
    if (observer_) observer_(std::move(response));
}

Task<NotificationAuthorization> PrintedNotificationCenter::authorization() {
    co_return NotificationAuthorization::authorized;
}

Task<bool> PrintedNotificationCenter::requestAuthorization() {
    co_return true;
}

void PrintedNotificationCenter::setCategories(std::vector<NotificationCategory>) {}

Task<> PrintedNotificationCenter::add(NotificationRequest request) {
    Json userInfo = Json::object();
    for (const auto& [key, value] : request.userInfo) userInfo[key] = jsonFromText(value);
    Json fields{{"identifier", request.identifier},
                {"title", jsonFromText(request.title)},
                {"body", jsonFromText(request.body)},
                {"category", request.categoryIdentifier},
                {"isTimeSensitive", request.interruptionLevel == InterruptionLevel::timeSensitive},
                {"userInfo", std::move(userInfo)}};
    if (request.delay) fields["delay"] = request.delay->count();
    lines_.print("notification", std::move(fields));
    co_return;
}

void PrintedNotificationCenter::removePending(const std::vector<std::string>&) {}

void PrintedNotificationCenter::removeAllPending() {}

std::vector<std::string> PrintedNotificationCenter::pendingIdentifiers() const {
    return {};
}

void PrintedNotificationCenter::onResponse(std::function<void(NotificationResponse)> observer) {
    observer_ = std::move(observer);
}

void PrintedWorkspace::revealAll(const std::vector<FilePath>& items, Told told) {
    for (const FilePath& item : items) lines_.print("revealed", {{"path", item}});
    told(std::nullopt);
}

std::optional<std::string> PrintedWorkspace::openTerminal(const FilePath& directory) {
    lines_.print("terminal", {{"path", directory}});
    return std::nullopt;
}

}  // namespace cairnfield
