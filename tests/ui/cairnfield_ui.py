"""Driving the program as a person with assistive technology does: through the accessibility bus, the keyboard and the mouse.

Scripts are started by run_ui_test.sh, which gives them a display, buses and an empty home. Nothing here sleeps for luck:
everything waits for a condition and fails with what it waited for.

    class Screen(UITestCase):
        def test_something(self):
            app = self.start()
            app.press(app.find("Worktrees", role="list item"))
            app.wait(lambda: app.find_now("Select a worktree"), "the empty detail")
"""

import os
import signal
import subprocess
import time
import unittest

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402
import pyatspi  # noqa: E402

PATIENCE = 20.0  # seconds before a condition counts as never coming
NAME = "Cairnfield"


def _let_events_in():
    context = GLib.MainContext.default()
    while context.iteration(False):
        pass


def wait_for(condition, what, patience=PATIENCE):
    """The condition's first true answer. What it raises on the way (nodes that just went) counts as no."""
    end = time.monotonic() + patience
    problem = None
    while True:
        _let_events_in()
        try:
            answer = condition()
            if answer:
                return answer
        except (GLib.Error, LookupError, RuntimeError, ValueError) as error:
            problem = error
        if time.monotonic() > end:
            raise AssertionError(f"gave up waiting for {what}" + (f" ({problem})" if problem else ""))
        time.sleep(0.02)


