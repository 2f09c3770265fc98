#include "Platform/Linux/Desktop/NotificationServer.h"

#include "Shared/Text/Text.h"

#include <QDBusError>

#include <utility>

namespace cairnfield {

namespace {

const QString service = QStringLiteral("org.freedesktop.Notifications");
const QString path = QStringLiteral("/org/freedesktop/Notifications");
const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

bool isReply(const QDBusMessage& answer) {
    return answer.type() == QDBusMessage::ReplyMessage;
}

/// A process answered, not the bus in its stead.
bool isFromProcess(const QDBusMessage& answer) {
    return answer.service().startsWith(QLatin1Char(':'));
}

}  // namespace

NotificationServer::NotificationServer(const QDBusConnection& bus, Executor& mainThread,
                                       std::chrono::milliseconds limit)
    : Isolated(mainThread),
      bus_(bus),
      limit_(limit),
      watcher_(service, bus, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!bus_.isConnected()) return;
    // Any sender: naming one would make Qt wait for the bus to say who that is.
    bus_.connect(QString(), path, service, QStringLiteral("ActionInvoked"), this,
                 SLOT(takeAction(uint, QString, QDBusMessage)));
    bus_.connect(QString(), path, service, QStringLiteral("NotificationClosed"), this,
                 SLOT(takeClosed(uint, uint, QDBusMessage)));
    bus_.connect(QString(), path, service, QStringLiteral("ActivationToken"), this,
                 SLOT(takeActivationToken(uint, QString, QDBusMessage)));
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString& before, const QString& owner) {
                if (owner != owner_) forget(owner_);
                if (before.isEmpty() && !owner.isEmpty()) emit appeared();
            });
}

Task<bool> NotificationServer::isAvailable() {
    const QDBusMessage running = co_await askBus(QStringLiteral("NameHasOwner"), {service});
    if (isReply(running) && running.arguments().value(0).toBool()) co_return true;
    const QDBusMessage startable = co_await askBus(QStringLiteral("ListActivatableNames"), {});
    co_return isReply(startable) && startable.arguments().value(0).toStringList().contains(service);
}

Task<> NotificationServer::reach() {
    if (!owner_.isEmpty()) co_return;
    const QDBusMessage asking = question(service, QStringLiteral("GetCapabilities"));
    // Learnt at once, so that it keeps its place among what the bus tells of owners that come and go.
    BusCall::Answered learn = [this](const QDBusMessage& answer) { take(answer); };
    const QDBusMessage answer = co_await BusCall(bus_, asking, limit_, calls_, std::move(learn));
    if (owner_.isEmpty()) refuse(answer);
}

void NotificationServer::take(const QDBusMessage& capabilities) {
    if (!isReply(capabilities) && !isFromProcess(capabilities)) return;
    owner_ = capabilities.service();
    capabilities_ = NotificationCapabilities::named(capabilities.arguments().value(0).toStringList());
}

BusCall NotificationServer::notify(const QVariantList& arguments, BusCall::Answered answered) {
    QDBusMessage message = question(owner_, QStringLiteral("Notify"));
    message.setArguments(arguments);
    return BusCall(bus_, message, limit_, calls_, std::move(answered));
}

void NotificationServer::close(uint number) {
    if (owner_.isEmpty()) return;
    QDBusMessage message = question(owner_, QStringLiteral("CloseNotification"));
    message << number;
    bus_.send(message);
}

void NotificationServer::forget(const QString& owner) {
    if (owner_.isEmpty() || owner != owner_) return;
    owner_.clear();
    capabilities_ = {};
    emit left();
}

void NotificationServer::takeAction(uint number, const QString& key, const QDBusMessage& signal) {
    if (signal.service() == owner_) emit actionInvoked(number, key);
}

void NotificationServer::takeClosed(uint number, uint reason, const QDBusMessage& signal) {
    if (signal.service() == owner_) emit closed(number, reason);
}

void NotificationServer::takeActivationToken(uint number, const QString& token, const QDBusMessage& signal) {
    if (signal.service() == owner_) emit activationTokenGiven(number, token);
}

BusCall NotificationServer::askBus(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(busService, busPath, busService, method);
    message.setArguments(arguments);
    return BusCall(bus_, message, limit_, calls_);
}

QDBusMessage NotificationServer::question(const QString& receiver, const QString& method) {
    return QDBusMessage::createMethodCall(receiver, path, service, method);
}

bool reachedNobody(const QDBusMessage& answer) {
    const QDBusError::ErrorType error = QDBusError(answer).type();
    return error == QDBusError::ServiceUnknown ||
           answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

void refuse(const QDBusMessage& answer) {
    switch (QDBusError(answer).type()) {
        case QDBusError::NoError:  // it did, and was gone in the same moment
        case QDBusError::NoReply:
        case QDBusError::Timeout:
        case QDBusError::TimedOut:
            throw NotificationRefused("The notification service did not answer.");
        case QDBusError::Disconnected:
            throw NotificationRefused("The connection to the desktop was lost.");
        default:
            break;
    }
    const std::string words = visibleText(answer.errorMessage().toStdString());
    const std::string text =
        "The notification service failed: " + (words.empty() ? answer.errorName().toStdString() : words);
    if (reachedNobody(answer)) throw NotificationServiceMissing(text);
    throw NotificationRefused(text);
}

}  // namespace cairnfield
