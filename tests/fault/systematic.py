"""Runs that leave nothing to chance: every stage killed, every command at fault, every feature and every deed once, full disks
and missing rights, and each thing that docs/guarantees.md names as going."""

import os
import random
import time

import attempt as attempts
import deeds
import disks
import features
import scenario
import several

MOST_COMMANDS = 60  # more than the standard cleanup has
STANDARD = ["edit", "untracked", "secret", "build_output", "commits_ahead", "stashes"]


def standard(workshop, name, names=STANDARD, draft="yes"):
    world = workshop.world(name)
    world.options["draft"] = draft
    scenario.furnish(world, names, random.Random(name))
    return world


def run(workshop, world, name, kind, stops=(), faults=None):
    return scenario.carry_out(workshop, world, name, kind, list(stops), faults or {})


def untouched(workshop):
    """Nothing goes wrong: the cleanup has to succeed, or all of this proves nothing."""
    result = run(workshop, standard(workshop, "untouched"), "untouched", "plain")
    expect_success(result)
    return result


def expect_success(result):
    receipt = result.runs[-1].receipt or {}
    if receipt.get("outcome") != "succeeded":
        result.stuck.append(f"should have succeeded: {scenario.reason_of(result.runs[-1])}")


def kills(workshop):
    for stage in scenario.STAGES[:-1]:
        for what in ("program", "everything"):
            for delay in (-1.0, 0.003):
                name = f"kill-{stage}-{what}-{'at' if delay < 0 else 'after'}"
                stop = attempts.Stop("stage " + stage, kill=what, delay=delay)
                yield run(workshop, standard(workshop, name), name, "kill", [stop])


def commands(workshop):
    """How many commands the standard cleanup has."""
    result = run(workshop, standard(workshop, "counting"), "counting", "plain")
    return len(attempts.commands_of(result.runs[0]))


def faults(workshop):
    """Every command in turn, each in another way."""
    for number in range(1, commands(workshop) + 1):
        yield from faults_of(workshop, number, [attempts.KINDS[number % len(attempts.KINDS)]])


def faults_of(workshop, number, kinds):
    for kind in kinds:
        name = f"fault-{number}-{kind}"
        yield run(workshop, standard(workshop, name), name, "fault", faults={number: kind})


def each_feature(workshop, part=0, parts=1):
    """Alone, beside one edited file. What has no good reason to stop a cleanup must not stop it."""
    for item in list(features.ALL.values())[part::parts]:
        name = "feature-" + item.name
        world = standard(workshop, name, [item.name] if item.name.startswith(("edit", "unborn")) else ["edit", item.name], "no")
        result = run(workshop, world, name, "plain")
        if not world.refusing:
            expect_success(result)
        yield result


def each_deed(workshop, part=0, parts=1):
    """Each deed at a late step and at one that changes from deed to deed."""
    for number, name in list(enumerate(deeds.ALL))[part::parts]:
        for step in ("after git push", scenario.STEPS[number % len(scenario.STEPS)]):
            title = f"deed-{name}-{step.replace(' ', '-')}"
            stop = attempts.Stop(step, deed=deeds.ALL[name])
            yield run(workshop, standard(workshop, title), title, "deeds", [stop])


MOVES = ["commit_nothing", "detach_and_commit", "drop_and_prune", "make_branch_of_others", "amend", "switch_back", "reset_back",
         "make_branch_ahead", "own_commit_aside"]


def each_step_of_detached(workshop):
    """Somebody steps in at every step while HEAD is on no branch, each time in another way."""
    for number, step in enumerate(scenario.STEPS):
        deed = deeds.ALL[MOVES[number % len(MOVES)]]
        title = f"detached-{number}-{deed.__name__}"
        names = [scenario.DETACHED[1 + number % 3], *(["edit", "secret"] if number % 4 else ["secret"])]
        yield run(workshop, standard(workshop, title, names, "no"), title, "deeds", [attempts.Stop(step, deed=deed)])


def same_seconds(workshop):
    """What went wrong is tried again within the second in which it was reviewed."""
    for names in (["detached_with_commits"], ["commits_ahead"], ["remote_forgets", "detached_with_commits"]):
        for name in ("commit_nothing", "detach_and_commit", "make_branch_of_others", "drop_and_prune"):
            for step in ("after git switch", "after git push"):
                title = f"second-{names[0]}-{name}-{step.replace(' ', '-')}"
                world = standard(workshop, title, [*names, "edit", "secret"], "no")
                world.at = int(time.time()) + world.ahead
                world.waits_before_trying_again = 0
                yield run(workshop, world, title, "again", [attempts.Stop(step, deed=deeds.ALL[name])])


def several_worktrees(workshop):
    for number, step in enumerate(scenario.STEPS[::4]):
        for way in several.WAYS:
            title = f"several-{step.replace(' ', '-')}-{way.replace(' ', '-')}"
            world = standard(workshop, title, ["edit", "untracked", "secret"], "no")
            if number % 2:
                world.at = int(time.time()) + world.ahead
            yield several.carry_out(workshop, world, title, way, step, random.Random(title))


