#include "Services/Notifications/SystemNotificationService.h"
#include "Shared/Errors/CairnfieldError.h"
#include "support/FakeNotificationCenter.h"
#include "support/Waiting.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SystemNotificationServiceTest : public testing::Test {
protected:
    template <class T>
    T run(Task<T> task) {
        return waitFor(loop, std::move(task));
    }

    static NotificationRequestPayload payload(NotificationKind kind, std::string identifier) {
        return {.kind = kind, .title = "Title", .body = "Body", .identifier = std::move(identifier)};
    }
    void schedule(std::string identifier) {
        NotificationRequestPayload later = payload(NotificationKind::storageWarning, std::move(identifier));
        later.delay = 60;
        run(service.deliver(std::move(later)));
    }

    RunLoop loop;
    FakeNotificationCenter center;
    SystemNotificationService service{center};
};

TEST_F(SystemNotificationServiceTest, HandsOverWhatTheKindAsksFor) {
    NotificationRequestPayload folder = payload(NotificationKind::growthAnomaly, "folder.growth.X");
    folder.userInfo = {{"path", "/p"}};
    run(service.deliver(folder));
    const NotificationRequest expected{.identifier = "folder.growth.X",
                                       .title = "Title",
                                       .body = "Body",
                                       .categoryIdentifier = "folder",
                                       .userInfo = {{"path", "/p"}},
                                       .interruptionLevel = InterruptionLevel::active,
                                       .relevanceScore = 0.5};
    EXPECT_THAT(center.shown, ElementsAre(expected));
}

TEST_F(SystemNotificationServiceTest, RaisesOnlyACriticalAlertAboveActive) {
    for (const NotificationKind kind : allNotificationKinds) {
        run(service.deliver(payload(kind, std::string(rawValue(kind)))));
        const NotificationRequest& request = center.shown.back();
        const bool isCritical = kind == NotificationKind::storageCritical;
        EXPECT_EQ(request.interruptionLevel,
                  isCritical ? InterruptionLevel::timeSensitive : InterruptionLevel::active)
            << rawValue(kind);
        EXPECT_EQ(request.relevanceScore, isCritical ? 1.0 : 0.5) << rawValue(kind);
    }
}

TEST_F(SystemNotificationServiceTest, DeliversWithFullOrProvisionalPermissionOnly) {
    using enum NotificationAuthorization;
    for (const NotificationAuthorization status : {authorized, provisional}) {
        center.status = status;
        EXPECT_NO_THROW(run(service.deliver(payload(NotificationKind::storageWarning, "a"))));
    }
    center.shown.clear();
    for (const NotificationAuthorization status : {denied, notDetermined, ephemeral}) {
        center.status = status;
        try {
            run(service.deliver(payload(NotificationKind::storageWarning, "a")));
            ADD_FAILURE() << "delivered without permission";
        } catch (const CairnfieldError& error) {
            EXPECT_EQ(error, CairnfieldError(CairnfieldError::NotificationPermissionDenied{}));
            EXPECT_EQ(error.errorDescription(), "Notifications are turned off for Cairnfield.");
        }
    }
    EXPECT_THAT(center.shown, IsEmpty());
}

TEST_F(SystemNotificationServiceTest, AsksForTheStatusAfreshEachTime) {
    EXPECT_EQ(run(service.authorizationStatus()), NotificationAuthorization::authorized);
    center.status = NotificationAuthorization::denied;
    EXPECT_EQ(run(service.authorizationStatus()), NotificationAuthorization::denied);
    EXPECT_EQ(center.authorizationQuestions, 2);
}

TEST_F(SystemNotificationServiceTest, TakesADelayBelowASecondForAtOnce) {
    NotificationRequestPayload soon = payload(NotificationKind::storageWarning, "soon");
    for (const double delay : {0.0, 0.5, 0.99, -4.0, std::numeric_limits<double>::quiet_NaN()}) {
        soon.delay = delay;
        run(service.deliver(soon));
        EXPECT_EQ(center.shown.back().delay, std::nullopt) << delay;
    }
    EXPECT_THAT(center.waiting, IsEmpty());
}

TEST_F(SystemNotificationServiceTest, SchedulesADelayOfASecondOrMore) {
    NotificationRequestPayload later = payload(NotificationKind::storageWarning, "later");
    later.delay = 1.0;
    run(service.deliver(later));
    ASSERT_EQ(center.waiting.size(), 1U);
    EXPECT_EQ(center.waiting[0].delay, Seconds(1.0));
    EXPECT_THAT(run(service.pendingIdentifiers()), ElementsAre("later"));
}

TEST_F(SystemNotificationServiceTest, LeavesOneNotificationOfTwoWithTheSameIdentifier) {
    run(service.deliver(payload(NotificationKind::storageWarning, "storage.warning")));
    NotificationRequestPayload second = payload(NotificationKind::storageWarning, "storage.warning");
    second.body = "Newer";
    run(service.deliver(second));
    ASSERT_EQ(center.shown.size(), 1U);
    EXPECT_EQ(center.shown[0].body, "Newer");
}

TEST_F(SystemNotificationServiceTest, LeavesAWarningBesideACriticalAlert) {
    run(service.deliver(payload(NotificationKind::storageWarning, "storage.warning")));
    run(service.deliver(payload(NotificationKind::storageCritical, "storage.critical")));
    EXPECT_EQ(center.shown.size(), 2U);
}

TEST_F(SystemNotificationServiceTest, PassesOnWhatTheDesktopFailsWith) {
    center.addFailure = std::make_exception_ptr(NotificationRefused("no room"));
    try {
        run(service.deliver(payload(NotificationKind::storageWarning, "a")));
        ADD_FAILURE() << "the desktop's failure was lost";
    } catch (const NotificationRefused& failure) {
        EXPECT_EQ(describe(failure), "no room");
    }
}

TEST_F(SystemNotificationServiceTest, CancelsTheNamedOnes) {
    for (const char* identifier : {"a", "b", "c"}) schedule(identifier);
    run(service.cancelPending({"a", "c", "unknown"}));
    EXPECT_THAT(run(service.pendingIdentifiers()), ElementsAre("b"));
}

TEST_F(SystemNotificationServiceTest, CancelsAllWhenNoneIsNamed) {
    for (const char* identifier : {"a", "b"}) schedule(identifier);
    run(service.cancelPending({}));
    EXPECT_THAT(run(service.pendingIdentifiers()), IsEmpty());
}

TEST_F(SystemNotificationServiceTest, RegistersTheCategoriesInPlaceOfWhatWasThere) {
    center.categories = {{.identifier = "old"}};
    run(service.registerCategories());
    EXPECT_EQ(center.categories, notificationCategories());
}

TEST_F(SystemNotificationServiceTest, TellsWhetherPermissionWasGranted) {
    EXPECT_TRUE(run(service.requestAuthorization()));
    center.grants = false;
    EXPECT_FALSE(run(service.requestAuthorization()));
    center.requestFailure = std::make_exception_ptr(NotificationRefused("nobody to ask"));
    EXPECT_THROW(run(service.requestAuthorization()), NotificationRefused);
}

}  // namespace
}  // namespace cairnfield
