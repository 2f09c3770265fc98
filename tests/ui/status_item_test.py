"""The status item, its panel and its menu; starting twice; and what becomes of the program when its window closes."""

import base64
import json
import os
import signal
import subprocess
import time

from cairnfield_ui import UITestCase, main
from status_panel import StatusPanel

PANEL = "Cairnfield storage status"
PAUSE, RESUME = "Pause monitoring", "Resume monitoring"


class StatusItem(UITestCase):
    def setUp(self):
        super().setUp()
        for path in (self.config("settings.json"), self.data("watched-folders.json")):
            if os.path.exists(path):
                os.remove(path)

    def panel(self):
        panel = StatusPanel()
        self.addCleanup(panel.leave)
        return panel

    def start_on(self, panel, **options):
        app = self.start(**options)
        app.wait(lambda: panel.items, "the item to register")
        return app

    def open_panel(self, app, panel, x=0, y=0):
        panel.press(x, y)
        frame = app.wait(lambda: app.frame_named(PANEL), "the panel on the accessibility bus")
        window = app.wait(lambda: app.window_named(PANEL), "the panel on the display")
        app.focus(window, frame)
        return frame, window

    def wait_closed(self, app):
        app.wait(lambda: app.window_named(PANEL) is None, "the panel to close")

    def write_settings(self, **settings):
        os.makedirs(self.config(), exist_ok=True)
        with open(self.config("settings.json"), "w", encoding="utf-8") as file:
            json.dump(settings, file)

    def add_folder(self, app, path):
        app.key("ctrl+3")
        app.press(app.find("Add folder", role="push button"))
        app.find("Add folder", role="dialog")
        app.wait(lambda: (app.focused() or app.frame).name == "Path of the folder", "the path field to have the keyboard")
        app.type(path)
        app.key("Return")
        app.wait(lambda: os.path.exists(self.data("watched-folders.json")), "the folder to be stored")

    def close_window(self, app):
        app.focus(app.window, app.frame)
        app.key("ctrl+w")
        app.wait(lambda: app.window_named() is None, "the window to close")

    def assert_ends(self, app, since):
        self.assertEqual(app.wait_ended(), 0, app.log_text())
        self.assertLess(time.monotonic() - since, 1)
        self.assertNotIn("qrc:", app.log_text())

    # The item and its panel.

    def test_says_what_it_is_and_how_the_volume_does(self):
        panel = self.panel()
        app = self.start_on(panel)
        self.assertEqual(panel.property("Title"), PANEL)
        app.wait(lambda: panel.property("IconAccessibleDesc").startswith("Cairnfield: ") and
                 " free, " in panel.property("IconAccessibleDesc"), "the first reading")
        self.assertIn(panel.property("Status"), ("Active", "NeedsAttention"))
        self.assertTrue(panel.property("IconPixmap"))

    def test_warns_in_item_and_window_while_space_is_low(self):
        mode = base64.b64encode(b'"absolute"').decode()
        self.write_settings(thresholdMode={"data": mode}, warningAbsoluteBytes=1 << 60, criticalAbsoluteBytes=1)
        panel = self.panel()
        app = self.start_on(panel)
        app.wait(lambda: panel.property("Status") == "NeedsAttention", "the item to ask for attention")
        self.assertIn("Low space", panel.property("AttentionAccessibleDesc"))
        footer = app.find(lambda name: name.startswith("Low space, ") and name.endswith(" free"), role="push button")
        self.assertEqual(footer.description, "Opens the worktree list")
        app.press(footer)
        app.find("Worktrees", role="heading")

    def test_opens_its_panel_with_everything_told_by_name(self):
        panel = self.panel()
        app = self.start_on(panel)
        frame, window = self.open_panel(app, panel)
        app.find(lambda name: name.startswith("free of ") and name != "free of —", below=frame)
        app.find(lambda name: name in ("Healthy", "Low space", "Critically low"), below=frame)
        app.find("Looks reclaimable: 0 kB", below=frame)
        app.find("Need attention: 0", below=frame)
        buttons = [node.name for node in app.find_all(role="push button", below=frame)]
        self.assertEqual(buttons, ["Scan now", "Review cleanup", "Open Cairnfield", PAUSE, "Quit Cairnfield"])
        app.picture("panel", window)

    def test_opens_its_panel_near_the_item(self):
        panel = self.panel()
        app = self.start_on(panel)
        frame, _window = self.open_panel(app, panel, 800, 1190)
        box = frame.queryComponent().getExtents(0)
        self.assertAlmostEqual(box.x + box.width / 2, 800, delta=2)
        self.assertLess(box.y + box.height, 1190)
        self.assertGreater(box.y + box.height, 1150)

    def test_closes_its_panel_in_every_usual_way(self):
        panel = self.panel()
        app = self.start_on(panel)
        self.open_panel(app, panel)
        panel.press()
        self.wait_closed(app)
        self.open_panel(app, panel)
        app.key("Escape")
        self.wait_closed(app)
        self.open_panel(app, panel)
        subprocess.run(["xdotool", "windowfocus", "--sync", app.window], check=True)
        self.wait_closed(app)

    def test_is_used_by_keyboard_alone(self):
        panel = self.panel()
        app = self.start_on(panel)
        frame, _window = self.open_panel(app, panel)

        def focused():
            return next((node.name for node in app.find_all(role="push button", below=frame)
                         if app.has_state(node, "focused")), None)

        app.wait(lambda: focused() == "Scan now", "the first action to have the keyboard")
        app.key("Down", "Down")
        app.wait(lambda: focused() == "Open Cairnfield", "the third action to have the keyboard")
        app.key("Tab")
        app.wait(lambda: focused() == PAUSE, "the next action to have the keyboard")
        app.key("Return")
        app.find(RESUME, below=frame)
        self.assertEqual(focused(), RESUME)
        app.key("Up", "Up", "Up", "Up")
        app.wait(lambda: focused() == "Quit Cairnfield", "the last action to have the keyboard")

    def stores_monitoring(self):
        try:
            with open(self.config("settings.json"), encoding="utf-8") as file:
                return "onitoringEnabled" in file.read()
        except FileNotFoundError:
            return False

    def test_pauses_and_resumes_in_panel_and_menu_alike(self):
        panel = self.panel()
        app = self.start_on(panel)
        frame, _window = self.open_panel(app, panel)
        app.press(app.find(PAUSE, below=frame))
        app.find(RESUME, below=frame)
        app.wait(lambda: RESUME in panel.labels(), "the menu to follow")
        app.wait(self.stores_monitoring, "the choice to be stored")
        panel.choose(RESUME)
        app.find(PAUSE, below=frame)
        self.assertEqual(panel.labels(), ["Scan now", "Review cleanup", "Open Cairnfield", PAUSE, "---", "Quit Cairnfield"])

    # The window.

    def test_runs_on_without_its_window_and_shows_it_again(self):
        panel = self.panel()
        app = self.start_on(panel)
        for reopen in (lambda: panel.choose("Open Cairnfield"),
                       lambda: app.press(app.find("Review cleanup", below=self.open_panel(app, panel)[0]))):
            app.key("ctrl+6")
            app.find("History", role="heading")
            self.close_window(app)
            reopen()
            app.wait_window()
            app.find("History", role="heading")
        self.assertIsNone(app.window_named(PANEL), "the panel makes way for the window")

    def test_opens_no_window_at_login_beside_a_panel(self):
        panel = self.panel()
        app = self.start_on(panel, arguments=["--at-login"], opens_window=False)
        frame, _window = self.open_panel(app, panel)
        self.assertIsNone(app.window_named())
        before = time.monotonic()
        app.press(app.find("Quit Cairnfield", below=frame))
        self.assert_ends(app, before)

    def test_opens_its_window_at_login_where_nothing_shows_the_item(self):
        app = self.start(arguments=["--at-login"])
        self.assertEqual(app.log_text().count("the window is the only way in"), 1)

    def test_opens_its_window_when_the_last_panel_goes(self):
        panel = self.panel()
        app = self.start_on(panel)
        self.close_window(app)
        panel.leave()
        app.wait_window()
        app.key("ctrl+w")
        self.assert_ends(app, time.monotonic())

    def test_ends_with_its_window_where_nothing_shows_the_item(self):
        app = self.start()
        app.key("ctrl+w")
        self.assert_ends(app, time.monotonic())

    # A second start.

    def start_again(self, environment=None):
        return subprocess.run([os.environ["CAIRNFIELD_PROGRAM"]], env={**os.environ, **(environment or {})}, check=False,
                              capture_output=True, text=True, timeout=30)

    def test_brings_its_window_forward_when_it_is_started_again(self):
        panel = self.panel()
        app = self.start_on(panel)
        self.close_window(app)
        again = self.start_again()
        self.assertEqual((again.returncode, again.stdout + again.stderr), (0, ""))
        app.wait_window()
        self.assertEqual(self.start_again().returncode, 0)
        self.assertEqual(len(panel.items), 1, "there is one program")

    def test_keeps_a_second_writer_out_that_it_cannot_speak_to(self):
        self.start()
        again = self.start_again({"DBUS_SESSION_BUS_ADDRESS": "unix:path=/nowhere"})
        self.assertEqual(again.returncode, 1)
        self.assertIn("Cairnfield runs already for this user and cannot be reached from here.", again.stderr)

    # The end.

    def test_ends_within_a_second_whatever_is_under_way(self):
        panel = self.panel()
        code = os.path.join(self.home, "code")
        for number in range(40):
            subprocess.run(["git", "init", "-q", os.path.join(code, f"project-{number}")], check=True)
            for folder in range(50):
                os.makedirs(os.path.join(code, f"project-{number}", f"folder-{folder}", "deep"), exist_ok=True)
        app = self.start_on(panel)
        self.add_folder(app, code)
        panel.choose("Scan now")
        before = time.monotonic()
        panel.choose("Quit Cairnfield")
        self.assert_ends(app, before)
        with open(self.data("watched-folders.json"), encoding="utf-8") as file:
            self.assertIn(code, file.read())

    def test_ends_within_a_second_beside_a_git_that_does_not_end(self):
        git = os.path.join(self.home, "stubborn-git")
        with open(git, "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\ntrap '' TERM INT HUP\n[ \"$1\" = --version ] && echo 'git version 2.39.5' && exit\n"
                       f"touch {self.home}/git-runs\nwhile [ -e \"$0\" ]; do sleep 1; done\n")
        os.chmod(git, 0o755)
        self.addCleanup(os.remove, git)
        self.write_settings(gitPathOverride=git)
        code = os.path.join(self.home, "stubborn")
        subprocess.run(["git", "init", "-q", code], check=True)
        panel = self.panel()
        app = self.start_on(panel)
        self.add_folder(app, code)
        app.wait(lambda: os.path.exists(os.path.join(self.home, "git-runs")), "git to be asked")
        before = time.monotonic()
        panel.choose("Quit Cairnfield")
        self.assert_ends(app, before)

    def test_minds_no_impatience(self):
        app = self.start()
        before = time.monotonic()
        for _ in range(5):
            app.terminate(signal.SIGTERM)
        self.assert_ends(app, before)


if __name__ == "__main__":
    main()
