#!/usr/bin/env python3
"""Writes hostile and odd picture files: recipes.py FOLDER

Each is made by a recipe known from the weaknesses that libraries of these formats have had. A name
begins with the class of weakness, then says what the file does. Most are a sound small file but for
one thing.
"""

import struct
import sys
import zlib
from pathlib import Path

FILES = {}
U32 = 0xFFFFFFFF
SIZES_THAT_WRAP = {  # width, height, whose product with the depth leaves 32 bits, or nearly does
    "2-31": (0x7FFFFFFF, 1), "2-30x4": (0x40000000, 4), "2-16x2-16": (0x10000, 0x10000),
    "third": (0x55555556, 1), "row-of-2-29": (0x20000000, 8), "one-more": (0x10000001, 16),
    "all-ones": (U32, U32), "smallest": (0x80000000, 0x80000000), "minus-one": (U32, 1),
    "largest-square": (46341, 46341), "65535": (65535, 65535), "tall": (1, 0x7FFFFFFF),
    "upside-down-smallest": (2, 0x80000000), "stride-to-zero": (0x2AAAAAAB, 2),
}


def file(weakness, what, ending, *parts):
    FILES[f"{weakness}-{what}.{ending}"] = b"".join(parts)


# --- BMP -----------------------------------------------------------------------------------------

def dib_header(width=4, height=4, bits=24, compression=0, colours=0, image=0, planes=1, size=40):
    return struct.pack("<IIIHHIIIIII", size & U32, width & U32, height & U32, planes, bits,
                       compression, image, 2835, 2835, colours & U32, 0)


def bmp(header, body=b"", offset=None, length=None):
    offset = 14 + len(header) if offset is None else offset
    length = 14 + len(header) + len(body) if length is None else length
    return b"BM" + struct.pack("<IHHI", length & U32, 0, 0, offset & U32) + header + body


def palette(count):
    return b"".join(bytes((i, 255 - i, i * 7 & 255, 0)) for i in range(count))


ROWS = bytes(range(48))
for name, offset in {"zero": 0, "in-header": 20, "at-end": 102, "behind": 4000, "last": U32,
                     "half": 0x80000000}.items():
    file("lying-offset", name, "bmp", bmp(dib_header(), ROWS, offset))
for name, length in {"zero": 0, "one": 1, "less": 60, "last": U32}.items():
    file("lying-size", f"file-{name}", "bmp", bmp(dib_header(), ROWS, length=length))
    file("lying-size", f"image-{name}", "bmp", bmp(dib_header(image=length), ROWS))
for name, (width, height) in SIZES_THAT_WRAP.items():
    for bits in (1, 8, 24, 32):
        file("size-wraps", f"{name}-{bits}", "bmp", bmp(dib_header(width, height, bits), ROWS))
    file("size-wraps", f"{name}-rle", "bmp", bmp(dib_header(width, height, 8, 1), palette(256), 54 + 1024),
         b"\x04\x01\x00\x01")
for width, height in ((0, 4), (4, 0), (0, 0)):
    file("zero-size", f"{width}x{height}", "bmp", bmp(dib_header(width, height), ROWS))
for bits, used in ((8, 2), (8, 257), (8, 65536), (8, 0x40000000), (8, U32), (4, 1), (4, 17), (1, 1),
                   (1, 3), (24, U32), (24, 0x3FFFFFFF)):
    file("palette-beyond", f"{used:x}-of-{bits}", "bmp",
         bmp(dib_header(4, 4, bits, colours=used), palette(min(used, 16)) + b"\xff" * 64,
             54 + 4 * min(used, 16)))
RUNS = {
    "run-beyond-row": b"\xff\x01" * 8, "run-beyond-picture": b"\x04\x01\x00\x00" * 64,
    "absolute-beyond-row": b"\x00\xff" + b"\x22" * 256, "absolute-beyond-file": b"\x00\xff\x01",
    "jump-beyond": b"\x00\x02\xff\xff\x04\x01\x00\x01", "jumps": b"\x00\x02\x00\x01" * 200 + b"\x04\x01",
    "jump-right": b"\x00\x02\xff\x00\x04\x01" * 40, "no-end": b"\x04\x01", "nothing": b"",
    "rows-without-end": b"\x00\x00" * 4096, "odd-absolute": b"\x00\x03\x01\x02\x03\x00\x00\x01",
    "cut-escape": b"\x00", "cut-jump": b"\x00\x02\x01", "end-first": b"\x00\x01\x04\x01",
    "zero-runs": b"\x00\x00\x00\x00\x01\x07" * 30,
}
for name, runs in RUNS.items():
    for bits, compression in ((8, 1), (4, 2)):
        for height in (4, -4):
            file("run-length-escape", f"{name}-{bits}{'-top-down' if height < 0 else ''}", "bmp",
                 bmp(dib_header(4, height, bits, compression), palette(1 << bits) + runs,
                     54 + 4 * (1 << bits)))
