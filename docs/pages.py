#!/usr/bin/env python3
"""Writes the pages that follow from the program: pages.py KIRVO PAGES HTML

A live page for each effect and a page that shows them all, from `kirvo effects --json`; the command
line's page, from its help. PAGES is the folder that Doxygen reads, HTML the one that it writes.
"""
import base64
import html
import json
import pathlib
import subprocess
import sys

import annotate
import pictures

# What an effect's page begins with, where the catalogue's example does not suit its picture.
FIRST = {
    "crop": "150,100,300,200",
    "resize": "50%",
    "rotate": "90",
    "compose": "other.jpg,average",
    "paste": "small.jpg,90,70",
    "key": "000000",
    "interleave": "other.jpg",
    "brush": "300,200,5",
    "posterise": "4",
}
# What stands behind an effect that shows nothing by itself.
BEHIND = {"key": [["--compose", "other.jpg,key"]]}
PICTURE = {"before": "landscape"}
SAMPLES = ("landscape", "portrait", "lettering", "other", "small")


def told(program, *arguments):
    return subprocess.run([program, *arguments], check=True, capture_output=True, text=True).stdout


class Catalogue:
    def __init__(self, program):
        self.effects = [effect for effect in json.loads(told(program, "effects", "--json"))
                        if effect["option"] != "--histogram"]  # which prints
        names = [self.name(effect) for effect in self.effects]
        self.pictures = {name: [] for name in names}
        for picture in pictures.pictures():
            name = pictures.shown_effect(picture, names)
            if name and not pictures.made(picture):
                self.pictures[name].append(picture)
        bare = [name for name, own in self.pictures.items() if not own]
        assert not bare, f"pictures.txt has no pictures of {bare}"
        for effect in self.effects:
            name = self.name(effect)
            effect["first"] = FIRST.get(name, effect["example"])
            effect["picture"] = PICTURE.get(self.pictures[name][0].before, self.pictures[name][0].before)
            if name in BEHIND:
                effect["behind"] = BEHIND[name]

    @staticmethod
    def name(effect):
        return effect["option"][2:]

    @staticmethod
    def page(effect):
        return annotate.effect_page(Catalogue.name(effect))

    def functions(self, effect):
        return list(dict.fromkeys(picture.function for picture in self.pictures[self.name(effect)]))

    def groups(self):
        return list(dict.fromkeys(effect["group"] for effect in self.effects))


SCRIPTS = ("samples.js", "catalogue.js", "kirvo_live.js", "engine.js", "parts.js")


def live(script, attributes, still):
    """A block that the scripts fill; without them what is still stays."""
    scripts = "".join(f'<script src="{name}" defer="defer"></script>' for name in (*SCRIPTS, script))
    return (f'@htmlonly[block]\n<div class="live"{attributes}>'
            f'<div class="still">{still}</div></div>{scripts}\n@endhtmlonly\n')


def stills(effect, catalogue):
    own = catalogue.pictures[catalogue.name(effect)]
    figures = [annotate.figure(f"{own[0].before}.jpg", "before")]
    figures += [annotate.figure(picture.file, picture.options) for picture in own]
    return f'<div class="shown">{"".join(figures)}</div>'


def effect_page(effect, catalogue):
    name = catalogue.name(effect)
    call = f"{effect['option']} {effect['parameters']}".strip()
    ranges = f" ({effect['ranges']})" if effect["ranges"] else ""
    comments = annotate.functions()
    lines = [f"# {effect['title']} {{#{catalogue.page(effect)}}}", "",
             f"{effect['summary']}. On the command line `{call}`{ranges}; see all @ref effects.", "",
             live("effect.js", f' data-effect="{html.escape(name)}"', stills(effect, catalogue)), "",
             "## Functions", ""]
    for function in catalogue.functions(effect):
        sentence = annotate.first_sentence(annotate.plain(comments[function]))
        lines.append(f"- #{function}: {sentence}")
    return "\n".join(lines) + "\n"


def cell(effect, catalogue):
    own = catalogue.pictures[catalogue.name(effect)]
    names = ", ".join(catalogue.functions(effect))
    return (f'<a class="effect" href="{catalogue.page(effect)}.html">'
            f'<img src="{own[0].file}" width="240" height="160" alt="" loading="lazy"/>'
            f"<strong>{html.escape(effect['title'])}</strong> "
            f"<small>{html.escape(effect['summary'])}</small> <small class=\"names\">{names}</small></a>")


def effects_page(catalogue):
    lines = ["# Effects {#effects}", "",
             "What the library does to a picture. Each page is live: move its sliders, on the samples or on a"
             " picture of your own, and take the call along as code. @ref play does several in a row.", ""]
    for group in catalogue.groups():
        cells = [cell(effect, catalogue) for effect in catalogue.effects if effect["group"] == group]
        lines += [f"## {group}", "", f'@htmlonly[block]\n<div class="effects">{"".join(cells)}</div>\n@endhtmlonly',
                  ""]
    # Pages below this one, which the bar of the page's path shows.
    lines += ["@htmlonly[block]\n<div hidden=\"hidden\">\n@endhtmlonly", ""]
    lines += [f"- @subpage {catalogue.page(effect)}" for effect in catalogue.effects]
    lines += ["", "@htmlonly[block]\n</div>\n@endhtmlonly"]
    return "\n".join(lines) + "\n"


def command_line_page(program):
    lines = ["# The command line {#command_line}", "",
             "`kirvo` brings the library to the terminal. This is what it says of itself; @ref effects shows what"
             " its effects do, and @ref guide_many_machines how many pictures are done.", ""]
    help_text = told(program, "--help")
    commands = [line.split()[0] for line in
                help_text.split("Commands:\n")[1].split("\n\n")[0].splitlines()]
    for words in ([], *([command] for command in commands)):
        title = " ".join(["kirvo", *words])
        lines += [f"## {title}", "", "```", told(program, *words, "--help").rstrip(), "```", ""]
    lines += ["## kirvo effects", "", "```", told(program, "effects").rstrip(), "```", ""]
    return "\n".join(lines)


def play_page():
    still = "<p>This page needs JavaScript and WebAssembly, which every current browser has.</p>"
    return ("# Play {#play}\n\nEffects one after the other, on a sample or on a picture of your own, which never"
            " leaves your machine. What comes out is yours: as a PNG file, as a command line, as code.\n\n"
            + live("play.js", "", still))


def write_data(catalogue, folder):
    keys = ("option", "title", "group", "summary", "ranges", "values", "first", "picture", "behind")
    chosen = [{key: effect[key] for key in keys if key in effect} for effect in catalogue.effects]
    (folder / "catalogue.js").write_text(f"const catalogue = {json.dumps(chosen)};\n")
    samples = {}
    for name in SAMPLES:  # in a script, where pages from a disk may read their pixels
        file = folder / f"sample-{name}.jpg"
        samples[name] = base64.b64encode(file.read_bytes()).decode()
        file.unlink()
    (folder / "samples.js").write_text(f"const samples = {json.dumps(samples)};\n")


def main():
    program, pages, folder = map(pathlib.Path, sys.argv[1:])
    catalogue = Catalogue(program.resolve())
    pages.mkdir(parents=True, exist_ok=True)
    texts = {catalogue.page(effect): effect_page(effect, catalogue) for effect in catalogue.effects}
    texts |= {"effects": effects_page(catalogue), "command_line": command_line_page(program.resolve()),
              "play": play_page()}
    for name, text in texts.items():
        (pages / f"{name}.md").write_text(text)
    write_data(catalogue, folder)


if __name__ == "__main__":
    main()
