#pragma once
// Carries a notification to the desktop's notification center. Holds no state: what is shown and what waits
// is the center's to know. On the center's thread.

#include "Services/Notifications/NotificationDelivering.h"

namespace cairnfield {

class SystemNotificationService final : public NotificationDelivering {
public:
    /// The center outlives this.
    explicit SystemNotificationService(NotificationCenter& center) : center_(center) {}

    Task<NotificationAuthorization> authorizationStatus() override;
    Task<bool> requestAuthorization() override;
    Task<> registerCategories() override;
    /// Logs each delivery.
    Task<> deliver(NotificationRequestPayload payload) override;
    Task<> cancelPending(std::vector<std::string> identifiers) override;
    Task<std::vector<std::string>> pendingIdentifiers() override;

private:
    NotificationCenter& center_;
};

}  // namespace cairnfield
