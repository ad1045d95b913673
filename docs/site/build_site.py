#!/usr/bin/env python3
"""Frames the pages that Doxygen made: the menu of docs/site/pages.txt, the contents of each page, the pages
before and after it, and the text of every section for the search.

    build_site.py DOXYGEN-FOLDER SITE-FOLDER VERSION MINISEARCH.js
"""
import copy
import html
import itertools
import json
import pathlib
import re
import shutil
import string
import sys

import lxml.html

import menu

HERE = pathlib.Path(__file__).resolve().parent
FRAME = string.Template((HERE / "frame.html").read_text(encoding="utf-8"))
NO_PAGES = ("dir_", "md_", "functions", "globals", "namespace", "annotated", "classes", "files", "pages", "hierarchy")


def element(text):
    return lxml.html.fragment_fromstring(text)


def has_class(name):
    return f'contains(concat(" ", @class, " "), " {name} ")'


def replace(old, new):
    new.tail = old.tail
    old.getparent().replace(old, new)


def plain_code(fragment):
    """Lines in <div>s as one <pre>, to be scrolled and copied."""
    pre = element('<pre class="code"></pre>')
    for hidden in fragment.xpath(f'.//*[{has_class("ttc")}] | .//a[@name] | .//span[{has_class("lineno")}]'):
        hidden.drop_tree()
    lines = fragment.xpath(f'./div[{has_class("line")}]')
    texts = [line.text_content() for line in lines if line.text_content().strip()]
    indent = min((len(text) - len(text.lstrip(" ")) for text in texts), default=0)
    for line in lines:
        line.text, line.tail = (line.text or "")[indent:], "\n"
        pre.append(line)
        line.drop_tag()
    replace(fragment, pre)


def signature(prototype):
    """The tables of a declaration as one line that may be broken."""
    pre = element('<pre class="signature"></pre>')
    for cell in prototype.xpath(f'.//table[{has_class("memname")}]//td'):
        pre.append(cell)
        cell.drop_tag()
    for label in prototype.xpath(f'.//span[{has_class("mlabel")}]'):
        pre.append(element(f"<span> {label.text}</span>"))
    tighten(pre, r"\bcorvale::\w+::(?=\w+ ?\()")
    replace(prototype, pre)


def tighten(code, useless="^$"):
    """C++ with single blanks, none inside angle brackets, without what `useless` matches."""
    for node in code.iter():
        for side in ("text", "tail"):
            words = re.sub(useless, "", re.sub(r"\s+", " ", getattr(node, side) or ""))
            setattr(node, side, re.sub(r"(?<=[<(]) | (?=[>),])", "", words))


def short_list(table):
    """A list of members as names and what they are; where nothing more is said of one, its declaration."""
    rows, found = table.xpath("./tr"), element('<table class="members"></table>')
    for row in rows:
        kind = row.get("class", "").partition(":")[0]
        if kind == "memitem":
            *before, right = row.xpath("./td")  # a template stands in a row of its own
            if "memTemplParams" in right.get("class", ""):
                continue
            link = right.xpath(f'./a[{has_class("el")}][1]')
            cell = element('<td class="code"></td>')
            if link and not (right.text or "").strip() and link[0] is right[0]:
                link[0].tail = None
                cell.append(link[0])
            else:
                for part in (*before, right):
                    part.tail = " "
                    cell.append(part)
                    part.drop_tag()
                tighten(cell)
            item = element("<tr></tr>")
            item.append(cell)
            found.append(item)
        elif kind == "memdesc":
            what = row.xpath(f'./td[{has_class("mdescRight")}]')[0]
            what.attrib.clear()
            found[-1].append(what)
    heading = table.xpath(".//h2")
    if heading:
        heading[0].tail = None
        table.addprevious(heading[0])
    if any(len(cell.text_content()) > 45 for cell in found.xpath(".//td[@class]")):
        found.set("class", "members long")
    replace(table, found)


