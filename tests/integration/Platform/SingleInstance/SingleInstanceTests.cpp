#include "support/Bus/PrivateBus.h"
#include "support/EventLoop.h"
#include "support/QtApplication.h"
#include "support/TemporaryDirectory.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QProcess>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <vector>

namespace cairnfield {
namespace {

class SingleInstances : public testing::Test {
protected:
    ~SingleInstances() override {
        for (const auto& process : processes_) {
            process->kill();
            process->waitForFinished();
        }
    }

    /// Without an address there is no session bus.
    QProcess& start(const QString& address, const QStringList& token = {}) {
        processes_.push_back(std::make_unique<QProcess>());
        QProcess& process = *processes_.back();
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", address.isEmpty() ? "unix:path=/nowhere" : address);
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(PROBE, QStringList(QString::fromStdString(lock.bytes())) + token);
        return process;
    }
    static std::string nextLine(QProcess& process) {
        runUntil([&] { return process.canReadLine() || process.state() == QProcess::NotRunning; }, "a line");
        return process.readLine().trimmed().toStdString();
    }
    static int exitCode(QProcess& process) {
        runUntil([&] { return process.state() == QProcess::NotRunning; }, "the end of a process");
        return process.exitCode();
    }
    QDBusMessage ask(const char* method, const QVariantList& arguments) {
        QDBusMessage question = QDBusMessage::createMethodCall("com.cairnfield.app", "/com/cairnfield/app",
                                                               "org.freedesktop.Application", method);
        question.setArguments(arguments);
        const QDBusPendingCall pending = connection.asyncCall(question);
        runUntil([&] { return pending.isFinished(); }, method);
        return pending.reply();
    }

    QtApplication qt;
    TemporaryDirectory home;
    const FilePath lock = home.path().appending("data/Cairnfield/instance.lock");
    PrivateBus bus;
    QDBusConnection connection = bus.connect();

private:
    std::vector<std::unique_ptr<QProcess>> processes_;
};

TEST_F(SingleInstances, HandOverToTheFirstWithTheLeaveToComeForward) {
    QProcess& first = start(bus.address());
    ASSERT_EQ(nextLine(first), "first");
    QProcess& second = start(bus.address(), {"token-7"});
    EXPECT_EQ(nextLine(second), "handed over");
    EXPECT_EQ(exitCode(second), 0);
    EXPECT_EQ(nextLine(first), "activated token-7");
    QProcess& third = start(bus.address());
    EXPECT_EQ(nextLine(third), "handed over");
    EXPECT_EQ(nextLine(first), "activated");
}

TEST_F(SingleInstances, KeepASecondWriterOutWithoutABus) {
    QProcess& first = start("");
    ASSERT_EQ(nextLine(first), "first");
    QProcess& second = start("");
    EXPECT_EQ(nextLine(second), "elsewhere");
    EXPECT_EQ(exitCode(second), 1);
}

TEST_F(SingleInstances, KeepASecondWriterOutAcrossSessions) {
    QProcess& first = start("");
    ASSERT_EQ(nextLine(first), "first");
    QProcess& elsewhere = start(bus.address());
    EXPECT_EQ(nextLine(elsewhere), "elsewhere");
    EXPECT_EQ(exitCode(elsewhere), 1);
    first.closeWriteChannel();
    EXPECT_EQ(exitCode(first), 0);
    EXPECT_EQ(nextLine(start(bus.address())), "first") << "the one turned away keeps neither name nor lock";
}

TEST_F(SingleInstances, LeaveTheWayFreeHoweverTheyEnd) {
    QProcess& killed = start(bus.address());
    ASSERT_EQ(nextLine(killed), "first");
    killed.kill();
    EXPECT_TRUE(killed.waitForFinished());
    EXPECT_EQ(nextLine(start(bus.address())), "first");
}

TEST_F(SingleInstances, WaitForTheEndOfTheOneBefore) {
    QProcess& ending = start(bus.address());
    ASSERT_EQ(nextLine(ending), "first");
    ending.write("deaf\n");
    ASSERT_EQ(nextLine(ending), "deaf");
    QProcess& next = start(bus.address());
    EXPECT_FALSE(next.waitForReadyRead(200)) << "it waits";
    ending.closeWriteChannel();
    EXPECT_EQ(nextLine(next), "first");
}

TEST_F(SingleInstances, GiveUpOnOneThatNeitherAnswersNorEnds) {
    QProcess& first = start(bus.address());
    ASSERT_EQ(nextLine(first), "first");
    ASSERT_EQ(::kill(static_cast<pid_t>(first.processId()), SIGSTOP), 0);
    EXPECT_EQ(nextLine(start(bus.address())), "elsewhere");
    ASSERT_EQ(::kill(static_cast<pid_t>(first.processId()), SIGCONT), 0);
}

TEST_F(SingleInstances, TakeFilesToOpenForAWishToSeeTheWindow) {
    QProcess& first = start(bus.address());
    ASSERT_EQ(nextLine(first), "first");
    const QVariantMap data{{"activation-token", "token-8"}};
    EXPECT_EQ(ask("Open", {QStringList{"file:///etc"}, data}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(nextLine(first), "activated token-8");
    EXPECT_EQ(ask("Activate", {QVariantMap{{"desktop-startup-id", "start-9"}}}).type(),
              QDBusMessage::ReplyMessage);
    EXPECT_EQ(nextLine(first), "activated start-9");
}

TEST_F(SingleInstances, KnowNoActions) {
    QProcess& first = start(bus.address());
    ASSERT_EQ(nextLine(first), "first");
    EXPECT_EQ(ask("ActivateAction", {"explode", QVariantList(), QVariantMap()}).type(),
              QDBusMessage::ErrorMessage);
}

}  // namespace
}  // namespace cairnfield
