#!/usr/bin/env python3
"""Runs the workloads of the library and what they are compared with, in turn, each as a separate
process, and writes a table: Markdown, JSON and a plot. scripts/bench builds and calls this.

Every ratio is the median of the ratios of single rounds: what runs in one round ran within seconds,
so that a machine whose speed drifts affects both sides alike.
"""
import argparse
import json
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import instructions

SEED = "1"


class Programs:
    """Runs programs of the build and measures their resources."""

    def __init__(self, directory):
        self.directory = directory

    def run(self, name, *arguments):
        """Returns {cpu, wall, peak (bytes), output} of the whole process."""
        command = [str(self.directory / name), *map(str, arguments)]
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
            start = time.monotonic()
            process = subprocess.Popen(command, stdout=output, stderr=errors)
            _, status, usage = os.wait4(process.pid, 0)
            wall = time.monotonic() - start
            process.returncode = os.waitstatus_to_exitcode(status)
            output.seek(0)
            errors.seek(0)
            if process.returncode != 0:
                sys.exit(f"{' '.join(command[:3])} ... failed: {errors.read().decode().strip()}")
            return {
                "cpu": usage.ru_utime + usage.ru_stime,
                "wall": wall,
                "peak": usage.ru_maxrss * 1024,
                "output": output.read().decode(),
            }

    def workload(self, *arguments):
        """The figures that a workload prints, with those of its process under "process"."""
        process = self.run("bench_workloads", *arguments)
        return {**json.loads(process.pop("output")), "process": process}


def median(values):
    return statistics.median(values)


def note(text):
    print(text, file=sys.stderr, flush=True)


def measure_merge(programs, sources, work, rounds):
    """One size: the merge program with one job and with two, its steps, floors, alternatives."""
    note(f"merge of {len(sources)} units, {rounds} rounds")
    results = []
    for number in range(rounds):
        merged = {name: work / f"{name}.db" for name in ("one", "two", "steps", "hash", "sql", "raw")}
        for name in ("one", "two"):
            merged[name].unlink(missing_ok=True)
        merge = ["merge", "--no-index"]
        result = {
            "one": programs.run("fe_db", *merge, "--jobs", 1, merged["one"], *sources),
            "two": programs.run("fe_db", *merge, "--jobs", 2, merged["two"], *sources),
            "floor_read": programs.workload("floor_read", *sources),
            "floor_write": programs.workload("floor_write", merged["raw"], merged["one"]),
            "steps": programs.workload("merge", merged["steps"], *sources),
            "alt_hash": programs.workload("alt_hash", merged["hash"], *sources),
            "alt_sql": programs.workload("alt_sql", merged["sql"], *sources),
        }
        if number == 0:
            for name in ("two", "steps", "hash", "sql", "raw"):
                check_same_content(programs, merged["one"], merged[name])
        results.append(result)
        note(f"  round {number + 1}: {result['one']['cpu']:.2f} s")
    return summarize_merge(results, len(sources))


def check_same_content(programs, first, second):
    """fe_db diff fails when there is a difference."""
    programs.run("fe_db", "diff", first, second)


def summarize_merge(results, units):
    def of(value):
        return median([value(result) for result in results])

    def floor(result):
        return result["floor_read"]["process"]["cpu"] + result["floor_write"]["cpu"]

    rows_in, rows_out = results[0]["steps"]["rows_in"], results[0]["steps"]["rows_out"]
    return {
        "units": units,
        "rows_in": rows_in,
        "rows_out": rows_out,
        "cpu": of(lambda r: r["one"]["cpu"]),
        "wall": of(lambda r: r["one"]["wall"]),
        "wall_two": of(lambda r: r["two"]["wall"]),
        "facts_per_second": rows_in / of(lambda r: r["one"]["wall"]),
        "peak": of(lambda r: r["one"]["peak"]),
        "peak_two": of(lambda r: r["two"]["peak"]),
        "floor_cpu": of(floor),
        "alt_hash_cpu": of(lambda r: r["alt_hash"]["process"]["cpu"]),
        "alt_hash_wall": of(lambda r: r["alt_hash"]["process"]["wall"]),
        "alt_hash_peak": of(lambda r: r["alt_hash"]["process"]["peak"]),
        "alt_sql_cpu": of(lambda r: r["alt_sql"]["process"]["cpu"]),
        "alt_sql_peak": of(lambda r: r["alt_sql"]["process"]["peak"]),
        "per_row_ns": of(lambda r: r["one"]["cpu"]) / rows_in * 1e9,
        "step_cpu": {step: of(lambda r: r["steps"][step]["cpu"]) for step in ("load", "fold", "write")},
        "ratio": {
            "merge / floor_merge": of(lambda r: r["one"]["cpu"] / floor(r)),
            "merge / alt_hash": of(lambda r: r["one"]["cpu"] / r["alt_hash"]["process"]["cpu"]),
            "merge / alt_sql": of(lambda r: r["one"]["cpu"] / r["alt_sql"]["process"]["cpu"]),
            "alt_hash / floor_merge": of(lambda r: r["alt_hash"]["process"]["cpu"] / floor(r)),
            "alt_sql / floor_merge": of(lambda r: r["alt_sql"]["process"]["cpu"] / floor(r)),
            "load / floor_read": of(lambda r: r["steps"]["load"]["cpu"] / r["floor_read"]["cpu"]),
            "fold / floor_read": of(lambda r: r["steps"]["fold"]["cpu"] / r["floor_read"]["cpu"]),
            "write / floor_write": of(lambda r: r["steps"]["write"]["cpu"] / r["floor_write"]["cpu"]),
            "wall, two jobs / one": of(lambda r: r["two"]["wall"] / r["one"]["wall"]),
            "wall, two jobs / alt_hash": of(
                lambda r: r["two"]["wall"] / r["alt_hash"]["process"]["wall"]
            ),
        },
    }


