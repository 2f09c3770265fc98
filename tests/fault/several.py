"""Several worktrees of one repository, cleaned one after the other, or at the same time by two processes."""

import os
import threading

import attempt as attempts
import scenario
from features_work import some_bytes
from ledger import Ledger

WAYS = ["in a row", "while the other stands still", "side by side"]


def play(workshop, world, seed, rng):
    way = rng.choice(WAYS)
    step = rng.choice(scenario.STEPS)
    return carry_out(workshop, world, seed, way, step, rng)


def carry_out(workshop, world, seed, way, step, rng):
    result = scenario.Result(seed, world, "several")
    world.features.append(way)
    other = second_of(world, rng, None if way == "in a row" else "second-home")
    cleaned = []

    def clean_other():
        ledger = Ledger.begin(other)
        cleaned.append((ledger, attempts.attempt(other, workshop.program, ledger)))

    result.ledger = Ledger.begin(world)
    if way == "in a row":
        scenario.one_attempt(workshop, world, result.ledger, result, [], {})
        clean_other()
    elif way == "side by side":
        side_by_side(workshop, world, result, step, other, cleaned)
    else:
        def deed(_world, _run):
            clean_other()
            if not os.path.lexists(other.worktree):
                result.ledger.removed.add(other.worktree)
        deed.__name__ = "clean_another_worktree"
        scenario.one_attempt(workshop, world, result.ledger, result, [attempts.Stop(step, deed=deed)], {})
    for ledger, run in cleaned:
        if way != "in a row":
            other.companions.add(world.worktree)
        scenario.conclude(other, ledger, run, result)
    if not result.problems and not result.stuck:
        world.remove()
    return result


def side_by_side(workshop, world, result, step, other, cleaned):
    """The second process is started when the first one reaches a step, and nothing holds either from then on."""
    world.companions.add(other.worktree)
    other.companions.add(world.worktree)
    helpers = []

    def deed(_world, _run):
        ledger = Ledger.begin(other)

        def clean():
            cleaned.append((ledger, attempts.attempt(other, workshop.program, ledger)))
        helpers.append(threading.Thread(target=clean))
    deed.__name__ = "start_cleaning_another_worktree"

    stop = attempts.Stop(step, deed=deed, then=lambda: [helper.start() for helper in helpers])
    run = attempts.attempt(world, workshop.program, result.ledger, [stop])
    for helper in helpers:
        helper.join()
    scenario.conclude(world, result.ledger, run, result)


def second_of(world, rng, home):
    """A second worktree with work and a secret of its own."""
    world.git(world.project, "worktree", "add", "--quiet", "-b", "beside", str(world.base / "beside"))
    other = world.beside("beside", home)
    other.write(b"src/a.txt", b"edited beside " + some_bytes(rng))
    other.write(b"beside.txt", some_bytes(rng))
    other.write(b".env", b"BESIDE=" + some_bytes(rng))
    if rng.random() < 0.3:
        other.here("switch", "--quiet", "--detach")
        other.commit("On no branch", "--allow-empty")
    return other