def mend(body):
    """Doxygen's content as plain elements."""
    for useless in body.xpath(f'.//a[text()="More..."] | .//span[{has_class("permalink")}] | '
                              f'.//div[{has_class("compoundTemplParams")}]'):
        useless.drop_tree()
    for details in body.xpath('./a[@id="details"]'):
        if details.getnext() is not None and details.getnext().tag == "h2":
            details.getnext().drop_tree()
    for heading in body.xpath(f'.//h2[{has_class("memtitle")}]'):
        heading.tag = "h3"
    if not body.xpath(f'.//h2[{has_class("groupheader")}]'):  # a page of text
        for level in (2, 1):
            for heading in body.xpath(f".//h{level}"):
                heading.tag = f"h{level + 1}"
    for fragment in body.xpath(f'.//div[{has_class("fragment")}]'):
        plain_code(fragment)
    for fragment in body.xpath(f'.//pre[{has_class("fragment")}]'):
        fragment.set("class", "code")
    for prototype in body.xpath(f'.//div[{has_class("memproto")}]'):
        signature(prototype)
    for table in body.xpath(f'.//table[{has_class("memberdecls")}]'):
        short_list(table)
    for table in body.xpath(f'.//table[{has_class("markdownTable")}]'):
        table.attrib.clear()
        if not any(cell.text_content().strip() for cell in table.xpath(".//th")):
            table[0].drop_tree()
        wide = element('<div class="wide"></div>')
        replace(table, wide)
        table.tail = None
        wide.append(table)
    for code in body.xpath(".//code | .//tt"):
        whole_words(code)
    for cell in body.xpath(".//td"):
        if re.fullmatch(r"\d[^a-zA-Z]{0,25}([nµm]?s|KiB)?[^a-zA-Z]{0,25}", cell.text_content().strip()):
            cell.set("class", "figure")
    for picture in body.xpath(".//object"):
        words = picture.getparent().xpath(f'./div[{has_class("caption")}]')
        replace(picture, element(f'<img src="{picture.get("data")}" alt="{words[0].text_content().strip() if words else ""}">'))
    for heading in body.xpath(".//h2 | .//h3 | .//h4"):
        take_place(heading)


def whole_words(code):
    """Lets code be broken at its blanks alone, not at hyphens and slashes."""
    words = code.text_content().split(" ")
    if max(map(len, words)) > 40:
        return
    if len(words) == 1 or len(code):
        code.set("class", "word")
        return
    code.text = None
    for word in words:
        code.append(element(f'<span class="word">{html.escape(word)}</span>'))
        code[-1].tail = " "
    code[-1].tail = None


def take_place(heading):
    """The anchor in or before a heading becomes its id."""
    before = heading.getprevious()
    anchors = heading.xpath("./a[@id]") or ([before] if before is not None and before.tag == "a" and not before.text else [])
    for anchor in anchors:
        heading.set("id", anchor.get("id"))
        anchor.drop_tag()
        anchor.attrib.clear()
    heading.text = (heading.text or "").lstrip()
    if not heading.get("id"):
        heading.set("id", re.sub(r"\W+", "-", heading.text_content().strip().lower()))


def drop_dead(body, files):
    """Links to pages of Doxygen's that this site does not have become plain words."""
    for link in body.xpath(".//a[@href]"):
        target = link.get("href").partition("#")[0]
        if target.endswith(".html") and "/" not in target and target not in files:
            link.drop_tag()


class Page:
    def __init__(self, file, title, body, group=""):
        self.file, self.title, self.body, self.group = file, title, body, group
        self.headings = [(heading.tag, heading.get("id"), heading.text_content().strip())
                         for heading in body.xpath(".//h2[@id] | .//h3[@id]")]

    def contents(self):
        if len(self.headings) < 2:
            return ""
        items = "".join(f'<li class="{tag}"><a href="#{place}">{html.escape(words)}</a></li>'
                        for tag, place, words in self.headings)
        return f'<details id="contents" open><summary>On this page</summary><ul>{items}</ul></details>\n'

    def sections(self):
        """What the search reads: each heading with the words below it. Figures of tables are left out."""
        body = copy.deepcopy(self.body)
        for cell in body.xpath('.//td[@class="figure"]'):
            cell.clear()
        for heading in body.xpath(".//h2[@id] | .//h3[@id]"):
            heading.text, heading[:] = f"\ue000{heading.get('id')}\ue000{heading.text_content().strip()}\ue000", []
        for part in body.iter():
            part.tail = f"{part.tail or ''} " if part.tag in ("p", "td", "th", "li", "dt", "dd", "pre") else part.tail
        first, *rest = body.text_content().split("\ue000")
        parts = [("", self.title, first), *zip(rest[::3], rest[1::3], rest[2::3])]
        return [{"page": self.title, "heading": heading, "url": self.file + (f"#{place}" if place else ""),
                 "text": " ".join(text.split()), "group": self.group} for place, heading, text in parts]


