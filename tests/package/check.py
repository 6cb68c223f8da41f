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
import urllib.parse

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
import version
from photo import check_photo
from programs import run

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
    PREFIX, DOCUMENTS = UNPACKED / "usr", UNPACKED / "usr/share/doc/libkirvo-dev"
    LAUNCHER, CC, CXX, TOOL, SUFFIX = [], "cc", "c++", "kirvo", ""
    MULTIARCH = subprocess.check_output(["dpkg-architecture", "-q", "DEB_HOST_MULTIARCH"], text=True).strip()
    LIB = PREFIX / "lib" / MULTIARCH
    os.environ["LD_LIBRARY_PATH"] = str(LIB)
else:
    BITS = PACKAGE[3:]
    PREFIX = DOCUMENTS = UNPACKED / f"kirvo-{VERSION}-{PACKAGE}"
    LIB = PREFIX / "lib"
    MACHINE = {"32": "i686", "64": "x86_64"}[BITS]
    TRIPLE = f"{MACHINE}-w64-mingw32"
    LAUNCHER, TOOL, SUFFIX = [ROOT / "script/wine", BITS], "kirvo.exe", ".exe"
    CC, CXX = f"{TRIPLE}-gcc-win32", f"{TRIPLE}-g++-win32"


def run_example(name, folder):
    run(sys.executable, ROOT / "tests/examples/check.py", name, folder, *LAUNCHER)


# The names that Debian's packages have, and what each is for.
DEBS = ("libkirvo1", "libkirvofiles1", "libkirvo-dev", "kirvo")


def archives():
    names = [f"{name}_{VERSION}-*_*.deb" for name in DEBS] if PACKAGE == "deb" else \
        [f"kirvo-{VERSION}-{PACKAGE}.zip"]
    for name in names:
        found = list(PACKAGES.glob(name))
        assert len(found) == 1, f"{PACKAGES}: {name}: {found}"
        yield found[0]


def check_unpack():
    for archive in archives():
        if PACKAGE == "deb":
            run("dpkg-deb", "-x", archive, UNPACKED)
        else:
            shutil.unpack_archive(archive, UNPACKED)


def check_contents():
    """Everything is there, and nothing remembers where it was built."""
    expected = [PREFIX / name for name in ("include/kirvo.h", "include/kirvo_files.h", "include/kirvo.hpp",
                                           f"bin/{TOOL}")]
    expected += [LIB / name for name in ("pkgconfig/kirvo.pc", "pkgconfig/kirvofiles.pc",
                                         "cmake/Kirvo/KirvoConfig.cmake",
                                         "cmake/Kirvo/KirvoConfigVersion.cmake")]
    documents = ["README.md", "SECURITY.md", "examples/CMakeLists.txt", "docs/contact-sheet.jpg",
                 "docs/SAFETY.md", "bindings/README.md"]
    if PACKAGE == "deb":
        expected += [LIB / name for name in ("libkirvo.so", "libkirvo.so.1", "libkirvofiles.so",
                                             "libkirvofiles.so.1")]
        expected += [PREFIX / "share" / name for name in (
            "man/man1/kirvo.1.gz", "bash-completion/completions/kirvo", "doc/kirvo/changelog.gz",
            *(f"doc/{name}/copyright" for name in DEBS))]
    else:
        expected += [PREFIX / "bin" / name for name in ("Kirvo.dll", "KirvoFiles.dll", "KirvoView.exe")]
        expected += [LIB / name for name in ("libKirvo.dll.a", "Kirvo.lib", "kirvo.def", "libKirvoFiles.dll.a",
                                             "KirvoFiles.lib", "kirvo_files.def")]
        documents += ["LICENSE", "CHANGELOG.md", "docs/html/index.html", "licenses/libcli11-dev.txt",
                      "licenses/nlohmann-json3-dev.txt"]
    missing = [path for path in (*expected, *(DOCUMENTS / name for name in documents)) if not path.exists()]
    assert not missing, f"missing: {missing}"
    for path in filter(pathlib.Path.is_file, UNPACKED.rglob("*")):
        assert str(ROOT).encode() not in path.read_bytes(), f"{path} names {ROOT}"


