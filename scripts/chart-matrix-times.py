#!/usr/bin/env python3
"""Draws docs/matrix-times.svg from results of bench/MatrixBench.cpp.

    MatrixBench --benchmark_format=json > times.json
    scripts/chart-matrix-times.py times.json [more.json...] > docs/matrix-times.svg

Median CPU time against the order, both axes logarithmic. Needs Python alone.
"""
import json
import math
import statistics
import sys

PEERS = {  # name in the benchmark: (label, colour that reads on white and on black)
    "Corvale": ("Corvale", "#e0463c"),
    "OpenBLAS": ("OpenBLAS, one thread", "#2f86d6"),
    "Eigen": ("Eigen", "#2f9e58"),
    "LAPACK": ("reference LAPACK", "#a865c9"),
    "plain": ("plain loops", "#8c8c8c"),
}
TITLES = {"Cholesky": "Cholesky: factor, solution, inverse", "Inverse": "MtxInv: inverse"}
NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
WIDTH, HEIGHT, MARGIN, GAP = 400, 380, 60, 40
X_RANGE, Y_RANGE = (2, 1500), (30, 3e9)


def medians(names):
    times = {}
    for name in names:
        with open(name, encoding="utf-8") as file:
            for run in json.load(file)["benchmarks"]:
                if run["run_type"] == "iteration" and not run.get("error_occurred"):
                    topic, peer, order = run["run_name"].split("/")[:3]
                    nanoseconds = run["cpu_time"] * NANOSECONDS[run["time_unit"]]
                    times.setdefault((topic, peer, int(order)), []).append(nanoseconds)
    return {key: statistics.median(values) for key, values in times.items()}


def scale(value, limits, length):
    low, high = (math.log10(limit) for limit in limits)
    return (math.log10(value) - low) / (high - low) * length


def text(x, y, words, anchor="middle", more=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>{words}</text>'


def axes(left, top, title):
    yield text(left + WIDTH / 2, top - 14, title, more=' font-weight="bold"')
    for order in (3, 10, 32, 100, 300, 1000):
        x = left + scale(order, X_RANGE, WIDTH)
        yield f'<path class="grid" d="M{x:.1f} {top}v{HEIGHT}"/>'
        yield text(x, top + HEIGHT + 18, order)
    for exponent, label in ((2, "100 ns"), (3, "1 µs"), (4, "10 µs"), (5, "100 µs"), (6, "1 ms"),
                            (7, "10 ms"), (8, "100 ms"), (9, "1 s")):
        y = top + HEIGHT - scale(10.0**exponent, Y_RANGE, HEIGHT)
        yield f'<path class="grid" d="M{left} {y:.1f}h{WIDTH}"/>'
        yield text(left - 6, y + 4, label, "end")


def curve(points, left, top, colour, heavy):
    places = [(left + scale(order, X_RANGE, WIDTH), top + HEIGHT - scale(time, Y_RANGE, HEIGHT))
              for order, time in sorted(points)]
    line = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
    yield f'<polyline fill="none" stroke="{colour}" stroke-width="{3 if heavy else 1.6}" points="{line}"/>'
    for x, y in places:
        yield f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.5" fill="{colour}"/>'


def chart(times):
    width, height = 2 * (WIDTH + MARGIN) + GAP + 10, HEIGHT + 130
    yield (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
           'font-family="sans-serif" font-size="12" role="img">')
    yield "<title>CPU time of the matrix procedures against the order, beside their peers</title>"
    yield ("<style>:root{color-scheme:light dark}text{fill:#222}.grid{stroke:#8884;fill:none}"
           "@media (prefers-color-scheme:dark){text{fill:#ddd}}</style>")
    for index, (topic, title) in enumerate(TITLES.items()):
        left, top = MARGIN + index * (WIDTH + MARGIN + GAP), 40
        yield from axes(left, top, title)
        for peer, (_, colour) in reversed(PEERS.items()):
            points = [(order, time) for (t, p, order), time in times.items()
                      if t == topic and p == peer]
            yield from curve(points, left, top, colour, peer == "Corvale")
    yield text(width / 2, HEIGHT + 80, "order of the matrix (median CPU time, one core)")
    for index, (label, colour) in enumerate(PEERS.values()):
        x = MARGIN + index * 175
        yield f'<path stroke="{colour}" stroke-width="3" d="M{x} {HEIGHT + 106}h24"/>'
        yield text(x + 30, HEIGHT + 110, label, "start")
    yield "</svg>"


print("\n".join(chart(medians(sys.argv[1:]))))
