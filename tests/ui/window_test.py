"""The window's frame: its sections, the keyboard, and how it ends."""

import signal
import time

from cairnfield_ui import UITestCase, main

SECTIONS = ["Overview", "Worktrees", "Watched Folders", "Developer Files", "Recovery", "History", "Integrations",
            "Preferences"]
PLACEHOLDERS = ["Overview", "Developer Files", "Integrations"]
PLACEHOLDER_TEXT = "This screen comes with a later version of Cairnfield."


class Window(UITestCase):
    def row(self, app, title):
        return app.find(title, role="list item")

    def assert_shows(self, app, title):
        app.wait(lambda: app.has_state(self.row(app, title), "selected"), f"{title} to be selected")
        app.find(title, role="heading")

    def test_lists_every_section_in_order_and_starts_with_the_overview(self):
        app = self.start()
        app.find("Overview", role="list item")
        rows = app.find_all(role="list item", below=app.find("Sections", role="list"))
        self.assertEqual([row.name for row in rows], SECTIONS)
        self.assert_shows(app, "Overview")

    def test_selects_a_section_through_assistive_technology(self):
        app = self.start()
        for title in SECTIONS[1:] + SECTIONS[:1]:
            app.press(self.row(app, title))
            self.assert_shows(app, title)

    def test_shows_a_placeholder_where_a_screen_is_still_to_come(self):
        app = self.start()
        for title in PLACEHOLDERS:
            app.press(self.row(app, title))
            self.assert_shows(app, title)
            app.find(PLACEHOLDER_TEXT)
        app.press(self.row(app, "Worktrees"))
        app.wait_gone(PLACEHOLDER_TEXT)
        app.press(self.row(app, "Watched Folders"))
        self.assert_shows(app, "Watched Folders")
        self.assertIsNone(app.find_now(PLACEHOLDER_TEXT))

    def test_chooses_sections_by_their_number(self):
        app = self.start()
        for number, title in list(enumerate(SECTIONS, 1))[::-1]:
            app.key(f"ctrl+{number}")
            self.assert_shows(app, title)
        app.key("ctrl+comma")
        self.assert_shows(app, "Preferences")

    def test_moves_through_the_sidebar_by_keyboard(self):
        app = self.start()
        app.key("Down")
        self.assert_shows(app, "Worktrees")
        app.key("End")
        self.assert_shows(app, "Preferences")
        app.key("Down")
        self.assert_shows(app, "Preferences")
        app.key("Up")
        self.assert_shows(app, "Integrations")
        app.key("Home")
        self.assert_shows(app, "Overview")
        app.type("wat")
        self.assert_shows(app, "Watched Folders")

    def test_selects_a_section_with_the_pointer(self):
        app = self.start()
        app.click(self.row(app, "History"))
        self.assert_shows(app, "History")

    def test_names_its_sections_when_it_is_too_narrow_to_write_them(self):
        app = self.start()
        wide = self.row(app, "Recovery").queryComponent().getExtents(0).width
        app.resize(780, 560)
        app.wait(lambda: self.row(app, "Recovery").queryComponent().getExtents(0).width < wide / 2, "a narrow sidebar")
        app.press(self.row(app, "Recovery"))
        self.assert_shows(app, "Recovery")

    def assert_ends(self, app):
        before = time.monotonic()
        self.assertEqual(app.wait_ended(), 0, app.log_text())
        self.assertLess(time.monotonic() - before, 1)
        self.assertNotIn("qrc:", app.log_text())

    def test_ends_when_its_window_is_closed(self):
        app = self.start()
        app.key("ctrl+w")
        self.assert_ends(app)

    def test_ends_when_told_to_quit(self):
        app = self.start()
        app.key("ctrl+q")
        self.assert_ends(app)

    def test_ends_cleanly_on_a_signal(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(number=number):
                app = self.start()
                app.terminate(number)
                self.assert_ends(app)

    def test_remembers_its_size(self):
        app = self.start()
        app.resize(900, 600)
        app.key("ctrl+w")
        self.assert_ends(app)
        again = self.start()
        box = again.frame.queryComponent().getExtents(0)
        self.assertEqual((box.width, box.height), (900, 600))


if __name__ == "__main__":
    main()
