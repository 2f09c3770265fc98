"""What the tests of the driver share: a private home for each case, git without anybody's settings, and the driver's answer
taken apart. Each test program is started with the driver's path as its first argument."""

import hashlib
import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

NOBODY = 65534
DRIVER = Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else None


class Answer:
    def __init__(self, done):
        self.status = done.returncode
        self.log = done.stderr.decode(errors="replace")
        self.lines = [json.loads(line) for line in done.stdout.decode("utf-8").splitlines()]

    @property
    def result(self):
        """The last line, which must be the result."""
        assert self.lines and self.lines[-1]["event"] == "result", (self.lines, self.log)
        return self.lines[-1]

    @property
    def errors(self):
        return [line for line in self.lines if line["event"] == "error"]


class DriverCase(unittest.TestCase):
    def setUp(self):
        self.home = Path(tempfile.mkdtemp(prefix="cairnfield-driver-"))
        self.addCleanup(self.remove_home)
        self.root = self.home / "src"
        self.root.mkdir()
        (self.home / ".gitconfig").write_text(
            "[user]\n\tname = Robin\n\temail = robin@example.com\n[init]\n\tdefaultBranch = main\n"
            "[protocol \"file\"]\n\tallow = always\n")
        self.environment = {
            "HOME": str(self.home), "XDG_DATA_HOME": str(self.home / "data"), "XDG_CONFIG_HOME": str(self.home / "config"),
            "XDG_RUNTIME_DIR": str(self.home / "runtime"), "GIT_CONFIG_NOSYSTEM": "1", "PATH": "/usr/bin:/bin",
            "LC_ALL": "C.UTF-8", "TZ": "UTC",
        }
        for variable in ("ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LLVM_PROFILE_FILE"):
            if variable in os.environ:
                self.environment[variable] = os.environ[variable]

    def remove_home(self):
        for folder, _, _ in os.walk(self.home):
            os.chmod(folder, 0o700)
        shutil.rmtree(self.home)

    def drive(self, *words, status=0, stdin=b"", as_nobody=False, before=()):
        """`before`: the words of a program that runs the driver."""
        command = [*before, DRIVER, *words]
        if as_nobody and os.geteuid() == 0:
            command = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups", self.driver_for_nobody(), *words]
        done = subprocess.run(command, env=self.environment, cwd=self.home, input=stdin, capture_output=True, timeout=120)
        answer = Answer(done)
        self.assertEqual(answer.status, status, answer.log)
        return answer

    def start(self, *words):
        """The driver, running beside the test; it ends with it."""
        process = subprocess.Popen([DRIVER, *words], env=self.environment, cwd=self.home, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        process.kill()
        process.communicate()

    def wait_for(self, process, wanted):
        """The lines up to the first that is wanted."""
        seen = []
        watchdog = threading.Timer(120, process.kill)
        watchdog.start()
        try:
            for line in process.stdout:
                seen.append(json.loads(line))
                if wanted(seen[-1]):
                    return seen
        finally:
            watchdog.cancel()
        self.fail(f"the driver ended without it: {seen[-5:]}")

    def driver_for_nobody(self):
        """A copy in the home, since the build directory need not be open to others, and the home handed over."""
        copy = self.home / "cairnfield-driver"
        if not copy.exists():
            shutil.copy(DRIVER, copy)
            copy.chmod(0o755)
        for folder, folders, files in os.walk(self.home):
            for name in [".", *folders, *files]:
                os.lchown(os.path.join(folder, name), NOBODY, NOBODY)
        return copy

    def git(self, directory, *words):
        done = subprocess.run(["git", *words], cwd=directory, env=self.environment, capture_output=True,
                              stdin=subprocess.DEVNULL)
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def repository(self, name="project"):
        path = self.root / name
        self.git(self.root, "init", "--quiet", str(path))
        (path / "file").write_text("one\n")
        self.git(path, "add", "file")
        self.git(path, "commit", "--quiet", "--message", "First")
        return path

    def worktree(self, repository, branch, name=None):
        path = self.root / (name or f"{repository.name}-{branch}")
        self.git(repository, "worktree", "add", "--quiet", "-b", branch, str(path))
        self.settle(path)
        return path

    @staticmethod
    def settle(path):
        """As if nobody had touched it for days; a worktree touched just now counts as in use."""
        os.utime(path, (1_700_000_000, 1_700_000_000))
        os.utime(os.path.join(path, ".git"), (1_700_000_000, 1_700_000_000))

    def verdicts(self, *words, **options):
        """The verdict of each worktree by its path."""
        worktrees = self.drive("inspect", *words, **options).result["worktrees"]
        return {worktree["path"]: worktree["safety"] for worktree in worktrees}

    def picture_of(self, folder):
        """Everything that an observer of a tree could see changed: kinds, modes, times, contents, link targets."""
        picture = {}
        for directory, folders, files in os.walk(os.fsencode(folder)):
            for name in [b".", *folders, *files]:
                path = os.path.join(directory, name)
                facts = os.lstat(path)
                content = b""
                if os.path.islink(path):
                    content = os.readlink(path)
                elif os.path.isfile(path):
                    with open(path, "rb") as file:
                        content = hashlib.sha256(file.read()).digest()
                picture[path] = (facts.st_mode, facts.st_ino, facts.st_size, facts.st_mtime_ns, content)
        return picture


def main():
    if DRIVER is None:
        sys.exit("usage: test_....py DRIVER [TEST...]")
    del sys.argv[1]
    unittest.main()
