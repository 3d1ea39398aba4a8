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
WHOLE_PROGRAMS = ("program.json", "thread.json")  # these stand in a table of their own
REACH = re.compile(r"(.+) (<=|\+) ([\d.]+)$")


class Pair:
    """What a row takes of us and of one peer, as texts and as a ratio or difference."""

    def __init__(self, row, reach, text, ours, peer, theirs):
        self.row, self.peer = row, peer
        self.ours, self.theirs = text(ours), text(theirs)
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


def amount(run):
    """What a run measured, and how it is written: bytes, or nanoseconds of the clock it asked for."""
    if "bytes" in run:
        return run["bytes"], byte_text
    clock = "real_time" if run["run_name"].endswith("/real_time") else "cpu_time"
    return run[clock] * UNITS[run["time_unit"]], time_text


def read_pairs(files):
    rows = {}
    for file in files:
        runs = json.load(open(file))["benchmarks"]
        for run in sorted(runs, key=lambda run: run["family_index"]):
            if run.get("aggregate_name") == "median":
                row, reach, who = run["run_name"].split("|")
                measured, text = amount(run)
                rows.setdefault((row, reach, text), {})[who.split("/")[0]] = measured
    return [Pair(row, reach, text, amounts["ours"], peer, theirs)
            for (row, reach, text), amounts in rows.items()
            for peer, theirs in amounts.items() if peer != "ours"]


def time_text(ns):
    for limit, unit in ((1e3, "ns"), (1e6, "us"), (1e9, "ms")):
        if ns < limit:
            return f"{ns * 1e3 / limit:.3g} {unit}"
    return f"{ns / 1e9:.3g} s"


def byte_text(n):
    return f"{n:.0f} bytes"


def table(head, rows):
    lines = [head, ["---"] * len(head)] + rows
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def comparison_table(pairs):
    rows = []
    last = None
    for pair in pairs:
        is_first = pair.row != last
        last = pair.row
        rows.append([pair.row if is_first else "", pair.ours if is_first else "",
                     pair.peer, pair.theirs, pair.value_text(), *pair.reach_text()])
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
           f'<text x="{x(1)}" y="22" font-size="15" text-anchor="middle">Ours divided by the '
           'peer\'s. Left of 1: we need less. Black mark: the reach.</text>']
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


# Why a row stands beyond its reach: what the interface promises, and the price of it.
GROWTH = (
    "The growth rule's price: a block of 32 + 2 (n + 1) bytes where the peer has 24 + n + 1, so "
    "that fewer texts lie in the caches. See the peer's own class in blocks of our size.")
