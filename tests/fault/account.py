"""One look at a worktree: every byte, commit and reference that a person has in it at that moment."""

import hashlib
import os
import stat
from dataclasses import dataclass, field


def blob(content, algorithm):
    return hashlib.new(algorithm, b"blob %d\0" % len(content) + content).hexdigest()


def split(output, separator=b"\0"):
    return [part for part in (output or b"").split(separator) if part]


@dataclass(frozen=True)
class Item:
    """One version of one file as it stands in the worktree."""
    path: bytes
    kind: str          # file or link
    identity: str      # as git would name the bytes as they are
    executable: bool
    size: int
    standing: str      # tracked, untracked or ignored
    stored: str = ""   # as git would name them after its conversions, where these change something

    @property
    def version(self):
        return self.path, self.kind, self.identity, self.executable

    def __str__(self):
        return f"{self.standing} {'executable ' if self.executable else ''}{self.kind} {self.path!r}"


@dataclass
class Account:
    files: dict = field(default_factory=dict)      # path -> Item
    staged: set = field(default_factory=set)       # (path, identity) that only the index holds
    head: str = ""
    branch: str = ""                               # its reference; empty: HEAD is detached
    commits: set = field(default_factory=set)      # reachable from HEAD
    remembered: set = field(default_factory=set)   # reachable from nothing but HEAD's own log
    own_references: dict = field(default_factory=dict)  # of this worktree alone
    own_commits: set = field(default_factory=set)  # that these hold, and HEAD does not
    ignored_folders: set = field(default_factory=set)  # that git lists, each with a slash
    stashes: set = field(default_factory=set)
    is_readable: bool = True                       # git knows HEAD and the index

    @property
    def versions(self):
        return {item.version for item in self.files.values()}


def walk(root, without=()):
    """Every file and link below, by its path relative to the root; the worktree's own Git file aside, and whole folders by
    their paths."""
    stack = [b""]
    while stack:
        folder = stack.pop()
        try:
            entries = list(os.scandir(os.path.join(root, folder)))
        except (FileNotFoundError, NotADirectoryError, PermissionError):
            continue
        for entry in entries:
            relative = os.path.join(folder, entry.name)
            if entry.is_dir(follow_symlinks=False):
                if entry.path not in without:
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
    except (FileNotFoundError, NotADirectoryError, PermissionError):
        pass
    return None


def is_executable(path):
    try:
        mode = os.lstat(path).st_mode
    except OSError:
        return False
    return stat.S_ISREG(mode) and mode & 0o100 != 0


def version_at(world, path):
    """What lies at a path of the worktree now, in the form of Item.version; None when that is nothing."""
    place = world.path(path)
    found = content_of(place)
    return found and (path, found[0], blob(found[1], world.algorithm), is_executable(place))


def references(world, repository):
    """None when git cannot tell."""
    output = world.git(repository, "for-each-ref", "--format=%(refname) %(objectname)", check=False)
    if output is None:
        return None
    return dict(line.decode(errors="surrogateescape").split(" ") for line in split(output, b"\n"))


def shas(output):
    return set((output or b"").decode().split())


def staged(world):
    """{(path, identity)} of the index, submodules aside."""
    pairs = set()
    for line in split(world.inside("ls-files", "-z", "--stage")):
        facts, path = line.split(b"\t", 1)
        mode, identity, _ = facts.decode().split()
        if mode != "160000":
            pairs.add((path, identity))
    return pairs


def ignored_paths(world):
    """As a review sees them: whole folders end in a slash."""
    question = ["status", "--porcelain", "-z", "--untracked-files=all", "--ignored=matching"]
    output = world.inside("--no-optional-locks", *question)
    return {record[3:] for record in split(output) if record.startswith(b"!! ")}


def take(world):
    """What there is now. The worktree's folder must be there."""
    account = Account()
    index = {}
    for path, identity in staged(world):
        index.setdefault(path, set()).add(identity)
    ignored = ignored_paths(world)
    inside = tuple(path for path in ignored if path.endswith(b"/"))
    account.ignored_folders = set(inside)
    for path, place in walk(world.worktree):
        if path.startswith(world.stores_at):
            continue  # not a person's
        found = content_of(place)
        if found is None:
            continue
        kind, content = found
        is_ignored = path in ignored or path.startswith(inside)
        standing = "tracked" if path in index else "ignored" if is_ignored else "untracked"
        account.files[path] = Item(path, kind, blob(content, world.algorithm), is_executable(place), len(content), standing,
                                   stored_as(world, path) if world.filtered and kind == "file" and not is_ignored else "")
    take_history(world, account)
    tree = {(path, identity) for path, identity, _ in tree_of(world, world.project, account.head)} if account.head else set()
    for path, identities in index.items():
        present = account.files.get(path)
        for identity in identities:
            if (path, identity) not in tree and not (present and identity in (present.identity, present.stored)):
                account.staged.add((path, identity))
    return account


def stored_as(world, path):
    """The name that git's conversions by this path give to the content; empty when they fail."""
    output = world.inside("hash-object", "--", os.fsdecode(path))
    return (output or b"").decode().strip()


def take_history(world, account):
    head = world.inside("rev-parse", "--verify", "--quiet", "HEAD")
    account.head = (head or b"").decode().strip()
    account.branch = (world.inside("symbolic-ref", "--quiet", "HEAD") or b"").decode(errors="surrogateescape").strip()
    account.is_readable = bool(account.branch or account.head)
    if account.head:
        account.commits = shas(world.inside("rev-list", "HEAD", "--"))
        account.remembered = shas(world.inside("rev-list", "--walk-reflogs", "HEAD", "--")) - account.commits
    account.stashes = shas(world.git(world.project, "rev-list", "--walk-reflogs", "refs/stash", "--", check=False))
    common = references(world, world.project) or {}
    everything = references_inside(world)
    account.own_references = {name: sha for name, sha in everything.items() if name not in common}
    if account.own_references:
        account.own_commits = shas(world.inside("rev-list", *account.own_references.values(), "--")) - account.commits


def references_inside(world):
    output = world.inside("for-each-ref", "--format=%(refname) %(objectname)")
    return dict(line.decode(errors="surrogateescape").split(" ") for line in split(output, b"\n"))


def tree_of(world, repository, commit):
    """{(path, identity, mode)} of a commit."""
    known = world.trees.get(commit)
    if known is None:
        known = set()
        for line in split(world.git(repository, "ls-tree", "-r", "-z", "--full-tree", commit, check=False)):
            facts, path = line.split(b"\t", 1)
            mode, _, identity = facts.decode().split()
            known.add((path, identity, mode))
        if known:
            world.trees[commit] = known
    return known
