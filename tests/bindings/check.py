#!/usr/bin/env python3
"""The declarations for other languages: check.py CHECK build/<preset>/interface.json [kirvo_files]

Every declaration is read back, by its own compiler where there is one, and compared with the
described C types; the examples are built, run, and their picture compared with the tool's.
A check whose compiler is missing is skipped (exit code 77).
"""
import ctypes
import importlib
import os
import pathlib
import re
import shutil
import sys
import tempfile

SOURCE = pathlib.Path(__file__).parents[2]
sys.path[:0] = [str(SOURCE / "interface"), str(SOURCE / "tests/support"), str(SOURCE / "tests/layers")]
sys.dont_write_bytecode = True
import version
from basic import basic_lines
from built import BITS, FILES_LIBRARY, LIBRARY, WINDOWS, need, run
from description import Description, Function

BINDINGS = SOURCE / "bindings"
NAME = sys.argv[3] if len(sys.argv) > 3 else "kirvo"
DESCRIPTION = Description(NAME)
UNIT = DESCRIPTION.library
FIRST = NAME == "kirvo"  # the one that the examples show

HANDLES = {"HGLOBAL", "HWND", "HPALETTE", "HGDIOBJ", "LPVOID", "const void*", "KirvoFile"}
WORDS = {"SIZE_T", "uintptr_t"}
SIZES = {"DWORD": 4, "LONG": 4, "WORD": 2, "BYTE": 1, "uint32_t": 4, "int32_t": 4, "double": 8}


def agrees(c, word, address, types):
    """Whether a declared word stands for a C type; address: None by value, "in", "out" or "any"."""
    if address is None:
        return c in types.get(word, ())
    if not c.endswith("*") or address != "any" and c.startswith("const ") != (address == "in"):
        return False
    base = c.removesuffix("*").removeprefix("const ")
    return word == "any" or word == base or base in types.get(word, ())


def compare(declared, types, functions):
    """declared: name -> (result word or None, [(word, address)])."""
    missing = {function.name for function in functions} ^ set(declared)
    assert not missing, f"in one only: {sorted(missing)}"
    for function in functions:
        result, parameters = declared[function.name]
        assert (result is None) == (function.result is None), f"{function.name}: {result}"
        assert not result or function.c_result in types.get(result, ()), f"{function.name}: {result}"
        assert len(parameters) == len(function.parameters), f"{function.name}: {parameters}"
        for given, (word, address) in zip(function.parameters, parameters):
            assert agrees(given.c, word, address, types), \
                f"{function.name}: {given.name}: {address} {word} for {given.c}"


def size_of(structure):
    """Bytes in a 64-bit program; fields are aligned to their size."""
    return sum(8 if isinstance(field, Function) else SIZES[field.c] for field in structure.fields)


def check_example(folder, *command):
    """The example's picture is the tool's, its progress complete, and a missing file is an error."""
    tool = LIBRARY.parent / ("kirvo.exe" if WINDOWS else "kirvo")
    make_photo(folder / "photo.bmp")
    run(tool, "--quiet", "convert", "photo.bmp", "photo.jpg", folder=folder)
    run(tool, "--quiet", "convert", "photo.jpg", "expected.bmp", "--blur", folder=folder)
    *lines, last = run(*command, "photo.jpg", "made.bmp", folder=folder).splitlines()
    assert last == "made.bmp: 333 x 217", last
    made, expected = (folder / name for name in ("made.bmp", "expected.bmp"))
    assert made.read_bytes() == expected.read_bytes(), "another picture"
    for line, word in zip(lines, ("reading", "blurring"), strict=True):
        percent = [int(number) for number in re.findall(r" (\d+)%", line)]
        assert line.startswith(word) and percent[0] == 0 and percent[-1] == 100, line
        assert all(5 <= after - before for before, after in zip(percent[:-1], percent[1:-1])), line
    assert "KIRVO_CANNOT_OPEN" in run(*command, "missing.jpg", "made.bmp", code=1,
                                      folder=folder)


