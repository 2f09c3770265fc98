#!/usr/bin/env python3
"""Tests of tools/run_benchmarks.py with small programs that pretend to have measured something."""

import json
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools" / "run_benchmarks.py"


def measured(name, real, cpu, **more):
    return {"name": name, "run_name": name, "run_type": "iteration", "real_time": real, "cpu_time": cpu,
            "time_unit": "ms", **more}


class RunBenchmarks(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.here = Path(folder.name)
        self.programs = []

    def program(self, name, benchmarks, status=0):
        text = json.dumps({"benchmarks": benchmarks})
        file = self.here / name
        file.write_text("#!/usr/bin/env python3\nimport sys\n"
                        "out = [word for word in sys.argv if word.startswith('--benchmark_out=')][0].split('=')[1]\n"
                        f"open(out, 'w').write({text!r})\nprint('noise')\nsys.exit({status})\n")
        file.chmod(0o755)
        self.programs.append(str(file))

    def run_all(self):
        (self.here / "programs.txt").write_text("\n".join(self.programs) + "\n")
        done = subprocess.run([sys.executable, SCRIPT, self.here / "programs.txt", self.here / "results"],
                              capture_output=True, text=True)
        return done.returncode, [line.split() for line in done.stdout.splitlines()]

    def test_all_programs_share_one_table_and_peers_are_compared(self):
        self.program("Walk", [measured("Walk/du/small", 200, 100), measured("Walk/ours/small", 100, 90),
                              measured("Walk/ours/large", 900, 900)])
        self.program("Spawn", [measured("Spawn/raw", 2, 0, cpuSeconds=0.001), measured("Spawn/runner", 3, 0, cpuSeconds=0.0012)])
        status, rows = self.run_all()
        self.assertEqual(status, 0)
        self.assertEqual(rows[1:], [
            ["Walk/du/small", "200", "ms", "100", "ms", "1.00", "1.00"],
            ["Walk/ours/small", "100", "ms", "90", "ms", "0.50", "0.90"],
            ["Walk/ours/large", "900", "ms", "900", "ms", "1.00", "1.00"],
            ["Spawn/raw", "2", "ms", "1", "ms", "1.00", "1.00"],
            ["Spawn/runner", "3", "ms", "1.2", "ms", "1.50", "1.20"],
        ])

    def test_repetitions_are_told_by_their_median(self):
        repeated = [measured("Walk/du", time, time, repetitions=2) for time in (100, 300)]
        median = measured("Walk/du_median", 200, 200, run_type="aggregate", aggregate_name="median")
        median["run_name"] = "Walk/du"
        self.program("Walk", [*repeated, median])
        self.assertEqual(self.run_all()[1][1:], [["Walk/du", "200", "ms", "200", "ms", "1.00", "1.00"]])

    def test_a_benchmark_that_pairs_itself_is_believed(self):
        self.program("Pair", [measured("one command", 2, 1, wall_ratio=1.12, cpu_ratio=1.5)])
        self.assertEqual(self.run_all()[1][1:], [["one", "command", "2", "ms", "1", "ms", "1.12", "1.50"]])

    def test_a_program_that_fails_fails_the_run(self):
        self.program("Walk", [], status=3)
        self.assertEqual(self.run_all()[0], 1)

    def test_no_benchmark_at_all_is_a_failure(self):
        self.assertEqual(self.run_all()[0], 1)


if __name__ == "__main__":
    unittest.main()