file("run-length-escape", "of-24-bits", "bmp", bmp(dib_header(bits=24, compression=1), ROWS))
file("bomb", "rle-65535", "bmp", bmp(dib_header(65535, 65535, 8, 1), palette(256), 1078), b"\xff\x01" * 9)
for name, masks in {"zero": (0, 0, 0), "same": (U32, U32, U32), "holes": (0xAAAAAAAA, 0x55555555, 1),
                    "beyond-16": (0xFF0000, 0xFF00, 0xFF), "one-bit": (0x80000000, 1, 2)}.items():
    for bits in (16, 32):
        file("masks", f"{name}-{bits}", "bmp",
             bmp(dib_header(bits=bits, compression=3) + struct.pack("<III", *masks), ROWS * 2))
for size in (0, 4, 12, 13, 16, 39, 41, 52, 56, 64, 108, 124, 1000, 0x7FFFFFFF, 0x80000000, U32):
    body = dib_header(size=size) + bytes(84)
    file("header-size", f"{size:x}", "bmp", bmp(body, ROWS))
for name, (start, length) in {"behind": (4000, 100), "wraps": (U32 - 8, 64), "all": (0, U32),
                              "inside": (4, 100)}.items():
    v5 = dib_header(size=124) + b"BGRs"[::-1] * 0 + bytes(16) + b"DEBM" + bytes(48) + \
        struct.pack("<IIII", 4, start, length, 0)
    file("profile", name, "bmp", bmp(v5, ROWS))
for compression, within in ((4, b"\xff\xd8\xff\xd9"), (5, b"\x89PNG\r\n\x1a\n")):
    file("picture-within", str(compression), "bmp", bmp(dib_header(bits=0, compression=compression), within))
for planes, bits in ((0, 24), (65535, 24), (1, 0), (1, 2), (1, 3), (1, 5), (1, 12), (1, 48), (1, 64),
                     (1, 65535), (1, 255), (3, 8)):
    file("depth", f"{planes}-{bits}", "bmp", bmp(dib_header(planes=planes, bits=bits), ROWS))
SOUND_BMP = bmp(dib_header(), ROWS)
for length in (0, 1, 2, 10, 13, 14, 17, 18, 30, 53, 54, 55, 101):
    file("cut-off", str(length), "bmp", SOUND_BMP[:length])


# --- Targa ---------------------------------------------------------------------------------------

def targa(kind=2, width=4, height=4, depth=24, identity=0, mapped=0, first=0, entries=0, bits=0,
          descriptor=0):
    return struct.pack("<BBBHHBHHHHBB", identity, mapped, kind, first, entries, bits, 0, 0, width,
                       height, depth, descriptor)


file("run-beyond", "row", "tga", targa(10), b"\xff\x01\x02\x03" * 4)
file("run-beyond", "file", "tga", targa(10), b"\xff\x01")
file("run-beyond", "raw-packet", "tga", targa(10), b"\x7f\x01\x02\x03")
file("run-beyond", "empty", "tga", targa(10))
file("palette-beyond", "index", "tga", targa(1, depth=8, mapped=1, entries=2, bits=24), bytes(6),
     b"\xff" * 16)
file("palette-beyond", "rle-index", "tga", targa(9, depth=8, mapped=1, entries=2, bits=24), bytes(6),
     b"\x8f\xff")
file("palette-beyond", "first", "tga",
     targa(1, depth=8, mapped=1, first=65535, entries=2, bits=24), bytes(6), bytes(16))
file("palette-beyond", "no-map", "tga", targa(1, depth=8), bytes(16))
file("palette-beyond", "index-16", "tga", targa(1, depth=16, mapped=1, entries=2, bits=24), bytes(6),
     b"\xff" * 32)
file("lying-size", "map-65535", "tga", targa(1, depth=8, mapped=1, entries=65535, bits=32), bytes(9))
for bits in (0, 1, 7, 15, 16, 33, 64, 255):
    file("map-depth", str(bits), "tga", targa(1, depth=8, mapped=1, entries=2, bits=bits), bytes(64))
for depth in (0, 1, 7, 8, 15, 16, 17, 32, 33, 64, 255):
    file("depth", str(depth), "tga", targa(2, depth=depth), bytes(64))
for kind in (0, 1, 3, 4, 11, 32, 33, 128, 255):
    file("kind", str(kind), "tga", targa(kind), bytes(64))
for width, height in ((0, 4), (4, 0), (0, 0), (65535, 65535), (65535, 1), (1, 65535)):
    file("zero-size" if 0 in (width, height) else "size-claimed", f"{width}x{height}", "tga",
         targa(2, width, height), bytes(48))
    file("bomb", f"{width}x{height}", "tga", targa(10, width, height), b"\xff\x01\x02\x03")
