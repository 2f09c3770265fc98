#pragma once
// A session bus of the test's own, with nothing on it but what the test puts there. It ends with the test, or
// before. Main thread only.

#include "support/TemporaryDirectory.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QProcess>

#include <string>

namespace cairnfield {

class PrivateBus {
public:
    /// Fails the test when there is no bus to be had.
    PrivateBus();
    ~PrivateBus();

    /// Another connection at each call.
    [[nodiscard]] QDBusConnection connect();
    /// For other processes.
    [[nodiscard]] const QString& address() const { return address_; }
    /// A program that the bus starts for whoever speaks to the name. It is a shell's script.
    void offer(const std::string& name, const std::string& script);
    /// The bus is gone from one moment to the next.
    void kill();
    /// It takes nothing and answers nothing until it may go on.
    void pause();
    void resume();

    [[nodiscard]] const TemporaryDirectory& home() const { return home_; }

private:
    TemporaryDirectory home_;
    QProcess daemon_;
    QString address_;
    QStringList connections_;
};

}  // namespace cairnfield
