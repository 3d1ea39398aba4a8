#!/usr/bin/env python3
"""Makes results.md and results.svg of what the benchmarks measured.

  report.py FOLDER COMMAND COMMIT GROWTH... -- COMPARISON...

A GROWTH is what the program growth printed; a COMPARISON is Google Benchmark's JSON, its rows named
as compare.h says. A row passes when our median is within the reach of the peer's.
"""
import json
import math
import os
import re
import sys
from html import escape

UNITS = {"ns": 1, "us": 1e3, "ms": 1e6}
REACH = re.compile(r"(.+) (<=|\+) ([\d.]+)$")


class Pair:
    """Our time on a row and one peer's, in nanoseconds."""

    def __init__(self, row, reach, ours, peer, theirs):
        self.row, self.ours, self.peer, self.theirs = row, ours, peer, theirs
        peers, self.kind, limit = REACH.match(reach).groups()
        self.limit = float(limit) if peer in peers.split(", ") else None
        self.value = ours - theirs if self.kind == "+" else ours / theirs

    def passes(self):
        return self.value <= self.limit

    def value_text(self):
        return f"{self.value:+.2f} ns" if self.kind == "+" else f"{self.value:.2f}"

    def reach_text(self):
        if self.limit is None:
            return "", ""
        reach = f"+{self.limit:g} ns" if self.kind == "+" else f"{self.limit:g}"
        return reach, "yes" if self.passes() else "**no**"


def read_pairs(files):
    rows = {}
    for file in files:
        runs = json.load(open(file))["benchmarks"]
        for run in sorted(runs, key=lambda run: run["family_index"]):
            if run.get("aggregate_name") == "median":
                row, reach, who = run["run_name"].split("|")
                rows.setdefault((row, reach), {})[who] = run["cpu_time"] * UNITS[run["time_unit"]]
    return [Pair(row, reach, times["ours"], peer, theirs)
            for (row, reach), times in rows.items()
            for peer, theirs in times.items() if peer != "ours"]


def time_text(ns):
    for limit, unit in ((1e3, "ns"), (1e6, "us"), (1e9, "ms")):
        if ns < limit:
            return f"{ns * 1e3 / limit:.3g} {unit}"
    return f"{ns / 1e9:.3g} s"


def table(head, rows):
    lines = [head, ["---"] * len(head)] + rows
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def comparison_table(pairs):
    rows = []
    last = None
    for pair in pairs:
        is_first = pair.row != last
        last = pair.row
        rows.append([pair.row if is_first else "", time_text(pair.ours) if is_first else "",
                     pair.peer, time_text(pair.theirs), pair.value_text(), *pair.reach_text()])
    return table(["row", "ours", "peer", "the peer's", "ours / peer", "reach", "within"], rows)


def growth_table(files):
    operations = {}
    for file in files:
        for line in open(file):
            width, name, smallest, *times, note = line.rstrip("\n").split("\t")
            operations.setdefault(name, (f"{int(smallest):,}", note, {}))[2][width] = times
    widths = sorted({width for _, _, times in operations.values() for width in times}, reverse=True)
    head = ["operation", "1 x"]
    head += [f"{width} bit, {size} x" for width in widths for size in ("1", "10", "100", "1000")]
    rows = [[name, smallest, *(t for width in widths for t in times[width]), note]
            for name, (smallest, note, times) in operations.items()]
    return table(head + ["where it rises"], rows)


def machine():
    info = open("/proc/cpuinfo").read()
    model = re.search(r"model name\s*: (.+)", info)
    return f"{model.group(1) if model else 'unknown CPU'}, {os.cpu_count()} cores"


def chart(pairs):
    """For each pair that has a reach, a bar from 1 to its ratio on a log scale, and the reach."""
    pairs = [pair for pair in pairs if pair.limit is not None]
    left, width, step, top = 400, 560, 18, 70
    low, high = 0.01, 100.0

    def x(value):
        share = math.log(min(max(value, low), high) / low) / math.log(high / low)
        return round(left + share * width, 1)

    height = top + step * len(pairs) + 20
    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + width + 90}" '
           f'height="{height}" font-family="sans-serif" font-size="12">',
           '<rect width="100%" height="100%" fill="white"/>',
           f'<text x="{x(1)}" y="22" font-size="15" text-anchor="middle">Our time divided by the '
           'peer\'s. Left of 1: we are faster. Black mark: the reach.</text>']
    for tick in (0.01, 0.1, 1, 10, 100):
        svg.append(f'<line x1="{x(tick)}" x2="{x(tick)}" y1="{top - 8}" y2="{height - 15}" '
                   f'stroke="{"#666" if tick == 1 else "#ddd"}"/>'
                   f'<text x="{x(tick)}" y="{top - 14}" text-anchor="middle">{tick:g}</text>')
    for i, pair in enumerate(pairs):
        y = top + step * i
        start, end = sorted((x(1), x(pair.value)))
        colour = "#3a8f5c" if pair.passes() else "#d0552b"
        svg.append(f'<text x="{left - 8}" y="{y + 11}" text-anchor="end">'
                   f'{escape(f"{pair.row} : {pair.peer}")}</text>'
                   f'<rect x="{start}" y="{y}" width="{max(end - start, 1):.1f}" '
                   f'height="{step - 5}" fill="{colour}"/>'
                   f'<rect x="{x(pair.limit) - 1}" y="{y - 2}" width="2" height="{step - 1}"/>'
                   f'<text x="{left + width + 10}" y="{y + 11}">{pair.value_text()}</text>')
    return "\n".join(svg + ["</svg>", ""])


def main(folder, command, commit, *files):
    split = files.index("--")
    pairs = read_pairs(files[split + 1:])
    judged = [pair for pair in pairs if pair.limit is not None]
    within = sum(pair.passes() for pair in judged)
    with open(os.path.join(folder, "results.md"), "w") as out:
        out.write(f"""# What operations cost

Measured by `{command}` at commit {commit} on: {machine()}. Optimised as the preset `release` is.

## The library and its peers

Medians of CPU time, ours and the peers' runs interleaved. A reach is the most that our time may be
as a multiple of the peer's, or in nanoseconds over it; {within} of {len(judged)} are kept.
![Ratios](results.svg)

{comparison_table(pairs)}
## Cost as work grows

Nanoseconds an element, for work of the size in the second column and 10, 100 and 1000 times as
much. Where the figure stays, the cost is linear; the last column says what to do where it rises.

{growth_table(files[:split])}""")
    with open(os.path.join(folder, "results.svg"), "w") as out:
        out.write(chart(pairs))
    print(f"{within} of {len(judged)} reaches are kept, but not:")
    for pair in judged:
        if not pair.passes():
            print(f"  {pair.row}: {pair.peer} {pair.value_text()}, reach {pair.limit:g}")


if __name__ == "__main__":
    main(*sys.argv[1:])
