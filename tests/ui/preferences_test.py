"""The screen of the settings: every control by its name, by assistive technology and by keyboard, and what it stores."""

import json
import os
import signal
import subprocess

import dbus
import dbus.bus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop

from cairnfield_ui import UITestCase, main

SECTIONS = ["Free space alerts", "Monitoring", "Notifications", "Growth alerts", "Updates", "Preservation"]
ENTRY = (".config", "autostart", "com.cairnfield.app.desktop")


class AccessibilityDoor(dbus.service.Object):
    """On another session bus, leads to the accessibility bus that this script looks through."""

    def __init__(self, address):
        bus = dbus.bus.BusConnection(address, mainloop=DBusGMainLoop())
        self.name = dbus.service.BusName("org.a11y.Bus", bus)
        super().__init__(bus, "/org/a11y/bus")

    @dbus.service.method("org.a11y.Bus", out_signature="s")
    def GetAddress(self):
        return dbus.SessionBus().get_object("org.a11y.Bus", "/org/a11y/bus").GetAddress(dbus_interface="org.a11y.Bus")


class Preferences(UITestCase):
    def setUp(self):
        super().setUp()
        self.entry = os.path.join(self.home, *ENTRY)
        for file in (self.config("settings.json"), self.entry):
            if os.path.exists(file):
                os.remove(file)

    def start(self, settings=None, size=(1100, 1180), environment=None):
        if settings:
            os.makedirs(self.config(), exist_ok=True)
            with open(self.config("settings.json"), "w", encoding="utf-8") as file:
                json.dump(settings, file)
        app = super().start(environment)
        app.resize(*size)
        app.key("ctrl+comma")
        app.find("Free space alerts", role="heading")
        return app

    def setting(self, key):
        try:
            with open(self.config("settings.json"), encoding="utf-8") as file:
                return json.load(file).get(key)
        except (FileNotFoundError, ValueError):
            return None

    def wait_setting(self, app, key, value):
        app.wait(lambda: self.setting(key) == value and type(self.setting(key)) is type(value),
                 f"{key} to be stored as {value!r}")

    def wait_checked(self, app, name, checked):
        app.wait(lambda: app.has_state(app.find_now(name, role="check box"), "checked") == checked,
                 f"{name!r} to be {'on' if checked else 'off'}")

    def pick(self, app, picker, option):
        app.press(app.find(picker, role="combo box"))
        app.press(app.find(option, role="list item"))

    def type_into(self, app, name, text, end="Return"):
        app.press(app.find(name, role="text"), "SetFocus")
        app.wait(lambda: app.has_state(app.find_now(name, role="text"), "focused"), f"{name!r} to have the keyboard")
        app.key("ctrl+a")
        app.type(text)
        if end:
            app.key(end)

    def text_of(self, app, name):
        text = app.find(name, role="text").queryText()
        return text.getText(0, text.characterCount)

    def test_has_six_sections_with_their_texts(self):
        app = self.start()
        headings = [node.name for node in app.find_all(role="heading")]
        self.assertEqual([name for name in headings if name in SECTIONS], SECTIONS)
        for name in ("Watch storage while Cairnfield runs", "Launch at login", "Notify me about storage and cleanup",
                     "Open a draft pull request when preserving", "Copy small local-only files to the Recovery Vault"):
            app.find(name, role="check box")
        for name in ("Rescan a changed folder at most every 30 min", "Reconcile every 6 h",
                     "Keep Recovery Vault files for 90 days"):
            app.find(name, role="spin button")
        for name in ("Thresholds", "Or grows by"):
            app.find(name, role="combo box")
        for name in ("Alert when a folder grows by", "Prefix"):
            app.find(name, role="text")
        app.find("Recovery branch prefix")
        app.find("Cairnfield posts one notification per incident and replaces it rather than stacking repeats.")
        app.find("Measured over the last 24 hours.")
        app.find(lambda name: name.startswith("This volume holds ") and "Cairnfield warns when free space falls" in name)
        app.find(lambda name: name.startswith("Currently: Warn below ") and ", critical below " in name)
        app.picture("preferences")

    def test_offers_the_controls_of_the_chosen_mode(self):
        app = self.start()
        self.assertIsNone(app.find_now("Warn when free space falls below"))
        self.pick(app, "Thresholds", "Percentage of capacity")
        app.find("Critical when free space falls below", role="combo box")
        self.assertIsNone(app.find_now(lambda name: name.startswith("This volume holds ")))
        self.assertEqual(app.find("Critical when free space falls below", role="combo box").description, "7%")
        self.pick(app, "Warn when free space falls below", "20%")
        self.wait_setting(app, "warningPercentage", 0.2)
        self.pick(app, "Thresholds", "Fixed amount")
        app.find("Warn when free space falls below", role="text")
        self.assertIsNone(app.find_now("Warn when free space falls below", role="combo box"))
        self.type_into(app, "Warn when free space falls below", "1.5")
        self.wait_setting(app, "warningAbsoluteBytes", 1610612736)
        app.find("Currently: Warn below 1.61 GB, critical below 805.3 MB")
        self.pick(app, "Thresholds", "Smart recommendation")
        app.find(lambda name: name.startswith("This volume holds "))

    def test_stores_a_typed_amount_when_it_is_done_and_refuses_what_is_none(self):
        app = self.start()
        name = "Alert when a folder grows by"
        self.assertEqual(self.text_of(app, name), "5")
        self.type_into(app, name, "7.5", end="Tab")
        self.wait_setting(app, "growthAbsoluteBytes", 8053063680)
        self.type_into(app, name, "much")
        app.wait(lambda: self.text_of(app, name) == "7.5", "the number to come back")
        self.type_into(app, name, "99", end="Escape")
        app.wait(lambda: self.text_of(app, name) == "7.5", "Escape to bring the number back")
        self.assertEqual(self.setting("growthAbsoluteBytes"), 8053063680)
        self.type_into(app, name, "3", end=None)
        app.key("ctrl+2")
        self.wait_setting(app, "growthAbsoluteBytes", 3221225472)

    def test_keeps_what_was_changed_right_before_the_end(self):
        name = "Alert when a folder grows by"
        ends = {"ctrl+q": lambda app: app.key("ctrl+q"), "a signal": lambda app: app.terminate(signal.SIGTERM)}
        for number, (title, end) in enumerate(ends.items(), start=11):
            with self.subTest(end=title):
                app = self.start()
                self.type_into(app, name, str(number), end=None)
                end(app)
                self.assertEqual(app.wait_ended(), 0, app.log_text())
                self.assertEqual(self.setting("growthAbsoluteBytes"), number * 2**30)

    def test_switches_monitoring(self):
        app = self.start()
        name = "Watch storage while Cairnfield runs"
        self.wait_checked(app, name, True)
        app.press(app.find(name, role="check box"), "Toggle")
        self.wait_checked(app, name, False)
        self.wait_setting(app, "monitoringEnabled", False)
        app.click(app.find(name, role="check box"))
        self.wait_checked(app, name, True)
        self.wait_setting(app, "monitoringEnabled", True)

    def test_launches_at_login_and_reads_back_what_others_did(self):
        app = self.start()
        self.wait_checked(app, "Launch at login", False)
        app.press(app.find("Launch at login", role="check box"))
        self.wait_checked(app, "Launch at login", True)
        with open(self.entry, encoding="utf-8") as file:
            self.assertIn(f'Exec="{os.environ["CAIRNFIELD_PROGRAM"]}" --at-login', file.read().splitlines())
        self.wait_setting(app, "launchAtLogin", True)
        os.remove(self.entry)
        app.key("ctrl+2")
        app.key("ctrl+comma")
        self.wait_checked(app, "Launch at login", False)

    def bus_without_services(self):
        """A session bus for the program alone, on which nothing can be started that would show notifications."""
        config = os.path.join(self.home, "bus.conf")
        with open(config, "w", encoding="utf-8") as file:
            file.write(f"""<busconfig><type>session</type><listen>unix:dir={self.home}</listen>
                <policy context="default"><allow send_destination="*"/><allow receive_sender="*"/>
                <allow own="*"/></policy></busconfig>""")
        bus = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork", "--print-address=1"],
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)

        def end():
            bus.terminate()
            bus.wait()
            bus.stdout.close()

        self.addCleanup(end)
        address = bus.stdout.readline().strip()
        self.door = AccessibilityDoor(address)
        return address

    def test_says_that_notifications_are_refused_and_leaves_them_off(self):
        app = self.start(environment={"DBUS_SESSION_BUS_ADDRESS": self.bus_without_services()})
        self.assertIsNone(app.find_now("Notifications are turned off in System Settings."))
        app.press(app.find("Notify me about storage and cleanup", role="check box"))
        app.find("Notifications are turned off in System Settings.")
        self.wait_checked(app, "Notify me about storage and cleanup", False)
        self.wait_setting(app, "notificationsEnabled", False)
        app.picture("preferences-refused")

    def test_steps_by_keyboard_and_by_assistive_technology_within_the_range(self):
        app = self.start({"rescanIntervalMinutes": 235, "recoveryVaultRetentionDays": 14})
        stepper = app.find("Rescan a changed folder at most every 235 min", role="spin button")
        value = stepper.queryValue()
        self.assertEqual((value.currentValue, value.minimumValue, value.maximumValue), (235, 5, 240))
        app.press(stepper, "Increase")
        top = app.find("Rescan a changed folder at most every 240 min", role="spin button")
        plus = app.find("Increase", role="push button", below=top)
        self.assertEqual(plus.description, "Not available now")
        app.press(top, "Increase")
        app.press(top, "Decrease")
        app.find("Rescan a changed folder at most every 235 min", role="spin button")
        self.wait_setting(app, "rescanIntervalMinutes", 235)

        app.click(app.find("Decrease", role="push button",
                           below=app.find("Keep Recovery Vault files for 14 days", role="spin button")))
        least = app.find("Keep Recovery Vault files for 7 days", role="spin button")
        self.assertEqual(app.find("Decrease", role="push button", below=least).description, "Not available now")
        self.wait_setting(app, "recoveryVaultRetentionDays", 7)

    def test_can_be_walked_through_by_keyboard_and_keeps_what_has_it_in_view(self):
        app = self.start(size=(760, 520))
        self.type_into_nothing(app)
        seen = []
        for _ in range(40):
            app.key("Tab")
            focused = app.wait(app.focused, "something with the keyboard")
            if focused.name == "Keep Recovery Vault files for 90 days":
                break
            seen.append(focused.name)
        self.assertEqual(app.focused().name, "Keep Recovery Vault files for 90 days", seen)
        self.assertIn("Launch at login", seen)
        self.assertIn("Reconcile every 6 h", seen)
        app.wait(lambda: app.has_state(app.focused(), "showing"), "the page to scroll along")
        app.key("Up")
        app.find("Keep Recovery Vault files for 97 days", role="spin button")
        app.picture("preferences-bottom")

    def type_into_nothing(self, app):
        app.click(app.find("Free space alerts", role="heading"))

    def test_says_why_there_are_no_updates(self):
        app = self.start()
        app.find(lambda name: name.startswith("Version: ") and name.count(".") >= 1)
        app.find("Updates are disabled in this build.")
        self.assertEqual(app.find("Check for updates…", role="push button").description, "Not available now")
        for hidden in ("Check for updates automatically", "Download updates in the background"):
            self.assertIsNone(app.find_now(hidden))
        self.assertIsNone(app.find_now(lambda name: name.startswith("Last checked")))

    def test_stores_the_prefix_when_the_typing_pauses(self):
        app = self.start()
        self.assertEqual(self.text_of(app, "Prefix"), "cairnfield/recovery")
        self.type_into(app, "Prefix", "keep/me", end=None)
        self.wait_setting(app, "recoveryBranchPrefix", "keep/me")
        app.press(app.find("Open a draft pull request when preserving", role="check box"))
        self.wait_setting(app, "createDraftPullRequests", False)


if __name__ == "__main__":
    main()
