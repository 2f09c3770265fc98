#!/ usr / bin / python3
"""An evening with the program, in short: evening.py PROGRAM DRIVER OUTPUT [--minutes N]

Runs the program on the demonstration's repositories under a virtual display, in a home that is a small volume of its own,
with a notification server and a status host, while things happen: files come and go, commits are made, worktrees are added
and removed, the volume fills up and is emptied again, the server and the host restart. Every minute it notes what the
program takes. It ends with a table and with pictures in OUTPUT, and fails when the program ended or did not end in time.

Needs to be root, for the volume. Nothing outside OUTPUT and the volume is touched.
"""

import argparse
import json
import os
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

VOLUME_BYTES = 3 << 30
TOOLS = Path(__file__).resolve().parents[2] / "tools"


class Evening:
    def __init__(self, words):
        self.words = words
        self.output = Path(words.output)
        self.output.mkdir(parents=True, exist_ok=True)
        self.place = Path(tempfile.mkdtemp(prefix="cairnfield-evening-"))
        self.home = self.place / "home"
        self.processes = {}
        self.samples = []
        self.random = random.Random(20)
        self.made = 0

    # Beginning and end

    def begin(self):
        self.home.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={VOLUME_BYTES},mode=700", "evening", self.home], check=True)
        runtime = self.place / "runtime"
        runtime.mkdir(mode=0o700)
        os.environ.update({
            "HOME": str(self.home), "XDG_DATA_HOME": str(self.home / ".local/share"), "LC_ALL": "C.UTF-8",
            "XDG_CONFIG_HOME": str(self.home / ".config"), "XDG_CACHE_HOME": str(self.home / ".cache"),
            "XDG_RUNTIME_DIR": str(runtime), "GIT_CONFIG_NOSYSTEM": "1", "QT_QUICK_BACKEND": "software"})
        subprocess.run(["python3", TOOLS / "make_demo.py", self.home], check=True)
        self.start("bus", ["dbus-daemon", "--session", "--nofork", f"--address=unix:path={runtime}/bus"])
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={runtime}/bus"
        self.wait(lambda: (runtime / "bus").exists())
        self.start_display()
        self.start("monitor", ["dbus-monitor", "interface='org.freedesktop.Notifications',member='Notify'"])
        self.start("server", ["dunst"])
        self.start("host", ["/usr/bin/python3", Path(__file__).with_name("status_host.py")])
        subprocess.run([self.words.driver, "--set", "notificationsEnabled=true", "--set", "rescanIntervalMinutes=5",
                        "add", self.home / "Projects", self.home / "Work"], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.start("program", [self.words.program])

    def start_display(self):
        read, write = os.pipe()
        self.start("display", ["Xvfb", "-noreset", "-displayfd", str(write), "-screen", "0", "1280x800x24", "-nolisten", "tcp"],
                   pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as answer:
            os.environ["DISPLAY"] = ":" + answer.readline().strip()

    def start(self, name, command, **options):
        log = open(self.output / f"{name}.log", "a", encoding="utf-8")
        self.processes[name] = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=log, stderr=log, **options)

    def restart(self, name):
        process = self.processes[name]
        process.kill()
        process.wait()
        self.start(name, process.args)

    @staticmethod
    def wait(condition, patience=30):
        end = time.monotonic() + patience
        while not condition():
            if time.monotonic() > end:
                sys.exit("gave up waiting")
            time.sleep(0.05)

    def end(self):
        for name in reversed(list(self.processes)):
            process = self.processes[name]
            if process.poll() is None:
                process.send_signal(signal.SIGTERM)
                try:
                    process.wait(5)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        subprocess.run(["umount", self.home], check=False)
        shutil.rmtree(self.place, ignore_errors=True)

    # What happens

    def change_something(self):
        checkouts = [path.parent for path in self.home.glob("Projects/*/.git")] + [path.parent for path in self.home.glob("Work/*/.git")]
        checkout = self.random.choice(sorted(checkouts))
        kind = self.random.choice(["write", "write", "burst", "rename", "commit", "add", "remove"])
        self.made += 1
        try:
            getattr(self, kind)(checkout)
        except OSError as error:  # a full volume is part of the evening
            print(f"{kind}: {error}", flush=True)

    def git(self, checkout, *words):
        subprocess.run(["git", *words], cwd=checkout, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       stdin=subprocess.DEVNULL)

    def write(self, checkout):
        (checkout / f"note-{self.made}.txt").write_text("something\n" * self.random.randrange(1, 2000))

    def burst(self, checkout):
        folder = checkout / "build" / f"batch-{self.made}"
        folder.mkdir(parents=True)
        for number in range(500):
            (folder / f"{number}.o").write_bytes(b"x" * 512)

    def rename(self, checkout):
        batches = sorted(checkout.glob("build/batch-*"))
        if batches:
            batches[0].rename(batches[0].with_name(f"moved-{self.made}"))

    def remove(self, checkout):
        for folder in sorted(checkout.glob("build/*"))[:2]:
            if folder.is_dir():
                shutil.rmtree(folder)

    def commit(self, checkout):
        self.write(checkout)
        self.git(checkout, "add", "--all")
        self.git(checkout, "commit", "--quiet", "--message", f"Change {self.made}")

    def add(self, checkout):
        self.git(checkout, "worktree", "add", "--quiet", "-b", f"evening-{self.made}", f"../{checkout.name}-{self.made}")

    def fill(self, fraction_left):
        """Leaves this fraction of the volume free."""
        filler = self.home / "filler"
        filler.unlink(missing_ok=True)
        facts = os.statvfs(self.home)
        free = facts.f_bavail * facts.f_frsize
        size = int(free - facts.f_blocks * facts.f_frsize * fraction_left)
        if size > 0:
            with open(filler, "wb") as file:
                os.posix_fallocate(file.fileno(), 0, size)

    # What is noted

    def sample(self, minute):
        process = self.processes["program"].pid
        if self.processes["program"].poll() is not None:
            sys.exit(f"the program ended with {self.processes['program'].returncode}")
        status = Path(f"/proc/{process}/status").read_text()
        value = lambda key: int(re.search(rf"^{key}:\s+(\d+)", status, re.MULTILINE)[1])
        fields = Path(f"/proc/{process}/stat").read_text().rsplit(")", 1)[1].split()
        ticks = os.sysconf("SC_CLK_TCK")
        facts = os.statvfs(self.home)
        self.samples.append({
            "minute": minute, "residentKB": value("VmRSS"), "peakKB": value("VmHWM"), "threads": value("Threads"),
            "descriptors": len(os.listdir(f"/proc/{process}/fd")), "ownProcessorSeconds": (int(fields[11]) + int(fields[12])) / ticks,
            "childProcessorSeconds": (int(fields[13]) + int(fields[14])) / ticks,
            "freeMB": facts.f_bavail * facts.f_frsize >> 20, "notifications": len(self.notifications()), "changes": self.made})
        print(self.samples[-1], flush=True)

    def notifications(self):
        log = (self.output / "monitor.log").read_text(errors="replace")
        return re.findall(r"member=Notify\b", log)

    def picture(self, name):
        subprocess.run(["import", "-silent", "-window", "root", self.output / f"{name}.png"], check=False)

    # The evening

    def run(self):
        minutes = self.words.minutes
        plan = {  # by the share of the evening that has passed
            0.15: lambda: self.fill(0.15), 0.40: lambda: self.fill(0.05), 0.50: lambda: self.restart("server"),
            0.55: lambda: self.restart("host"), 0.60: lambda: self.fill(0.60), 0.80: lambda: self.fill(0.15)}
        begin = time.monotonic()
        noted = -1
        while (passed := time.monotonic() - begin) < minutes * 60:
            for share in [share for share in plan if passed >= share * minutes * 60]:
                plan.pop(share)()
                print(f"{passed / 60:.1f} min: step {share}", flush=True)
            if int(passed / 60) > noted:
                noted = int(passed / 60)
                self.sample(noted)
                self.picture(f"minute-{noted:02}")
            self.change_something()
            time.sleep(self.random.uniform(3, 12))
        self.sample(minutes)
        self.picture("end")
        asked = time.monotonic()
        self.processes["program"].send_signal(signal.SIGTERM)
        status = self.processes["program"].wait(10)
        result = {"samples": self.samples, "exitStatus": status, "secondsToEnd": time.monotonic() - asked}
        (self.output / "evening.json").write_text(json.dumps(result, indent=2) + "\n")
        print(json.dumps({key: result[key] for key in ("exitStatus", "secondsToEnd")}))
        return status


def main():
    words = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    for name in ("program", "driver", "output"):
        words.add_argument(name)
    words.add_argument("--minutes", type=float, default=30)
    evening = Evening(words.parse_args())
    try:
        evening.begin()
        status = evening.run()
    finally:
        evening.end()
    sys.exit(status)


if __name__ == "__main__":
    main()