def make_photo(path):
    """A colourful picture of an odd size."""
    width, height = 333, 217
    row = lambda y: b"".join(bytes((x * y & 255, x & 255, x + 3 * y & 255)) for x in range(width))
    rows = b"".join(row(y) + b"\0" * (-3 * width % 4) for y in range(height))
    header = b"BM" + (54 + len(rows)).to_bytes(4, "little") + bytes(4) + (54).to_bytes(4, "little")
    sizes = b"".join(n.to_bytes(4, "little") for n in (40, width, height, 1 | 24 << 16, 0, len(rows)))
    path.write_bytes(header + sizes + bytes(16) + rows)


def check_current(folder):
    """The committed declarations are those that the description gives."""
    print(run(SOURCE / "script/bindings", "--check"))


# Python

PYTHON_TYPES = {
    "c_int": {"int32_t", "BOOL"}, "c_uint": {"uint32_t"}, "c_short": {"int16_t"},
    "c_ushort": {"uint16_t"}, "c_ubyte": {"uint8_t"}, "c_double": {"double"},
    "c_void_p": HANDLES | {"const KirvoWide*"}, "c_ulong": WORDS, "FileName": {"LPCSTR"},
    "Text": {"const char*"}, "c_char": {"char"},
}


def python_parameter(kind, c):
    if hasattr(kind, "contents"):
        return kind._type_.__name__, "any"
    if c == "void*":
        return ("any" if kind is ctypes.c_void_p else kind.__name__), "any"
    return kind.__name__, None


def check_python(folder):
    os.environ.update(KIRVO_LIBRARY=str(LIBRARY), KIRVO_FILES_LIBRARY=str(FILES_LIBRARY),
                      PYTHONPATH=str(BINDINGS / "python/src"))
    sys.path.insert(0, os.environ["PYTHONPATH"])
    kirvo = importlib.import_module({"kirvo": "kirvo.flat", "kirvo_files": "kirvo.flat_files"}[NAME])
    declared = {}
    for function in DESCRIPTION.functions:
        python = kirvo.functions[function.name]
        assert ctypes.cast(python, ctypes.c_void_p).value, function.name
        assert python is getattr(kirvo, function.name)
        declared[function.name] = (
            python.restype and python.restype.__name__,
            [python_parameter(kind, c)
             for kind, c in zip(python.argtypes, function.c_parameters, strict=True)])
    assert set(kirvo.functions) == set(declared)
    compare(declared, PYTHON_TYPES, DESCRIPTION.functions)
    for structure in DESCRIPTION.structures:
        made = getattr(kirvo, structure.name)
        assert ctypes.sizeof(made) == size_of(structure), structure.name
        assert [name for name, _ in made._fields_] == [field.name for field in structure.fields]
    for name, value in DESCRIPTION.constants.items():
        assert name in ("TRUE", "FALSE") or getattr(kirvo, name) == value, name
    if not FIRST:
        check_python_files(kirvo, folder)
        return
    check_python_calls(kirvo)
    check_example(folder, sys.executable, BINDINGS / "python/blur.py")


def check_python_files(files, folder):
    """A picture goes through the second library."""
    from kirvo import flat as kirvo
    byref, dib, photo = ctypes.byref, kirvo.HANDLE(), files.KirvoFile()
    make_photo(folder / "写真.bmp")
    files.check(files.KirvoFilesOpen(folder / "写真.bmp", None, byref(dib), byref(photo)), photo)
    with kirvo.Block(dib.value) as image:
        given = files.options(files.KirvoFilesSaveOptions, quality=80)
        files.check(files.KirvoFilesSave(folder / "Łódź.jpg", image, photo, byref(given), None))
    files.KirvoFilesClose(photo)
    files.check(files.KirvoFilesInfo(str(folder / "Łódź.jpg"), None, byref(photo)), photo)
    about = files.KirvoFilesDescription(size=ctypes.sizeof(files.KirvoFilesDescription))
    files.KirvoFilesDescribe(photo, byref(about))
    assert (about.width, about.height, about.quality) == (333, 217, 80)
    assert files.text(photo, files.KIRVO_FILES_TEXT_VARIANT) == "baseline, YCbCr 4:2:0"
    files.KirvoFilesClose(photo)
    try:
        files.check(files.KirvoFilesInfo(folder / "missing.jpg", None, byref(photo)), photo)
    except files.KirvoFilesError as error:
        assert error.status is files.Status.KIRVO_FILES_MISSING and "missing.jpg" in str(error)
    else:
        raise AssertionError("no KirvoFilesError")
    files.KirvoFilesClose(photo)


