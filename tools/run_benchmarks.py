#!/usr/bin/env python3
"""Runs every benchmark program and prints one table: run_benchmarks.py PROGRAMS.txt RESULTS [ARGS...]

PROGRAMS.txt names one program a line. ARGS go to each of them, --benchmark_filter=... for example. The full figures are
kept as JSON in the folder RESULTS. In the table a benchmark "Walk/ours/large" is compared with the first one of its group,
"Walk/.../large": the last two columns say how many times that one's wall and processor time it took. A benchmark that pairs
itself with its peer says so in counters of its own, wall_ratio and cpu_ratio. Work that is done by children or other threads
is told by a counter too: cpuSeconds.
"""

import json
import subprocess
import sys
from pathlib import Path

UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def seconds(value, unit):
    return value * UNITS[unit]


def readable(duration):
    for unit, size in (("s", 1.0), ("ms", 1e-3), ("us", 1e-6)):
        if duration >= size:
            return f"{duration / size:.3g} {unit}"
    return f"{duration / 1e-9:.3g} ns"


def group_of(name):
    """What the benchmarks that are compared with each other have in common: all of the name but its second part."""
    parts = name.split("/")
    return tuple(parts[:1] + parts[2:])


def measure(program, results, arguments):
    output = results / (Path(program).name + ".json")
    command = [program, f"--benchmark_out={output}", "--benchmark_out_format=json", *arguments]
    print("Running", Path(program).name, file=sys.stderr)
    done = subprocess.run(command, stdout=sys.stderr)
    if done.returncode != 0:
        sys.exit(f"{Path(program).name} ended with {done.returncode}")
    text = output.read_text()
    return json.loads(text)["benchmarks"] if text else []


def rows_of(benchmarks):
    first = {}
    for benchmark in benchmarks:
        # Repetitions are reported by their median alone.
        if benchmark.get("run_type") == "aggregate" and benchmark.get("aggregate_name") != "median":
            continue
        if benchmark.get("run_type") == "iteration" and benchmark.get("repetitions", 1) > 1:
            continue
        name = benchmark.get("run_name", benchmark["name"])
        if benchmark.get("error_occurred"):
            yield [name, "failed: " + benchmark.get("error_message", ""), "", "", ""]
            continue
        wall = seconds(benchmark["real_time"], benchmark["time_unit"])
        cpu = benchmark.get("cpuSeconds", seconds(benchmark["cpu_time"], benchmark["time_unit"]))
        base_wall, base_cpu = first.setdefault(group_of(name), (wall, cpu))
        yield [name, readable(wall), readable(cpu), ratio(benchmark.get("wall_ratio", wall / base_wall)),
               ratio(benchmark.get("cpu_ratio", cpu / base_cpu if base_cpu > 0 else 0))]


def ratio(value):
    return f"{value:.2f}" if value > 0 else ""


def main(programs_file, results, *arguments):
    results = Path(results)
    results.mkdir(parents=True, exist_ok=True)
    programs = Path(programs_file).read_text().split("\n")
    rows = [["Benchmark", "wall", "processor", "wall x", "processor x"]]
    for program in filter(None, programs):
        rows += rows_of(measure(program, results, list(arguments)))
    widths = [max(len(row[column]) for row in rows) for column in range(5)]
    for row in rows:
        print(row[0].ljust(widths[0]), *(cell.rjust(width) for cell, width in zip(row[1:], widths[1:])), sep="  ")
    return 0 if len(rows) > 1 else "there are no benchmarks"


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
