#!/usr/bin/env python3
"""Hostile and odd files by the classes of each language: layers.py LANGUAGE build/<preset>/interface.json FOLDER

Each opens them one after the other in one process and makes a negative, or raises an error that says
why not: the same of each file as the second library itself. A language without a compiler here is
skipped (exit code 77).
"""

import ctypes
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(SOURCE / "tests/support")]
sys.dont_write_bytecode = True
from built import FILES_LIBRARY, LIBRARY, need, run

HERE = SOURCE / "tests/world"
FOLDER = LIBRARY.parent
FILES = sorted(pathlib.Path(sys.argv[3]).iterdir())
SECONDS = 60  # for all of them; they take one or two


def cpp(folder):
    run("c++", "-std=c++17", f"-I{SOURCE}/include", HERE / "loader.cpp", f"-L{FOLDER}", "-lkirvofiles", "-lkirvo",
        "-o", folder / "loader")
    return [folder / "loader"]


def csharp(folder):
    need("mcs", "mono-mcs")
    need("mono", "mono-runtime")
    run("mcs", f"-out:{folder}/loader.exe", HERE / "Loader.cs",
        *(SOURCE / "bindings/csharp" / name for name in ("Kirvo.cs", "KirvoImage.cs")))
    shutil.copy(SOURCE / "bindings/csharp/Kirvo.dll.config", folder / "loader.exe.config")
    return ["mono", folder / "loader.exe"]


def pascal(folder):
    need("fpc", "fp-compiler")
    run("fpc", f"-Fl{FOLDER}", f"-FE{folder}", f"-Fu{SOURCE}/bindings/pascal", HERE / "Loader.dpr")
    return [folder / "Loader"]


def python(folder):
    os.environ["PYTHONPATH"] = str(SOURCE / "bindings/python/src")
    return [sys.executable, HERE / "loader.py"]


def expected():
    """What the second library answers to each file: its size, or None."""
    library = ctypes.CDLL(str(LIBRARY), mode=ctypes.RTLD_GLOBAL)
    files = ctypes.CDLL(str(FILES_LIBRARY))
    library.GlobalFree.argtypes = library.GlobalLock.argtypes = library.GlobalUnlock.argtypes = [ctypes.c_void_p]
    library.GlobalLock.restype = ctypes.c_void_p
    files.KirvoFilesClose.argtypes = [ctypes.c_void_p]
    answers = {}
    for path in FILES:
        dib, known = ctypes.c_void_p(), ctypes.c_void_p()
        status = files.KirvoFilesOpen(str(path).encode(), None, ctypes.byref(dib), ctypes.byref(known))
        answers[str(path)] = None
        if status == 0:
            header = (ctypes.c_int32 * 3).from_address(library.GlobalLock(dib))
            answers[str(path)] = f"{header[1]} {header[2]}"
            library.GlobalUnlock(dib)
            library.GlobalFree(dib)
        files.KirvoFilesClose(known)
    return answers


def check_opened(make):
    with tempfile.TemporaryDirectory() as made_for_this:
        program = make(pathlib.Path(made_for_this))
        environment = {**os.environ, "LD_LIBRARY_PATH": str(FOLDER), "KIRVO_LIBRARY": str(LIBRARY),
                       "KIRVO_FILES_LIBRARY": str(FILES_LIBRARY)}
        began = time.monotonic()
        result = subprocess.run(list(map(str, program)), input="".join(f"{path}\n" for path in FILES), text=True,
                                env=environment, stdout=subprocess.PIPE, timeout=SECONDS, check=True)
        print(f"{len(FILES)} files in {time.monotonic() - began:.1f} s")
    answers = dict(line.split("\t", 1) for line in result.stdout.splitlines())
    assert len(answers) == len(FILES), f"{len(answers)} answers"
    opened = 0
    for name, size in expected().items():
        if size is not None:
            opened += 1
            assert answers[name] == size, f"{name}: {answers[name]}, not {size}"
        else:
            assert re.search(r"[a-z]{2}.* .*[a-z]{2}", answers[name]), f"{name}: {answers[name]}"
    assert opened > 100, f"{opened} opened"


def check_vb():
    """Nothing here compiles Visual Basic: that its class looks at the status of every file is read."""
    source = (SOURCE / "bindings/vb/KirvoImage.cls").read_text()
    bodies = re.findall(r"^(?:Public|Private) (?:Sub|Function) .*?^End (?:Sub|Function)", source, re.M | re.S)
    calls = [body for body in bodies if re.search(r"KirvoFiles(?:Open|Save)W\(", body)]
    assert len(calls) >= 2, calls
    for body in calls:
        assert re.search(r"status = KirvoFiles\w+W\(.*CheckFile status, known", body, re.S), body
    assert "If known <> 0 Then KirvoFilesClose known" in source
    assert "If status <> 0 Then Err.Raise" in source


if sys.argv[1] == "vb":
    check_vb()
else:
    check_opened({"cpp": cpp, "csharp": csharp, "pascal": pascal, "python": python}[sys.argv[1]])
