"""Visual Basic 6 and VBA."""
from languages import (capitals, comment, escaped, is_library, listed, numbers, plain, statuses,
                       title)

PATHS = {"Kirvo": "vb/Kirvo.bas", "KirvoFiles": "vb/KirvoFiles.bas"}
NEWLINE = "\r\n"  # the editor reads no other

TYPES = {
    "filesstatus": "Long", "status": "Long", "int": "Long", "uint": "Long", "int16": "Integer", "uint16": "Integer",
    "byte": "Byte", "double": "Double", "bool": "Long", "colour": "Long", "image": "LongPtr",
    "block": "LongPtr", "header": "LongPtr", "file": "String", "window": "LongPtr",
    "palette": "LongPtr", "object": "LongPtr", "address": "LongPtr", "size": "LongPtr",
    "uintptr": "LongPtr", "any": "Any", "WORD": "Integer", "DWORD": "Long", "LONG": "Long",
    "BYTE": "Byte", "known": "LongPtr", "text": "String", "wide": "LongPtr", "letter": "Byte",
}
# Names that the language keeps to itself.
RESERVED = {"to", "end", "object", "scale", "error"}


def type_of(kind, pointer):
    name = kind if isinstance(kind, str) else TYPES[kind.name]
    return pointer if name == "LongPtr" else name


def parameter(given, pointer):
    """Arrays are given by their first element, nothing by ByVal 0&."""
    kind = "Any" if given.nullable else type_of(given.kind, pointer)
    way = "ByRef" if given.way else "ByVal"
    return f"{way} {escaped(given.name, RESERVED)} As {kind}"


def declaration(function, safe, pointer):
    word = "Function" if function.result else "Sub"
    library = f"{function.home}.dll" if is_library(function.home) else function.home
    head = f'Public Declare {safe}{word} {function.name} Lib "{library}" ('
    result = f") As {type_of(function.result, pointer)}" if function.result else ")"
    parameters = [parameter(given, pointer) for given in function.parameters]
    return listed(head, parameters or [""], result, continued=" _")


def declarations(description, header, safe, pointer):
    for group in description.groups:
        functions = [function for function in group.functions if function.home]
        if functions:
            yield from ["", f"' {title(group, header)}"]
        for function in functions:
            yield ""
            yield from comment(header.comments[function.name].brief, "' ")
            yield from declaration(function, safe, pointer)


def structure(given, header):
    yield ""
    yield from comment(header.comments[given.name].sentence, "' ")
    yield f"Public Type {given.name}"
    for field in given.fields:
        meaning = plain(header.field(given, field).sentence)
        yield f"    {field.name} As {type_of(field.kind, 'LongPtr')} ' {meaning}"
    yield "End Type"


def sections(description, header):
    made = {"statuses": [], "constants": [], "structures": [], "messages": []}
    for group, names in numbers(description):
        for name, value in names.items():
            place = "statuses" if description.statuses[0] in group.enums else "constants"
            indent = "    " if place == "statuses" else ""
            made[place] += comment(header.comments[name].sentence, "' ", indent=indent)
            made[place].append(f"    {name} = {value}" if place == "statuses" else
                               f"Public Const {name} As Long = &H{value:X}&")
        for one in group.structures:
            if not one.is_table:
                made["structures"] += structure(one, header)
    made["safe_functions"] = list(declarations(description, header, "PtrSafe ", "LongPtr"))
    made["functions"] = list(declarations(description, header, "", "Long"))
    for name in statuses(description):
        text = plain(header.comments[name].sentence).replace('"', '""')
        made["messages"].append(f"    Case {name}")
        made["messages"].append(f'        {description.library}Message = "{name}: {text}"')
    return made


# The object layer

IMAGE_PATH = "bindings/vb/KirvoImage.cls"
KINDS = {"int": "Long", "uint": "Long", "double": "Double", "colour": "Long", "flag": "Boolean",
         "image": "KirvoImage"}
AREA = ["Optional ByVal areaLeft As Long = 0", "Optional ByVal areaTop As Long = 0",
        "Optional ByVal areaWidth As Long = -1", "Optional ByVal areaHeight As Long = -1"]
PLACES = {"x": "areaLeft", "y": "areaTop", "width": "Across(areaLeft, areaWidth)",
          "height": "Down(areaTop, areaHeight)"}


def camel(one, method):
    """A parameter's name, which may not be that of its function, its result there."""
    name = capitals(one.name)
    return escaped(name[0].lower() + name[1:], RESERVED | {method.name})


def declared(one, method):
    name = camel(one, method)
    if one.parameter.count:
        return f"ByRef {name}() As Byte"
    if one.optional:
        return f"Optional ByVal {name} As {KINDS[one.kind]} = {capitals(one.value)}"
    return f"ByVal {name} As {KINDS[one.kind]}"


def argument(one, method):
    if one.role in PLACES:
        return PLACES[one.role]
    if one.role == "fixed":
        return one.value.replace("own.width", "Width").replace("own.height", "Height").replace(
            "other.width", "other.Width").replace("other.height", "other.Height")
    name = camel(one, method)
    if one.parameter.count:
        return f"{name}(0)"
    return {"own": "source.Handle", "status": "status", "other": "same.Handle"}.get(
        one.role, f"-CLng({name})" if one.kind == "flag" else name)


def documentation(method):
    texts = [method.comment.brief]
    texts += [f"{camel(one, method)}: {one.meaning}." for one in method.parameters]
    return comment(" ".join(texts), "' ")


def head(method, word, result):
    given = [declared(one, method) for one in method.parameters] + (AREA if method.has_area else [])
    return listed(f"Public {word} {capitals(method.name)}(", given or [""], f"){result}", continued=" _")


def depths(method):
    return " ".join(map(str, method.depths))


def call(method, before, behind):
    return listed(f"{before}{method.function.name}(", [argument(one, method) for one in method.arguments], behind,
                  continued=" _", indent=" " * 8)
