"""The account of every byte that a person has in a world, and where each of them is later."""

import hashlib
import os
import stat
from collections import Counter
from dataclasses import dataclass, field


def blob(content, algorithm):
    return hashlib.new(algorithm, b"blob %d\0" % len(content) + content).hexdigest()


def split(output, separator=b"\0"):
    return [part for part in (output or b"").split(separator) if part]


@dataclass(frozen=True)
class Item:
    """One file as it stands in the worktree."""
    path: bytes
    kind: str      # file or link
    identity: str  # as git would name the content
    size: int
    standing: str  # tracked, untracked or ignored


@dataclass
class Account:
    files: dict = field(default_factory=dict)      # path -> Item
    staged: list = field(default_factory=list)     # (path, identity) that only the index holds
    head: str = ""
    commits: set = field(default_factory=set)      # reachable from HEAD
    remembered: set = field(default_factory=set)   # reachable from nothing but HEAD's own log
    own_references: dict = field(default_factory=dict)  # of this worktree alone
    stashes: list = field(default_factory=list)
    references: dict = field(default_factory=dict)      # of the repository
    remote_references: dict = field(default_factory=dict)
    operation: bool = False

    @property
    def bytes(self):
        return sum(item.size for item in self.files.values())


def walk(root):
    """Every file and link below, by its path relative to the root; the worktree's own Git file aside."""
    stack = [b""]
    while stack:
        folder = stack.pop()
        try:
            entries = list(os.scandir(os.path.join(root, folder)))
        except (FileNotFoundError, NotADirectoryError):
            continue
        for entry in entries:
            relative = os.path.join(folder, entry.name)
            if entry.is_dir(follow_symlinks=False):
                stack.append(relative)
            elif relative != b".git":
                yield relative, entry.path


def content_of(path):
    """(kind, bytes); None for what holds no bytes or is gone."""
    try:
        mode = os.lstat(path).st_mode
        if stat.S_ISLNK(mode):
            return "link", os.readlink(path)
        if stat.S_ISREG(mode):
            with open(path, "rb") as file:
                return "file", file.read()
    except (FileNotFoundError, NotADirectoryError):
        pass
    return None


def references(world, repository):
    output = world.git(repository, "for-each-ref", "--format=%(refname) %(objectname)", check=False)
    return dict(line.decode(errors="surrogateescape").split(" ") for line in split(output, b"\n"))


def shas(output):
    return set((output or b"").decode().split())


def staged(world):
    """{(path, identity)} of the index, submodules aside."""
    pairs = set()
    for line in split(world.here("ls-files", "-z", "--stage", check=False)):
        facts, path = line.split(b"\t", 1)
        mode, identity, _ = facts.decode().split()
        if mode != "160000":
            pairs.add((path, identity))
    return pairs


def take(world):
    """What there is now. The worktree must be there."""
    account = Account()
    algorithm = "sha256" if world.object_format == "sha256" else "sha1"
    index = {}
    for path, identity in staged(world):
        index.setdefault(path, []).append(identity)
    ignored = set(split(world.here("ls-files", "-z", "--others", "--ignored", "--exclude-standard", check=False)))
    inside = tuple(path for path in ignored if path.endswith(b"/"))
    for path, place in walk(world.worktree):
        if path.startswith(world.stores_at):
            continue  # not a person's
        found = content_of(place)
        if found is None:
            continue
        kind, content = found
        is_ignored = path in ignored or path.startswith(inside)
        standing = "tracked" if path in index else "ignored" if is_ignored else "untracked"
        account.files[path] = Item(path, kind, blob(content, algorithm), len(content), standing)

    account.head = (world.here("rev-parse", "--verify", "--quiet", "HEAD", check=False) or b"").decode().strip()
    if account.head:
        account.commits = shas(world.here("rev-list", "HEAD", "--"))
        tree = tree_of(world, world.worktree, account.head)
        account.remembered = shas(world.here("rev-list", "--walk-reflogs", "HEAD", "--", check=False)) - account.commits
    else:
        tree = set()
    for path, identities in index.items():
        present = account.files.get(path)
        for identity in identities:
            if (path, identity) not in tree and not (present and present.identity == identity):
                account.staged.append((path, identity))
    account.stashes = sorted(shas(world.git(world.project, "rev-list", "--walk-reflogs", "refs/stash", "--", check=False)))
    take_references(world, account)
    everything = references(world, world.worktree)
    account.own_references = {name: sha for name, sha in everything.items() if name not in account.references}
    return account


def take_references(world, account):
    account.references = references(world, world.project)
    account.remote_references = {str(hub): references(world, hub) for hub in world.hubs}


def tree_of(world, repository, commit):
    """{(path, identity)} of a commit."""
    pairs = set()
    for line in split(world.git(repository, "ls-tree", "-r", "-z", "--full-tree", commit, check=False)):
        facts, path = line.split(b"\t", 1)
        pairs.add((path, facts.decode().split()[2]))
    return pairs


@dataclass
class Whereabouts:
    """Where the work can be had from after a run, apart from the worktree itself."""
    remote_commits: set
    local_commits: set      # by a branch, a tag or the stash
    tracking_commits: set   # by nothing but a copy of a remote's branch
    remote_files: set       # (path, identity)
    local_files: set
    tracking_files: set
    vault: set              # (path, identity)


def look_around(world, account, index_of_vault, preserved):
    candidates = {account.head, preserved} - {"", None}
    remote_commits, remote_tips = set(), {}
    for hub in world.hubs:
        found = references(world, hub)
        remote_commits |= shas(world.git(hub, "rev-list", "--all", check=False)) if found else set()
        remote_tips |= {sha: hub for sha in found.values()}
    own = references(world, world.project)
    local = ["--branches", "--tags", "--glob=refs/stash"]
    local_commits = shas(world.git(world.project, "rev-list", *local, check=False))
    local_commits |= shas(world.git(world.project, "rev-list", "--walk-reflogs", "refs/stash", "--", check=False))
    tracking_commits = shas(world.git(world.project, "rev-list", "--remotes", check=False))
    candidates |= {sha for name, sha in own.items() if name.startswith("refs/heads/")}

    files = {"remote": set(), "local": set(), "tracking": set()}
    for commit in candidates | set(remote_tips):
        if commit in remote_commits:
            files["remote"] |= tree_of(world, remote_tips.get(commit) or holder(world, commit), commit)
        elif commit in local_commits:
            files["local"] |= tree_of(world, world.project, commit)
        elif commit in tracking_commits and commit == account.head:
            files["tracking"] |= tree_of(world, world.project, commit)
    algorithm = "sha256" if world.object_format == "sha256" else "sha1"
    vault = set()
    for entry in index_of_vault:
        found = content_of(entry["storedPath"])
        if found and found[0] == "file" and entry["originalWorktreePath"] == world.worktree:
            vault.add((entry["relativePath"], blob(found[1], algorithm)))
    return Whereabouts(remote_commits, local_commits, tracking_commits, files["remote"], files["local"], files["tracking"],
                       vault)


def holder(world, commit):
    for hub in world.hubs:
        if world.git(hub, "cat-file", "-e", commit, check=False) is not None:
            return hub
    return world.hub


@dataclass
class Verdict:
    fates: Counter = field(default_factory=Counter)     # fate -> items
    amounts: Counter = field(default_factory=Counter)   # fate -> bytes
    losses: list = field(default_factory=list)

    def note(self, fate, size=0):
        self.fates[fate] += 1
        self.amounts[fate] += size
