#!/usr/bin/env python3
"""Reads the table of the C API, and writes its reference page.

    interface.py >docs/c-interface.md
"""
import dataclasses
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
HEADER = ROOT / "corvale/exports/CorvaleDllExports.h"
C_TYPES = {"char": "char", "text": "char", "int32": "int32_t", "int64": "int64_t",
           "real64": "double", "void": "void"}
PAGE_HEAD = """# The C API

Written by `bindings/interface.py` from `bindings/interface.txt` and the comments of
`corvale/exports/CorvaleDllExports.h`, which says more about each function. A test keeps all three together.

Texts are blank-filled and have no terminator; a result `int32` of a function that can fail is 0, or 2 with the reason
in `GetLastErrMsg`. An argument that is no pointer in C is passed by value.
"""


@dataclasses.dataclass(frozen=True)
class Argument:
    """One argument as the table has it; `width` is a number or the name of an argument."""
    name: str
    kind: str
    width: str
    way: str

    def by_value(self):
        return self.way == "in" and self.width == "1" and self.kind != "text"

    def in_c(self):
        pointer = "" if self.by_value() else "*"
        const = "const " if self.way == "in" and pointer else ""
        return f"{const}{C_TYPES[self.kind]}{pointer} {self.name}"


@dataclasses.dataclass(frozen=True)
class Function:
    """One function as the table has it."""
    name: str
    result: str
    arguments: list

    def in_c(self):
        arguments = ", ".join(argument.in_c() for argument in self.arguments) or "void"
        return f"{C_TYPES[self.result]} {self.name}({arguments})"


def read(path=ROOT / "bindings/interface.txt"):
    """The functions of the table in its order. A line that it cannot be ends the program."""
    functions = []
    for number, line in enumerate(pathlib.Path(path).read_text().splitlines(), 1):
        if re.fullmatch(r"function \w+ (void|int32)", line):
            functions.append(Function(*line.split()[1:], []))
        elif functions and re.fullmatch(
                r"argument \w+ (char|int32|int64|real64|text) \w+ (in|out|inout)", line):
            functions[-1].arguments.append(Argument(*line.split()[1:]))
        elif line and not line.startswith("#"):
            sys.exit(f"{path}:{number}: neither function, argument nor comment: {line}")
    return functions


def comments():
    """The comment of each function of the C header, without its stars."""
    found = re.findall(r"/\*((?:(?!\*/).)*)\*/\nCORVALE_API \w+ (\w+)\(", HEADER.read_text(), re.S)
    return {name: re.sub(r"^ \* ?", "", comment, flags=re.M) for comment, name in found}


def page():
    functions, said = read(), comments()
    lines = [PAGE_HEAD, "| function | result | what it does |", "|---|---|---|"]
    for function in functions:
        sentence = re.match(r".*?(?=[.;:](?: |$))", " ".join(said.get(function.name, ".").split()))[0]
        lines.append(f"| `{function.name}` | {function.result} | {sentence} |")
    lines += ["", "| function | # | argument | type | elements | way | in C |",
              "|---|---|---|---|---|---|---|"]
    for function in functions:
        for place, argument in enumerate(function.arguments, 1):
            lines.append(f"| `{function.name}` | {place} | `{argument.name}` | {argument.kind} | "
                         f"{argument.width} | {argument.way} | `{argument.in_c()}` |")
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    sys.stdout.write(page())
