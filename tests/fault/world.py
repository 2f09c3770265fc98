"""A world for one run: a remote, a project cloned from it, a linked worktree, a second clone, and a private home. Copied
from a template that is made once in a process, since making it anew would take longer than the cleanup itself."""

import copy
import os
import shutil
import subprocess
import tempfile
from pathlib import Path

import disks

IGNORED = b"""*.env
.env*
*.key
*.local
node_modules/
build/
logs/
secrets/
scratch
scratch-*
"""
TRACKED = {b"README.md": b"read me\n", b"src/a.txt": b"a as committed\n", b"src/b.txt": b"b as committed\n",
           b"src/deep/c.txt": b"c as committed\n", b"kept.txt": b"kept as committed\n", b"tool.sh": b"#!/bin/sh\n"}
SHORTCUTS = {"core.fsync": "none", "gc.auto": "0", "maintenance.auto": "false", "advice.detachedHead": "false"}
GH = """#!/bin/sh
case "$1 $2" in
"--version "*) echo "gh version 2.23.0 (2023-02-27)" ;;
"auth status") echo "code.example"; echo "  - Logged in to code.example as robin" ;;
"repo view") echo '{"defaultBranchRef":{"name":"main"}}' ;;
"pr create") echo "https://code.example/robin/project/pull/7" ;;
"pr list") echo '[]' ;;
*) exit 1 ;;
esac
"""
SAFE = {"status.showUntrackedFiles": "all", "core.fsmonitor": "false", "core.untrackedCache": "false"}


def places():
    """Where worlds are kept: in memory when there is room, since a run is mostly small files."""
    memory = Path("/dev/shm")
    if memory.is_dir() and os.access(memory, os.W_OK) and shutil.disk_usage(memory).free > 1 << 28:
        return memory
    return Path(tempfile.gettempdir())


