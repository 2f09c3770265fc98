"""A stand-in for the desktop's panel, on the session bus of the test: it shows status items, and presses them."""

import dbus
import dbus.mainloop.glib
import dbus.service

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"

dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)


class StatusPanel(dbus.service.Object):
    """Answers while the test waits for something: it shares the test's loop."""

    def __init__(self):
        self.bus = dbus.SessionBus()
        self.held_name = dbus.service.BusName(WATCHER, self.bus)
        super().__init__(self.bus, "/StatusNotifierWatcher")
        self.items = []

    @dbus.service.method(WATCHER, in_signature="s")
    def RegisterStatusNotifierItem(self, service):
        self.items.append(str(service))

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return {"IsStatusNotifierHostRegistered": True}[name]

    def leave(self):
        if self.held_name is None:
            return
        self.remove_from_connection()
        self.held_name = None

    # What a person sees and does.

    def item(self):
        return self.bus.get_object(self.items[-1], "/StatusNotifierItem", introspect=False)

    def property(self, name):
        return self.item().Get(ITEM, name, dbus_interface=dbus.PROPERTIES_IFACE)

    def press(self, x=0, y=0):
        self.item().Activate(x, y, dbus_interface=ITEM)

    def menu_object(self):
        return self.bus.get_object(self.items[-1], self.property("Menu"), introspect=False)

    def entries(self):
        """The menu's labels and numbers."""
        _revision, (_root, _properties, children) = self.menu_object().GetLayout(
            0, -1, dbus.Array([], "s"), dbus_interface=MENU)
        return [(str(properties.get("label", "---")), int(number)) for number, properties, _below in children]

    def labels(self):
        return [label for label, _number in self.entries()]

    def choose(self, label):
        number = dict(self.entries())[label]
        self.menu_object().Event(number, "clicked", dbus.Int32(0, variant_level=1), dbus.UInt32(0), dbus_interface=MENU)
