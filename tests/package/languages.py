#!/usr/bin/env python3
"""Uses what build/packages holds beside zips and .deb, as its users would: languages.py CHECK FOLDER"""
import hashlib
import json
import os
import pathlib
import re
import shutil
import sys
import tarfile
import xml.etree.ElementTree
import zipfile

import jsonschema
import yaml

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
import programs
import version
from photo import check_photo

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGES = ROOT / "build/packages"
CHECK = sys.argv[1]
WORK = pathlib.Path(sys.argv[2]).resolve() / CHECK
# No library but the package's own.
ENVIRONMENT = {name: value for name, value in os.environ.items()
               if name not in ("KIRVO_LIBRARY", "LD_LIBRARY_PATH", "PYTHONPATH")}
PROGRAM = """
    #include <kirvo.hpp>
    int main() {
        kirvo::Image::solid(3, 2, 7).save("made.png");
        return kirvo::Image::open("made.png").get_pixel(2, 1) == 7 ? 0 : 1;
    }
    """


def run(*command, **options):
    return programs.run(*command, **{"cwd": WORK, "env": ENVIRONMENT, **options})


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
    check_photo(run, WORK, python, ROOT / "bindings/python/photo.py")
    # The tag is honest: no library inside asks for a newer C library.
    promised = tuple(map(int, re.search(r"manylinux_(\d+)_(\d+)_", wheel.name).groups()))
    with zipfile.ZipFile(wheel) as archive:
        archive.extractall(WORK / "content")
    licences = [path.name for path in WORK.glob("content/*.dist-info/licenses/*")]
    for library in (WORK / "content/kirvo").glob("*.so*"):
        assert "jbig" not in library.name + run("readelf", "--dynamic", library), f"{library} is under the GPL"
        asked = re.findall(r"GLIBC_(\d+)\.(\d+)", run("objdump", "-T", library))
        assert all(tuple(map(int, one)) <= promised for one in asked), library
    # A licence for each library, and libtiff without what is not inside.
    foreign = list((WORK / "content/kirvo").glob("*.so*"))[2:] # Kirvo's own are two
    assert len(licences) == 1 + len(foreign) and "libtiff6.txt" in licences, licences
    run(python, "-c", "import kirvo, numpy, PIL.Image; "
        "PIL.Image.fromarray(numpy.full((4, 5, 3), 9, 'uint8')).save('small.tif', compression='tiff_lzw'); "
        "assert kirvo.Image.open('small.tif').size == (5, 4)")
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


def check_nuspec(path):
    """What the package says of itself is what it has."""
    with zipfile.ZipFile(path) as archive:
        members = {name: archive.read(name) for name in archive.namelist()}
    text = {name: data.decode() for name, data in members.items() if name.endswith((".nuspec", ".targets", ".xml"))}
    parsed = {name: xml.etree.ElementTree.fromstring(each) for name, each in text.items()}
    said = {re.sub("{.*}", "", one.tag): one for one in parsed["Kirvo.nuspec"].iter()}
    assert (said["id"].text, said["version"].text) == ("Kirvo", version.TEXT)
    frameworks = set(re.findall(r'group targetFramework="([^"]+)"', text["Kirvo.nuspec"]))
    folders = {name.split("/")[1] for name in members if name.startswith("lib/")}
    assert folders == {{".NETFramework4.5": "net45"}.get(name, name) for name in frameworks}, folders
    pattern = said["files"].get("include").removesuffix("/**/*.cs")
    assert [name for name in members if name.startswith(f"contentFiles/{pattern}/")], pattern
    kinds = {one.get("Extension") for one in xml.etree.ElementTree.fromstring(members["[Content_Types].xml"])}
    for name in members:
        assert name in ("[Content_Types].xml", "LICENSE") or name.rsplit(".", 1)[1] in kinds, f"{name} has no type"
    for runtime in re.findall(r">(win-x\d+)<", text["build/net45/Kirvo.targets"]):
        machine = {"win-x86": 0x14C, "win-x64": 0x8664}[runtime]
        for library in ("Kirvo.dll", "KirvoFiles.dll"):
            data = members[f"runtimes/{runtime}/native/{library}"]
            header = int.from_bytes(data[0x3C:0x40], "little")
            assert int.from_bytes(data[header + 4:header + 6], "little") == machine, (runtime, library)
    documented = {one.get("name") for one in parsed["lib/net45/KirvoImaging.xml"].iter("member")}
    source = members["contentFiles/cs/net5.0/Kirvo/KirvoImage.cs"].decode()
    methods = set(re.findall(r"public KirvoImage (\w+)\(", source))
    known = {name.removeprefix("M:KirvoImaging.KirvoImage.").split("(")[0] for name in documented}
    assert methods and methods <= known, methods - known