def check_python_calls(kirvo):
    """Values arrive in every way of passing them."""
    byref, status = ctypes.byref, ctypes.c_int32()
    assert kirvo.GetVerKirvoDll() == version.NUMBER
    hue, saturation, value = ctypes.c_int32(), ctypes.c_int32(), ctypes.c_int32()
    kirvo.RGB2HSV(0, 0, 200, byref(hue), byref(saturation), byref(value))
    assert (hue.value, saturation.value, value.value) == (240, 200, 200)
    with kirvo.Block(kirvo.Dib24Solid(2, 1, 24, 0x0A141E, byref(status))) as image:
        kirvo.check(status)
        assert bytes(image)[40:46] == bytes((10, 20, 30)) * 2
        with kirvo.Block(kirvo.Dib24ToneCtrlEx(image, 0, 0, 2, 1, 0.5, 1.0, 2.0, byref(status))) as toned:
            assert bytes(toned)[40:46] == bytes((20, 20, 15)) * 2
        table = (ctypes.c_uint8 * 256)(*range(255, -1, -1))
        with kirvo.Block(kirvo.DibColorMapEx(image, 0, 0, 2, 1, table, byref(status))) as mapped:
            assert bytes(mapped)[40:46] == bytes((245, 235, 225)) * 2
        assert kirvo.DibSetPixelColor(image, 2, 0, 0) == kirvo.KIRVO_BAD_PARAMETER
    assert kirvo.DibQueryBitCount(None) == kirvo.KIRVO_NULL_HANDLE
    try:
        kirvo.check(-22)
    except kirvo.KirvoError as error:
        assert error.status is kirvo.Status.KIRVO_NEEDS_24 and "24 bits" in str(error)
    else:
        raise AssertionError("no KirvoError")


# C#

CSHARP_TYPES = {
    "Int32": {"int32_t"}, "KirvoStatus": {"int32_t"}, "UInt32": {"uint32_t"}, "Int16": {"int16_t"},
    "UInt16": {"uint16_t"}, "Byte": {"uint8_t", "void"}, "Double": {"double"}, "Boolean": {"BOOL"},
    "IntPtr": HANDLES, "UIntPtr": WORDS, "String": {"LPCSTR", "const KirvoWide*"},
    "KirvoFilesStatus": {"int32_t"}, "Byte[]": {"const char*"},
}
CSHARP_TYPES["Byte"] |= {"char"}


def csharp_parameter(text, given):
    way, _, kind = text.rpartition(":")
    if text == "Byte[]" and not given.way:
        return text, None
    if kind.endswith("&") and not way:
        return kind[:-1], "any"  # ref
    if kind == "KirvoWindowHost":
        return kind, "in"  # a class is passed as its address
    if given.way and given.nullable and text == "IntPtr":
        return "any", "any"
    return (re.sub(r"&$|\[\]$", "", kind), way) if way else (kind, None)


