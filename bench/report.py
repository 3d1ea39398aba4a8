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
        if self.kind == "+":
            self.value = ours - theirs
        else:
            self.value = ours / theirs if theirs else math.inf  # a short text that needs no memory

    def passes(self):
        return self.value <= self.limit

    def value_text(self):
        if math.isinf(self.value):
            return ""
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
                who, *options = who.split("/")  # by which clock, for instance
                time = run["real_time" if options else "cpu_time"]
                rows.setdefault((row, reach), {})[who] = time * UNITS[run["time_unit"]]
    return [Pair(row, reach, times["ours"], peer, theirs)
            for (row, reach), times in rows.items()
            for peer, theirs in times.items() if peer != "ours"]


def time_text(ns):
    for limit, unit in ((1e3, "ns"), (1e6, "us"), (1e9, "ms")):
        if ns < limit:
            return f"{ns * 1e3 / limit:.3g} {unit}"
    return f"{ns / 1e9:.3g} s"


def bytes_text(count):
    return f"{count:.0f} B"


def table(head, rows):
    lines = [head, ["---"] * len(head)] + rows
    return "".join("| " + " | ".join(line) + " |\n" for line in lines)


def comparison_table(pairs):
    rows = []
    last = None
    for pair in pairs:
        is_first = pair.row != last
        last = pair.row
        text = bytes_text if pair.row.startswith("memory") else time_text
        rows.append([pair.row if is_first else "", text(pair.ours) if is_first else "",
                     pair.peer, text(pair.theirs), pair.value_text(), *pair.reach_text()])
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


# Why a row stands beyond its reach: what the interface promises, and the price of it.
REASONS = {
    "make and drop 12 bytes": "One block, as the peer's; its size follows the growth rule.",
    "make and drop 100 bytes": "The growth rule asks for 151 bytes where the peer does for 125.",
    "append 1 byte a million times": "The growth rule adds a quarter where doubling copies less often.",
    "append 32 bytes 32,768 times": "The growth rule adds a quarter: 46 bodies and 5 MB copied on "
    "the way to 1 MB, where doubling takes 15 and 2 MB.",
    "insert and erase 8 bytes amid 1,000": "Within the noise of two moves of 500 bytes; the handle "
    "costs one more load.",
    "find a literal in 60 bytes": "The service layer's search: a call through the dynamic linker and a "
    "second pass that looks for the end of the text.",
    "insert and remove a literal amid 1,000": "As for a text of 8 bytes; a literal's length is found by strlen.",
    "add literals at both ends": "The first sum makes a body, the second finds no room in it when the growth "
    "rule gave none.",
    "assign one of two strings": "Counting is a comparison with the C library's flag, and one with zero.",
    "copy and drop 100 bytes": "As for assigning.",
    "hash 100 bytes": "The hash is a function of the library, which the peer's loop has in place.",
    "list: walk 1,000 by index": "Each step compares its index with the remembered one.",
    "compare 20 bytes": "The text lies behind a handle and a body: one dependent load more a side.",
    "count 2,000,000 words, unordered_map": "A word is made to be looked up: its block is larger by "
    "the growth rule, and a look-up follows one pointer more than the peer's.",
    "count 2,000,000 words, map": "As for the unordered_map.",
    "sort 500,000 strings": "A comparison follows one pointer more, and the blocks that the growth "
    "rule asks for lie farther apart.",
    "build 500,000 strings of 40 bytes": "128 bytes each by the growth rule, where the peers take 80: "
    "the time is that of the allocator and of the pages.",
    "copy and drop 500,000 strings": "Each copy touches the count of a block of 128 bytes, the peer "
    "that of one of 80: the time is that of the memory.",
    "join five parts 100,000 times": "Each intermediate text grows by the growth rule.",
    "100,000 tokens by find and substr": "A search goes through the service layer, which looks for the "
    "end of the text first: a call through the dynamic linker and a strlen.",
    "split and join 100 MB in lines": "The pieces are held in a list of handles that grows by chunks, "
    "each with the block that the growth rule asks for.",
    "read 20 MB by getline": "The capacity that a line is left with is that of appends of 32 bytes, "
    "which is forecast for each line; the rest is equal.",
    "read 20 MB by >>": "White space is skipped by std::ws, which looks the locale up for each word; "
    "and words of another length get a body of another size, by the growth rule.",
    "100,000 statuses with a message each": "A status holds its messages in a linked stack: two blocks, "
    "the peer's vector of one string one and the text's.",
    "sort 1,000 numbers": "One comparison an access for the seam of the circular array.",
    "sort 1,000,000 numbers": "One comparison an access for the seam of the circular array.",
    "find in 1,000 numbers": "One comparison an item for the seam of the circular array.",
    "find in 1,000,000 numbers": "One comparison an item for the seam of the circular array.",
    "walk 1,000 numbers": "One comparison an item for the seam of the circular array.",
    "walk 1,000,000 numbers": "One comparison an item for the seam of the circular array.",
    "memory of a string of 10 bytes": "The growth rule: 32 bytes of body and 22 of buffer.",
    "memory of a string of 40 bytes": "The growth rule: 32 bytes of body and 82 of buffer.",
    "memory of a string of 200 bytes": "The growth rule: 32 bytes of body and 301 of buffer.",
    "array: walk 1,000 by index": "The array is circular, so each index is compared with the end; "
    "against a contiguous array that keeps the loop from being made of wide steps.",
    "array: insert and remove amid 1,000": "The shorter side moves on both sides; ours then looks "
    "whether a chunk can be given back, which the peer never does.",
    "array: append 1,000, preallocated": "Three compares find the slot in a circular array.",
    "array: walk 1,000 by iterator": "The iterator asks the collection anew at every call, through "
    "its virtual interface: four calls an item (IsDone, CurrentItem's two, Next). range-for over "
    "the array itself costs what the walk by index does.",
    "status: make, copy, drop when ok": "Five fields where the peer has one word.",
    "redirect: open and close a grab": "Three copies of the table and four calls through the "
    "dynamic linker, which a product's own message service may answer.",
    "load and unload the library": "The library's symbols are looked up, of which a filler has none; "
    "against the library itself without static objects see the second peer.",
    "stack: walk 1,000 by iterator": "Four virtual calls an item, as for the array's.",
    "two threads: copy and drop own strings": "A copy looks at the count before it adds to it: that of "
    "the text which all empty strings share is not changed any more.",
    "two threads: copy and drop one string": "As for own strings.",
    "two threads: make and drop empty strings": "Nothing is written that both threads read: two threads "
    "on a machine of two processors share them with whatever else runs.",
    "two threads: a disabled trace": "Every trace takes a number of the process, enabled or not.",
}


def reasons(pairs):
    """A line for each row that is beyond its reach."""
    rows = dict.fromkeys(p.row for p in pairs if p.limit is not None and not p.passes())
    return "".join(f"- {row}: {REASONS.get(row, 'not explained yet.')}\n" for row in rows)


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
Beyond their reach, and why:

{reasons(pairs)}
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
