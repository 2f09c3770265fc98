#include "Services/Notifications/Notification.h"

#include <algorithm>
#include <array>

namespace cairnfield {

namespace {

using Kind = NotificationKind;
using Action = NotificationAction;

enum class Category { storage, folder, cleanup };

struct KindRow {
    Kind kind;
    std::string_view rawValue;
    Category category;
    InterruptionLevel level;
    double relevance;
};

constexpr std::array kinds{
    KindRow{Kind::storageWarning, "storage.warning", Category::storage, InterruptionLevel::active, 0.5},
    KindRow{Kind::storageCritical, "storage.critical", Category::storage, InterruptionLevel::timeSensitive,
            1.0},
    KindRow{Kind::watchedFolderThreshold, "folder.threshold", Category::folder, InterruptionLevel::active,
            0.5},
    KindRow{Kind::growthAnomaly, "folder.growth", Category::folder, InterruptionLevel::active, 0.5},
    KindRow{Kind::cleanupCompleted, "cleanup.completed", Category::cleanup, InterruptionLevel::active, 0.5},
    KindRow{Kind::cleanupFailed, "cleanup.failed", Category::cleanup, InterruptionLevel::active, 0.5},
};

const KindRow& rowOf(Kind kind) {
    return kinds.at(static_cast<std::size_t>(kind));
}

struct ActionRow {
    Action action;
    std::string_view rawValue;
    std::string_view title;
    NotificationButtonEffect effect;
};

constexpr std::array actions{
    ActionRow{Action::review, "action.review", "Review cleanup", NotificationButtonEffect::foreground},
    ActionRow{Action::snoozeHour, "action.snooze.hour", "Snooze 1 hour", NotificationButtonEffect::none},
    ActionRow{Action::snoozeDay, "action.snooze.day", "Snooze 1 day", NotificationButtonEffect::none},
    ActionRow{Action::openFolder, "action.openFolder", "Open folder", NotificationButtonEffect::foreground},
    ActionRow{Action::ignore, "action.ignore", "Ignore this incident", NotificationButtonEffect::none},
};

const ActionRow& rowOf(Action action) {
    return actions.at(static_cast<std::size_t>(action));
}

std::string_view identifierOf(Category category) {
    switch (category) {
        case Category::storage:
            return "storage";
        case Category::folder:
            return "folder";
        case Category::cleanup:
            return "cleanup";
    }
    return {};
}

NotificationCategory category(Category category, std::initializer_list<Action> offered) {
    NotificationCategory made{.identifier = std::string(identifierOf(category))};
    for (const Action action : offered)
        made.buttons.push_back({std::string(rawValue(action)), std::string(title(action)), effect(action)});
    return made;
}

}  // namespace

std::string_view rawValue(NotificationKind kind) {
    return rowOf(kind).rawValue;
}

std::string_view categoryIdentifier(NotificationKind kind) {
    return identifierOf(rowOf(kind).category);
}

InterruptionLevel interruptionLevel(NotificationKind kind) {
    return rowOf(kind).level;
}

double relevanceScore(NotificationKind kind) {
    return rowOf(kind).relevance;
}

std::string_view rawValue(NotificationAction action) {
    return rowOf(action).rawValue;
}

std::string_view title(NotificationAction action) {
    return rowOf(action).title;
}

NotificationButtonEffect effect(NotificationAction action) {
    return rowOf(action).effect;
}

std::optional<NotificationAction> notificationActionFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(actions, text, &ActionRow::rawValue);
    if (found == actions.end()) return std::nullopt;
    return found->action;
}

std::vector<NotificationCategory> notificationCategories() {
    return {
        category(Category::storage, {Action::review, Action::snoozeHour, Action::snoozeDay, Action::ignore}),
        category(Category::folder, {Action::openFolder, Action::review, Action::snoozeDay, Action::ignore}),
        category(Category::cleanup, {Action::review}),
    };
}

std::vector<std::string> NotificationPreview::actionTitles(NotificationKind kind) {
    switch (rowOf(kind).category) {
        case Category::storage:
            return {"Review cleanup", "Snooze 1 hour", "Snooze 1 day", "Ignore this incident"};
        case Category::folder:
            return {"Open folder", "Review cleanup", "Snooze 1 day", "Ignore this incident"};
        case Category::cleanup:
            return {"Review cleanup"};
    }
    return {};
}

}  // namespace cairnfield
