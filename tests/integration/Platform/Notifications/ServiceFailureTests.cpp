// Services that are missing, fail, fall silent, crash and come back.

#include "NotificationCenterFixture.h"
#include "Services/Notifications/SystemNotificationService.h"
#include "Shared/Errors/CairnfieldError.h"

#include <QDBusConnectionInterface>
#include <QDBusReply>

#include <filesystem>

namespace cairnfield {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const QStringList everything{"actions", "body", "body-markup"};
const QString serviceName = QStringLiteral("org.freedesktop.Notifications");

using Conduct = ScriptedNotificationServer::Conduct;

class NoService : public NotificationCenterFixture {};

TEST_F(NoService, MeansDenied) {
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::denied);
    EXPECT_FALSE(run(center.requestAuthorization()));
}

TEST_F(NoService, FailsADeliveryInTheWordsForThePerson) {
    SystemNotificationService service(center);
    try {
        run(service.deliver({.title = "t", .identifier = "a"}));
        ADD_FAILURE() << "delivered to nobody";
    } catch (const CairnfieldError& error) {
        EXPECT_EQ(error.caseName(), "notificationPermissionDenied");
    }
}

TEST_F(NoService, FailsNothingElse) {
    SystemNotificationService service(center);
    EXPECT_NO_THROW(run(service.registerCategories()));
    EXPECT_NO_THROW(run(service.cancelPending({})));
    EXPECT_THAT(run(service.pendingIdentifiers()), IsEmpty());
    EXPECT_FALSE(run(service.requestAuthorization()));
}

TEST_F(NoService, RefusesARequestThatIsMadeAnyway) {
    EXPECT_THAT(refusalOf(request("a")), HasSubstr("The notification service failed: "));
    EXPECT_THROW(add(request("a")), NotificationServiceMissing);
}

TEST_F(NoService, TellsOfTheFirstThatAppearsAndOfEachThatFollowsOne) {
    int appearances = 0;
    center.onServiceAppeared([&appearances] { ++appearances; });
    settle();
    EXPECT_EQ(appearances, 0);
    std::optional<ScriptedNotificationServer> server(std::in_place, bus, everything);
    until([&] { return appearances == 1; }, "the service");
    server->crash();
    settle();
    EXPECT_EQ(appearances, 1) << "that it has gone is another matter";
    server.emplace(bus, everything);
    until([&] { return appearances == 2; }, "the next service");
    center.onServiceAppeared(nullptr);
    server->crash();
    server.emplace(bus, everything);
    settle();
    EXPECT_EQ(appearances, 2);
}

TEST_F(NoService, TellsOfOneInTimeForADeliveryToIt) {
    std::optional<TaskHandle<>> delivery;
    center.onServiceAppeared([&] { delivery = start(request("a", "at last")); });
    const ScriptedNotificationServer server(bus, everything);
    until([&] { return delivery && delivery->done(); }, "the delivery");
    EXPECT_THAT(server.titles(), ElementsAre("at last"));
}

TEST_F(NoService, MeansAuthorizedAsSoonAsThereIsOne) {
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::denied);
    const ScriptedNotificationServer server(bus, everything);
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::authorized);
    add(request("a", "at last"));
    EXPECT_THAT(server.titles(), ElementsAre("at last"));
}

TEST_F(NoService, IsNotStartedByTheQuestionWhetherThereIsOne) {
    bus.offer(serviceName.toStdString(), "touch '" + bus.home().path().bytes() + "/started'");
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::authorized);
    EXPECT_TRUE(run(center.requestAuthorization()));
    EXPECT_FALSE(std::filesystem::exists(bus.home().path().bytes() + "/started"));
}

TEST_F(NoService, IsStartedByADeliveryAndTheFailureOfThatIsTold) {
    bus.offer(serviceName.toStdString(), "touch '" + bus.home().path().bytes() + "/started'; exit 3");
    EXPECT_THAT(refusalOf(request("a")), HasSubstr("exited"));
    EXPECT_TRUE(std::filesystem::exists(bus.home().path().bytes() + "/started"));
}

class Service : public NotificationCenterFixture {
protected:
    void restart() {
        server->crash();
        until([this] { return !connection.interface()->isServiceRegistered(serviceName).value(); },
              "the service to be gone");
        server.emplace(bus, everything);
    }

    /// Another service takes its place, and before the center can hear of it comes a delivery.
    Task<> deliverToTheNext() {
        server->crash();
        while (connection.interface()->isServiceRegistered(serviceName).value()) {
        }
        server.emplace(bus, everything);
        NotificationRequest next = request("a", "to the next");
        co_await center.add(std::move(next));
    }

    std::optional<ScriptedNotificationServer> server{std::in_place, bus, everything};
};

TEST_F(Service, FailsADeliveryInItsOwnWords) {
    server->conductItself(Conduct::fails);
    EXPECT_EQ(refusalOf(request("a")), "The notification service failed: no room on the screen");
    try {
        add(request("a"));
    } catch (const NotificationServiceMissing&) {
        ADD_FAILURE() << "it is there";
    } catch (const NotificationRefused&) {
    }
    EXPECT_THAT(center.deliveredIdentifiers(), IsEmpty());
    server->conductItself(Conduct::answers);
    EXPECT_NO_THROW(add(request("a")));
}

