"""The works of others that packages have inside: Debian's names of them, what they are licensed under
(SPDX), and the texts as Debian has them. One that is not listed here goes into no package."""
import os
import pathlib
import subprocess

LICENCES = {
    "emscripten": "MIT AND Apache-2.0 WITH LLVM-exception", # its C and C++ libraries
    "g++-mingw-w64-i686-win32": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "g++-mingw-w64-x86-64-win32": "GPL-3.0-or-later WITH GCC-exception-3.1",
    "libcli11-dev": "BSD-3-Clause",
    "libdeflate0": "MIT",
    "libgif7": "MIT",
    "libjpeg62-turbo": "IJG AND BSD-3-Clause AND Zlib",
    "liblerc4": "Apache-2.0",
    "liblzma5": "LicenseRef-public-domain",
    "libspng0": "BSD-2-Clause",
    "libtiff6": "libtiff",
    "libturbojpeg0": "IJG AND BSD-3-Clause AND Zlib",
    "libwebp7": "BSD-3-Clause",
    "libzstd1": "BSD-3-Clause", # offered under the GPL as well
    "mingw-w64-i686-dev": "ZPL-2.1",
    "mingw-w64-x86-64-dev": "ZPL-2.1",
    "nlohmann-json3-dev": "MIT",
    "zlib1g": "Zlib",
}
# What the compilers for Windows put into every file, the tool besides, and live pages and WebAssembly.
RUNTIMES = {"win32": ("g++-mingw-w64-i686-win32", "mingw-w64-i686-dev"),
            "win64": ("g++-mingw-w64-x86-64-win32", "mingw-w64-x86-64-dev")}
TOOL = ("libcli11-dev", "nlohmann-json3-dev")
WASM = ("emscripten",)

# libtiff as script/package builds it, without JBIG.
TIFF = pathlib.Path(os.environ.get("KIRVO_TIFF", "/nowhere"))


def texts(packages):
    """Name of a file -> its bytes."""
    unknown = sorted(set(packages) - set(LICENCES))
    if unknown:
        raise SystemExit(f"packaging/licences.py does not tell the licences of {', '.join(unknown)}")
    return {f"{package}.txt": pathlib.Path(f"/usr/share/doc/{package}/copyright").read_bytes()
            for package in sorted(packages)}


def version(package):
    if package == "libtiff6" and TIFF.exists():
        return (TIFF / "version").read_text().strip()
    return subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], check=True, text=True,
                          stdout=subprocess.PIPE).stdout
