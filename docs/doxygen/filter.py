#!/usr/bin/env python3
"""Prints a file as Doxygen reads it (its INPUT_FILTER). The files themselves stay plain.

    filter.py HEADER.hpp   comments with labelled lines become Doxygen comments
    filter.py PAGE.md      "@labels Threads" becomes a table of what every function says about them,
                           "@procedures" a list of all procedures by their headers

What the head of a header says for all of it is repeated with each of its functions, which stand on the
page of their namespace.
"""
import html
import re
import sys

import headers

CAMEL = r"\b[A-Z]+[a-z]+\w*[A-Z]\w*\b"  # a name that is no word of English
SAYS_NOTHING = {"Exactness": "moves characters, integers or stored reals: nothing is computed in reals"}
SHARED = ("Units", "Width", "Shape", "Bad input", "Aliasing", "Threads", "Exactness", "Source")  # in this order


def link(name, own=""):
    qualified = headers.declared().get(name)
    if not qualified or name == own:
        return name
    return f'\\ref {qualified} "{name}"'


def prose(words, own=""):
    """Plain words as Markdown: code stays code, names of the library become links; quotes stay as they are."""
    pieces = re.split(r"""(`[^`]*`|"[^"]*")""", words)
    for i, piece in enumerate(pieces):
        if piece.startswith("`"):
            name = piece.strip("`")
            pieces[i] = link(name, own) if name in headers.declared() and name != own else piece
        elif not piece.startswith('"'):
            piece = re.sub(r"[\\<>*%#@~]", r"\\\g<0>", piece)
            pieces[i] = re.sub(CAMEL, lambda name: link(name[0], own), piece)
    return "".join(pieces)


def names_line(block):
    """Whether a labelled line lists procedures: "Clean  NullToSpace  BlankToZeroChar"."""
    return all(word in headers.declared() for word in block.words().split())


def section(block, declaration):
    """A labelled line as a Doxygen section."""
    term, own = block.term.strip("`"), declaration.name if declaration else ""
    if names_line(block):
        listed = ", ".join(link(word) for word in block.words().split())
        if term in headers.declared():
            return [f"Contents: {link(term)}, {listed}"]
        return [f"@par {term}", listed]
    if declaration and term in declaration.parameters:
        return [f"@param {term} {prose(block.words(), own)}"]
    if term == "Returns":
        return [f"@return {prose(block.words(), own)}"]
    return [f"@par {prose(block.term)}", prose(block.words(), own)]


def with_shared(blocks, shared):
    """A function's blocks with the labels that it leaves to the head of its header; "as above" is what stands there."""
    own = {block.term: block for block in blocks if block.kind == "label"}
    told = [block for block in blocks if block.term not in SHARED]
    for term in SHARED:
        block = own.get(term) or shared.get(term)
        if block and block.words().startswith("as above"):
            block = block._replace(lines=[shared[term].words() + block.words().removeprefix("as above")])
        told += [block] if block else []
    return told


def converted(comment, language, declaration=None, shared=None):
    """The lines of a comment in Doxygen's words."""
    lines = []
    for block in with_shared(headers.blocks(comment), shared) if shared else headers.blocks(comment):
        if block.kind == "code":
            lines += [f"@code{{.{language}}}", *block.lines, "@endcode", ""]
        elif block.kind == "text":
            lines += [prose(block.words(), declaration.name if declaration else ""), ""]
        else:
            lines += [*section(block, declaration), ""]
    return "\n".join(("/// " + line).rstrip() for line in lines) + "\n"