def check_csharp(folder):
    need("mcs", "mono-mcs")
    need("mono", "mono-runtime")
    declarations = [BINDINGS / "csharp/Kirvo.cs", BINDINGS / "csharp/KirvoFiles.cs"]
    for name, path in {"Signatures": csharp_signatures(folder),
                       "Blur": BINDINGS / "csharp/Blur.cs"}.items():
        program = folder / f"{name}.exe"
        run("mcs", "-warn:4", "-warnaserror", f"-out:{program}", f"-doc:{folder}/{name}.xml", path,
            *declarations)
        shutil.copy(BINDINGS / "csharp/Kirvo.dll.config", f"{program}.config")
    sizes, constants, overloads = {}, {}, []
    described = {function.name: function for function in DESCRIPTION.functions}
    for line in run("mono", folder / "Signatures.exe").splitlines():
        word, name, *rest = line.split()
        if word == "function":
            parameters = described[name].parameters
            overloads.append((name, (None if rest[0] == "Void" else rest[0],
                                     [csharp_parameter(text, given)
                                      for text, given in zip(rest[1:], parameters, strict=True)])))
        else:
            {"structure": sizes, "constant": constants}[word][name] = int(rest[0])
    first = dict(reversed(overloads))
    compare(first, CSHARP_TYPES, DESCRIPTION.functions)
    compare({**first, **dict(overloads)}, CSHARP_TYPES, DESCRIPTION.functions)
    assert sizes == {structure.name: size_of(structure) for structure in DESCRIPTION.structures}
    assert constants == {name: value for name, value in DESCRIPTION.constants.items()
                         if name not in ("TRUE", "FALSE")}
    if FIRST:
        check_example(folder, "mono", folder / "Blur.exe")
    check_csharp_resolver(folder, declarations)


def csharp_signatures(folder):
    """The program that lists what is declared, for this library."""
    text = (SOURCE / "tests/bindings/Signatures.cs").read_text()
    types = ", ".join(f"typeof({structure.name})" for structure in DESCRIPTION.structures)
    text = re.sub(r"new\[\] \{.*?\}", f"new[] {{ {types} }}", text, flags=re.DOTALL)
    text = text.replace("typeof(Kirvo)", f"typeof({UNIT})").replace("KirvoStatus", f"{UNIT}Status")
    path = folder / "Signatures.cs"
    path.write_text(text)
    return path


def check_csharp_resolver(folder, declarations):
    """What only later .NET compiles has no error: stand-ins take the place of its classes."""
    standins = folder / "Net5.cs"
    standins.write_text("""
        namespace System {
            static class OperatingSystem { public static bool IsWindows() { return false; } }
        }
        namespace System.Runtime.InteropServices {
            delegate IntPtr DllImportResolver(string name, Reflection.Assembly assembly,
                DllImportSearchPath? path);
            static class NativeLibrary {
                public static void SetDllImportResolver(Reflection.Assembly assembly,
                    DllImportResolver resolver) {}
                public static IntPtr Load(string name, Reflection.Assembly assembly,
                    DllImportSearchPath? path) { return IntPtr.Zero; }
            }
        }""")
    run("mcs", "-target:library", "-define:NET5_0_OR_GREATER", f"-out:{folder}/Net5.dll", standins,
        *declarations)


# Free Pascal

PASCAL_TYPES = {
    "LongInt": {"int32_t"}, "LongWord": {"uint32_t"}, "Word": {"uint16_t"}, "Double": {"double"},
    "LongBool": {"BOOL"}, "HGLOBAL": {"HGLOBAL"}, "HWND": {"HWND"}, "HPALETTE": {"HPALETTE"},
    "THandle": {"HGDIOBJ"}, "Pointer": {"LPVOID", "const void*"}, "PAnsiChar": {"LPCSTR"},
    "KirvoUIntPtr": WORDS, "TKirvoFile": {"KirvoFile"}, "PWideChar": {"const KirvoWide*"},
}
PASCAL_TYPES["PAnsiChar"] |= {"const char*"}
PASCAL_POINTERS = {
    "PInteger": {"int32_t"}, "PKirvoLongWord": {"uint32_t"}, "PSmallInt": {"int16_t"},
    "PWord": {"uint16_t"}, "PByte": {"uint8_t"}, "PKirvoHandle": {"HGLOBAL"}, "Pointer": {"void"},
    "PPALETTEENTRY": {"PALETTEENTRY"}, "PKirvoWindowHost": {"KirvoWindowHost"}, "PAnsiChar": {"char"}, "PKirvoFile": {"KirvoFile"},
    "PKirvoFilesOpenOptions": {"KirvoFilesOpenOptions"},
    "PKirvoFilesSaveOptions": {"KirvoFilesSaveOptions"},
}
PASCAL_CONVENTION = "{$IFDEF MSWINDOWS} stdcall; {$ELSE} cdecl; {$ENDIF}"


