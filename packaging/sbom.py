#!/usr/bin/env python3
"""Writes what the packages are made of, in the form of CycloneDX: sbom.py FOLDER

Wheel and NuGet package have libraries of others inside; they are found there by their licences.
"""
import json
import pathlib
import subprocess
import sys
import uuid
import zipfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "tests/support"))
import version

folder = pathlib.Path(sys.argv[1])
packages = set()
for path in folder.glob("*.whl"):
    with zipfile.ZipFile(path) as archive:
        packages |= {pathlib.PurePath(name).stem for name in archive.namelist()
                     if "/licenses/" in name and name.endswith(".txt")}


def component(package):
    number = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], check=True, text=True,
                            stdout=subprocess.PIPE).stdout
    return {"type": "library", "name": package, "version": number,
            "purl": f"pkg:deb/debian/{package}@{number}"}


bill = {
    "bomFormat": "CycloneDX", "specVersion": "1.4", "version": 1,
    "serialNumber": uuid.uuid5(uuid.NAMESPACE_URL, f"kirvo:{version.TEXT}").urn,
    "metadata": {"component": {"type": "library", "name": "kirvo", "version": version.TEXT,
                               "licenses": [{"license": {"id": "MIT"}}]}},
    "components": [component(package) for package in sorted(packages)],
}
path = folder / f"kirvo-{version.TEXT}.cdx.json"
path.write_text(json.dumps(bill, indent=2) + "\n")
