"""Runs Python code of the pages on a picture: run_code.py CODE PICTURE, which makes python.bmp.

Where a comment of the code names a second picture, that picture is there.
"""
import os
import pathlib
import re
import sys
from ctypes import byref, c_int32

ROOT = pathlib.Path(__file__).resolve().parents[2]
os.environ["KIRVO_LIBRARY"] = str(ROOT / "build/native/libkirvo.so")
sys.path.insert(0, str(ROOT / "bindings/python/src"))
from kirvo import flat


def opened(name):
    status = c_int32()
    image = flat.JpgDecMainEx(name, None, None, byref(status))
    flat.check(status)
    return image


code = pathlib.Path(sys.argv[1]).read_text()
names = {"dib": opened(sys.argv[2])}
for name, file in re.findall(r"^# (\w+) is the picture of (\S+)$", code, re.MULTILINE):
    names[name] = opened(file)
exec(code, names)
result = names[re.search(r"the result is (\w+)$", code, re.MULTILINE)[1]]
bits = flat.DibQueryBitCount(result)
if bits != 24:
    result = (flat.IncreaseColor16M if bits <= 8 else flat.DibConvert24bit)(result, None)
flat.check(flat.DibWriteEx("python.bmp", result, 0, 0, -1, -1))
