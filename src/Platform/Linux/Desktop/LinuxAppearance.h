#pragma once
// Looks as the desktop portal tells them, and changes of them while we run; without a portal, light or dark
// as the palette is. Asks once, without waiting: until the answer comes the palette counts. Main thread only;
// never fails.

#include "Platform/Appearance.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <chrono>
#include <functional>

namespace cairnfield {

class LinuxAppearance final : public QObject, public Appearance {
    Q_OBJECT

public:
    explicit LinuxAppearance(const QDBusConnection& bus);

    [[nodiscard]] AppearanceSettings settings() const override { return settings_; }
    void onChange(std::function<void()> observer) override { observer_ = std::move(observer); }

    /// Calls back once, from the event loop: when the portal has answered or turned out to be missing, at the
    /// latest after `limit`. One caller at a time.
    void whenSettled(std::chrono::milliseconds limit, std::function<void()> callback);

private slots:
    void takeChange(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void ask(QDBusConnection bus);
    void take(AppearanceSettings settings);
    void settle();

    AppearanceSettings settings_;
    std::function<void()> observer_;
    std::function<void()> settled_;
    bool isSettled_ = false;
};

}  // namespace cairnfield
