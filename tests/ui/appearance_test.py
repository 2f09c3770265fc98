"""Light and dark, contrast and accent come from the desktop and follow it while the program runs."""

import subprocess

import dbus

from cairnfield_ui import UITestCase, main
from settings_portal import SettingsPortal, color

LIGHT, DARK = (0xF6, 0xF6, 0xF8), (0x1C, 0x1C, 0x1F)


class Appearance(UITestCase):
    def portal(self, **appearance):
        portal = SettingsPortal(**appearance)
        self.addCleanup(portal.leave)
        return portal

    def pixel(self, app, x, y):
        words = subprocess.run(
            ["convert", app.picture("appearance"), "-format", f"%[fx:round(255*p{{{x},{y}}}.r)] "
             f"%[fx:round(255*p{{{x},{y}}}.g)] %[fx:round(255*p{{{x},{y}}}.b)]", "info:"],
            capture_output=True, text=True, check=True).stdout.split()
        return tuple(int(word) for word in words)

    def assert_background(self, app, expected):
        app.wait(lambda: self.pixel(app, 600, 700) == expected, f"a background of {expected}")

    def test_is_light_without_a_portal(self):
        self.assert_background(self.start(), LIGHT)

    def test_is_dark_from_the_start_where_the_desktop_is(self):
        self.portal(color_scheme=dbus.UInt32(1))
        self.assert_background(self.start(), DARK)

    def test_follows_the_desktop_from_light_to_dark_and_back(self):
        portal = self.portal(color_scheme=dbus.UInt32(2))
        app = self.start()
        self.assert_background(app, LIGHT)
        portal.change("color-scheme", dbus.UInt32(1))
        self.assert_background(app, DARK)
        portal.change("color-scheme", dbus.UInt32(2))
        self.assert_background(app, LIGHT)

    def test_draws_strong_lines_with_high_contrast(self):
        portal = self.portal(contrast=dbus.UInt32(0))
        app = self.start()
        self.assert_background(app, LIGHT)
        portal.change("contrast", dbus.UInt32(1))
        app.wait(lambda: self.pixel(app, 208, 600) == (0x1B, 0x1B, 0x1F), "a line beside the sidebar like text")

    def test_takes_the_accent_of_the_desktop(self):
        self.portal(accent_color=color(0.57, 0.25, 0.67))
        app = self.start()
        row = app.find("Overview", role="list item").queryComponent().getExtents(1)
        x, y = row.x + row.width - 8, row.y + row.height // 2

        def is_purple():
            red, green, blue = self.pixel(app, x, y)
            return blue > green + 8 and red > green + 8

        app.wait(is_purple, "a purple tint on the selected row")


if __name__ == "__main__":
    main()
