#!/usr/bin/env python3
"""Uses a package of build/packages as its users would: check.py deb|win32|win64 CHECK FOLDER

`unpack` comes first and leaves the package in FOLDER/PACKAGE/unpacked.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
import version

PACKAGE, CHECK, FOLDER = sys.argv[1:]
ROOT = pathlib.Path(__file__).resolve().parents[2]
SOURCE = ROOT / "tests/package"
PACKAGES = ROOT / "build/packages"
UNPACKED = pathlib.Path(FOLDER) / PACKAGE / "unpacked"
WORK = pathlib.Path(FOLDER) / PACKAGE / CHECK
VERSION = version.TEXT
SIZE_LIMIT = 400 * 1024
DESCRIBED = r"contact-sheet\.jpg: JPEG, \d+ x \d+, 24 bits, baseline, "

if PACKAGE == "deb":
    PREFIX, DOCUMENTS = UNPACKED / "usr", UNPACKED / "usr/share/doc/kirvo"
    LAUNCHER, CC, CXX, TOOL, SUFFIX = [], "cc", "c++", "kirvo", ""
else:
    BITS = PACKAGE[3:]
    PREFIX = DOCUMENTS = UNPACKED / f"kirvo-{VERSION}-{PACKAGE}"
    MACHINE = {"32": "i686", "64": "x86_64"}[BITS]
    TRIPLE = f"{MACHINE}-w64-mingw32"
    LAUNCHER, TOOL, SUFFIX = [ROOT / "script/wine", BITS], "kirvo.exe", ".exe"
    CC, CXX = f"{TRIPLE}-gcc-win32", f"{TRIPLE}-g++-win32"


def run(*command, code=0, **options):
    done = subprocess.run(list(map(str, command)), text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, **options)
    assert done.returncode == code, f"{command}: exit code {done.returncode}\n{done.stdout}"
    return done.stdout


def run_example(name, folder):
    run(sys.executable, ROOT / "tests/examples/check.py", name, folder, *LAUNCHER)


def archive():
    found = list(PACKAGES.glob("*.deb" if PACKAGE == "deb" else f"kirvo-{VERSION}-{PACKAGE}.zip"))
    assert len(found) == 1, f"{PACKAGES} holds {found}"
    return found[0]


def check_unpack():
    if PACKAGE == "deb":
        run("dpkg-deb", "-x", archive(), UNPACKED)
    else:
        shutil.unpack_archive(archive(), UNPACKED)


def check_contents():
    """Everything is there, and nothing remembers where it was built."""
    expected = ["include/kirvo.h", "include/kirvo_files.h", "include/kirvo.hpp",
                "lib/pkgconfig/kirvofiles.pc", f"bin/{TOOL}", "lib/cmake/Kirvo/KirvoConfig.cmake",
                "lib/cmake/Kirvo/KirvoConfigVersion.cmake", "lib/pkgconfig/kirvo.pc"]
    documents = ["README.md", "CHANGELOG.md", "SECURITY.md", "examples/CMakeLists.txt", "docs/contact-sheet.jpg",
                 "bindings/README.md"]
    if PACKAGE == "deb":
        expected += ["lib/libkirvo.so", "lib/libkirvofiles.so", "share/man/man1/kirvo.1.gz",
                     "share/bash-completion/completions/kirvo"]
        documents += ["copyright", "changelog.gz"]
    else:
        expected += ["bin/Kirvo.dll", "bin/KirvoView.exe", "lib/libKirvo.dll.a", "lib/Kirvo.lib",
                     "lib/kirvo.def",
                     "bin/KirvoFiles.dll", "lib/libKirvoFiles.dll.a", "lib/KirvoFiles.lib",
                     "lib/kirvo_files.def"]
        documents += ["LICENSE"]
    if (ROOT / "build/docs/html/index.html").exists():
        documents.append("docs/html/index.html")
    missing = [name for name in expected if not (PREFIX / name).exists()]
    missing += [name for name in documents if not (DOCUMENTS / name).exists()]
    assert not missing, f"missing: {missing}"
    for path in filter(pathlib.Path.is_file, UNPACKED.rglob("*")):
        assert str(ROOT).encode() not in path.read_bytes(), f"{path} names {ROOT}"
    if PACKAGE == "deb":
        fields = run("dpkg-deb", "--field", archive())
        assert f"Version: {VERSION}\n" in fields and re.search(r"^Depends: .*libc6 ", fields, re.M), fields


def check_library():
    """The DLLs are small and stripped."""
    for name, limit in {"Kirvo.dll": SIZE_LIMIT, "KirvoFiles.dll": 250 * 1024}.items():
        library = PREFIX / "bin" / name
        assert library.stat().st_size < limit, library.stat().st_size
        assert "no symbols" in run(f"{TRIPLE}-objdump", "-t", library)


def check_tool():
    output = WORK / "output"
    with output.open("w") as file:
        subprocess.run([*LAUNCHER, PREFIX / "bin" / TOOL, "info", "contact-sheet.jpg"], check=True,
                       cwd=DOCUMENTS / "docs", stdout=file, stderr=subprocess.STDOUT)
    assert re.search(DESCRIBED, output.read_text()), output.read_text()


def compile_example(compiler, source, *flags):
    run(compiler, DOCUMENTS / "examples" / source, *flags, "-o", WORK / source.split(".")[0])
    if PACKAGE != "deb":
        for name in ("Kirvo.dll", "KirvoFiles.dll"):
            shutil.copy(PREFIX / "bin" / name, WORK)


def flags_by_hand():
    flags = [f"-I{PREFIX}/include", f"-L{PREFIX}/lib"]
    return flags + (["-lkirvofiles", "-lkirvo", f"-Wl,-rpath,{PREFIX}/lib"] if PACKAGE == "deb"
                    else ["-lKirvoFiles", "-lKirvo", "-static"])


def check_files_program():
    """A program of three lines opens any picture by the second library."""
    source = WORK / "open.c"
    source.write_text("""
        #include <kirvo_files.h>
        int main(int count, char** names) {
            HGLOBAL dib;
            return count == 2 ? KirvoFilesOpen(names[1], NULL, &dib, NULL) : 1;
        }
        """)
    run(CC, source, *flags_by_hand(), "-o", WORK / f"open{SUFFIX}")
    if PACKAGE != "deb":
        for name in ("Kirvo.dll", "KirvoFiles.dll"):
            shutil.copy(PREFIX / "bin" / name, WORK)
    run(*LAUNCHER, WORK / f"open{SUFFIX}", DOCUMENTS / "docs/contact-sheet.jpg")


def check_c_program():
    compile_example(CC, "convert.c", "-std=c99", *flags_by_hand())
    run_example("convert", WORK)


def check_cpp_program():
    compile_example(CXX, "vignette.cpp", "-std=c++17", *flags_by_hand())
    run_example("vignette", WORK)


def check_pkg_config():
    def ask(*options):
        environment = dict(os.environ, PKG_CONFIG_PATH=str(PREFIX / "lib/pkgconfig"))
        return run("pkg-config", *options, "kirvofiles", env=environment).split()

    assert ask("--modversion") == [VERSION]
    compile_example(CXX, "vignette.cpp", "-std=c++17", *ask("--cflags", "--libs"),
                    f"-Wl,-rpath,{PREFIX}/lib")
    run_example("vignette", WORK)


def check_cmake_project():
    options = ["-G", "Ninja", f"-DKirvo_DIR={PREFIX}/lib/cmake/Kirvo"]
    if PACKAGE == "deb":
        options[2] = f"-DCMAKE_PREFIX_PATH={PREFIX}"
    else:
        options.append(f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/{PACKAGE}.cmake")
    run("cmake", "-S", DOCUMENTS / "examples", "-B", WORK / "examples", *options)
    run("cmake", "--build", WORK / "examples")
    for name in ["photo", "pieces", "thumbnails"] + (["window"] if PACKAGE != "deb" else []):
        run_example(name, WORK / "examples")

    versions = WORK / "versions"
    versions.mkdir()
    (versions / "CMakeLists.txt").write_text(f"""
        cmake_minimum_required(VERSION 3.25)
        project(Versions LANGUAGES NONE)
        find_package(Kirvo 2.0 QUIET CONFIG)
        if(Kirvo_FOUND)
            message(FATAL_ERROR "accepted as version 2")
        endif()
        find_package(Kirvo {VERSION} EXACT REQUIRED CONFIG)
        """)
    run("cmake", "-S", versions, "-B", versions, f"-DCMAKE_PREFIX_PATH={PREFIX}")


def check_microsoft_linker():
    """A program for Microsoft's tools reaches every function through Kirvo.lib."""
    definition = (PREFIX / "lib/kirvo.def").read_text().split("EXPORTS")[1]
    names = re.findall(r"^ *(\w+) *$", definition, re.M)
    assert len(names) > 100
    source = WORK / "program.c"
    tests = "".join(f'    if ((void*){name} != GetProcAddress(library, "{name}")) ExitProcess(2);\n'
                    for name in names)
    source.write_text(f"""
        #include <kirvo.h>
        void start(void) {{
            HMODULE library = GetModuleHandleA("Kirvo.dll");
        {tests}
            ExitProcess(GetVerKirvoDll() == {version.NUMBER} &&
                        Dib24Flip(0, 0, 0, 1, 1) == KIRVO_NULL_HANDLE ? 0 : 1);
        }}
        """)
    run("clang", f"--target={MACHINE}-pc-windows-msvc", "-ffreestanding", "-nostdlibinc", "-Werror",
        f"-I{PREFIX}/include", "-isystem", SOURCE / "microsoft", "-c", source, "-o", WORK / "program.obj")
    # What Microsoft's tools bring along.
    system = {"ExitProcess": 4, "GetModuleHandleA": 4, "GetProcAddress": 8}
    decorated = [f"{name}@{size}" if BITS == "32" else name for name, size in system.items()]
    (WORK / "kernel32.def").write_text("\n".join(["EXPORTS", *decorated]))
    run("llvm-dlltool", "-k", "-m", {"32": "i386", "64": "i386:x86-64"}[BITS], "-D", "KERNEL32.dll",
        "-d", WORK / "kernel32.def", "-l", WORK / "kernel32.lib")
    run("lld-link", "/nodefaultlib", "/entry:start", "/subsystem:console", f"/out:{WORK}/program.exe",
        WORK / "program.obj", PREFIX / "lib/Kirvo.lib", WORK / "kernel32.lib")
    shutil.copy(PREFIX / "bin/Kirvo.dll", WORK)
    subprocess.run([*LAUNCHER, WORK / "program.exe"], check=True)


