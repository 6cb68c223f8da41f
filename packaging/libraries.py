"""The built libraries as packages carry them: stripped, and on Linux with what they need beside them."""
import os
import pathlib
import re
import subprocess
import tempfile

import licences

ROOT = pathlib.Path(__file__).resolve().parents[1]
# What every Linux has.
SYSTEM = re.compile(r"(ld-linux.*|lib(c|m|dl|rt|pthread|gcc_s|stdc\+\+))\.so(\.\d+)*$")


def run(*command, **options):
    return subprocess.run(list(map(str, command)), check=True, text=True, stdout=subprocess.PIPE,
                          **options).stdout


class Libraries:
    """files: name -> bytes; licences: name -> bytes of those of others that are inside."""

    def __init__(self, preset):
        self.files, packages = {}, set(licences.RUNTIMES.get(preset, ()))
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            run("cmake", "--install", ROOT / "build" / preset, "--prefix", folder / "prefix", "--strip",
                "--component", "libraries")
            if preset == "native":
                packages = self._take_linux(folder)
            else:
                for path in sorted((folder / "prefix/bin").glob("*.dll")):
                    self.files[path.name] = path.read_bytes()
        self.licences = licences.texts(packages)

    def _take_linux(self, folder):
        """Kirvo's libraries and those that they load, and the packages that these come from."""
        own = sorted((folder / "prefix").rglob("libkirvo*.so"))
        paths = [folder / path.name for path in own]
        for source, path in zip(own, paths):
            path.write_bytes(source.read_bytes())
        packages = set()
        for line in run("ldd", *paths, env={**os.environ, "LD_LIBRARY_PATH": str(licences.TIFF)}).splitlines():
            match = re.match(r"\s+(\S+) => (/\S+) ", line)
            if match and not SYSTEM.match(match[1]) and not match[1].startswith("libkirvo"):
                path = folder / match[1]
                if not path.exists():
                    path.write_bytes(pathlib.Path(match[2]).read_bytes())
                    paths.append(path)
                    packages.add(self._package(pathlib.Path(match[2])))
        for path in paths:
            path.chmod(0o755)
            run("patchelf", "--set-rpath", "$ORIGIN", path)
        self.glibc = max(self._glibc(path) for path in paths)
        self.files = {path.name: path.read_bytes() for path in sorted(paths)}
        return packages

    @staticmethod
    def _package(library):
        if library.parent == licences.TIFF:
            return "libtiff6"
        for name in (library, library.resolve(), str(library).replace("/lib/", "/usr/lib/", 1)):
            found = subprocess.run(["dpkg-query", "--search", str(name)], text=True,
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
            if found:
                return found.split(":")[0]
        raise SystemExit(f"no package has {library}: its licence is not known")

    @staticmethod
    def _glibc(path):
        """The newest version of the C library that a library asks for."""
        return max((tuple(map(int, match)) for match in
                    re.findall(r"\bGLIBC_(\d+)\.(\d+)", run("objdump", "-T", path))), default=(2, 5))
