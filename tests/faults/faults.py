#!/usr/bin/env python3
"""Makes every call by which fe_db's programs open, read or change files fail, one at a time, or ends
the program there, and looks at what is left. scripts/faults builds the programs and calls this.
"""
import argparse
import concurrent.futures
import itertools
import os
import pathlib
import shutil
import signal
import sys
import tempfile
import threading
import time

import crash_model
import mutants
import workloads

CRASHES = ("kill-before", "kill-after", *crash_model.LOSSES)
FAULTS = {  # per kind of call
    "open": ("EACCES", "EIO", "ENOSPC"),
    "read": ("EIO",),
    "write": ("EIO", "ENOSPC", "EIO+", "ENOSPC+", "short", "kill-half"),
    "sync": ("EIO", "EIO+"),
    "truncate": ("EIO", "EIO+"),
    "rename": ("EACCES", "EIO", "ENOSPC", "EINVAL", "EIO+"),
    "link": ("EACCES", "EIO", "ENOSPC"),
    "mkdir": ("EACCES", "ENOSPC"),
    "unlink": ("EACCES", "EIO", "EIO+"),
}
SOURCES = {
    "one.c": '#include "common.h"\n#if __has_include(<extra.h>)\n#include <extra.h>\n#endif\n'
             "int one(int x) { return SCALE(x); }\n",
    "two.c": '#include "common.h"\nint two(void) { return one(2); }\n',
    "common.h": "#define SCALE(x) ((x) * 3)\nextern int one(int x);\n",
    "other/extra.h": "int extra;\n",
}


def faults_of(call):
    is_change = call.error == 0 and (call.kind not in ("open", "read") or call.first or call.second)
    return FAULTS[call.kind] + (CRASHES if is_change else ())