def read(path, entry=None):
    document = lxml.html.parse(str(path), lxml.html.HTMLParser(encoding="utf-8")).getroot()
    title = document.xpath(f'string(//div[{has_class("title")}])').strip()
    title = re.sub(r"(?:<.*>| (?:Namespace|File|Class|Struct) Reference)$", "", title)
    body = document.xpath(f'//div[{has_class("contents")}]')[0]
    body.attrib.clear()
    mend(body)
    return Page(path.name, title, body, entry.group if entry else "")


def read_plain(path, entry):
    body = element(f"<div>{path.read_text(encoding='utf-8')}</div>")
    title = body.xpath("./h1")
    words = title[0].text_content() if title else entry.title
    for heading in title:
        heading.drop_tree()
    return Page(entry.file, words, body, entry.group)


def show_menu(entries, pages, file):
    lines = []
    for group, members in itertools.groupby(entries, lambda entry: entry.group):
        lines.append(f"<p>{group}</p>\n<ul>")
        for entry in members:
            here = ' aria-current="page"' if entry.file == file else ""
            title = html.escape(entry.title or pages[entry.file].title)
            lines.append(f'<li><a href="{entry.file}"{here}>{title}</a></li>')
        lines.append("</ul>\n")
    return "\n".join(lines)


def show_turn(entries, pages, file):
    place = next((i for i, entry in enumerate(entries) if entry.file == file), None)
    if place is None:
        return ""
    shown = ""
    for words, neighbour in (("Before", place - 1), ("Next", place + 1)):
        if 0 <= neighbour < len(entries):
            entry = entries[neighbour]
            title = html.escape(entry.title or pages[entry.file].title)
            shown += f'<a class="{words.lower()}" href="{entry.file}"><small>{words}</small>{title}</a>'
    return shown


def main(doxygen, site, version, minisearch):
    doxygen, site, minisearch = pathlib.Path(doxygen), pathlib.Path(site), pathlib.Path(minisearch)
    shutil.rmtree(site, ignore_errors=True)
    site.mkdir(parents=True)
    entries, pages = menu.entries(), {}
    for entry in entries:
        source = menu.TOP / entry.source
        if entry.source.endswith(".html"):
            pages[entry.file] = read_plain(source, entry)
            shutil.copytree(source.parent, site, dirs_exist_ok=True, ignore=shutil.ignore_patterns("*.html", "*.md"))
        else:
            pages[entry.file] = read(doxygen / entry.file, entry)
    for path in sorted(doxygen.glob("*.html")):  # headers and classes, reached from the others
        if path.name not in pages and not path.name.startswith(NO_PAGES) and not path.name.endswith("-members.html"):
            pages[path.name] = read(path)
    for page in pages.values():
        drop_dead(page.body, pages)
        text = FRAME.substitute(
            title=html.escape(page.title), version=version, menu=show_menu(entries, pages, page.file),
            contents=page.contents(), body=lxml.html.tostring(page.body, encoding="unicode"),
            turn=show_turn(entries, pages, page.file))
        (site / page.file).write_text(text, encoding="utf-8")
    sections = [section for page in pages.values() if page.group or page.file.startswith(("class", "struct"))
                for section in page.sections()]
    (site / "sections.js").write_text(f"var SECTIONS = {json.dumps(sections, ensure_ascii=False)};\n", encoding="utf-8")
    for file in [*HERE.glob("*.css"), *HERE.glob("*.js"), *doxygen.glob("*.svg")]:
        if file.name != "doxygen.svg":
            shutil.copy(file, site)
    shutil.copy(minisearch, site / "minisearch.js")
    shutil.copy(minisearch.parents[2] / "LICENSE.txt", site / "minisearch.txt")


main(*sys.argv[1:])
