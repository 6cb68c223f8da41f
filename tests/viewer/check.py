#!/usr/bin/env python3
"""The viewer as it was linked: check.py OBJDUMP KirvoView.exe"""
import os
import re
import subprocess
import sys

SYSTEM = {"advapi32.dll", "comctl32.dll", "comdlg32.dll", "gdi32.dll", "kernel32.dll", "msvcrt.dll",
          "shell32.dll", "shlwapi.dll", "user32.dll", "uxtheme.dll"}
OWN = {"kirvo.dll", "kirvofiles.dll"}
# What a program might want of systems after Windows 7: such functions are looked for at run time.
NEWER = re.compile(r"ForDpi|DpiFor|ProcessDpi|ThreadDpi|PathCch|GetPackage|CreateFile2|"
                   r"PointerInfo|SystemTimePrecise|WaitOnAddress|RoInitialize|SetThreadDescription")
LIMIT = 600 * 1024


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
    version = [int(re.search(rf"{part}SubsystemVersion\s+(\d+)", headers)[1])
               for part in ("Major", "Minor")]
    if version > [6, 1]:
        wrong.append(f"wants Windows {version}")
    if os.path.getsize(program) >= LIMIT:
        wrong.append(f"has {os.path.getsize(program)} bytes")
    sys.exit("\n".join(wrong) or 0)


main(*sys.argv[1:])