def pascal_parameters(text, parameters):
    """Words and addresses, one for each name."""
    found = []
    for part in filter(None, re.split(r";\s*", text)):
        names, kind = part.split(": ")
        way = re.match("(?:(out|const|var) )?", names)[1]
        found += [(kind, {"out": "out", "const": "in", "var": "any", None: None}[way])] * len(names.split(","))
    return [(kind, "any") if way is None and given.way else (kind, way)
            for (kind, way), given in zip(found, parameters, strict=True)]


def pascal_functions(text):
    described = {function.name: function for function in DESCRIPTION.functions}
    for word, name, parameters, result, convention, exported in re.findall(
            r"^(function|procedure) (\w+)(?:\(([^)]*)\))?(?:: (\w+))?;\s*"
            r"(\S.*?) external (?:Kirvo|KirvoFiles)Library name '(\w+)';", text, re.MULTILINE):
        function = described[name]
        assert exported == name and (word == "function") == bool(result), name
        assert convention == (PASCAL_CONVENTION if function.home == UNIT else "cdecl;"), name
        yield name, (result or None, pascal_parameters(parameters, function.parameters))


def names_program(functions, sizes, numbers):
    """Finds each function in the library and prints sizes and numbers."""
    return "\n".join([
        "program Names;", f"uses {UNIT};", "var address: Pointer;", "begin",
        *(f"  address := @{function.name}; if address = nil then Halt(1);" for function in functions),
        *(f"  WriteLn('{name} ', SizeOf(T{name}));" for name in sizes),
        *(f"  WriteLn('{name} ', {name});" for name in numbers), "end.", ""])


def check_pascal(folder):
    compiler, suffix = ["fpc", f"-Fl{LIBRARY.parent}"], ""
    if WINDOWS:
        compiler, suffix = [SOURCE / "script/fpc", BITS], ".exe"
        shutil.copy(LIBRARY, folder)
        shutil.copy(FILES_LIBRARY, folder)
    else:
        need("fpc", "fp-compiler")
    text = (BINDINGS / f"pascal/{UNIT}.pas").read_text()
    compare(dict(pascal_functions(text)),
            {word: PASCAL_TYPES.get(word, set()) | PASCAL_POINTERS.get(word, set())
             for word in PASCAL_TYPES | PASCAL_POINTERS} |
            {f"T{structure.name}": {structure.name} for structure in DESCRIPTION.structures},
            DESCRIPTION.functions)
    own = [group for group in DESCRIPTION.groups if not WINDOWS or group.name != "platform"]
    functions = [function for group in own for function in group.functions]
    sizes = {structure.name: size_of(structure) for group in own for structure in group.structures}
    numbers = {name: value for group in own for names in (group.constants, *group.enums.values())
               for name, value in names.items() if name not in ("TRUE", "FALSE")}
    names = folder / "Names.pas"
    names.write_text(names_program(functions, sizes, numbers))
    for program in (names, BINDINGS / "pascal/Blur.dpr"):
        run(*compiler, "-vew", "-Sew", f"-FE{folder}", f"-Fu{BINDINGS}/pascal", program)
    printed = dict(line.split() for line in run(folder / f"Names{suffix}").splitlines())
    assert printed == {name: str(value) for name, value in (sizes | numbers).items()}
    if FIRST:
        check_example(folder, folder / f"Blur{suffix}")


# Visual Basic: there is no compiler here, so its syntax is checked by what follows.

BASIC_TYPES = {
    "Long": {"int32_t", "uint32_t", "BOOL"}, "Integer": {"int16_t", "uint16_t"},
    "Byte": {"uint8_t", "char"}, "Double": {"double"}, "String": {"LPCSTR", "const char*"},
    "Any": {"void"},
}
BASIC_RESERVED = set("""
    abs addressof and any array as attribute boolean byref byte byval call case cbool cbyte ccur
    cdate cdbl cdec cint circle clng clnglng clngptr close const csng cstr currency cvar cverr date
    debug declare decimal defbool defbyte defcur defdate defdbl defdec defint deflng defobj defsng
    defstr defvar dim do doevents double each else elseif empty end endif enum eqv erase error event
    exit false fix for friend function get global gosub goto if imp implements in input inputb int
    integer is lbound len lenb let like lock long longlong longptr loop lset me mod new next not
    nothing null object on open option optional or paramarray preserve print private pset public put
    raiseevent redim rem resume return rset scale seek select set sgn shared single spc static stop
    string sub tab then to true type typeof ubound unlock until variant wend while with withevents
    write xor""".split())
