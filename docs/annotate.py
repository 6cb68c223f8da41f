#!/usr/bin/env python3
"""Doxygen's input filter: annotate.py FILE

Makes names of functions links, shows the pictures of effects before their parameters, and gives each
status code its number and the functions that answer it. Line numbers of warnings stay true: every
block of comment keeps its number of lines.
"""
import html
import json
import pathlib
import re
import sys

import pictures

sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "interface"))
from header import CODE, DECLARATION, Header

PAGES = pathlib.Path(__file__).parents[1] / "build/docs/html"
HEADERS = [Header("kirvo.h"), Header("kirvo_files.h")]


def functions():
    """Every function of the headers with its comment."""
    return {name: header.comments[name].raw for header in HEADERS for name in header.parameters}


def codes():
    """Comment, name and number of every status code."""
    return [code for header in HEADERS for code in CODE.findall(header.text)]


def plain(comment):
    """The words of a comment without its marks."""
    comment = re.sub(r"@code.*?@endcode|@ingroup \w+|@param\[out\]|@\w+", " ", comment,
                     flags=re.DOTALL)
    return " ".join(re.sub(r"^\s*\*+|[#|*`]", " ", comment, flags=re.MULTILINE).split())


def first_sentence(text):
    return re.split(r"(?<=[.])\s", text, maxsplit=1)[0]


def linked(text, names):
    """Functions become links, apart from code and what is a link already."""
    keep = r"@htmlonly.*?@endhtmlonly|@code.*?@endcode|@f\$.*?@f\$|^```.*?^```|`[^`\n]*`|\[[^]\n]*\]\([^)\n]*\)|^#+ .*?$|^@?\\?snippet .*?$|\S*[\\@/#]\w+"
    word = rf"({keep})|(?<![\w.])({'|'.join(names)})\b(?!\()"
    return re.sub(word, lambda m: m[1] or "#" + m[2], text, flags=re.DOTALL | re.MULTILINE)


def figure(file, caption):
    return (f'<figure><img src="{file}" alt="{html.escape(caption)}"/>'
            f"<figcaption>{html.escape(caption)}</figcaption></figure>")


def effect_page(name):
    return "effect_" + name.replace("-", "_")


def effect_names():
    """The effects that pages.py has written pages of."""
    text = (PAGES / "catalogue.js").read_text()
    return [effect["option"][2:] for effect in json.loads(text[text.index("["):text.rindex(";")])]


def shown(function):
    """One line that shows what a function does; empty for one without pictures."""
    own = [picture for picture in pictures.pictures() if picture.function == function]
    if not own:
        return ""
    effect = pictures.shown_effect(own[0], effect_names())
    live = f'<p class="try"><a href="{effect_page(effect)}.html">Try it live</a></p>' if effect else ""
    before = [] if pictures.made(own[0]) else [figure(f"{own[0].before}.jpg", "before")]
    figures = before + [figure(picture.file, f"{picture.options}") for picture in own]
    return f'@htmlonly[block] <div class="shown">{"".join(figures)}</div>{live} @endhtmlonly'


def with_pictures(text):
    def add(match):
        block = shown(match[3])
        if not block:
            return match[0]
        # where the description ends
        comment, count = re.subn(r"\n \*  @(param|ingroup|return)",
                                 lambda m: f" <br class=\"end\"/>{block}{m[0]}", match[1], count=1)
        assert count, match[3]
        return f"/**{comment}*/{match[0].split('*/', 1)[1]}"

    return DECLARATION.sub(add, text)


def with_numbers(text, comments):
    def add(match):
        comment, name, number = match.groups()
        who = sorted(f for f, words in comments.items()
                     if re.search(rf"@(return|param\[out\] (status|error))[^@]*#{name}\b", words))
        answered = ""
        if who and not name.endswith("_OK"):
            answered = ("@htmlonly <details><summary>answered by "
                        f"{len(who)} function{'s' if len(who) > 1 else ''}</summary>@endhtmlonly "
                        + ", ".join("#" + f for f in who) + " @htmlonly </details>@endhtmlonly ")
        sign = number.replace("-", "−")
        return (f'/** <span class="code">{sign}</span> @htmlonly <a id="{name}"></a>@endhtmlonly '
                f"{comment.strip()} {answered}*/\n    {name} = {number}")

    return CODE.sub(add, text)


def main():
    path = pathlib.Path(sys.argv[1])
    text = path.read_text()
    comments = functions()
    names = sorted(comments, key=len, reverse=True)
    in_comments = lambda text: re.sub(r"/\*\*.*?\*/", lambda m: linked(m[0], names), text, flags=re.DOTALL)
    if path.suffix == ".hpp":
        text = in_comments(text)
    elif path.suffix == ".h":
        unknown = {picture.function for picture in pictures.pictures()} - comments.keys()
        assert not unknown, f"pictures of functions that do not exist: {unknown}"
        text = with_numbers(with_pictures(in_comments(text)), comments)
    else:
        text = linked(text, names)
    sys.stdout.write(text)


if __name__ == "__main__":
    main()
