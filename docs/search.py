#!/usr/bin/env python3
"""Writes what the pages' search looks through: search.py FOLDER, after Doxygen has run.

Every entry has a title, a line about it, a place, and all the words that lead to it.
"""
import json
import pathlib
import re
import sys
import xml.etree.ElementTree as xml

import annotate

ROOT = pathlib.Path(__file__).parent


def plain(comment):
    """The words of a comment without its marks."""
    comment = re.sub(r"@code.*?@endcode|@ingroup \w+|@param\[out\]|@\w+", " ", comment,
                     flags=re.DOTALL)
    return " ".join(re.sub(r"^\s*\*+|[#|*`]", " ", comment, flags=re.MULTILINE).split())


def first_sentence(text):
    return re.split(r"(?<=[.])\s", text, maxsplit=1)[0]


def entries(folder):
    for comment, name, number in annotate.codes():
        text = plain(comment)
        yield name, f"{number}: {first_sentence(text)}", f"group__status.html#{name}", text
    functions = annotate.functions()
    guide = {path.stem: path.read_text() for path in ROOT.glob("guide/*.md")}
    pages = {re.search(r"\{#(\w+)\}", text)[1]: text for text in guide.values()}
    for compound in xml.parse(folder / "kirvo.tag").iter("compound"):
        kind, name = compound.get("kind"), compound.findtext("name")
        if kind in ("group", "page") and name != "index":
            yield (compound.findtext("title"), "Guide" if kind == "page" else "Reference",
                   compound.findtext("filename"),
                   plain(pages.get(name, "")))
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
                text = plain(functions.pop(name))
                yield (name, first_sentence(text),
                       f"{member.findtext('anchorfile')}#{member.findtext('anchor')}", text)
    assert not functions, f"not in the reference: {functions.keys()}"


def main():
    folder = pathlib.Path(sys.argv[1])
    found = sorted(set(entries(folder)))
    text = json.dumps(found, ensure_ascii=False, separators=(",", ":"))
    (folder / "html/entries.js").write_text(f"const entries = {text};\n")


main()