REASONS = {
    "count 2,000,000 words in an unordered_map": GROWTH,
    "count 2,000,000 words in a map": GROWTH + " And a comparison goes by the body's pointer to the "
    "text, which the peer's handle is itself.",
    "sort 500,000 strings": "Each comparison loads the body's pointer to the text first, which the "
    "peer's handle is itself.",
    "build and drop 500,000 of 40 bytes": GROWTH + " The allocator alone takes as long for blocks of "
    "114 bytes, and half of it for those of 65.",
    "copy and drop 500,000": GROWTH,
    "join five parts with +, 500,000 times": "Two bodies, as the peer's, with five fields to write "
    "where it has three, and an edit through the dynamic linker for each part.",
    "2,000,000 tokens by find and substr": "A search asks the string utility through the dynamic "
    "linker, as a product may bring its own: 103 instructions where the peer takes 52. A piece takes "
    "296 where it takes 272.",
    "split and join 100 MB of CSV": "A list's items are put and copied through its collection.",
    "100,000 statuses with a message each": "Three blocks where the peer has two: the messages are a "
    "linked stack, which a status without messages does not have; each is a node and a string.",
    **dict.fromkeys(
        ("array: sum 1,000 by range-for", "array: sum 1,000,000 by range-for",
         "array: find in 1,000", "array: find in 1,000,000"),
        "An iterator stays valid while the array changes: a slot is computed from three of its "
        "fields and compared with the array's end, where the peer compares with a block's end."),
    **dict.fromkeys(
        ("array: sort 1,000", "array: sort 1,000,000"),
        "As the sum; after a store the three fields are loaded anew."),
    "two threads: copy and drop one string": "A count is read before it is changed, for the sake of "
    "the empty text's, which two threads must not fight for.",
    "make and drop 12 bytes": "One block as the peer's, but with a body of 32 bytes before the text, "
    "where the peer has 24, and a growth rule to work out.",
    "make and drop 100 bytes": "As for 12 bytes; the growth rule asks for 151 where the peer does "
    "for 125.",
    "append 32 bytes 32,768 times": "The growth rule adds a quarter: 46 bodies and 5 MB copied on "
    "the way to 1 MB, where doubling takes 15 and 2 MB.",
    "insert and erase 8 bytes amid 1,000": "Within the noise of two moves of 500 bytes; the handle "
    "costs one more load.",
    "copy and drop 100 bytes": "Each count asks first whether the process has one thread, and whether "
    "the body is there; the peer asks for the first once a program.",
    "assign one of two strings": "As copy and drop.",
    "append 1 byte a million times": "The growth rule adds a quarter, and each byte is followed by the "
    "terminator.",
    "find a literal in 60 bytes": "A search asks the string utility through the dynamic linker.",
    "hash 100 bytes": "The hash is a call, which the peer's loop has in place.",
    "list: walk 1,000 by index": "Each step compares its index with the remembered one.",
    "compare 20 bytes": "The text lies behind a handle and a body: one dependent load more a side.",
    "array: walk 1,000 by index": "The array is circular, so each index is compared with the end; "
    "against a contiguous array that keeps the loop from being made of wide steps.",
    "array: insert and remove amid 1,000": "The shorter side moves on both sides; ours then looks "
    "whether a chunk can be given back, which the peer never does.",
    "array: append 1,000, preallocated": "Three compares find the slot in a circular array.",
    "array: walk 1,000 by virtual iterator": "The iterator asks the collection anew at every call, "
    "through its virtual interface: four calls an item (IsDone, CurrentItem's two, Next), 1 ns each. "
    "range-for over the array itself costs what the walk by index does.",
    "status: make, copy, drop when ok": "Five fields where the peer has one word.",
    "redirect: open and close a grab": "Three copies of the table and four calls through the "
    "dynamic linker, which a product's own message service may answer.",
    "load and unload the library": "360 symbols are looked up, which a filler has none of; against "
    "the library itself without static objects see the second peer.",
    "stack: walk 1,000 by iterator": "Four virtual calls an item, as for the array's.",
}


def reasons(pairs):
    """A line for each row that is beyond its reach."""
    rows = dict.fromkeys(p.row for p in pairs if p.limit is not None and not p.passes())
    return "".join(f"- {row}: {REASONS.get(row, 'not explained yet.')}\n" for row in rows)


def main(folder, command, commit, *files):
    split = files.index("--")
    whole = [file for file in files[split + 1:] if os.path.basename(file) in WHOLE_PROGRAMS]
    programs = read_pairs(whole)
    operations = read_pairs([file for file in files[split + 1:] if file not in whole])
    pairs = programs + operations
    judged = [pair for pair in pairs if pair.limit is not None]
    within = sum(pair.passes() for pair in judged)
    with open(os.path.join(folder, "results.md"), "w") as out:
        out.write(f"""# What operations cost

Measured by `{command}` at commit {commit} on: {machine()}. Optimised as the preset `release` is.

Medians of CPU time, of the wall's where two threads work, ours and the peers' runs interleaved. A
reach is the most that ours may be as a multiple of the peer's, or in nanoseconds over it; {within} of
{len(judged)} are kept.
![Ratios](results.svg)

## Whole programs

{comparison_table(programs)}
Beyond their reach, and why:

{reasons(programs)}
## Single operations

{comparison_table(operations)}
Beyond their reach, and why:

{reasons(operations)}
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
