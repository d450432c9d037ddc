"""What scripts/faults disturbs, and what has to hold afterwards.

A workload is a directory, a command that changes it, and the states in which the directory may be found
after the command was disturbed. States are compared as text: what `fe_db dump` prints, and the schema.
"""
import functools
import hashlib
import os
import pathlib
import re
import shutil
import signal
import sqlite3
import subprocess
import tempfile

KILLED = -signal.SIGKILL
ABSENT = "not there"


class Result:
    """How a program ended, and what the kit did to it: killed it, let the power fail then or later."""
    def __init__(self, code, output, errors):
        self.code, self.output, self.errors = code, output, errors
        self.is_killed = self.is_lost = False


class Programs:
    def __init__(self, directory, scratch, plant):
        self.bin, self.scratch, self.plant = pathlib.Path(directory).absolute(), scratch, plant
        self.states = {}  # by a hash of the file

    def run(self, name, *arguments, environment=None):
        process = subprocess.Popen(
            [str(self.bin / name), *map(str, arguments)], env=os.environ | (environment or {}),
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, start_new_session=True)
        code = None
        try:
            output, errors = process.communicate(timeout=300)
            code = process.returncode
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            output, errors = process.communicate()
            errors += b" hung for five minutes"
        return Result(code, output.decode(errors="replace"), errors.decode(errors="replace"))

    def make(self, name, *arguments, **options):
        """A run that prepares something; answers what it printed."""
        result = self.run(name, *arguments, **options)
        if result.code != 0:
            raise SystemExit(f"scripts/faults: cannot prepare: {name} {arguments}: {result.errors.strip()}")
        return result.output

    def state_of(self, path):
        """The content of a database as a program that opens it finds it, without touching it."""
        if not path.exists() or path.stat().st_size == 0:
            return ABSENT
        journal = path.with_name(path.name + "-journal")
        key = hashlib.sha256(path.read_bytes()).digest() if not journal.exists() else None
        if key not in self.states:
            with tempfile.TemporaryDirectory(dir=self.scratch) as look:
                for name in {path, journal} if key is None else {path}:
                    shutil.copy(name, look)
                state = self.read(pathlib.Path(look, path.name))
            if key is None:
                return state
            self.states[key] = state
        return self.states[key]

    def read(self, path):
        dump = self.run("fe_db", "dump", path)
        if dump.code != 0:
            return "cannot be read: " + dump.errors.replace(str(path), path.name)
        connection = sqlite3.connect(path)
        try:
            integrity = connection.execute("PRAGMA integrity_check").fetchall()
            schema = connection.execute("SELECT name, sql FROM sqlite_schema ORDER BY name").fetchall()
        except sqlite3.Error as error:
            integrity, schema = str(error), []
        connection.close()
        return f"{schema}\n{dump.output}" if integrity == [("ok",)] else f"damaged: {integrity}"


