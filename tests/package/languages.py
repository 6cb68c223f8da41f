#!/usr/bin/env python3
"""Uses what build/packages holds beside zips and .deb, as its users would: languages.py CHECK FOLDER"""
import hashlib
import json
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tarfile
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
import version

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = ROOT / "build/packages"
CHECK = sys.argv[1]
WORK = pathlib.Path(sys.argv[2]).resolve() / CHECK
# No library but the package's own.
ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("KIRVO_LIBRARY", "LD_LIBRARY_PATH", "PYTHONPATH")}


def run(*command, code=0, **options):
    done = subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, **{"cwd": WORK, "env": ENVIRONMENT, **options})
    assert done.returncode == code, f"{command}: exit code {done.returncode}\n{done.stdout}"
    return done.stdout


def the(pattern):
    found = list(PACKAGES.glob(pattern))
    assert len(found) == 1, f"{pattern}: {found}"
    return found[0]


def check_wheel():
    """Installed in an environment of its own, the package keeps its promises."""
    wheel = the("kirvo-*-manylinux_*_x86_64.whl")
    run("/usr/bin/python3", "-m", "venv", "--system-site-packages", WORK / "venv")
    run(WORK / "venv/bin/pip", "install", "--no-index", "--disable-pip-version-check", wheel)
    python = WORK / "venv/bin/python"
    run(python, "-B", ROOT / "tests/layers/python_layer.py", ROOT / "bindings/python")
    assert run(python, "-c", "import kirvo; print(kirvo.__version__)").strip() == version.TEXT
    # The tag is honest: no library inside asks for a newer C library.
    promised = tuple(map(int, re.search(r"manylinux_(\d+)_(\d+)_", wheel.name).groups()))
    with zipfile.ZipFile(wheel) as archive:
        archive.extractall(WORK / "content")
    for library in (WORK / "content/kirvo").glob("*.so*"):
        asked = re.findall(r"GLIBC_(\d+)\.(\d+)", run("objdump", "-T", library))
        assert all(tuple(map(int, one)) <= promised for one in asked), library
    for name, dll in (("win32", 0x14C), ("win_amd64", 0x8664)):
        with zipfile.ZipFile(the(f"kirvo-*-{name}.whl")) as archive:
            for library in ("Kirvo.dll", "KirvoFiles.dll"):
                data = archive.read(f"kirvo/{library}")
                header = int.from_bytes(data[0x3C:0x40], "little")
                assert int.from_bytes(data[header + 4:header + 6], "little") == dll, library


def check_npm():
    """Unpacked as npm does, the package works by its name, and what it has inside keeps its promises."""
    package = WORK / "node_modules/kirvo-wasm"
    with tarfile.open(the(f"kirvo-wasm-{version.TEXT}.tgz")) as archive:
        archive.extractall(WORK)
    package.parent.mkdir()
    (WORK / "package").rename(package)
    described = json.loads((package / "package.json").read_text())
    for name in described["files"] + ["README.md", "LICENSE"]:
        assert (package / name).stat().st_size, name
    assert (package / "kirvo.wasm").stat().st_size < 400 * 1024
    (WORK / "use.mjs").write_text("""
        import { flat, Image } from "kirvo-wasm";
        import * as embedded from "kirvo-wasm/embedded";
        console.log(flat.GetVerKirvoDll(), embedded.Image.solid(2, 2, 7).negative().getPixel(1, 1));""")
    assert run("node", "use.mjs").split() == [str(version.NUMBER), str(0xFFFFFF - 7)]
    run("node", "--expose-gc", ROOT / "tests/javascript/layer_test.mjs",
        env={**ENVIRONMENT, "KIRVO_PACKAGE": str(package)})


