#pragma once
// The notification service of the desktop, as it is on the bus: whether there is one, what it can do, and
// what it tells. It may come, go and be another at any time; everything it numbered goes with it. Main thread
// only, and never blocking.
//
// Calls go to the very process that told its capabilities, so that nothing meant for one service reaches the
// next, and only its signals are heard.

#include "Platform/Linux/Desktop/BusCall.h"
#include "Platform/Linux/Desktop/NotificationMessage.h"
#include "Shared/Concurrency/Isolated.h"
#include "Shared/Concurrency/Task.h"

#include <QDBusServiceWatcher>

namespace cairnfield {

class NotificationServer final : public QObject, public Isolated {
    Q_OBJECT

public:
    /// `limit` is how long an answer may take.
    NotificationServer(const QDBusConnection& bus, Executor& mainThread, std::chrono::milliseconds limit);

    /// One is running, or the bus can start one. Starts none. Never fails: without a bus there is none.
    Task<bool> isAvailable();

    /// Learns who serves and what it can do, where that is not known; starts one where the bus can. Throws
    /// NotificationRefused.
    Task<> reach();

    /// As it was reached last; empty when nobody was, or it has gone since.
    [[nodiscard]] const QString& owner() const { return owner_; }
    [[nodiscard]] const NotificationCapabilities& capabilities() const { return capabilities_; }

    /// "Notify" to the owner.
    BusCall notify(const QVariantList& arguments, BusCall::Answered answered);
    /// Takes a notification off the screen, without waiting for that.
    void close(uint number);

    /// The owner turned out to be gone.
    void forget(const QString& owner);

signals:
    void actionInvoked(uint number, const QString& key);
    /// The leave to bring a window forward, told just before the action that it belongs to.
    void activationTokenGiven(uint number, const QString& token);
    /// For a reason as the interface numbers them.
    void closed(uint number, uint reason);
    /// Its numbers mean nothing any more.
    void left();
    /// Somebody serves, and nobody did before.
    void appeared();

private slots:
    void takeAction(uint number, const QString& key, const QDBusMessage& signal);
    void takeClosed(uint number, uint reason, const QDBusMessage& signal);
    void takeActivationToken(uint number, const QString& token, const QDBusMessage& signal);

private:
    void take(const QDBusMessage& capabilities);
    [[nodiscard]] BusCall askBus(const QString& method, const QVariantList& arguments);
    [[nodiscard]] static QDBusMessage question(const QString& receiver, const QString& method);

    QDBusConnection bus_;
    const std::chrono::milliseconds limit_;
    QDBusServiceWatcher watcher_;
    QString owner_;  ///< the unique name on the bus
    NotificationCapabilities capabilities_;
    QObject calls_;  ///< the calls under way end with it
};

/// Nobody by that name is on the bus: the message reached no one.
[[nodiscard]] bool reachedNobody(const QDBusMessage& answer);

/// Throws why the service took nothing: NotificationRefused, or NotificationServiceMissing.
[[noreturn]] void refuse(const QDBusMessage& answer);

}  // namespace cairnfield
