#pragma once
// The real notification center over a bus of the test's own, in a real event loop.

#include "EventLoopFixture.h"
#include "Platform/Linux/Desktop/LinuxNotificationCenter.h"
#include "ScriptedNotificationServer.h"
#include "support/Bus/PrivateBus.h"
#include "support/SteppedClock.h"

#include <QDBusPendingCall>

namespace cairnfield {

class NotificationCenterFixture : public EventLoopFixture {
protected:
    /// Short enough for a test to see a silence out, long enough for an answer on a busy machine.
    static constexpr std::chrono::milliseconds limit{2'000};

    NotificationCenterFixture() {
        center.setCategories(
            {{.identifier = "storage",
              .buttons = {{.identifier = "action.review", .title = "Review cleanup"},
                          {.identifier = "action.ignore", .title = "Ignore this incident"}}}});
        center.onResponse(
            [this](NotificationResponse response) { responses.push_back(std::move(response)); });
    }
    ~NotificationCenterFixture() override { run(center.stop()); }

    TaskHandle<> start(NotificationRequest request) {
        return spawn(mainThread, center.add(std::move(request)));
    }
    void add(NotificationRequest request) { end(start(std::move(request))); }
    /// Why the service did not take it.
    std::string refusalOf(NotificationRequest request) {
        try {
            add(std::move(request));
        } catch (const NotificationRefused& refused) {
            return refused.what();
        }
        ADD_FAILURE() << "the service took it";
        return {};
    }
    /// Whatever the bus still has under way has come to everybody.
    void settle() {
        QDBusMessage question =
            QDBusMessage::createMethodCall("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId");
        for (int turn = 0; turn < 3; ++turn) {
            const QDBusPendingCall call = connection.asyncCall(question);
            until([&call] { return call.isFinished(); }, "the bus");
            QtApplication::processEvents();
        }
    }

    static NotificationRequest request(std::string identifier, std::string title = "Title") {
        return {.identifier = std::move(identifier),
                .title = std::move(title),
                .body = "Body",
                .categoryIdentifier = "storage",
                .userInfo = {{"path", "/p"}}};
    }

    PrivateBus bus;
    SteppedClock clock;
    QDBusConnection connection = bus.connect();
    LinuxNotificationCenter center{connection, clock, mainThread, {}, limit};
    std::vector<NotificationResponse> responses;
};

}  // namespace cairnfield