file("lying-size", "identity", "tga", targa(identity=255), bytes(48))
for name, (extension, developer) in {"self": (66, 66), "behind": (U32, U32), "header": (0, 3)}.items():
    file("footer", name, "tga", targa(), bytes(48), struct.pack("<II", extension, developer),
         b"TRUEVISION-XFILE.\0")
for descriptor in (0x10, 0x20, 0x30, 0x40, 0xC0, 0xFF):
    file("order", f"{descriptor:x}", "tga", targa(descriptor=descriptor), bytes(48))


# --- Icons ---------------------------------------------------------------------------------------

def icon(entries, body, kind=1, count=None):
    return struct.pack("<HHH", 0, kind, len(entries) if count is None else count) + \
        b"".join(struct.pack("<BBBBHHII", w, h, c, 0, 1, b, size & U32, at & U32)
                 for w, h, c, b, size, at in entries) + body


IMAGE = dib_header(8, 16, 1) + palette(2) + bytes(64)
SOUND = (8, 8, 2, 1, len(IMAGE))
file("directory", "overlap", "ico", icon([(*SOUND, 6), (*SOUND, 22)], IMAGE))
file("directory", "same-image", "ico", icon([(*SOUND, 22 + 16 * 299)] * 300, IMAGE))
file("directory", "count", "ico", icon([(*SOUND, 22)], IMAGE, count=65535))
file("directory", "none", "ico", icon([], IMAGE))
for name, (size, at) in {"zero": (len(IMAGE), 0), "inside": (len(IMAGE), 10), "behind": (len(IMAGE), 4000),
                         "wraps": (0x20, U32 - 15), "large": (U32, 22), "no-size": (0, 22),
                         "small": (39, 22), "half": (0x80000000, 0x80000000)}.items():
    file("directory", f"offset-{name}", "ico", icon([(8, 8, 2, 1, size, at)], IMAGE))
for kind in (0, 2, 3, 65535):
    file("directory", f"kind-{kind}", "ico", icon([(*SOUND, 22)], IMAGE, kind))
for name, header in {
    "height-not-double": dib_header(8, 8, 1), "height-odd": dib_header(8, 15, 1),
    "no-height": dib_header(8, 0, 1), "no-width": dib_header(0, 16, 1),
    "negative": dib_header(8, -16, 1), "bits-0": dib_header(8, 16, 0), "bits-2": dib_header(8, 16, 2),
    "bits-24": dib_header(8, 16, 24), "bits-32": dib_header(8, 16, 32), "bits-16": dib_header(8, 16, 16),
    "rle": dib_header(8, 16, 8, 1), "colours": dib_header(8, 16, 8, colours=U32),
    "colours-257": dib_header(8, 16, 8, colours=257), "size-0": dib_header(8, 16, 1, size=0),
    "size-last": dib_header(8, 16, 1, size=U32), "planes": dib_header(8, 16, 1, planes=0),
}.items():
    file("image-within", name, "ico", icon([(*SOUND, 22)], header + palette(2) + bytes(64)))
for name, (width, height) in SIZES_THAT_WRAP.items():
    file("size-wraps", name, "ico", icon([(*SOUND, 22)], dib_header(width, height, 32) + bytes(99)))
file("image-within", "without-mask", "ico", icon([(8, 8, 0, 24, 40 + 192, 22)], dib_header(8, 16) + bytes(192)))
file("image-within", "png", "ico", icon([(0, 0, 0, 32, 60, 22)], b"\x89PNG\r\n\x1a\n" + bytes(52)))
file("image-within", "hot-spot", "cur", icon([(8, 8, 2, 65535, len(IMAGE), 22)], IMAGE, 2))
for length in (0, 3, 5, 6, 21, 22, 61, 62, 70, 100):
    file("cut-off", str(length), "ico", icon([(*SOUND, 22)], IMAGE)[:length])


# --- JPEG ----------------------------------------------------------------------------------------

def segment(marker, content=b"", length=None):
    return bytes((0xFF, marker)) + struct.pack(">H", len(content) + 2 if length is None else length) + content


def frame(width=16, height=16, components=((1, 0x11, 0),), marker=0xC0, precision=8, count=None):
    return segment(marker, struct.pack(">BHHB", precision, height, width,
                                       len(components) if count is None else count) +
                   b"".join(bytes(one) for one in components))


def scan(components=((1, 0),), start=0, end=63, approximation=0, count=None):
    return segment(0xDA, bytes([len(components) if count is None else count]) +
                   b"".join(bytes(one) for one in components) + bytes((start, end, approximation)))


