"""From a seed to one run: which world, which choices on the review sheet, who steps in when, and what fails."""

import os
import random
import shutil
import time
from collections import Counter

import attempt as attempts
import deeds
import deeds_around  # noqa: F401  registers
import features
import features_around  # noqa: F401  registers
import features_hidden  # noqa: F401  registers
import features_inside  # noqa: F401  registers
import features_repository  # noqa: F401  registers
import features_work  # noqa: F401  registers
import several
from check import Judgement
from ledger import Ledger
from world import GitFailed, Template

STAGES = ["preflight", "creatingRecoveryBranch", "staging", "committing", "pushing", "verifyingRemote", "creatingPullRequest",
          "archivingLocalFiles", "removingWorktree", "verifyingDeletion", "completed", "failed"]
STEPS = ["reviewed", *("stage " + stage for stage in STAGES[:-2]),
         "after git ls-remote --exit-code", "before git switch", "after git switch", "before git add", "after git add",
         "before git commit", "after git commit", "before git ls-remote --heads", "before git push", "after git push",
         "before gh pr create", "after gh pr create", "before archive", "after archive",
         "before git status --porcelain=v2 -z --untracked-files=all --ignored=no",
         "after git status --porcelain=v2 -z --untracked-files=all --ignored=no", "before git worktree remove",
         "after git worktree remove"]
PAIRS = [("hide_secret", "show_secret"), ("add_untracked", "ignore_what_is_new"), ("append_to_new", "ignore_in_the_worktree"),
         ("stash", "unstash"), ("detach_and_commit", "switch_back"), ("switch_to_new", "switch_back"),
         ("detach_and_commit", "make_branch_of_others"), ("commit_and_push", "drop_and_prune"), ("delete_tracked", "stage_all")]
DETACHED = ["detached", "detached_with_commits", "detached_with_commits_pushed", "detached_at_a_stale_copy"]
MOST_NAMED = 12  # of the problems of one run
REFUSAL_MARKS = ("lock", "File exists", "another", "Another", "unable to", "Unable to")
WHAT_GIT_DOES_NOT_STAGE = ("did not match any files", "outside of your sparse-checkout definition")


class Result:
    def __init__(self, seed, world, kind):
        self.seed = seed
        self.kind = kind
        self.world = world
        self.runs = []
        self.problems = []
        self.stuck = []
        self.locks = []
        self.fates = Counter()
        self.amounts = Counter()
        self.losses = 0
        self.false_receipts = 0

    def describe(self):
        lines = [f"seed {self.seed} ({self.kind}): {', '.join(self.world.features)}; {self.world.options}"]
        for run in self.runs:
            receipt = run.receipt or {}
            outcome = receipt.get("outcome") or ("blocked" if run.blocked else None)
            lines.append(f"  deeds {run.deeds}; killed {run.killed}; {outcome}: {reason_of(run)}")
        more = [f"... and {len(self.problems) - MOST_NAMED} more"] if len(self.problems) > MOST_NAMED else []
        return "\n".join(lines + ["  " + problem for problem in self.problems[:MOST_NAMED] + more])


class Workshop:
    """Where one process makes its worlds."""

    def __init__(self, base, program):
        self.base = base
        self.program = base / "worker"  # where everybody may run it
        shutil.copy2(program, self.program)
        self.templates = {name: Template(base, name) for name in ("sha1", "sha256")}
        attempts.adopt_orphans()

    def world(self, name, object_format="sha1"):
        base = self.base / name
        if base.exists():
            shutil.rmtree(base)
        world = self.templates[object_format].copy(base)
        world.object_format = object_format
        return world


def furnish(world, names, rng):
    for item in features.chosen(names, rng):
        try:
            item.apply(world, rng)
        except (GitFailed, OSError):
            world.features.append(item.name + " (does not fit)")
            world.refusing = True
    for late in world.late:
        late()
    # The one changes what the other has git overlook, which the last look refuses.
    world.refusing |= {"same_second", "overlooked"} <= set(world.features)
    names = (world.git(world.project, "remote", check=False) or b"").decode().split()
    world.remote = "origin" if "origin" in names or not names else names[0]


def random_stops(rng):
    if rng.random() < 0.2:
        first, second = sorted(rng.sample(range(len(STEPS)), 2))
        return [attempts.Stop(STEPS[step], deed=deeds.ALL[name])
                for step, name in zip((first, second), rng.choice(PAIRS), strict=True)]
    stops = []
    for _ in range(rng.choice([1, 1, 2, 3])):
        stops.append(attempts.Stop(rng.choice(STEPS), deed=deeds.ALL[rng.choice(list(deeds.ALL))]))
    return stops


def random_kill(rng):
    where = rng.choice(["stage " + rng.choice(STAGES[:-1]), rng.choice(STEPS), rng.randrange(1, 100)])
    delay = rng.choice([-1.0, rng.uniform(0, 0.004), rng.uniform(0, 0.03)])
    return attempts.Stop(where, kill=rng.choice(["program", "everything"]), delay=delay)


