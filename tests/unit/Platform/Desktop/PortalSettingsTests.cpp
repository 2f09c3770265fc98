#include "Platform/Linux/Desktop/PortalSettings.h"

#include <QDBusVariant>

#include <gtest/gtest.h>

namespace cairnfield {
namespace {

const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");

QVariant wrapped(const QVariant& value) {
    return QVariant::fromValue(QDBusVariant(value));
}

TEST(PortalSettings, ReadDarkAndLight) {
    EXPECT_TRUE(withPortalSetting({}, appearance, "color-scheme", 1U).isDark);
    EXPECT_FALSE(withPortalSetting({.isDark = true}, appearance, "color-scheme", 2U).isDark);
}

TEST(PortalSettings, LeaveThePaletteToSayWhenTheDesktopHasNoPreference) {
    EXPECT_TRUE(withPortalSetting({.isDark = true}, appearance, "color-scheme", 0U).isDark);
    EXPECT_FALSE(withPortalSetting({}, appearance, "color-scheme", 0U).isDark);
}

TEST(PortalSettings, UnwrapAnyNumberOfVariants) {
    EXPECT_TRUE(withPortalSetting({}, appearance, "color-scheme", wrapped(wrapped(1U))).isDark);
}

TEST(PortalSettings, ReadContrastAndMotion) {
    EXPECT_TRUE(withPortalSetting({}, appearance, "contrast", 1U).prefersHighContrast);
    EXPECT_FALSE(
        withPortalSetting({.prefersHighContrast = true}, appearance, "contrast", 0U).prefersHighContrast);
    EXPECT_TRUE(withPortalSetting({}, gnome, "enable-animations", false).prefersReducedMotion);
    EXPECT_FALSE(withPortalSetting({.prefersReducedMotion = true}, gnome, "enable-animations", true)
                     .prefersReducedMotion);
}

TEST(PortalSettings, IgnoreWhatMeansNothingHere) {
    const AppearanceSettings settings{.isDark = true, .accentColor = 0x123456};
    EXPECT_EQ(withPortalSetting(settings, gnome, "gtk-theme", QStringLiteral("x")), settings);
    EXPECT_EQ(withPortalSetting(settings, "org.example", "color-scheme", 2U), settings);
}

TEST(PortalSettings, TakeAnAccentOfAnotherKindForNone) {
    EXPECT_EQ(withPortalSetting({.accentColor = 0x123456}, appearance, "accent-color", QStringLiteral("blue"))
                  .accentColor,
              std::nullopt);
}

}  // namespace
}  // namespace cairnfield
