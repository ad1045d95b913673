#!/usr/bin/env python3
"""Tries random small changes of the library against its tests. Run by mutate.sh.

    mutate.py TREE BUILD COUNT SEED [FILE...]

TREE is a copy of the sources with a build in BUILD, whose tests exist already. Each change is one of
KINDS at a random spot of a random line of the FILEs (all of corvale/ if none), is built and tried
against the tests of its folder and the fuzz targets, and is taken back. Prints a line a change and the
totals; what survived is to be judged: equivalent, or a test row is missing.
"""
import os
import pathlib
import random
import re
import signal
import subprocess
import sys

# What a slip of the hand, or of the mind, turns into what. Comparisons with blanks around them: a
# template's brackets have none.
KINDS = [(r" < ", " <= "), (r" <= ", " < "), (r" > ", " >= "), (r" >= ", " > "), (r" == ", " != "), (r" != ", " == "),
         (r" \+ ", " - "), (r" - ", " + "), (r" \* ", " + "), (r" && ", " || "), (r" \|\| ", " && "),
         (r" << ", " >> "), (r" >> ", " << "), (r" & ", " | "), (r" \| ", " & "), (r"\+\+", "--"), (r"(?<=[(\s])!(?=\w)", ""),
         (r"\btrue\b", "false"), (r"\bfalse\b", "true"), (r"(?<![\w.'])\d{1,9}(?=[^\w.'])", lambda found: str(int(found[0]) + 1)),
         (r"^\s+[\w.\->\[\]:*]+(\(.*\)| [-+|&^*]?= .*);$", "")]  # a statement
SKIPPED = re.compile(r"^\s*(//|#|static_assert|template|using|namespace|enum|struct|class)|CORVALE_API|=\s*(delete|default);")
MORE_TESTS = {"core": "exports|platform|processes|faults", "platform": "core|exports|processes|faults",
              "exports": "core|faults", "base": "text|numeric|sorting|core", "numeric": "exports|faults|soak"}
# Not compiled here, or made by a generator with which scripts/prove.sh compares it.
LEFT_OUT = re.compile(r"^(Windows|Wasi|(Arc|CubeRoot|Exponential|Sine)Table)")
SECONDS = 120  # for one set of tests; a change that loops for ever is seen by it


def candidates(file):
    """(line, start, end, new text) of every change of the file."""
    found = []
    for number, line in enumerate(file.read_text().split("\n")):
        code = line.split("//")[0].rstrip()
        if not code or SKIPPED.match(code):
            continue
        for pattern, new in KINDS:
            for match in re.finditer(pattern, code):
                found.append((number, *match.span(), new(match) if callable(new) else new))
    return found


def succeeds(command, seconds):
    """Whether `command` ends well in time; what it started ends with it."""
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(seconds) == 0
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.wait()
        return False


def verdict(build, folder):
    if not succeeds(["cmake", "--build", str(build), "--target", "Corvale", "fault_loops", "base_tests"], 600):
        return "does not compile"
    tests = "|".join(filter(None, [folder, MORE_TESTS.get(folder), "fuzz"]))
    passed = succeeds(["ctest", "--test-dir", str(build), "-R", f"^({tests})/", "-j2", "--stop-on-failure",
                       "--timeout", "60"], SECONDS)
    return "survived" if passed else "seen"


def main(tree, build, count, seed, *names):
    tree, build = pathlib.Path(tree), pathlib.Path(build)
    files = [tree / name for name in names] or [
        file for file in sorted((tree / "corvale").rglob("*.[ch]pp")) if not LEFT_OUT.search(file.name)]
    changes = [(file, change) for file in files for change in candidates(file)]
    totals = {"seen": 0, "survived": 0, "does not compile": 0}
    chosen = random.Random(int(seed)).sample(changes, len(changes))
    for file, (number, start, end, new) in chosen:
        if totals["seen"] + totals["survived"] >= int(count):
            break
        before = file.read_text()
        lines = before.split("\n")
        old = lines[number]
        lines[number] = old[:start] + new + old[end:]
        file.write_text("\n".join(lines))
        try:
            result = verdict(build, file.relative_to(tree / "corvale").parts[0])
        finally:
            file.write_text(before)
        totals[result] += 1
        if result != "does not compile":
            print(f"{result}: {file.relative_to(tree)}:{number + 1}: {old.strip()}  ->  {lines[number].strip() or '(removed)'}",
                  flush=True)
    tried = totals["seen"] + totals["survived"]
    print(f"{tried} changes: {totals['seen']} seen, {totals['survived']} survived; "
          f"{totals['does not compile']} more did not compile")


main(*sys.argv[1:])
