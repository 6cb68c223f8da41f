"""C++: the object layer include/kirvo.hpp."""
import textwrap

from languages import escaped, listed, plain

IMAGE_PATH = "include/kirvo.hpp"
NEWLINE = "\n"

TYPES = {"int": "int32_t", "uint": "uint32_t", "double": "double", "colour": "uint32_t",
         "flag": "bool", "image": "const Image&", "byte": "uint8_t"}


def name_of(argument):
    return escaped(argument.name, {"from"})


def options_type(method):
    return "".join(map(str.capitalize, method.name.split("_"))) + "Options"


def optional(method):
    return [one for one in method.parameters if one.optional]


def required(method):
    return [one for one in method.parameters if not one.optional]


def documentation(lead, tags, indent):
    """A comment in which no line is too long."""
    lines = textwrap.wrap(plain(lead), 96 - len(indent), break_on_hyphens=False)
    for tag in tags:
        lines += textwrap.wrap(f" @{tag}", 96 - len(indent), subsequent_indent="  ",
                               break_on_hyphens=False)
    if len(lines) == 1:
        return [f"{indent}/** {lines[0]} */"]
    return [f"{indent}/** {lines[0]}", *(f"{indent} * {line}" for line in lines[1:-1]),
            f"{indent} * {lines[-1]} */"]


def default(one):
    return f"{one.value}.0" if one.kind == "double" else one.value


def declared(one):
    if one.parameter.count:
        return f"const {TYPES[one.kind]} (&{one.name})[{one.parameter.count}]"
    return f"{TYPES[one.kind]} {name_of(one)}"


def value(argument, method):
    match argument.role:
        case "own": return "dib"
        case "x" | "y" | "width" | "height": return f"a.{argument.role}"
        case "status": return "status" if method.way != "static" else "&status"
        case "fixed": return argument.value.replace("own.", "this->").replace(
            ".width", ".width()").replace(".height", ".height()").replace(
            ">width", ">width()").replace(">height", ">height()").replace("other.", "depth.")
        case "other": return "depth.handle()"
    given = f"options.{argument.name}" if argument.optional else name_of(argument)
    return f"{given} ? 1 : 0" if argument.kind == "flag" else given


def method_documentation(method):
    tags = [f"param {name_of(one)} {plain(one.meaning)}" for one in required(method)]
    if optional(method):
        tags.append("param options what else it may be told")
    if method.has_area:
        tags.append("param area the part that is worked on")
    tags.append("return this image" if method.way == "change" else "return the new image")
    return documentation(method.sentence, tags, "    ")


def head(method):
    parameters = [declared(one) for one in required(method)]
    if optional(method):
        parameters.append(f"const {options_type(method)}& options = {{}}")
    if method.has_area:
        parameters.append("const Area& area = {}")
    static, result, const = {"method": ("", "Image", " const"), "change": ("", "Image&", ""),
                             "static": ("static ", "Image", "")}[method.way]
    return listed(f"    {static}{result} {method.name}(", parameters or [""], f"){const} {{",
                  indent=" " * 8)


def call(method):
    return f"{method.function.name}({', '.join(value(one, method) for one in method.arguments)})"


def depths(method):
    return ", ".join(map(str, method.depths))