def play(workshop, seed):
    """The run of a seed."""
    rng = random.Random(seed)
    kind = rng.choices(["plain", "deeds", "kill", "fault", "clock", "again", "several"], [20, 32, 17, 15, 3, 7, 6])[0]
    usual = [name for name, item in features.ALL.items() if not item.refusing]
    names = rng.sample(usual if rng.random() < 0.7 else list(features.ALL), rng.choice([0, 1, 2, 3, 4, 6]))
    if rng.random() < 0.7:
        names += rng.sample(["edit", "untracked", "secret", "commits_ahead", "build_output"], rng.randrange(1, 4))
    if rng.random() < 0.2:
        names.insert(0, rng.choice(DETACHED))
    world = workshop.world(f"world-{seed}", rng.choices(["sha1", "sha256"], [19, 1])[0])
    world.options.update(untracked=rng.choices(["yes", "no"], [5, 1])[0], sensitive=rng.choices(["yes", "no"], [5, 1])[0],
                         nested=rng.choices(["yes", "no"], [5, 1])[0],
                         draft=rng.choices(["no", "yes"], [3, 1])[0])
    world.waits_before_trying_again = rng.choice([0, 0, 1, 60])
    if rng.random() < 0.4:
        world.at = int(time.time()) + world.ahead  # and there it stands still
    furnish(world, list(dict.fromkeys(names)), rng)
    stops, faults = [], {}
    if kind in ("deeds", "again"):
        stops = random_stops(rng)
    elif kind == "kill":
        stops = [random_kill(rng)]
    elif kind == "fault":
        faults = {rng.randrange(1, 70): rng.choice(attempts.KINDS) for _ in range(rng.choice([1, 1, 1, 2]))}
    elif kind == "clock":
        stops = [attempts.Stop(rng.choice(STEPS), jump=rng.choice([-86_400 * 400, 86_400 * 400, -7200, 7200]))]
    elif kind == "several":
        return several.play(workshop, world, seed, rng)
    return carry_out(workshop, world, seed, kind, stops, faults)


def carry_out(workshop, world, seed, kind, stops, faults, keep=False):
    result = Result(seed, world, kind)
    same_ending(world, stops)
    result.ledger = Ledger.begin(world)
    first = one_attempt(workshop, world, result.ledger, result, stops, faults)
    if (first.killed or faults) and os.path.lexists(world.worktree):
        again(workshop, world, result)
    elif kind == "again" and os.path.lexists(world.worktree):
        once_more(workshop, world, result)
    if not result.problems and not result.stuck and not keep and kind not in ("disk", "rights"):
        world.remove()
    return result


def same_ending(world, stops):
    if getattr(world, "same_ending", None):
        stops.insert(0, attempts.Stop("reviewed", deed=deeds.ALL["remote_gets_same_ending"]))


def one_attempt(workshop, world, ledger, result, stops, faults):
    run = attempts.attempt(world, workshop.program, ledger, list(stops), faults)
    return conclude(world, ledger, run, result)


def conclude(world, ledger, run, result):
    result.runs.append(run)
    names = [event.get("name") for event in run.events]
    run.must_store = ("stage completed" in names or "stage failed" in names) and not world.may_lose_receipt
    if run.timed_out:
        result.stuck.append("the attempt did not end")
    if not run.killed and run.status != 0:
        result.problems.append(f"the worker ended with {run.status}: {run.log[-600:]}")
    judge(world, ledger, run, result)
    return run


def judge(world, ledger, run, result):
    judgement = Judgement(world, ledger, run).judge()
    result.fates += judgement.verdict.fates
    result.amounts += judgement.verdict.amounts
    result.losses += len(judgement.verdict.losses)
    result.false_receipts += len(judgement.complaints)
    result.problems += ["LOST " + loss for loss in judgement.verdict.losses]
    result.problems += ["FALSE " + complaint for complaint in judgement.complaints]
    ledger.complaints.clear()


def is_same_branch(result):
    """Whether the second of two attempts was reviewed within the second of the first."""
    first, second = [(run.review or {}).get("branch") for run in result.runs[-2:]]
    return first == second


def reason_of(run):
    """Why it did not come to its end, in the words that a person reads; empty when it did, or was killed."""
    return (run.receipt or {}).get("errorSummary") or run.blocked or ""


def git_locks(world):
    found = []
    for folder, _, files in os.walk(world.project / ".git"):
        found += [os.path.join(folder, name) for name in files if name.endswith(".lock")]
    return found


def leftovers(world):
    """Half-written files of ours."""
    found = []
    for folder, _, files in os.walk(world.support):
        found += [name for name in files if ".tmp" in name or "unfinished" in name]
    return found


def once_more(workshop, world, result):
    """The person looks at it anew, perhaps within the same second. What comes of it depends on what happened."""
    wait(world)
    return one_attempt(workshop, world, result.ledger, result, [], {})


def wait(world):
    world.ahead += world.waits_before_trying_again
    if world.at is not None:
        world.at += world.waits_before_trying_again


def again(workshop, world, result):
    """The next attempt after a kill or a fault: it must come to a receipt, or to a refusal that says why."""
    locks = git_locks(world)
    result.locks += [os.path.basename(lock) for lock in locks]
    result.locks += ["text of a pull request" for name in os.listdir(world.home / "tmp") if name.startswith("cairnfield-pr-")]
    world.options["draft"] = "no"
    world.may_lose_receipt = False
    wait(world)
    run = one_attempt(workshop, world, result.ledger, result, [], {})
    if leftovers(world):
        result.stuck.append(f"left behind: {leftovers(world)}")
    unlisted = any(event["event"] == "unlisted" for event in run.events)
    if run.receipt is None and not unlisted and run.blocked is None:
        result.stuck.append("the next attempt has no receipt")
    if unlisted or world.refusing or (run.receipt or {}).get("outcome") == "succeeded":
        return
    error = reason_of(run)
    nothing_new = {"staged_then_back", "removed_but_kept"} & set(world.features) and \
        error == "A commit hook stopped the preservation commit. "
    if nothing_new or any(words in error for words in WHAT_GIT_DOES_NOT_STAGE):
        return
    if is_same_branch(result):
        return  # what the first attempt left under that name is neither overwritten nor gone to
    if not locks and world.options["untracked"] == "yes":
        result.stuck.append(f"the next attempt stops: {error}")
    elif locks and not any(mark in error for mark in REFUSAL_MARKS):
        result.stuck.append(f"the next attempt stops beside {locks}, and does not name it: {error}")