def header(text, language, path):
    opening, rest = headers.head(text)
    told = converted(opening, language)
    printed = ["/// @file\n" + told]
    subject = opening[0].partition(":")[0]
    if subject in headers.modules():
        printed.append(f"\n/// @namespace corvale::{subject}\n" + told)
    for macro in headers.blocks(opening):
        if re.fullmatch(r"CORVALE_[A-Z]+", macro.term):
            printed.append(f"\n/// @def {macro.term}\n/// {prose(macro.words())}\n")
    printed.append("\n")
    shared = {block.term: block for block in headers.blocks(opening) if block.kind == "label"}
    for piece in headers.split(rest):
        if isinstance(piece, str):
            plain = re.sub(r"^static_assert.*\n", "", piece, flags=re.M)
            printed.append(re.sub(r"^(#define .*?) /\* (.*) \*/$", r"\1 /**< \2 */", plain, flags=re.M))
        else:
            is_function = language == "cpp" and re.search(r"CORVALE_API [^(]*\(", piece.code)
            told = converted(piece.comment, language, piece, shared if is_function else None)
            place = re.search(r"[^/]*$", path)[0], path[path.rindex("corvale/"):]
            printed.append(told + ('/// @par Header\n/// \\ref {} "{}"\n'.format(*place) if is_function else ""))
    return "".join(printed)


def labels_table(label):
    for name, texts in headers.labels_of_functions(label).items():
        yield f"\n### {name}\n\n| function | {label.lower()} |\n|---|---|"
        for text, functions in texts.items():
            said = prose(text) if text else SAYS_NOTHING[label]
            yield f"| {', '.join(link(function) for function in functions)} | {said} |".replace("||", "\\|\\|")


def beginning(words):
    """The first sentence, or what stands before its colon."""
    return re.match(r".*?[.:](?= |$)|.*", words)[0].rstrip(".:")


def procedures_of(rest):
    """{name: what it does} of a header's code; a comment may follow the declaration."""
    after = re.findall(r"CORVALE_API [^/\n]*?(\w+)\([^/\n]*;\s*///< (.*)$", rest, re.M)
    before = [(piece.name, headers.blocks(piece.comment)[0].words()) for piece in headers.split(rest)
              if isinstance(piece, headers.Declaration) and re.search(r"CORVALE_API [^(]*\(", piece.code)]
    return {name: beginning(words) for name, words in before + after}


def procedures():
    """Every procedure with the beginning of its comment, by header."""
    for name in headers.installed():
        opening, rest = headers.head((headers.TOP / "corvale" / name).read_text())
        found = procedures_of(rest)
        if found:
            file = name.rpartition("/")[2]
            yield (f"\n## {beginning(headers.blocks(opening)[0].words())} {{#procedures_{file.partition('.')[0]}}}"
                   f"\n\n\\ref {file} \"corvale/{name}\"\n\n| procedure | what it does |\n|---|---|")
        for procedure, words in found.items():
            yield f"| {link(procedure)} | {prose(words, procedure)} |".replace("||", "\\|\\|")


def page(text):
    text = re.sub("^@procedures$", lambda _: "\n".join(procedures()), text, flags=re.M)
    text = re.sub(r"^(?! {4}).*", lambda line: re.sub("`([^`]+)`", quoted_in_page, line[0]), text, flags=re.M)
    text = re.sub(r"\]\(\.\./([\w-]+\.svg)\)", r"](\1)", text)  # pictures are found by their names
    return re.sub(r"^@labels (\w+)$", lambda label: "\n".join(labels_table(label[1])), text, flags=re.M)


def quoted_in_page(quoted):
    """A name of the library becomes a link; Doxygen takes an apostrophe for the end of quoted code, and -- for a dash."""
    if quoted[1] in headers.declared():
        return link(quoted[1])
    if "'" in quoted[1]:
        code = html.escape(quoted[1]).replace("&#x27;", "&apos;").replace("--", "\\--")
        return f"<tt>{code}</tt>"
    return quoted[0]


def main(path):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    if path.endswith(".md"):
        text = page(text)
    elif path.endswith((".h", ".hpp")):
        text = header(text, "c" if path.endswith(".h") else "cpp", path)
    sys.stdout.write(text)


main(sys.argv[1])
