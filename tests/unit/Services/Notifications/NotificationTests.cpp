#include "Services/Notifications/Notification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace cairnfield {
namespace {

using testing::ElementsAre;

std::vector<std::string> titlesOf(const NotificationCategory& category) {
    std::vector<std::string> titles;
    for (const NotificationButton& button : category.buttons) titles.push_back(button.title);
    return titles;
}

NotificationCategory categoryNamed(std::string_view identifier) {
    const std::vector<NotificationCategory> categories = notificationCategories();
    const auto found = std::ranges::find(categories, identifier, &NotificationCategory::identifier);
    return found == categories.end() ? NotificationCategory{} : *found;
}

struct KindRow {
    NotificationKind kind;
    const char* rawValue;
    const char* category;
    InterruptionLevel level;
    double relevance;
};

const KindRow kindRows[] = {
    {NotificationKind::storageWarning, "storage.warning", "storage", InterruptionLevel::active, 0.5},
    {NotificationKind::storageCritical, "storage.critical", "storage", InterruptionLevel::timeSensitive, 1.0},
    {NotificationKind::watchedFolderThreshold, "folder.threshold", "folder", InterruptionLevel::active, 0.5},
    {NotificationKind::growthAnomaly, "folder.growth", "folder", InterruptionLevel::active, 0.5},
    {NotificationKind::cleanupCompleted, "cleanup.completed", "cleanup", InterruptionLevel::active, 0.5},
    {NotificationKind::cleanupFailed, "cleanup.failed", "cleanup", InterruptionLevel::active, 0.5},
};

TEST(NotificationKind, ListsSixKindsInOrder) {
    EXPECT_TRUE(std::ranges::equal(allNotificationKinds, kindRows, {}, {}, &KindRow::kind));
}

TEST(NotificationKind, SaysHowEachIsSentAndHowLoudItIs) {
    for (const KindRow& row : kindRows) {
        EXPECT_EQ(rawValue(row.kind), row.rawValue);
        EXPECT_EQ(categoryIdentifier(row.kind), row.category) << row.rawValue;
        EXPECT_EQ(interruptionLevel(row.kind), row.level) << row.rawValue;
        EXPECT_EQ(relevanceScore(row.kind), row.relevance) << row.rawValue;
    }
}

struct ActionRow {
    NotificationAction action;
    const char* rawValue;
    const char* title;
    NotificationButtonEffect effect;
};

const ActionRow actionRows[] = {
    {NotificationAction::review, "action.review", "Review cleanup", NotificationButtonEffect::foreground},
    {NotificationAction::snoozeHour, "action.snooze.hour", "Snooze 1 hour", NotificationButtonEffect::none},
    {NotificationAction::snoozeDay, "action.snooze.day", "Snooze 1 day", NotificationButtonEffect::none},
    {NotificationAction::openFolder, "action.openFolder", "Open folder",
     NotificationButtonEffect::foreground},
    {NotificationAction::ignore, "action.ignore", "Ignore this incident", NotificationButtonEffect::none},
};

TEST(NotificationAction, HasItsIdentifierItsTitleAndItsEffect) {
    for (const ActionRow& row : actionRows) {
        EXPECT_EQ(rawValue(row.action), row.rawValue);
        EXPECT_EQ(title(row.action), row.title);
        EXPECT_EQ(effect(row.action), row.effect) << row.rawValue;
        EXPECT_EQ(notificationActionFromRawValue(row.rawValue), row.action);
    }
}

TEST(NotificationAction, IsNoneForAnyOtherText) {
    for (const char* text : {"", "action", "action.Review", "review", "default", "dismiss", "action.review "})
        EXPECT_EQ(notificationActionFromRawValue(text), std::nullopt) << text;
}

TEST(NotificationCategories, AreThree) {
    const std::vector<NotificationCategory> categories = notificationCategories();
    ASSERT_EQ(categories.size(), 3U);
    EXPECT_EQ(categories[0].identifier, "storage");
    EXPECT_EQ(categories[1].identifier, "folder");
    EXPECT_EQ(categories[2].identifier, "cleanup");
}

TEST(NotificationCategories, OfferTheirButtonsInOrder) {
    EXPECT_THAT(titlesOf(categoryNamed("storage")),
                ElementsAre("Review cleanup", "Snooze 1 hour", "Snooze 1 day", "Ignore this incident"));
    EXPECT_THAT(titlesOf(categoryNamed("folder")),
                ElementsAre("Open folder", "Review cleanup", "Snooze 1 day", "Ignore this incident"));
    EXPECT_THAT(titlesOf(categoryNamed("cleanup")), ElementsAre("Review cleanup"));
}

TEST(NotificationCategories, BringNothingForwardWhenTheIncidentIsIgnored) {
    for (const char* identifier : {"storage", "folder"}) {
        const NotificationButton last = categoryNamed(identifier).buttons.back();
        EXPECT_EQ(last.identifier, "action.ignore");
        EXPECT_EQ(last.effect, NotificationButtonEffect::none);
    }
}

TEST(NotificationPreview, NamesTheButtonsThatAreRegistered) {
    for (const NotificationKind kind : allNotificationKinds)
        EXPECT_EQ(NotificationPreview::actionTitles(kind), titlesOf(categoryNamed(categoryIdentifier(kind))))
            << rawValue(kind);
}

}  // namespace
}  // namespace cairnfield
