#!/usr/bin/env python3
"""Adds up what llvm-cov counted and compares it with the table of what may stay unreached.

    coverage.py TABLE TRACEFILE COUNTS...

COUNTS.lcov and COUNTS.json are what llvm-cov exports of one build. A branch is one outcome of one
condition at one place in the source: whichever build, and whichever instantiation of a template,
takes it. TRACEFILE is written for gcovr to print.

TABLE names source lines, each with its reason indented below it. Exits with 1 where a line that is
not named has not been reached or has a branch that was never taken.
"""
import collections
import json
import os
import pathlib
import re
import sys


def library_file(name):
    """The path within the checkout of a file of the library; nothing for any other."""
    path = os.path.normpath(name.rpartition("/./")[2])  # ccache puts the folder of the build in front
    return path if path.startswith("corvale/") else None


def add_lines(path, files):
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        kind, _, value = line.partition(":")
        if kind == "SF":
            name = library_file(value)
        elif kind == "DA" and name:
            number, count = map(int, value.split(","))
            files[name][number]["count"] += count


def add_branches(path, files):
    for entry in json.loads(pathlib.Path(path).read_text(encoding="utf-8"))["data"][0]["files"]:
        if name := library_file(entry["filename"]):
            for line, column, _, _, taken, not_taken, *_ in entry["branches"]:
                branches = files[name][line]["branches"]
                branches[column, True] += taken
                branches[column, False] += not_taken


def drop_noncode(files):
    """Leaves out lines of a closing brace or for the preprocessor."""
    for name, lines in files.items():
        source = pathlib.Path(name).read_text(encoding="utf-8").splitlines()
        for number in [n for n in lines if re.fullmatch(r"\s*(#.*|\W*)", source[n - 1])]:
            del lines[number]


def drop_constants(files):
    """Leaves out conditions that came out neither way: the compiler has decided them. Where it is one
    that was never got to, what stands before it is reported."""
    for line in (line for lines in files.values() for line in lines.values()):
        for column, is_true in list(line["branches"]):
            if is_true and line["branches"][column, True] + line["branches"][column, False] == 0:
                del line["branches"][column, True], line["branches"][column, False]


def tracefile(files):
    branch = {"fallthrough": False, "throw": False}
    return {"gcovr/format_version": "0.3", "files": [
        {"file": name, "functions": [], "lines": [
            {"line_number": number, "count": line["count"], "gcovr/noncode": False,
             "gcovr/excluded": False,
             "branches": [branch | {"count": count} for count in line["branches"].values()]}
            for number, line in sorted(lines.items())]}
        for name, lines in sorted(files.items())]}


def read_table(path):
    """The named lines, as "file: source line"."""
    lines = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
    return {line for line in lines if line and not re.match(r"[# ]", line)}


def unreached(files):
    """Where something was not reached: "file:line", "file: source line", what of it."""
    for name, lines in sorted(files.items()):
        source = pathlib.Path(name).read_text(encoding="utf-8").splitlines()
        for number, line in sorted(lines.items()):
            never = sorted(branch for branch, count in line["branches"].items() if count == 0)
            if never or line["count"] == 0:
                what = ", ".join(f"never {str(is_true).lower()} in column {column}"
                                 for column, is_true in never) if line["count"] else "not reached"
                yield f"{name}:{number}", f"{name}: {source[number - 1].strip()}", what


def main():
    table, trace, *counts = sys.argv[1:]
    files = collections.defaultdict(lambda: collections.defaultdict(
        lambda: {"count": 0, "branches": collections.Counter()}))
    for path in counts:
        add_lines(path + ".lcov", files)
        add_branches(path + ".json", files)
    drop_noncode(files)
    drop_constants(files)
    pathlib.Path(trace).write_text(json.dumps(tracefile(files)), encoding="utf-8")

    excused, met, others = read_table(table), set(), 0
    for place, text, what in unreached(files):
        met.add(text)
        if text not in excused:
            others += 1
            print(f"{place}: {what}: {text.partition(': ')[2]}")
    for text in sorted(excused - met):
        print(f"reached this time, or no longer there: {text}")
    print(f"{len(met & excused)} unreached lines are in the table, {others} are not")
    return 1 if others or not files else 0


sys.exit(main())
