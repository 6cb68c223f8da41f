"""What the declarations of all languages share."""
import textwrap

WIDTH = 100


def listed(head, entries, tail, separator=",", indent="    ", continued=""):
    """One statement: head, entries with separators, tail; broken into lines where it is too long."""
    pieces = [entry + separator + " " for entry in entries[:-1]] + entries[-1:]
    lines = [head]
    for piece in pieces:
        room = WIDTH - len(continued) - (len(tail) if piece is pieces[-1] else 0)
        if len(lines[-1] + piece.rstrip()) > room:
            lines[-1] = lines[-1].rstrip() + continued
            lines.append(indent)
        lines[-1] += piece
    lines[-1] += tail
    return lines


def comment(text, begin, end="", indent=""):
    """A comment of as many lines as the text needs."""
    wrapped = textwrap.wrap(plain(text), WIDTH - len(indent + begin + end))
    if end:
        margin = "\n" + indent + " " * len(begin)
        return [indent + begin + margin.join(wrapped) + end]
    return [indent + begin + line for line in wrapped]


def plain(text):
    """ASCII only: compilers of several decades read it."""
    for sign, word in {"×": "x", "−": "-", "≤": "<=", "–": "-", "…": "..."}.items():
        text = text.replace(sign, word)
    assert text.isascii(), f"no ASCII is known for a sign in: {text}"
    return text


def capitals(name):
    """A name of layers.txt as languages of capitals write it: rotate_90 is Rotate90."""
    return "".join(word[:1].upper() + word[1:] for word in name.split("_"))


def escaped(name, reserved):
    return name + "_" if name.lower() in reserved else name


def numbers(description):
    """Named numbers by group, without those that every language has."""
    for group in description.groups:
        names = {**group.constants, **{name: value for enum in group.enums.values()
                                       for name, value in enum.items()}}
        yield group, {name: value for name, value in names.items() if name not in ("TRUE", "FALSE")}


def statuses(description):
    return description.statuses[1]


def is_library(home):
    """Whether functions of this home are the library's own, on every system."""
    return home.startswith("Kirvo")


def title(group, header):
    return "Names of Windows" if group.name == "platform" else header.titles[group.name]
