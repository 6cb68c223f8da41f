#!/usr/bin/env python3
"""Checks of the interface as it is built: check.py CHECK build/<preset>/interface.json

The JSON file comes from CMake and names compilers, tools, objects and the library.
"""
import json
import pathlib
import re
import subprocess
import sys

CONFIG = json.loads(pathlib.Path(sys.argv[2]).read_text())
SOURCE = pathlib.Path(CONFIG["source"])
LIBRARY = pathlib.Path(CONFIG["library"])
WINDOWS = CONFIG["system"] == "Windows"

ALLOWED_IMPORTS = {"kernel32.dll", "user32.dll", "gdi32.dll", "comdlg32.dll", "msvcrt.dll"}
SIZE_LIMIT = 400 * 1024
VERSION = (1, 0, 4, 2)


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


def declared():
    """Functions that kirvo.h declares, for Windows and elsewhere."""
    text = (SOURCE / "include/kirvo.h").read_text()
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.DOTALL)
    names = re.findall(r"^KIRVO_API\s[^;(]*?\bWINAPI\s+(\w+)\s*\(", text, re.MULTILINE)
    count = len(re.findall(r"^KIRVO_API\b", text, re.MULTILINE))
    assert count == len(names), f"{count} times KIRVO_API, but {len(names)} functions: no WINAPI?"
    return names


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
    """Header, module definition and symbols of the built library agree."""
    names = module_definition("kirvo.def")
    standins = module_definition("cmake/standins.def")
    same("kirvo.h against kirvo.def", declared(), names + standins)
    same("exported against kirvo.def", exported(), names if WINDOWS else names + standins)


def compile_header(compiler, language, standard):
    flags = ["-Wall", "-Wextra", "-pedantic", "-Werror", "-fsyntax-only"]
    subprocess.run([compiler, *flags, f"-std={standard}", "-x", language, f"-I{SOURCE}/include", "-"],
                   check=True, text=True, input="#include <kirvo.h>\n#include <kirvo.h>\n")


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
    assert not extra, f"imports {sorted(extra)}"


def check_size():
    size = LIBRARY.stat().st_size
    print(f"{LIBRARY.name}: {size} bytes")
    assert size < SIZE_LIMIT


def check_version():
    """The version resource: VS_FIXEDFILEINFO follows its signature."""
    data = LIBRARY.read_bytes()
    start = data.index(0xFEEF04BD.to_bytes(4, "little"))
    high, low = (int.from_bytes(data[start + at:start + at + 4], "little") for at in (8, 12))
    assert (high >> 16, high & 0xFFFF, low >> 16, low & 0xFFFF) == VERSION


def isa_of(name):
    match = re.search(r"_(avx2|avx512)(?:vbmi)?\.cpp\.", pathlib.Path(name).name)
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
