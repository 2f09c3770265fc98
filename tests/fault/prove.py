#!/usr/bin/python3
"""Runs the proof: cleanups of made-up worlds, one for each seed, with people, faults and kills in between.

    prove.py WORKER [--every-fault] [--runs N] [--seed S] [--minutes M] [--jobs J] [--keep] [--log FILE]

Prints every run that lost a byte, told an untruth or left the next attempt stuck, with its seed, and a summary. Exits with 1
when there was one. The same seed makes the same world and lets the same things happen at the same steps; what happens at a
random instant, such as a kill, need not repeat. With --every-fault the seeds are numbers of commands instead, and each command
goes wrong in every way that there is. `--runs 1 --seed S --keep` does one again and leaves its world."""

import argparse
import multiprocessing
import queue
import sys
import tempfile
import time
import traceback
from collections import Counter
from pathlib import Path

import attempt
import scenario
import systematic
from world import places


def figures_of(result):
    """What a summary needs, small enough to be sent."""
    outcomes = Counter()
    for run in result.runs:
        unlisted = any(event["event"] == "unlisted" for event in run.events)
        outcomes["killed" if run.killed else run.receipt["outcome"] if run.receipt else
                 "not listed any more" if unlisted else "blocked" if run.blocked else "nothing"] += 1
    deeds = [name for run in result.runs for name, _ in run.deeds]
    return {"seed": result.seed, "kind": result.kind, "attempts": len(result.runs), "outcomes": outcomes,
            "kills": sum(run.killed for run in result.runs), "deeds": len(deeds) if result.kind == "deeds" else 0,
            "faults": len(deeds) if result.kind == "fault" else 0, "fates": result.fates, "amounts": result.amounts,
            "losses": result.losses, "false": result.false_receipts, "stuck": list(result.stuck), "locks": list(result.locks),
            "problems": list(result.problems), "text": result.describe(), "signature": signature_of(result),
            "features": list(result.world.features), "errors": [error_of(run) for run in result.runs]}


def signature_of(result):
    events = tuple(tuple(run.deeds) for run in result.runs)
    kills = tuple(len(run.events) for run in result.runs if run.killed)
    return hash((result.kind, tuple(result.world.features), tuple(sorted(result.world.options.items())), events, kills))


def error_of(run):
    return scenario.reason_of(run).split("\n")[0][:60]


def results_of(workshop, seed, every_fault):
    return systematic.faults_of(workshop, seed, attempt.KINDS) if every_fault else [scenario.play(workshop, seed)]


def work(program, seeds, results, until, keep, every_fault):
    base = Path(tempfile.mkdtemp(prefix="cairnfield-fault-", dir=places()))
    base.chmod(0o755)
    workshop = scenario.Workshop(base, program)
    failed = False
    for seed in seeds:
        if time.monotonic() > until:
            break
        try:
            for result in results_of(workshop, seed, every_fault):
                figures = figures_of(result)
                failed = failed or bool(figures["problems"] or figures["stuck"])
                results.put(figures)
        except Exception:  # a defect of the proof itself must not pass for a good run
            failed = True
            results.put({"seed": seed, "broken": traceback.format_exc()})
    if not failed and not keep:
        scenario.shutil.rmtree(base, ignore_errors=True)
    results.put(None)


class Summary:
    def __init__(self):
        self.started = time.monotonic()
        self.runs = 0
        self.broken = []
        self.totals = Counter()
        self.outcomes, self.kinds, self.fates, self.amounts, self.locks = (Counter() for _ in range(5))
        self.signatures = set()
        self.bad_seeds = []
        self.errors = Counter()

    def add(self, figures):
        self.runs += 1
        if "broken" in figures:
            self.broken.append(figures["seed"])
            print(f"seed {figures['seed']}: the proof itself failed\n{figures['broken']}", flush=True)
            return
        for name in ("attempts", "kills", "deeds", "faults", "losses", "false"):
            self.totals[name] += figures[name]
        self.totals["stuck"] += len(figures["stuck"])
        self.kinds[figures["kind"]] += 1
        self.outcomes += figures["outcomes"]
        self.fates += figures["fates"]
        self.amounts += figures["amounts"]
        self.locks += Counter(figures["locks"])
        self.errors += Counter(error for error in figures["errors"] if error)
        self.signatures.add(figures["signature"])
        if figures["problems"] or figures["stuck"]:
            self.bad_seeds.append(figures["seed"])
            print(figures["text"], *("  STUCK " + text for text in figures["stuck"]), sep="\n", flush=True)

    def text(self):
        def listed(counter):
            return ", ".join(f"{name} {count}" for name, count in counter.most_common())
        t = self.totals
        lines = [f"{self.runs} runs ({len(self.signatures)} distinct, {t['attempts']} attempts) in "
                 f"{time.monotonic() - self.started:.0f} s: {listed(self.kinds)}",
                 f"attempts ended: {listed(self.outcomes)}",
                 f"kills {t['kills']}, faults {t['faults']}, deeds {t['deeds']}; left by kills: {listed(self.locks) or 'none'}",
                 f"{sum(self.fates.values())} items, {sum(self.amounts.values())} bytes accounted for: {listed(self.fates)}",
                 f"losses {t['losses']}, false receipts {t['false']}, stuck attempts {t['stuck']}, broken {len(self.broken)}"]
        if self.bad_seeds or self.broken:
            seeds = sorted(self.bad_seeds + self.broken)
            lines.append(f"bad seeds: {seeds}; again with: ./dev prove --runs 1 --seed {seeds[0]} --keep")
        return "\n".join(lines)


def run(program, first, count, minutes, jobs, keep=False, every_fault=False):
    summary = Summary()
    results = multiprocessing.Queue()
    until = time.monotonic() + minutes * 60
    shares = [range(first + job, first + count, jobs) for job in range(jobs)]
    workers = [multiprocessing.Process(target=work, args=(program, share, results, until, keep, every_fault))
               for share in shares]
    for worker in workers:
        worker.start()
    running = jobs
    while running:
        try:
            figures = results.get(timeout=5)
        except queue.Empty:
            if not any(worker.is_alive() for worker in workers):
                summary.broken.append(first)
                break
            continue
        if figures is None:
            running -= 1
        else:
            summary.add(figures)
    for worker in workers:
        worker.join()
    return summary


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("worker", type=Path)
    parser.add_argument("--runs", type=int, default=2000)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--minutes", type=float, default=600)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--keep", action="store_true", help="leave the worlds")
    parser.add_argument("--every-fault", action="store_true", help="let each command go wrong in each way")
    parser.add_argument("--errors", action="store_true", help="list the words of the failures")
    parser.add_argument("--log", type=Path, help="append the summary to this file")
    asked = parser.parse_args()
    count = min(asked.runs, systematic.MOST_COMMANDS) if asked.every_fault else asked.runs
    summary = run(asked.worker.resolve(), asked.seed, count, asked.minutes, asked.jobs, asked.keep, asked.every_fault)
    print(summary.text())
    if asked.errors:
        for error, count in summary.errors.most_common():
            print(f"{count:5} {error}")
    if asked.log:
        with asked.log.open("a") as file:
            file.write(time.strftime("%F %T ") + f"seeds from {asked.seed}: " + summary.text() + "\n")
    sys.exit(1 if summary.bad_seeds or summary.broken or summary.runs == 0 else 0)


if __name__ == "__main__":
    main()
