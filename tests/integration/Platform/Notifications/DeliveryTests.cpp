// What a service gets to show, and what of it comes back.

#include "NotificationCenterFixture.h"

namespace cairnfield {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const QStringList everything{"actions", "body", "body-markup", "sound", "icon-static"};

class Delivery : public NotificationCenterFixture {
protected:
    ScriptedNotificationServer server{bus, everything};
};

TEST_F(Delivery, ShowsANotificationWithItsButtons) {
    add(request("storage.warning", "Storage running low"));
    ASSERT_THAT(server.titles(), ElementsAre("Storage running low"));
    const auto& shown = server.onScreen().begin()->second;
    EXPECT_EQ(shown.body, "Body");
    EXPECT_EQ(shown.icon, "com.cairnfield.app");
    const QStringList actions{"default",        "Open Cairnfield", "action.review",
                              "Review cleanup", "action.ignore",   "Ignore this incident"};
    EXPECT_EQ(shown.actions, actions);
    EXPECT_EQ(shown.hints.value("desktop-entry").toString(), "com.cairnfield.app");
    EXPECT_EQ(shown.hints.value("sound-name").toString(), "message-new-instant");
}

TEST_F(Delivery, ReplacesWhatHasTheSameIdentifier) {
    add(request("storage.warning", "first"));
    add(request("storage.warning", "second"));
    EXPECT_THAT(server.titles(), ElementsAre("second"));
    EXPECT_THAT(center.deliveredIdentifiers(), ElementsAre("storage.warning"));
}

TEST_F(Delivery, StandsBesideWhatHasAnother) {
    add(request("storage.warning", "warning"));
    add(request("storage.critical", "critical"));
    EXPECT_THAT(server.titles(), UnorderedElementsAre("warning", "critical"));
}

TEST_F(Delivery, ReplacesEvenWhatIsStillOnItsWay) {
    const TaskHandle<> first = start(request("storage.warning", "first"));
    const TaskHandle<> second = start(request("storage.warning", "second"));
    end(first);
    end(second);
    EXPECT_THAT(server.titles(), ElementsAre("second"));
}

TEST_F(Delivery, IsUrgentOnlyWhenItIsTimeSensitiveAndSaysSoInAByte) {
    add(request("storage.warning"));
    NotificationRequest critical = request("storage.critical");
    critical.interruptionLevel = InterruptionLevel::timeSensitive;
    add(critical);
    EXPECT_EQ(server.calls()[0].hints.value("urgency"), QVariant::fromValue(uchar(1)));
    const QVariant urgency = server.calls()[1].hints.value("urgency");
    EXPECT_EQ(urgency, QVariant::fromValue(uchar(2)));
    EXPECT_EQ(urgency.metaType().id(), QMetaType::UChar);
}

TEST_F(Delivery, HasNoButtonsInACategoryThatNobodySet) {
    NotificationRequest other = request("a");
    other.categoryIdentifier = "unknown";
    add(other);
    EXPECT_EQ(server.calls()[0].actions, QStringList({"default", "Open Cairnfield"}));
}

TEST_F(Delivery, ShowsMarkupAsItStandsWhereMarkupIsRendered) {
    NotificationRequest odd = request("a");
    odd.body = "2 GB free on <b>x</b>&.";
    add(odd);
    EXPECT_EQ(server.calls()[0].body, "2 GB free on &lt;b&gt;x&lt;/b&gt;&amp;.");
}

TEST_F(Delivery, CountsAsDeliveredUntilItIsClosed) {
    add(request("a"));
    add(request("b"));
    EXPECT_THAT(center.deliveredIdentifiers(), ElementsAre("a", "b"));
    server.dismiss(1);
    server.letExpire(2);
    until([this] { return center.deliveredIdentifiers().empty(); }, "both to be closed");
}

TEST_F(Delivery, StartsAnewAfterTheEarlierOneWasClosed) {
    add(request("a"));
    server.letExpire(1);
    until([this] { return center.deliveredIdentifiers().empty(); }, "the end of the first");
    add(request("a"));
    EXPECT_EQ(server.calls()[1].replaced, 0U);
}

TEST_F(Delivery, TellsOfAButtonAndClosesTheNotification) {
    add(request("storage.warning"));
    server.press(1, "action.review");
    until([this] { return !responses.empty(); }, "the response");
    const NotificationResponse expected{.actionIdentifier = "action.review",
                                        .requestIdentifier = "storage.warning",
                                        .userInfo = {{"path", "/p"}}};
    EXPECT_THAT(responses, ElementsAre(expected));
    until([this] { return server.onScreen().empty(); }, "the notification to be closed");
    EXPECT_THAT(server.closeRequests(), ElementsAre(1U));
    settle();
    EXPECT_EQ(responses.size(), 1U) << "that we closed it is no answer of the person";
    EXPECT_THAT(center.deliveredIdentifiers(), IsEmpty());
}

TEST_F(Delivery, TellsOfAClickOnTheNotificationItself) {
    add(request("a"));
    server.press(1, "default");
    until([this] { return !responses.empty(); }, "the response");
    EXPECT_EQ(responses[0].actionIdentifier, NotificationResponse::defaultActionIdentifier);
}

TEST_F(Delivery, HandsOnTheLeaveToBringAWindowForwardBeforeTheAnswer) {
    std::vector<std::string> told;
    center.onActivationToken([&told](const std::string& token) { told.push_back(token); });
    center.onResponse(
        [&told](const NotificationResponse& response) { told.push_back(response.actionIdentifier); });
    add(request("a"));
    server.giveToken(77, "of another");
    server.giveToken(1, "leave");
    server.press(1, "default");
    until([&told] { return told.size() >= 3; }, "the response");
    EXPECT_THAT(told, ElementsAre("leave", "default", "")) << "and after it the leave is over";
}

TEST_F(Delivery, TellsThatThePersonPutItAway) {
    add(request("a"));
    server.dismiss(1);
    until([this] { return !responses.empty(); }, "the response");
    EXPECT_EQ(responses[0].actionIdentifier, NotificationResponse::dismissActionIdentifier);
    EXPECT_THAT(server.closeRequests(), IsEmpty());
}

TEST_F(Delivery, SaysNothingWhenItsTimeOnScreenIsOver) {
    add(request("a"));
    server.letExpire(1);
    until([this] { return center.deliveredIdentifiers().empty(); }, "the end of it");
    EXPECT_THAT(responses, IsEmpty());
}

TEST_F(Delivery, IsStillAnsweredFromAListOfOldOnes) {
    add(request("a"));
    server.letExpire(1);
    until([this] { return center.deliveredIdentifiers().empty(); }, "the end of it");
    server.press(1, "action.review");
    until([this] { return !responses.empty(); }, "the response");
    EXPECT_EQ(responses[0].requestIdentifier, "a");
}

TEST_F(Delivery, IgnoresAnswersToNotificationsOfOthers) {
    add(request("a"));
    server.press(77, "action.review");
    server.dismiss(77);
    settle();
    EXPECT_THAT(responses, IsEmpty());
}

TEST_F(Delivery, IgnoresAnswersThatAnotherProgramMakesUp) {
    add(request("a"));
    QDBusMessage forged = QDBusMessage::createSignal("/org/freedesktop/Notifications",
                                                     "org.freedesktop.Notifications", "ActionInvoked");
    forged << 1U << QStringLiteral("action.ignore");
    bus.connect().send(forged);
    settle();
    EXPECT_THAT(responses, IsEmpty());
}

TEST_F(Delivery, AnswersADoublePressOnce) {
    add(request("a"));
    server.press(1, "action.review");
    server.press(1, "action.review");
    until([this] { return server.onScreen().empty(); }, "the notification to be closed");
    settle();
    EXPECT_EQ(responses.size(), 1U);
}

TEST_F(Delivery, LetsTheObserverDeliverTheNextOne) {
    center.onResponse([this](const NotificationResponse&) { start(request("b", "next")); });
    add(request("a"));
    server.press(1, "default");
    until([this] { return server.titles() == std::vector<std::string>{"next"}; }, "the next one");
    settle();
}

TEST_F(Delivery, WaitsForItsTime) {
    NotificationRequest later = request("a", "later");
    later.delay = 1s;
    add(later);
    until([this] { return clock.sleepers() == 1; }, "the timer");
    EXPECT_THAT(center.pendingIdentifiers(), ElementsAre("a"));
    EXPECT_THAT(server.calls(), IsEmpty());
    clock.advance(1s);
    until([this] { return server.titles() == std::vector<std::string>{"later"}; }, "the notification");
    EXPECT_THAT(center.pendingIdentifiers(), IsEmpty());
}

TEST_F(Delivery, TakesThePlaceOfOneThatWaits) {
    NotificationRequest later = request("a", "later");
    later.delay = 60s;
    add(later);
    add(request("a", "now"));
    EXPECT_THAT(center.pendingIdentifiers(), IsEmpty());
    EXPECT_THAT(server.titles(), ElementsAre("now"));
}

TEST_F(Delivery, LetsOnesThatWaitBeTakenBack) {
    for (const char* identifier : {"a", "b", "c"}) {
        NotificationRequest later = request(identifier);
        later.delay = 60s;
        add(later);
    }
    center.removePending({"b", "unknown"});
    EXPECT_THAT(center.pendingIdentifiers(), ElementsAre("a", "c"));
    center.removeAllPending();
    EXPECT_THAT(center.pendingIdentifiers(), IsEmpty());
    until([this] { return clock.sleepers() == 0; }, "the timers to end");
}

class PlainDelivery : public NotificationCenterFixture {};

TEST_F(PlainDelivery, HasNoButtonsWhereTheServiceHasNone) {
    ScriptedNotificationServer server(bus, {"body", "body-markup"});
    add(request("a"));
    EXPECT_THAT(server.calls()[0].actions, IsEmpty());
    EXPECT_FALSE(server.calls()[0].hints.contains("sound-name"));
}

TEST_F(PlainDelivery, ShowsMarkupAsItStandsWhereNothingRendersIt) {
    ScriptedNotificationServer server(bus, {"actions", "body"});
    NotificationRequest odd = request("a");
    odd.body = "2 GB free on <b>x</b>&.";
    add(odd);
    EXPECT_EQ(server.calls()[0].body, "2 GB free on <b>x</b>&.");
}

TEST_F(PlainDelivery, CarriesAPictureWhereItIsShown) {
    ScriptedNotificationServer server(bus, {"icon-static"});
    QImage picture(4, 2, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    LinuxNotificationCenter pictured(connection, clock, mainThread, picture, limit);
    run(pictured.add(request("a")));
    const auto image = qdbus_cast<NotificationImage>(server.calls()[0].hints.value("image-data"));
    EXPECT_EQ(image.width, 4);
    EXPECT_EQ(image.height, 2);
    EXPECT_EQ(image.pixels.size(), 32);
    run(pictured.stop());
}

}  // namespace
}  // namespace cairnfield
