#!/usr/bin/env python3
"""Draws sort time against the number of keys, and lists it beside the peers', from SortBench's JSON.

    build/bench/bench/SortBench --benchmark_enable_random_interleaving=true \
        --benchmark_repetitions=5 --benchmark_format=json > sort.json
    bench/sort_chart.py sort.json docs/sort-times.svg docs/sort-times.md
"""
import json
import math
import statistics
import sys

WIDTH, HEIGHT = 760, 470
LEFT, RIGHT, TOP, BOTTOM = 60, 150, 46, 50
LOW, HIGH = 0.5, 200.0  # nanoseconds a key
# Middle tones: readable on white and on black.
COLOURS = ["#d9480f", "#2b8a3e", "#1c7ed6", "#ae3ec9", "#e8590c", "#0ca678",
           "#4263eb", "#c2255c", "#868e96", "#f08c00", "#1098ad", "#7048e8"]
STYLE = """
  :root { color-scheme: light dark; }
  text { font: 12px sans-serif; fill: #333; }
  .title { font-size: 14px; font-weight: bold; }
  .grid { stroke: #888; stroke-opacity: 0.3; }
  path { fill: none; stroke-width: 2; }
  .peer { stroke-dasharray: 5 4; stroke: #777; }
  @media (prefers-color-scheme: dark) { text { fill: #ddd; } }
"""


def read_medians(path):
    """{(pattern, peer): {n: nanoseconds a key}}"""
    runs = {}
    with open(path, encoding="utf-8") as file:
        benchmarks = json.load(file)["benchmarks"]
    for run in benchmarks:
        if run.get("run_type") == "aggregate" or run.get("error_occurred"):
            continue
        pattern, peer, n = run["name"].split("/")[:3]
        times = runs.setdefault((pattern, peer), {}).setdefault(int(n), [])
        times.append(1e9 / run["items_per_second"])
    return {line: {n: statistics.median(times) for n, times in sizes.items()}
            for line, sizes in runs.items()}


def x_of(n):
    return LEFT + (math.log10(n) - 1) / 6 * (WIDTH - LEFT - RIGHT)


def y_of(time):
    share = math.log(time / LOW) / math.log(HIGH / LOW)
    return HEIGHT - BOTTOM - share * (HEIGHT - TOP - BOTTOM)


def grid():
    for power in range(1, 8):
        x = x_of(10 ** power)
        yield f'<line class="grid" x1="{x:.1f}" y1="{TOP}" x2="{x:.1f}" y2="{HEIGHT - BOTTOM}"/>'
        yield (f'<text x="{x:.1f}" y="{HEIGHT - BOTTOM + 18}" text-anchor="middle">10'
               f'<tspan dy="-5" font-size="9">{power}</tspan></text>')
    for time in (0.5, 1, 2, 5, 10, 20, 50, 100, 200):
        y = y_of(time)
        yield f'<line class="grid" x1="{LEFT}" y1="{y:.1f}" x2="{WIDTH - RIGHT}" y2="{y:.1f}"/>'
        yield f'<text x="{LEFT - 8}" y="{y + 4:.1f}" text-anchor="end">{time:g}</text>'


def curve(sizes, attributes):
    points = [f"{x_of(n):.1f},{y_of(time):.1f}" for n, time in sorted(sizes.items())]
    return f'<path {attributes} d="M{" L".join(points)}"/>'


def legend(names):
    """Names beside the ends of their lines, moved apart where they would touch."""
    y = -math.inf
    for name, colour, end in sorted(names, key=lambda entry: -entry[2]):
        y = max(y + 15, y_of(end) + 4)
        yield f'<text x="{WIDTH - RIGHT + 8}" y="{y:.1f}" style="fill:{colour}">{name}</text>'


def draw(medians):
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {WIDTH} {HEIGHT}" '
           f'role="img"><title>Sort time per key against the number of keys</title>')
    yield f"<style>{STYLE}</style>"
    yield f'<text class="title" x="{LEFT}" y="24">QuickSortIterative: nanoseconds a key</text>'
    yield from grid()
    yield (f'<text x="{(LEFT + WIDTH - RIGHT) / 2}" y="{HEIGHT - 10}" text-anchor="middle">'
           "keys (a level line: time in proportion to their number)</text>")
    names = []
    peer = medians.get(("Random", "pdqsort_words"))
    if peer:
        yield curve(peer, 'class="peer"')
        names.append(("pdqsort, Random", "#777", peer[max(peer)]))
    patterns = sorted(pattern for pattern, name in medians if name == "Corvale")
    for pattern, colour in zip(patterns, COLOURS):
        sizes = medians[(pattern, "Corvale")]
        yield curve(sizes, f'stroke="{colour}"')
        names.append((pattern, colour, sizes[max(sizes)]))
    yield from legend(names)
    yield "</svg>"


TABLE_HEAD = """# Sort times

Nanoseconds a key, medians of CPU time on one core, measured by `bench/SortBench.cpp` beside other
sorts in the same run. The others sort records of key and companion; `pdqsort_words` compares keys as
`QuickSortIterative` does, by words of eight bytes, the rest with `memcmp`; `plain` is a quicksort
with the last key as pivot. The second number is the time over that of `QuickSortIterative`.

![Sort time against the number of keys](sort-times.svg)
"""
PEERS = ["pdqsort_words", "pdqsort", "std_sort", "qsort", "plain"]


def table(medians):
    yield TABLE_HEAD
    yield "| keys | QuickSortIterative | " + " | ".join(PEERS) + " |"
    yield "|---" * (len(PEERS) + 2) + "|"
    for pattern, name in sorted(medians):
        if name != "Corvale":
            continue
        for n, own in sorted(medians[(pattern, name)].items()):
            times = [medians.get((pattern, peer), {}).get(n) for peer in PEERS]
            cells = [f"{time:.1f} ({time / own:.2f})" if time else "" for time in times]
            yield f"| {pattern}, {n:,} | {own:.1f} | " + " | ".join(cells) + " |"


def write(path, lines):
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")


def main():
    source, chart, listing = sys.argv[1:]
    medians = read_medians(source)
    write(chart, draw(medians))
    write(listing, table(medians))


if __name__ == "__main__":
    main()