class Workload:
    """Files that a command changes as one: afterwards they are as before or as the command leaves them."""
    changes = []  # relative paths of the databases
    options = ()
    is_durable = False  # a power failure after the end takes nothing away
    code_of_a_repetition = 0
    cache = ""  # pages in SQLite's cache; few are written long before the commit, as in a large merge

    def __init__(self, name, programs, sources, template, **settings):
        self.name, self.programs, self.sources, self.template = name, programs, sources, template
        vars(self).update(settings)
        template.mkdir()
        self.prepare(template)

    def run(self, directory, environment=None):
        program, *arguments = self.command(directory)
        return self.programs.run(program, *arguments, environment=environment)

    def states(self, directory):
        return [self.programs.state_of(directory / path) for path in self.changes]

    def listing(self, directory):
        return sorted(str(path.relative_to(directory)) for path in directory.rglob("*"))

    def bystanders(self, directory):
        return {path: (directory / path).read_bytes() for path in self.listing(self.template)
                if (directory / path).is_file() and path not in self.changes}

    def learn(self, fresh):
        """`fresh` answers new copies of the template. Runs the command undisturbed, and once more."""
        directory = fresh()
        self.before = self.states(directory)
        first = self.run(directory)
        self.after, self.whole = self.states(directory), self.listing(directory)
        second = self.run(directory)
        self.after_two = self.states(directory)
        if (first.code, second.code) != (0, self.code_of_a_repetition) or self.before == self.after:
            raise SystemExit(f"scripts/faults: {self.name} undisturbed: {first.errors}{second.errors or 'does nothing'}")

    def check(self, directory, result):
        """What is wrong after a disturbed run, and after a further, undisturbed one."""
        found = self.states(directory)
        faults = self.judge(found, result)
        if self.bystanders(directory) != self.bystanders(self.template):
            faults.append("a file was changed that it has to leave alone")
        if not faults:
            faults += self.check_next(directory, found)
        return faults

    def judge(self, found, result):
        if result.is_killed:
            allowed = [self.before, self.after]
        elif result.is_lost:
            allowed = [self.after] if self.is_durable else [self.before, self.after]
        elif result.code == 0:
            allowed = [self.after]
        elif result.code == 1:
            allowed = [self.before]
        else:
            return [f"ended with {result.code}: {result.errors.strip()}"]
        if result.code == 1 and not re.search(r"^fe_db: .*\S", result.errors, re.M):
            return ["failed without a message"]
        if found in allowed:
            return []
        what = {str(self.before): "as before", str(self.after): "complete"}.get(str(found), "half done")
        bad = [line for state in found for line in state.split("\n")[:1] if line.startswith(("damaged", "cannot"))]
        return [f"exit code {result.code}, and the target is {what}{': ' + bad[0] if bad else ''}"]

    def check_next(self, directory, found):
        result = self.run(directory)
        is_complete = found == self.after
        expected = (self.code_of_a_repetition, self.after_two) if is_complete else (0, self.after)
        faults = self.leftovers(directory)
        if (result.code, self.states(directory)) != expected:
            faults.append(f"the next run ends with {result.code}, {result.errors.strip()!r}, or its content is wrong")
        return faults

    def leftovers(self, directory):
        left = set(self.listing(directory)) ^ set(self.whole)
        return [f"after the next run there is, or lacks: {' '.join(sorted(left))}"] if left else []


class Merge(Workload):
    changes = ["all.db"]
    has_target = True

    def prepare(self, directory):
        self.is_durable = not self.has_target
        (directory / "in").mkdir()
        for unit in (1, 2):
            shutil.copy(self.sources / f"unit{unit}.db", directory / "in")
        if self.has_target:
            self.programs.make("fe_db", "merge", *self.options, directory / "all.db", self.sources / "unit0.db")
        if self.cache:
            connection = sqlite3.connect(directory / "all.db")
            connection.executescript("PRAGMA page_size=4096; VACUUM")
            connection.close()

    def command(self, directory):
        sources = [directory / f"in/unit{unit}.db" for unit in (1, 2)]
        return ["fe_db", "merge", "--wait", "0", "--jobs", "1", *self.options, directory / "all.db", *sources]


class Init(Workload):
    changes = ["made.db"]
    is_durable = True
    code_of_a_repetition = 1

    def prepare(self, directory):
        pass

    def command(self, directory):
        return ["fe_db", "init", *self.options, directory / "made.db"]


class Index(Workload):
    changes = ["all.db"]

    def prepare(self, directory):
        made = ["--index"] if "--drop" in self.options else ["--no-index"]
        self.programs.make("fe_db", "merge", *made, directory / "all.db", self.sources / "unit1.db")

    def command(self, directory):
        return ["fe_db", "index", "--wait", "0", *self.options, directory / "all.db"]


