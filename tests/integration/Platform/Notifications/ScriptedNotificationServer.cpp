#include "ScriptedNotificationServer.h"

#include "support/Bus/PrivateBus.h"

#include <QDBusArgument>

#include <gtest/gtest.h>

#include <utility>

namespace cairnfield {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");

}  // namespace

ScriptedNotificationServer::ScriptedNotificationServer(PrivateBus& bus, QStringList capabilities)
    : bus_(bus.connect()), capabilities_(std::move(capabilities)) {
    EXPECT_TRUE(bus_->registerVirtualObject(path, this));
    EXPECT_TRUE(bus_->registerService(service)) << bus_->lastError().message().toStdString();
}

void ScriptedNotificationServer::crash() {
    const QString name = bus_->name();
    bus_.reset();
    QDBusConnection::disconnectFromBus(name);
}

std::vector<std::string> ScriptedNotificationServer::titles() const {
    std::vector<std::string> titles;
    for (const auto& [number, notification] : onScreen_) titles.push_back(notification.title.toStdString());
    return titles;
}

void ScriptedNotificationServer::answerAtLast() {
    const QDBusMessage asked = unanswered_.front();
    unanswered_.erase(unanswered_.begin());
    bus_->send(asked.createReply(show(asked)));
}

void ScriptedNotificationServer::press(uint number, const QString& action) {
    emitSignal(QStringLiteral("ActionInvoked"), {number, action});
}

void ScriptedNotificationServer::giveToken(uint number, const QString& token) {
    emitSignal(QStringLiteral("ActivationToken"), {number, token});
}

void ScriptedNotificationServer::dismiss(uint number) {
    close(number, 2);
}

void ScriptedNotificationServer::letExpire(uint number) {
    close(number, 1);
}

QString ScriptedNotificationServer::introspect(const QString& /*path*/) const {
    return {};
}

bool ScriptedNotificationServer::handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) {
    if (message.member() == QLatin1String("GetCapabilities")) {
        bus_->send(message.createReply(QVariant(capabilities_)));
    } else if (message.member() == QLatin1String("CloseNotification")) {
        const uint number = message.arguments().value(0).toUInt();
        closeRequests_.push_back(number);
        if (message.isReplyRequired()) bus_->send(message.createReply());
        close(number, 3);
    } else if (message.member() == QLatin1String("Notify")) {
        message.setDelayedReply(true);
        switch (conduct_) {
            case Conduct::answers:
                bus_->send(message.createReply(show(message)));
                break;
            case Conduct::fails:
                bus_->send(message.createErrorReply(QStringLiteral("org.example.Full"),
                                                    QStringLiteral("no room on the screen")));
                break;
            case Conduct::isSilent:
                unanswered_.push_back(message);
                break;
            case Conduct::answersNonsense:
                bus_->send(message.createReply(QStringLiteral("seven")));
                break;
        }
    } else {
        return false;
    }
    return true;
}

uint ScriptedNotificationServer::show(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    const Notification shown{.replaced = arguments.value(1).toUInt(),
                             .icon = arguments.value(2).toString(),
                             .title = arguments.value(3).toString(),
                             .body = arguments.value(4).toString(),
                             .actions = arguments.value(5).toStringList(),
                             .hints = qdbus_cast<QVariantMap>(arguments.value(6))};
    calls_.push_back(shown);
    const uint number = shown.replaced != 0 ? shown.replaced : ++lastNumber_;
    onScreen_[number] = shown;
    return number;
}

void ScriptedNotificationServer::close(uint number, uint reason) {
    if (onScreen_.erase(number) == 0) return;
    emitSignal(QStringLiteral("NotificationClosed"), {number, reason});
}

void ScriptedNotificationServer::emitSignal(const QString& name, const QVariantList& arguments) const {
    QDBusMessage signal = QDBusMessage::createSignal(path, service, name);
    signal.setArguments(arguments);
    bus_->send(signal);
}

}  // namespace cairnfield