def codes(table=0, counts=(1, 1), symbols=(0, 1)):
    return segment(0xC4, bytes([table]) + bytes((*counts, *[0] * (16 - len(counts)))) + bytes(symbols))


SOI, EOI = b"\xff\xd8", b"\xff\xd9"
QUANTISERS = segment(0xDB, b"\0" + b"\1" * 64)
CODES = codes(0x00) + codes(0x10, symbols=(0, 0))
START = SOI + QUANTISERS + CODES
COLOUR = ((1, 0x22, 0), (2, 0x11, 0), (3, 0x11, 0))
COLOUR_SCAN = ((1, 0), (2, 0), (3, 0))
ZEROS = bytes(64)


def jpeg(weakness, what, *parts):
    file(weakness, what, "jpg", *parts)


jpeg("sound", "grey", START, frame(), scan(), ZEROS, EOI)
jpeg("sound", "colour", START, frame(components=COLOUR), scan(COLOUR_SCAN), ZEROS, EOI)
for ac in (False, True):
    one = scan(start=1 if ac else 0, end=63 if ac else 0) + bytes(2)
    jpeg("thousands-of-scans", "ac" if ac else "dc", START, frame(256, 256, marker=0xC2), one * 3000, EOI)
jpeg("thousands-of-scans", "refining", START, frame(64, 64, marker=0xC2), scan(end=0, approximation=1),
     bytes(16), (scan(end=0, approximation=0x10) + bytes(16)) * 2000, EOI)
jpeg("thousands-of-scans", "baseline", START, frame(), (scan() + ZEROS) * 2000, EOI)
RESTART = segment(0xDD, b"\0\1")
jpeg("restart-storm", "each-mcu", START, RESTART, frame(512, 512), scan(),
     b"".join(bytes((0, 0xFF, 0xD0 + i % 8)) for i in range(4096)), EOI)
jpeg("restart-storm", "markers-alone", START, RESTART, frame(512, 512), scan(), b"\xff\xd0" * 20000, EOI)
jpeg("restart-storm", "out-of-order", START, RESTART, frame(64, 64), scan(), b"\0\xff\xd7\0\xff\xd3" * 64, EOI)
jpeg("restart-storm", "never", START, RESTART, frame(64, 64), scan(), ZEROS * 4, EOI)
jpeg("restart-storm", "interval-65535", START, segment(0xDD, b"\xff\xff"), frame(64, 64), scan(), ZEROS, EOI)
for width, height in ((0, 16), (16, 0), (0, 0), (65535, 65535), (65535, 1), (1, 65535), (46341, 46341)):
    for marker in (0xC0, 0xC2):
        jpeg("zero-size" if 0 in (width, height) else "size-claimed", f"{width}x{height}-{marker:x}", START,
             frame(width, height, COLOUR, marker), scan(COLOUR_SCAN, end=63 if marker == 0xC0 else 0), ZEROS, EOI)
jpeg("zero-size", "height-later", START, frame(16, 0), scan(), ZEROS, segment(0xDC, b"\0\x10"), EOI)
jpeg("codes", "more-than-256", SOI, QUANTISERS, segment(0xC4, b"\0" + b"\xff" * 16 + bytes(4000)), frame(), scan(), ZEROS)
jpeg("codes", "too-many-of-a-length", SOI, QUANTISERS, codes(0, (3, 5, 9), range(17)), codes(0x10), frame(), scan(), ZEROS, EOI)
jpeg("codes", "none", SOI, QUANTISERS, codes(0, (0,), ()), codes(0x10, (0,), ()), frame(), scan(), ZEROS, EOI)
jpeg("codes", "missing", SOI, QUANTISERS, frame(), scan(), ZEROS, EOI)
jpeg("codes", "cut-off", SOI, QUANTISERS, segment(0xC4, b"\0" + bytes([0] * 15 + [200]) + bytes(3)), frame(), scan(), ZEROS)
for table in (0x04, 0x0F, 0x14, 0x1F, 0x20, 0xFF):
    jpeg("codes", f"table-{table:x}", SOI, QUANTISERS, codes(table), CODES, frame(), scan(), ZEROS, EOI)
for symbol in (12, 15, 16, 17, 255):
    jpeg("value-too-long", f"dc-{symbol}", SOI, QUANTISERS, codes(0, symbols=(symbol, symbol)),
         codes(0x10, symbols=(0, 0)), frame(), scan(), b"\x5a" * 300, EOI)
for symbol in (0xF0, 0xF1, 0xFF, 0x0F, 0xE0, 0x10):
    for marker in (0xC0, 0xC2):
        jpeg("run-beyond-block", f"{symbol:x}-{marker:x}", SOI, QUANTISERS, codes(0), codes(0x10, symbols=(symbol, symbol)),
             frame(marker=marker), scan(start=0 if marker == 0xC0 else 1), b"\x5a" * 300, EOI)
