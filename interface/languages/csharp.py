"""C#."""
import itertools
import textwrap

from description import Function
from languages import capitals, escaped, listed, numbers, plain, statuses, title

PATHS = {"Kirvo": "csharp/Kirvo.cs", "KirvoFiles": "csharp/KirvoFiles.cs"}
NEWLINE = "\n"

TYPES = {
    "filesstatus": "KirvoFilesStatus", "status": "KirvoStatus", "int": "int", "uint": "uint", "int16": "short", "uint16": "ushort",
    "byte": "byte", "double": "double", "bool": "bool", "colour": "uint", "image": "IntPtr",
    "block": "IntPtr", "header": "IntPtr", "file": "string", "window": "IntPtr",
    "palette": "IntPtr", "object": "IntPtr", "address": "IntPtr", "size": "UIntPtr",
    "uintptr": "UIntPtr", "intptr": "IntPtr", "any": "byte", "WORD": "ushort", "DWORD": "uint",
    "LONG": "int", "BYTE": "byte", "known": "IntPtr", "text": "byte[]", "wide": "string",
    "letter": "byte",
}
RESERVED = {"object"}
CLASSES = {"KirvoWindowHost"}
IMPORT = "[DllImport({}, ExactSpelling = true{})]"
TEXT = ", BestFitMapping = false, ThrowOnUnmappableChar = true"
LIBRARIES = {"Kirvo": "Library", "KirvoFiles": "Library", "kernel32": '"kernel32.dll"', "gdi32": '"gdi32.dll"',
             "": "Library"}


def type_of(kind):
    return kind if isinstance(kind, str) else TYPES[kind.name]


def parameter(given, pointer=False):
    name = escaped(given.name, RESERVED)
    kind = type_of(given.kind)
    if given.count is not None:
        return f"[{given.way.capitalize()}] {kind}[] {name}"
    if kind in CLASSES:
        return f"{kind} {name}"  # an address that may be null
    if given.nullable and pointer:
        return f"IntPtr {name}"
    if given.way in ("in", "inout"):
        return f"{'[In] ' if given.way == 'in' else ''}ref {kind} {name}"
    if getattr(given.kind, "name", "") == "wide":
        return f"[MarshalAs(UnmanagedType.LPWStr)] string {name}"
    if kind == "string":
        return f"[MarshalAs(UnmanagedType.LPStr)] string {name}"
    return f"{given.way} {kind} {name}".lstrip()


def documentation(tag, text, indent="        "):
    text = plain(text).replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;")
    close = tag.split()[0]
    lines = textwrap.wrap(f"<{tag}>{text}</{close}>", 96 - len(indent), break_on_hyphens=False)
    return [f"{indent}/// {line}" for line in lines]


def function_documentation(function, header):
    comment = header.comments[function.name]
    yield ""
    yield from documentation("summary", comment.sentence)
    if comment.details:
        yield from documentation("remarks", comment.details)
    for given in function.parameters:
        yield from documentation(f'param name="{escaped(given.name, RESERVED)}"',
                                 comment.parameters[given.name])
    if comment.result:
        yield from documentation("returns", comment.result)


def declarations(function, header):
    text = TEXT if any(getattr(given.kind, "name", "") == "file" for given in function.parameters) else ""
    result = type_of(function.result) if function.result else "void"
    # Where null is an answer, an address may stand in place of each variable.
    overloads = itertools.product(*(dict.fromkeys([parameter(given), parameter(given, pointer=True)])
                                    for given in function.parameters))
    for overload in map(list, overloads):
        yield from function_documentation(function, header)
        yield "        " + IMPORT.format(LIBRARIES[function.home], text)
        head = f"        public static extern {result} {function.name}("
        yield from listed(head, overload or [""], ");", indent=" " * 12)