TEST_F(Service, FailsADeliveryThatItNeverAnswers) {
    server->conductItself(Conduct::isSilent);
    EXPECT_EQ(refusalOf(request("a")), "The notification service did not answer.");
    server->conductItself(Conduct::answers);
    EXPECT_NO_THROW(add(request("a")));
}

TEST_F(Service, FailsADeliveryThatItAnswersWithNonsense) {
    server->conductItself(Conduct::answersNonsense);
    EXPECT_EQ(refusalOf(request("a")), "The notification service did not answer.");
    EXPECT_THAT(center.deliveredIdentifiers(), IsEmpty());
}

TEST_F(Service, IsUsedAgainAfterACrash) {
    add(request("a"));
    restart();
    add(request("b", "again"));
    EXPECT_THAT(server->titles(), ElementsAre("again"));
    EXPECT_THAT(center.deliveredIdentifiers(), ElementsAre("b"));
}

TEST_F(Service, TakesItsNumbersWithIt) {
    add(request("a", "old"));
    restart();
    add(request("a", "new"));
    EXPECT_EQ(server->calls()[0].replaced, 0U) << "the number may be another program's by now";
    server->press(1, "action.review");
    until([this] { return !responses.empty(); }, "the response");
    EXPECT_EQ(responses[0].requestIdentifier, "a");
}

TEST_F(Service, IsNotHeardOnceItHasGone) {
    add(request("a"));
    restart();
    settle();
    server->press(1, "action.review");
    settle();
    EXPECT_THAT(responses, IsEmpty());
    EXPECT_THAT(center.deliveredIdentifiers(), IsEmpty());
}

TEST_F(Service, IsFoundAnewWhenItsEndIsNotKnownYet) {
    add(request("a"));
    end(spawn(mainThread, deliverToTheNext()));
    EXPECT_THAT(server->titles(), ElementsAre("to the next"));
}

TEST_F(Service, MayCrashInTheMiddleOfADelivery) {
    add(request("a"));
    server->conductItself(Conduct::isSilent);
    const TaskHandle<> lost = start(request("b"));
    settle();
    server->crash();
    EXPECT_THROW(end(lost), NotificationRefused);
    server.emplace(bus, everything);
    EXPECT_NO_THROW(add(request("b")));
}

TEST_F(Service, IsAskedAnewForWhatItCanDoAfterARestart) {
    add(request("a"));
    EXPECT_FALSE(server->calls()[0].actions.isEmpty());
    server->crash();
    server.emplace(bus, QStringList{"body"});
    settle();
    add(request("a"));
    EXPECT_TRUE(server->calls()[0].actions.isEmpty());
}

TEST_F(Service, LosesACancelledDeliveryWithoutWaiting) {
    add(request("a"));
    server->conductItself(Conduct::isSilent);
    const TaskHandle<> waiting = start(request("b"));
    settle();
    waiting.cancel();
    EXPECT_THROW(end(waiting), Cancelled);
}

TEST_F(Service, ReplacesWhatACancelledDeliveryCameToShow) {
    add(request("a", "first"));
    server->conductItself(Conduct::isSilent);
    const TaskHandle<> cancelled = start(request("b", "cancelled"));
    settle();
    cancelled.cancel();
    EXPECT_THROW(end(cancelled), Cancelled);
    const TaskHandle<> next = start(request("b", "next"));
    settle();
    server->conductItself(Conduct::answers);
    server->answerAtLast();
    end(next);
    EXPECT_THAT(server->titles(), ElementsAre("first", "next"));
}

TEST_F(Service, LetsADeliveryBeCancelledAtAnyPoint) {
    for (int steps = 0; steps < 12; ++steps) {
        const TaskHandle<> handle = start(request("a"));
        for (int step = 0; step < steps; ++step) QtApplication::processEvents();
        handle.cancel();
        try {
            end(handle);
        } catch (const Cancelled&) {
        }
    }
    settle();
    add(request("a", "last"));
    EXPECT_THAT(server->titles(), ElementsAre("last"));
}

TEST_F(Service, IsLostWithTheBus) {
    add(request("a"));
    bus.kill();
    until([this] { return !connection.isConnected(); }, "the bus to be gone");
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::denied);
    EXPECT_EQ(refusalOf(request("a")), "The connection to the desktop was lost.");
}

TEST_F(Service, FailsADeliveryThatTheBusTakesWithIt) {
    server->conductItself(Conduct::isSilent);
    const TaskHandle<> lost = start(request("a"));
    settle();
    bus.kill();
    EXPECT_THROW(end(lost), NotificationRefused);
}

class NoBus : public EventLoopFixture {};

TEST_F(NoBus, MeansDenied) {
    SteppedClock clock;
    const QDBusConnection none(QStringLiteral("no such connection"));
    LinuxNotificationCenter center(none, clock, mainThread);
    EXPECT_EQ(run(center.authorization()), NotificationAuthorization::denied);
    EXPECT_THROW(run(center.add({.identifier = "a"})), NotificationRefused);
}

}  // namespace
}  // namespace cairnfield
