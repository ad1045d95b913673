"""Reads the doc comments of the installed headers: what filter.py and its tables are made from.

A comment is paragraphs, indented code, and labelled lines: a term, two blanks or more, a text that
goes on in indented lines.
"""
import functools
import pathlib
import re
from typing import NamedTuple

TOP = pathlib.Path(__file__).resolve().parents[2]
LABEL = re.compile(r"(\S(?:\S| (?! ))*?) {2,}(\S.*)")
NAMESPACE = re.compile(r"^namespace (corvale::\w+)", re.M)


class Block(NamedTuple):
    """A piece of a comment: kind "text", "code" or "label", the label's term, the lines."""

    kind: str
    term: str
    lines: list[str]

    def words(self):
        return " ".join(line.strip() for line in self.lines)


class Declaration(NamedTuple):
    """A commented declaration: `name` is empty for what is no function, class, variable or type."""

    comment: list[str]
    code: str
    name: str
    parameters: list[str]


def installed():
    """The installed headers, as paths below corvale/."""
    lists = (TOP / "corvale/CMakeLists.txt").read_text()
    return re.search(r"set\(CORVALE_PUBLIC_HEADERS(.*?)\)", lists, re.S)[1].split()


def blocks(lines):
    """The blocks of a comment that has been freed of its comment signs."""
    found, after_blank = [], True
    for line in lines:
        label = LABEL.fullmatch(line)
        if label and label[1].count('"') % 2:  # two blanks inside quotes
            label = None
        if not line.strip():
            after_blank = True
            continue
        if line.startswith("    ") and (after_blank or found[-1].kind == "code"):
            start_or_extend(found, "code", line[4:], not after_blank or
                            bool(found) and found[-1].kind == "code")
        elif label:
            found.append(Block("label", label[1], [label[2]]))
        elif line.startswith(" ") and found and not after_blank:
            found[-1].lines.append(line)
        else:
            start_or_extend(found, "text", line, not after_blank)
        after_blank = False
    return found


def start_or_extend(found, kind, line, extends):
    if extends and found and found[-1].kind == kind:
        found[-1].lines.append(line)
    else:
        found.append(Block(kind, "", [line]))


def head(text):
    """The lines of a header's opening comment, and the text after it."""
    if text.startswith("/*"):
        comment, _, rest = text.partition("*/")
        return c_comment(comment + "*/"), rest.lstrip("\n")
    lines = text.split("\n")
    count = next(i for i, line in enumerate(lines) if not line.startswith("//"))
    return [line[2:].removeprefix(" ") for line in lines[:count]], "\n".join(lines[count:])


def c_comment(comment):
    body = comment.removeprefix("/*").removesuffix("*/").rstrip()
    return [re.sub(r"^ \* ?", "", line).removeprefix(" " if i == 0 else "")
            for i, line in enumerate(body.split("\n"))]


COMMENTED = re.compile(r"^(?P<cxx>(?: *///(?!<)[^\n]*\n)+)|^(?P<c>/\* [^\n]*(?:\n \*(?!/)[^\n]*)*\n? ?\*/\n)",
                       re.M)


def split(text):
    """What follows the head, in turn: code as a str, each comment as a Declaration."""
    place = 0
    for match in COMMENTED.finditer(text):
        yield text[place:match.start()]
        if match["c"]:
            comment = c_comment(match["c"].strip())
        else:
            comment = [re.sub(r"^ */// ?", "", line) for line in match["cxx"].rstrip().split("\n")]
        code = re.match(r"[^;{]*", text[match.end():])[0]
        yield Declaration(comment, code, name_of(code), parameters(code))
        place = match.end()
    yield text[place:]


def name_of(code):
    plain = re.sub(r"\[\[nodiscard\]\]|CORVALE_\w+\b(?!\()", "", code)
    function = re.search(r"(\w+)\(", plain)
    if function and not plain.lstrip().startswith(("template", "class")):
        return function[1]
    other = re.search(r"(?:class|struct|using) (\w+)|(\w+)\s*$", plain)
    return (other[1] or other[2]) if other else ""


def parameters(code):
    inside = re.search(r"\w\((.*)\)", code, re.S)
    plain = re.sub(r"<[^<>]*>", "", inside[1]).split(",") if inside else []
    return [re.sub(r"=.*", "", part, flags=re.S).strip().split()[-1].lstrip("&*")
            for part in plain if part.strip()]


@functools.cache
def modules():
    """The module namespaces, without their corvale::."""
    return {name.split("::")[1] for name in declared().values() if "::" in name}


@functools.cache
def declared():
    """Every public name with its qualified one."""
    names = {}
    for header in installed():
        text = (TOP / "corvale" / header).read_text()
        namespace = NAMESPACE.search(text)
        prefix = namespace[1] + "::" if namespace else ""
        for line in re.findall(r"^(?!#)[^/\n]*CORVALE_API [^;{]*", text, re.M):
            if name_of(line):
                names.setdefault(name_of(line), prefix + name_of(line))
        for name in re.findall(r"^class (\w+) \{|^using (\w+)", text, re.M):
            names.setdefault(name[0] or name[1], prefix + (name[0] or name[1]))
    return names


def labels_of_functions(label):
    """{header: {text of that label: [functions]}}; a header's opening answers for its functions."""
    table = {}
    for header in installed():
        opening, rest = head((TOP / "corvale" / header).read_text())
        shared = label_text(opening, label)
        for line in re.findall(r"^(?!#)[^/\n]*CORVALE_API [^;{]*\(", rest, re.M):
            name = name_of(line)
            own = next((label_text(d.comment, label) for d in split(rest)
                        if isinstance(d, Declaration) and d.name == name), None)
            table.setdefault(header, {}).setdefault(own or shared, []).append(name)
    return table


def label_text(comment, label):
    return next((b.words() for b in blocks(comment) if b.term == label), None)
