"""Delphi and Free Pascal."""
import itertools
import textwrap

from description import Function
from languages import (WIDTH, capitals, comment, escaped, is_library, listed, numbers, plain, statuses,
                       title)

PATHS = {"Kirvo": "pascal/Kirvo.pas", "KirvoFiles": "pascal/KirvoFiles.pas"}
NEWLINE = "\n"

TYPES = {
    "filesstatus": "LongInt", "status": "LongInt", "int": "LongInt", "uint": "LongWord", "int16": "SmallInt",
    "uint16": "Word", "byte": "Byte", "double": "Double", "bool": "LongBool",
    "colour": "LongWord", "image": "HGLOBAL", "block": "HGLOBAL", "header": "Pointer",
    "file": "PAnsiChar", "window": "HWND", "palette": "HPALETTE", "object": "THandle",
    "address": "Pointer", "size": "KirvoUIntPtr", "uintptr": "KirvoUIntPtr",
    "intptr": "KirvoIntPtr", "known": "TKirvoFile", "text": "PAnsiChar", "wide": "PWideChar",
    "letter": "AnsiChar", "WORD": "Word", "DWORD": "LongWord", "LONG": "LongInt", "BYTE": "Byte",
}
POINTERS = {"int": "PInteger", "uint": "PKirvoLongWord", "int16": "PSmallInt", "uint16": "PWord",
            "byte": "PByte", "any": "Pointer", "image": "PKirvoHandle",
            "known": "PKirvoFile", "letter": "PAnsiChar"}
RESERVED = {"to", "end", "object", "final", "file"}


def type_of(kind):
    return "T" + kind if isinstance(kind, str) else TYPES[kind.name]


def pointer_to(kind):
    return "P" + kind if isinstance(kind, str) else POINTERS[kind.name]


def parameter(given):
    """What stands before and behind the name."""
    if given.way and (given.count is not None or given.nullable):
        return "", pointer_to(given.kind)
    return {"": "", "out": "out ", "in": "const ", "inout": "var "}[given.way], type_of(given.kind)


def signature(head, function, tail, indent):
    """A heading: neighbours of one type share it."""
    groups = []
    for (way, kind), given in itertools.groupby(function.parameters, parameter):
        names = ", ".join(escaped(one.name, RESERVED) for one in given)
        groups.append(f"{way}{names}: {kind}")
    result = f": {type_of(function.result)};" if function.result else ";"
    head = f"{'function' if function.result else 'procedure'}{head}"
    if not groups:
        return [head + result + tail]
    return listed(head + "(", groups, ")" + result + tail, ";", indent)


def declaration(function, header):
    yield from comment(header.comments[function.name].brief, "{ ", " }")
    yield from signature(" " + function.name, function, "", "  ")
    convention = "{$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF}"
    if not is_library(function.home):
        convention = "cdecl;"
    library = function.home if is_library(function.home) else "Kirvo"  # which stands in for Windows
    yield f"  {convention} external {library}Library name '{function.name}';"


def record(structure, header):
    yield ""
    yield from comment(header.comments[structure.name].brief, "{ ", " }", "  ")
    yield f"  T{structure.name} = record"
    for field in structure.fields:
        meaning = "".join(comment(header.field(structure, field).sentence, "// "))
        if isinstance(field, Function):
            yield "    " + meaning
            lines = signature("", field, " cdecl;", "      ")
            yield f"    {field.name}:"
            yield from ["      " + line for line in lines]
        else:
            yield f"    {field.name}: {type_of(field.kind)}; {meaning}"
    yield "  end;"
    yield f"  P{structure.name} = ^T{structure.name};"


def constants(group, names, header):
    for name, value in names.items():
        yield from comment(header.comments[name].sentence, "// ", indent="  ")
        yield f"  {name} = {value};" if value < 0x40 else f"  {name} = ${value:04X};"


def sections(description, header):
    made = {"constants": [], "platform_constants": [], "records": [], "platform_records": [],
            "functions": [], "platform_functions": []}
    for group, names in numbers(description):
        place = "platform_" if group.name == "platform" else ""
        made[place + "constants"] += constants(group, names, header)
        for structure in group.structures:
            made[place + "records"] += record(structure, header)
        if group.functions:
            made[place + "functions"] += ["", f"// {title(group, header)}"]
        for function in group.functions:
            made[place + "functions"] += ["", *declaration(function, header)]
    made["messages"] = []
    for name in statuses(description):
        text = plain(header.comments[name].sentence).replace("'", "''")
        first, *rest = textwrap.wrap(text, 88, drop_whitespace=False)
        made["messages"] += [f"    {name}:", f"      Result := '{name}: ' +"]
        made["messages"] += listed("        ", [f"'{line}'" for line in (first, *rest)], ";", " +",
                                   "        ")
    return made


# The object layer

IMAGE_PATH = "bindings/pascal/KirvoImages.pas"
KINDS = {"int": "LongInt", "uint": "LongWord", "double": "Double", "colour": "LongWord",
         "flag": "Boolean", "image": "TKirvoImage", "byte": "array of Byte"}
AREA = ["AreaLeft: LongInt = 0", "AreaTop: LongInt = 0", "AreaWidth: LongInt = -1",
        "AreaHeight: LongInt = -1"]


def name_of(one):
    return escaped(capitals(one.name), RESERVED)


def declared(one, with_default):
    const = "const " if one.parameter.count else ""
    default = f" = {capitals(one.value)}" if one.optional and with_default else ""
    return f"{const}{name_of(one)}: {KINDS[one.kind]}{default}"


def documentation(method):
    texts = [method.comment.brief]
    texts += [f"{name_of(one)}: {one.meaning}." for one in method.parameters]
    return comment(" ".join(texts), "{ ", " }", "    ")


def head(method, owner, with_default, indent):
    given = [declared(one, with_default) for one in method.parameters]
    if method.has_area:
        given += AREA if with_default else [part.split(" =")[0] for part in AREA]
    word = "procedure" if method.way == "change" else "function"
    word = "class " + word if method.way == "static" else word
    tail = ";" if method.way == "change" else ": TKirvoImage;"
    if not given:
        return [f"{indent}{word} {owner}{capitals(method.name)}{tail}"]
    return listed(f"{indent}{word} {owner}{capitals(method.name)}(", given, ")" + tail, ";",
                  indent + "  ")


def value(one):
    match one.role:
        case "own": return "Call.Dib"
        case "x" | "y" | "width" | "height": return "Call." + one.role.capitalize()
        case "status": return "Call.Status"
        case "other": return "Same.FDib"
        case "fixed": return one.value.replace("own.width", "Width").replace(
            "own.height", "Height").replace("other.width", "Same.Width").replace(
            "other.height", "Same.Height")
    if one.parameter.count:
        return f"@{name_of(one)}[0]"
    return f"Ord({name_of(one)})" if one.kind == "flag" else name_of(one)


def depths(method):
    return str(method.depths)


def call(method):
    text = f"{method.function.name}({', '.join(value(one) for one in method.arguments)})"
    return text.replace("Call.Status", "Status") if method.way == "static" else text


def broken(line):
    indent = line[:len(line) - len(line.lstrip())]
    return textwrap.wrap(line, WIDTH, initial_indent="", subsequent_indent=indent + "  ",
                         drop_whitespace=True, break_long_words=False) if len(line) > WIDTH else [line]