class Save(Workload):
    """Both saves of a front end. What each one answered decides what its file has to hold."""
    changes = ["unit.pp.db", "all.db"]
    has_rows = True

    def prepare(self, directory):
        self.programs.make("fe_db", "init", directory / "all.db")
        if self.has_rows:
            files = directory / "all.db", directory / "unit.pp.db"
            self.programs.make("fe_db_saving_process", *files, "unit=0", "bulk=3")
            files[1].unlink()

    def command(self, directory):
        options = ["unit=1", "bulk=10", *self.options, *self.programs.plant]
        return ["fe_db_saving_process", directory / "all.db", directory / "unit.pp.db", *options]

    def run(self, directory, environment=None):
        if environment is None:  # the file of one unit, which a front end begins anew
            for path in directory.glob("unit.pp.db*"):
                path.unlink()
        return super().run(directory, environment)

    def states(self, directory):
        found = super().states(directory)
        has_rows = re.search(r"^\w", found[0].partition("\n")[2], re.M)
        return [found[0] if has_rows or "\n" not in found[0] else ABSENT, found[1]]

    def judge(self, found, result):
        answers = dict(line.split() for line in result.output.splitlines())
        if not result.is_killed and result.code != (0 if list(answers.values()) == ["true", "true"] else 1):
            return [f"ended with {result.code} after {answers}: {result.errors.strip()}"]
        if "false" in result.output and not re.search(r"^orvalesca: .*\S", result.errors, re.M):
            return ["answered false without a message"]
        faults = []
        for what, before, after, now in zip(("pp", "comp"), self.before, self.after, found):
            is_saved = answers.get(what) == "true"
            is_open = result.is_lost or result.is_killed and not is_saved
            allowed = [before, after] if is_open else [after] if is_saved else [before]
            if now not in allowed:
                state = "complete" if now == after else "as before" if now == before else "half done"
                first = now.split("\n")[0] if now.startswith(("damaged", "cannot")) else ""
                faults.append(f"the save to {what} answered {answers.get(what)}, and its file is {state} {first}")
        return faults

    def check_next(self, directory, found):
        return super().check_next(directory, [self.after[0], found[1]] if found[1] == self.after[1] else found)


class Record(Workload):
    """The files of units. Where a manifest is there, its unit's files are whole and of one recording."""
    units = ("one",)  # of several each is recorded by a process of its own
    is_again = False  # over the files of a source that was another then

    def prepare(self, directory):
        (directory / "out").mkdir()
        if self.is_again:
            program, *arguments = self.command(directory)
            self.programs.make(program, *arguments, environment={"CPATH": str(self.sources / "other")})

    def command(self, directory):
        what = ["--", "gcc", "-c", self.sources / "one.c"] if len(self.units) == 1 else ["-j", "1", "-p", self.sources]
        return ["fe_db_record", "-o", directory / "out", "--keep-preprocessed", *what]

    def bystanders(self, directory):
        return {}  # all files are the unit's

    def files_of(self, directory, unit):
        return {path.name: path.read_bytes() for path in sorted((directory / "out").glob(f"{unit}.c-*"))
                if re.search(r"\.(i|pp\.db|comp\.db|manifest)$", path.name)}

    def states(self, directory):
        """Of each unit its files, or that there is no manifest."""
        found = [self.files_of(directory, unit) for unit in self.units]
        return [files if any(name.endswith(".manifest") for name in files) else ABSENT for files in found]

    def judge(self, found, result):
        if result.code not in (0, 1) and not result.is_killed:
            return [f"ended with {result.code}: {result.errors.strip()}"]
        if result.code == 1 and not re.search(r"^fe_db_record: .*\S", result.errors, re.M):
            return ["failed without a message"]
        if result.code == 0 and not result.is_lost and found != self.after:
            return ["ended with 0, and files are missing or differ"]
        return [f"the manifest of {unit}.c is there, and a file is not whole"
                for unit, before, after, now in zip(self.units, self.before, self.after, found)
                if now not in (ABSENT, before, after)]

    def check_next(self, directory, found):
        result = self.run(directory)
        faults = self.leftovers(directory)
        if result.code != 0 or self.states(directory) != self.after:
            faults.append(f"the next run ends with {result.code}, {result.errors.strip()!r}, or its files differ")
        return faults


WORKLOADS = {
    "merge-new": functools.partial(Merge, has_target=False),
    "merge-new-no-index": functools.partial(Merge, has_target=False, options=["--no-index"]),
    "merge-old": Merge,
    "merge-old-no-index": functools.partial(Merge, options=["--no-index"]),
    "merge-old-spilling": functools.partial(Merge, cache="8"),
    "init": Init,
    "init-preprocessing": functools.partial(Init, options=["--kind", "preprocessing"]),
    "index": Index,
    "index-drop": functools.partial(Index, options=["--drop"]),
    "save": Save,
    "save-new": functools.partial(Save, has_rows=False),
    "save-twice": functools.partial(Save, options=["tries=1"]),
    "save-twice-reset": functools.partial(Save, options=["tries=1", "reset=1"]),
    "save-twice-spilling": functools.partial(Save, options=["tries=1", "bulk=200"], cache="8"),
    "record": Record,
    "record-again": functools.partial(Record, is_again=True),
    "record-units": functools.partial(Record, units=("one", "two")),
}
