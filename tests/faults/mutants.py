"""Databases that no program wrote, for the subcommands to cope with: bytes, rows and schema changed at
random. A number, the seed, decides everything about one of them, so that it can be made again.
"""
import concurrent.futures
import itertools
import os
import random
import re
import shutil
import sqlite3
import struct
import time

import crash_model
import workloads

# What a terminal would obey, or show in another place than it was written; and what is no text.
UNPRINTABLE = re.compile("[\0-\b\v-\x1f\x7f-\x9f\u2028\u2029\u202a-\u202e\u2066-\u2069\ufffd]")
SANITIZER = re.compile(r"(AddressSanitizer|LeakSanitizer|runtime error): .*")
HOSTILE = "n\x1b[2Jx\n\u202ey\u2028"
VALUES = ["NULL", "-1", "0", "1", "255", "2147483648", "9223372036854775807", "-9223372036854775808", "1e308", "0.5",
          "''", f"'{HOSTILE}'", "x'ff00c3'", "x'00'", "'12'", "'1x'", "zeroblob(70000)", "hex(zeroblob(60000))",
          "rowid", "rowid+1", "7"]
NUMBERS = [0, 1, 2, 127, 128, 255, 0x7fff, 0x8000, 0xffff, 0x7fffffff, 0x80000000, 0xffffffff]
QUESTIONS = ["functions", "variables", "types", "macros", "fields", "enum-constants", "labels", "calls", "externals",
             "unused", "no-effect-calls", "long-names --min-length 3", "definition shared", "declarations shared",
             "callers shared", "callees variable", "types --json", "unused --sarif", "functions --name shared"]


def spoil_bytes(path, chance):
    """Headers of file and pages more often than what lies between."""
    data = bytearray(path.read_bytes())
    page = chance.choice((1, 512, 32768))
    for _ in range(chance.choice((1, 1, 2, 8, 64))):
        if not data:
            break
        at = min(len(data) - 1, chance.randrange(len(data)) // page * page + chance.randrange(0, 120))
        kind = chance.randrange(6)
        if kind == 0:
            data[at] ^= 1 << chance.randrange(8)
        elif kind == 1:
            data[at:at + 4] = struct.pack(">I", chance.choice(NUMBERS))
        elif kind == 2:
            data[at:at + 2] = struct.pack(">H", chance.choice(NUMBERS) & 0xffff)
        elif kind == 3:
            data[at:at + chance.choice((4, 100, 4096))] = b""
        elif kind == 4:
            size, source = chance.choice((8, 512, 32768)), chance.randrange(len(data))
            data[at:at + size] = data[source:source + size]
        else:
            del data[max(1, len(data) - chance.choice((1, 1000, 40000, 400000))):]
    path.write_bytes(data)


def row_statements(table, columns, chance):
    column, value = chance.choice(columns), chance.choice(VALUES)
    where = chance.choice(("", f" WHERE rowid % {chance.randrange(1, 6)} = 0", " WHERE rowid = 1"))
    return [f'UPDATE "{table}" SET "{column}" = {value}{where}',
            f'DELETE FROM "{table}"{where}',
            f'INSERT INTO "{table}" ("{column}") VALUES ({value})',
            f'UPDATE "{table}" SET rowid = rowid + {chance.choice((1000, 2**62))}{where}']


def schema_statements(table, columns, chance):
    column = chance.choice(columns)
    other = f'ALTER TABLE "{table}" RENAME TO other;'
    return [f'DROP TABLE "{table}"',
            f'ALTER TABLE "{table}" DROP COLUMN "{column}"',
            f'ALTER TABLE "{table}" RENAME COLUMN "{column}" TO "{HOSTILE}"',
            f'ALTER TABLE "{table}" ADD COLUMN "{HOSTILE}" DEFAULT x\'00\'',
            f'{other} CREATE VIEW "{table}" AS SELECT * FROM other',
            f'{other} CREATE TABLE "{table}" AS SELECT * FROM other',
            f'CREATE TRIGGER "{HOSTILE}" AFTER INSERT ON "{table}" BEGIN DELETE FROM File; END',
            f'CREATE TRIGGER t BEFORE DELETE ON "{table}" BEGIN SELECT RAISE(ABORT, \'{HOSTILE}\'); END',
            f'CREATE UNIQUE INDEX "{HOSTILE}" ON "{table}" ("{column}")',
            f'CREATE INDEX i ON "{table}" (lower("{column}"))',
            f'CREATE VIRTUAL TABLE v USING fts5("{column}", content="{table}")',
            f'{other} CREATE VIRTUAL TABLE "{table}" USING fts5({",".join(columns)})',
            "PRAGMA writable_schema=1; UPDATE sqlite_schema SET rootpage = "
            f"{chance.choice(NUMBERS)} WHERE name = '{table}'",
            f"PRAGMA writable_schema=1; UPDATE sqlite_schema SET sql = replace(sql, '{column}', '{HOSTILE}')",
            f"PRAGMA writable_schema=1; UPDATE sqlite_schema SET sql = '{HOSTILE}' WHERE name = '{table}'",
            "PRAGMA journal_mode=wal", f"PRAGMA user_version={chance.choice((0, 2, -1))}",
            f"PRAGMA page_size={chance.choice((512, 65536))}; VACUUM", "PRAGMA auto_vacuum=1; VACUUM"]


def spoil_sql(path, chance, statements_of):
    connection = sqlite3.connect(path)
    for _ in range(chance.choice((1, 1, 3, 10))):
        try:
            names = connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%'"
                                       " AND sql NOT LIKE '%VIRTUAL%' ORDER BY name").fetchall()
            table = chance.choice(names)[0]
            columns = [row[1] for row in connection.execute(f'PRAGMA table_info("{table}")')]
            connection.executescript(chance.choice(statements_of(table, columns, chance)))
        except (sqlite3.Error, IndexError, UnicodeError):
            pass  # the schema has become one that SQLite itself refuses
    connection.close()


