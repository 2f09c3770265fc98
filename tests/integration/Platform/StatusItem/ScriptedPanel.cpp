#include "ScriptedPanel.h"

#include "support/Bus/PrivateBus.h"
#include "support/EventLoop.h"

#include <QDBusPendingCall>
#include <QDBusPendingReply>

namespace cairnfield {

namespace {

const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString itemInterface = QStringLiteral("org.kde.StatusNotifierItem");
const QString menuInterface = QStringLiteral("com.canonical.dbusmenu");
const QString properties = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

ScriptedPanel::ScriptedPanel(PrivateBus& bus, Host host, Conduct conduct)
    : connection_(bus.connect()), host_(host), conduct_(conduct) {
    registerStatusNotifierTypes();
    connection_.registerVirtualObject(watcherPath, this);
    EXPECT_TRUE(connection_.registerService(watcher));
}

ScriptedPanel::~ScriptedPanel() {
    connection_.unregisterObject(watcherPath);
    connection_.unregisterService(watcher);
}

void ScriptedPanel::tell(const char* signal) {
    connection_.send(QDBusMessage::createSignal(watcherPath, watcher, QLatin1String(signal)));
}

void ScriptedPanel::addHost() {
    host_ = Host::present;
    tell("StatusNotifierHostRegistered");
}

void ScriptedPanel::removeHost() {
    host_ = Host::none;
    tell("StatusNotifierHostUnregistered");
}

QDBusMessage ScriptedPanel::call(const QString& path, const QString& interface, const QString& method,
                                 const QVariantList& arguments) {
    if (items_.empty()) {
        ADD_FAILURE() << "no item is registered";
        return {};
    }
    QDBusMessage question =
        QDBusMessage::createMethodCall(QString::fromStdString(items_.back()), path, interface, method);
    question.setArguments(arguments);
    const QDBusPendingCall pending = connection_.asyncCall(question);
    runUntil([&pending] { return pending.isFinished(); }, qPrintable(method));
    return pending.reply();
}

QVariant ScriptedPanel::property(const char* name) {
    const QDBusMessage answer = call(QStringLiteral("/StatusNotifierItem"), properties, QStringLiteral("Get"),
                                     {itemInterface, QLatin1String(name)});
    if (answer.type() != QDBusMessage::ReplyMessage) {
        ADD_FAILURE() << name << ": " << answer.errorMessage().toStdString();
        return {};
    }
    return answer.arguments().constFirst().value<QDBusVariant>().variant();
}

QDBusMessage ScriptedPanel::callItem(const char* method, const QVariantList& arguments) {
    return call(QStringLiteral("/StatusNotifierItem"), itemInterface, QLatin1String(method), arguments);
}

QDBusMessage ScriptedPanel::callMenu(const char* method, const QVariantList& arguments) {
    return call(property("Menu").value<QDBusObjectPath>().path(), menuInterface, QLatin1String(method),
                arguments);
}

uint ScriptedPanel::layoutRevision() {
    return callMenu("GetLayout", {0, -1, QStringList()}).arguments().value(0).toUInt();
}

std::vector<MenuLayout> ScriptedPanel::menu() {
    const QVariantList answer = callMenu("GetLayout", {0, -1, QStringList()}).arguments();
    if (answer.size() != 2) {
        ADD_FAILURE() << "no layout";
        return {};
    }
    std::vector<MenuLayout> children;
    for (const QDBusVariant& child : qdbus_cast<MenuLayout>(answer[1]).children)
        children.push_back(qdbus_cast<MenuLayout>(child.variant()));
    return children;
}

std::vector<std::string> ScriptedPanel::labels() {
    std::vector<std::string> all;
    for (const MenuLayout& item : menu()) {
        const bool isSeparator = item.properties.value("type") == "separator";
        all.push_back(isSeparator ? "---" : item.properties.value("label").toString().toStdString());
    }
    return all;
}

void ScriptedPanel::click(int id) {
    const QDBusMessage answer =
        callMenu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), uint{0}});
    EXPECT_EQ(answer.type(), QDBusMessage::ReplyMessage) << answer.errorMessage().toStdString();
}

QString ScriptedPanel::introspect(const QString&) const {
    return {};
}

bool ScriptedPanel::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    if (message.member() == "RegisterStatusNotifierItem") {
        if (conduct_ == Conduct::refusesItems) {
            ++refusals_;
            return connection.send(message.createErrorReply("org.example.Refused", "not here"));
        }
        items_.push_back(message.arguments().constFirst().toString().toStdString());
        return connection.send(message.createReply());
    }
    if (message.interface() == properties && message.member() == "Get" &&
        message.arguments().value(1) == "IsStatusNotifierHostRegistered")
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(host_ == Host::present))));
    return false;
}

}  // namespace cairnfield