def check_links():
    """Every link of a document leads to something in the package."""
    dead = []
    for path in filter(pathlib.Path.is_file, DOCUMENTS.rglob("*")):
        if path.suffix == ".md":
            text = re.sub(r"```.*?```|`[^`\n]*`", "", path.read_text(), flags=re.DOTALL)
            links = re.findall(r"\]\(([^)\s]+)\)", text)
        elif path.suffix == ".html":
            links = re.findall(r"""\b(?:href|src)=["']([^"']+)["']""", path.read_text())
        else:
            continue
        for link in links:
            target = urllib.parse.unquote(link.split("#")[0])
            if not re.match(r"[a-z]+:", link) and target and not (path.parent / target).exists():
                dead.append(f"{path.relative_to(UNPACKED)}: {link}")
    assert not dead, "\n".join(dead)


def check_debian():
    """Debian's own judge finds nothing to warn of; the libraries are hardened, numbered, and export
    nothing beyond the interface."""
    run("lintian", "--allow-root", "--fail-on", "error,warning", *archives(),
        *PACKAGES.glob("kirvo_*.dsc"))
    for name in ("libkirvo", "libkirvofiles"):
        library = LIB / f"{name}.so.1"
        dynamic = run("readelf", "--wide", "--dynamic", "--program-headers", library)
        assert f"soname: [{name}.so.1]" in dynamic and "BIND_NOW" in dynamic and "GNU_RELRO" in dynamic
        assert "PATH" not in dynamic, dynamic
    tool = run("readelf", "--wide", "--dynamic", "--headers", PREFIX / "bin/kirvo")
    assert "Position-Independent Executable" in tool and "BIND_NOW" in tool
    assert "__stack_chk_fail" in run("nm", "--dynamic", PREFIX / "bin/kirvo")
    fields = {name: run("dpkg-deb", "--field", archive) for name, archive in zip(DEBS, archives())}
    for name, text in fields.items():
        assert f"Version: {VERSION}-" in text, text
        assert ("Multi-Arch: same" in text) == (name != "kirvo"), text
    assert re.search(r"^Depends: .*libkirvo1 \(", fields["libkirvofiles1"], re.M), fields["libkirvofiles1"]
    assert re.search(r"^Depends: .*libc6 ", fields["libkirvo1"], re.M), fields["libkirvo1"]


def check_library():
    """The DLLs are small and stripped, and nothing tells when or where it was made."""
    for name, limit in {"Kirvo.dll": SIZE_LIMIT, "KirvoFiles.dll": 250 * 1024}.items():
        library = PREFIX / "bin" / name
        assert library.stat().st_size < limit, library.stat().st_size
        assert "no symbols" in run(f"{TRIPLE}-objdump", "-t", library)
    for path in (PREFIX / "bin").iterdir():
        assert re.search(r"^Time/Date\t+Thu Jan  1 00:00:00 1970", run(
            f"{TRIPLE}-objdump", "-p", path, env={**os.environ, "TZ": "UTC"}), re.M), path
    for name, target in {"Kirvo": "kirvo", "KirvoFiles": "kirvo_files"}.items():
        library = LIB / f"lib{name}.dll.a"
        members = run(f"{TRIPLE}-ar", "t", library).split()
        assert all(re.fullmatch(target + r"(t|h|s\d+)\.o", member) for member in members), members[:3]
        assert f"head_lib{name}_dll_a".encode() in library.read_bytes(), f"{library} knows its folder"


def check_tool():
    said = run(*LAUNCHER, PREFIX / "bin" / TOOL, "info", "contact-sheet.jpg", cwd=DOCUMENTS / "docs")
    assert re.search(DESCRIBED, said), said


def compile_example(compiler, source, *flags):
    run(compiler, DOCUMENTS / "examples" / source, *flags, "-o", WORK / source.split(".")[0])
    if PACKAGE != "deb":
        for name in ("Kirvo.dll", "KirvoFiles.dll"):
            shutil.copy(PREFIX / "bin" / name, WORK)


