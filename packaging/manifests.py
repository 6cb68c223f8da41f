#!/usr/bin/env python3
"""Writes the manifests of winget and scoop for the zips: manifests.py FOLDER

They name the zips by the address that the variable KIRVO_RELEASES gives, the folder of this version's
files, and by their sums.
"""
import datetime
import hashlib
import json
import os
import pathlib
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "tests/support"))
import version

FOLDER = pathlib.Path(sys.argv[1])
RELEASES = os.environ.get("KIRVO_RELEASES", f"https://kirvo.invalid/releases/v{version.TEXT}").rstrip("/")
DESCRIPTION = "Converts and edits pictures on the command line, and shows them"
IDENTIFIER = "Kirvo.Kirvo"
WINGET_VERSION = "1.9.0"
DATE = datetime.datetime.fromtimestamp(int(os.environ["SOURCE_DATE_EPOCH"]), datetime.timezone.utc).date()
PROGRAMS = {"kirvo": "kirvo.exe", "kirvoview": "KirvoView.exe"}


def zip_of(system):
    """Address, sum and folder inside of the zip for win32 or win64."""
    name = f"kirvo-{version.TEXT}-{system}"
    digest = hashlib.sha256((FOLDER / f"{name}.zip").read_bytes()).hexdigest()
    return f"{RELEASES}/{name}.zip", digest, name


def scoop():
    def architecture(system):
        address, digest, inside = zip_of(system)
        return {"url": address, "hash": digest, "extract_dir": inside}

    return json.dumps({
        "version": version.TEXT,
        "description": DESCRIPTION,
        "homepage": RELEASES,
        "license": "MIT",
        "architecture": {"64bit": architecture("win64"), "32bit": architecture("win32")},
        "bin": [f"bin\\{PROGRAMS['kirvo']}"],
        "shortcuts": [[f"bin\\{PROGRAMS['kirvoview']}", "KirvoView"]],
    }, indent=4) + "\n"


def yaml(kind, *lines):
    """A winget manifest; nothing in ours needs more than plain lines."""
    return "\n".join([
        f"# yaml-language-server: $schema=https://aka.ms/winget-manifest.{kind}.{WINGET_VERSION}.schema.json",
        f"PackageIdentifier: {IDENTIFIER}", f"PackageVersion: {version.TEXT}", *lines,
        f"ManifestType: {kind}", f"ManifestVersion: {WINGET_VERSION}", ""])


def installers():
    for system, architecture in (("win32", "x86"), ("win64", "x64")):
        address, digest, inside = zip_of(system)
        yield from (f"- Architecture: {architecture}", f"  InstallerUrl: {address}",
                    f"  InstallerSha256: {digest.upper()}", "  NestedInstallerFiles:")
        for command, program in PROGRAMS.items():
            yield from (f"  - RelativeFilePath: {inside}\\bin\\{program}",
                        f"    PortableCommandAlias: {command}")


def winget():
    yield "", yaml("version", "DefaultLocale: en-US")
    yield ".locale.en-US", yaml("defaultLocale", "PackageLocale: en-US", "Publisher: the Kirvo authors",
                                "PackageName: Kirvo", "License: MIT", f"ShortDescription: {DESCRIPTION}",
                                "Tags:", "- image", "- jpeg", "- bitmap")
    yield ".installer", yaml("installer", "InstallerType: zip", "NestedInstallerType: portable",
                            "ArchiveBinariesDependOnPath: true", # the libraries lie beside the programs
                            f"ReleaseDate: {DATE}", "Installers:", *installers())


(FOLDER / "kirvo-scoop.json").write_text(scoop())
for part, text in winget():
    (FOLDER / f"{IDENTIFIER}{part}.yaml").write_text(text)
print("kirvo-scoop.json", f"{IDENTIFIER}.yaml")
