"""A stand-in for the desktop portal's settings, on the session bus of the test."""

import dbus
import dbus.mainloop.glib
import dbus.service

APPEARANCE = "org.freedesktop.appearance"
INTERFACE = "org.freedesktop.portal.Settings"

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)


class SettingsPortal(dbus.service.Object):
    """Answers while the test waits for something: it shares the test's loop."""

    def __init__(self, **appearance):
        bus = dbus.SessionBus()
        self.held_name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.appearance = {key.replace("_", "-"): value for key, value in appearance.items()}

    @dbus.service.method(INTERFACE, in_signature="as", out_signature="a{sa{sv}}")
    def ReadAll(self, namespaces):
        return {APPEARANCE: self.appearance} if APPEARANCE in namespaces else {}

    @dbus.service.signal(INTERFACE, signature="ssv")
    def SettingChanged(self, namespace, key, value):
        pass

    def change(self, key, value):
        self.appearance[key] = value
        self.SettingChanged(APPEARANCE, key, value)

    def leave(self):
        self.remove_from_connection()
        del self.held_name


def color(red, green, blue):
    return dbus.Struct((float(red), float(green), float(blue)), signature="ddd")
