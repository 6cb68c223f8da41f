#!/usr/bin/env python3
"""Writes what the pages' search looks through: search.py FOLDER, after Doxygen has run.

Every entry has a title, a line about it, a place, and all the words that lead to it; search.txt adds
what people type that nobody wrote.
"""
import json
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

import annotate

ROOT = pathlib.Path(__file__).parent
PAGES = [ROOT / "guide", ROOT / "guide/languages", ROOT.parent / "build/docs/pages"]


def line_of(page, text):
    """The first sentence of a page, apart from its headings."""
    kind = "Effect" if page.startswith("effect_") else "Page"
    paragraphs = re.sub(r"^#.*\n|^- .*\n", "", text, flags=re.MULTILINE)
    return f"{kind}: {annotate.first_sentence(annotate.plain(paragraphs))}".rstrip(": ")


def entries(folder):
    for comment, name, number in annotate.codes():
        text = annotate.plain(comment)
        place = next(path.name for path in sorted((folder / "html").glob("group__*.html"))
                     if f'<a id="{name}">' in path.read_text())
        yield name, f"{number}: {annotate.first_sentence(text)}", f"{place}#{name}", text
    functions = annotate.functions()
    texts = [path.read_text() for place in PAGES for path in place.glob("*.md")]
    pages = {re.search(r"\{#(\w+)\}", text)[1]: without_blocks(text) for text in texts}
    for compound in xml.parse(folder / "kirvo.tag").iter("compound"):
        kind, name = compound.get("kind"), compound.findtext("name")
        if kind in ("group", "page") and name != "index":
            yield (compound.findtext("title"), line_of(name, pages.get(name, "")) if kind == "page" else "Reference",
                   compound.findtext("filename"), annotate.plain(pages.get(name, "")))
        if name.startswith("kirvo::"):
            yield name, "C++", compound.findtext("filename"), ""
            for member in compound.iter("member"):
                yield (f"{name.removeprefix('kirvo::')}::{member.findtext('name')}", "C++",
                       f"{member.findtext('anchorfile')}#{member.findtext('anchor')}", "")
        if kind != "group":
            continue
        for member in compound.iter("member"):
            name = member.findtext("name")
            if name in functions:
                text = annotate.plain(functions.pop(name))
                yield (name, annotate.first_sentence(text),
                       f"{member.findtext('anchorfile')}#{member.findtext('anchor')}", text)
    assert not functions, f"not in the reference: {functions.keys()}"


def without_blocks(text):
    return re.sub(r"@htmlonly.*?@endhtmlonly", " ", text, flags=re.DOTALL)


def first_places(titles):
    """What search.txt says: what is typed, and titles."""
    for line in (ROOT / "search.txt").read_text().splitlines():
        if line and not line.startswith("#"):
            typed, wanted = line.rsplit(": ", 1)
            wanted = names_of(wanted, titles)
            for words in typed.split(", "):
                yield words, wanted


def names_of(text, titles):
    """Titles that commas part, and that may hold commas themselves."""
    found = []
    while text:
        title = max((title for title in titles if re.match(rf"{re.escape(title)}(, |$)", text)),
                    key=len, default=None)
        assert title, f"search.txt leads to no page or function: {text}"
        found.append(title)
        text = text[len(title) + 2:]
    return found


def main():
    folder = pathlib.Path(sys.argv[1])
    found = sorted(set(entries(folder)))
    places = dict(first_places({title for title, *_ in found}))
    (folder / "html/entries.js").write_text("".join(
        f"const {name} = {json.dumps(value, ensure_ascii=False, separators=(',', ':'))};\n"
        for name, value in (("entries", found), ("firstPlaces", places))))


main()