def jumps(workshop):
    for step in ("reviewed", "stage staging", "before archive", "before git worktree remove"):
        for seconds in (-86_400 * 400, 86_400 * 400):
            name = f"clock-{step.replace(' ', '-')}-{seconds}"
            yield run(workshop, standard(workshop, name), name, "clock", [attempts.Stop(step, jump=seconds)])


# Full disks.

def full_disks(workshop):
    if not disks.may_mount():
        return
    for place in ("home/data", "hub.git", "project"):
        for step in ("reviewed", "stage staging", "stage pushing", "stage archivingLocalFiles"):
            for free in (0, 8192):
                name = f"full-{place.replace('/', '-')}-{step.replace(' ', '-')}-{free}"
                yield full_disk(workshop, name, place, step, free)


def full_disk(workshop, name, place, step, free):
    world = standard(workshop, name, draft="no")
    where = world.base / place
    (world.home / "data").mkdir(exist_ok=True)
    disks.mount_over(world, where, 200_000)

    def fill(filled, _):
        filled.undo.append(disks.fill(where, free))
    fill.__name__ = "fill_disk"
    world.may_lose_receipt = place == "home/data"
    result = run(workshop, world, name, "disk", [attempts.Stop(step, deed=fill)])
    if os.path.lexists(world.worktree):
        scenario.again(workshop, world, result)
    return finish(result)


def finish(result):
    if not result.problems and not result.stuck and result.world.base.exists():
        result.world.remove()
    return result


# Missing rights.

def support_is_read_only(world):
    world.support.mkdir(parents=True)
    return world.support, 0o500


def vault_is_read_only(world):
    vault = world.support / "Recovery"
    vault.mkdir(parents=True)
    vault.chmod(0o700)  # as the program makes it
    return vault, 0o500


def data_home_is_read_only(world):
    (world.home / "data").mkdir()
    return world.home / "data", 0o500


def remote_is_read_only(world):
    return world.hub / "objects", 0o500


def repository_is_read_only(world):
    return world.project / ".git" / "objects", 0o500


def worktree_folder_is_read_only(world):
    world.write(b"node_modules/closed/file", b"x")
    return world.base / "feature" / "node_modules" / "closed", 0o500


def secret_is_unreadable(world):
    return world.base / "feature" / ".env", 0o000


def changed_file_is_unreadable(world):
    return world.base / "feature" / "src" / "a.txt", 0o000


def place_of_the_worktree_is_read_only(world):
    return world.base, 0o555


DENIALS = [support_is_read_only, vault_is_read_only, data_home_is_read_only, remote_is_read_only, repository_is_read_only,
           worktree_folder_is_read_only, secret_is_unreadable, changed_file_is_unreadable, place_of_the_worktree_is_read_only]


def denials(workshop):
    if os.geteuid() != 0:
        return
    for denial in DENIALS:
        name = denial.__name__.replace("_", "-")
        world = standard(workshop, name, draft="no")
        place, mode = denial(world)
        disks.hand_over(world)
        usual = place.stat().st_mode & 0o777
        place.chmod(mode)
        world.may_lose_receipt = "support" in name or "data-home" in name
        world.undo.append(lambda place=place, usual=usual: place.chmod(usual) if place.exists() else None)
        result = run(workshop, world, name, "rights")
        if (result.runs[0].receipt or {}).get("outcome") == "succeeded" and not world.may_lose_receipt:
            result.stuck.append("succeeded where it could not")
        if os.path.lexists(world.worktree):
            scenario.again(workshop, world, result)
            expect_success(result)
        yield finish(result)


def mounted_inside(workshop):
    """A disk of the person's, mounted where the worktree's ignored files are."""
    if not disks.may_mount():
        return
    name = "mounted-inside"
    world = standard(workshop, name, draft="no")
    place = world.base / "feature" / "logs"
    place.mkdir()
    disks.mount(world, place, 100_000)
    world.write(b"logs/theirs.txt", b"on another disk")
    result = run(workshop, world, name, "disk")
    error = scenario.reason_of(result.runs[0])
    if "Something is mounted inside it" not in error:
        result.stuck.append(f"not refused: {error}")
    yield finish(result)


# Stores that are not what they should be.

def damaged_stores(workshop):
    for file, content in (("cleanup-receipts.json", b"{"), ("cleanup-receipts.json", b'[{"id": 7}]'),
                          ("recovery-vault.json", b"\xff\x00"), ("recovery-vault.json", b'{"a": []}')):
        name = f"damaged-{file}-{len(content)}"
        world = standard(workshop, name, draft="no")
        world.support.mkdir(parents=True)
        (world.support / file).write_bytes(content)
        result = run(workshop, world, name, "stores")
        expect_success(result)
        yield result
