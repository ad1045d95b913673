"""Compares the interfaces of corvale_api.f90 with the table and prints how many arguments agree.

    check_api.py CORVALE_API.F90 INTERFACE.TXT
"""

import difflib
import re
import sys

TYPES = {"char": "character(kind=c_char)", "text": "character(kind=c_char)",
         "int32": "integer(c_int32_t)", "int64": "integer(c_int64_t)", "real64": "real(c_double)"}


def in_fortran(name, kind, width, way):
    value = ", value" if way == "in" and width == "1" and kind != "text" else ""
    shape = f"({width})" if width != "1" else ""
    return f"{TYPES[kind]}{value}, intent({way}) :: {name}{shape}"


def wanted(table):
    """Each function of the table as it has to be declared: its head, its arguments, its result."""
    lines, rows = [], [line.split() for line in table.splitlines() if line and line[0] != "#"]
    for place, row in enumerate(rows):
        if row[0] == "argument":
            lines.append(in_fortran(*row[1:]))
            continue
        rest = rows[place + 1:]
        length = next((i for i, other in enumerate(rest) if other[0] == "function"), len(rest))
        names = ", ".join(argument[1] for argument in rest[:length])
        lines.append(f"{'function' if row[2] == 'int32' else 'subroutine'} {row[1]}({names}) bind(C)")
    return lines, [row[0] for row in rows].count("argument")


def declared(source):
    """The same lines as they are declared."""
    block = re.search(r"^  abstract interface\n(.*?)^  end interface", source, re.S | re.M)[1]
    lines = [" ".join(line.split()) for line in re.sub(r" *&\n *", " ", block).splitlines()]
    kept = [line for line in lines if line and not re.match(r"import|end ", line)]
    results = [line for line in kept if line in ("integer(c_int32_t) :: status", "integer(c_int32_t) :: mode")]
    functions = [line for line in kept if line.startswith("function")]
    assert len(results) == len(functions), "a function without a result of 32 bits"
    return [re.sub(r" result\(\w+\)$", "", line) for line in kept if line not in results]


have = declared(open(sys.argv[1]).read())
want, count = wanted(open(sys.argv[2]).read())
if have != want:
    sys.exit("\n".join(difflib.unified_diff(have, want, "declared", "in the table", n=0, lineterm="")))
print(count)
