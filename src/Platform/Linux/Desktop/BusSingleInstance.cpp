#include "Platform/Linux/Desktop/BusSingleInstance.h"

#include "Shared/Logging/Log.h"
#include "Shared/Text/Text.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusServiceWatcher>
#include <QEventLoop>
#include <QTimer>

#include <utility>

namespace cairnfield {

namespace {

const QString name = QStringLiteral("com.cairnfield.app");

}  // namespace

BusSingleInstance::BusSingleInstance(const QDBusConnection& bus, FilePath lockFile,
                                     std::chrono::milliseconds patience)
    : bus_(bus), lockFile_(std::move(lockFile)), patience_(patience) {}

BusSingleInstance::~BusSingleInstance() {
    // In this order: whoever gets the name finds the files free.
    lock_.release();
    giveUpName();
}

void BusSingleInstance::onActivate(std::function<void(std::string activationToken)> observer) {
    object_.onActivate(std::move(observer));
}

InstanceClaim BusSingleInstance::claim(const std::string& activationToken) {
    switch (claimName(activationToken)) {
        case Name::handedOver:
            return InstanceClaim::wasHandedOver;
        case Name::unreachable:
            return InstanceClaim::isElsewhere;
        case Name::owned:
        case Name::withoutBus:
            break;
    }
    if (lock_.take(lockFile_) != InstanceLock::Outcome::heldByAnother) return InstanceClaim::isFirst;
    giveUpName();
    return InstanceClaim::isElsewhere;
}

BusSingleInstance::Name BusSingleInstance::claimName(const std::string& activationToken) {
    if (!bus_.isConnected()) return Name::withoutBus;
    // On the bus before the name is: who finds the name finds the object too.
    bus_.registerObject(ApplicationObject::objectPath(), &object_, QDBusConnection::ExportAllSlots);
    const auto deadline = std::chrono::steady_clock::now() + patience_;
    for (;;) {
        using Reply = QDBusConnectionInterface::RegisterServiceReply;
        const QDBusReply<Reply> reply = bus_.interface()->registerService(
            name, QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
        if (!reply.isValid()) {
            Log::app().warn("The session bus gives no name: {}",
                            visibleText(reply.error().message().toStdString()));
            return Name::withoutBus;
        }
        ownsName_ = reply.value() == QDBusConnectionInterface::ServiceRegistered;
        if (ownsName_) return Name::owned;
        if (askFirst(activationToken)) return Name::handedOver;
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || !waitForEndOfFirst(left)) return Name::unreachable;
    }
}

bool BusSingleInstance::askFirst(const std::string& activationToken) {
    QDBusMessage call = QDBusMessage::createMethodCall(name, ApplicationObject::objectPath(),
                                                       QStringLiteral("org.freedesktop.Application"),
                                                       QStringLiteral("Activate"));
    call.setAutoStartService(false);
    QVariantMap platformData;
    if (!activationToken.empty()) {
        const QString token = QString::fromStdString(activationToken);
        platformData = {{QStringLiteral("activation-token"), token},
                        {QStringLiteral("desktop-startup-id"), token}};
    }
    call << platformData;
    return bus_.call(call, QDBus::Block, static_cast<int>(patience_.count())).type() ==
           QDBusMessage::ReplyMessage;
}

bool BusSingleInstance::waitForEndOfFirst(std::chrono::milliseconds limit) {
    QEventLoop loop;
    bool isGone = false;
    QDBusServiceWatcher watcher(name, bus_, QDBusServiceWatcher::WatchForUnregistration);
    QObject::connect(&watcher, &QDBusServiceWatcher::serviceUnregistered, &loop, [&] {
        isGone = true;
        loop.quit();
    });
    // It may have gone before we watched.
    if (!bus_.interface()->isServiceRegistered(name)) return true;
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec();
    return isGone;
}

void BusSingleInstance::giveUpName() {
    if (!bus_.isConnected()) return;
    bus_.unregisterObject(ApplicationObject::objectPath());
    if (std::exchange(ownsName_, false)) bus_.unregisterService(name);
}

}  // namespace cairnfield