def environment(home):
    variables = {"HOME": str(home), "PATH": "/usr/bin:/bin", "LC_ALL": "C.UTF-8", "TZ": "UTC", "GIT_CONFIG_NOSYSTEM": "1",
                 "GIT_AUTHOR_NAME": "Robin", "GIT_AUTHOR_EMAIL": "robin@example.invalid", "GIT_COMMITTER_NAME": "Robin",
                 "GIT_COMMITTER_EMAIL": "robin@example.invalid", "TMPDIR": str(home / "tmp"), "GIT_EDITOR": "true"}
    for name in ("ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "LLVM_PROFILE_FILE"):
        if name in os.environ:
            variables[name] = os.environ[name]
    settings = {"protocol.file.allow": "always", "safe.directory": "*", "init.defaultBranch": "main"}
    variables["GIT_CONFIG_COUNT"] = str(len(settings))
    for number, (key, value) in enumerate(settings.items()):
        variables[f"GIT_CONFIG_KEY_{number}"] = key
        variables[f"GIT_CONFIG_VALUE_{number}"] = value
    return variables


class GitFailed(Exception):
    pass


class World:
    """Paths are bytes wherever a person's file names may stand in them."""

    def __init__(self, base):
        self.base = Path(base)
        self.home = self.base / "home"
        self.hub = self.base / "hub.git"
        self.other = self.base / "other"
        self.project = self.base / "project"
        self.worktree = os.fsencode(self.base / "feature")
        self.admin = os.fsencode(self.project / ".git" / "worktrees" / "feature")  # the worktree's own Git directory
        self.places = {self.worktree}   # where it ever lay
        self.object_format = "sha1"
        self.extra_environment = {}
        self.trees = {}                 # what commits hold, which does not change
        self.environment = environment(self.home)
        self.remote = "origin"
        self.stores_at = b"\0"  # where our own files lie in the worktree; nowhere
        self.hubs = [self.hub]  # every bare repository that may hold work
        self.features = []
        self.refusing = False   # something in it stops a cleanup for a good reason
        self.changed_by_hooks = set()  # paths
        self.moved_by_hooks = {}       # path -> the ignored path that its file gets
        self.waits_before_trying_again = 60  # seconds
        self.at = None          # seconds since 1970 at which the program's clock stands still
        self.changed_unseen = set()    # paths whose change git itself cannot see
        self.filtered = False   # what git stores is not what the file holds
        self.options = {"untracked": "yes", "sensitive": "yes", "nested": "yes", "draft": "no"}
        self.ahead = 3600       # seconds that the program's clock is ahead, so that nothing counts as just touched
        self.precious = set()   # beginnings of paths below which somebody works, whatever git thinks of them
        self.late = []          # what is done when all else is furnished, since it hides the worktree from git
        self.companions = set()  # other worktrees that are cleaned at the same time
        self.limits = []        # (beginning of a command's line, milliseconds)
        self.undo = []          # what makes an attempt's end checkable, such as giving back what was taken away
        self.mounted = []
        self.as_nobody = False
        self.may_lose_receipt = False  # where it is kept cannot be written to

    @property
    def support(self):
        return self.home / "data" / "Cairnfield"

    def git(self, where, *words, check=True, stdin=None):
        if not check and not os.path.isdir(where):
            return None
        done = subprocess.run(["git", *words], cwd=where, env=self.environment, input=stdin, capture_output=True,
                              stdin=subprocess.DEVNULL if stdin is None else None)
        if check and done.returncode != 0:
            raise GitFailed(f"git {words} in {where!r}: {done.stderr!r}")
        return done.stdout if done.returncode == 0 else None

    def here(self, *words, **options):
        return self.git(self.worktree, *words, **options)

    def inside(self, *words):
        """The same by the worktree's own Git directory, whatever its Git file says by now."""
        lead = ["--git-dir", os.fsdecode(self.admin), "--work-tree", os.fsdecode(self.worktree)]
        return self.git(self.worktree, *lead, *words, check=False)

    def move(self, place):
        """The worktree is somewhere else from now on."""
        self.worktree = place
        self.places.add(place)

    def beside(self, name, home=None):
        """The same world as seen from another worktree of the project, perhaps with a home of its own."""
        other = copy.copy(self)
        other.worktree = os.fsencode(self.base / name)
        other.admin = os.fsencode(self.project / ".git" / "worktrees" / name)
        other.places = {other.worktree}
        other.options = dict(self.options)
        other.stores_at = b"\0"
        for sort in ("changed_by_hooks", "changed_unseen", "precious", "companions"):
            setattr(other, sort, set())
        other.features, other.undo, other.late, other.moved_by_hooks = [], [], [], {}
        if home:
            other.home = self.base / home
            shutil.copytree(self.home, other.home, symlinks=True, ignore=shutil.ignore_patterns("data", "config"))
            other.environment = {**self.environment, "HOME": str(other.home), "TMPDIR": str(other.home / "tmp")}
        return other

    @property
    def algorithm(self):
        return "sha256" if self.object_format == "sha256" else "sha1"

    @property
    def content_of_ignore(self):
        with open(self.path(b".gitignore"), "rb") as file:
            return file.read()

    def setting(self, key):
        return (self.git(self.project, "config", key, check=False) or b"").decode().strip()

    def path(self, name):
        return os.path.join(self.worktree, name)

    def write(self, name, content, mode=None):
        path = self.path(name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "wb") as file:
            file.write(content)
        if mode is not None:
            os.chmod(path, mode)

    def commit(self, message="More", *words):
        self.here("commit", "--quiet", "--no-verify", "--no-gpg-sign", "--message", message, *words)

    def hook(self, name, script, repository=None):
        folder = Path(repository or self.project / ".git") / "hooks"
        folder.mkdir(exist_ok=True)
        (folder / name).write_text("#!/bin/sh\n" + script + "\n")
        (folder / name).chmod(0o755)

    def configure(self, key, value):
        self.git(self.project, "config", key, value)

    def own_git_directory(self):
        text = Path(os.fsdecode(self.path(b".git"))).read_bytes()
        return text.removeprefix(b"gitdir: ").rstrip(b"\n")

    def second_clone(self):
        if not self.other.exists():
            self.git(self.base, "clone", "--quiet", "--template=", str(self.hub), str(self.other))
        return self.other

    def remove(self):
        disks.unmount(self)
        for folder, folders, _ in os.walk(os.fsencode(self.base)):
            for name in folders:
                path = os.path.join(folder, name)
                if not os.path.islink(path):
                    os.chmod(path, 0o700)
        shutil.rmtree(self.base)


class Template:
    """Made once, copied for each run; three files in it name absolute paths."""

    def __init__(self, base, object_format="sha1"):
        self.base = Path(base) / f"template-{object_format}"
        world = World(self.base)
        world.base.mkdir(parents=True)
        (world.home / "tmp").mkdir(parents=True)
        new = ["--quiet", "--template=", f"--object-format={object_format}"]
        world.git(world.base, "init", *new, "--bare", str(world.hub))
        world.git(world.base, "init", *new, str(world.project))
        world.git(world.project, "remote", "add", "origin", str(world.hub))
        for repository in (world.project, world.hub):
            for key, value in SHORTCUTS.items():
                world.git(repository, "config", key, value)
        for name, content in {**TRACKED, b".gitignore": IGNORED}.items():
            path = os.path.join(os.fsencode(world.project), name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            Path(os.fsdecode(path)).write_bytes(content)
        world.git(world.project, "add", ".")
        world.git(world.project, "commit", "--quiet", "--message", "Begin")
        world.git(world.project, "commit", "--quiet", "--allow-empty", "--message", "Second")
        world.git(world.project, "push", "--quiet", "--set-upstream", "origin", "main")
        world.git(world.project, "remote", "set-head", "origin", "main")
        world.git(world.project, "worktree", "add", "--quiet", "-b", "feature", str(self.base / "feature"))
        (world.home / "bin").mkdir()
        (world.home / "bin" / "gh").write_text(GH)
        (world.home / "bin" / "gh").chmod(0o755)
        self.naming = [p for p in ("feature/.git", "project/.git/config", "project/.git/worktrees/feature/gitdir")]

    def copy(self, base):
        shutil.copytree(self.base, base, symlinks=True)
        for name in self.naming:
            file = Path(base) / name
            file.write_text(file.read_text().replace(str(self.base) + "/", str(base) + "/"))
        return World(base)
