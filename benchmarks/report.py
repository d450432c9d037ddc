"""Writes what measure.py found: results.json, results.md and results.svg."""
import json
import os
import platform
import re

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402  (the backend comes first)
import numpy  # noqa: E402

MIB = 1024 * 1024

# Limits, by size of the merge: a ratio's limit for up to 8, up to 32, and more units.
MERGE_TARGETS = {
    "merge / floor_merge": (2.3, 2.4, 2.8),
    "merge / alt_sql": (0.8, 0.65, 0.6),
    "load / floor_read": (2.1, 2.1, 2.1),
    "fold / floor_read": (1.5, 1.6, 2.0),
    "wall, two jobs / one": (None, None, 0.7),
}
UNIT_TARGETS = {"save / floor_write": 1.45, "load / floor_read": 2.1}
INSTRUCTION_TARGETS = {
    "load / floor_read": ("load, per row", "floor_read, per row", 1.75),
    "merge / alt_hash": ("merge, per row read", "alt_hash, per row read", 1.35),
    "repeat by key": ("repeat: type by key", None, 150),
    "repeat by name": ("repeat: type by name", None, 700),
}


def describe_machine():
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        model = re.search(r"model name\s*: (.*)", file.read())
    return f"{model.group(1) if model else platform.machine()}, {os.cpu_count()} processors"


def target_of(name, units):
    limits = MERGE_TARGETS.get(name)
    return limits[0 if units <= 8 else 1 if units <= 32 else 2] if limits else None


def slope(xs, ys):
    """The exponent of a power that fits: 1 is linear growth."""
    return numpy.polyfit(numpy.log(xs), numpy.log(ys), 1)[0]


def row(*cells):
    return "| " + " | ".join(str(cell) for cell in cells) + " |"


def table(*header):
    return [row(*header), row("---", *["---:"] * (len(header) - 1))]


def ratio_cell(value, limit):
    return f"{value:.2f}" + (f" (≤ {limit:g})" if limit else "")


def merge_tables(merges):
    lines = table("merge", *(f"{merge['units']} units" for merge in merges))

    def add(name, cell):
        lines.append(row(name, *(cell(merge) for merge in merges)))

    add("rows read, million", lambda m: f"{m['rows_in'] / 1e6:.2f}")
    add("rows written, million", lambda m: f"{m['rows_out'] / 1e6:.2f}")
    add("one job: processor time, s", lambda m: f"{m['cpu']:.2f}")
    add("one job: facts per second", lambda m: f"{m['facts_per_second']:,.0f}")
    add("one job: ns per row read", lambda m: f"{m['per_row_ns']:.0f}")
    add("wall time, one / two jobs, s", lambda m: f"{m['wall']:.2f} / {m['wall_two']:.2f}")
    add("peak memory, one / two jobs, MiB", lambda m: f"{m['peak'] / MIB:.0f} / {m['peak_two'] / MIB:.0f}")
    add("peak memory, alt_hash / alt_sql, MiB", lambda m: f"{m['alt_hash_peak'] / MIB:.0f} / {m['alt_sql_peak'] / MIB:.0f}")
    add("peak bytes per row written, one job", lambda m: f"{m['peak'] / m['rows_out']:.0f}")
    lines += ["", *table("ratio", *(f"{merge['units']} units" for merge in merges))]
    for name in merges[0]["ratio"]:
        add(name, lambda m, name=name: ratio_cell(m["ratio"][name], target_of(name, m["units"])))
    return lines


def unit_table(unit):
    lines = table("one unit", "")
    lines.append(row("occurrences recorded per second", f"{unit['occurrences_per_second']:,.0f}"))
    lines.append(row("facts saved per second, new file", f"{unit['saved_per_second']:,.0f}"))
    lines.append(row("facts loaded per second", f"{unit['loaded_per_second']:,.0f}"))
    lines.append(row("facts of the unit, new in the filled file", f"{unit['rows']:,}, {unit['rows_new_in_filled']:,}"))
    lines.append(row("bytes per fact in the file", f"{unit['bytes_per_row_in_file']:.0f}"))
    lines.append(row("peak memory, bytes per fact", f"{unit['bytes_per_fact']:.0f}"))
    for name, value in unit["ratio"].items():
        lines.append(row(name, ratio_cell(value, UNIT_TARGETS.get(name))))
    return lines


