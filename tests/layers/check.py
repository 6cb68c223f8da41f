#!/usr/bin/env python3
"""The object layers: check.py CHECK build/<preset>/interface.json

A check whose compiler is missing is skipped (exit code 77).
"""
import os
import pathlib
import re
import shutil
import sys
import tempfile

SOURCE = pathlib.Path(__file__).parents[2]
sys.path[:0] = [str(SOURCE / "interface"), str(SOURCE / "tests/support")]
sys.dont_write_bytecode = True
from built import CONFIG, LIBRARY, WINDOWS, need, run
from description import Description
from header import Header
from layers import Layers
from photo import check_photo

FOLDER = LIBRARY.parent


def joined(name, first=str.capitalize):
    """A method's name in capitals: rotate_90 is Rotate90."""
    head, *rest = name.split("_")
    return first(head) + "".join(map(str.capitalize, rest))


# Where each layer lies, and how it begins a method.
LAYERS = {
    "include/kirvo.hpp": lambda name: rf"^    (?:template.*|static )?[\w:<>& ]+? ?&?{name}\(",
    "bindings/python/src/kirvo/_image.py": lambda name: rf"^    def {name}\(",
    "bindings/csharp/KirvoImage.cs": lambda name: rf"^ +public (?:static )?[\w\[\]]+ {joined(name)}\(",
    "bindings/pascal/KirvoImages.pas":
        lambda name: rf"^    (?:class )?(?:function|procedure) {joined(name)}\b",
    "bindings/javascript/image.js": lambda name: rf"^    (?:static )?{joined(name, str)}\(",
    "bindings/vb/KirvoImage.cls": lambda name: rf"^Public (?:Function|Sub) {joined(name)}\(",
}


def check_effects(folder):
    """Every effect of the description is reached by a method in every layer."""
    layers = Layers(Description(), Header()) # which fails where a function has no method
    missing = []
    for path, begins in LAYERS.items():
        text = (SOURCE / path).read_text(encoding="utf-8").replace("\r\n", "\n")
        for name in layers.names:
            if not re.search(begins(name), text, re.MULTILINE):
                missing.append(f"{path}: no {name}")
        for function in layers.covered - {one for names in layers.same.values() for one in names}:
            if not re.search(rf"\b{function}\b", text):
                missing.append(f"{path}: {function} is not called")
    typed = (SOURCE / "tests/layers/typed.py").read_text() # which calls each of them
    missing += [f"typed.py: no {name}" for name in layers.names if f".{name}(" not in typed]
    assert not missing, "\n".join(missing)


# How each layer begins and ends the body of a method, and how it writes a list of depths.
BODIES = {
    "include/kirvo.hpp": (r"^    (?:template.*|static )?[\w:<>& ]+? ?&?{}\(", r"^    }}", r"\{(\d+(?:, \d+)*)\}"),
    "bindings/python/src/kirvo/_image.py": (r"^    def {}\(", r"^\s*$", r"\((\d+,(?: \d+,?)*)\)"),
    "bindings/csharp/KirvoImage.cs": (r"^ +public (?:static )?[\w\[\]]+ {}\(", r"^        }}",
                                      r"new\[\] \{ (\d+(?:, \d+)*) \}"),
    "bindings/pascal/KirvoImages.pas": (r"^(?:class )?(?:function|procedure) TKirvoImage\.{}\b", r"^end;",
                                        r"\[(\d+(?:, \d+)*)\]"),
    "bindings/javascript/image.js": (r"^    (?:static )?{}\(", r"^    }}", r"\[(\d+(?:, \d+)*)\]"),
    "bindings/vb/KirvoImage.cls": (r"^Public (?:Function|Sub) {}\(", r"^End ", r'"(\d+(?: \d+)*)"'),
}
SPELLED = {"include/kirvo.hpp": lambda name: name, "bindings/python/src/kirvo/_image.py": lambda name: name,
           "bindings/javascript/image.js": lambda name: joined(name, str)}


def documented_depths():
    """Of each function of kirvo.h that says which images it takes."""
    text = (SOURCE / "include/kirvo.h").read_text()
    found = {}
    for comment, name in re.findall(r"/\*\*((?:(?!\*/).)*)\*/\s*KIRVO_API [^(;]*?(\w+)\(", text, re.DOTALL):
        said = re.search(r"@param dib packed DIB of ([\d, or\n*]+?)\s+bits", comment)
        if said:
            found[name] = [int(number) for number in re.findall(r"\d+", said[1])]
    return found


