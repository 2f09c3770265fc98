#include "Services/Notifications/SystemNotificationService.h"

#include "Shared/Errors/CairnfieldError.h"
#include "Shared/Logging/Log.h"

#include <utility>

namespace cairnfield {

namespace {

/// A shorter delay means at once: it is not rounded up.
constexpr double shortestDelay = 1.0;

NotificationRequest requestFor(NotificationRequestPayload payload) {
    NotificationRequest request{.identifier = std::move(payload.identifier),
                                .title = std::move(payload.title),
                                .body = std::move(payload.body),
                                .categoryIdentifier = std::string(categoryIdentifier(payload.kind)),
                                .userInfo = std::move(payload.userInfo),
                                .interruptionLevel = interruptionLevel(payload.kind),
                                .relevanceScore = relevanceScore(payload.kind)};
    if (payload.delay && *payload.delay >= shortestDelay) request.delay = Seconds(*payload.delay);
    return request;
}

}  // namespace

Task<NotificationAuthorization> SystemNotificationService::authorizationStatus() {
    const NotificationAuthorization status = co_await center_.authorization();
    co_return status;
}

Task<bool> SystemNotificationService::requestAuthorization() {
    const bool granted = co_await center_.requestAuthorization();
    co_return granted;
}

Task<> SystemNotificationService::registerCategories() {
    center_.setCategories(notificationCategories());
    co_return;
}

Task<> SystemNotificationService::deliver(NotificationRequestPayload payload) {
    const NotificationAuthorization status = co_await center_.authorization();
    if (status != NotificationAuthorization::authorized && status != NotificationAuthorization::provisional)
        throw CairnfieldError(CairnfieldError::NotificationPermissionDenied{});
    const NotificationKind kind = payload.kind;
    NotificationRequest request = requestFor(std::move(payload));
    co_await center_.add(std::move(request));
    Log::notifications().info("Delivered {}", rawValue(kind));
}

Task<> SystemNotificationService::cancelPending(std::vector<std::string> identifiers) {
    if (identifiers.empty()) {
        center_.removeAllPending();
    } else {
        center_.removePending(identifiers);
    }
    co_return;
}

Task<std::vector<std::string>> SystemNotificationService::pendingIdentifiers() {
    co_return center_.pendingIdentifiers();
}

}  // namespace cairnfield