def check_nupkg():
    """Debian's nuget installs it, mono compiles against it and runs with its libraries."""
    run("nuget", "install", "Kirvo", "-Source", PACKAGES, "-OutputDirectory", WORK / "packages",
        env={**ENVIRONMENT, "HOME": str(WORK)})
    package = WORK / f"packages/Kirvo.{version.TEXT}"
    assembly, runtime = package / "lib/net45/KirvoImaging.dll", package / "runtimes/linux-x64/native"
    for path in ("lib/net45/KirvoImaging.xml", "build/net45/Kirvo.targets",
                 "contentFiles/cs/net5.0/Kirvo/KirvoImage.cs",
                 "contentFiles/cs/net5.0/Kirvo/KirvoBitmap.cs", "runtimes/win-x86/native/Kirvo.dll",
                 "runtimes/win-x64/native/KirvoFiles.dll", "runtimes/linux-x64/native/libkirvofiles.so"):
        assert (package / path).exists(), path
    check_nuspec(the("Kirvo.*.nupkg"))
    shutil.copy(assembly, WORK)
    shutil.copy(f"{assembly}.config", WORK)
    run("mcs", "-warnaserror", f"-r:{WORK}/KirvoImaging.dll", "-r:System.Drawing", f"-out:{WORK}/Photo.exe",
        ROOT / "bindings/csharp/Photo.cs")
    check_photo(lambda *command, code=0: run(*command, code=code, env={
        **ENVIRONMENT, "LD_LIBRARY_PATH": str(runtime)}), WORK, "mono", "Photo.exe")


def check_subproject():
    """In another project the libraries are built alone: optimised, static if asked for, and without
    names, tests or rules that the project may have itself."""
    (WORK / "CMakeLists.txt").write_text(f"""
        cmake_minimum_required(VERSION 3.25)
        project(Parent LANGUAGES C CXX)
        enable_testing()
        foreach(name IN ITEMS bench convert docs fuzz gtest test_support tests thumbnails uninstall)
            add_custom_target(${{name}})
        endforeach()
        add_subdirectory({ROOT} kirvo)
        add_executable(program program.cpp)
        set_target_properties(program PROPERTIES CXX_STANDARD 17)
        target_link_libraries(program PRIVATE Kirvo::kirvo_files)
        install(TARGETS program)
        """)
    (WORK / "program.cpp").write_text(PROGRAM)
    for shared in ("ON", "OFF"):
        build = WORK / shared
        run("cmake", "-G", "Ninja", "-S", WORK, "-B", build, f"-DBUILD_SHARED_LIBS={shared}",
            "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON")
        for entry in json.loads((build / "compile_commands.json").read_text()):
            if "/src/" in entry["file"]:
                assert " -O2 " in entry["command"], entry["command"]
        assert "No tests were found" in run("ctest", "--test-dir", build)
    # Debug builds are quicker to make.
    run("cmake", WORK / "OFF", "-DCMAKE_BUILD_TYPE=Debug")
    run("cmake", "--build", WORK / "OFF", "--parallel", os.cpu_count())
    assert not list((WORK / "OFF").rglob("libkirvo*.so"))
    run(WORK / "OFF/program")
    run("cmake", "--install", WORK / "OFF", "--prefix", WORK / "installed")
    installed = [path.name for path in (WORK / "installed").rglob("*") if path.is_file()]
    assert installed == ["program"], installed


def check_again():
    """Packed once more, later and in another time zone, everything is the same bytes. (That it is so when
    all of it is built again, too, is shown by script/package --twice.)"""
    with tarfile.open(the("kirvo_*.orig.tar.xz")) as archive:
        moment = archive.next().mtime
    cache = run("bash", "-c", f". {ROOT}/script/common.sh; echo $cache").strip()
    environment = {**ENVIRONMENT, "SOURCE_DATE_EPOCH": str(moment), "TZ": "Asia/Tokyo", "KIRVO_TIFF": f"{cache}/tiff"}
    made = WORK / "packages"
    made.mkdir()
    for packer in ("source", "wheel native", "wheel win32", "wheel win64", "nupkg", "npm", "pages"):
        name, *arguments = packer.split()
        run(sys.executable, ROOT / f"packaging/{name}.py", *arguments, made, env=environment)
    for path in PACKAGES.glob("*-win??.zip"):
        shutil.copy(path, made)
    for name in ("sbom", "manifests"):
        run(sys.executable, ROOT / f"packaging/{name}.py", made, env=environment)
    differ = [path.name for path in made.iterdir() if path.read_bytes() != (PACKAGES / path.name).read_bytes()]
    assert not differ, differ
    assert len(list(made.iterdir())) >= 13


