#!/usr/bin/env python3
"""Writes the pages of benchmarks and their charts from what scripts/bench.sh measured.

    page.py FOLDER-OF-JSON SUMMARY.md FIGURES.md FOLDER-OF-CHARTS [README.md]

SUMMARY.md has one short table a topic, FIGURES.md every workload with every peer. In the README the table between two marks is
renewed. Ends with 1 and the names of the peers that did not agree with Corvale, if there are any.
"""
import collections
import json
import pathlib
import statistics
import sys

import chart
from results import Results, exponent
from workloads import GROWTH, PATTERNS, SECTIONS, SUMMARY

SUMMARY_HEAD = """# Benchmarks {{#benchmarks}}

Corvale beside the fastest peer of each workload, in one run on one core: {met} of {goals} goals are met,
[what was missed](#benchmarks_missed) stands at the end. `scripts/bench.sh` measures it all and writes this page and
[all figures](benchmark-figures.md): every peer and size, how cost grows, size and start, allocations.
"""
READING = """## Workload by workload {#benchmarks_workloads}

A ratio is the peer's time over Corvale's in the same repetition, with the smallest and the greatest of the repetitions: above 1
Corvale is faster. The limit is the time of what no program can do without on this machine; beside it stands how many times that
Corvale takes. A workload in **bold** misses a goal.
"""
FIGURES_HEAD = """# Benchmark figures {#benchmark_figures}

Every workload of [Benchmarks](benchmarks.md) beside every peer: the peer's time, below it the ratio of the peer's time to Corvale's
in the same repetition with the smallest and the greatest of the repetitions. A ratio in **bold** misses its goal.
"""
METHOD = """## Method {#figures_method}

- All peers of a workload run in one program on the same input; a peer whose answers disagree is not timed, and the page is not
  made.
- The process is pinned to one core, repetitions of all workloads are interleaved at random, and what counts is the time of
  the processor: medians. Sorts of ten million keys run in a process for each pattern.
- Everything is compiled with -O3. Peers that are compiled here have -march=native where that does not make them slower: Eigen's
  matrices (with FMA), fast_float, fmt (with compiled formats), the Fortran loop. OpenBLAS is its build without threads.
  The library itself has no more than the baseline instructions and chooses AVX2 by itself.
- Plain loops follow the rules of the headers step by step, compiled as the library is.

    scripts/bench.sh            all of it, about a quarter of an hour
    scripts/bench.sh --quick    does everything build, run and agree? Two minutes; its figures say nothing
    scripts/bench.sh --page     writes the pages again from the last run
"""
CHARTS = {  # in the order of the page, with what each says
    "card-times.svg": "Time to load a card file, beside other programs",
    "log-times.svg": "Time to log a line, beside other libraries",
    "number-times.svg": "Time to read and to write a number or a row, beside other libraries",
    "text-times.svg": "Time of the small text operations",
    "matrix-times.svg": "Time of the matrix procedures against the order of the matrix",
    "sort-times.svg": "Time to sort a key against the number of keys",
}


NEVER_ALLOCATE = ("text", "numbers", "angles", "vectors", "codes", "keys")
PDQSORTS = ["pdqsort", "pdqsort_branchless"]


def anchor(page, title):
    return f"{page}_" + "".join(c if c.isalnum() else "_" for c in title.lower())


