"""Python, by ctypes."""
import textwrap

from description import Function
from languages import comment, listed, numbers, plain, statuses, title

PATHS = {"Kirvo": "python/src/kirvo/flat.py", "KirvoFiles": "python/src/kirvo/flat_files.py"}
NEWLINE = "\n"

TYPES = {
    "filesstatus": "c_int32", "status": "c_int32", "int": "c_int32", "uint": "c_uint32", "int16": "c_int16",
    "uint16": "c_uint16", "byte": "c_uint8", "double": "c_double", "bool": "c_int32",
    "colour": "c_uint32", "image": "HANDLE", "block": "HANDLE", "header": "c_void_p",
    "file": "FileName", "window": "HANDLE", "palette": "HANDLE", "object": "HANDLE",
    "address": "c_void_p", "size": "c_size_t", "uintptr": "c_size_t", "intptr": "c_ssize_t",
    "known": "HANDLE", "text": "Text", "wide": "c_void_p", "letter": "c_char",
    "WORD": "c_uint16", "DWORD": "c_uint32", "LONG": "c_int32", "BYTE": "c_uint8",
}


def type_of(kind):
    return kind if isinstance(kind, str) else TYPES[kind.name]


def parameter(given):
    if not given.way:
        return type_of(given.kind)
    return "c_void_p" if getattr(given.kind, "name", "") == "any" else \
        f"POINTER({type_of(given.kind)})"


def shown(given):
    """A parameter as the documentation names it."""
    count = "" if given.count is None else f"[{given.count}]"
    return f"{given.way} {given.name}{count}".lstrip()


def declaration(function, header):
    call = f"{function.name}({', '.join(map(shown, function.parameters))})"
    text = plain(header.comments[function.name].brief)
    result = type_of(function.result) if function.result else "None"
    yield ""
    yield f"{function.name} = _declare("
    library = {"Kirvo": "_kirvo", "KirvoFiles": "_files", "": "_kirvo"}.get(function.home,
                                                                         f"_{function.home}")
    yield from listed(f"    {library}, ", [result, *map(parameter, function.parameters)], ",")
    yield f'    usage="{call}",'
    yield f'    summary="{text}")'


def structure(given, header):
    yield ""
    yield ""
    yield f"class {given.name}(Structure):"
    yield f'    """{plain(header.comments[given.name].sentence)}"""'
    if given.is_table:
        for field in given.fields:
            yield from listed(f"    {field.name}Function = CFUNCTYPE(",
                              [type_of(field.result), *map(parameter, field.parameters)], ")",
                              indent=" " * 8)
    yield "    _fields_ = ["
    for field in given.fields:
        kind = f"{field.name}Function" if isinstance(field, Function) else type_of(field.kind)
        yield f'        ("{field.name}", {kind}),'
    yield "    ]"


def sections(description, header):
    made = {"constants": [], "statuses": [], "structures": [], "functions": []}
    for group, names in numbers(description):
        if description.statuses[0] not in group.enums:
            for name, value in names.items():
                made["constants"] += comment(header.comments[name].sentence, "# ")
                made["constants"].append(f"{name} = {value:#x}" if value > 32 else
                                         f"{name} = {value}")
        for one in group.structures:
            made["structures"] += structure(one, header)
        if group.functions:
            made["functions"] += ["", "", f"# {title(group, header)}"]
        for function in group.functions:
            made["functions"] += declaration(function, header)
    for name, value in statuses(description).items():
        text = plain(header.comments[name].sentence)
        made["statuses"].append(f'    {name} = {value}, "{text}"')
    return made


# The object layer

IMAGE_PATH = "bindings/python/src/kirvo/_image.py"
KINDS = {"int": "int", "uint": "int", "double": "float", "colour": "int", "flag": "bool",
         "image": "Image", "byte": "Sequence[int]"}
VALUES = {"true": "True", "false": "False"}


def declared(one, method):
    kind = KINDS[one.kind]
    if method.name == "keep_channels":
        kind = "Range"
    if not one.optional:
        return f"{one.name}: {kind}"
    value = f"{one.value}.0" if one.kind == "double" else VALUES.get(one.value, one.value)
    return f"{one.name}: {kind} = {value}"


def value(one, method):
    if one.role == "own":
        return "dib"
    if one.role in ("x", "y", "width", "height"):
        return "*a" if one.role == "x" else None
    if one.role == "status":
        return "byref(status)" if method.way == "static" else "status"
    if one.role == "other":
        return "other._dib"
    if one.role == "fixed":
        return one.value.replace("own.", "self.")
    if one.parameter.count:
        return f"_numbers(c_uint8, {one.parameter.count}, {one.name})"
    if method.name == "keep_channels":
        return f"_packed({one.name})"
    bounds = {"int": "", "colour": ", 0, 2**32 - 1", "uint": ", 0, 2**32 - 1"}
    return f"_whole({one.name}{bounds[one.kind]})" if one.kind in bounds else one.name


def head(method):
    given = [declared(one, method) for one in method.parameters]
    if method.has_area:
        given += ["*", "area: Optional[Area] = None"]
    first = "cls" if method.way == "static" else "self"
    result = "None" if method.way == "change" else "Image"
    return listed(f"    def {method.name}(", [first, *given], f") -> {result}:", indent=" " * 8)


def documentation(method):
    texts = [(one.name, plain(one.meaning)) for one in method.parameters]
    if method.has_area:
        texts.append(("area", "the part that is worked on"))
    indent = " " * 8
    lines = textwrap.wrap('"""' + plain(method.sentence) + ("" if texts else '"""'), 94,
                          initial_indent=indent, subsequent_indent=indent)
    if not texts:
        return lines
    for name, text in texts:
        lines += ([""] if name == texts[0][0] else []) + textwrap.wrap(
            f"{name}: {text}", 94, initial_indent=indent, subsequent_indent=indent + "    ")
    return [*lines, indent + '"""']


def call(method):
    values = [value(one, method) for one in method.arguments]
    return f"flat.{method.function.name}({', '.join(filter(None, values))})"


def depths(method):
    return str(tuple(method.depths))


def applied(method, helper, given):
    """What gives the function to a helper, which calls it."""
    area = "area" if method.has_area else "None"
    return listed(f'        {helper}("{method.name}", ', [depths(method), area, f"lambda {given}: {call(method)}"],
                  ")", indent=" " * 20)


def version_lines(description):
    number = description.constants["KIRVO_VERSION"]
    return f'__version__ = "{".".join(map(str, number.to_bytes(4, "big")))}"\n'