def flags_by_hand():
    flags = [f"-I{PREFIX}/include", f"-L{LIB}"]
    return flags + (["-lkirvofiles", "-lkirvo", f"-Wl,-rpath,{LIB}"] if PACKAGE == "deb"
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


def check_layer():
    """The class for C++ keeps its promises as installed."""
    compilers = {CXX: "c++20"} if PACKAGE != "deb" else {"g++": "c++17", "clang++": "c++20"}
    for compiler, standard in compilers.items():
        program = WORK / f"layer-{compiler}{SUFFIX}"
        run(compiler, f"-std={standard}", "-Wall", "-Wextra", "-Wconversion", "-Werror",
            ROOT / "tests/layers/cpp.cpp", *flags_by_hand(), "-pthread", "-o", program)
        if PACKAGE != "deb":
            for name in ("Kirvo.dll", "KirvoFiles.dll"):
                shutil.copy(PREFIX / "bin" / name, WORK)
        run(*LAUNCHER, program, WORK)


def check_lazarus():
    """Lazarus builds its package and its example from what is installed."""
    project = WORK / "project"
    shutil.copytree(DOCUMENTS / "bindings/pascal", project)
    os.environ["KIRVO_LIBRARIES"] = str(LIB) # for the linker
    lazarus = ["lazbuild", f"--primary-config-path={WORK}/lazarus", "--quiet", "--widgetset=gtk2"]
    run(*lazarus, "--add-package-link", project / "kirvo_lazarus.lpk")
    run(*lazarus, project / "photo.lpi")
    check_photo(run, WORK, "xvfb-run", "-a", project / "photo")


def check_pkg_config():
    def ask(*options):
        environment = dict(os.environ, PKG_CONFIG_PATH=str(LIB / "pkgconfig"))
        return run("pkg-config", *options, "kirvofiles", env=environment).split()

    assert ask("--modversion") == [VERSION]
    compile_example(CXX, "vignette.cpp", "-std=c++17", *ask("--cflags", "--libs"),
                    f"-Wl,-rpath,{LIB}")
    run_example("vignette", WORK)


def check_cmake_project():
    options = ["-G", "Ninja", f"-DKirvo_DIR={LIB}/cmake/Kirvo"]
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
    run("cmake", "-S", versions, "-B", versions, f"-DCMAKE_PREFIX_PATH={PREFIX}",
        f"-DCMAKE_LIBRARY_ARCHITECTURE={LIB.relative_to(PREFIX / 'lib')}")


def check_microsoft_linker():
    """A program for Microsoft's tools reaches every function through Kirvo.lib."""
    definition = (LIB / "kirvo.def").read_text().split("EXPORTS")[1]
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
        WORK / "program.obj", LIB / "Kirvo.lib", WORK / "kernel32.lib")
    shutil.copy(PREFIX / "bin/Kirvo.dll", WORK)
    run(*LAUNCHER, WORK / "program.exe")


def check_install():
    """Debian's own tools find them installable, install them, find them whole and remove them."""
    run("apt-get", "install", "--simulate", *archives())
    system = WORK / "system"
    (system / "var/lib/dpkg").mkdir(parents=True)
    (system / "var/lib/dpkg/status").touch()

    def dpkg(*options):
        return run("fakeroot", "dpkg", f"--root={system}", "--log=/dev/null", "--force-depends", *options)

    dpkg("--install", *archives())
    for name in DEBS:
        assert "install ok" in dpkg("--status", name)
        assert dpkg("--verify", name) == ""
    libraries = {**os.environ, "LD_LIBRARY_PATH": str(system / "usr/lib" / MULTIARCH)}
    assert re.search(DESCRIBED, run(system / "usr/bin/kirvo", "info", DOCUMENTS / "docs/contact-sheet.jpg",
                                    env=libraries))
    dpkg("--purge", *DEBS)
    left = [path for path in system.rglob("*") if "usr" in path.parts[len(system.parts):]]
    assert not left, left


shutil.rmtree(UNPACKED if CHECK == "unpack" else WORK, ignore_errors=True)
(UNPACKED if CHECK == "unpack" else WORK).mkdir(parents=True)
globals()[f"check_{CHECK}"]()
