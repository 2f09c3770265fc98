#include "Platform/Linux/Desktop/StatusNotifierItem.h"

#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

namespace cairnfield {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

QDBusMessage watcherCall(const QString& interface, const QString& method) {
    QDBusMessage call = QDBusMessage::createMethodCall(watcherName, watcherPath, interface, method);
    call.setAutoStartService(false);
    return call;
}

bool isMissing(const QDBusError& error) {
    return error.type() == QDBusError::ServiceUnknown ||
           error.name() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection& bus, StatusPictures::Source pictures)
    : bus_(bus),
      pictures_(std::move(pictures)),
      menu_([this](const std::string& symbolName) { return pictures_.menuPicture(symbolName); }),
      object_(pictures_) {
    registerStatusNotifierTypes();
    if (!bus_.isConnected()) return;
    if (!bus_.registerObject(StatusNotifierObject::objectPath(), &object_,
                             QDBusConnection::ExportAllContents) ||
        !bus_.registerObject(StatusNotifierObject::menuPath(), &menu_, QDBusConnection::ExportAllContents)) {
        Log::app().error("The status item cannot be put on the bus");
        return;
    }
    connect(
        &watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
        [this](const QString&, const QString&, const QString& owner) { owner.isEmpty() ? leave() : join(); });
    watcher_.setConnection(bus_);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(watcherName);
    for (const char* change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        bus_.connect(watcherName, watcherPath, watcherName, QLatin1String(change), this,
                     SLOT(hostsChanged()));
    bus_.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                 QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                 SLOT(busGone()));
    join();
}

StatusNotifierItem::~StatusNotifierItem() {
    bus_.unregisterObject(StatusNotifierObject::menuPath());
    bus_.unregisterObject(StatusNotifierObject::objectPath());
}

void StatusNotifierItem::setState(StatusItemState state) {
    object_.set(state);
}

void StatusNotifierItem::setMenu(std::vector<StatusMenuItem> items) {
    menu_.set(std::move(items));
}

void StatusNotifierItem::onActivate(std::function<void(StatusItemActivation)> observer) {
    object_.onActivate(std::move(observer));
}

void StatusNotifierItem::join() {
    ++watcherNumber_;
    isRegistered_ = false;
    registerWithWatcher();
}

void StatusNotifierItem::leave() {
    ++watcherNumber_;
    isRegistered_ = false;
    setHasHost(false);
}

void StatusNotifierItem::registerWithWatcher() {
    QDBusMessage call = watcherCall(watcherName, QStringLiteral("RegisterStatusNotifierItem"));
    call << bus_.baseService();
    auto* const pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, number = watcherNumber_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (number != watcherNumber_) return;
                isRegistered_ = !finished->isError();
                if (isRegistered_) return askForHosts();
                // Without a watcher there is nothing to say: one may come.
                if (!isMissing(finished->error()))
                    Log::app().warn("The desktop's panel takes no status item: {}",
                                    visibleText(finished->error().message().toStdString()));
            });
}

void StatusNotifierItem::askForHosts() {
    QDBusMessage call = watcherCall(QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    call << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    auto* const pending = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, number = watcherNumber_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (number != watcherNumber_) return;
                const QDBusPendingReply<QDBusVariant> reply = *finished;
                setHasHost(reply.isValid() && reply.value().variant().toBool());
            });
}

void StatusNotifierItem::hostsChanged() {
    isRegistered_ ? askForHosts() : registerWithWatcher();
}

void StatusNotifierItem::busGone() {
    leave();
}

void StatusNotifierItem::setHasHost(bool hasHost) {
    if (std::exchange(hasHost_, hasHost) == hasHost) return;
    if (hostObserver_) hostObserver_();
}

}  // namespace cairnfield