def check_nupkg():
    """Debian's nuget installs it, mono compiles against it and runs with its libraries."""
    run("nuget", "install", "Kirvo", "-Source", PACKAGES, "-OutputDirectory", WORK / "packages",
        env={**ENVIRONMENT, "HOME": str(WORK)})
    package = WORK / f"packages/Kirvo.{version.TEXT}"
    assembly, runtime = package / "lib/net45/KirvoImaging.dll", package / "runtimes/linux-x64/native"
    for path in ("lib/net45/KirvoImaging.xml", "build/net45/Kirvo.targets",
                 "contentFiles/cs/net5.0/Kirvo/KirvoImage.cs", "runtimes/win-x86/native/Kirvo.dll",
                 "runtimes/win-x64/native/KirvoFiles.dll", "runtimes/linux-x64/native/libkirvofiles.so"):
        assert (package / path).exists(), path
    shutil.copy(assembly, WORK)
    shutil.copy(f"{assembly}.config", WORK)
    program = WORK / "Program.cs"
    program.write_text("""
        using System;
        using KirvoImaging;
        static class Program
        {
            static int Main(string[] names)
            {
                using (KirvoImage photo = KirvoImage.Open(names[0]))
                using (KirvoImage page = photo.Resize(80, 60).Sharpen())
                    page.Save(names[1]);
                try { KirvoImage.Open(names[2]); return 1; }
                catch (KirvoException error) { Console.WriteLine(error.Message); return 0; }
            }
        }""")
    run("mcs", "-warnaserror", f"-r:{WORK}/KirvoImaging.dll", program)
    shutil.copy(ROOT / "docs/contact-sheet.jpg", WORK / "写真.jpg")
    (WORK / "text.jpg").write_text("no picture")
    said = run("mono", "Program.exe", "写真.jpg", "page.png", "text.jpg",
               env={**ENVIRONMENT, "LD_LIBRARY_PATH": str(runtime)})
    assert "text.jpg: " in said and (WORK / "page.png").read_bytes()[16:24] == bytes((0, 0, 0, 80, 0, 0, 0, 60))


def check_subproject():
    """In another project the libraries are built alone: optimised, static if asked for, and without
    names, tests or rules that the project may have itself."""
    (WORK / "CMakeLists.txt").write_text(f"""
        cmake_minimum_required(VERSION 3.25)
        project(Parent LANGUAGES C CXX)
        enable_testing()
        add_custom_target(convert)
        add_custom_target(thumbnails)
        add_subdirectory({ROOT} kirvo)
        add_executable(program program.cpp)
        set_target_properties(program PROPERTIES CXX_STANDARD 17)
        target_link_libraries(program PRIVATE Kirvo::kirvo_files)
        install(TARGETS program)
        """)
    (WORK / "program.cpp").write_text("""
        #include <kirvo.hpp>
        int main() {
            kirvo::Image::solid(3, 2, 7).save("made.png");
            return kirvo::Image::open("made.png").get_pixel(2, 1) == 7 ? 0 : 1;
        }
        """)
    for shared in ("ON", "OFF"):
        build = WORK / shared
        run("cmake", "-G", "Ninja", "-S", WORK, "-B", build, f"-DBUILD_SHARED_LIBS={shared}",
            "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        for entry in json.loads((build / "compile_commands.json").read_text()):
            if "/src/" in entry["file"]:
                assert " -O2 " in entry["command"], entry["command"]
        assert "No tests were found" in run("ctest", "--test-dir", build)
    run("cmake", "--build", WORK / "OFF", "--parallel", os.cpu_count())
    assert not list((WORK / "OFF").rglob("libkirvo*.so"))
    run(WORK / "OFF/program")
    run("cmake", "--install", WORK / "OFF", "--prefix", WORK / "installed")
    installed = [path.name for path in (WORK / "installed").rglob("*") if path.is_file()]
    assert installed == ["program"], installed


def check_release():
    """Sums, the list of what is inside, and a signature that holds."""
    lines = (PACKAGES / "SHA256SUMS").read_text().splitlines()
    named = dict(reversed(line.split("  ")) for line in lines)
    files = {path.name for path in PACKAGES.iterdir()} - {"SHA256SUMS", "SHA256SUMS.minisig"}
    assert set(named) == files and len(files) >= 8, sorted(files ^ set(named))
    for name, digest in named.items():
        assert hashlib.sha256((PACKAGES / name).read_bytes()).hexdigest() == digest, name
    bill = json.loads((PACKAGES / f"kirvo-{version.TEXT}.cdx.json").read_text())
    assert bill["bomFormat"] == "CycloneDX" and bill["metadata"]["component"]["version"] == version.TEXT
    with zipfile.ZipFile(the("kirvo-*-manylinux_*_x86_64.whl")) as archive:
        inside = {pathlib.PurePath(name).stem for name in archive.namelist()
                  if "/licenses/" in name and name.endswith(".txt")}
    assert inside <= {component["name"] for component in bill["components"]}, inside

    run("minisign", "-G", "-W", "-s", WORK / "key", "-p", WORK / "key.pub")
    shutil.copytree(PACKAGES, WORK / "packages")
    run(ROOT / "script/sign", WORK / "key", WORK / "packages")
    verify = ["minisign", "-V", "-p", WORK / "key.pub", "-m", WORK / "packages/SHA256SUMS"]
    run(*verify)
    with (WORK / "packages/SHA256SUMS").open("a") as sums:
        sums.write("changed")
    run(*verify, code=1)


shutil.rmtree(WORK, ignore_errors=True)
WORK.mkdir(parents=True)
globals()[f"check_{CHECK}"]()
