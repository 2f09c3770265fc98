"""Where the work can be had from after a run, apart from the worktree itself."""

import os
import stat
from collections import Counter
from dataclasses import dataclass, field

from account import blob, content_of, references, shas, tree_of

MODES = {("file", False): "100644", ("file", True): "100755", ("link", False): "120000"}


@dataclass
class Whereabouts:
    remote_commits: set
    local_commits: set      # by a branch, a tag or the stash
    tracking_commits: set   # by nothing but a copy of a remote's branch
    remote_files: set       # (path, identity, mode)
    local_files: set
    tracking_files: set
    vault: set              # (path, identity)
    remote_tips: set
    branches: dict          # of the repository, and its tags

    def holds(self, files, item, identity):
        """Whether such a version of the item is among these files of commits."""
        return (item.path, identity, MODES[item.kind, item.executable]) in files

    def holds_bytes(self, files, item):
        """The same without the executable bit."""
        return any((item.path, item.identity, mode) in files for mode in MODES.values())


def look_around(world, heads, index_of_vault, preserved):
    """`heads` are commits at which the worktree stood; `preserved` is the one that the receipt names."""
    remote_commits, remote_tips = set(), {}
    for hub in world.hubs:
        found = references(world, hub)
        remote_commits |= shas(world.git(hub, "rev-list", "--all", check=False)) if found else set()
        remote_tips |= {sha: hub for sha in (found or {}).values()}
    own = references(world, world.project) or {}
    local = ["--branches", "--tags", "--glob=refs/stash"]
    local_commits = shas(world.git(world.project, "rev-list", *local, check=False))
    local_commits |= shas(world.git(world.project, "rev-list", "--walk-reflogs", "refs/stash", "--", check=False))
    tracking_commits = shas(world.git(world.project, "rev-list", "--remotes", check=False))
    candidates = {*heads, preserved} - {"", None}
    candidates |= {sha for name, sha in own.items() if name.startswith("refs/heads/")}

    files = {"remote": set(), "local": set(), "tracking": set()}
    for commit in candidates | set(remote_tips):
        if commit in remote_commits:
            files["remote"] |= tree_of(world, remote_tips.get(commit) or holder(world, commit), commit)
        elif commit in local_commits:
            files["local"] |= tree_of(world, world.project, commit)
        elif commit in tracking_commits and commit in heads:
            files["tracking"] |= tree_of(world, world.project, commit)
    vault = set()
    for entry in index_of_vault:
        found = content_of(entry["storedPath"])
        if found and found[0] == "file" and entry["originalWorktreePath"] in world.places:
            vault.add((entry["relativePath"], blob(found[1], world.algorithm)))
    return Whereabouts(remote_commits, local_commits, tracking_commits, files["remote"], files["local"], files["tracking"],
                       vault, set(remote_tips), own)


def holder(world, commit):
    for hub in world.hubs:
        if world.git(hub, "cat-file", "-e", commit, check=False) is not None:
            return hub
    return world.hub


def open_to_others(world):
    """What of our own others than the person may read or enter, and what has another mode than it should."""
    found = []
    for folder, folders, files in os.walk(os.fsencode(world.support / "Recovery")):
        for name in [b"", *files]:
            path = os.path.join(folder, name) if name else folder
            mode = stat.S_IMODE(os.lstat(path).st_mode)
            if mode != (0o600 if name else 0o700):
                found.append((path, oct(mode)))
    for name in ("recovery-vault.json", "cleanup-receipts.json"):
        path = world.support / name
        if path.exists() and stat.S_IMODE(path.stat().st_mode) & 0o077:
            found.append((os.fsencode(path), oct(stat.S_IMODE(path.stat().st_mode))))
    return found


@dataclass
class Verdict:
    fates: Counter = field(default_factory=Counter)     # fate -> items
    amounts: Counter = field(default_factory=Counter)   # fate -> bytes
    losses: list = field(default_factory=list)

    def note(self, fate, size=0):
        self.fates[fate] += 1
        self.amounts[fate] += size
