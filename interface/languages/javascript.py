"""JavaScript on WebAssembly, and its types for TypeScript."""
import re
import textwrap

from languages import capitals, listed, plain, statuses, title

FOLDER = "javascript"

ARRAYS = {"status": "Int32Array", "int": "Int32Array", "bool": "Int32Array", "uint": "Uint32Array",
          "colour": "Uint32Array", "image": "Uint32Array", "block": "Uint32Array",
          "int16": "Int16Array", "uint16": "Uint16Array", "byte": "Uint8Array"}
HANDLES = ("image", "block", "palette", "object", "header")
ELSEWHERE = ("file", "window", "KirvoWindowHost")  # what there is no such thing of


def kind(given):
    return given.kind if isinstance(given.kind, str) else given.kind.name


def functions(group):
    return [function for function in group.functions
            if not any(kind(given) in ELSEWHERE for given in function.parameters)]


def camel(name):
    return capitals(name)[0].lower() + capitals(name)[1:]


# The flat functions

def line(function):
    """The function as interface/kirvo.txt has it."""
    given = []
    for one in function.parameters:
        count = "" if one.count is None else f"[{one.count}]"
        given.append(f"{one.way} {kind(one)} {one.name}{count}".strip())
    result = f" -> {function.result.name}" if function.result else ""
    return f"{function.name}({', '.join(given)}){result}"


def declaration(function):
    return [f"export const {function.name} = declare(", f'    "{line(function)}");']


def number(name, value):
    return f"export const {name} = {value:#x};" if value > 32 else f"export const {name} = {value};"


def numbers(group):
    return [(name, value) for names in (group.constants, *group.enums.values())
            for name, value in names.items()]


def flat_sections(description, header):
    made = {"constants": [], "meanings": [], "functions": []}
    for group in description.groups:
        made["constants"] += [number(*one) for one in numbers(group)]
        if functions(group):
            made["functions"] += ["", f"// {title(group, header)}"]
        for function in functions(group):
            made["functions"] += declaration(function)
    for name in statuses(description):
        text = plain(header.comments[name].sentence).rstrip(".")
        made["meanings"].append(f'    {name}: "{text}",')
    made["functions"].pop(0)
    return made


def exports(description):
    names = [function.name for group in description.groups for function in functions(group)]
    lines = [f'    "_{name}"' for name in [*names, "malloc", "free"]]
    return "[\n" + ",\n".join(lines) + "\n]\n"


# The methods of pictures

def declared(one):
    value = f" = {one.value}" if one.optional else ""
    return f"{camel(one.name)}{value}"


def value(one, method):
    match one.role:
        case "own": return "dib"
        case "x": return "...inside"
        case "y" | "width" | "height": return None
        case "status": return "status"
        case "other": return "other.#dib"
        case "fixed": return one.value.replace("own.", "this.")
    if one.kind == "byte":
        return f"Uint8Array.from({camel(one.name)})"
    return f"packed({camel(one.name)})" if method.name == "keep_channels" else camel(one.name)


def head(method):
    given = [declared(one) for one in method.parameters]
    if method.has_area:
        given.append("area = null")
    static = "static " if method.way == "static" else ""
    return f"{static}{camel(method.name)}({', '.join(given)}) {{"


def call(method):
    values = ", ".join(filter(None, (value(one, method) for one in method.arguments)))
    return f"flat.{method.function.name}({values})"


def depths(method):
    return f"[{', '.join(map(str, method.depths))}]"


def bits_for(method):
    """The depth at which the other picture is given."""
    return "this.bits" if method.way == "change" else f"{depths(method)}.includes(this.bits) ? this.bits : 24"


def helper(method):
    return {("change", False): "#apply", ("method", True): "#make",
            ("method", False): "#changed"}[method.way, method.makes]


def given(method):
    """What the helper gives to the call."""
    return ", ".join(["dib", "inside", "status"][:3 if method.makes else 2 if method.has_area else 1])


# Types

def wrapped(text, width):
    """The lines of a paragraph, or the rows of a table."""
    if "|---" in text:
        return ["", *re.split(r"(?<=\|) (?=\|)", text), ""]
    return textwrap.wrap(text, width, break_on_hyphens=False)


def documentation(paragraphs, indent):
    """A comment of these paragraphs, none of which may end it."""
    first, *rest = [line.replace("*/", "* /") for text in paragraphs
                    for line in wrapped(text, 95 - len(indent))]
    return [f"{indent}/** {first}", *(f"{indent} *  {line}" for line in rest[:-1]),
            f"{indent} *  {rest[-1]} */"] if rest else [f"{indent}/** {first} */"]


def type_of(given):
    if given.way:
        return ("Uint8Array" if kind(given) == "PALETTEENTRY" else ARRAYS[kind(given)]) + " | null"
    if kind(given) == "bool":
        return "boolean | number"
    return "number | null" if kind(given) in HANDLES else "number"


def function_types(function, header):
    comment = header.comments[function.name]
    paragraphs = [*comment.paragraphs,
                  *(f"@param {name} {text}" for name, text in comment.parameters.items()
                    if name in [one.name for one in function.parameters])]
    if comment.result:
        paragraphs.append(f"@returns {comment.result}")
    yield from documentation(paragraphs, "    ")
    yield from listed(f"    function {function.name}(",
                      [f"{one.name}: {type_of(one)}" for one in function.parameters] or [""],
                      f"): {'number' if function.result else 'void'};", indent=" " * 8)


KINDS = {"int": "number", "uint": "number", "double": "number", "colour": "number",
         "flag": "boolean", "image": "Image", "byte": "ArrayLike<number>"}


def method_documentation(method):
    texts = [method.sentence,
             *(f"@param {camel(one.name)} {one.meaning}"
               + (f"; {one.value} by default" if one.optional else "") for one in method.parameters)]
    if method.has_area:
        texts.append("@param area the part that is worked on; all of it by default")
    return documentation(texts, "    ")


def method_type(method):
    given = []
    for one in method.parameters:
        of = "Range" if method.name == "keep_channels" else KINDS[one.kind]
        given.append(f"{camel(one.name)}{'?' if one.optional else ''}: {of}")
    if method.has_area:
        given.append("area?: Area | null")
    static = "static " if method.way == "static" else ""
    return listed(f"    {static}{camel(method.name)}(", given or [""],
                  f"): {'void' if method.way == 'change' else 'Image'};", indent=" " * 8)


def type_sections(description, header):
    made = {"functions": []}
    for group in description.groups:
        for name, number in numbers(group):
            if name in header.comments:
                made["functions"] += documentation([header.comments[name].sentence], "    ")
            made["functions"].append(f"    const {name}: {number};")
        for function in functions(group):
            made["functions"] += function_types(function, header)
    return made
