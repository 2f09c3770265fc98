"""What somebody may do around a worktree between any two steps: to its Git file, to its ignore rules, to what keeps its commits,
and to what lies at its place."""

import os

import features_hidden
from deeds import branch_of, deed, run_git, write


@deed
def ignore_what_is_new(world, run):
    """What was untracked is ignored from now on."""
    place = world.project / ".git" / "info"
    place.mkdir(exist_ok=True)
    with (place / "exclude").open("ab") as file:
        file.write(b"new.txt\nlate.txt\nlib/\n")


@deed
def ignore_in_the_worktree(world, run):
    if os.path.isdir(world.worktree):
        with open(world.path(b".gitignore"), "ab") as file:
            file.write(b"new.txt\nlate.txt\n")


@deed
def hide_secret(world, run):
    """It is away for a while."""
    os.rename(world.path(b".env"), os.path.join(os.fsencode(world.base), b"env-set-aside"))


@deed
def show_secret(world, run):
    aside = os.path.join(os.fsencode(world.base), b"env-set-aside")
    if os.path.isdir(world.worktree):
        os.rename(aside, world.path(b".env"))


@deed
def drop_and_prune(world, run):
    """The remote's branches go, and the copies of them here."""
    if "remote_is_itself" in world.features:
        return
    output = world.git(world.hubs[0], "for-each-ref", "--format=%(refname)", "refs/heads", check=False) or b""
    for name in output.decode().split():
        if name not in ("refs/heads/main", "refs/heads/" + branch_of(run)):
            world.git(world.hubs[0], "update-ref", "-d", name, check=False)
    world.git(world.project, "fetch", "--quiet", "--prune", world.remote, check=False)


@deed
def delete_branch(world, run):
    """The branch that held the commits, while the worktree is elsewhere."""
    world.git(world.project, "update-ref", "-d", "refs/heads/feature", check=False)


@deed
def make_branch_of_others(world, run):
    """A branch of the name, with commits that are not the worktree's."""
    tree = world.git(world.project, "rev-parse", "main^{tree}", check=False)
    if tree:
        commit = world.git(world.project, "commit-tree", "-p", "main", "-m", "Of others", tree.decode().strip(), check=False)
        world.git(world.project, "update-ref", "refs/heads/" + branch_of(run), (commit or b"").decode().strip(), check=False)


@deed
def make_branch_ahead(world, run):
    """A branch of the name, which holds what the worktree has and more."""
    head = world.inside("rev-parse", "--verify", "--quiet", "HEAD")
    tree = world.inside("rev-parse", "--verify", "--quiet", "HEAD^{tree}")
    if head and tree:
        commit = world.inside("commit-tree", "-p", head.decode().strip(), "-m", "On top", tree.decode().strip())
        world.git(world.project, "update-ref", "refs/heads/" + branch_of(run), (commit or b"").decode().strip(), check=False)


@deed
def branch_in_use_elsewhere(world, run):
    """The branch of the name is checked out in another worktree."""
    world.git(world.project, "worktree", "add", "--quiet", "-b", branch_of(run), str(world.base / "elsewhere"), check=False)


@deed
def lose_git_file(world, run):
    os.unlink(world.path(b".git"))
    run.may_lead_astray()


@deed
def become_another_clone(world, run):
    os.rename(world.worktree, os.path.join(os.fsencode(world.base), b"set-aside"))
    features_hidden.put_other_project(world)
    run.may_lead_astray()


@deed
def replace_git_directory(world, run):
    """The Git file names the Git directory of another worktree."""
    twin = world.base / "twin"
    if not twin.exists():
        world.git(world.project, "worktree", "add", "--quiet", "-b", "twin", str(twin), check=False)
    content = (twin / ".git").read_bytes()
    if os.path.isdir(world.worktree):
        with open(world.path(b".git"), "rb") as file:
            before = file.read()
        with open(world.path(b".git"), "wb") as file:
            file.write(content)
        world.undo.append(lambda: os.path.isdir(world.worktree) and write(world, b".git", before))
        run.may_lead_astray()


@deed
def own_commit_aside(world, run):
    """A commit that only a reference of the worktree alone holds."""
    tree = world.inside("rev-parse", "--verify", "--quiet", "HEAD^{tree}")
    if tree:
        commit = world.inside("commit-tree", "-p", "HEAD", "-m", "Aside", tree.decode().strip())
        run_git(world, "update-ref", "refs/worktree/aside", (commit or b"").decode().strip())


@deed
def start_bisecting(world, run):
    run_git(world, "bisect", "start", "HEAD", "HEAD~1")


@deed
def add_secret_below(world, run):
    write(world, b"logs/late/late.key", b"late secret\n")


@deed
def add_empty_folder_of_secrets(world, run):
    if os.path.isdir(world.worktree):
        os.makedirs(world.path(b".env.late/in"), exist_ok=True)


@deed
def add_pipe(world, run):
    os.mkfifo(world.path(b"late-pipe.key"))


@deed
def add_of_another_case(world, run):
    world.configure("core.ignoreCase", "true")
    write(world, b"readme.md", b"of another case\n")


@deed
def add_rebuildable(world, run):
    write(world, b"node_modules/late/index.js", b"late\n")


@deed
def make_executable(world, run):
    path = world.path(b"kept.txt")
    if os.path.isfile(path) and not os.path.islink(path):
        os.chmod(path, 0o755)


@deed
def edit_main_checkout(world, run):
    (world.project / "kept.txt").write_bytes(b"edited in the main checkout meanwhile\n")


@deed
def work_within_build_output(world, run):
    """Somebody commits in a repository that a build fetched."""
    for place in (b"build/_deps/lib-src", b"node_modules/lib"):
        if os.path.isdir(world.path(place + b"/.git")):
            world.git(os.fsdecode(world.path(place)), "commit", "--quiet", "--allow-empty", "--message", "Meanwhile", check=False)
            world.precious.add(place + b"/")