def check_install():
    """Debian's own tools find it installable, install it, find it whole and remove it."""
    run("apt-get", "install", "--simulate", archive())
    system = WORK / "system"
    (system / "var/lib/dpkg").mkdir(parents=True)
    (system / "var/lib/dpkg/status").touch()
    # The machine's own list of libraries stays as it is.
    ldconfig = WORK / "ldconfig"
    ldconfig.write_text(f"#!/bin/sh\ntouch {WORK}/listed\n")
    ldconfig.chmod(0o755)

    def dpkg(*options):
        return run("fakeroot", "dpkg", f"--root={system}", "--log=/dev/null", "--force-depends",
                   "--force-script-chrootless", *options,
                   env=dict(os.environ, PATH=f"{WORK}:{os.environ['PATH']}"))

    dpkg("--install", archive())
    assert (WORK / "listed").exists()
    assert "install ok" in dpkg("--status", "kirvo")
    assert dpkg("--verify", "kirvo") == ""
    assert re.search(DESCRIBED, run(system / "usr/bin/kirvo", "info",
                                    DOCUMENTS / "docs/contact-sheet.jpg"))
    dpkg("--purge", "kirvo")
    left = [path for path in system.rglob("*") if "usr" in path.parts[len(system.parts):]]
    assert not left, left


shutil.rmtree(UNPACKED if CHECK == "unpack" else WORK, ignore_errors=True)
(UNPACKED if CHECK == "unpack" else WORK).mkdir(parents=True)
globals()[f"check_{CHECK}"]()