for number in (1, 3, 4, 15, 0x10, 0x13, 0xFF):
    jpeg("quantisers", f"table-{number:x}", SOI, segment(0xDB, bytes([number]) + b"\1" * 128), CODES, frame(), scan(), ZEROS, EOI)
jpeg("quantisers", "zero", SOI, segment(0xDB, bytes(65)), CODES, frame(), scan(), ZEROS, EOI)
jpeg("quantisers", "missing", SOI, CODES, frame(components=((1, 0x11, 3),)), scan(), ZEROS, EOI)
jpeg("quantisers", "largest", SOI, segment(0xDB, b"\0" + b"\xff" * 64), codes(0, symbols=(11, 11)), codes(0x10, symbols=(0x0A, 0x0A)),
     frame(), scan(), b"\xfe" * 900, EOI)
for sampling in (0x00, 0x01, 0x10, 0x13, 0x31, 0x41, 0x14, 0x44, 0x4F, 0xF4, 0xFF):
    jpeg("sampling", f"{sampling:02x}", START, frame(components=((1, sampling, 0), *COLOUR[1:])), scan(COLOUR_SCAN), ZEROS, EOI)
    jpeg("sampling", f"grey-{sampling:02x}", START, frame(components=((1, sampling, 0),)), scan(), ZEROS, EOI)
jpeg("sampling", "chroma-larger", START, frame(components=((1, 0x11, 0), (2, 0x22, 0), (3, 0x22, 0))), scan(COLOUR_SCAN), ZEROS, EOI)
for count in (0, 2, 4, 5, 255):
    many = tuple((i, 0x11, 0) for i in range(1, count + 1))
    jpeg("components", str(count), START, frame(components=many), scan(COLOUR_SCAN), ZEROS, EOI)
    jpeg("components", f"scan-{count}", START, frame(components=COLOUR), scan(tuple((i & 255, 0) for i in range(1, count + 1))), ZEROS, EOI)
    jpeg("components", f"lie-{count}", START, frame(components=COLOUR, count=count), scan(count=count), ZEROS, EOI)
jpeg("components", "same", START, frame(components=((1, 0x11, 0),) * 3), scan(((1, 0),) * 3), ZEROS, EOI)
jpeg("components", "unknown-in-scan", START, frame(), scan(((9, 0),)), ZEROS, EOI)
jpeg("components", "tables-15", START, frame(), scan(((1, 0xFF),)), ZEROS, EOI)
for start, end, approximation in ((1, 0, 0), (63, 1, 0), (64, 64, 0), (0, 255, 0), (255, 255, 0), (0, 0, 0xFF),
                                  (0, 0, 0x0F), (1, 63, 0xD0), (5, 5, 0x0D), (0, 63, 0x21)):
    jpeg("band", f"{start}-{end}-{approximation:x}", START, frame(marker=0xC2), scan(start=start, end=end, approximation=approximation), ZEROS, EOI)
jpeg("order", "two-frames", START, frame(), frame(64, 64, COLOUR), scan(), ZEROS, EOI)
jpeg("order", "frame-between-scans", START, frame(16, 16, marker=0xC2), scan(end=0), ZEROS, frame(512, 512, COLOUR, 0xC2), scan(end=0), ZEROS, EOI)
jpeg("order", "scan-first", START, scan(), ZEROS, frame(), EOI)
jpeg("order", "start-again", START, frame(), scan(), bytes(2), SOI, START, frame(64, 64), scan(), ZEROS, EOI)
jpeg("order", "tables-change", START, frame(64, 64, marker=0xC2), (scan(end=0) + bytes(4) + codes(0, symbols=(1, 0))) * 50, EOI)
for marker in (0xC1, 0xC3, 0xC5, 0xC9, 0xCA, 0xCD, 0xF7):
    jpeg("kind", f"{marker:x}", START, frame(marker=marker), scan(), ZEROS, EOI)
for precision in (0, 1, 7, 9, 12, 16, 255):
    jpeg("kind", f"precision-{precision}", START, frame(precision=precision), scan(), ZEROS, EOI)
for marker in (0xC0, 0xC4, 0xDA, 0xDB, 0xDD, 0xE0, 0xE1, 0xE2, 0xEE, 0xFE):
    for length in (0, 1, 2, 3, 65535):
        jpeg("lying-size", f"{marker:x}-{length}", SOI, segment(marker, b"\1" * 20, length), QUANTISERS, CODES, frame(), scan(), ZEROS, EOI)
