#!/usr/bin/env python3
"""Makes the npm package of build/wasm/kirvo-wasm: npm.py FOLDER"""
import gzip
import io
import os
import pathlib
import sys
import tarfile

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[1]
sys.path[:0] = [str(pathlib.Path(__file__).parent), str(ROOT / "tests/support")]
import licences
import version

MOMENT = int(os.environ.get("SOURCE_DATE_EPOCH", 0))


def main(folder):
    members = {path.name: path.read_bytes() for path in (ROOT / "build/wasm/kirvo-wasm").iterdir()}
    members |= {f"licenses/{name}": text for name, text in licences.texts(licences.WASM).items()}
    tar = io.BytesIO()
    with tarfile.open(fileobj=tar, mode="w", format=tarfile.USTAR_FORMAT) as archive:
        for name, data in sorted(members.items()):
            member = tarfile.TarInfo(f"package/{name}")
            member.size, member.mtime, member.mode = len(data), MOMENT, 0o644
            archive.addfile(member, io.BytesIO(data))
    name = f"kirvo-wasm-{version.TEXT}.tgz"
    (pathlib.Path(folder) / name).write_bytes(gzip.compress(tar.getvalue(), mtime=MOMENT))
    print(name)


main(*sys.argv[1:])
