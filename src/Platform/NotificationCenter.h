#pragma once
// What the program asks of the desktop's notification service, and what comes back from it. Main thread only.
//
// A request under the identifier of an earlier one takes its place, whether that one still waits for its time
// or is on screen. What becomes of a notification after it was shown is the service's business; only answers
// to it come back. Nothing here outlives the program but what is on screen.

#include "Shared/Concurrency/Task.h"
#include "Shared/Time/Date.h"

#include <functional>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

enum class NotificationAuthorization { notDetermined, denied, authorized, provisional, ephemeral };

enum class InterruptionLevel { active, timeSensitive };

/// What a press does to the program's windows before it is answered.
enum class NotificationButtonEffect { none, foreground };

struct NotificationButton {
    std::string identifier;
    std::string title;
    NotificationButtonEffect effect = NotificationButtonEffect::none;

    friend bool operator==(const NotificationButton&, const NotificationButton&) = default;
};

/// The buttons that all notifications of one sort carry, in the order in which they are shown.
struct NotificationCategory {
    std::string identifier;
    std::vector<NotificationButton> buttons;

    friend bool operator==(const NotificationCategory&, const NotificationCategory&) = default;
};

struct NotificationRequest {
    std::string identifier;
    std::string title;  ///< plain text, as is the body: whatever looks like markup is shown as it stands
    std::string body;
    std::string categoryIdentifier;               ///< one that is not known means no buttons
    std::map<std::string, std::string> userInfo;  ///< comes back with each answer
    InterruptionLevel interruptionLevel = InterruptionLevel::active;
    double relevanceScore = 0.5;   ///< 0 to 1, for a service that sorts
    std::optional<Seconds> delay;  ///< absent: at once

    friend bool operator==(const NotificationRequest&, const NotificationRequest&) = default;
};

/// What a person did with a notification.
struct NotificationResponse {
    /// The person chose the notification itself, not one of its buttons.
    static constexpr std::string_view defaultActionIdentifier = "default";
    /// The person put the notification away.
    static constexpr std::string_view dismissActionIdentifier = "dismiss";

    std::string actionIdentifier;  ///< a button's, or one of the two above
    std::string requestIdentifier;
    std::map<std::string, std::string> userInfo;

    friend bool operator==(const NotificationResponse&, const NotificationResponse&) = default;
};

/// The service did not take a notification. Its text says why, for people.
class NotificationRefused : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// There is no service that could have taken it.
class NotificationServiceMissing final : public NotificationRefused {
public:
    using NotificationRefused::NotificationRefused;
};

class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    /// Asked afresh at each call; never fails.
    virtual Task<NotificationAuthorization> authorization() = 0;
    /// Whether notifications with sound may be shown from now on. May fail where a person can be asked.
    virtual Task<bool> requestAuthorization() = 0;
    /// In place of whatever was set before; for requests added from now on.
    virtual void setCategories(std::vector<NotificationCategory> categories) = 0;

    /// Returns when the service has taken the request, or when one with a delay is scheduled. Throws
    /// NotificationRefused, and NotificationServiceMissing where there is none.
    virtual Task<> add(NotificationRequest request) = 0;
    /// Those that still wait for their time; one that is not there is no failure.
    virtual void removePending(const std::vector<std::string>& identifiers) = 0;
    virtual void removeAllPending() = 0;
    [[nodiscard]] virtual std::vector<std::string> pendingIdentifiers() const = 0;

    /// At most one observer; a new one replaces the old, an empty one ends it.
    virtual void onResponse(std::function<void(NotificationResponse)> observer) = 0;

    /// Called when a service has come to be where there was none. At most one observer, as above.
    virtual void onServiceAppeared(std::function<void()> observer) = 0;
};

}  // namespace cairnfield
