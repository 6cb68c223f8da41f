#!/usr/bin/env python3
"""Packs zips again, so that the same content gives the same bytes whenever it is packed: settle.py ZIP..."""
import pathlib
import sys
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parent))
from archive import write_zip

for path in sys.argv[1:]:
    with zipfile.ZipFile(path) as archive:
        members = [(name, archive.read(name)) for name in sorted(archive.namelist()) if name[-1] != "/"]
    write_zip(path, members)
