"""C++: the object layer include/kirvo.hpp."""
import textwrap

from languages import escaped, listed, plain

PATH = "kirvo.hpp"
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
    lines = textwrap.wrap(lead, 96 - len(indent), break_on_hyphens=False)
    for tag in tags:
        lines += textwrap.wrap(f" @{tag}", 96 - len(indent), subsequent_indent="  ",
                               break_on_hyphens=False)
    if len(lines) == 1:
        return [f"{indent}/** {lines[0]} */"]
    return [f"{indent}/** {lines[0]}", *(f"{indent} * {line}" for line in lines[1:-1]),
            f"{indent} * {lines[-1]} */"]


def options(method):
    yield f"/** What Image::{method.name} may be told. */"
    yield f"struct {options_type(method)} {{"
    for one in optional(method):
        yield from documentation(plain(method.meaning(one.parameter.name)), [], "    ")
        value = {"double": f"{one.value}.0"}.get(one.kind, one.value)
        yield f"    {TYPES[one.kind]} {one.name} = {value};"
    yield "};"
    yield ""


def declared(one):
    if one.parameter.count:
        return f"const {TYPES[one.kind]} (&{one.name})[{one.parameter.count}]"
    return f"{TYPES[one.kind]} {name_of(one)}"


def value(argument, method):
    match argument.role:
        case "own": return "dib"
        case "x" | "y" | "width" | "height": return f"area.{argument.role}"
        case "status": return "status" if method.way != "static" else "&status"
        case "fixed": return argument.value.replace("own.", "this->").replace(
            ".width", ".width()").replace(".height", ".height()").replace(
            ">width", ">width()").replace(">height", ">height()").replace("other.", "depth.")
        case "other": return "depth.handle()"
    given = f"options.{argument.name}" if argument.optional else name_of(argument)
    return f"{given} ? 1 : 0" if argument.kind == "flag" else given


def method_lines(method):
    parameters = [declared(one) for one in required(method)]
    tags = [f"param {name_of(one)} {plain(method.meaning(one.parameter.name))}" for one in required(method)]
    if optional(method):
        parameters.append(f"const {options_type(method)}& options = {{}}")
        tags.append("param options what else it may be told")
    if method.has_area:
        parameters.append("const Area& area = {}")
        tags.append("param area the part that is worked on")
    tags.append("return this image" if method.way == "change" else "return the new image")
    yield from documentation(plain(method.sentence), tags, "    ")
    static, result, const = {"method": ("", "Image", " const"), "change": ("", "Image&", ""),
                             "static": ("static ", "Image", "")}[method.way]
    yield from listed(f"    {static}{result} {method.name}(", parameters or [""], f"){const} {{",
                      indent=" " * 8)
    call = f"{method.function.name}(" + ", ".join(value(one, method) for one in method.arguments) + ")"
    depths = "{" + ", ".join(map(str, method.depths)) + "}"
    other = any(one.role == "other" for one in method.arguments)
    area = "area" if method.has_area else "{}"
    named = "area" if method.has_area else ""
    if method.way == "static":
        yield "        const detail::Operation operation;"
        yield "        int32_t status = KIRVO_OK;"
        yield f"        Image image = adopt({call});"
        yield f'        detail::check(image ? KIRVO_OK : status, "{method.name}");'
        yield "        return image;"
    elif method.way == "change":
        yield f"        ready({depths});"
        if other:
            yield "        const Image depth = other.as_deep_as(*this);"
        yield (f'        apply("{method.name}", {depths}, {{}}, [&](HGLOBAL dib, const Area&) {{')
        yield f"            return {call};"
        yield "        });"
        yield "        return *this;"
    else:
        if other:
            yield f"        if (!has_depth({depths}))"
            yield f"            return convert(24).{method.name}(other);"
            yield "        const Image depth = other.as_deep_as(*this);"
        helper, status = ("make", ", int32_t* status") if method.makes else ("changed", "")
        yield (f'        return {helper}("{method.name}", {depths}, {area}, '
               f"[&](HGLOBAL dib, const Area& {named}{status}) {{".replace("& ,", "&,").replace("& )", "&)"))
        yield f"            return {call};"
        yield "        });"
    yield "    }"
    yield ""


def sections(layers):
    made = {"options": [], "methods": []}
    for method in layers.methods:
        if optional(method):
            made["options"] += options(method)
        made["methods"] += method_lines(method)
    return made
