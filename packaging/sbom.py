#!/usr/bin/env python3
"""Writes what the packages are made of, in the form of CycloneDX: sbom.py FOLDER

What they have inside of others is found there by the texts of the licences.
"""
import itertools
import json
import pathlib
import sys
import tarfile
import uuid
import zipfile

sys.dont_write_bytecode = True
sys.path[:0] = [str(pathlib.Path(__file__).parent), str(pathlib.Path(__file__).parents[1] / "tests/support")]
import licences
import version

folder = pathlib.Path(sys.argv[1])
packages = set()
for path in itertools.chain(*map(folder.glob, ("*.whl", "*.nupkg", "*.zip", "*.tgz"))):
    with tarfile.open(path) if path.suffix == ".tgz" else zipfile.ZipFile(path) as archive:
        names = archive.getnames() if path.suffix == ".tgz" else archive.namelist()
    packages |= {pathlib.PurePath(name).stem for name in names if "licenses/" in name and name.endswith(".txt")}


def component(package):
    number = licences.version(package)
    made = {"type": "library", "name": package, "version": number,
            "purl": f"pkg:deb/debian/{package}@{number}",
            "licenses": [{"expression": licences.LICENCES[package]}]}
    if package == "libtiff6":
        made["pedigree"] = {"notes": "built from Debian's source without JBIG"}
    return made


bill = {
    "bomFormat": "CycloneDX", "specVersion": "1.4", "version": 1,
    "serialNumber": uuid.uuid5(uuid.NAMESPACE_URL, f"kirvo:{version.TEXT}").urn,
    "metadata": {"component": {"type": "library", "name": "kirvo", "version": version.TEXT,
                               "licenses": [{"license": {"id": "MIT"}}]}},
    "components": [component(package) for package in sorted(packages)],
}
path = folder / f"kirvo-{version.TEXT}.cdx.json"
path.write_text(json.dumps(bill, indent=2) + "\n")
