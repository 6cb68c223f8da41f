#!/usr/bin/env python3
"""Makes a wheel, with the built libraries inside: wheel.py native|win32|win64 FOLDER"""
import base64
import hashlib
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "tests/support")]
import version
from archive import write_zip
from libraries import ROOT, Libraries

SOURCE = ROOT / "bindings/python"
NAME = f"kirvo-{version.TEXT}"


def main(preset, folder):
    libraries = Libraries(preset)
    platform = {"win32": "win32", "win64": "win_amd64"}.get(preset)
    if platform is None:
        platform = "manylinux_{}_{}_x86_64".format(*libraries.glibc)
    members = {f"kirvo/{path.name}": path.read_bytes() for path in sorted((SOURCE / "src/kirvo").iterdir())
               if path.suffix in (".py", ".pyi", ".typed")}
    members |= {f"kirvo/{name}": data for name, data in libraries.files.items()}
    information = f"{NAME}.dist-info"
    members[f"{information}/licenses/LICENSE"] = (ROOT / "LICENSE").read_bytes()
    members |= {f"{information}/licenses/{name}": data for name, data in libraries.licences.items()}
    members[f"{information}/METADATA"] = "\n".join([
        "Metadata-Version: 2.1", "Name: kirvo", f"Version: {version.TEXT}",
        "Summary: Pictures opened, changed and saved: image processing on packed DIBs",
        "License: MIT; what is inside of others is named in licenses/, none of it under the GPL alone",
        "Requires-Python: >=3.9", "Classifier: Typing :: Typed",
        "Description-Content-Type: text/markdown", "", (SOURCE / "README.md").read_text()]).encode()
    members[f"{information}/WHEEL"] = "\n".join([
        "Wheel-Version: 1.0", "Generator: kirvo", "Root-Is-Purelib: false",
        f"Tag: py3-none-{platform}", ""]).encode()
    record = f"{information}/RECORD"
    lines = [f"{name},sha256={digest(data)},{len(data)}" for name, data in members.items()]
    members[record] = "\n".join([*lines, f"{record},,", ""]).encode()
    path = pathlib.Path(folder) / f"{NAME}-py3-none-{platform}.whl"
    write_zip(path, members.items())
    print(path.name)


def digest(data):
    return base64.urlsafe_b64encode(hashlib.sha256(data).digest()).rstrip(b"=").decode()


main(*sys.argv[1:])
