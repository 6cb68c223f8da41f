#!/usr/bin/env python3
"""Checks of the interface as it is built: check.py CHECK build/<preset>/interface.json [kirvo_files]

The JSON file comes from CMake and names compilers, tools, objects and the library.
"""
import json
import pathlib
import re
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path[:0] = [str(pathlib.Path(__file__).parents[2] / folder)
                for folder in ("interface", "tests/support")]
import version
from description import Description, Function
from header import Header

CONFIG = json.loads(pathlib.Path(sys.argv[2]).read_text())
SOURCE = pathlib.Path(CONFIG["source"])
NAME = sys.argv[3] if len(sys.argv) > 3 else "kirvo"
FIRST = NAME == "kirvo"
LIBRARY = pathlib.Path(CONFIG["library" if FIRST else "files_library"])
OBJECTS = CONFIG["objects" if FIRST else "files_objects"]
WINDOWS = CONFIG["system"] == "Windows"

ALLOWED_IMPORTS = {"kernel32.dll", "user32.dll", "gdi32.dll", "comdlg32.dll", "msvcrt.dll"}
SIZE_LIMIT = (370 if FIRST else 250) * 1024
if not FIRST:
    ALLOWED_IMPORTS |= {"kirvo.dll", "ole32.dll"}


def run(*command):
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE).stdout


def same(what, left, right):
    """Two lists of names hold the same names once each."""
    for names in (left, right):
        twice = sorted({name for name in names if names.count(name) > 1})
        assert not twice, f"{what}: twice: {twice}"
    missing, extra = sorted(set(right) - set(left)), sorted(set(left) - set(right))
    assert not missing and not extra, f"{what}: missing {missing}, too many {extra}"
    assert left, f"{what}: empty"


def module_definition(name):
    lines = (SOURCE / name).read_text().splitlines()
    lines = [line.split(";")[0].strip() for line in lines]
    return [line for line in lines if line and line.split()[0] not in ("LIBRARY", "EXPORTS")]


def exported():
    if WINDOWS:
        table = run(CONFIG["objdump"], "-p", LIBRARY).split("[Ordinal/Name Pointer] Table")[-1]
        return re.findall(r"^\s*\[ *\d+\].*?(\S+)$", table.split("\n\n")[0], re.MULTILINE)
    symbols = run(CONFIG["nm"], "--dynamic", "--defined-only", "--format=posix", LIBRARY)
    return [line.split()[0] for line in symbols.splitlines()]


def check_exports():
    """Description, header, module definition and symbols of the built library agree."""
    description = Description(NAME)
    functions = description.functions
    library = [function.name for function in functions if function.home == description.library]
    everywhere = [function.name for function in functions]
    same("the header against the description", list(Header(f"{NAME}.h").parameters), everywhere)
    same("the .def against the description", module_definition(f"{NAME}.def"), library)
    if FIRST:
        same("standins.def against the description",
             module_definition("kirvo.def") + module_definition("cmake/standins.def"), everywhere)
    same("exported against the description", exported(), library if WINDOWS else everywhere)


def check_names():
    """Description and header have the same groups, names of numbers, structures and parameters."""
    description, header = Description(NAME), Header(f"{NAME}.h")
    same("groups", list(header.titles), [group.name for group in description.groups])
    same("numbers", header.constants, list(description.constants))
    same("structures", header.structures, [structure.name for structure in description.structures])
    for group in description.groups:
        for function in group.functions:
            name = function.name
            assert header.groups[name] == group.name, f"{name}: in {header.groups[name]}"
            parameters = [parameter.name for parameter in function.parameters]
            assert header.parameters[name] == parameters, f"{name}: {header.parameters[name]}"


def type_assertions(description):
    """C statements that compile when kirvo.h has the described types, sizes and numbers."""
    def assert_type(what, c):
        return f'_Static_assert(__builtin_types_compatible_p(__typeof__({what}), {c}), "{what}");'

    for function in description.functions:
        if WINDOWS and not function.home:
            continue
        parameters = ", ".join(function.c_parameters) or "void"
        yield f"typedef {function.c_result} WINAPI of_{function.name}({parameters});"
        yield assert_type(function.name, f"of_{function.name}")
    for structure in description.structures:
        if WINDOWS and structure.is_table:
            continue
        members = []
        for field in structure.fields:
            if isinstance(field, Function):
                parameters = ", ".join(field.c_parameters)
                members.append(f"{field.c_result} (*{field.name})({parameters});")
            else:
                members.append(f"{field.c} {field.name};")
        name = structure.name
        yield f"struct of_{name} {{ {' '.join(members)} }};"
        yield f'_Static_assert(sizeof(struct of_{name}) == sizeof({name}), "{name}");'
        for field in structure.fields:
            yield assert_type(f"(({name}*)0)->{field.name}",
                              f"__typeof__(((struct of_{name}*)0)->{field.name})")
            yield (f"_Static_assert(__builtin_offsetof(struct of_{name}, {field.name}) == "
                   f'__builtin_offsetof({name}, {field.name}), "{name}.{field.name}");')
    for name, value in description.constants.items():
        yield f'_Static_assert({name} == {value}, "{name}");'
    for function in description.functions:
        if function.home == "Kirvo":
            yield f"PFN_{function.name} pointer_to_{function.name} = {function.name};"


def check_types():
    """The C compiler finds the described types in kirvo.h."""
    source = "\n".join([f"#include <{NAME}.h>", *type_assertions(Description(NAME))])
    subprocess.run([CONFIG["c_compiler"], "-Wall", "-Werror", "-fsyntax-only", "-std=c11", "-x", "c",
                    f"-I{SOURCE}/include", "-"], check=True, text=True, input=source)


