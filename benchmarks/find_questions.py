"""Times questions of fe_db find on a file of a million facts and a million references, which it makes:
whole processes, medians of several runs."""
import argparse
import pathlib
import sqlite3
import statistics
import subprocess
import time

FILES, FUNCTIONS, FIELDS, CALLS, REFERENCES = 2_000, 100_000, 100_000, 600_000, 1_000_000
FREQUENT = 5  # every ninth reference is to this function
QUESTIONS = [
    ["uses", "name_77", "--limit", "100"],
    ["callers", "name_78", "--limit", "100"],
    ["callees", "name_79", "--depth", "3"],
    ["definition", "name_80"],
    ["functions", "--name", "ns::name_81"],
    ["uses", f"name_{FREQUENT}", "--limit", "100"],
    ["uses", f"name_{FREQUENT}"],
    ["uses", f"name_{FREQUENT}", "--count"],
    ["callers", "nmae_77"],
]


def make(program, path):
    path.unlink(missing_ok=True)
    subprocess.run([program, "init", path], check=True)
    file = sqlite3.connect(path)
    file.execute("PRAGMA synchronous=OFF")

    def fill(rows, insert):
        file.execute(
            f"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n LIMIT {rows}) {insert} FROM n")

    fill(FILES, "INSERT INTO File SELECT i, '/p/d' || (i % 50) || '/f' || i || '.cc', 1, 2, 0")
    fill(FUNCTIONS + FIELDS, "INSERT INTO Identifier SELECT i, 'name_' || i, 1, 2")
    fill(FUNCTIONS, f"INSERT INTO Function SELECT i, i, i, 1 + i % {FILES}, i, 5, 1, 0, 2, 1, 0")
    fill(FIELDS, f"INSERT INTO Field SELECT i, {FUNCTIONS} + i, 1 + i % {FILES}, i, 7, 1")
    fill(CALLS, f"INSERT INTO CallPoint SELECT i, 1 + i % {FILES}, i, 3, 1, 1 + i % {FUNCTIONS},"
                f" 1 + (i * 7) % {FUNCTIONS}")
    fill(REFERENCES, "INSERT INTO Reference SELECT CASE WHEN i % 10 = 0 THEN 64 ELSE 2 END, CASE WHEN i % 9 = 0"
                     f" THEN {FREQUENT} ELSE 1 + (i * 13) % {FUNCTIONS} END, 1 + i % {FILES}, i, 9, 4")
    fill(FUNCTIONS, "INSERT INTO Property SELECT 2, i, 0, NULL, 'ns'")
    file.commit()
    file.close()
    subprocess.run([program, "index", path], check=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--programs", type=pathlib.Path, required=True)
    parser.add_argument("--work", type=pathlib.Path, required=True)
    parser.add_argument("--runs", type=int, default=9)
    options = parser.parse_args()
    program = options.programs / "fe_db"
    options.work.mkdir(parents=True, exist_ok=True)
    file = options.work / "million.db"
    make(program, file)
    print(f"{'question':44} {'answers':>8} {'ms':>8}")
    for question in QUESTIONS:
        times = []
        for _ in range(options.runs):
            start = time.perf_counter()
            result = subprocess.run([program, "find", file, *question], capture_output=True, check=False)
            times.append((time.perf_counter() - start) * 1000)
        answers = result.stdout.count(b"\n")
        print(f"{' '.join(question):44} {answers:8} {statistics.median(times):8.1f}")


if __name__ == "__main__":
    main()