jpeg("many", "comments", SOI, segment(0xFE, b"a" * 65533) * 20, START[2:], frame(), scan(), ZEROS, EOI)
jpeg("many", "small-comments", SOI, segment(0xFE) * 5000, START[2:], frame(), scan(), ZEROS, EOI)
jpeg("many", "fill-bytes", SOI, b"\xff" * 200000, START[2:], frame(), scan(), ZEROS, EOI)
jpeg("many", "fill-in-scan", START, frame(), scan(), b"\xff" * 200000)
jpeg("many", "stuffing", START, frame(), scan(), b"\xff\0" * 50000)
jpeg("many", "tables", SOI, (QUANTISERS + CODES) * 1000, frame(), scan(), ZEROS, EOI)
jpeg("many", "starts", SOI * 20000)
jpeg("many", "scans-of-huge", START, frame(8192, 8192, COLOUR, 0xC2), (scan(COLOUR_SCAN, end=0) + b"\0") * 40, EOI)
for length in (0, 1, 2, 3, 4, 20, 60, 100, 110, 140):
    jpeg("cut-off", str(length), (START + frame() + scan() + ZEROS)[:length])


# --- EXIF, profiles and thumbnails ---------------------------------------------------------------

def tiff(*entries, order="<", first=8, following=0, behind=b"", count=None):
    mark = b"II" if order == "<" else b"MM"
    return struct.pack(order + "2sHI", mark, 42, first & U32) + \
        struct.pack(order + "H", len(entries) if count is None else count) + \
        b"".join(struct.pack(order + "HHII", tag, kind, n & U32, value & U32) for tag, kind, n, value in entries) + \
        struct.pack(order + "I", following & U32) + behind


SIDES = ((256, 3, 1, 4), (257, 3, 1, 4))
for name, exif in {
    "loop": tiff(following=8), "loop-within": tiff((0x8769, 4, 1, 8)), "loop-of-two": tiff((0x8769, 4, 1, 26), behind=tiff((0x8825, 4, 1, 8))),
    "first-behind": tiff(first=4000), "first-last": tiff(first=U32 - 1), "first-in-header": tiff(first=2),
    "count-65535": tiff((0x112, 3, 1, 6), count=65535), "orientation-0": tiff((0x112, 3, 1, 0)),
    "orientation-65535": tiff((0x112, 3, 1, 65535)), "orientation-many": tiff((0x112, 3, 0x80000000, 8)),
    "size-wraps": tiff((0x10F, 4, 0x40000001, 8)), "size-wraps-8": tiff((0x11A, 5, 0x20000001, 8)),
    "text-behind": tiff((0x10F, 2, 100, 4000)), "text-last": tiff((0x10F, 2, U32, U32 - 3)), "kind-0": tiff((0x112, 0, 1, 6)),
    "kind-65535": tiff((0x112, 65535, 1, 6)), "thumbnail-behind": tiff((0x201, 4, 1, 4000), (0x202, 4, 1, 100)),
    "thumbnail-wraps": tiff((0x201, 4, 1, U32 - 10), (0x202, 4, 1, 100)), "thumbnail-all": tiff((0x201, 4, 1, 0), (0x202, 4, 1, U32)),
    "fraction-of-zero": tiff((0x11A, 5, 1, 26), behind=bytes(8)), "big": tiff((0x112, 3, 1, 0x60000), order=">"),
    "deep": b"".join([tiff((0x8769, 4, 1, 26))] + [struct.pack("<HHHIII", 1, 0x8769, 4, 1, 26 + 18 * i, 0) for i in range(1, 400)]),
    "note": tiff((0x927C, 7, U32, 8)), "empty": b"", "short": b"II*\0",
}.items():
    jpeg("exif", name, SOI, segment(0xE1, b"Exif\0\0" + exif), START[2:], frame(), scan(), ZEROS, EOI)
    file("directory", f"exif-{name}", "tif", exif)
for number, total in ((0, 0), (1, 0), (0, 1), (2, 1), (255, 255), (1, 255)):
    jpeg("profile", f"{number}-of-{total}", SOI, segment(0xE2, b"ICC_PROFILE\0" + bytes((number, total)) + b"x" * 30) * 2, START[2:], frame(), scan(), ZEROS, EOI)
jpeg("profile", "lying", SOI, segment(0xE2, b"ICC_PROFILE\0\1\1" + struct.pack(">I", U32) + bytes(124) + struct.pack(">I4sII", U32, b"desc", U32, U32)), START[2:], frame(), scan(), ZEROS, EOI)
jpeg("thumbnail", "jfif-lies", SOI, segment(0xE0, b"JFIF\0\1\2\0\0\1\0\1\xff\xff"), START[2:], frame(), scan(), ZEROS, EOI)
jpeg("thumbnail", "itself", SOI, segment(0xE1, b"Exif\0\0" + tiff((0x201, 4, 1, 0), (0x202, 4, 1, 60))), START[2:], frame(), scan(), ZEROS, EOI)
for transform in (0, 1, 2, 255):
    jpeg("colours", f"adobe-{transform}", SOI, segment(0xEE, b"Adobe\0\x64\0\0\0\0" + bytes([transform])), START[2:], frame(components=COLOUR), scan(COLOUR_SCAN), ZEROS, EOI)
