#!/usr/bin/env python3
"""Runs an example on real pictures and judges what it makes: check.py EXAMPLE FOLDER [LAUNCHER...]

FOLDER holds the built examples; LAUNCHER starts a program of another system. Pictures are judged by
readers of this script's own, which know uncompressed BMP files only.
"""
import math
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parents[1] / "support"))
import programs

EXAMPLE, FOLDER, LAUNCHER = sys.argv[1], pathlib.Path(sys.argv[2]).resolve(), sys.argv[3:]
PHOTO = pathlib.Path(__file__).resolve().parents[2] / "docs/contact-sheet.jpg"
WORK = pathlib.Path(tempfile.mkdtemp(prefix=f"kirvo-{EXAMPLE}-", dir=FOLDER))


class Picture:
    """Rows from the top, of bytes blue, green, red."""

    def __init__(self, width, height, rows):
        self.width, self.height, self.rows = width, height, rows

    @classmethod
    def drawn(cls, width, height):
        """A smooth sky, a bright disc and a checkered corner."""
        rows = []
        for y in range(height):
            row = bytearray()
            for x in range(width):
                blue, green, red = 255 - 200 * y // height, 128 + 100 * x // width, 40 + y * 150 // height
                if (x - width // 2) ** 2 + (y - height // 3) ** 2 < (height // 5) ** 2:
                    blue, green, red = 30, 220, 250
                if x < width // 4 and y > 3 * height // 4 and (x // 8 + y // 8) % 2:
                    blue = green = red = 250
                row += bytes((blue, green, red))
            rows.append(bytes(row))
        return cls(width, height, rows)

    @classmethod
    def read(cls, name):
        data = (WORK / name).read_bytes()
        magic, start = struct.unpack_from("<2s8xI", data)
        size, width, height, planes, bits, packing = struct.unpack_from("<IiiHHI", data, 14)
        assert (magic, size, planes, bits, packing) == (b"BM", 40, 1, 24, 0), f"{name}: odd header"
        stride = (3 * width + 3) // 4 * 4
        assert len(data) == start + stride * height, f"{name}: odd length"
        rows = [data[start + i * stride:][:3 * width] for i in range(height)]
        return cls(width, height, rows[::-1])

    def write(self, name):
        padding = bytes(-3 * self.width % 4)
        pixels = b"".join(row + padding for row in self.rows[::-1])
        header = struct.pack("<IiiHHIIiiII", 40, self.width, self.height, 1, 24, 0, len(pixels), 0, 0, 0, 0)
        write_bmp(name, header, pixels)

    def mean(self):
        total = [sum(sum(row[channel::3]) for row in self.rows) for channel in range(3)]
        return [value / (self.width * self.height) for value in total]

    def decibels_from(self, other):
        assert (self.width, self.height) == (other.width, other.height)
        error = sum((a - b) ** 2 for left, right in zip(self.rows, other.rows)
                    for a, b in zip(left, right)) / (3 * self.width * self.height)
        return 99 if error == 0 else 10 * math.log10(255 ** 2 / error)


def write_bmp(name, header_and_colours, pixels):
    start = 14 + len(header_and_colours)
    file_header = struct.pack("<2sIHHI", b"BM", start + len(pixels), 0, 0, start)
    (WORK / name).write_bytes(file_header + header_and_colours + pixels)


def run(program, *arguments, code=0):
    """Output of a program that must end with an exit code."""
    path = FOLDER / program
    if not path.exists():
        path = path.with_suffix(".exe")
    return programs.run(*LAUNCHER, path, *arguments, code=code, cwd=WORK, timeout=100)


def fails_with(words, program, *arguments, code=1):
    said = run(program, *arguments, code=code)
    assert words in said, said


def check_convert():
    original = Picture.drawn(301, 203)
    original.write("in.bmp")
    run("convert", "in.bmp", "a.jpg")
    stream = (WORK / "a.jpg").read_bytes()
    assert stream[:2] == b"\xff\xd8" and stream[-2:] == b"\xff\xd9" and len(stream) < 40000
    run("convert", "a.jpg", "b.bmp")
    quality = Picture.read("b.bmp").decibels_from(original)
    assert quality > 30, f"{quality} dB"

    run("convert", "b.bmp", "c.tga")
    run("convert", "c.tga", "d.bmp")
    assert Picture.read("d.bmp").rows == Picture.read("b.bmp").rows

    # A picture with a colour table: four grey columns.
    colours = b"".join(bytes((v, v, v, 0)) for v in (0, 80, 160, 240)) + bytes(4 * 252)
    header = struct.pack("<IiiHHIIiiII", 40, 4, 2, 1, 8, 0, 8, 0, 0, 0, 0)
    write_bmp("grey.bmp", header + colours, bytes((0, 1, 2, 3)) * 2)
    run("convert", "grey.bmp", "grey.tga")
    tga = (WORK / "grey.tga").read_bytes()
    assert tga[18:18 + 12] == bytes(v for v in (0, 80, 160, 240) for _ in range(3))

    fails_with("status -4", "convert", "missing.jpg", "e.bmp")
    fails_with("status -4", "convert", "in.bmp", "missing/e.jpg")
    fails_with("usage", "convert", "in.bmp", "e.png", code=2)
    assert not list(WORK.glob("e.*"))


def check_pieces():
    shutil.copy(PHOTO, WORK / "photo.jpg")
    shown = [int(line.rstrip("%")) for line in run("pieces", "photo.jpg", "out.bmp").split()]
    assert shown[0] == 0 and shown[-1] == 100 and len(shown) > 10 and shown == sorted(shown), shown
    run("convert", "photo.jpg", "whole.bmp")
    assert (WORK / "out.bmp").read_bytes() == (WORK / "whole.bmp").read_bytes()

    output = run("pieces", "photo.jpg", "half.bmp", 50, code=1)
    last = [int(number) for number in re.findall(r"(\d+)%", output)][-1]
    assert 50 <= last < 70 and "cancelled" in output and not (WORK / "half.bmp").exists(), output

    (WORK / "cut.jpg").write_bytes((WORK / "photo.jpg").read_bytes()[:300])
    (WORK / "text.jpg").write_bytes(b"no picture at all" * 100)
    fails_with("status -13", "pieces", "cut.jpg", "e.bmp")
    fails_with("status -10", "pieces", "text.jpg", "e.bmp")
    assert not (WORK / "e.bmp").exists()


def check_thumbnails():
    (WORK / "album").mkdir()
    shutil.copy(PHOTO, WORK / "album/sheet.JPG")
    wide, tiny = Picture.drawn(400, 100), Picture.drawn(20, 30)
    wide.write("album/wide.bmp")
    tiny.write("album/tiny.bmp")
    (WORK / "album/notes.txt").write_text("not a picture, not tried")
    assert "3 made, 0 failed" in run("thumbnails", "album", "small", 120)
    (WORK / "album/broken.jpg").write_bytes(b"\xff\xd8 broken")
    output = run("thumbnails", "album", "small", 120, code=1)
    assert "3 made, 1 failed" in output and "broken.jpg: " in output, output

    assert sorted(f.name for f in (WORK / "small").iterdir()) == \
        ["sheet.JPG", "tiny.bmp.jpg", "wide.bmp.jpg"]
    run("convert", "album/sheet.JPG", "sheet.bmp")
    sheet = Picture.read("sheet.bmp")
    small_sheet_size = tuple(round(side * 120 / max(sheet.width, sheet.height))
                             for side in (sheet.width, sheet.height))
    for name, size, whole in (("sheet.JPG", small_sheet_size, sheet), ("tiny.bmp.jpg", (20, 30), tiny),
                              ("wide.bmp.jpg", (120, 30), wide)):
        run("convert", f"small/{name}", "thumbnail.bmp")
        thumbnail = Picture.read("thumbnail.bmp")
        assert (thumbnail.width, thumbnail.height) == size, name
        for small, large in zip(thumbnail.mean(), whole.mean()):
            assert abs(small - large) < 4, f"{name}: {thumbnail.mean()} of {whole.mean()}"
    fails_with("missing", "thumbnails", "missing", "small")


def check_vignette():
    for width, height in ((101, 67), (1, 1)):
        picture = Picture.drawn(width, height)
        picture.write("in.bmp")
        run("vignette", "in.bmp", "out.bmp")
        reach = max(1, (width - 1) ** 2 + (height - 1) ** 2)
        expected = []
        for y, row in enumerate(picture.rows):
            distances = [(2 * x - width + 1) ** 2 + (2 * y - height + 1) ** 2 for x in range(width)]
            light = [256 - 192 * distance // reach for distance in distances for _ in range(3)]
            expected.append(bytes(value * amount // 256 for value, amount in zip(row, light)))
        assert Picture.read("out.bmp").rows == expected, f"{width} x {height}"

    Picture.drawn(40, 40).write("cut.bmp")
    whole = (WORK / "cut.bmp").read_bytes()
    (WORK / "cut.bmp").write_bytes(whole[:-200])
    fails_with("cut.bmp: ", "vignette", "cut.bmp", "e.bmp")
    assert not (WORK / "e.bmp").exists()


def check_photo():
    name = "photo.jpg" if LAUNCHER else "写真.jpg" # launched programs get names in the ANSI code page
    shutil.copy(PHOTO, WORK / name)
    shown = [int(number) for number in re.findall(r"(\d+)%", run("photo", name, "out.bmp"))]
    assert shown[-1] == 100 and shown.count(100) >= 4, shown # opened, cropped, resized, sharpened, saved
    run("convert", name, "whole.bmp")
    whole, made = Picture.read("whole.bmp"), Picture.read("out.bmp")
    width, height = whole.width * 9 // 10, whole.height * 9 // 10
    assert (made.width, made.height) == (800, height * 800 // width)
    left, top = whole.width // 20, whole.height // 20
    part = Picture(width, height, [row[3 * left:3 * (left + width)]
                                   for row in whole.rows[top:top + height]])
    for small, large in zip(made.mean(), part.mean()):
        assert abs(small - large) < 4, f"{made.mean()} of {part.mean()}"
    (WORK / "text.jpg").write_bytes(b"no picture at all" * 100)
    fails_with("text.jpg: ", "photo", "text.jpg", "e.bmp")
    assert not (WORK / "e.bmp").exists()


def check_window():
    """The client area is the picture; a picture wider than the screen is made smaller."""
    picture = Picture.drawn(400, 300)
    picture.write("in.bmp")
    run("window", "in.bmp", "out.bmp")
    shown = Picture.read("out.bmp")
    assert shown.decibels_from(picture) > 40, "the window does not show the picture"

    Picture.drawn(2600, 130).write("wide.bmp")
    run("window", "wide.bmp", "out.bmp")
    shown = Picture.read("out.bmp")
    assert shown.width < 2600
    height = 130 * shown.width // 2600
    top = (shown.height - height) // 2
    assert not any(shown.rows[0]) and not any(shown.rows[-1]), "no black above and below"
    middle = [row[shown.width // 3 * 3:][:3] for row in shown.rows] # the right may be off the screen
    sky, ground = middle[top + 3], middle[top + height - 4]
    assert sky[0] > 230 and 50 < ground[0] < 80, f"top {tuple(sky)}, bottom {tuple(ground)}"


def main():
    # Starting Windows' services takes longer than an example: a waiting shell keeps them running.
    shell = LAUNCHER and subprocess.Popen([*LAUNCHER, "cmd.exe"], stdin=subprocess.PIPE,
                                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    try:
        if shell:
            shell.stdout.read(1)
        globals()[f"check_{EXAMPLE}"]()
    finally:
        shutil.rmtree(WORK)
        if shell:
            shell.stdin.close()
            shell.wait()


main()
