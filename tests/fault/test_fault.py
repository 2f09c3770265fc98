#!/usr/bin/python3
"""The short form of the proof, in groups that can run side by side: test_fault.py WORKER GROUP."""

import collections
import os
import shutil
import sys
import tempfile
import unittest
from pathlib import Path

import guaranteed
import let_go
import planting
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
    part = 0

    def test_each_at_two_steps(self):
        self.assert_good(systematic.each_deed(self.workshop, self.part, 2), 60)


class MoreDeeds(Deeds):
    part = 1


class Detached(Proof):
    def test_interference_at_each_step(self):
        self.assert_good(systematic.each_step_of_detached(self.workshop), 29)

    def test_reviewed_again_within_the_second(self):
        self.assert_good(systematic.same_seconds(self.workshop), 24)


class Several(Proof):
    def test_worktrees_of_one_repository(self):
        self.assert_good(systematic.several_worktrees(self.workshop), 20)


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
        self.assertEqual(set(guaranteed.GOING), let_go.NAMES)

    def test_each_entry_goes_and_nothing_else(self):
        self.assert_good(guaranteed.entries(self.workshop), len(guaranteed.GOING))


class Checker(Proof):
    """The proof is worth something only if it notices: every kind of loss in the first half of the kinds of world."""
    part = 0

    def test_names_each_loss_in_each_kind_of_world(self):
        planted = collections.Counter()
        for name in list(planting.WORLDS)[self.part::2]:
            scene = planting.Scene(self.workshop, name)
            with self.subTest(name):
                self.assertEqual((scene.outcome(), scene.judged()[1]), (scene.kind.outcome, []))
                for losses in planting.SETS:
                    words, said = scene.judged(losses)
                    planted.update(loss for loss, expected in words.items() if expected)
                    unseen = {loss: expected for loss, expected in words.items()
                              if expected and not any(expected in text for text in said)}
                    self.assertEqual(unseen, {}, said)
            scene.remove()
        self.assertGreater(sum(planted.values()), 180)
        self.assertEqual(self.never_planted(planted), set())

    def never_planted(self, planted):
        """Some fit one kind of world only."""
        return {loss.__name__ for loss in planting.LOSSES} - planted.keys() - planting.RARE

    def test_finds_everything_after_a_good_run(self):
        scene = planting.Scene(self.workshop, "plain")
        judgement = scenario.Judgement(scene.world, scene.ledger, scene.run).judge()
        self.assertEqual((judgement.verdict.losses, judgement.complaints), ([], []))
        self.assertGreater(judgement.verdict.fates["remote"], 5)
        self.assertEqual(judgement.verdict.fates["vault"], 1)
        scene.remove()


class MoreChecker(Checker):
    part = 1


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
