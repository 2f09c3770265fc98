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

import ledger as ledgers
import permissions

WORKERS = set()  # processes that run now: one may be started while another one stands still
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
    """Waits for what a killed worker left behind, and ends what takes longer than `patience` seconds"""
    until = time.monotonic() + patience
    while True:
        left = children_of(os.getpid())
        if not left:
            return
        for child in left:
            try:
                os.waitpid(child, os.WNOHANG)
            except ChildProcessError:
                pass
        if time.monotonic() > until:
            for child in left + [other for child in left for other in descendants_of(child)]:
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
    then: object = None     # a function that is called once the run goes on
    jump: int = 0           # seconds that the clock jumps by
    kill: str = ""          # "program", or "everything": with all of its children
    delay: float = 0.0      # seconds between going on and the kill; negative: killed where it stands


@dataclass
class Run:
    world: object
    ledger: object
    number: int = 0          # of the attempt
    branch: str = ""         # at which the worktree stood before it
    events: list = field(default_factory=list)
    review: dict = None
    screen: dict = None
    blocked: str = None      # why the sheet did not offer to begin
    receipt: dict = None
    status: int = 0
    log: str = ""
    killed: bool = False
    timed_out: bool = False
    deeds: list = field(default_factory=list)
    faulty: list = field(default_factory=list)   # (kind, line) of commands that went wrong
    liar: bool = False
    lied_about_remotes: bool = False  # that a remote's branch holds HEAD
    head_unknown: bool = False  # git did not say what it had committed
    damaged: set = field(default_factory=set)    # copies in the vault
    must_store: bool = True
    may_move: dict = field(default_factory=dict)  # references and heads that deeds led git to -> moment of the deed

    @property
    def moment(self):
        return self.number, len(self.events)

    def reached(self, beginning):
        """The moment of the first checkpoint of the cleanup itself whose name begins so; None when it was not reached."""
        return next((moment for moment, name in self.points() if name.startswith(beginning)), None)

    def last_reached(self, beginning):
        return next((moment for moment, name in reversed(list(self.points())) if name.startswith(beginning)), None)

    def points(self):
        for number, event in enumerate(self.events, 1):
            if event["event"] in ("point", "stop"):
                yield (self.number, number), event["name"]

    @property
    def began_removal(self):
        return self.reached("before git worktree remove") is not None or self.removal_ended

    @property
    def removal_ended(self):
        return self.reached("after git worktree remove") is not None

    def may(self, *keys):
        """Git was led somewhere else by a deed: these may move from now on."""
        for key in keys:
            self.may_move.setdefault(key, self.moment)

    def may_lead_astray(self):
        """Git works in the main checkout, or in another clone, from now on."""
        places = [("references", "refs/heads/main"), ("references", "refs/heads/twin")]
        self.may(*(key for _, key in places), *(("checkout", key) for key in ("HEAD", "branch", "index")))

    def allows(self, section, key, old, new):
        return permissions.allows(self, section, key, old, new)


def words_for(world, program, stops, faults):
    words = [program, b"repository=" + os.fsencode(world.project), b"worktree=" + world.worktree,
             f"data={world.home / 'data'}", f"config={world.home / 'config'}", "git=/usr/bin/git",
             f"ahead={world.ahead}" if world.at is None else f"at={world.at}",
             f"gh={world.home / 'bin' / 'gh'}", f"script={world.home / 'bin' / 'fault'}"]
    words += [f"{name}={value}" for name, value in world.options.items()]
    words += [f"limit={line}:{limit}" for line, limit in world.limits]
    words += [f"fault={which}:{kind}" if isinstance(which, int) else f"fault-at={which}:{kind}" for which, kind in faults.items()]
    for stop in stops:
        words.append(f"pause={stop.where}" if isinstance(stop.where, int) else f"pause-at={stop.where}")
    return words


def attempt(world, program, ledger, stops=(), faults=None):
    """Runs it to its end, or to its kill, and until every child of it has ended."""
    ledger.attempts += 1
    run = Run(world, ledger, ledger.attempts, branch=ledger.branch)
    faults = faults or {}
    script = world.home / "bin" / "fault"
    if faults and not script.exists():
        script.write_text(SCRIPT)
        script.chmod(0o755)
    identity = {"user": NOBODY, "group": NOBODY, "extra_groups": []} if world.as_nobody else {}
    variables = dict(world.environment, **world.extra_environment)
    log_file = world.base / f"log-{os.path.basename(os.fsdecode(world.admin))}"
    with open(log_file, "wb") as log:
        process = subprocess.Popen(words_for(world, program, stops, faults), stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                   stderr=log, env=variables, cwd=world.base, **identity)
        WORKERS.add(process.pid)
        try:
            follow(run, process, list(stops))
        finally:
            if process.poll() is None:
                process.kill()
            run.status = process.wait()
            WORKERS.discard(process.pid)
            process.stdout.close()
            try:
                process.stdin.close()
            except BrokenPipeError:
                pass
    if not WORKERS:
        end_orphans(patience=0.5 if run.killed else 5)
    run.log = log_file.read_text(errors="replace")
    while world.undo:
        world.undo.pop()()
    note_faults(run, faults)
    ledger.began_removal |= run.began_removal
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
    note(run, event)
    if event["event"] == "stop":
        name = event["name"]
        stop = next(stop for stop in stops if stop.where == event["number"] or
                    isinstance(stop.where, str) and name.startswith(stop.where))
        stops.remove(stop)
        return step_in(run, process, stop, name)
    return False


def note(run, event):
    run.events.append(event)
    kind = event["event"]
    if kind == "review":
        run.review = event
    elif kind == "screen":
        run.screen = event
        run.ledger.screens.append(ledgers.Screen(run.moment, event))
    elif kind == "blocked":
        run.blocked = event["reason"]
    elif kind == "receipt":
        run.receipt = event["receipt"]


def step_in(run, process, stop, name):
    if stop.deed:
        title = getattr(stop.deed, "__name__", "deed")
        run.deeds.append((title, name))
        run.ledger.around(lambda: stop.deed(run.world, run), title, run.moment, run.allows)
    if stop.kill and stop.delay < 0:
        return kill(run, process, stop.kill)
    answer = f"jump {stop.jump}\n" if stop.jump else ""
    process.stdin.write((answer + "go\n").encode())
    process.stdin.flush()
    if stop.then:
        stop.then()
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
        note(run, event)
    return True


def commands_of(run):
    """The commands that were begun, in order, each with the phase that it belongs to."""
    names = [event["name"] for event in run.events if event["event"] in ("point", "stop")]
    return [name for name in names if name.removeprefix("review ").startswith(("before git ", "before gh "))]


def note_faults(run, faults):
    """Which commands were faulty, by their lines; one that lies about its success is told apart."""
    begun = commands_of(run)
    for which, kind in faults.items():
        if isinstance(which, int):
            line = begun[which - 1] if which <= len(begun) else None
        else:
            line = next((line for line in begun if line.replace("before ", "", 1).startswith(which)), None)
        if line is None:
            continue
        run.deeds.append((kind, line))
        run.faulty.append((kind, line))
        run.liar |= kind.startswith(LIES)
        run.lied_about_remotes |= kind.startswith(LIES) and "git branch -r --contains" in line
        run.head_unknown |= "rev-parse HEAD" in line