jpeg("colours", "adobe-short", SOI, segment(0xEE, b"Adobe"), START[2:], frame(components=COLOUR), scan(COLOUR_SCAN), ZEROS, EOI)


# --- formats of other libraries ------------------------------------------------------------------

def chunk(kind, content=b"", length=None, check=None):
    check = zlib.crc32(kind + content) if check is None else check
    return struct.pack(">I", len(content) if length is None else length) + kind + content + struct.pack(">I", check)


def png(width=4, height=4, bits=8, colour=2, *between, data=None, interlace=0):
    rows = zlib.compress((b"\0" + bytes(width * 3 if width < 99 else 9)) * (height if height < 99 else 9)) if data is None else data
    return b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, bits, colour, 0, 0, interlace)) + \
        b"".join(between) + chunk(b"IDAT", rows) + chunk(b"IEND")


for width, height in ((0, 4), (4, 0), (0x7FFFFFFF, 0x7FFFFFFF), (U32, 1), (0x10000, 0x10000), (1, 0x7FFFFFFF)):
    file("size-wraps" if width and height else "zero-size", f"{width:x}x{height:x}", "png", png(width, height))
file("palette-beyond", "index", "png", png(4, 4, 8, 3, chunk(b"PLTE", bytes(6)), data=zlib.compress((b"\0" + b"\xff" * 4) * 4)))
file("palette-beyond", "missing", "png", png(4, 4, 8, 3))
file("palette-beyond", "transparency", "png", png(4, 4, 8, 3, chunk(b"PLTE", bytes(6)), chunk(b"tRNS", bytes(300))))
file("palette-beyond", "too-long", "png", png(4, 4, 8, 3, chunk(b"PLTE", bytes(771))))
for bits, colour in ((0, 2), (3, 0), (16, 3), (255, 2), (8, 1), (8, 255)):
    file("depth", f"{bits}-{colour}", "png", png(4, 4, bits, colour))
file("bomb", "rows", "png", png(20000, 20000, data=zlib.compress(bytes(3000000))))
file("bomb", "text", "png", png(4, 4, 8, 2, chunk(b"zTXt", b"a\0\0" + zlib.compress(bytes(5000000)))))
file("bomb", "profile-of-100-mb", "png", png(4, 4, 8, 2, chunk(b"iCCP", b"a\0\0" + zlib.compress(bytes(100000000)))))
file("bomb", "profile", "png", png(4, 4, 8, 2, chunk(b"iCCP", b"a\0\0" + zlib.compress(bytes(5000000)))))
file("lying-size", "chunk", "png", png(4, 4, 8, 2, chunk(b"tEXt", b"a\0b", U32)))
file("lying-size", "check", "png", png(4, 4, 8, 2, chunk(b"gAMA", bytes(4), check=1)))
file("many", "chunks", "png", png(4, 4, 8, 2, chunk(b"tEXt", b"a\0b") * 5000))
file("order", "rows-first", "png", b"\x89PNG\r\n\x1a\n" + chunk(b"IDAT", b"") + chunk(b"IEND"))
file("order", "interlaced-1x1", "png", png(1, 1, interlace=1))
file("cut-off", "rows", "png", png()[:60])


def gif(width=4, height=4, flags=0x80, body=b"", table=bytes(6)):
    return b"GIF89a" + struct.pack("<HHBBB", width, height, flags, 0, 0) + table + body


def gif_frame(left=0, top=0, width=4, height=4, flags=0, code_bits=2, data=b"\x02\x4c\x01\x00"):
    return b"," + struct.pack("<HHHHB", left, top, width, height, flags) + bytes([code_bits]) + data


file("zero-size", "0x0", "gif", gif(0, 0, body=gif_frame(width=0, height=0) + b";"))
file("size-claimed", "65535", "gif", gif(65535, 65535, body=gif_frame(width=65535, height=65535) + b";"))
file("frame-beyond", "screen", "gif", gif(4, 4, body=gif_frame(65535, 65535, 65535, 65535) + b";"))
file("many", "frames", "gif", gif(body=gif_frame(width=1, height=1) * 5000 + b";"))
for bits in (0, 1, 9, 12, 255):
    file("codes", f"size-{bits}", "gif", gif(body=gif_frame(code_bits=bits) + b";"))
