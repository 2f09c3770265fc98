#include "Platform/Linux/Desktop/PortalSettings.h"

#include <QDBusArgument>
#include <QDBusVariant>

#include <algorithm>
#include <array>
#include <cmath>

namespace cairnfield {

namespace {

QVariant unwrapped(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

/// Three fractions; anything outside 0 to 1 means that the desktop names no colour.
std::optional<std::uint32_t> colorFrom(const QVariant& value) {
    if (value.metaType() != QMetaType::fromType<QDBusArgument>()) return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)")) return std::nullopt;
    std::array<double, 3> channels{};
    argument.beginStructure();
    for (double& channel : channels) argument >> channel;
    argument.endStructure();
    std::uint32_t color = 0;
    for (const double channel : channels) {
        if (!(channel >= 0 && channel <= 1)) return std::nullopt;
        color = color << 8U | static_cast<std::uint32_t>(std::lround(channel * 255));
    }
    return color;
}

}  // namespace

AppearanceSettings withPortalSetting(AppearanceSettings settings, const QString& space, const QString& key,
                                     const QVariant& value) {
    const QVariant plain = unwrapped(value);
    if (space == QLatin1String("org.freedesktop.appearance")) {
        if (key == QLatin1String("color-scheme") && plain.toUInt() != 0)
            settings.isDark = plain.toUInt() == 1;
        if (key == QLatin1String("contrast")) settings.prefersHighContrast = plain.toUInt() == 1;
        if (key == QLatin1String("reduced-motion")) settings.prefersReducedMotion = plain.toUInt() == 1;
        if (key == QLatin1String("accent-color")) settings.accentColor = colorFrom(plain);
    } else if (space == QLatin1String("org.gnome.desktop.interface") &&
               key == QLatin1String("enable-animations")) {
        settings.prefersReducedMotion = !plain.toBool();
    }
    return settings;
}

}  // namespace cairnfield
