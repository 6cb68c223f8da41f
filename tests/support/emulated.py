#!/usr/bin/env python3
"""Runs a test program by Wine, again where Wine did not start it: emulated.py WINE 32|64 PROGRAM [ARGUMENT...]

What it says is passed on as it comes.
"""
import os
import subprocess
import sys
import threading

sys.dont_write_bytecode = True
from programs import ATTEMPTS, is_unexplained


def run(command):
    """The exit code, and whether anything was said."""
    child = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    said = threading.Event()

    def pass_on():
        while piece := child.stdout.read1():
            said.set()
            sys.stdout.buffer.write(piece)
            sys.stdout.buffer.flush()

    reader = threading.Thread(target=pass_on, daemon=True)
    reader.start()
    code = child.wait()
    reader.join(1)  # Windows services that the program started may keep the pipe open
    return code, said.is_set()


for _ in range(ATTEMPTS):
    returned, spoke = run(sys.argv[1:])
    if not is_unexplained(returned, spoke):
        break
os._exit(returned if returned >= 0 else 128 - returned)