BASIC_BLOCKS = {"Sub": "End Sub", "Function": "End Function", "If": "End If", "Property": "End Property",
                "Select": "End Select", "Enum": "End Enum", "Type": "End Type"}


def check_basic_blocks(lines):
    """Blocks end in the order in which they began, and nothing else stands outside procedures."""
    stack = []
    outside = r"Attribute |Option Explicit$|(Public|Private) (Declare |Const |Enum |Type |\w+ As )"
    for line in lines:
        match = re.match(r"(?:(?:Public|Private) )?(Sub|Function|If|Select|Enum|Type|Property)\b(?!.* Lib )",
                         line)
        if match and (match[1] != "If" or line.endswith(" Then")):
            assert not stack or match[1] in ("If", "Select"), line
            stack.append(BASIC_BLOCKS[match[1]])
        elif line.startswith("End "):
            assert stack and stack.pop() == line, line
        else:
            assert stack or re.match(outside, line), f"outside a procedure: {line}"
    assert not stack, stack


def basic_parameter(text):
    way, name, kind = re.fullmatch(r"(ByVal|ByRef) (\w+) As (\w+)", text).groups()
    assert name.lower() not in BASIC_RESERVED and name[0].isalpha(), name
    return ("any" if kind == "Any" else kind, "any") if way == "ByRef" else (kind, None)


def basic_functions(lines, safe):
    libraries = {function.name: function.home for function in DESCRIPTION.functions}
    for line in lines:
        if not line.startswith("Public Declare "):
            continue
        attribute, word, name, library, parameters, result = re.fullmatch(
            r'Public Declare (PtrSafe )?(Function|Sub) (\w+) Lib "([\w.]+)" \((.*)\)(?: As (\w+))?',
            line).groups()
        assert bool(attribute) == safe and (word == "Function") == bool(result), line
        assert library.removesuffix(".dll") == libraries[name], line
        yield name, (result, [basic_parameter(part)
                              for part in filter(None, parameters.split(", "))])


def check_basic(folder):
    functions = [function for function in DESCRIPTION.functions if function.home]
    module, form = BINDINGS / f"vb/{UNIT}.bas", BINDINGS / "vb/BlurForm.frm"
    for safe, wide in ((True, True), (True, False), (False, False)):
        lines = list(basic_lines(module, {"VBA7": safe, "Win64": wide}))
        check_basic_blocks(lines)
        pointer = "LongPtr" if safe else "Long"
        types = {**BASIC_TYPES,
                 pointer: BASIC_TYPES.get(pointer, set()) | HANDLES | WORDS | {"const KirvoWide*"}}
        declared = list(basic_functions(lines, safe))
        assert len(declared) == len(functions)
        compare(dict(declared), types, functions)
        assert safe or not any("LongPtr" in line or "PtrSafe" in line for line in lines)
        names = [match[1].lower() for line in lines if (match := re.match(
            r"(?:Public|Private) (?:Declare )?(?:PtrSafe )?(?:Function |Sub |Const |Enum |Type )?(\w+)",
            line))]
        names += [line.split(" = ")[0].lower() for line in lines if re.match(r"KIRVO_\w+ = ", line)]
        twice = {name for name in names if names.count(name) > 1}
        assert not twice, f"named twice: {twice}"
        check_basic_numbers(lines)
    if not FIRST:
        return
    check_basic_class(functions)
    code = [line for line in basic_lines(form, {})
            if not re.match(r"VERSION|Begin|End$|\w+ +=", line)]
    check_basic_blocks(code)
    for line in code:
        for name, given in re.findall(r"\b((?:Jpg|Dib)\w+)\(?(.*?)\)?$", line):
            arity = next(len(function.parameters) for function in functions if function.name == name)
            assert given.count(",") + 1 == arity, line


