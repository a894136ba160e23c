# SPDX-License-Identifier: MIT
"""report.py PLOT FILE...: prints what was measured as tables, and draws the commonest call.

Each FILE is the JSON of one run of benchmark-calls, named by the bus.
"""

import collections
import json
import pathlib
import statistics
import sys

BARE = "QDBusAbstractInterface"
DRAWN = "getBaudrate"

Cost = collections.namedtuple("Cost", "time cpu least")  # in microseconds


def read(path):
    """The cost by call and caller; callers in the order of the program."""
    runs = collections.defaultdict(list)
    for run in json.loads(path.read_text())["benchmarks"]:
        if run["run_type"] == "iteration" and not run.get("error_occurred"):
            name = run["name"].replace("/process_time", "").replace("/real_time", "")
            runs[name, run["family_index"]].append((run["real_time"], run["cpu_time"]))
    costs = collections.defaultdict(dict)
    for (name, _), times in sorted(runs.items(), key=lambda item: item[0][1]):
        real, cpu = zip(*times)
        call, _, caller = name.partition("/")
        costs[call][caller] = Cost(statistics.median(real) / 1000, statistics.median(cpu) / 1000,
                                   min(real) / 1000)
    return costs


def table(*rows):
    header, *body = rows
    for row in (header, ["---"] + ["---:"] * (len(header) - 1), *body):
        print("|", " | ".join(row), "|")
    print()


def number(microseconds):
    return f"{microseconds:,.0f}" if microseconds >= 100 else f"{microseconds:.3g}"


def print_report(bus, costs):
    compared = {call: of for call, of in costs.items() if BARE in of}
    callers = next(iter(compared.values()), {})
    print(f"## {bus}\n")
    for field, title in (("time", "Time of a call"), ("cpu", "Processor time of the process")):
        print(f"{title}: of the bare call in microseconds, of the others as a multiple of it\n")
        others = [caller for caller in callers if caller != BARE]
        rows = []
        for call, of in compared.items():
            bare = getattr(of[BARE], field)
            rows.append([call, number(bare)]
                        + [f"{getattr(of[caller], field) / bare:.2f}" for caller in others])
        table(["call", BARE, *others], *rows)
    if DRAWN in compared:
        print(f"`{DRAWN}`, in microseconds\n")
        table(["caller", "least", "median", "processor"],
              *([caller, *map(number, (cost.least, cost.time, cost.cpu))]
                for caller, cost in compared[DRAWN].items()))
    print("This library alone, in microseconds\n")
    table(["what", "least", "median", "processor"],
          *([f"{call}/{what}".rstrip("/"), *map(number, (cost.least, cost.time, cost.cpu))]
            for call, of in costs.items() if call not in compared for what, cost in of.items()))


def draw(path, costs_of_buses):
    """Two bars a caller: the time of a call, and in it the processor time of the process."""
    width, left, row, bar = 760, 200, 22, 14
    buses = {bus: costs[DRAWN] for bus, costs in costs_of_buses.items() if DRAWN in costs}
    if not buses:
        return
    scale = (width - left - 60) / max(cost.time for of in buses.values() for cost in of.values())
    parts, y = [], 10
    for bus, of in buses.items():
        parts.append(f'<text x="10" y="{y + bar}" font-weight="bold">{bus}</text>')
        y += row
        for caller, cost in of.items():
            end = left + cost.time * scale
            parts += [
                f'<text x="{left - 8}" y="{y + bar - 2}" text-anchor="end">{caller}</text>',
                f'<rect x="{left}" y="{y}" width="{cost.time * scale:.1f}" height="{bar}"'
                ' fill="#9ecae1"/>',
                f'<rect x="{left}" y="{y}" width="{cost.cpu * scale:.1f}" height="{bar}"'
                ' fill="#3182bd"/>',
                f'<text x="{end + 5:.1f}" y="{y + bar - 2}">{cost.time:.0f}</text>',
            ]
            y += row
        y += row // 2
    parts.append(f'<text x="10" y="{y + bar}">{DRAWN}: median time of a call in microseconds;'
                 ' dark: processor time of the calling process</text>')
    path.write_text(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {y + row}"'
                    ' font-family="sans-serif" font-size="13">\n'
                    '<!-- SPDX-License-Identifier: MIT -->\n'
                    '<rect width="100%" height="100%" fill="white"/>\n'
                    + "\n".join(parts) + "\n</svg>\n")


def main(plot, *files):
    costs_of_buses = {path.stem: read(path) for path in map(pathlib.Path, files)}
    for bus, costs in costs_of_buses.items():
        print_report(bus, costs)
    draw(pathlib.Path(plot), costs_of_buses)


main(*sys.argv[1:])
