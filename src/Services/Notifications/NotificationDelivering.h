#pragma once
// All that the model knows of notifications. Called on the main thread.

#include "Services/Notifications/Notification.h"
#include "Shared/Concurrency/Task.h"

#include <string>
#include <vector>

namespace cairnfield {

class NotificationDelivering {
public:
    virtual ~NotificationDelivering() = default;

    /// Asked afresh at each call.
    virtual Task<NotificationAuthorization> authorizationStatus() = 0;
    /// Asks for notifications with sound, and for nothing else. Whether that is granted; may fail.
    virtual Task<bool> requestAuthorization() = 0;
    /// In place of whatever was registered.
    virtual Task<> registerCategories() = 0;

    /// Throws CairnfieldError::NotificationPermissionDenied, with nothing posted, unless the status is
    /// authorized or provisional; else what the desktop failed with, as it stands.
    virtual Task<> deliver(NotificationRequestPayload payload) = 0;

    /// Takes back those of the given identifiers that still wait for their time; an empty list means all of
    /// them, not none.
    virtual Task<> cancelPending(std::vector<std::string> identifiers) = 0;
    /// In the desktop's order.
    virtual Task<std::vector<std::string>> pendingIdentifiers() = 0;
};

}  // namespace cairnfield