def measure_unit(programs, sources, work, rounds):
    """The workloads of a front end: one unit recorded, saved into a new file and into a filled one."""
    note(f"one unit, {rounds} rounds")
    filled = work / "filled.db"
    filled.unlink(missing_ok=True)
    programs.run("fe_db", "merge", filled, *sources[:8])
    results = []
    for _ in range(rounds):
        new, raw, copy = work / "new.db", work / "raw.db", work / "copy.db"
        fresh = programs.workload("record", new, "--unit", 8, "--seed", SEED)
        floor = programs.workload("floor_write", raw, new)
        check_same_content(programs, new, raw)
        shutil.copy(filled, copy)
        into_filled = programs.workload("record", copy, "--unit", 8, "--seed", SEED, "--filled")
        load = programs.workload("load", *sources[:8])
        floor_read = programs.workload("floor_read", *sources[:8])
        results.append((fresh, floor, into_filled, load, floor_read))

    def of(value):
        return median([value(*result) for result in results])

    fresh, _, into_filled, load, _ = results[0]
    return {
        "occurrences": fresh["occurrences"],
        "rows": fresh["rows"],
        "rows_new_in_filled": into_filled["rows"],
        "rows_loaded": load["rows_in"],
        "occurrences_per_second": fresh["occurrences"] / of(lambda f, w, i, l, r: f["record"]["cpu"]),
        "saved_per_second": fresh["rows"] / of(lambda f, w, i, l, r: f["save"]["cpu"]),
        "save_filled_cpu": of(lambda f, w, i, l, r: i["save"]["cpu"]),
        "loaded_per_second": load["rows_in"] / of(lambda f, w, i, l, r: l["load"]["cpu"]),
        "bytes_per_fact": of(lambda f, w, i, l, r: f["process"]["peak"]) / fresh["rows"],
        "bytes_per_row_in_file": (work / "new.db").stat().st_size / fresh["rows"],
        "peak": of(lambda f, w, i, l, r: f["process"]["peak"]),
        "ratio": {
            "save / floor_write": of(lambda f, w, i, l, r: f["save"]["cpu"] / w["cpu"]),
            "save into a filled file / floor_write": of(
                lambda f, w, i, l, r: i["save"]["cpu"] / w["cpu"]
            ),
            "load / floor_read": of(lambda f, w, i, l, r: l["load"]["cpu"] / r["cpu"]),
        },
    }


def measure_operations(programs):
    """Single operations, by Google Benchmark; its counters are the cost per item or row."""
    note("single operations: two minutes")
    run = programs.run("bench_operations", "--benchmark_format=json")
    found = {}
    for one in json.loads(run["output"])["benchmarks"]:
        if one.get("run_type") == "aggregate":
            continue
        if "items_per_second" in one:
            found[one["name"]] = 1e9 / one["items_per_second"]
        elif "per_row" in one:
            found[one["name"]] = one["per_row"] * 1e9
        else:
            found[one["name"]] = one["cpu_time"]
    return found


def positive(text):
    """An argument that counts something."""
    number = int(text)
    if number < 1:
        raise ValueError
    return number


def sizes_of(text):
    return sorted(positive(size) for size in text.split(","))


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--programs", type=pathlib.Path, required=True, help="folder of the build's programs")
    parser.add_argument("--work", type=pathlib.Path, required=True, help="folder for generated files and results")
    parser.add_argument("--units", type=sizes_of, default="8,32,128", help="sizes of merges (default: %(default)s; 512 takes 3 GB)")
    parser.add_argument("--rounds", type=positive, default=5)
    parser.add_argument("--docs", action="store_true", help="put the figures into docs/performance.md too")
    parser.add_argument("--skip-operations", action="store_true")
    parser.add_argument("--skip-instructions", action="store_true")
    arguments = parser.parse_args()

    programs = Programs(arguments.programs)
    sizes = arguments.units
    units, work = arguments.work / f"units-{SEED}", arguments.work / "scratch"
    work.mkdir(parents=True, exist_ok=True)
    note(f"generating {max(*sizes, 9)} units in {units}")
    programs.workload("generate", units, "--units", max(*sizes, 9), "--seed", SEED)
    sources = [units / f"unit_{number}.comp.db" for number in range(max(*sizes, 9))]

    results = {
        "rounds": arguments.rounds,
        "unit": measure_unit(programs, sources, work, arguments.rounds),
        "merge": [measure_merge(programs, sources[:size], work, arguments.rounds) for size in sizes],
    }
    if not arguments.skip_operations:
        results["operations_ns"] = measure_operations(programs)
    if not arguments.skip_instructions:
        results["instructions"] = instructions.count_all(arguments.programs, units, work)
    shutil.rmtree(work)
    # Not before: a process starts with its parent's peak memory as its own, and plotting takes much.
    import report

    page = pathlib.Path(__file__).parents[1] / "docs" / "performance.md"
    report.write(results, arguments.work, page if arguments.docs else None)


if __name__ == "__main__":
    main()