def spoil(path, chance):
    kind = chance.randrange(8)
    if kind in (0, 1, 2, 7):
        spoil_sql(path, chance, row_statements)
    if kind in (3, 4, 7):
        spoil_sql(path, chance, schema_statements)
    if kind in (5, 6, 7):
        spoil_bytes(path, chance)


def health(programs, path):
    """0 of a damaged file, 1 of one that SQLite finds nothing wrong with, 2 if `fe_db check` does not either."""
    connection = sqlite3.connect(path)
    try:
        is_sound = connection.execute("PRAGMA integrity_check").fetchall() == [("ok",)]
    except (sqlite3.Error, UnicodeError):
        is_sound = False
    connection.close()
    return is_sound + (is_sound and programs.run("fe_db", "check", path).code == 0)


def commands_for(bad, good, new, chance):
    """The command, and the file that it writes, if it writes one."""
    questions = [["fe_db", "find", bad, *question.split()] for question in chance.sample(QUESTIONS, 6)]
    reading = [["fe_db", "stats", bad], ["fe_db", "dump", bad], ["fe_db", "diff", bad, good], ["fe_db", "check", bad],
               ["fe_db", "diff", good, bad], ["fe_db", "check", "--json", bad], *questions]
    writing = [(["fe_db", "merge", new, bad], new), (["fe_db", "merge", "--keep-going", new, good, bad], new),
               (["fe_db", "merge", bad, good], bad), (["fe_db", "index", bad], bad),
               (["fe_db", "index", "--drop", bad], bad),
               (["fe_db_saving_process", bad, new, "unit=1", "tries=1"], bad)]
    return [(command, None) for command in reading] + writing


def judge(command, result, before, after, written):
    text = result.output + result.errors
    report = SANITIZER.search(text)
    if report:
        return report.group(0)
    if result.code not in (0, 1):
        return f"ended with {result.code}: {result.errors.strip()[-300:]}"
    if UNPRINTABLE.search(text):
        return f"prints {UNPRINTABLE.search(text).group(0)!r} after {UNPRINTABLE.split(text)[0][-40:]!r}"
    if result.code == 1 and not text.strip():
        return "failed without a message"
    may_change = written is not None and (result.code == 0 or "--keep-going" in command or "tries=1" in command)
    if before != after and not may_change:
        changed = [name for name in before.keys() | after.keys() if before.get(name) != after.get(name)]
        return f"ended with {result.code} and changed {' '.join(sorted(os.path.basename(name) for name in changed))}"
    return None


def try_mutant(kit, programs, bases, seed):
    chance = random.Random(seed)
    directory = kit.scratch / f"mutant-{seed}"
    directory.mkdir()
    mutant, good = directory / "mutant.db", bases[0]
    shutil.copy(chance.choice(bases), mutant)
    spoil(mutant, chance)
    place = directory / "try"
    found = {}  # what is wrong: the commands
    health_before = health(programs, mutant)
    for command, written in commands_for(place / "bad.db", good, place / "new.db", chance):
        shutil.rmtree(place, ignore_errors=True)
        place.mkdir()
        shutil.copy(mutant, place / "bad.db")
        before = crash_model.contents_of(place)
        result = programs.run(*command, environment={"UBSAN_OPTIONS": "print_stacktrace=1"})
        fault = judge(command, result, before, crash_model.contents_of(place), written)
        if not fault and written and result.code == 0 and health(programs, written) < health_before:
            fault = "ended with 0, and what it wrote is worse than what it was given"
        if fault:
            words = " ".join(map(str, command)).removeprefix("fe_db ")
            found.setdefault(fault.replace(f"{place}/", ""), []).append(words)
    for fault, commands in found.items():
        text = "; ".join(commands).replace(f"{place}/", "").replace(f"{kit.scratch}/", "")
        kit.report(f"mutant {seed}: {fault}: {text}", f"--only mutants --seed {seed} --mutants 1")
    if not kit.options.keep:
        shutil.rmtree(directory)


def feed(kit, files):
    """As many as was asked for, or until the time is over. Answers how many it were."""
    programs = workloads.Programs(kit.options.sanitized, kit.scratch, [])
    bases = [files / "unit1.db", files / "unit0.pp.db", kit.scratch / "merged.db"]
    kit.programs.make("fe_db", "merge", bases[2], files / "unit0.db", files / "unit1.db")
    end = time.monotonic() + kit.options.seconds
    wanted = kit.options.mutants
    fed = 0

    def is_due(number):
        return number < wanted if wanted is not None else time.monotonic() < end

    with concurrent.futures.ThreadPoolExecutor(kit.options.jobs) as pool:
        seeds = itertools.count(kit.options.seed)
        while is_due(fed):
            batch = kit.options.jobs if wanted is None else min(kit.options.jobs, wanted - fed)
            list(pool.map(lambda seed: try_mutant(kit, programs, bases, seed), itertools.islice(seeds, batch)))
            fed += batch
            kit.progress(f"{fed} mutated databases")
    kit.progress("")
    return fed
