#pragma once

#include "App/AppState.h"
#include "Services/Notifications/Notification.h"

namespace cairnfield {

/// Whether a notification that could not be delivered when it was due still says something true: the incident
/// is in force at that level, the folder is watched, not snoozed and over its limit. Main thread only.
[[nodiscard]] bool isStillNews(const NotificationRequestPayload& payload, const AppState& state, Date now);

}  // namespace cairnfield