class Kit:
    def __init__(self, options, scratch):
        self.options, self.scratch = options, scratch
        self.programs = workloads.Programs(options.programs, scratch, options.plant)
        self.numbers = itertools.count()
        self.lock = threading.Lock()
        self.points = self.failures = 0

    def report(self, text, repeat):
        with self.lock:
            self.failures += 1
            print(f"FAILED {text}\n  repeat: scripts/faults {repeat}", flush=True)

    def progress(self, text):
        if sys.stderr.isatty():
            print(f"\r{text}, {self.failures} failures\033[K", end="", file=sys.stderr, flush=True)

    def make_sources(self):
        files = self.scratch / "sources"
        (files / "other").mkdir(parents=True)
        for name, text in SOURCES.items():
            (files / name).write_text(text)
        entries = [f'{{"directory": "{files}", "file": "{name}", "command": "gcc -c {name}"}}'
                   for name in ("one.c", "two.c")]
        (files / "compile_commands.json").write_text(f"[{','.join(entries)}]")
        for unit in range(3):
            self.programs.make("fe_db", "init", files / f"unit{unit}.db")
            self.programs.make("fe_db_saving_process", files / f"unit{unit}.db", files / f"unit{unit}.pp.db",
                               f"unit={unit}", "bulk=10")
        if (self.programs.bin / "fe_db_record").exists():
            time.sleep(2.1)  # the recorder notes no younger times, so that its manifests would differ
        return files

    def run(self, workload, directory, number=0, how=""):
        log = directory.with_name(directory.name + ".log")
        log.write_bytes(bytes(8))
        result = workload.run(directory, {
            "LD_PRELOAD": str(self.options.preload), "ASAN_OPTIONS": "verify_asan_link_order=0",
            "FAULTS_BELOW": str(directory), "FAULTS_LOG": str(log), "FAULTS_CACHE": workload.cache,
            "FAULTS_AT": str(number), "FAULTS_HOW": "lost" if how in crash_model.LOSSES else how})
        return result, log

    def fresh(self, workload):
        directory = self.scratch / f"{workload.name}-{next(self.numbers)}"
        shutil.copytree(workload.template, directory)
        return directory

    def learn(self, workload):
        """Answers the calls of an undisturbed run and their texts, having made sure that none was missed."""
        workload.learn(lambda: self.fresh(workload))
        directory = self.fresh(workload)
        disk = crash_model.Disk(directory)
        _, log = self.run(workload, directory)
        calls = crash_model.read_log(log)
        disk.replay(calls)
        if disk.now() != crash_model.contents_of(directory) or workload.states(directory) != workload.after:
            raise SystemExit(f"scripts/faults: {workload.name}: fault_points.cpp does not see all calls")
        texts = {call.number: f"{call.kind} {call.path}".replace(f"{directory}/", "") for call in calls}
        return calls, {number: text.replace("\t", " to ") for number, text in texts.items()}

    def try_point(self, workload, number, how):
        directory = self.fresh(workload)
        disk = crash_model.Disk(directory)
        result, log = self.run(workload, directory, number, how)
        result.is_killed = result.code == workloads.KILLED or how.startswith("kill")
        result.is_lost = how in crash_model.LOSSES
        if result.is_lost:
            disk.replay(crash_model.read_log(log))
            disk.write(disk.after(how, number))
        is_reached = int.from_bytes(log.read_bytes()[:8], "little") >= number
        if is_reached or result.is_lost:
            faults = workload.check(directory, result)
        else:
            faults = ["the call was not reached"]
        if not self.options.keep:
            shutil.rmtree(directory)
            log.unlink()
        return faults

    def try_workload(self, name, files):
        workload = workloads.WORKLOADS[name](name, self.programs, files, self.scratch / f"{name}.template")
        calls, texts = self.learn(workload)
        points = [(call.number, how) for call in calls for how in faults_of(call)]
        points += [(len(calls) + 1, how) for how in crash_model.LOSSES]
        if self.options.point:
            points = [self.options.point]
        points = points[self.options.every // 2::self.options.every] or points[:1]

        def try_and_report(point):
            number, how = point
            for fault in self.try_point(workload, number, how):
                self.report(f"{name}, call {number} ({texts.get(number, 'after the end')}), {how}: {fault}",
                            f"--only {name} --point {number}:{how}")

        failures = self.failures
        with concurrent.futures.ThreadPoolExecutor(self.options.jobs) as pool:
            for done, _ in enumerate(pool.map(try_and_report, points)):
                self.progress(f"{name}: {done + 1} of {len(points)} points")
        self.points += len(points)
        self.progress("")
        print(f"{name}: {len(calls)} calls, {len(points)} points, {self.failures - failures} failures", flush=True)


def parse_point(text):
    number, _, how = text.partition(":")
    known = {*CRASHES, *itertools.chain(*FAULTS.values())}
    if not number.isdigit() or how not in known:
        raise argparse.ArgumentTypeError(f"{text}: give NUMBER:FAULT, a fault is one of {' '.join(sorted(known))}")
    return int(number), how


def read_options():
    names = [*workloads.WORKLOADS, "mutants"]
    parser = argparse.ArgumentParser(
        prog="scripts/faults", description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
        epilog=f"Workloads: {' '.join(names)}. Exit codes: 0 nothing was found, 1 something was, 2 wrong usage.")
    parser.add_argument("--only", metavar="WORKLOAD", nargs="+", choices=names, default=names,
                        help="these workloads and no others")
    parser.add_argument("--point", metavar="NUMBER:FAULT", type=parse_point, help="one point, as a failure names it")
    parser.add_argument("--every", metavar="N", type=int, default=1, help="each Nth point, always the same ones")
    parser.add_argument("--seconds", type=float, default=300, help="time for mutated databases (default: 300)")
    parser.add_argument("--mutants", metavar="N", type=int, help="so many mutated databases, whatever the time")
    parser.add_argument("--seed", type=int, default=1, help="of the first mutated database; each adds one")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="programs at a time")
    parser.add_argument("--keep", metavar="DIR", help="work there, and leave what the points left")
    parser.add_argument("--programs", metavar="DIR", type=pathlib.Path, default="build/release/bin",
                        help="programs to disturb (default: build/release/bin)")
    parser.add_argument("--sanitized", metavar="DIR", type=pathlib.Path, default="build/dev/bin",
                        help="programs that get mutated databases (default: build/dev/bin)")
    # An option for the saving process, that plants a fault in it.
    parser.add_argument("--plant", nargs="*", default=[], help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.point and len(options.only) != 1:
        parser.error("--point needs --only with one workload")
    if options.every < 1 or options.jobs < 1:
        parser.error("--every and --jobs begin at 1")
    if options.keep and pathlib.Path(options.keep).exists():
        parser.error(f"{options.keep} exists; give --keep a new name")
    options.preload = options.programs.absolute().parent / "lib/libfe_db_fault_points.so"
    for needed in (options.preload, options.sanitized / "fe_db" if "mutants" in options.only else options.programs):
        if not needed.exists():
            parser.error(f"{needed} is missing; scripts/faults builds it")
    return options


def main():
    options = read_options()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # removes what it has made
    with tempfile.TemporaryDirectory(prefix="fe_db_faults") as temporary:
        place = pathlib.Path(options.keep or temporary).resolve()
        place.mkdir(parents=True, exist_ok=True)
        kit = Kit(options, place)
        files = kit.make_sources()
        for name in options.only:
            if name.startswith("record") and not (kit.programs.bin / "fe_db_record").exists():
                print(f"{name}: NOT TRIED, fe_db_record was not built")
            elif name != "mutants":
                kit.try_workload(name, files)
        fed = mutants.feed(kit, files) if "mutants" in options.only else 0
    print(f"{kit.points} points, {fed} mutated databases, {kit.failures} failures")
    return 1 if kit.failures else 0


if __name__ == "__main__":
    sys.exit(main())
