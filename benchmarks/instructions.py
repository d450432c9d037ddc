#!/usr/bin/env python3
"""Counts the instructions of the main workloads with callgrind, and compares them with the figures
that are committed in instructions.json.

Instructions do not depend on what else the machine does, so a slow-down shows when it lands. They
do depend on the compiler and the libraries: counts of another machine differ.
A report, not a test: it never fails because of a figure.
"""
import argparse
import concurrent.futures
import json
import os
import pathlib
import re
import subprocess
import sys

COMMITTED = pathlib.Path(__file__).with_name("instructions.json")
UNITS = 4  # of the merge; callgrind is fifty times slower than the processor


MEASURED = "*runMeasured*"
SAVE = "*CompilationData::saveToCompDB*"
WHOLE = None
BY_KEY, BY_NAME = "orvalesca::*", "std::*"  # how the type of the first parameter begins
REPEATS = {
    "type by key": f"*CompilationData::emplaceType({BY_KEY}",
    "type by name": f"*CompilationData::emplaceType({BY_NAME}",
    "variable by key": f"*CompilationData::emplaceVariable({BY_KEY}",
    "macro by key": f"*CompilationData::emplaceMacro({BY_KEY}",
}


def workloads(units, work):
    """For each workload: name, the function that is counted, the command, and what the count is divided
    by: a figure of what the command prints."""
    sources = [units / f"unit_{number}.comp.db" for number in range(UNITS)]
    merged = work / "merged.db"
    merged.unlink(missing_ok=True)
    merge = ["fe_db", "merge", "--no-index", "--jobs", "1", merged, *sources]
    found = [
        ("save, per row", SAVE, ["bench_workloads", "record", work / "saved.db"], "rows"),
        ("floor_write, per row", MEASURED, ["bench_workloads", "floor_write", work / "raw.db", work / "saved.db"], "rows"),
        ("load, per row", MEASURED, ["bench_workloads", "load", *sources], "rows_in"),
        ("floor_read, per row", MEASURED, ["bench_workloads", "floor_read", *sources], "rows"),
        ("merge, per row read", WHOLE, merge, None),
        ("alt_hash, per row read", WHOLE, ["bench_workloads", "alt_hash", work / "hash.db", *sources], None),
    ]
    for kind, operation in REPEATS.items():
        command = ["bench_workloads", "repeats", kind, "--count", 200000]
        found.append((f"repeat: {kind}", operation, command, "occurrences"))
    return found


def count(programs, function, command):
    """Instructions of one run, and what it printed."""
    callgrind = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"]
    if function is not None:
        callgrind.append(f"--toggle-collect={function}")
    program, *arguments = command
    words = [str(word) for word in (*callgrind, programs / program, *arguments)]
    run = subprocess.run(words, capture_output=True, text=True)
    collected = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or collected is None:
        sys.exit(f"{' '.join(words)} failed: {run.stderr[-500:]}")
    return int(collected.group(1)), run.stdout


def count_all(programs, units, work):
    """Two at a time: a count does not depend on what else runs. The first writes what others read."""
    first, *others = workloads(units, work)
    runs = [count(programs, *first[1:3])]
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs += pool.map(lambda workload: count(programs, *workload[1:3]), others)
    figures = [json.loads(output) if output.startswith("{") else {} for _, output in runs]
    rows_read = next(figure["rows_in"] for figure in figures if "rows_in" in figure)
    return {
        name: instructions / (figure[divisor] if divisor else rows_read)
        for (name, _, _, divisor), (instructions, _), figure in zip([first, *others], runs, figures)
    }


def print_comparison(found):
    committed = json.loads(COMMITTED.read_text()) if COMMITTED.exists() else {}
    print(f"{'instructions':32}{'committed':>12}{'now':>12}")
    for name, now in found.items():
        before = committed.get(name)
        change = f"{100 * (now - before) / before:+9.1f} %" if before else "      new"
        print(f"{name:32}{before or 0:12.0f}{now:12.0f}{change}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--programs", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--commit", action="store_true", help="rewrite instructions.json")
    arguments = parser.parse_args()
    units = arguments.work / "units"
    units.mkdir(parents=True, exist_ok=True)
    generate = [arguments.programs / "bench_workloads", "generate", units, "--units", str(UNITS)]
    subprocess.run(generate, check=True, stdout=subprocess.DEVNULL)
    found = count_all(arguments.programs, units, arguments.work)
    print_comparison(found)
    if arguments.commit:
        COMMITTED.write_text(json.dumps({k: round(v, 1) for k, v in found.items()}, indent=2) + "\n")


if __name__ == "__main__":
    main()
