#!/usr/bin/env python3
"""The table of the C API beside what has to agree with it: prints every difference, ends with 1 if
there is one.

    check_interface.py SOURCE
"""
import difflib
import pathlib
import re
import sys

SOURCE = pathlib.Path(sys.argv[1])
sys.dont_write_bytecode = True
sys.path.insert(0, str(SOURCE / "bindings"))
import interface  # noqa: E402

faults = []


def compare(what, have, want):
    faults.extend(difflib.unified_diff(have, want, what, "what the table asks for", n=0, lineterm=""))


def check_header(functions):
    code = re.sub(r"/\*.*?\*/", "", interface.HEADER.read_text(), flags=re.S)
    declared = re.findall(r"CORVALE_API ([^;]*) CORVALE_NOEXCEPT;", " ".join(code.split()))
    compare("CorvaleDllExports.h", declared, [function.in_c() for function in functions])


def says_width(comment, argument):
    """The width is said beside the argument, for all texts, or where the example declares the array."""
    own = re.search(rf"^{argument.name}  .*", comment, re.M)
    width = rf"\b{argument.width} " + ("characters" if argument.kind == "text" else "values")
    if own and re.search(width, own[0]):
        return True
    if argument.kind == "text":
        return f"texts have {argument.width} characters" in comment
    array = re.sub("(In|Out)$", "", argument.name)
    return re.search(rf"^    .*\b{array}\[{argument.width}\]", comment, re.M) is not None


def check_widths(functions):
    comments = interface.comments()
    for function in functions:
        for argument in function.arguments:
            if argument.width != "1" and not says_width(comments.get(function.name, ""), argument):
                faults.append(f"CorvaleDllExports.h: {function.name}: {argument.name} is not said to "
                              f"have {argument.width} elements")


functions = interface.read()
check_header(functions)
check_widths(functions)
exports = re.search(r"CORVALE_C_\d+ \{\s*global:(.*?)local:",
                    (SOURCE / "corvale/Corvale.map").read_text(), re.S)
compare("Corvale.map", re.findall(r"\w+", exports[1]), [function.name for function in functions])
compare("docs/c-interface.md", (SOURCE / "docs/c-interface.md").read_text().split("\n"),
        interface.page().split("\n"))
if faults:
    print("\n".join(faults))
    sys.exit("The table is bindings/interface.txt; bindings/interface.py >docs/c-interface.md writes the page.")