def check_depths(folder):
    """Each method takes the depths that kirvo.h documents of its function, and makes others 24 bits first."""
    documented, wrong, compared = documented_depths(), [], 0
    for path, (begins, ends, depths) in BODIES.items():
        text = (SOURCE / path).read_text(encoding="utf-8").replace("\r\n", "\n")
        for name in Layers(Description(), Header()).names:
            begin = re.search(begins.format(SPELLED.get(path, joined)(name)), text, re.MULTILINE)
            body = re.split(ends.format(), text[begin.start():], maxsplit=1, flags=re.MULTILINE)[0]
            called = {word for word in re.findall(r"\w+", body) if word in documented}
            if len(called) != 1:
                continue
            # The library resizes palettes by the nearest pixel only: they have no average.
            expected = [16, 24, 32] if name == "resize" else documented[called.pop()]
            for given in re.findall(depths, body):
                numbers = [int(number) for number in re.findall(r"\d+", given)]
                if max(numbers) < 20:
                    continue  # an index
                compared += 1
                if numbers != expected:
                    wrong.append(f"{path}: {name}: {given}, not {expected}")
    assert not wrong, "\n".join(wrong)
    assert compared > 150, compared
    print(f"{compared} lists of depths")


# Where the example of each language begins and ends its task.
TASKS = {
    "examples/photo.cpp": (r"    try {\n", r"    } catch"),
    "bindings/python/photo.py": (r"^def make_ready.*\n", r"^\n"),
    "bindings/csharp/Photo.cs": (r"    static void MakeReady.*\n", r"^    }\n"),
    "bindings/pascal/Photo.lpr": (r"^  Picture: TPicture;\nbegin\n", r"^end;"),
    "bindings/vb/PhotoForm.frm": (r"^Private Sub MakeReady.*\n", r"^End Sub"),
}


def check_lines(folder):
    """The task of the examples takes at most 12 lines in each language, without lines of a bracket alone."""
    for path, (begin, end) in TASKS.items():
        text = (SOURCE / path).read_text(encoding="utf-8").replace("\r\n", "\n")
        body = re.split(end, re.split(begin, text, maxsplit=1, flags=re.M)[1], maxsplit=1, flags=re.M)[0]
        lines = [line for line in body.splitlines() if line.strip(" {}")]
        print(f"{path}: {len(lines)} lines")
        assert 5 <= len(lines) <= 12, "\n".join(lines)


def check_every_effect(folder, language, *command):
    """What a program in a language makes of every effect is what the package for Python makes."""
    place = folder / language
    place.mkdir()
    run("/usr/bin/python3", SOURCE / "tests/layers/effects.py", language, place)
    for each in command:
        run(*each(place), folder=place)
    expected = sorted((place / "expected").iterdir())
    assert len(expected) > 300, len(expected)
    wrong = [path.name for path in expected if (place / path.name).read_bytes() != path.read_bytes()]
    program = next(place.glob("[Ee]very.[cd]*")).read_text().splitlines()
    assert not wrong, "\n".join(line for line in program for name in wrong if f"{name!r})" in line.replace('"', "'"))


def check_cpp(folder):
    """kirvo.hpp by every compiler that is there, at two standards."""
    compilers, flags = [CONFIG["cpp_compiler"]], []
    if CONFIG["sanitized"] == "1": # the library's compiler alone has its runtime
        flags = ["-fsanitize=address,undefined", "-fno-sanitize-recover=all"]
    elif not WINDOWS:
        need("clang++", "clang")
        compilers.append("clang++")
    libraries = ["-lKirvoFiles", "-lKirvo", "-static"] if WINDOWS else ["-lkirvofiles", "-lkirvo", "-pthread"]
    if WINDOWS:
        for dll in FOLDER.glob("*.dll"):
            shutil.copy(dll, folder)
    for compiler in compilers:
        for standard in ("c++17", "c++20"):
            program = folder / ("layer.exe" if WINDOWS else "layer")
            run(compiler, f"-std={standard}", *flags, "-Wall", "-Wextra", "-Wconversion", "-Wshadow", "-pedantic", "-Werror",
                f"-I{SOURCE}/include", SOURCE / "tests/layers/cpp.cpp", f"-L{FOLDER}", *libraries,
                "-o", program)
            print(compiler, standard, run(program, folder))
    if not WINDOWS and CONFIG["sanitized"] != "1":
        check_every_effect(folder, "cpp", lambda place: (
            CONFIG["cpp_compiler"], "-std=c++17", f"-I{SOURCE}/include", place / "every.cpp", f"-L{FOLDER}",
            *libraries, "-o", place / "every"), lambda place: (place / "every",))