class App:
    """One run of the program, with its window unless the test says that it opens none."""

    def __init__(self, environment=None, arguments=(), opens_window=True):
        self.log = open(os.path.join(os.environ["HOME"], "program.log"), "w+", encoding="utf-8", errors="replace")
        self.process = subprocess.Popen(
            [os.environ["CAIRNFIELD_PROGRAM"], *arguments], env={**os.environ, **(environment or {})}, stdin=subprocess.DEVNULL,
            stdout=self.log, stderr=self.log)
        self.root = self.frame = self.window = None
        if opens_window:
            self.wait_window()

    def wait_window(self):
        """Until the window is there, for the first time or again."""
        self.frame = self.wait(self.frame_named, "the window on the accessibility bus")
        self.window = self.wait(self.window_named, "the window on the display")
        self.focus(self.window, self.frame)

    def focus(self, window, frame):
        subprocess.run(["xdotool", "windowfocus", "--sync", window], check=True)
        self.wait(lambda: self.has_state(frame, "active"), "the window to become active")

    def frame_named(self, name=NAME):
        """The open window of this title on the accessibility bus."""
        if self.process.poll() is not None:
            raise AssertionError(f"the program ended with {self.process.returncode}:\n{self.log_text()}")
        desktop = pyatspi.Registry.getDesktop(0)
        for child in desktop:
            if child is not None and child.name == NAME and child.get_process_id() == self.process.pid:
                self.root = child
                child.clear_cache()
                return next((f for f in child if f is not None and f.getRoleName() == "frame" and f.name == name), None)
        return None

    def window_named(self, name=NAME):
        """The same on the display."""
        found = subprocess.run(
            ["xdotool", "search", "--all", "--onlyvisible", "--pid", str(self.process.pid), "--name", f"^{name}$"],
            capture_output=True, text=True, check=False).stdout.split()
        return found[0] if found else None

    def log_text(self):
        self.log.flush()
        with open(self.log.name, encoding="utf-8", errors="replace") as log:
            return log.read()

    # Finding. A name is matched whole; a function of the node's name may stand for it.

    def nodes(self, below=None):
        """Everything on the bus below a node, in order, freshly asked."""
        below = below or self.frame
        below.clear_cache()
        waiting = [below]
        while waiting:
            node = waiting.pop()
            yield node
            waiting.extend(child for child in reversed(list(node)) if child is not None)

    def find_all(self, name=None, role=None, below=None, showing=True):
        matches = name if callable(name) else lambda text: name is None or text == name
        return [node for node in self.nodes(below)
                if matches(node.name) and (role is None or node.getRoleName() == role)
                and (not showing or self.has_state(node, "showing"))]

    def find_now(self, name=None, role=None, below=None):
        found = self.find_all(name, role, below)
        return found[0] if found else None

    def find(self, name=None, role=None, below=None):
        return self.wait(lambda: self.find_now(name, role, below), f"{role or 'something'} named {name!r}")

    def wait_gone(self, name, role=None):
        self.wait(lambda: self.find_now(name, role) is None, f"{name!r} to go")

    def wait(self, condition, what, patience=PATIENCE):
        return wait_for(condition, what, patience)

    @staticmethod
    def has_state(node, state):
        return node.getState().contains(getattr(pyatspi, "STATE_" + state.upper()))

    # Acting.

    def press(self, node, action="Press"):
        """What assistive technology does; the pointer stays where it is."""
        actions = node.queryAction()
        names = [actions.getName(i) for i in range(actions.nActions)]
        assert action in names, f"{node.name!r} ({node.getRoleName()}) has no {action}: {names}"
        actions.doAction(names.index(action))

    def click(self, node, button=1):
        box = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        subprocess.run(["xdotool", "mousemove", "--sync", str(box.x + box.width // 2), str(box.y + box.height // 2),
                        "click", str(button)], check=True)

    def key(self, *keys):
        subprocess.run(["xdotool", "key", "--clearmodifiers", *keys], check=True)

    def type(self, text):
        subprocess.run(["xdotool", "type", "--delay", "5", "--", text], check=True)

    def resize(self, width, height):
        """In the units of the program: the display's are more of them when it is scaled."""
        scale = float(os.environ.get("QT_SCALE_FACTOR", "1"))
        subprocess.run(["xdotool", "windowsize", self.window, str(round(width * scale)), str(round(height * scale))],
                       check=True)

        def done():
            box = self.frame.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
            return (box.width, box.height) in ((width, height), (round(width * scale), round(height * scale)))

        self.wait(done, f"a window of {width} by {height}")

    @staticmethod
    def clipboard():
        """What any program of the session would paste now."""
        return subprocess.run(["xclip", "-selection", "clipboard", "-out", "-target", "UTF8_STRING"], capture_output=True,
                              text=True, check=False, timeout=PATIENCE).stdout

    def focused(self):
        """What the keyboard speaks to: the innermost, since the views round it say so too."""
        return next((node for node in reversed(list(self.nodes())) if self.has_state(node, "focused")), None)

    def picture(self, name, window=None):
        """A picture of the window, for people to look at."""
        path = os.path.join(os.environ["CAIRNFIELD_UI_PICTURES"], name + ".png")
        subprocess.run(["import", "-window", window or self.window, path], check=True)
        return path

    def tree(self, below=None, depth=0):
        """The accessible names and roles, to read when a test fails."""
        node = below or self.frame
        line = f"{'  ' * depth}{node.getRoleName()} {node.name!r}\n"
        return line + "".join(self.tree(child, depth + 1) for child in node if child is not None)

    # Ending.

    def terminate(self, number=signal.SIGTERM):
        self.process.send_signal(number)

    def wait_ended(self, patience=PATIENCE):
        """The exit status."""
        try:
            return self.process.wait(patience)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the program did not end within {patience} s") from None

    def close(self):
        if self.process.poll() is None:
            self.terminate()
            try:
                self.process.wait(PATIENCE)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.log.close()


class UITestCase(unittest.TestCase):
    """Each test starts the program itself, on whatever it has put into the home before."""

    def setUp(self):
        self.home = os.environ["HOME"]

    def start(self, environment=None, arguments=(), opens_window=True):
        app = App(environment, arguments, opens_window)
        self.addCleanup(app.close)
        return app

    def config(self, *parts):
        return os.path.join(self.home, ".config", "Cairnfield", *parts)

    def data(self, *parts):
        return os.path.join(self.home, ".local", "share", "Cairnfield", *parts)


def main():
    unittest.main(verbosity=2)
