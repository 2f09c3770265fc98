#!/usr/bin/env python3
"""Joins the profiles of a test run into one report: coverage_report.py build/coverage

Writes report.txt (a line a file) into the build directory, and prints nothing, so that the tests' own summary stays the
last thing on the screen.
"""

import subprocess
import sys
from pathlib import Path


def main(build):
    profiles = [str(file) for file in (build / "profiles").glob("*.profraw")]
    if not profiles:
        sys.exit("coverage: the tests wrote no profiles")
    merged = build / "merged.profdata"
    file_list = build / "profiles.txt"
    file_list.write_text("\n".join(profiles))
    subprocess.run(["llvm-profdata-19", "merge", "-sparse", "-f", file_list, "-o", merged], check=True)
    programs = [str(file) for file in sorted(build.rglob("*Tests")) if file.is_file()]
    programs += [str(file) for file in build.rglob("cairnfield-driver") if file.is_file()]
    objects = [programs[0]] + [f"-object={program}" for program in programs[1:]]
    with open(build / "report.txt", "w") as report:
        subprocess.run(
            ["llvm-cov-19", "report", *objects, f"-instr-profile={merged}", "-ignore-filename-regex=/(tests|build)/|^/usr/"],
            stdout=report, check=True,
        )


if __name__ == "__main__":
    main(Path(sys.argv[1]).resolve())
