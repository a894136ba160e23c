# SPDX-License-Identifier: MIT
"""report.py PLOT FILE...: prints what was measured as tables, and draws the commonest call.

Each FILE is the JSON of one run of a benchmark, named by the benchmark and the bus.
"""

import collections
import json
import pathlib
import re
import statistics
import sys

BARE = "QDBusAbstractInterface"
DRAWN = "getBaudrate"

# In microseconds; the least is what a call costs when nothing disturbs it.
Cost = collections.namedtuple("Cost", "least median processor")
# What Google Benchmark adds to a name.
OPTIONS = re.compile(r"/(process_time|real_time|repeats:\d+)")


def read(path):
    """The machine, and the cost by call and caller; callers in the order of the program."""
    measured = json.loads(path.read_text())
    context = measured["context"]
    machine = (f"{context['num_cpus']} processors of {context['mhz_per_cpu']} MHz, load"
               f" {context['load_avg'][0]:.1f} at the start, {context['date']}")
    runs = collections.defaultdict(list)
    for run in measured["benchmarks"]:
        if run["run_type"] == "iteration" and not run.get("error_occurred"):
            name = OPTIONS.sub("", run["name"])
            place = run["family_index"], run["per_family_instance_index"]
            runs[place, name].append((run["real_time"], run["cpu_time"]))
    costs = collections.defaultdict(dict)
    for (_, name), times in sorted(runs.items()):
        real, cpu = zip(*times)
        call, _, caller = name.partition("/")
        costs[call][caller] = Cost(min(real) / 1000, statistics.median(real) / 1000,
                                   min(cpu) / 1000)
    return machine, costs


def table(*rows):
    header, *body = rows
    for row in (header, ["---"] + ["---:"] * (len(header) - 1), *body):
        print("|", " | ".join(row), "|")
    print()


def number(microseconds):
    return f"{microseconds:,.0f}" if microseconds >= 100 else f"{microseconds:.3g}"


def print_costs(title, costs):
    print(f"{title}, in microseconds\n")
    table(["what", "least", "median", "processor"],
          *([what, *map(number, cost)] for what, cost in costs))


def print_comparison(costs):
    others = [caller for caller in next(iter(costs.values())) if caller != BARE]
    for field, title in (("least", "Least time of a call"), ("median", "Median time of a call"),
                         ("processor", "Least processor time of the process for a call")):
        print(f"{title}: of the bare call in microseconds, of the others as a multiple of it\n")
        rows = []
        for call, of in costs.items():
            bare = getattr(of[BARE], field)
            rows.append([call, number(bare)]
                        + [f"{getattr(of[caller], field) / bare:.2f}" for caller in others])
        table(["call", BARE, *others], *rows)
    if DRAWN in costs:
        print_costs(f"`{DRAWN}`", costs[DRAWN].items())


def print_report(name, machine, costs):
    print(f"## {name}\n\n{machine}\n")
    compared = {call: of for call, of in costs.items() if BARE in of}
    if compared:
        print_comparison(compared)
    alone = [(f"{call}/{what}".rstrip("/"), cost) for call, of in costs.items()
             if call not in compared for what, cost in of.items()]
    if alone:
        print_costs("Alone", alone)


def draw(path, measured):
    """Two bars a caller: the least time of a call, and in it the processor time of the process."""
    width, left, row, bar = 800, 240, 22, 14
    buses = {name.partition("-")[2]: costs[DRAWN] for name, costs in measured.items()
             if DRAWN in costs}
    if not buses:
        return
    scale = (width - left - 60) / max(cost.least for of in buses.values() for cost in of.values())
    parts, y = [], 10
    for bus, of in buses.items():
        parts.append(f'<text x="10" y="{y + bar}" font-weight="bold">{bus}</text>')
        y += row
        for caller, cost in of.items():
            end = left + cost.least * scale
            parts += [
                f'<text x="{left - 8}" y="{y + bar - 2}" text-anchor="end">{caller}</text>',
                f'<rect x="{left}" y="{y}" width="{cost.least * scale:.1f}" height="{bar}"'
                ' fill="#9ecae1"/>',
                f'<rect x="{left}" y="{y}" width="{cost.processor * scale:.1f}" height="{bar}"'
                ' fill="#3182bd"/>',
                f'<text x="{end + 5:.1f}" y="{y + bar - 2}">{cost.least:.0f}</text>',
            ]
            y += row
        y += row // 2
    parts.append(f'<text x="10" y="{y + bar}">{DRAWN}: least time of a call in microseconds;'
                 ' dark: processor time of the calling process</text>')
    path.write_text(f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {y + row}"'
                    ' font-family="sans-serif" font-size="13">\n'
                    '<!-- SPDX-License-Identifier: MIT -->\n'
                    '<rect width="100%" height="100%" fill="white"/>\n'
                    + "\n".join(parts) + "\n</svg>\n")


def main(plot, *files):
    measured = {path.stem: read(path) for path in map(pathlib.Path, files)}
    for name, (machine, costs) in measured.items():
        print_report(name, machine, costs)
    draw(pathlib.Path(plot), {name: costs for name, (_, costs) in measured.items()})


main(*sys.argv[1:])
