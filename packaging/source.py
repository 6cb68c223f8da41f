#!/usr/bin/env python3
"""Packs the sources, the same bytes from the same sources: source.py FOLDER

FOLDER/kirvo_VERSION.orig.tar.xz has every file that git knows of or does not ignore; away from git, every
file that a release had. What makes a Debian package of it, debian/, stays out.
"""
import io
import lzma
import os
import pathlib
import subprocess
import sys
import tarfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "tests/support"))
import version

ROOT = pathlib.Path(__file__).resolve().parents[1]
NAME = f"kirvo-{version.TEXT}"


def names():
    if (ROOT / ".git").exists():
        listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"],
                                cwd=ROOT, check=True, text=True, stdout=subprocess.PIPE).stdout
        found = {ROOT / name for name in listed.split("\0") if name}
    else:
        found = {path for path in ROOT.rglob("*") if "build" not in path.relative_to(ROOT).parts[:1]}
    return sorted(path.relative_to(ROOT) for path in found
                  if path.is_file() and path.relative_to(ROOT).parts[0] != "debian")


def packed():
    data = io.BytesIO()
    with tarfile.open(fileobj=data, mode="w", format=tarfile.GNU_FORMAT) as archive:
        for name in names():
            member = tarfile.TarInfo(f"{NAME}/{name}")
            content = (ROOT / name).read_bytes()
            member.size = len(content)
            member.mode = 0o755 if os.access(ROOT / name, os.X_OK) else 0o644
            member.mtime = int(os.environ["SOURCE_DATE_EPOCH"])
            archive.addfile(member, io.BytesIO(content))
    return lzma.compress(data.getvalue(), preset=6)


path = pathlib.Path(sys.argv[1]) / f"kirvo_{version.TEXT}.orig.tar.xz"
path.write_bytes(packed())
print(path.name)
