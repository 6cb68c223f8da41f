#!/usr/bin/env python3
"""The viewer as it was linked: check.py OBJDUMP KirvoView.exe"""
import re
import subprocess
import sys

SYSTEM = {"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
          "shell32.dll", "shlwapi.dll", "user32.dll", "uxtheme.dll"}
OWN = {"kirvo.dll", "kirvofiles.dll"}
# What a program might want of systems after Windows 7: such functions are looked for at run time.
NEWER = re.compile(r"ForDpi|DpiFor|ProcessDpi|ThreadDpi|PathCch|GetPackage|CreateFile2|"
                   r"PointerInfo|SystemTimePrecise|WaitOnAddress|RoInitialize|SetThreadDescription")
# What it does not do: write into the registry, or into the settings that all programs share.
FOREIGN = re.compile(r"Reg(Set|Create|Delete|Replace|Restore|Load)|SHRegSet|SHSetValue|WriteProfile")
# What its manifest tells the system: names in UTF-8, its own dots an inch, controls that are not those
# of the oldest systems.
MANIFEST = (b"<activeCodePage", b"PerMonitorV2", b"Microsoft.Windows.Common-Controls", b"asInvoker")
LIMIT = 600 * 1000


def main(objdump, program):
    headers = subprocess.run([objdump, "-p", program], check=True, capture_output=True,
                             text=True).stdout
    wrong = []
    libraries = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
    if not libraries <= SYSTEM | OWN:
        wrong.append(f"imports {sorted(libraries - SYSTEM - OWN)}")
    if not OWN <= libraries:
        wrong.append("does not use both libraries")
    functions = re.findall(r"^\s+[0-9a-f]+\s+(?:<none>\s+)?[0-9a-f]+\s+(\w+)$", headers, re.M)
    if not functions:
        wrong.append("names no imported function")
    newer = [name for name in functions if NEWER.search(name)]
    if newer:
        wrong.append(f"imports functions that Windows 7 does not have: {newer}")
    foreign = [name for name in functions if FOREIGN.search(name)]
    if foreign:
        wrong.append(f"imports functions that write elsewhere: {foreign}")
    version = [int(re.search(rf"{part}SubsystemVersion\s+(\d+)", headers)[1])
               for part in ("Major", "Minor")]
    if version > [6, 1]:
        wrong.append(f"wants Windows {version}")
    with open(program, "rb") as file:
        content = file.read()
    wrong += [f"has no {part.decode()} in its manifest" for part in MANIFEST if part not in content]
    if len(content) >= LIMIT:
        wrong.append(f"has {len(content)} bytes")
    sys.exit("\n".join(wrong) or 0)


main(*sys.argv[1:])
