#pragma once
// The six kinds of notification, their three categories with the buttons of each, and the record that
// describes one notification. Plain values, any thread. How a due notification looks is decided here and in
// NotificationCatalogue.h; whether one is due is the model's judgement.

#include "Platform/NotificationCenter.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cairnfield {

enum class NotificationKind {
    storageWarning,
    storageCritical,
    watchedFolderThreshold,
    growthAnomaly,
    cleanupCompleted,
    cleanupFailed,
};

inline constexpr NotificationKind allNotificationKinds[] = {
    NotificationKind::storageWarning,         NotificationKind::storageCritical,
    NotificationKind::watchedFolderThreshold, NotificationKind::growthAnomaly,
    NotificationKind::cleanupCompleted,       NotificationKind::cleanupFailed};

[[nodiscard]] std::string_view rawValue(NotificationKind kind);            ///< "storage.warning"
[[nodiscard]] std::string_view categoryIdentifier(NotificationKind kind);  ///< "storage", "folder", "cleanup"
/// Only `storageCritical` is above active: a failed cleanup is no louder than a finished one.
[[nodiscard]] InterruptionLevel interruptionLevel(NotificationKind kind);
[[nodiscard]] double relevanceScore(NotificationKind kind);

/// What a button of a notification asks for.
enum class NotificationAction { review, snoozeHour, snoozeDay, openFolder, ignore };

[[nodiscard]] std::string_view rawValue(NotificationAction action);  ///< "action.review"
[[nodiscard]] std::string_view title(NotificationAction action);     ///< on the button
[[nodiscard]] NotificationButtonEffect effect(NotificationAction action);
/// Absent for a text that is none of them.
[[nodiscard]] std::optional<NotificationAction> notificationActionFromRawValue(std::string_view text);

/// The three categories as they are registered.
[[nodiscard]] std::vector<NotificationCategory> notificationCategories();

struct NotificationRequestPayload {
    NotificationKind kind = NotificationKind::storageWarning;
    std::string title;
    std::string body;
    std::string identifier;  ///< a second notification under the same one takes the first one's place
    std::map<std::string, std::string> userInfo;  ///< the only key in use is "path", with the path's bytes
    std::optional<double> delay;                  ///< seconds; absent or below 1.0 means at once

    friend bool operator==(const NotificationRequestPayload&, const NotificationRequestPayload&) = default;
};

namespace NotificationPreview {

/// The titles of the buttons of a kind's category: stated a second time, for showing, and kept equal to what
/// is registered.
[[nodiscard]] std::vector<std::string> actionTitles(NotificationKind kind);

}  // namespace NotificationPreview

}  // namespace cairnfield
