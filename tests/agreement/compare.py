#!/usr/bin/env python3
"""Whether sequences of calls give the same everywhere: compare.py COUNT [EMULATOR ...] PROGRAM

The program is a kirvo_agreement. A Windows one is held against the native one, which is skipped
where that has not been built; the native one is held against itself at each level of the processor.
"""

import os
import subprocess
import sys
from pathlib import Path

NATIVE = Path(__file__).resolve().parents[2] / "build" / "native" / "kirvo_agreement"
LEVELS = ("scalar", "sse2", "avx2", "avx512")


def digests(command, level=None):
    environment = {**os.environ, **({"KIRVO_CPU": level} if level else {})}
    result = subprocess.run(command, stdout=subprocess.PIPE, text=True, env=environment, check=True)
    return result.stdout.split("\n")


def compare(name, expected, found):
    for line, other in zip(expected, found):
        if line != other:
            print(f"{name} differs: {other!r} instead of {line!r}")
            return False
    print(f"{name}: {expected[-2].split()[0]} sequences, {expected[-2].split()[1]} calls alike")
    return len(expected) == len(found)


count, *command = sys.argv[1:]
windows = command[-1].endswith(".exe")
if windows and not NATIVE.exists():
    print("the native program has not been built")
    sys.exit(77)
if windows:
    good = compare("Windows", digests([NATIVE, count]), digests([*command, count]))
else:
    expected = digests([*command, count], LEVELS[0])
    good = all([compare(level, expected, digests([*command, count], level)) for level in LEVELS[1:]])
sys.exit(0 if good else 1)
