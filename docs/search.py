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


def entries(folder):
    for comment, name, number in annotate.codes():
        text = annotate.plain(comment)
        yield name, f"{number}: {annotate.first_sentence(text)}", f"group__status.html#{name}", text
    functions = annotate.functions()
    guide = {path.stem: path.read_text() for path in ROOT.glob("guide/*.md")}
    pages = {re.search(r"\{#(\w+)\}", text)[1]: text for text in guide.values()}
    for compound in xml.parse(folder / "kirvo.tag").iter("compound"):
        kind, name = compound.get("kind"), compound.findtext("name")
        if kind in ("group", "page") and name != "index":
            yield (compound.findtext("title"), "Guide" if kind == "page" else "Reference",
                   compound.findtext("filename"),
                   annotate.plain(pages.get(name, "")))
        if kind != "group":
            continue
        for member in compound.iter("member"):
            name = member.findtext("name")
            if name in functions:
                text = annotate.plain(functions.pop(name))
                yield (name, annotate.first_sentence(text),
                       f"{member.findtext('anchorfile')}#{member.findtext('anchor')}", text)
    assert not functions, f"not in the reference: {functions.keys()}"


def main():
    folder = pathlib.Path(sys.argv[1])
    found = sorted(set(entries(folder)))
    text = json.dumps(found, ensure_ascii=False, separators=(",", ":"))
    (folder / "html/entries.js").write_text(f"const entries = {text};\n")


main()
