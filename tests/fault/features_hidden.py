"""Work that git does not show by itself: names that it takes for others, what is ignored while being tracked, references of one
worktree alone, secrets far below the top, repositories within build output."""

import os

from features import feature
from features_work import some_bytes


@feature(refusing=True)
def name_of_another_case(w, rng):
    """Git was told that the disk does not tell cases apart, as a copied repository says."""
    w.configure("core.ignoreCase", "true")
    w.write(rng.choice([b"readme.md", b"Readme.MD", b"SRC/a.txt", b"src/A.txt"]), some_bytes(rng))


@feature(refusing=True)
def own_reference_with_commit(w, rng):
    """A commit that nothing but a reference of the worktree alone holds."""
    tree = w.here("rev-parse", "HEAD^{tree}").decode().strip()
    commit = w.here("commit-tree", "-p", "HEAD", "-m", "Held by the worktree alone", tree).decode().strip()
    w.here("update-ref", rng.choice(["refs/worktree/only", "refs/bisect/good-x"]), commit)


@feature()
def secrets_of_packages(w, rng):
    """As in a repository with many packages."""
    for name in (b"src/api/.env", b"src/web/.env.local", b"logs/old/server.pem"):
        w.write(name, some_bytes(rng))


@feature()
def folder_of_secrets(w, rng):
    w.write(b"secrets/token", some_bytes(rng))
    w.write(b"secrets/deep/key.pem", some_bytes(rng))


@feature()
def secrets_without_end(w, rng):
    """More than a screen names."""
    for number in range(rng.choice([199, 201, 230])):
        w.write(b"logs/%03d.key" % number, b"%d\n" % number)


@feature()
def secret_that_is_empty_folder(w, rng):
    os.makedirs(w.path(rng.choice([b".env.d", b"empty.key/in"])))


@feature()
def secret_that_is_a_pipe(w, rng):
    os.mkfifo(w.path(b"pipe.key"))
    w.refusing = True


@feature()
def secret_link_to_nowhere(w, rng):
    os.symlink(b"../nowhere/at-all", w.path(b"dangling.key"))


@feature()
def secret_link_to_folder(w, rng):
    os.symlink(rng.choice([b"src", b"../project"]), w.path(b"folder.key"))


@feature()
def secret_with_holes(w, rng):
    w.write(b"sparse.key", b"begin")
    os.truncate(w.path(b"sparse.key"), rng.choice([4096, 300_000]))


@feature()
def tracked_in_ignored_folder(w, rng):
    """Committed build output that was edited: `git add` takes it and complains."""
    w.write(b"build/committed.js", b"as committed\n")
    w.here("add", "--force", "build/committed.js")
    w.commit("Commit build output")
    w.write(b"build/committed.js", b"edited " + some_bytes(rng))
    w.write(b"build/more.js", some_bytes(rng))


@feature()
def forgotten_and_ignored(w, rng):
    """No more tracked, and ignored from now on."""
    w.write(b".gitignore", b"src/b.txt\n" + w.content_of_ignore)
    w.here("rm", "--quiet", "--cached", "src/b.txt")


@feature()
def removed_folder_staged(w, rng):
    w.here("rm", "--quiet", "-r", "src")


@feature()
def most_files_missing(w, rng):
    for name in (b"README.md", b"src/a.txt", b"src/b.txt", b"src/deep/c.txt", b"kept.txt"):
        if os.path.lexists(w.path(name)) and not os.path.isdir(w.path(name)):
            os.unlink(w.path(name))


# Repositories within build output.

def clone_within(w, place):
    """A repository of somebody else's, fetched by a build."""
    source = w.base / "library"
    if not source.exists():
        w.git(w.base, "init", "--quiet", "--template=", str(source))
        (source / "lib.c").write_text("int library;\n")
        w.git(source, "add", "lib.c")
        w.git(source, "commit", "--quiet", "--message", "Library")
    os.makedirs(os.path.dirname(w.path(place)), exist_ok=True)
    w.git(w.base, "clone", "--quiet", "--template=", str(source), os.fsdecode(w.path(place)))
    return os.fsdecode(w.path(place))


@feature("within")
def build_dependency(w, rng):
    clone_within(w, rng.choice([b"build/_deps/lib-src", b"node_modules/lib"]))