class Page:
    def __init__(self, results, facts):
        self.results, self.facts = results, facts
        self.met, self.missed = 0, collections.defaultdict(list)  # workload -> what was missed

    def limit_time(self, row):
        """Nanoseconds, or nothing: a peer's time, a time of LimitBench, or a number of flops."""
        if isinstance(row.limit, int):
            flop = self.results.median("Limit", "flops")
            return row.limit * flop if flop else None
        if not row.limit:
            return None
        sized = self.results.median(*row.limit, row.size)
        return sized if sized is not None else self.results.median(*row.limit)

    def count(self, workload, what, is_met):
        if is_met:
            self.met += 1
        else:
            self.missed[workload].append(what)

    def judge(self, row, peer, value, goal, is_met):
        """The figure, bold where it misses the goal. Half of its last digit is forgiven."""
        shown = show_ratio(value)
        if goal is None:
            return shown
        self.count(row.label, f"{peer} {shown}, not {show_goal(goal)}", is_met)
        return shown if is_met else f"**{shown}**"

    def peer_cell(self, row, peer):
        time = self.results.median(row.topic, peer, row.size)
        ratio = self.results.ratio(row.topic, peer, row.own, row.size)
        if time is None or ratio is None or peer == row.own:
            return ""
        goal = row.goals.get(peer)
        figure = self.judge(row, peer, ratio.median, goal, goal and ratio.median >= goal - 0.005)
        return cell(time, f"{figure} ({show_spread(ratio)})")

    def limit_cell(self, row):
        limit = self.limit_time(row)
        own = self.results.median(row.topic, row.own, row.size)
        if limit is None or own is None:
            return ""
        over = own / limit
        if not row.limit_goal:
            return cell(limit, show_ratio(over))
        ratio = self.results.ratio(row.topic, row.limit[1], row.own, row.size)
        over = 1 / ratio.median
        figure = self.judge(row, "over the limit", over, row.limit_goal, over <= row.limit_goal + 0.005)
        return cell(limit, f"{figure} ({show_ratio(1 / ratio.greatest)}–{show_ratio(1 / ratio.least)})")

    def section(self, section):
        rows = [row for row in section.rows if self.results.median(row.topic, row.own, row.size)]
        peers = [peer for peer in section.peers
                 if any(self.results.median(row.topic, peer, row.size) for row in rows if peer != row.own)]
        if not rows:
            return
        yield f"## {section.title} {{#{anchor('figures', section.title)}}}\n\n{section.note}\n"
        yield f"| time per {section.item} | Corvale | " + " | ".join([*peers, "limit", "goals"]) + " |"
        yield "|---" * (len(peers) + 4) + "|"
        for row in rows:
            own = unbroken(chart.show_time(self.results.median(row.topic, row.own, row.size)))
            cells = [self.peer_cell(row, peer) for peer in peers] + [self.limit_cell(row), show_goals(row)]
            yield f"| {row.label} | {own} | " + " | ".join(cells) + " |"
        yield ""

    def growth(self):
        yield """## How cost grows {#figures_growth}

The exponent of time against size n, a line of least squares through the logarithms, over all sizes and over the greater half of
them, where what a call costs at any size no longer counts; beside each the exponent of the cost that the work should have,
over the same sizes. Where data leaves the caches on the way, a step takes longer, which adds to what is measured. A row of
values stops at 32 fields because no more than 512 characters are made of one.

| workload | sizes | should grow as | exponent | should be | greater half | should be |
|---|---|---|---|---|---|---|"""
        for growth in GROWTH:
            sizes = self.results.sizes(growth.topic, growth.own)
            if len(sizes) < 4:
                continue
            times = [self.results.median(growth.topic, growth.own, n) * (n if growth.per_item else 1) for n in sizes]
            cells = []
            for first in (0, len(sizes) // 2):
                measured = exponent(list(zip(sizes, times))[first:])
                wanted = exponent([(n, growth.cost[1](n)) for n in sizes[first:]])
                cells += [f"{measured:.2f}", f"{wanted:.2f}"]
            yield (f"| {growth.label} | {sizes[0]:,} to {sizes[-1]:,} | {growth.cost[0]} | "
                   + " | ".join(cells) + " |")
        yield ""

    def cliffs(self):
        """A power of two as leading dimension must not meet itself in the cache."""
        found = []
        for label, topic in (("Cholesky", "Cholesky"), ("MtxInv", "Inverse")):
            for order, neighbour in ((128, 100), (512, 500)):
                times = [self.results.median(topic, size=n) for n in (order, neighbour)]
                if None not in times:
                    over = times[0] / order ** 3 / (times[1] / neighbour ** 3)
                    self.count(f"{label}, order {order}", f"{over:.2f} of order {neighbour} a cube, not 1.3", over <= 1.3)
                    found.append(f"{label} {order} to {neighbour} {over:.2f}")
        if found:
            yield ("At powers of two, time over the cube of the order beside that of a neighbour: "
                   f"{', '.join(found)}.\n")

    def start(self):
        anatomy, starts = self.facts["anatomy"], self.facts["starts"]
        middle = {name: statistics.median(found["times"]) for name, found in starts.items()}
        over = middle["Corvale"] / middle["empty C++ library"]
        count = len(starts["Corvale"]["times"])
        yield f"""## Size and start {{#figures_start}}

Each library alone in a fresh process of a C program, {count} processes of each, one after the other: the processor's time from
`dlopen` to the first result, and the memory by which the process grew, with all that the library brings along; what is shared
with other processes counts in full in the first column and by its share in the second. Corvale takes {over:.2f} times the time of
an empty C++ library; a program that uses the C++ library already pays only the difference.

| library | stripped | relocations | of them by name | initialisers | needs | to the first result | middle half | resident | share |
|---|---|---|---|---|---|---|---|---|---|"""
        for name, part in anatomy.items():
            relative, other = part["relative relocations"], part["other relocations"]
            quarters = statistics.quantiles(starts[name]["times"])
            cells = [name, f"{part['stripped']:,}", relative + other, other, part["initialisers"], part["needs"],
                     chart.show_time(middle[name]),
                     f"{chart.show_time(quarters[0])} to {chart.show_time(quarters[2])}",
                     f"{starts[name]['resident'] / 1024:,.0f} KiB", f"{starts[name]['shared'] / 1024:,.0f} KiB"]
            yield "| " + " | ".join(str(cell) for cell in cells) + " |"
        yield ""
        size = anatomy["Corvale"]["stripped"]
        # 280 kB, and 98 for series of matrices, whose lanes are compiled for each width.
        self.count("stripped size", f"{size:,} bytes, not 380,000", size <= 380_000)
        self.count("start over that of an empty C++ library", f"{over:.2f}, not 1.3", over <= 1.3)

    def allocations(self):
        yield """## Allocations {#figures_allocations}

Blocks of memory that a call takes, counted at `malloc` for the whole process. What is released before the call returns counts too.
"""
        calls = self.facts["allocations"]
        areas = dict.fromkeys(call["area"] for call in calls)
        taking = [call["name"] for call in calls if call["area"] in NEVER_ALLOCATE and call["first"] + call["later"]]
        self.count("no allocations", ", ".join(taking), not taking)
        yield "| procedures | first call | later calls |\n|---|---|---|"
        for area in areas:
            rows = [call for call in calls if call["area"] == area]
            none = [call["name"] for call in rows if not call["first"] and not call["later"]]
            if none:
                yield f"| {area}: {'; '.join(none)} | 0 | 0 |"
            for call in rows:
                if call["name"] not in none:
                    yield f"| {area}: {call['name']} | {call['first']} | {call['later']:g} |"
        yield ""

    def fastest_peer(self, row, peers):
        """The peer with the shortest time and its ratio; nothing where none was timed."""
        times = {peer: self.results.median(row.topic, peer, row.size) for peer in peers if peer != row.own}
        times = {peer: time for peer, time in times.items() if time}
        if not times:
            return None
        peer = min(times, key=times.get)
        return peer, self.results.ratio(row.topic, peer, row.own, row.size)

    def short_section(self, section):
        """One row a workload, at the sizes that say most: our time, the fastest peer, the limit."""
        rows = [row for row in section.rows if self.results.median(row.topic, row.own, row.size)
                and (not section.sizes or row.size in section.sizes)]
        if not rows:
            return
        yield f"### {section.title} {{#{anchor('benchmarks', section.title)}}}\n\n{section.note}\n"
        yield f"| {section.item} | Corvale | fastest peer | ratio | limit | times the limit |\n|---|---|---|---|---|---|"
        for row in rows:
            own = self.results.median(row.topic, row.own, row.size)
            peer, ratio = self.fastest_peer(row, section.peers) or ("", None)
            limit = self.limit_time(row)
            yield "| " + " | ".join([
                f"**{row.label}**" if row.label in self.missed else row.label, unbroken(chart.show_time(own)), peer,
                unbroken(f"{show_ratio(ratio.median)} ({show_spread(ratio)})") if ratio else "",
                unbroken(chart.show_time(limit)) if limit else "", show_ratio(own / limit) if limit else ""]) + " |"
        yield ""

    def goals(self):
        yield "## What was missed {#benchmarks_missed}\n"
        if self.missed:
            yield "With the figure and what it should be:\n"
            yield from (f"- {workload}: {'; '.join(lines)}" for workload, lines in self.missed.items())
        else:
            yield "Nothing."
        yield ""

    def conditions(self):
        machine = self.facts["machine"]
        yield "## Machine and versions {#benchmarks_machine}\n"
        yield f"- {machine['processor']} ({machine['instructions']}), {machine['caches']}"
        yield f"- {machine['system']}; load average before the run {machine['load']}"
        yield "- " + ", ".join(f"{name} {version}" for name, version in self.facts["versions"].items()) + "\n"

    def figures(self):
        body = [line for section in SECTIONS for line in self.section(section)]
        return [FIGURES_HEAD, *body, *self.growth(), *self.cliffs(), *self.start(), *self.allocations(), METHOD]

    def summary(self):
        """After figures(), which counts what was met."""
        body = [line for section in SECTIONS for line in self.short_section(section)]
        pictures = [f"![{words}](charts/{name})\n" for name, words in CHARTS.items()]
        head = SUMMARY_HEAD.format(met=self.met, goals=self.met + sum(len(lines) for lines in self.missed.values()))
        return [head, *readme_table(self.results), "", *self.conditions(), "## Charts {#benchmarks_charts}\n", *pictures,
                READING, *body, *self.goals()]


def cell(time, figure):
    """The time, and below it the ratio: neither is broken into lines."""
    return "<br>".join(unbroken(part) for part in (chart.show_time(time), figure))


def unbroken(text):
    return text.replace(" ", "\u00a0")


def show_spread(ratio):
    return "–".join(show_ratio(value) for value in sorted((ratio.least, ratio.greatest)))


def show_ratio(ratio):
    return f"{ratio:.2f}" if ratio < 10 else f"{ratio:.1f}" if ratio < 100 else f"{ratio:.0f}"


def show_goal(goal):
    return f"{goal:.2f}".rstrip("0").rstrip(".")


def show_goals(row):
    goals = [f"{peer} {show_goal(goal)}" for peer, goal in row.goals.items()]
    if row.limit_goal:
        goals.append(f"limit at most {row.limit_goal:g}")
    return ", ".join(goals)


def dot_chart(results, titles, title):
    """Our own time, the peers' and the limit, for each row of those sections."""
    rows, peers = [], ["Corvale"]
    for section in (section for section in SECTIONS if section.title in titles):
        for row in section.rows:
            names = {"Corvale": row.own, **{peer: peer for peer in section.peers}}
            times = {name: results.median(row.topic, peer, row.size) for name, peer in names.items()}
            if row.limit and row.limit[0] == row.topic:
                times[row.limit[1]] = results.median(*row.limit, row.size)
            times = {name: time for name, time in times.items() if time}
            rows += [(row.label, times)] if times else []
            peers += [name for name in times if name not in peers]
    return chart.dots(title, rows, peers)


def matrix_chart(results):
    names = {"Corvale": "Corvale", "OpenBLAS": "OpenBLAS, one thread", "Eigen": "Eigen",
             "LAPACK": "reference LAPACK", "plain": "plain loops"}
    panels = []
    for topic, title in (("Cholesky", "Cholesky: factor, solution, inverse"), ("Inverse", "MtxInv: inverse")):
        panels.append((title, {name: {n: results.median(topic, peer, n) for n in results.sizes(topic, peer)}
                               for peer, name in names.items()}))
    return chart.lines("Time of the matrix procedures", panels, "order of the matrix", lambda n: f"{n:g}")


def sort_chart(results):
    curves = {pattern: {n: results.median(pattern, "Corvale", n) for n in results.sizes(pattern)}
              for pattern in PATTERNS}
    sizes = results.sizes("Random", "pdqsort")
    curves["pdqsort, Random"] = {n: min(results.median("Random", peer, n) for peer in PDQSORTS) for n in sizes}
    return chart.lines("Time to sort a key", [("QuickSortIterative: time a key", curves)],
                       "keys (a level line: time in proportion to their number)",
                       lambda n: f"{n:.0f}" if n < 1e3 else f"{n / 1e3:.0f}k" if n < 1e6 else f"{n / 1e6:.0f}M")


def charts(results):
    return {
        "card-times.svg": dot_chart(results, ["Card files"], "Loading a card file of 200,000 lines"),
        "number-times.svg": dot_chart(results, ["Numbers out of text", "Numbers into text", "Rows of numbers"],
                                      "Time a number, and a row of 20 numbers"),
        "text-times.svg": dot_chart(results, ["Texts of 512 characters"], "Texts of 512 characters"),
        "log-times.svg": dot_chart(results, ["Log lines"], "One line to the open log"),
        "matrix-times.svg": matrix_chart(results), "sort-times.svg": sort_chart(results),
    }


def readme_table(results):
    yield "| work | Corvale | fastest peer | its time | ratio |\n|---|---|---|---|---|"
    for label, topic, size, peers in SUMMARY:
        times = {peer: results.median(topic, peer, size) for peer in peers}
        times = {peer: time for peer, time in times.items() if time}
        if times:
            best = min(times, key=times.get)
            ratio = show_ratio(results.ratio(topic, best, size=size).median)
            yield (f"| {label} | {chart.show_time(results.median(topic, size=size))} | {best} | "
                   f"{chart.show_time(times[best])} | {ratio} |")


def renew(readme, table):
    before, mark, rest = readme.read_text(encoding="utf-8").partition("<!-- measured by scripts/bench.sh -->\n")
    after = rest.partition("<!-- end -->")
    readme.write_text("".join([before, mark, table, "\n", *after[1:]]), encoding="utf-8")


def main():
    folder, summary_page, figures_page, pictures, *readme = (pathlib.Path(name) for name in sys.argv[1:])
    results = Results(sorted(folder.glob("*Bench*.json")))
    if results.disagreements:
        print("\n".join(["these disagree with Corvale:", *results.disagreements]))
        return 1
    facts = json.loads((folder / "start.json").read_text(encoding="utf-8"))
    pictures.mkdir(parents=True, exist_ok=True)
    for name, svg in charts(results).items():
        (pictures / name).write_text(svg, encoding="utf-8")
    page = Page(results, facts)
    figures_page.write_text("\n".join(page.figures()) + "\n", encoding="utf-8")
    summary_page.write_text("\n".join(page.summary()) + "\n", encoding="utf-8")
    for file in readme:
        renew(file, "\n".join(readme_table(results)))
    return 0


if __name__ == "__main__":
    sys.exit(main())
