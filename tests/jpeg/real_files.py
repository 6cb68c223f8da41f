#!/usr/bin/env python3
"""Streams of other encoders against another decoder: real_files.py LIBRARY KIRVO_SAMPLE

Makes a picture, encodes it with cjpeg and jpegtran in many ways, and holds what the library decodes
against djpeg with its accurate transform and replicated chroma: the mean difference of the channels
stays below one level, as the library does not round its colours.
"""
import ctypes
import pathlib
import subprocess
import sys
import tempfile

LIBRARY = ctypes.CDLL(sys.argv[1])
LIBRARY.JpgDecMainEx.restype = ctypes.c_void_p
LIBRARY.GlobalLock.restype = ctypes.c_void_p
LIBRARY.GlobalLock.argtypes = LIBRARY.GlobalFree.argtypes = [ctypes.c_void_p]

SAMPLINGS = ["1x1", "2x1", "1x2", "2x2", "2x2,2x1,2x1", "2x2,1x2,1x2"]
# First passes of bands only: refinement is no part of what the library decodes.
SCANS = {
    "colour": "0,1,2: 0-0, 0, 0;\n0: 1-5, 0, 0;\n2: 1-63, 0, 0;\n1: 1-63, 0, 0;\n0: 6-63, 0, 0;\n",
    "grey": "0: 0-0, 0, 0;\n0: 1-5, 0, 0;\n0: 6-63, 0, 0;\n",
}


def run(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def decode(name):
    """Rows from the top, without padding, as red, green, blue."""
    width, height, error = ctypes.c_uint32(), ctypes.c_uint32(), ctypes.c_int32()
    image = LIBRARY.JpgDecMainEx(str(name).encode(), ctypes.byref(width), ctypes.byref(height),
                                 ctypes.byref(error))
    assert image, f"{name}: {error.value}"
    stride = (width.value * 3 + 3) & ~3
    rows = ctypes.string_at(LIBRARY.GlobalLock(image) + 40, stride * height.value)
    LIBRARY.GlobalFree(image)
    pixels = bytearray()
    for y in reversed(range(height.value)):
        row = rows[y * stride:y * stride + 3 * width.value]
        for x in range(0, len(row), 3):
            pixels += row[x:x + 3][::-1]
    return width.value, height.value, pixels


def reference(name):
    ppm = run("djpeg", "-dct", "int", "-nosmooth", "-rgb", "-ppm", str(name))
    _, width, height, _ = ppm.split(maxsplit=4)[:4]
    width, height = int(width), int(height)
    return width, height, ppm[len(ppm) - 3 * width * height:]


def mean_difference(name):
    ours, theirs = decode(name), reference(name)
    assert ours[:2] == theirs[:2], name
    return sum(abs(a - b) for a, b in zip(ours[2], theirs[2])) / len(theirs[2])


def variants(folder, picture):
    """Names of the files, each with what it is."""
    stream = folder / "stream.jpg"
    changed = folder / "changed.jpg"
    for kind in SAMPLINGS + ["grey"]:
        colour = ["-grayscale"] if kind == "grey" else ["-sample", kind]
        scans = folder / "scans.txt"
        scans.write_text(SCANS["grey" if kind == "grey" else "colour"])
        for more in [[], ["-optimize"], ["-restart", "1B"], ["-restart", "2"], ["-quality", "98"]]:
            stream.write_bytes(run("cjpeg", *colour, *more, str(picture)))
            yield " ".join([kind] + more), stream
            changed.write_bytes(run("jpegtran", "-restart", "3", str(stream)))
            yield " ".join([kind] + more + ["jpegtran -restart"]), changed
            if kind != "1x2":  # whose planes the library lays out as those of 2x1
                changed.write_bytes(run("jpegtran", "-scans", str(scans), str(stream)))
                yield " ".join([kind] + more + ["jpegtran -scans"]), changed


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        picture = folder / "picture.bmp"
        run(sys.argv[2], str(picture), "93", "71")
        count = 0
        for what, stream in variants(folder, picture):
            difference = mean_difference(stream)
            assert difference < 1, f"{what}: {difference}"
            count += 1
        print(f"{count} streams")
        # With refinement scans the picture is decoded from its first passes, coarser but whole.
        stream = folder / "refined.jpg"
        stream.write_bytes(run("cjpeg", "-progressive", str(picture)))
        assert mean_difference(stream) < 30


main()
