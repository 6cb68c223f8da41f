#!/usr/bin/env python3
"""Packs reference and guide for any web server: pages.py FOLDER, once script/docs has made them."""
import pathlib
import sys

sys.dont_write_bytecode = True
ROOT = pathlib.Path(__file__).parents[1]
sys.path.insert(0, str(ROOT / "tests/support"))
import licences
import version
from archive import write_zip

PAGES = ROOT / "build/docs/html"
NAME = f"kirvo-{version.TEXT}-docs"
files = sorted(path for path in PAGES.rglob("*") if path.is_file())
members = {str(path.relative_to(PAGES)): path.read_bytes() for path in files}
members |= {f"licenses/{name}": text for name, text in licences.texts(licences.WASM).items()}
write_zip(pathlib.Path(sys.argv[1]) / f"{NAME}.zip",
          [(f"{NAME}/{name}", data) for name, data in sorted(members.items())])