def given_to(line, name):
    """The arguments of a call, by the commas between its parentheses."""
    rest = re.split(rf"{name}\b", line, maxsplit=1)[1]
    depth, found, inside = 0, [""], rest.lstrip()
    called = inside.startswith("(")
    for sign in inside:
        depth += (sign == "(") - (sign == ")")
        if called and depth == 0:
            break
        if sign == "," and depth == called:
            found.append("")
        else:
            found[-1] += sign
    return [text for text in found if text.strip("( ")]


def check_basic_class(functions):
    """The object layer: blocks, names, and every call of a function with as many arguments as it has."""
    arity = {function.name: len(function.parameters) for function in functions}
    for safe, wide in ((True, True), (True, False), (False, False)):
        lines = [line for line in basic_lines(BINDINGS / "vb/KirvoImage.cls", {"VBA7": safe, "Win64": wide})
                 if not re.match(r"VERSION|BEGIN|END$|MultiUse", line)]
        check_basic_blocks(lines)
        assert safe or not any("LongPtr" in line or "PtrSafe" in line for line in lines)
        called = set()
        for line in lines:
            for name in set(re.findall(r"\b\w+\b", re.sub('"[^"]*"', '""', line))) & set(arity):
                assert len(given_to(line, rf"\b{name}")) == arity[name] or " Lib " in line, line
                called.add(name)
            if match := re.match(r"(?:Public|Private) (?:Sub|Function) \w+\((.*)\)", line):
                for part in filter(None, match[1].split(", ")):
                    name = re.match(r"(?:Optional )?By(?:Val|Ref) (\w+)(?:\(\))? As ", part)[1]
                    assert name.lower() not in BASIC_RESERVED, line
        assert len(called) > 50
        names = re.findall(r"^(?:Public|Private) (?:Sub|Function|Property Get) (\w+)", "\n".join(lines),
                           re.MULTILINE)
        assert len(names) == len({name.lower() for name in names}), "named twice"
        check_basic_example(lines)


def check_basic_example(lines):
    """The example's form calls methods that the class has, with arguments that they take."""
    methods = {match[1]: match[2].split(", ") for line in lines if (match := re.match(
        r"Public (?:Sub|Function|Property Get) (\w+)\((.*)\)", line))}
    code = [line for line in basic_lines(BINDINGS / "vb/PhotoForm.frm", {})
            if not re.match(r"VERSION|Begin|End$|\w+ +=", line)]
    check_basic_blocks(code)
    for line in code:
        for name in re.findall(r"\b(?:photo|part|small)\.(\w+)", line) + re.findall(r"\)\.(\w+)", line):
            if name == "Listener":
                continue
            needed = [part for part in methods[name] if part and not part.startswith("Optional")]
            found = given_to(line, rf"\.{name}") if needed else []
            assert len(needed) <= len(found) <= len(methods[name]), line


def check_basic_numbers(lines):
    text = "\n".join(lines)
    numbers = {name: int(value, 16) for name, value in
               re.findall(r"^Public Const (\w+) As Long = &H(\w+)&$", text, re.MULTILINE)}
    numbers |= {name: int(value) for name, value in
                re.findall(r"^(KIRVO_\w+) = (-?\d+)$", text, re.MULTILINE)}
    assert numbers == {name: value for name, value in DESCRIPTION.constants.items()
                       if name not in ("TRUE", "FALSE")}
    sizes = {"Long": 4, "Integer": 2, "Byte": 1, "Double": 8}
    for structure in DESCRIPTION.structures:
        if not structure.is_table:
            body = re.search(rf"^Public Type {structure.name}\n(.*?)\nEnd Type", text,
                             re.MULTILINE | re.DOTALL)[1]
            fields = [line.split(" As ") for line in body.splitlines()]
            assert [(name, sizes[kind]) for name, kind in fields] == \
                [(field.name, SIZES[field.c]) for field in structure.fields], structure.name


with tempfile.TemporaryDirectory() as made_for_this:
    globals()[f"check_{sys.argv[1]}"](pathlib.Path(made_for_this))