file("codes", "beyond-table", "gif", gif(body=gif_frame(data=b"\x04\xff\xff\xff\xff\x00") + b";"))
file("palette-beyond", "none", "gif", gif(flags=0, table=b"", body=gif_frame() + b";"))
file("cut-off", "no-end", "gif", gif(body=gif_frame()[:12]))
file("lying-size", "extension", "gif", gif(body=b"!\xff\xff" + b"x" * 30))

STRIP = ((258, 3, 1, 8), (259, 3, 1, 1), (262, 3, 1, 1), (273, 4, 1, 8), (277, 3, 1, 1), (278, 3, 1, 4), (279, 4, 1, 16))
for name, change in {"strip-behind": (273, 4, 1, 4000), "strip-last": (273, 4, 1, U32 - 3), "bytes-last": (279, 4, 1, U32),
                     "bits-65535": (258, 3, 1, 65535), "bits-0": (258, 3, 1, 0), "samples-65535": (277, 3, 1, 65535),
                     "samples-0": (277, 3, 1, 0), "rows-0": (278, 3, 1, 0), "rows-last": (278, 4, 1, U32),
                     "compression": (259, 3, 1, 65535), "lzw": (259, 3, 1, 5), "packed": (259, 3, 1, 32773),
                     "deflate": (259, 3, 1, 8), "fax": (259, 3, 1, 4), "jpeg": (259, 3, 1, 7), "palette": (262, 3, 1, 3),
                     "strips-many": (273, 4, 0x40000000, 8)}.items():
    file("strips", name, "tif", tiff(*SIDES, *(change if change[0] == one[0] else one for one in STRIP), behind=bytes(32)))
for name, (width, height) in SIZES_THAT_WRAP.items():
    file("size-wraps", name, "tif", tiff((256, 4, 1, width), (257, 4, 1, height), *STRIP, behind=bytes(32)))
file("zero-size", "0x0", "tif", tiff((256, 3, 1, 0), (257, 3, 1, 0), *STRIP))
file("tiles", "zero", "tif", tiff(*SIDES, *STRIP[:3], (322, 3, 1, 0), (323, 3, 1, 0), (324, 4, 1, 8), (325, 4, 1, 16)))
file("tiles", "huge", "tif", tiff(*SIDES, *STRIP[:3], (322, 4, 1, U32), (323, 4, 1, U32), (324, 4, 1, 8), (325, 4, 1, 16)))


def webp(*chunks, size=None):
    body = b"WEBP" + b"".join(chunks)
    return b"RIFF" + struct.pack("<I", len(body) if size is None else size) + body


def riff(kind, content, size=None):
    return kind + struct.pack("<I", (len(content) if size is None else size) & U32) + content


for size in (0, 4, 11, U32):
    file("lying-size", f"riff-{size:x}", "webp", webp(riff(b"VP8 ", bytes(40)), size=size))
    file("lying-size", f"chunk-{size:x}", "webp", webp(riff(b"VP8L", b"\x2f" + bytes(40), size)))
file("size-claimed", "canvas", "webp", webp(riff(b"VP8X", b"\x10\0\0\0" + b"\xff" * 6), riff(b"VP8L", b"\x2f\xff\xff\xff\x0f" + bytes(40))))
file("size-claimed", "lossy", "webp", webp(riff(b"VP8 ", b"\x10\0\0\x9d\x01\x2a\xff\x3f\xff\x3f" + bytes(40))))
file("codes", "lossless", "webp", webp(riff(b"VP8L", b"\x2f\x03\xc0\0\0" + b"\xff" * 60)))
file("order", "animation-first", "webp", webp(riff(b"ANMF", bytes(40)), riff(b"VP8X", bytes(10))))

# --- Q0 and RAW ----------------------------------------------------------------------------------

for width, height in ((0, 0), (1, 0), (65535, 65535), (32768, 32768), (2, 2)):
    file("size-claimed", f"{width}x{height}", "raw", b"mhwanh\0\4", struct.pack(">HH", width, height), bytes(32))
for length in (0, 5, 8, 11, 31, 32):
    file("cut-off", str(length), "raw", (b"mhwanh\0\4\0\2\0\2" + bytes(40))[:length])
for name, text in {"negative": "-1 -1", "zero": "0 0", "long": "99999999999999999999 1", "wraps": "4294967297 1",
                   "square": "65536 65536", "2-31": "2147483648 1", "one": "4", "none": "", "words": "a b",
                   "digits": "1" * 100000, "spaces": " " * 100000 + "4 4", "zero-byte": "4\0 4"}.items():
    file("numbers", name, "q0", bytes(48))
    file("numbers", name, "IPR", text.encode())

folder = Path(sys.argv[1])
folder.mkdir(parents=True, exist_ok=True)
for name, content in FILES.items():
    path = folder / name
    if not path.exists() or path.read_bytes() != content:
        path.write_bytes(content)
for path in folder.iterdir():
    if path.name not in FILES:
        path.unlink()
