#!/usr/bin/env python3
"""Packs the zips for Windows again, so that the same content gives the same bytes whenever it is packed,
and with the licences of what others have in them: settle.py FOLDER"""
import pathlib
import sys
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parent))
import licences
from archive import write_zip

for system, runtime in licences.RUNTIMES.items():
    for path in pathlib.Path(sys.argv[1]).glob(f"kirvo-*-{system}.zip"):
        with zipfile.ZipFile(path) as archive:
            members = {name: archive.read(name) for name in archive.namelist() if name[-1] != "/"}
        texts = licences.texts({*runtime, *licences.TOOL, *licences.WASM})
        members |= {f"{path.stem}/licenses/{name}": text for name, text in texts.items()}
        write_zip(path, sorted(members.items()))
