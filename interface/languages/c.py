"""C: the ends of kirvo.h that follow from the rest."""
from languages import listed, statuses
import textwrap

MARKS = ("/* What follows is written by script/bindings. */\n",
         "/* What precedes is written by script/bindings. */\n")


def status_texts(description, header):
    yield "static inline const char* kirvo_status_text(int32_t status) {"
    yield "    switch (status) {"
    for name in statuses(description):
        yield f"    case {name}:"
        sentence = header.comments[name].sentence.rstrip(".").replace("2^31 - 1", "2147483647")
        lines = [f'"{line}"' for line in textwrap.wrap(sentence, 86, drop_whitespace=False)]
        yield "        return " + "\n               ".join(lines) + ";"
    yield "    default:"
    yield '        return "unknown status";'
    yield "    }"
    yield "}"


def pointers(description):
    for function in description.functions:
        if function.home == "Kirvo":
            head = f"typedef {function.c_result}(WINAPI* PFN_{function.name})("
            yield from listed(head, function.c_parameters or ["void"], ");", indent=" " * 8)


def complete(text, description, header):
    """The header with its two written parts renewed."""
    parts = [status_texts(description, header), pointers(description)]
    begin, end = MARKS
    pieces = text.split(begin)
    assert len(pieces) == 3, "kirvo.h lacks a mark"
    made = pieces[0]
    for piece, lines in zip(pieces[1:], parts):
        made += begin + "/* clang-format off */\n" + "\n".join(lines) + "\n/* clang-format on */\n" + end + piece.split(end)[1]
    return made
