"""One attempt at a cleanup: starts the worker, steps in where it stands still, kills it when told to, and keeps what it
said."""

import ctypes
import json
import os
import select
import signal
import subprocess
import time
from dataclasses import dataclass, field

import account as accounts

LIMIT = 240  # seconds for one attempt; on an idle machine none takes a hundredth of it
NOBODY = 65534
LIES = ("rubbish", "empty", "truncated")
SCRIPT = """#!/bin/sh
case $FAULT_KIND in
fail) echo "fatal: it was made to fail" >&2; exit 128 ;;
failAfter) "$FAULT_PROGRAM" "$@"; echo "fatal: it was made to fail afterwards" >&2; exit 1 ;;
hang) exec sleep 30 ;;
hangAfter) "$FAULT_PROGRAM" "$@"; exec sleep 30 ;;
killed) kill -KILL $$ ;;
killedAfter) "$FAULT_PROGRAM" "$@"; kill -KILL $$ ;;
killedDuring) "$FAULT_PROGRAM" "$@" & child=$!; sleep 0.002; kill -KILL $child; wait $child; kill -KILL $$ ;;
rubbish) printf '\\001\\377rubbish\\n\\0 more\\trubbish\\n'; exit 0 ;;
rubbishAfter) "$FAULT_PROGRAM" "$@" >/dev/null; printf 'rubbish\\0\\377\\n'; exit 0 ;;
empty) exit 0 ;;
emptyAfter) "$FAULT_PROGRAM" "$@" >/dev/null 2>&1; exit 0 ;;
truncatedAfter) "$FAULT_PROGRAM" "$@" | head -c 20; exit 0 ;;
esac
"""
KINDS = ["fail", "failAfter", "hang", "hangAfter", "killed", "killedAfter", "killedDuring", "rubbish", "rubbishAfter",
         "empty", "emptyAfter", "truncatedAfter"]


def adopt_orphans():
    """Children that a killed worker leaves become ours, so that the world stands still when they have ended."""
    ctypes.CDLL(None, use_errno=True).prctl(36, 1, 0, 0, 0)


def children_of(process):
    found = []
    for name in os.listdir("/proc"):
        if name.isdigit():
            try:
                with open(f"/proc/{name}/stat", "rb") as file:
                    parent = int(file.read().rpartition(b")")[2].split()[1])
            except (OSError, IndexError, ValueError):
                continue
            if parent == process:
                found.append(int(name))
    return found


def descendants_of(process):
    found = children_of(process)
    for child in list(found):
        found += descendants_of(child)
    return found


def end_orphans(patience):
    """Waits for what a killed worker left behind, and ends what takes longer than `patience` seconds."""
    until = time.monotonic() + patience
    while True:
        try:
            process, _ = os.waitpid(-1, os.WNOHANG)
        except ChildProcessError:
            return
        if process == 0:
            if time.monotonic() > until:
                for child in descendants_of(os.getpid()):
                    try:
                        os.kill(child, signal.SIGKILL)
                    except ProcessLookupError:
                        pass
            time.sleep(0.002)


@dataclass
class Stop:
    """Where the driver steps in: at the checkpoint of this number, or the first whose name begins so."""
    where: object
    deed: object = None     # a function of the world and the run
    jump: int = 0           # seconds that the clock jumps by
    kill: str = ""          # "program", or "everything": with all of its children
    delay: float = 0.0      # seconds between going on and the kill; negative: killed where it stands


@dataclass
class Run:
    world: object
    account: object
    events: list = field(default_factory=list)
    review: dict = None
    receipt: dict = None
    status: int = 0
    log: str = ""
    killed: bool = False
    timed_out: bool = False
    deeds: list = field(default_factory=list)
    began_removal: bool = False
    removal_ended: bool = False
    removal_in_doubt: bool = False  # something stepped in during or after the removal
    remote_acts_late: bool = False
    liar: bool = False
    lied_about_remotes: bool = False  # that a remote's branch holds HEAD
    last_moment: bool = False  # somebody acted between the last look and the removal
    head_unknown: bool = False  # git did not say what it had committed
    vault_is_damaged: bool = False
    must_store: bool = True
    may_move: set = field(default_factory=set)
    seen: dict = field(default_factory=dict)

    def contents_seen(self, path):
        return self.seen.get(path, set())

    def remember(self, account):
        self.account = account
        for path, item in account.files.items():
            self.seen.setdefault(path, set()).add(item.identity)
            if item.kind == "link":
                found = accounts.content_of(os.path.realpath(self.world.path(path)))
                if found:
                    algorithm = "sha256" if self.world.object_format == "sha256" else "sha1"
                    self.seen[path].add(accounts.blob(found[1], algorithm))