def check_stdcall():
    """The compiler's decorated names show the described bytes of arguments."""
    symbols = run(CONFIG["nm"], "--extern-only", "--defined-only", *OBJECTS)
    built = dict(re.findall(r" T _(\w+)@(\d+)$", symbols, re.MULTILINE))
    description = Description(NAME)
    for function in description.functions:
        if function.home == description.library:
            assert built.get(function.name) == str(function.stack_bytes), \
                f"{function.name}: {function.stack_bytes} described, {built.get(function.name)} built"


def compile_header(compiler, language, standard):
    flags = ["-Wall", "-Wextra", "-pedantic", "-Werror", "-fsyntax-only"]
    subprocess.run([compiler, *flags, f"-std={standard}", "-x", language, f"-I{SOURCE}/include", "-"],
                   check=True, text=True, input=2 * f"#include <{NAME}.h>\n")


def check_header_c99():
    compile_header(CONFIG["c_compiler"], "c", "c99")


def check_header_cpp17():
    compile_header(CONFIG["cpp_compiler"], "c++", "c++17")


def check_imports():
    """The library needs the system and nothing else."""
    if WINDOWS:
        imports = re.findall(r"DLL Name: (\S+)", run(CONFIG["objdump"], "-p", LIBRARY))
        extra = {name for name in imports if name.lower() not in ALLOWED_IMPORTS}
    else:
        imports = re.findall(r"NEEDED\s+(\S+)", run(CONFIG["objdump"], "-p", LIBRARY))
        extra = {name for name in imports
                 if not re.match(r"(lib(c|m|gcc_s|stdc\+\+|asan|ubsan)|ld-linux.*)\.so", name)}
        if not FIRST:
            extra -= {name for name in extra
                      if re.match(r"lib(kirvo|jpeg|turbojpeg|spng|tiff|webp|gif)\.so", name)}
    assert not extra, f"imports {sorted(extra)}"


ROOMS = { # and the rooms that they may include
    "platform": set(),
    "simd": set(),
    "image": {"simd", "platform"},
    "effects": {"image", "simd"},
    "reduce": {"image", "simd"},
    "formats": {"image", "simd", "platform"},
    "jpeg": {"image", "simd", "platform"},
}


def check_rooms():
    """Includes of the library's rooms point one way, as src/README.md says."""
    sources = [*(SOURCE / "src").rglob("*.cpp"), *(SOURCE / "src").rglob("*.hpp")]
    assert len(sources) > 100
    for source in sources:
        room = source.relative_to(SOURCE / "src").parts[0]
        for included in re.findall(r'^#include "(\w+)/', source.read_text(), re.M):
            assert included in ROOMS[room] | {room}, f"{source} includes {included}/"


def check_size():
    size = LIBRARY.stat().st_size
    print(f"{LIBRARY.name}: {size} bytes")
    assert size < SIZE_LIMIT


def check_version():
    """Documents that write the version out mean this one, and so does the version resource."""
    for name in ("README.md", "include/kirvo.h"):
        written = re.findall(r"(?<![\w.])(?:\d+\.){3}\d+(?![\w.]\w)", (SOURCE / name).read_text())
        assert set(written) == {version.TEXT}, f"{name}: {written}"
    assert f"0x{version.NUMBER:08X} for {version.TEXT}" in (SOURCE / "include/kirvo.h").read_text()
    assert Description().constants["KIRVO_VERSION"] == version.NUMBER
    for name, pattern in {"CHANGELOG.md": r"^## (\S+)", "debian/changelog": r"^kirvo \((\S+)-\d+\)",
                          "packaging/vcpkg/kirvo/vcpkg.json": r'"version": "(\S+)"'}.items():
        first = re.search(pattern, (SOURCE / name).read_text(), re.M)[1]
        assert first == version.TEXT, f"{name} begins with {first}"
    tags = run("git", "-C", SOURCE, "tag", "--points-at", "HEAD").split() if (SOURCE / ".git").exists() else []
    assert {tag for tag in tags if re.match(r"v\d", tag)} <= {f"v{version.TEXT}"}, f"tagged {tags}"
    if not WINDOWS:
        return
    # VS_FIXEDFILEINFO follows its signature.
    data = LIBRARY.read_bytes()
    start = data.index(0xFEEF04BD.to_bytes(4, "little"))
    high, low = (int.from_bytes(data[start + at:start + at + 4], "little") for at in (8, 12))
    assert (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF) == version.PARTS


def isa_of(name):
    match = re.search(r"level_(avx2|avx512)\.cpp\.", pathlib.Path(name).name)
    return match and match[1]


def check_baseline():
    """AVX stays in the files that are named after it, and their shared code stays theirs."""
    baseline = [name for name in CONFIG["objects"] if not isa_of(name)]
    wide = re.compile(r"^\s+[0-9a-f]+:.*(%[yz]mm|\tv[a-z]+.*%xmm)")
    for line in run(CONFIG["objdump"], "-d", "--no-show-raw-insn", *baseline).splitlines():
        assert not wide.match(line), f"AVX in a baseline object: {line.strip()}"
    for name in filter(isa_of, CONFIG["objects"]):
        for line in run(CONFIG["nm"], "--defined-only", "--demangle", name).splitlines():
            kind, symbol = line[line.index(" "):].strip().split(" ", 1)
            assert kind not in "WVu" or isa_of(name) in symbol, f"{name} may lend {symbol}"


globals()[f"check_{sys.argv[1]}"]()