def growth_table(results):
    """Exponents of the fitted lines; 1 is a cost in proportion to the input."""
    lines = table("growth", "exponent", "cost per item, smallest to largest")
    merges = results["merge"]
    if len(merges) > 1:
        rows = [merge["rows_in"] for merge in merges]
        costs = [merge["per_row_ns"] for merge in merges]
        lines.append(row("merge, by rows read", f"{1 + slope(rows, costs):.2f}", f"{costs[0]:.0f} to {costs[-1]:.0f} ns"))
    for name, points in sorted(series_of(results.get("operations_ns", {})).items()):
        sizes, costs = zip(*points)
        lines.append(row(name, f"{1 + slope(sizes, costs):.2f}", f"{costs[0]:.0f} to {costs[-1]:.0f} ns"))
    return lines


def series_of(operations):
    """Benchmarks that ran at several sizes: name to (size, ns per item)."""
    series = {}
    for name, cost in operations.items():
        match = re.match(r"(.*?)/(\d+)(/iterations:\d+)?$", name)
        if match:
            series.setdefault(match.group(1), []).append((int(match.group(2)), cost))
    return {name: sorted(points) for name, points in series.items() if len(points) > 1}


def operations_table(operations):
    """First occurrences, repeats and look-ups, of one size."""
    lines = table("operation", "ns")
    in_series = series_of(operations)
    for name, cost in operations.items():
        base = re.sub(r"/\d+.*$", "", name)
        if base not in in_series:
            lines.append(row(base, f"{cost:.0f}"))
    return lines


def instructions_table(counts):
    lines = table("instructions", "")
    for name, value in counts.items():
        lines.append(row(name, f"{value:.0f}"))
    for name, (first, second, limit) in INSTRUCTION_TARGETS.items():
        value = counts[first] / (counts[second] if second else 1)
        lines.append(row(f"**{name}**", f"{value:.2f} (≤ {limit:g})" if second else f"{value:.0f} (≤ {limit:g})"))
    return lines


def plot(results, path):
    figure, (left, right) = plt.subplots(1, 2, figsize=(11, 4))
    merges = results["merge"]
    rows = numpy.array([merge["rows_in"] for merge in merges]) / 1e6
    for label, name in (
        ("fe_db merge, one job", "cpu"),
        ("floor_merge", "floor_cpu"),
        ("alt_hash", "alt_hash_cpu"),
        ("alt_sql", "alt_sql_cpu"),
    ):
        times = numpy.array([merge[name] for merge in merges])
        (line,) = left.plot(rows, times, "o", label=label)
        if len(rows) > 1:
            left.plot(rows, numpy.polyval(numpy.polyfit(rows, times, 1), rows), color=line.get_color())
    left.set(xlabel="million rows read", ylabel="processor time, s", title="Merge, with fitted lines")
    left.legend()
    for name, points in series_of(results.get("operations_ns", {})).items():
        if name.startswith("find/") and points[0][1] > 0:
            sizes, costs = zip(*points)
            right.loglog(sizes, costs, marker=".", linewidth=0.8)
    right.set(xlabel="rows of each table", ylabel="ns per row", title="Find cursors, cost per row")
    figure.tight_layout()
    figure.savefig(path)


def markdown(results):
    lines = [
        f"{describe_machine()}; medians of {results['rounds']} rounds. Limits are in brackets.",
        "",
        *merge_tables(results["merge"]),
        "",
        *unit_table(results["unit"]),
    ]
    if "instructions" in results:
        lines += ["", *instructions_table(results["instructions"])]
    lines += ["", *growth_table(results)]
    if "operations_ns" in results:
        lines += ["", *operations_table(results["operations_ns"])]
    return "\n".join(lines) + "\n"


def put_into_page(text, figure, page):
    """Replaces the text between the page's two marks, and the plot next to it."""
    begin, end = "<!-- figures -->\n", "<!-- end of figures -->"
    before, rest = page.read_text().split(begin)
    after = rest.split(end)[1]
    plot_path = page.with_suffix(".svg")
    plot_path.write_bytes(figure.read_bytes())
    page.write_text(f"{before}{begin}{text}\n![plot]({plot_path.name})\n{end}{after}")


def write(results, directory, page=None):
    (directory / "results.json").write_text(json.dumps(results, indent=2) + "\n")
    text = markdown(results)
    (directory / "results.md").write_text(text)
    plot(results, directory / "results.svg")
    if page is not None:
        put_into_page(text, directory / "results.svg", page)
    print(text)
    print(f"written: {directory}/results.md, results.json, results.svg")
