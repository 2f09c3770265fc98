#include "support/Bus/PrivateBus.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace cairnfield {

namespace {

constexpr const char* configuration =
    R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir=HOME</listen>
  <servicedir>HOME/services</servicedir>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

QString nextName() {
    static int count = 0;
    return QStringLiteral("private-%1").arg(++count);
}

}  // namespace

PrivateBus::PrivateBus() {
    const FilePath services = home_.makeDirectory("services");
    const QString text = QString::fromLatin1(configuration)
                             .replace(QLatin1String("HOME"), QString::fromStdString(home_.path().bytes()));
    const FilePath file = home_.write("bus.conf", text.toStdString());
    daemon_.setStandardErrorFile(QString::fromStdString((home_ / "bus.log").bytes()));
    daemon_.start(
        QStringLiteral("dbus-daemon"),
        {QStringLiteral("--config-file=") + QString::fromStdString(file.bytes()),
         QStringLiteral("--print-address=1"), QStringLiteral("--nofork"), QStringLiteral("--nopidfile")});
    while (!daemon_.canReadLine()) {
        if (!daemon_.waitForReadyRead()) {
            ADD_FAILURE() << "no bus: " << daemon_.errorString().toStdString()
                          << contentOf(home_ / "bus.log");
            return;
        }
    }
    address_ = QString::fromLatin1(daemon_.readLine()).trimmed();
}

PrivateBus::~PrivateBus() {
    for (const QString& name : connections_) QDBusConnection::disconnectFromBus(name);
    kill();
}

QDBusConnection PrivateBus::connect() {
    connections_ << nextName();
    return QDBusConnection::connectToBus(address_, connections_.back());
}

void PrivateBus::offer(const std::string& name, const std::string& script) {
    const FilePath program = home_.write("program-" + name, "#!/bin/sh\n" + script + "\n");
    std::filesystem::permissions(program.bytes(), std::filesystem::perms::owner_all);
    home_.write("services/" + name + ".service",
                "[D-BUS Service]\nName=" + name + "\nExec=" + program.bytes() + "\n");
    // The bus looks into the folder anew when it is told to.
    QDBusConnection bus = connect();
    bus.call(QDBusMessage::createMethodCall("org.freedesktop.DBus", "/org/freedesktop/DBus",
                                            "org.freedesktop.DBus", "ReloadConfig"));
}

void PrivateBus::kill() {
    if (daemon_.state() == QProcess::NotRunning) return;
    daemon_.kill();
    daemon_.waitForFinished();
}

void PrivateBus::pause() {
    ASSERT_EQ(::kill(static_cast<pid_t>(daemon_.processId()), SIGSTOP), 0);
}

void PrivateBus::resume() {
    ASSERT_EQ(::kill(static_cast<pid_t>(daemon_.processId()), SIGCONT), 0);
}

}  // namespace cairnfield