def words_for(world, program, stops, faults):
    words = [program, b"repository=" + os.fsencode(world.project), b"worktree=" + world.worktree,
             f"data={world.home / 'data'}", f"config={world.home / 'config'}", "git=/usr/bin/git",
             f"ahead={world.ahead}", f"gh={world.home / 'bin' / 'gh'}", f"script={world.home / 'bin' / 'fault'}"]
    words += [f"{name}={value}" for name, value in world.options.items()]
    words += [f"limit={line}:{limit}" for line, limit in world.limits]
    words += [f"fault={number}:{kind}" for number, kind in faults.items()]
    for stop in stops:
        words.append(f"pause={stop.where}" if isinstance(stop.where, int) else f"pause-at={stop.where}")
    return words


def attempt(world, program, account, stops=(), faults=None):
    """Runs it to its end, or to its kill, and until every child of it has ended."""
    run = Run(world, account)
    run.remember(account)
    faults = faults or {}
    script = world.home / "bin" / "fault"
    if faults and not script.exists():
        script.write_text(SCRIPT)
        script.chmod(0o755)
    identity = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if world.as_nobody else {}
    variables = dict(world.environment, **world.extra_environment)
    with open(world.base / "log", "wb") as log:
        process = subprocess.Popen(words_for(world, program, stops, faults), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=log, env=variables, cwd=world.base, **identity)
        try:
            follow(run, process, list(stops))
        finally:
            if process.poll() is None:
                process.kill()
            run.status = process.wait()
            process.stdout.close()
            try:
                process.stdin.close()
            except BrokenPipeError:
                pass
    end_orphans(patience=0.5 if run.killed else 5)
    run.log = (world.base / "log").read_text(errors="replace")
    while world.undo:
        world.undo.pop()()
    note_faults(run, faults)
    return run


def follow(run, process, stops):
    deadline = time.monotonic() + LIMIT
    pending = b""
    descriptor = process.stdout.fileno()
    while True:
        ready, _, _ = select.select([descriptor], [], [], max(0.0, deadline - time.monotonic()))
        if not ready:
            run.timed_out = True
            return
        block = os.read(descriptor, 65536)
        if not block:
            return
        *lines, pending = (pending + block).split(b"\n")
        for line in lines:
            if heed(run, process, json.loads(line), stops):
                return


def heed(run, process, event, stops):
    """True when the worker was killed."""
    run.events.append(event)
    kind = event["event"]
    if kind == "review":
        run.review = event
    elif kind == "receipt":
        run.receipt = event["receipt"]
    elif kind in ("point", "stop"):
        name = event["name"]
        run.began_removal |= name.startswith("before git worktree remove")
        run.removal_ended |= name.startswith("after git worktree remove")
        if kind == "stop":
            stop = next(stop for stop in stops if stop.where == event["number"] or
                        isinstance(stop.where, str) and name.startswith(stop.where))
            stops.remove(stop)
            return step_in(run, process, stop, name)
    return False


def step_in(run, process, stop, name):
    if stop.deed:
        run.deeds.append((getattr(stop.deed, "__name__", "deed"), name))
        if run.began_removal:
            run.removal_in_doubt = run.remote_acts_late = True
        stop.deed(run.world, run)
        if os.path.lexists(run.world.path(b".git")):
            run.remember(accounts.take(run.world))
        else:
            accounts.take_references(run.world, run.account)
    if stop.kill and stop.delay < 0:
        return kill(run, process, stop.kill)
    answer = f"jump {stop.jump}\n" if stop.jump else ""
    process.stdin.write((answer + "go\n").encode())
    process.stdin.flush()
    if stop.kill:
        time.sleep(stop.delay)
        return kill(run, process, stop.kill)
    return False


def kill(run, process, what):
    run.killed = True
    if what == "everything":
        process.send_signal(signal.SIGSTOP)
        for child in descendants_of(process.pid):
            try:
                os.kill(child, signal.SIGKILL)
            except ProcessLookupError:
                pass
    process.kill()
    for line in process.stdout.read().splitlines():  # what it had said by then
        try:
            event = json.loads(line)
        except ValueError:
            break
        run.events.append(event)
        if event["event"] == "receipt":
            run.receipt = event["receipt"]
        run.began_removal |= event.get("name", "").startswith("before git worktree remove")
        run.removal_ended |= event.get("name", "").startswith("after git worktree remove")
    run.began_removal |= run.removal_ended
    return True


def commands_of(run):
    """The commands that were begun, in order, each with the phase that it belongs to."""
    names = [event["name"] for event in run.events if event["event"] in ("point", "stop")]
    return [name for name in names if name.removeprefix("review ").startswith(("before git ", "before gh "))]


def note_faults(run, faults):
    """Which commands were faulty, by their lines; one that lies about its success is told apart."""
    begun = commands_of(run)
    removal = next((number for number, line in enumerate(begun, 1) if "git worktree remove" in line), len(begun) + 1)
    for number, kind in faults.items():
        if number > len(begun):
            continue
        line = begun[number - 1]
        run.deeds.append((kind, line))
        run.liar |= kind.startswith(LIES)
        run.lied_about_remotes |= kind.startswith(LIES) and "git branch -r --contains" in line
        run.head_unknown |= "rev-parse HEAD" in line
        run.removal_in_doubt |= number >= removal