def structure(given, header):
    yield ""
    yield from documentation("summary", header.comments[given.name].sentence, "    ")
    word = "sealed class" if given.is_table else "struct"
    yield "    [StructLayout(LayoutKind.Sequential)]"
    yield f"    public {word} {given.name}"
    yield "    {"
    for field in given.fields:
        yield from documentation("summary", header.field(given, field).sentence)
        if isinstance(field, Function):
            yield f"        public {field.name}Function {field.name};"
        else:
            yield f"        public {type_of(field.kind)} {field.name};"
    for field in given.fields:
        if isinstance(field, Function):
            yield ""
            yield from documentation("summary", f"Type of {field.name}.")
            yield "        [UnmanagedFunctionPointer(CallingConvention.Winapi)]"
            head = f"        public delegate {type_of(field.result)} {field.name}Function("
            yield from listed(head, [parameter(one) for one in field.parameters], ");",
                              indent=" " * 12)
    yield "    }"


def sections(description, header):
    made = {"statuses": [], "constants": [], "structures": [], "functions": []}
    for group, names in numbers(description):
        for name, value in names.items():
            place = "statuses" if description.statuses[0] in group.enums else "constants"
            made[place] += documentation("summary", header.comments[name].sentence)
            made[place].append(f"        {name} = {value}," if place == "statuses" else
                               f"        public const int {name} = {value};")
        for one in group.structures:
            made["structures"] += structure(one, header)
        if group.functions:
            made["functions"] += ["", f"        // {title(group, header)}"]
        for function in group.functions:
            made["functions"] += declarations(function, header)
    return made


# The object layer

IMAGE_PATH = "bindings/csharp/KirvoImage.cs"
KINDS = {"int": "int", "uint": "uint", "double": "double", "colour": "uint", "flag": "bool",
         "image": "KirvoImage", "byte": "byte[]"}


def camel(name):
    return capitals(name)[0].lower() + capitals(name)[1:]


def declared(one):
    value = f" = {one.value}" if one.optional else ""
    return f"{KINDS[one.kind]} {camel(one.name)}{value}"


def value(one):
    match one.role:
        case "own": return "dib"
        case "x" | "y" | "width" | "height": return "a." + one.role.capitalize()
        case "status": return "out status"
        case "other": return "depth.Block"
        case "fixed": return one.value.replace("own.width", "Width").replace(
            "own.height", "Height").replace("other.width", "depth.Width").replace(
            "other.height", "depth.Height")
    return f"{camel(one.name)} ? 1 : 0" if one.kind == "flag" else camel(one.name)


def method_documentation(method):
    lines = documentation("summary", method.sentence)
    for one in method.parameters:
        lines += documentation(f'param name="{camel(one.name)}"', one.meaning)
    if method.has_area:
        lines += documentation('param name="area"', "the part that is worked on; null: all of it")
    if method.way != "change":
        lines += documentation("returns", "the new picture")
    return lines


def head(method):
    given = [declared(one) for one in method.parameters]
    if method.has_area:
        given.append("KirvoArea? area = null")
    result = "void" if method.way == "change" else "KirvoImage"
    static = "static " if method.way == "static" else ""
    return listed(f"        public {static}{result} {capitals(method.name)}(", given or [""], ")",
                  indent=" " * 12)


def depths(method):
    return "new[] { " + ", ".join(map(str, method.depths)) + " }"


def bits_for(method):
    """The depth at which the other picture is given."""
    return "Bits" if method.way == "change" else f"Array.IndexOf({depths(method)}, Bits) >= 0 ? Bits : 24"


def helper(method):
    """What calls the function, and what that is given."""
    return {("method", True): ("return Make", "(IntPtr dib, KirvoArea a, out KirvoStatus status)"),
            ("method", False): ("return Changed", "(dib, a)"),
            ("change", False): ("Apply", "(dib, a)")}[method.way, method.makes]


def call_lines(method, indent=""):
    return [indent + line for line in listed(
        f"Kirvo.{method.function.name}(", [value(one) for one in method.arguments], ")", indent=" " * 4)]


def call(method):
    return " ".join(line.strip() for line in call_lines(method))


def message(text):
    return plain(text).rstrip(".").replace('"', '\\"')