@feature("within", refusing=True)
def build_dependency_with_work(w, rng):
    """Somebody works in it."""
    place = rng.choice([b"build/_deps/lib-src", b"node_modules/lib"])
    inner = clone_within(w, place)
    shape = rng.randrange(5)
    if shape == 0:
        w.write(place + b"/lib.c", b"int changed;" + some_bytes(rng))
    elif shape == 1:
        w.git(inner, "commit", "--quiet", "--allow-empty", "--message", "Own work")
    elif shape == 2:
        w.git(inner, "branch", "own")
        w.git(inner, "switch", "--quiet", "own")
        w.git(inner, "commit", "--quiet", "--allow-empty", "--message", "On an own branch")
        w.git(inner, "switch", "--quiet", "-")
    elif shape == 3:
        w.write(place + b"/lib.c", b"int stashed;" + some_bytes(rng))
        w.git(inner, "stash", "push", "--quiet")
    else:
        w.write(place + b"/lib.c", b"int staged;" + some_bytes(rng))
        w.git(inner, "add", "lib.c")
    w.precious.add(place + b"/")


# Where the worktree lies, and whether its Git file says so.

@feature("place", refusing=True)
def without_git_file(w, rng):
    """Inside the main checkout, so that git answers for that one."""
    target = os.path.join(os.fsencode(w.project), b"nested")
    w.git(w.project, "worktree", "move", os.fsdecode(w.worktree), os.fsdecode(target))
    w.move(target)
    w.late.append(lambda: os.unlink(w.path(b".git")))


@feature("place", refusing=True)
def git_file_of_another(w, rng):
    """The Git file names another worktree of the same repository."""
    w.git(w.project, "worktree", "add", "--quiet", "-b", "twin", str(w.base / "twin"))
    twin = (w.base / "twin" / ".git").read_bytes()

    def mix_up():
        with open(w.path(b".git"), "wb") as file:
            file.write(twin)
    w.late.append(mix_up)


@feature("place", refusing=True)
def replaced_by_another_clone(w, rng):
    """Another project lies where the worktree was."""
    def replace():
        os.rename(w.worktree, os.path.join(os.fsencode(w.base), b"set-aside"))
        put_other_project(w)
    w.late.append(replace)


def put_other_project(w):
    """A clone of another project, with work in it, at the place of the worktree."""
    hub, source = w.base / "theirs.git", os.fsdecode(w.worktree)
    if not hub.exists():
        w.git(w.base, "init", "--quiet", "--template=", "--bare", str(hub))
    w.git(w.base, "clone", "--quiet", "--template=", str(hub), source)
    w.git(source, "commit", "--quiet", "--allow-empty", "--message", "Theirs")
    w.git(source, "push", "--quiet", "origin", "HEAD")
    w.write(b"their-work.txt", b"not committed\n")


# Hooks that change what is tracked.

@feature("hook", refusing=True)
def hook_untracks_ignored(w, rng):
    w.write(b"src/made.local", b"ignored and tracked\n")
    w.here("add", "--force", "src/made.local")
    w.commit("Track what is ignored")
    w.write(b"src/made.local", b"edited " + some_bytes(rng))
    w.hook("pre-commit", "git ls-files -z --cached --ignored --exclude-standard | xargs -0 -r git rm --quiet --cached --")


@feature("hook", refusing=True)
def hook_drops_large_files(w, rng):
    """And has git ignore them from then on."""
    w.write(b"big.bin", rng.randbytes(3000))
    w.hook("pre-commit", "git rm --quiet --cached big.bin && echo big.bin >>.gitignore && git add .gitignore")
    w.changed_by_hooks.add(b".gitignore")


@feature("hook", refusing=True)
def hook_moves_files_away(w, rng):
    w.write(b"draft.txt", some_bytes(rng))
    w.hook("pre-commit", "git rm --quiet --cached draft.txt && mkdir -p logs && mv draft.txt logs/draft.txt")
    w.moved_by_hooks[b"draft.txt"] = b"logs/draft.txt"


@feature("hook", refusing=True)
def hook_takes_back(w, rng):
    w.write(b"taken-back.txt", some_bytes(rng))
    w.hook("pre-commit", "git reset --quiet -- taken-back.txt src/a.txt 2>/dev/null; exit 0")


@feature("hook", refusing=True)
def hook_excludes(w, rng):
    """After the commit, what is left is ignored."""
    w.write(b"left.txt", some_bytes(rng))
    w.hook("pre-commit", "git rm --quiet --cached left.txt; echo left.txt >>$(git rev-parse --git-common-dir)/info/exclude")
    (w.project / ".git" / "info").mkdir(exist_ok=True)
