#!/usr/bin/env python3
"""Prints docs/python-reference.md, every procedure of the package, from the docstrings.

    python make_reference.py > docs/python-reference.md
"""

from __future__ import annotations

import inspect
import pathlib
import re
import runpy
from typing import Any, Iterator

import corvale
from corvale import capi

TOP = pathlib.Path(__file__).resolve().parents[3]
LABEL = re.compile(r"(C\+\+|Shapes|Units|Errors|out) {2,}(.*)")
HEAD = """# Python: every procedure {#python_reference}

Made by `bindings/python/arrays/make_reference.py` from the docstrings: what `help(corvale.cholesky)` says. How they work on
arrays, and how fast: [Corvale in Python](python.md). The procedures are grouped as the C++ headers are; `out` stands for an array
of the result's type and shape to write into. Shapes are those of one call: `...` are axes in front, broadcast together.
"""


def prose(words: str) -> str:
    """Plain words as Markdown: a bytes literal becomes code, and no sign of Markdown is left."""
    pieces = re.split(r"(`[^`]*`|b'[^']*')", words)
    for i, piece in enumerate(pieces):
        quoted = piece.startswith(("`", "b'"))
        pieces[i] = f"`{piece.strip('`')}`" if quoted else re.sub(r"[\\<>*%#@~|]", r"\\\g<0>", piece)
    return "".join(pieces)


def headings() -> dict[str, str]:
    """{C++ procedure: what the head of its header is about}."""
    headers = runpy.run_path(str(TOP / "docs/doxygen/headers.py"))
    found = {}
    for header, texts in headers["labels_of_functions"]("Threads").items():
        opening = headers["head"]((TOP / "corvale" / header).read_text())[0]
        title = re.split(r"[.:,]", opening[0])[0]
        found.update({name: title for names in texts.values() for name in names})
    return found


def entry(name: str, call: Any) -> Iterator[str]:
    """A procedure of the compiled module: its call, what it does, a row for each label."""
    signature, _, text = call.__doc__.partition("\n\n")
    if not signature.startswith(f"{name}("):
        signature, text = f"{name}{inspect.signature(call)}", call.__doc__
    arguments = re.sub(r": object| -> object", "", signature).replace(" = ", "=")
    lines = inspect.cleandoc(text).split("\n")
    labels = [match for match in map(LABEL.fullmatch, lines) if match]
    words = " ".join(line for line in lines if not LABEL.fullmatch(line)).strip()
    yield f"### {name} {{#python_{name}}}\n\n`{arguments}`\n\n{prose(words)}\n\n| | |\n|---|---|"
    for label in labels:
        said = {"C++": f"`{label[2].partition('::')[2]}`", "Shapes": f"`{label[2]}`"}.get(label[1], prose(label[2]))
        yield f"| {label[1]} | {said} |"
    yield ""


def arrays() -> Iterator[str]:
    """All procedures over arrays, the lists of the module among them, by the header of the C++ one."""
    titles, groups = headings(), dict[str, list[str]]()
    for name, call in sorted(vars(corvale._arrays).items()):
        source = re.search(r"^C\+\+ +\w+::(\w+)", call.__doc__ or "", re.M) if callable(call) else None
        if source:
            groups.setdefault(titles[source[1]], []).append(name)
    for title in dict.fromkeys(title for title in titles.values() if title in groups):
        yield f"## {title} {{#python_topic_{re.sub(r'[^a-z]+', '_', title.lower())}}}\n"
        for name in groups[title]:
            yield from entry(name, getattr(corvale._arrays, name))


def c_functions() -> Iterator[str]:
    """The class of corvale.capi, a row for each method or property."""
    yield f"## The C functions {{#python_capi}}\n\n`from corvale.capi import Corvale`\n\n{prose(inspect.getdoc(capi.Corvale) or '')}\n"
    yield "| method or property | what it does |\n|---|---|"
    for name, member in vars(capi.Corvale).items():
        if name.startswith("_") and name != "__init__":
            continue
        what = " ".join((inspect.getdoc(member) or "").split())
        call = name
        if not isinstance(member, property):
            given = inspect.signature(member).parameters
            written = [str(p.replace(annotation=p.empty)) for p in given.values() if p.name != "self"]
            call = f"{'Corvale' if name == '__init__' else name}({', '.join(written)})"
        yield f"| `{call}` | {prose(what)} |"


def reference() -> str:
    """The whole text of the page."""
    return "\n".join([HEAD, *arrays(), *c_functions()]) + "\n"


if __name__ == "__main__":
    print(reference(), end="")
