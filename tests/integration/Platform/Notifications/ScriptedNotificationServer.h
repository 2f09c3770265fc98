#pragma once
// A notification service whose screen the test can read and whose person the test is. It lives on a
// connection of its own, in the test's thread, and answers when the event loop runs.

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QStringList>
#include <QVariantMap>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace cairnfield {

class PrivateBus;

class ScriptedNotificationServer final : public QDBusVirtualObject {
public:
    enum class Conduct { answers, fails, isSilent, answersNonsense };

    struct Notification {
        uint replaced = 0;
        QString icon;
        QString title;
        QString body;
        QStringList actions;
        QVariantMap hints;
    };

    /// Takes the service's name on the bus.
    ScriptedNotificationServer(PrivateBus& bus, QStringList capabilities);

    /// What it does with "Notify" from now on.
    void conductItself(Conduct conduct) { conduct_ = conduct; }
    /// It stops in the middle of everything, without a word to anybody.
    void crash();

    /// What is there to be seen, by its number.
    [[nodiscard]] const std::map<uint, Notification>& onScreen() const { return onScreen_; }
    [[nodiscard]] std::vector<std::string> titles() const;
    /// Every "Notify" that came, in order.
    [[nodiscard]] const std::vector<Notification>& calls() const { return calls_; }
    /// The numbers that "CloseNotification" was called with, in order.
    [[nodiscard]] const std::vector<uint>& closeRequests() const { return closeRequests_; }
    /// The answer to the oldest "Notify" that was met with silence.
    void answerAtLast();

    // What a person does. Unlike some others, this service closes nothing on an action.
    void press(uint number, const QString& action);
    void giveToken(uint number, const QString& token);
    void dismiss(uint number);
    void letExpire(uint number);

    [[nodiscard]] QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    uint show(const QDBusMessage& message);
    void close(uint number, uint reason);
    void emitSignal(const QString& name, const QVariantList& arguments) const;

    std::optional<QDBusConnection> bus_;
    const QStringList capabilities_;
    Conduct conduct_ = Conduct::answers;
    uint lastNumber_ = 0;
    std::map<uint, Notification> onScreen_;
    std::vector<Notification> calls_;
    std::vector<uint> closeRequests_;
    std::vector<QDBusMessage> unanswered_;
};

}  // namespace cairnfield
