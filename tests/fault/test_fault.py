#!/usr/bin/python3
"""The short form of the proof, in groups that can run side by side: test_fault.py WORKER GROUP."""

import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

import account
import check
import guaranteed
import scenario
import systematic
from world import places

WORKER = Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else None
SEEDS_OF_A_GROUP = 45


class Proof(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.base = Path(tempfile.mkdtemp(prefix="cairnfield-fault-", dir=places()))
        cls.base.chmod(0o755)
        cls.addClassCleanup(shutil.rmtree, cls.base, ignore_errors=True)
        cls.workshop = scenario.Workshop(cls.base, WORKER)

    def assert_good(self, results, at_least=1):
        count = 0
        for result in results:
            count += 1
            with self.subTest(result.seed):
                self.assertEqual((result.problems, result.stuck), ([], []), result.describe())
        self.assertGreaterEqual(count, at_least)


class Kills(Proof):
    def test_at_every_stage(self):
        self.assert_good(systematic.kills(self.workshop), 40)


class Faults(Proof):
    def test_in_every_command(self):
        self.assert_good(systematic.faults(self.workshop), 40)


class Features(Proof):
    part = 0

    def test_each_alone(self):
        self.assert_good(systematic.each_feature(self.workshop, self.part, 2), 50)


class MoreFeatures(Features):
    part = 1


class Deeds(Proof):
    def test_each_at_two_steps(self):
        self.assert_good(systematic.each_deed(self.workshop), 80)


class Surroundings(Proof):
    def test_clock_that_jumps(self):
        self.assert_good(systematic.jumps(self.workshop), 8)

    def test_damaged_stores(self):
        self.assert_good(systematic.damaged_stores(self.workshop), 4)

    @unittest.skipUnless(os.geteuid() == 0, "only root can be somebody else")
    def test_missing_rights(self):
        self.assert_good(systematic.denials(self.workshop), len(systematic.DENIALS))

    @unittest.skipUnless(os.geteuid() == 0, "only root may mount")
    def test_full_disks(self):
        if not systematic.disks.may_mount():
            self.skipTest("mounting is not allowed here")
        self.assert_good(systematic.full_disks(self.workshop), 24)
        self.assert_good(systematic.mounted_inside(self.workshop), 1)


class Guarantees(Proof):
    def test_page_names_what_the_checker_lets_go(self):
        self.assertEqual(guaranteed.page_and_checker_agree(), [])

    def test_each_entry_has_a_run(self):
        self.assertEqual(set(guaranteed.GOING), check.NAMES)

    def test_each_entry_goes_and_nothing_else(self):
        self.assert_good(guaranteed.entries(self.workshop), len(guaranteed.GOING))


class Checker(Proof):
    """The proof is worth something only if it notices."""

    def one_run(self, name):
        world = systematic.standard(self.workshop, name, draft="no")
        before = account.take(world)
        run = scenario.attempts.attempt(world, self.workshop.program, before)
        self.assertEqual(run.receipt["outcome"], "succeeded")
        return world, run

    def judged(self, world, run):
        return check.Judgement(world, run.account, run).judge()

    def test_finds_everything_after_a_good_run(self):
        judgement = self.judged(*self.one_run("good"))
        self.assertEqual((judgement.verdict.losses, judgement.complaints), ([], []))
        self.assertGreater(judgement.verdict.fates["remote"], 5)
        self.assertEqual(judgement.verdict.fates["vault"], 1)

    def test_misses_work_that_is_nowhere(self):
        world, run = self.one_run("forgotten")
        branch = "refs/heads/" + run.receipt["recoveryBranch"]
        world.git(world.hub, "update-ref", "-d", branch)
        world.git(world.project, "update-ref", "-d", branch)
        judgement = self.judged(world, run)
        self.assertIn("untracked file b'new.txt'", judgement.verdict.losses)
        self.assertTrue(any("no remote holds" in complaint for complaint in judgement.complaints))

    def test_misses_a_damaged_vault(self):
        world, run = self.one_run("damaged")
        Path(run.receipt["recoveryVaultPaths"][0]).write_bytes(b"something else")
        judgement = self.judged(world, run)
        self.assertEqual(judgement.verdict.losses, ["ignored file b'.env'"])
        self.assertTrue(any("is not what the worktree held" in complaint for complaint in judgement.complaints))

    def test_misses_a_stash(self):
        world, run = self.one_run("stash")
        world.git(world.project, "stash", "clear")
        self.assertTrue(any(loss.startswith("stash") for loss in self.judged(world, run).verdict.losses))

    def test_notices_a_moved_branch(self):
        world, run = self.one_run("moved")
        world.git(world.project, "update-ref", "refs/heads/feature", "main~1")
        self.assertTrue(any("refs/heads/feature" in complaint for complaint in self.judged(world, run).complaints))

    def test_notices_a_receipt_that_lies(self):
        world, run = self.one_run("lie")
        run.must_store = False
        run.receipt.update(id="00000000-0000-0000-0000-000000000000", outcome="failed", removalSucceeded=False,
                           errorSummary="made up")
        complaints = self.judged(world, run).complaints
        self.assertTrue(any("the worktree is gone" in complaint for complaint in complaints))
        self.assertIn("failed with a commit in hand", complaints)


class FirstSeeds(Proof):
    first = 1

    def test_of_made_up_worlds(self):
        seeds = range(self.first, self.first + SEEDS_OF_A_GROUP)
        self.assert_good((scenario.play(self.workshop, seed) for seed in seeds), SEEDS_OF_A_GROUP)


class SecondSeeds(FirstSeeds):
    first = 10_001


class ThirdSeeds(FirstSeeds):
    first = 20_001


if __name__ == "__main__":
    if WORKER is None:
        sys.exit("usage: test_fault.py WORKER [GROUP...]")
    del sys.argv[1]
    unittest.main()
