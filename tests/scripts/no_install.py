#!/usr/bin/env python3
"""Where nothing is installed, every script given --no-install names what is missing, asks apt for nothing,
and fails.

Works on a copy of the scripts, with stand-ins for the programs that ask for packages, install and build.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "script"
# What each is given, and packages that it cannot do without.
GIVEN = {
    "agreement": ([], "g++-mingw-w64-i686-win32"), "mutants": ([], "libstb-dev"),
    "bench": ([], "libbenchmark-dev"), "coverage": ([], "gcovr"), "demo": ([], "cmake"), "docs": ([], "doxygen"),
    "format": (["--check"], "clang-format-14"), "fpc": (["32", "--prepare"], "fpc-source"), "fuzz": (["1"], "clang"),
    "package": ([], "debhelper"), "screenshots": ([], "xdotool"), "sign": (["key"], "minisign"), "soak": ([], "valgrind"),
    "test": (["format"], "clang-format-14"), "wine": (["64", "--prepare"], "xvfb"),
}
STANDIN = """#!/bin/sh
echo "$(basename $0) $*" >>"$KIRVO_CALLED"
exit 1
"""


def check(script, folder):
    arguments, package = GIVEN[script]
    called = folder / "called"
    called.touch()
    environment = {**os.environ, "PATH": f"{folder}/bin:{os.environ['PATH']}", "KIRVO_CALLED": str(called),
                   "KIRVO_CACHE": str(folder / "cache")}
    environment.pop("DISPLAY", None)
    done = subprocess.run([folder / "script" / script, *arguments, "--no-install"], cwd=folder, text=True,
                          env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT)
    assert done.returncode != 0, f"{script} answers success:\n{done.stdout}"
    named = [line for line in done.stdout.splitlines() if "packages of Debian 12 are missing" in line]
    assert named and package in named[0].split(), f"{script} does not name {package}:\n{done.stdout}"
    asked = [line for line in called.read_text().splitlines() if line.startswith(("apt-get", "sudo", "debootstrap"))]
    assert not asked, f"{script} installs: {asked}"


uses_apt = {path.name for path in SCRIPTS.iterdir()
            if path.name != "common.sh" and 'common.sh"' in path.read_text(errors="replace")}
assert uses_apt == set(GIVEN), f"not known here: {uses_apt ^ set(GIVEN)}"
for script in sorted(GIVEN):
    with tempfile.TemporaryDirectory() as made:
        made = pathlib.Path(made)
        shutil.copytree(SCRIPTS, made / "script")
        (made / "build/packages").mkdir(parents=True)
        (made / "bin").mkdir()
        for program in ("dpkg-query", "apt-get", "sudo", "debootstrap", "cmake", "ctest", "cpack", "doxygen"):
            standin = made / "bin" / program
            standin.write_text(STANDIN)
            standin.chmod(0o755)
        check(script, made)
        print(script)