def check_python(folder):
    """The package from its source, with the libraries just built."""
    os.environ["PYTHONPATH"] = str(SOURCE / "bindings/python/src")
    run("/usr/bin/python3", SOURCE / "tests/layers/python_layer.py", SOURCE / "bindings/python")


def check_basic(folder):
    """The class for Visual Basic, which a program in Python runs."""
    run("/usr/bin/python3", SOURCE / "tests/layers/basic_layer.py")


def check_csharp(folder):
    """The classes from their source; what they promise, and the example."""
    need("mcs", "mono-mcs")
    need("mono", "mono-runtime")
    csharp = SOURCE / "bindings/csharp"
    for source in (SOURCE / "tests/layers/CSharpLayer.cs", csharp / "Photo.cs"):
        program = folder / f"{source.stem}.exe"
        run("mcs", "-warn:4", "-warnaserror", "-r:System.Drawing", f"-out:{program}", f"-doc:{folder}/doc.xml",
            source, *(csharp / name for name in ("Kirvo.cs", "KirvoImage.cs", "KirvoBitmap.cs")))
        shutil.copy(csharp / "Kirvo.dll.config", f"{program}.config")
    run("mono", folder / "CSharpLayer.exe", folder)
    check_every_effect(folder, "csharp", lambda place: (
        "mcs", f"-out:{place}/Every.exe", place / "Every.cs", csharp / "Kirvo.cs", csharp / "KirvoImage.cs"),
        lambda place: ("cp", csharp / "Kirvo.dll.config", place / "Every.exe.config"),
        lambda place: ("mono", "Every.exe"))
    check_photo(run, folder, "mono", folder / "Photo.exe")
    sources = [csharp / f"{name}.cs" for name in ("Kirvo", "KirvoFiles", "KirvoImage", "KirvoBitmap")]
    run("mcs", "-langversion:4", "-warnaserror", "-target:library", "-r:System.Drawing",
        f"-out:{folder}/oldest.dll", *sources)
    # Later .NET does not run here: what it compiles does, on stand-ins.
    later = folder / "LaterDotNet.exe"
    run("mcs", "-define:NET5_0_OR_GREATER", "-nowarn:0436", "-warnaserror", f"-out:{later}",
        SOURCE / "tests/layers/LaterDotNet.cs", *sources)
    shutil.copy(csharp / "Kirvo.dll.config", f"{later}.config")
    for first in ("image", "files", "flat"):
        run("mono", later, first)


def check_pascal(folder):
    """The classes by Free Pascal; what they promise, and Lazarus' package and example."""
    need("fpc", "fp-compiler")
    pascal = SOURCE / "bindings/pascal"
    run("fpc", f"-Fl{FOLDER}", f"-FE{folder}", f"-Fu{pascal}", SOURCE / "tests/layers/PascalLayer.dpr")
    run(folder / "PascalLayer", folder)
    check_every_effect(folder, "pascal", lambda place: (
        "fpc", f"-Fl{FOLDER}", f"-FE{place}", f"-Fu{pascal}", place / "Every.dpr"), lambda place: (place / "Every",))
    need("lazbuild", "lcl-utils")
    need("Xvfb", "xvfb")
    project = folder / "project"
    shutil.copytree(pascal, project)
    os.environ["KIRVO_LIBRARIES"] = str(FOLDER) # for the linker
    lazarus = ["lazbuild", f"--primary-config-path={folder}/lazarus", "--quiet"]
    run(*lazarus, "--widgetset=gtk2", "--add-package-link", project / "kirvo_lazarus.lpk")
    run(*lazarus, "--widgetset=gtk2", project / "photo.lpi")
    check_photo(run, folder, "xvfb-run", "-a", project / "photo")


with tempfile.TemporaryDirectory() as made_for_this:
    globals()[f"check_{sys.argv[1]}"](pathlib.Path(made_for_this))
