"""The account of a world over its whole life. It only grows: what somebody replaces or deletes while a cleanup stands still is
struck off and put down to that deed, everything else has to be found in the end, as of the last state in which it was seen.
What the program does between two looks strikes nothing off."""

import os
from dataclasses import dataclass, field

import account as accounts
import neighbours

BEGINNING = (0, 0)


@dataclass
class Entry:
    item: accounts.Item
    since: tuple            # the moment from which on it was there
    by: str = ""            # the deed that made it; empty: it was there, or the program or a hook made it


@dataclass
class Screen:
    """What a person saw before they started a cleanup."""
    moment: tuple
    event: dict


@dataclass
class Ledger:
    world: object
    entries: dict = field(default_factory=dict)     # version -> Entry
    staged: dict = field(default_factory=dict)      # (path, identity) -> since
    commits: dict = field(default_factory=dict)     # reachable from HEAD at some time, and not taken away by a deed -> since
    remembered: set = field(default_factory=set)
    own_references: dict = field(default_factory=dict)
    own_commits: dict = field(default_factory=dict)
    orphaned: dict = field(default_factory=dict)    # commits that a deed left without a reference -> moment
    stashes: dict = field(default_factory=dict)
    heads: set = field(default_factory=set)
    first_seen: dict = field(default_factory=dict)  # path -> moment
    folders: dict = field(default_factory=dict)     # that git listed as ignored -> moment
    seen: dict = field(default_factory=dict)        # path -> identities that it ever had
    removed: set = field(default_factory=set)       # other worktrees that a deed cleaned
    expected: dict = field(default_factory=dict)    # of the neighbours
    complaints: list = field(default_factory=list)  # what the program did to the neighbours
    touched: dict = field(default_factory=dict)     # (section, key) -> moment of the last deed that changed it
    screens: list = field(default_factory=list)
    attempts: int = 0
    head: str = ""                                  # as last seen
    branch: str = ""                                # that HEAD names, as last seen
    was_detached: bool = False                      # HEAD was on no branch at some time
    began_removal: bool = False                     # in any attempt
    first_remote_tips: set = field(default_factory=set)

    @classmethod
    def begin(cls, world):
        ledger = cls(world, expected=neighbours.look(world))
        ledger.add(accounts.take(world), BEGINNING, "")
        for hub in world.hubs:
            ledger.first_remote_tips |= set((accounts.references(world, hub) or {}).values())
        return ledger

    def look(self, moment, allowed):
        """What the program has done by now. Returns the present state."""
        found = neighbours.look(self.world)
        for difference in list(neighbours.differences(self.expected, found)):
            section, key, old, new = difference
            if key is None and section[1] in self.removed:
                continue
            if not allowed(section, key, old, new):
                self.complaints.append(f"{named(section, key)} was {old!r}, is {new!r}")
            if key is not None:
                neighbours.put(self.expected[section], key, new)
        present = None
        if os.path.isdir(self.world.worktree):
            present = accounts.take(self.world)
            self.add(present, just_before(moment), "")
        return found, present

    def around(self, deed, name, moment, allowed):
        """Carries out a deed and puts down to it what it changed."""
        found, before = self.look(moment, allowed)
        deed()
        after = neighbours.look(self.world)
        neighbours.follow(self.expected, found, after)
        keys = neighbours.touched(found, after)
        self.touched.update(dict.fromkeys(keys, moment))
        self.touch_commits(found, keys, moment)
        if before is None or not os.path.isdir(self.world.worktree):
            return
        now = accounts.take(self.world)
        self.strike(before, now, moment)
        self.add(now, moment, name)

    def touch_commits(self, before, keys, moment):
        """Commits that nothing holds any more since a deed moved or deleted references are as they are since that moment."""
        held = set()
        for (kind, place), name in keys:
            old = (before.get((kind, place)) or {}).get(name)
            if kind == "references" and old:
                held |= accounts.shas(self.world.git(place, "rev-list", old, "--", check=False)) & self.commits.keys()
        for repository in [self.world.project, *self.world.hubs] if held else []:
            held -= accounts.shas(self.world.git(repository, "rev-list", "--all", check=False))
        for commit in held:
            self.commits[commit] = self.orphaned[commit] = moment

    def strike(self, before, now, moment):
        for version in before.versions - now.versions:
            self.entries.pop(version, None)
        for pair in before.staged - now.staged:
            self.staged.pop(pair, None)
        if now.is_readable:
            for commit in before.commits - now.commits:
                self.commits.pop(commit, None)
            for commit in before.remembered - now.remembered - now.commits:
                self.remembered.discard(commit)
        for commit in before.stashes - now.stashes:
            self.stashes.pop(commit, None)
        for commit in before.own_commits - now.own_commits:
            self.own_commits.pop(commit, None)
        for name in before.own_references.keys() - now.own_references.keys():
            self.own_references.pop(name, None)
        if before.head != now.head:
            self.touched["checkout", self.world.worktree] = moment

    def add(self, account, moment, by):
        for item in account.files.values():
            self.entries.setdefault(item.version, Entry(item, moment, by))
            self.first_seen.setdefault(item.path, moment)
            self.seen.setdefault(item.path, set()).add(item.identity)
            if item.kind == "link":
                self.follow_link(item)
        for folder in account.ignored_folders:
            self.folders.setdefault(folder, moment)
        for pair in account.staged:
            self.staged.setdefault(pair, moment)
        for commit in account.commits:
            self.commits.setdefault(commit, moment)
        self.remembered |= account.remembered - self.commits.keys()
        for commit in account.own_commits:
            self.own_commits.setdefault(commit, moment)
        self.own_references.update(account.own_references)
        for commit in account.stashes:
            self.stashes.setdefault(commit, moment)
        self.heads.add(account.head)
        self.head = account.head
        self.branch = account.branch
        self.was_detached |= not account.branch

    def follow_link(self, item):
        """The vault keeps what a link leads to."""
        found = accounts.content_of(os.path.realpath(self.world.path(item.path)))
        if found:
            self.seen[item.path].add(accounts.blob(found[1], self.world.algorithm))

    def pending(self):
        return list(self.entries.values())

    def shown_after(self, moment):
        """The screens that could tell of what was there from this moment on."""
        return [screen for screen in self.screens if screen.moment > moment]

    def is_in_reviewed_folder(self, path):
        last = max((screen.moment for screen in self.screens), default=BEGINNING)
        return any(path.startswith(folder) and moment < last for folder, moment in self.folders.items())


def just_before(moment):
    """What is seen where the program stands still was there already when it came there."""
    return moment[0], moment[1] - 1


def named(section, key):
    kind, place = section
    if key is None:
        return f"{kind} of {os.fsdecode(place)}"
    return f"{key if isinstance(key, str) else repr(key)} of {os.path.basename(os.fsdecode(place))} ({kind})"
