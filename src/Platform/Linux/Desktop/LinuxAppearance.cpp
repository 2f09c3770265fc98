#include "Platform/Linux/Desktop/LinuxAppearance.h"

#include "Platform/Linux/Desktop/PortalSettings.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QGuiApplication>
#include <QPalette>
#include <QTimer>

#include <utility>

namespace cairnfield {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");

using Spaces = QMap<QString, QVariantMap>;

bool isPaletteDark() {
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

}  // namespace

LinuxAppearance::LinuxAppearance(const QDBusConnection& bus) : settings_{.isDark = isPaletteDark()} {
    // The bus connects a signal only to arguments that it knows, and fails without a word otherwise.
    qRegisterMetaType<QDBusVariant>();
    qDBusRegisterMetaType<Spaces>();
    ask(bus);
}

void LinuxAppearance::ask(QDBusConnection bus) {
    if (!bus.isConnected()) {
        settle();
        return;
    }
    bus.connect(service, path, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(takeChange(QString, QString, QDBusVariant)));
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, settingsInterface, QStringLiteral("ReadAll"));
    question << QStringList{QStringLiteral("org.freedesktop.appearance"),
                            QStringLiteral("org.gnome.desktop.interface")};
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        const QDBusPendingReply<Spaces> reply = *finished;
        if (reply.isValid()) {
            AppearanceSettings settings = settings_;
            const Spaces spaces = reply.value();
            for (auto space = spaces.begin(); space != spaces.end(); ++space) {
                for (auto entry = space->begin(); entry != space->end(); ++entry)
                    settings = withPortalSetting(settings, space.key(), entry.key(), entry.value());
            }
            take(settings);
        }
        settle();
    });
}

void LinuxAppearance::whenSettled(std::chrono::milliseconds limit, std::function<void()> callback) {
    settled_ = std::move(callback);
    QTimer::singleShot(isSettled_ ? std::chrono::milliseconds(0) : limit, this, [this] { settle(); });
}

void LinuxAppearance::takeChange(const QString& space, const QString& key, const QDBusVariant& value) {
    take(withPortalSetting(settings_, space, key, QVariant::fromValue(value)));
}

void LinuxAppearance::take(AppearanceSettings settings) {
    if (settings == settings_) return;
    settings_ = settings;
    if (observer_) observer_();
}

void LinuxAppearance::settle() {
    isSettled_ = true;
    if (const auto callback = std::exchange(settled_, {})) callback();
}

}  // namespace cairnfield
