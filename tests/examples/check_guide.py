#!/usr/bin/env python3
"""Keeps the guide true: prints every fault, and ends with 1 if there is one.

    check_guide.py SOURCE

A page of docs/guide holds no code of its own: it shows files of the examples folders, or pieces of them
between two lines with [NAME], by Doxygen's \\include and \\snippet. Each of those files is built, run or
compared by a test. The C and C++ code and the first result in README.md do so too.
"""
import pathlib
import re
import sys

SOURCE = pathlib.Path(sys.argv[1])
FOLDERS = [SOURCE / folder for folder in ("examples", "bindings/python/examples", "bindings/fortran/examples")]
TESTS = "".join((SOURCE / name).read_text() for name in (
    "examples/CMakeLists.txt", "tests/examples/CMakeLists.txt", "tests/examples/first_programs.sh"))
faults = []


def is_tested(name):
    """Whether a test names the file, or its NAME.out, as something to build, run or compare."""
    stem = pathlib.Path(name).name.rpartition(".")[0]
    return name in TESTS or re.search(rf"\b{re.escape(stem)}\b", TESTS) or name.startswith("own_program/")


def check_piece(where, command, name, piece):
    file = next((folder / name for folder in FOLDERS if (folder / name).is_file()), None)
    if file is None:
        faults.append(f"{where}: {name} is no file of the examples")
        return
    if not is_tested(name):
        faults.append(f"{where}: no test builds, runs or compares {name}")
    if command == "snippet" and file.read_text().count(f"[{piece}]") != 2:
        faults.append(f"{where}: {name} has no two lines with [{piece}]")


def check_page(page):
    for number, line in enumerate(page.read_text().split("\n"), 1):
        where = f"{page.relative_to(SOURCE)}:{number}"
        shown = re.fullmatch(r"[\\@](snippet|include) (\S+)(?: (\S+))?", line)
        if shown:
            check_piece(where, *shown.groups())
        elif re.match(r" {4}|\t|```|~~~|.*[\\@](code|verbatim|snippet|include)", line):
            faults.append(f"{where}: code that is no excerpt of an example")


def check_readme(text):
    """Its C and C++ lines and its first result, but for blanks and an ending "...", stand in an example."""
    examples = [re.sub(r"\s+", "", file.read_text()) for file in FOLDERS[0].glob("*.[co]*")]
    for block in re.findall(r"(?:^(?: {4}.*)?\n)+", text, re.M):
        code = re.sub(r"\s+", "", block).removesuffix("...")
        if re.search(r"^ +(#include|MOIC$|.*;$)", block, re.M) and not any(code in file for file in examples):
            faults.append(f"README.md: no example holds:\n{block.rstrip()}")


for page in sorted((SOURCE / "docs/guide").glob("*.md")):
    check_page(page)
check_readme((SOURCE / "README.md").read_text())
if faults:
    print("\n".join(faults))
sys.exit(1 if faults else 0)