def check_manifests():
    """What winget, scoop, vcpkg and readers of a bill of materials take holds to their rules, and names
    what is there."""
    schemas = json.loads((ROOT / "tests/package/schemas.json").read_text())

    def valid(value, schema):
        jsonschema.validate(value, {**schemas[schema], "definitions": schemas["definitions"]},
                            format_checker=jsonschema.FormatChecker())
        return value

    def winget(part, kind):
        given = yaml.safe_load((PACKAGES / f"Kirvo.Kirvo{part}.yaml").read_text())
        return valid(json.loads(json.dumps(given, default=str)), kind) # a date is text

    assert winget("", "winget version")["PackageVersion"] == version.TEXT
    winget(".locale.en-US", "winget defaultLocale")
    scoop = valid(json.loads((PACKAGES / "kirvo-scoop.json").read_text()), "scoop")
    found = {"x86": scoop["architecture"]["32bit"], "x64": scoop["architecture"]["64bit"]}
    for installer in winget(".installer", "winget installer")["Installers"]:
        other = found.pop(installer["Architecture"])
        name = installer["InstallerUrl"].rsplit("/", 1)[1]
        digest = hashlib.sha256((PACKAGES / name).read_bytes()).hexdigest()
        assert other["url"] == installer["InstallerUrl"]
        assert other["hash"] == installer["InstallerSha256"].lower() == digest, name
        with zipfile.ZipFile(PACKAGES / name) as archive:
            inside = set(archive.namelist())
        programs = [file["RelativeFilePath"] for file in installer["NestedInstallerFiles"]]
        programs += [f"{other['extract_dir']}\\{program}" for program in
                     (*scoop["bin"], *(shortcut[0] for shortcut in scoop["shortcuts"]))]
        for program in programs:
            assert program.replace("\\", "/") in inside, program
    assert not found
    valid(json.loads((PACKAGES / f"kirvo-{version.TEXT}.cdx.json").read_text()), "cyclonedx")
    port = valid(json.loads((ROOT / "packaging/vcpkg/kirvo/vcpkg.json").read_text()), "vcpkg")
    assert port["version"] == version.TEXT


def check_port():
    """The overlay port for vcpkg, with stand-ins for vcpkg's functions: what it installs serves another
    project, static and without optimisation."""
    standins = WORK / "standins.cmake"
    standins.write_text(f"""
        set(PORT kirvo)
        set(CURRENT_PACKAGES_DIR {WORK}/installed)
        function(run)
            execute_process(COMMAND ${{ARGV}} COMMAND_ERROR_IS_FATAL ANY)
        endfunction()
        function(vcpkg_cmake_configure)
            cmake_parse_arguments(PARSE_ARGV 0 arg "" SOURCE_PATH OPTIONS)
            run(cmake -G Ninja -S ${{arg_SOURCE_PATH}} -B {WORK}/build -DBUILD_SHARED_LIBS=OFF
                -DCMAKE_BUILD_TYPE=Debug --install-prefix ${{CURRENT_PACKAGES_DIR}}
                -DCMAKE_INSTALL_LIBDIR=lib ${{arg_OPTIONS}})
        endfunction()
        function(vcpkg_cmake_install)
            run(cmake --build {WORK}/build --target install --parallel {os.cpu_count()})
        endfunction()
        function(vcpkg_copy_pdbs)
        endfunction()
        function(vcpkg_cmake_config_fixup)
            cmake_parse_arguments(PARSE_ARGV 0 arg "" "PACKAGE_NAME;CONFIG_PATH" "")
            if(NOT EXISTS ${{CURRENT_PACKAGES_DIR}}/${{arg_CONFIG_PATH}}/${{arg_PACKAGE_NAME}}Config.cmake)
                message(FATAL_ERROR "no ${{arg_CONFIG_PATH}}")
            endif()
        endfunction()
        function(vcpkg_fixup_pkgconfig)
        endfunction()
        function(vcpkg_install_copyright)
            cmake_parse_arguments(PARSE_ARGV 0 arg "" "" FILE_LIST)
            file(COPY_FILE ${{arg_FILE_LIST}} ${{CURRENT_PACKAGES_DIR}}/share/${{PORT}}/copyright)
        endfunction()
        include({ROOT}/packaging/vcpkg/kirvo/portfile.cmake)
        """)
    run("cmake", "-P", standins)
    assert "MIT License" in (WORK / "installed/share/kirvo/copyright").read_text()
    for left in ("debug/include", "debug/share"):
        assert not (WORK / "installed" / left).exists()
    consumer = WORK / "consumer"
    consumer.mkdir()
    (consumer / "CMakeLists.txt").write_text("""
        cmake_minimum_required(VERSION 3.25)
        project(Consumer LANGUAGES C CXX)
        find_package(Kirvo REQUIRED CONFIG)
        add_executable(program program.cpp)
        target_link_libraries(program PRIVATE Kirvo::kirvo_files)
        """)
    (consumer / "program.cpp").write_text(PROGRAM)
    run("cmake", "-G", "Ninja", "-S", consumer, "-B", consumer, f"-DCMAKE_PREFIX_PATH={WORK}/installed")
    run("cmake", "--build", consumer)
    run(consumer / "program")


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
