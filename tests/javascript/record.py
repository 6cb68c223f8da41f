#!/usr/bin/env python3
"""Random calls of every function that the package has, with what the native library does:
record.py LIBRARY SEED CALLS

Prints JavaScript, since a page on a disk reads nothing else: `globalThis.recorded = [...]`, where each
step is a call with its values and with everything that can be seen of it afterwards. replay.js does
the same calls and compares. Blocks are seen as their size and the CRC-32 of their bytes, arrays as
their elements or their CRC-32.
"""
import base64
import ctypes
import json
import math
import os
import pathlib
import random
import sys
import types
import zlib

SOURCE = pathlib.Path(__file__).parents[2]
os.environ["KIRVO_LIBRARY"] = sys.argv[1]
sys.dont_write_bytecode = True
sys.path.insert(0, str(SOURCE / "interface"))
sys.modules["kirvo"] = package = types.ModuleType("kirvo")  # without what loads the second library
package.__path__ = [str(SOURCE / "bindings/python/src/kirvo")]
from description import Description
from header import Header
from layers import Layers
from languages.javascript import ARRAYS, camel, functions, kind
from kirvo import flat

DEPTHS = (8, 16, 24, 24, 32)
EDGES = (0, 1, -1, 2, 255, 256, -2**31, 2**31 - 1, 65535, 65536)
DOUBLES = (0.1, 0.5, 1.0, 1.8, 2.2, 5.0, 0.0, -1.0, 1e300, 5e-324, math.nan, math.inf)
UNKNOWN = 0x0FFFFFF3  # a handle that nobody was given
STREAMS = [path.read_bytes() for path in sorted((SOURCE / "fuzz/corpus/jpeg_levels").iterdir())
           if not path.name.startswith("bomb") and "_" in path.name or path.name.isalpha()]
ELEMENTS = {"Int32Array": ctypes.c_int32, "Uint32Array": ctypes.c_uint32, "Int16Array": ctypes.c_int16,
            "Uint16Array": ctypes.c_uint16, "Uint8Array": ctypes.c_uint8}

# Values that a function takes, by the names of its parameters; others are small numbers.
RANGES = {
    "bits": (1, 4, 8, 16, 24, 32), "level": (*range(-2, 7), *range(-256, 257, 20)), "red_bits": range(-1, 10),
    "green_bits": range(-1, 10), "blue_bits": range(-1, 10), "mode": range(-1, 8), "q": range(-1, 5),
    "strength": range(-1, 12), "radius": range(-1, 9), "direction": (0, 1), "control": (0, 0, 0, 0, -1),
    "mcus_per_call": (-1, 1, 3, 10), "new_width": range(-1, 200), "new_height": range(-1, 150),
    "red": range(0, 256), "green": range(0, 256), "blue": range(0, 256), "hue": range(-10, 371),
    "saturation": range(0, 256), "divisor": range(-3, 20), "block": range(-1, 20), "index": range(-1, 6),
    "value": (*range(0, 360, 7), -1, 360), "threshold": range(0, 256), "luminance": (0, 1), "maximum": (0, 1),
    "smooth": (0, 1), "enable": (0, 1, 1, 2), "number": range(-1, 5), "count": range(0, 66),
    "grey_mode": (0, 1), "numerator": range(-1, 30), "denominator": range(-1, 30),
}
RANGES |= {f"k{i}": range(-4, 9) for i in range(9)}
# What the parameters of a rectangle are: of the first picture, or where it comes to.
AREA = {"x": "x", "left": "x", "x0": "x", "from_left": "x", "x1": 0, "y": "y", "top": "y", "from_top": "y",
        "y1": 1, "width": "w", "height": "h", "to_left": 0, "to_top": 1, "x2": 0, "y2": 1}


class Recorder:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.functions = {function.name: function for group in Description().groups
                          for function in functions(group)}
        self.steps, self.blocks, self.count = [], {}, 0
        self.succeeded = dict.fromkeys(self.functions, 0)
        self.methods = Layers(Description(), Header()).methods
        self.depths = {method.function.name: method.depths for method in self.methods}

    # What is seen

    @staticmethod
    def block(handle):
        if not handle:
            return 0
        size = flat.GlobalSize(handle)
        data = ctypes.string_at(flat.GlobalLock(handle), size) if size else b""
        flat.GlobalUnlock(handle)
        return [size, zlib.crc32(data)]

    @staticmethod
    def array(values):
        return list(values) if len(values) <= 4 else zlib.crc32(bytes(values))

    def keep(self, handle):
        """The number of a block, under which both sides know it."""
        self.count += 1
        self.blocks[self.count] = handle
        return self.count

    def call(self, name, *values):
        """Calls with values as they stand in the recording: numbers, None, {"block": number},
        {"palette": number}, {"address": number}, {"double": text}, {"array": type, "values": list}, {"handle": 1}."""
        function, arrays, blocks = self.functions[name], [], []
        given = []
        for value in values:
            if not isinstance(value, dict):
                given.append(value)
            elif "palette" in value:
                given.append(self.blocks[value["palette"]])
            elif "block" in value:
                given.append(self.blocks[value["block"]])
                blocks.append(given[-1])
            elif "address" in value:
                given.append(flat.GlobalLock(self.blocks[value["address"]]))
                flat.GlobalUnlock(self.blocks[value["address"]])
            elif "double" in value:
                given.append(float(value["double"]))
            else:
                array = (ctypes.c_void_p * 1)() if "handle" in value else \
                    (ELEMENTS[value["array"]] * len(value["values"]))(*value["values"])
                given.append(ctypes.cast(array, ctypes.POINTER(flat.PALETTEENTRY)) if name == "GetPaletteEntries"
                             else array)
                arrays.append(array)
        result = getattr(flat, name)(*given)
        kinds = function.result.name if function.result else ""
        new, seen = [], []
        for one, known in [(result, kinds in ("image", "block", "palette"))] + \
                [(array[0] or 0, True) for array in arrays if array._type_ is ctypes.c_void_p]:
            if not known:
                seen.append(one)
                continue
            seen.append(bool(one) if kinds == "palette" else self.block(one))
            new.append(self.keep(one) if one else 0)
        seen += [self.array(array) for array in arrays if array._type_ is not ctypes.c_void_p]
        seen += [self.block(block) for block in blocks]
        self.steps.append([name, values, new, seen])
        status = [array[0] for array, one in zip(arrays, [v for v in values if isinstance(v, dict) and
                  ("array" in v or "handle" in v)]) if "array" in one and len(array) == 1]
        if (kinds in ("image", "block") and result) or (kinds not in ("image", "block") and
                                                       (result is None or result >= 0)):
            self.succeeded[name] += 1
        return result, new, status

    def bytes_to(self, data):
        """A new block with these bytes."""
        block = flat.GlobalAlloc(flat.GHND, len(data))
        ctypes.memmove(flat.GlobalLock(block), data, len(data))
        flat.GlobalUnlock(block)
        number = self.keep(block)
        self.steps.append(["bytes", base64.b64encode(data).decode(), [number], []])
        return number

    def free(self, number):
        flat.GlobalFree(self.blocks.pop(number))
        self.steps.append(["free", number, [], []])

    # Pictures

    def header(self, number):
        data = ctypes.string_at(flat.GlobalLock(self.blocks[number]), 40)
        flat.GlobalUnlock(self.blocks[number])
        return flat.BITMAPINFOHEADER.from_buffer_copy(data)

    def picture(self, sound=False):
        """A picture of any depth: noise, or noise in large patches; sometimes its header lies, unless it is
        to be sound."""
        draw = self.random
        bits = draw.choice((1, 4, *DEPTHS))
        width, height = (draw.choice((1, 2, 3, draw.randint(1, 90))) for _ in range(2))
        if draw.random() < 0.7:
            width, height = draw.randint(16, 90), draw.randint(16, 64)
        stride = (width * bits + 31) // 32 * 4
        masks, colours = b"", b""
        if bits in (16, 32) and (bits == 32 or draw.random() < 0.7):
            choices = [(0xF800, 0x7E0, 0x1F), (0x7C00, 0x3E0, 0x1F), (0x1F, 0x7E0, 0xF800)] if bits == 16 else \
                [(0xFF0000, 0xFF00, 0xFF), (0xFF, 0xFF00, 0xFF0000), (0x3FF00000, 0xFFC00, 0x3FF)]
            masks = b"".join(mask.to_bytes(4, "little") for mask in draw.choice(choices))
        used = 0
        if bits <= 8:
            used = draw.choice((0, 0, 2, 2**bits))
            colours = draw.randbytes(4 * (used or 2**bits))
        rows = bytearray(draw.randbytes(stride * height))
        if draw.random() < 0.1:
            rows = bytearray(draw.randbytes(12) * (stride * height))[:stride * height]
        elif draw.random() < 0.5:
            for at in range(0, len(rows) - 24, 24):
                rows[at:at + 24] = rows[at % 240:at % 240 + 3] * 8
        header = flat.BITMAPINFOHEADER(40, width, height, 1, bits, 3 if masks else 0, stride * height,
                                       0, 0, used, 0)
        data = bytearray(bytes(header) + masks + colours + bytes(rows))
        if sound:
            pass
        elif draw.random() < 0.03:
            data[draw.choice((0, 4, 8, 14, 16, 32))] ^= 1 << draw.randrange(8)
        elif draw.random() < 0.03:
            del data[-draw.randint(1, 50):]
        return self.bytes_to(bytes(data))

    def any_picture(self, depths=None):
        """One of those that there are, of a depth that the function takes, mostly."""
        if self.random.random() < 0.02:
            return self.random.choice((None, UNKNOWN))
        pictures = [number for number in self.blocks if number in self.pictures]
        wanted = [number for number in pictures if self.pictures[number] in (depths or ())]
        return {"block": self.random.choice(wanted if wanted and self.random.random() < 0.9 else pictures)}

    # One random call

    def one(self, name):
        function, draw = self.functions[name], self.random
        first, values, area = None, [], {}  # known values, by the names of parameters
        if draw.random() < 0.8:
            area = self.ranges(name)
        depths = draw.choice((self.depths.get(name) or (1, 4, 8, 16, 24, 32), DEPTHS))
        depths = (draw.choice(depths),)
        for one in function.parameters:
            what = kind(one)
            if what == "image" and not one.way:
                value = self.any_picture(depths)
                if isinstance(value, dict):
                    header = self.header(value["block"])
                    first = header if first is None else smaller(first, header)
                    area |= self.area(first)
            elif what == "header":
                numbers = [number for number in self.blocks if number in self.pictures]
                value = {"address": draw.choice(numbers)}
            elif what == "block":
                value = self.stream()
            elif what == "double":
                value = {"double": repr(draw.choice(DOUBLES) if draw.random() < 0.5 else draw.uniform(0, 4))}
            elif one.way:
                value = self.given_array(one)
            elif one.name in AREA and not one.way:
                value = one.name  # below, when all pictures are known
            elif one.name in area:
                value = area[one.name]
            elif what == "colour" or re_range(one.name):
                value = draw.choice((draw.randrange(2**24), draw.randrange(2**32)))
            elif one.name == "size":
                value = None  # below
            elif one.name == "length":
                value = draw.randint(0, 40)
            elif draw.random() < 0.04:
                value = draw.choice(EDGES if one.name not in ("new_width", "new_height", "radius", "block") else
                                    EDGES[:6])
                if what == "uint" and value < 0:
                    value += 2**32
            else:
                value = draw.choice(RANGES.get(one.name, range(0, 80)))
                if what == "uint" and value < 0:
                    value = 0
            values.append(value)
        for at, one in enumerate(function.parameters):
            if one.name in AREA and not one.way:
                values[at] = area.get(one.name, draw.randrange(60))
            if one.name == "size":
                data = [value for value in values if isinstance(value, dict) and "block" in value]
                held = flat.GlobalSize(self.blocks[data[0]["block"]]) if data else 5
                values[at] = held if draw.random() < 0.95 else draw.choice((0, -1, held + 1, held // 2))
            if one.count == "length":  # of the text of a comment
                values[at + 1] = len(values[at]["values"]) if values[at] else 0
        _, new, _ = self.call(name, *values)
        for number in filter(None, new):
            self.settle(name, number)

    def area(self, header):
        """A rectangle of a picture, under all names that functions have for it."""
        draw = self.random
        w, h = max(1, min(abs(header.biWidth), 300)), max(1, min(abs(header.biHeight), 300))
        x, y = draw.randrange(w), draw.randrange(h)
        x, y, w, h = draw.choice(((0, 0, w, h), (x, y, draw.randint(1, w - x), draw.randint(1, h - y)),
                                  (x, y, w - x, h - y)))
        area = [x, y, w, h]
        if draw.random() < 0.05:
            area[draw.randrange(4)] = draw.choice(EDGES)
        return {name: area["xywh".index(letter)] if isinstance(letter, str) else draw.choice((0, 0, 1, -1, area[letter]))
                for name, letter in AREA.items()}

    def ranges(self, name):
        """Values that a function takes in a form of its own."""
        draw = self.random
        tests = [(*sorted((draw.randrange(256), draw.randrange(256))), draw.randrange(3)) for _ in range(3)]
        if name == "Dib24Filter":
            return {channel: lower | upper << 8 | test << 16
                    for channel, (lower, upper, test) in zip(("red", "green", "blue"), tests)}
        if name == "Dib24FilterEx":
            words = [draw.choice((0x101, 0x102, 0x202)), *(word for test in tests for word in test)]
            return {f"range{i}": words[2 * i] | words[2 * i + 1] << 16 for i in range(5)}
        return {}

    def given_array(self, one):
        what, draw = kind(one), self.random
        if one.nullable and draw.random() < 0.3 or draw.random() < 0.01 and one.name == "status":
            return None
        if what in ("image", "block"):
            return {"handle": 1}
        name = "Uint8Array" if what == "PALETTEENTRY" else ARRAYS[what]
        count = {None: 1, "length": draw.randint(0, 40)}.get(one.count) or \
            (int(one.count) if (one.count or "").isdigit() else 0)
        low, high = (0, 256) if what == "byte" else (1, 256) if what in ("int16", "uint16") else (-3, 12)
        values = [0] * count if one.way == "out" else [draw.randrange(low, high) for _ in range(count)]
        if what == "int16" and draw.random() < 0.2:
            values[draw.randrange(count)] = draw.choice((0, -1, 256))
        return {"array": name, "values": values}

    def stream(self):
        """A block with a JPEG stream: a sound one, or one with a few bytes changed."""
        draw = self.random
        if draw.random() < 0.02:
            return draw.choice((None, UNKNOWN))
        data = bytearray(draw.choice(STREAMS + self.encoded[-20:]))
        if draw.random() < 0.5:
            for _ in range(draw.randint(1, 3)):
                data[draw.randrange(2, len(data))] = draw.choice((0, 0xFF, draw.randrange(256)))
        if draw.random() < 0.1:
            del data[draw.randrange(len(data)):]
        if claimed_pixels(data) > 1 << 20 or not data:
            return None
        number = self.bytes_to(bytes(data))
        self.passing.append(number)
        return {"block": number}

    def settle(self, name, number):
        """What becomes of a new block."""
        block = self.blocks[number]
        if name == "JpgDecGetComment":
            del self.blocks[number]  # the library's
        elif name.startswith("JpgCodMain"):
            size = flat.GlobalSize(block)
            self.encoded.append(ctypes.string_at(flat.GlobalLock(block), size).rstrip(b"\0"))
            flat.GlobalUnlock(block)
            self.free(number)
        elif flat.GlobalSize(block) > 400_000 or name == "GlobalAlloc":
            self.free(number)
        else:
            self.pictures[number] = self.header(number).biBitCount

    # Sequences

    def encode_in_slices(self):
        grey = self.random.random() < 0.4
        family = "_M" if grey else ""
        picture = self.any_picture((8,) if grey else (8, 24))
        if not isinstance(picture, dict):
            return
        header = self.header(picture["block"])
        area = self.area(header)
        values = [picture, *(area[name] for name in ("left", "top", "width", "height"))]
        values += [self.random.randint(0, 1)] if grey else []
        values += [self.random.choice((-1, 1, 5, 40)), {"array": "Int32Array", "values": [0]}]
        _, new, _ = self.call(f"JpgCodFirst{family}", *values)
        if not new[0]:
            return
        length, answer = {"array": "Uint32Array", "values": [0]}, 0
        for turn in range(400):
            if turn == 2:
                self.one("Dib24Gausian")
                self.one("JpgDecMainHGLOBAL")  # which is refused
            control = -1 if self.random.random() < 0.01 or turn == 399 else 0
            answer = self.call(f"JpgCodNext{family}", control, length)[0]
            if answer:
                break
        if answer == 1:
            self.call("GlobalSize", {"block": new[0]})
            self.free(new[0])
        else:
            del self.blocks[new[0]]

    def decode_in_pieces(self):
        data = bytearray(self.random.choice(STREAMS + self.encoded[-20:]))
        if self.random.random() < 0.3:
            data[self.random.randrange(2, len(data))] = self.random.randrange(256)
        if claimed_pixels(data) > 1 << 20:
            return
        piece = self.random.choice((7, 100, 700, 5000))
        at, name, answer, new = 0, "JpgDecFirst", 0, []
        while answer == 0 and at < len(data) + 2 * piece:
            part = bytes(data[at:at + piece]) or b"\0"
            number = self.bytes_to(part)
            final = [int(at + piece >= len(data))] if name == "JpgDecNext" else []
            if final and self.random.random() < 0.005:
                final = [-1]
            answer, new, _ = self.call(name, {"block": number}, len(part), *final, {"handle": 1})
            self.free(number)
            name, at = "JpgDecNext", at + piece
        if answer == 0:
            answer, new, _ = self.call("JpgDecNext", None, 0, -1, {"handle": 1})
        for number in filter(None, new):
            self.settle("JpgDecNext", number)

    # Methods of pictures, each as its function and what layers.txt tells

    def method(self, method):
        """A method called with another picture each time: ["method", [name, picture, values], [], seen]."""
        draw, dib = self.random, None
        number, other = self.picture(sound=True), self.picture(sound=True)
        self.passing += [number, other]
        if method.way != "static":
            dib = self.at(self.blocks[number], method.depths)
        drawn = {one.name: self.drawn(method, one, other) for one in method.parameters}
        area = self.area(flat.BITMAPINFOHEADER.from_address(flat.GlobalLock(dib))) if method.has_area else {}
        shown = [given for given, _ in drawn.values()]
        if method.has_area:
            shown.append(draw.choice((None, {name: area[name] for name in ("x", "y", "width", "height")})))
        seen = self.answer(method, dib, drawn, shown[-1] if method.has_area else None, other)
        self.steps.append(["method", [camel(method.name), None if dib is None else number, shown], [], seen])

    def answer(self, method, dib, drawn, area, other):
        """What the function does to the picture, which is freed."""
        status, values, second = ctypes.c_int32(), [], None
        own = size_of(dib) if dib else (0, 0)
        area = area or {"x": 0, "y": 0, "width": own[0], "height": own[1]}
        if any(one.role == "other" for one in method.arguments):
            depth = flat.BITMAPINFOHEADER.from_address(flat.GlobalLock(dib)).biBitCount
            second = self.at(self.blocks[other], (depth,))
        for one in method.arguments:
            if one.role == "fixed" and "." in one.value:
                size = size_of(second) if one.value.startswith("other") else own
                values.append(size["height" in one.value])
            else:
                values.append({"own": lambda: dib, "other": lambda: second, "status": lambda: ctypes.byref(status),
                               "fixed": lambda: int(one.value), "given": lambda: drawn[one.name][1],
                               }.get(one.role, lambda: area[one.role])())
        result = getattr(flat, method.function.name)(*values)
        made = result if method.way == "static" or method.makes else dib if result >= 0 else None
        seen = [self.block(made)] if made else ["error", status.value if method.makes else result]
        for block in {dib, second, made} - {None}:
            flat.GlobalFree(block)
        return seen

    def at(self, block, depths):
        """A copy of a picture at one of these depths: its own, or else the only one, or 24 bits."""
        bits = flat.BITMAPINFOHEADER.from_address(flat.GlobalLock(block)).biBitCount
        if bits in depths:
            size = flat.GlobalSize(block)
            copy = flat.GlobalAlloc(flat.GHND, size)
            ctypes.memmove(flat.GlobalLock(copy), flat.GlobalLock(block), size)
            return copy
        wanted = depths[0] if len(depths) == 1 else 24
        convert = {16: flat.DibConvert16bit, 24: flat.DibConvert24bit, 32: flat.DibConvert32bit}[wanted]
        if bits > 8:
            return convert(block, None)
        made = flat.IncreaseColor16M(block, None)
        if wanted == 24:
            return made
        try:
            return convert(made, None)
        finally:
            flat.GlobalFree(made)

    def drawn(self, method, one, other):
        """A value as the recording shows it, and as the function takes it."""
        draw = self.random
        if one.role == "other":
            return {"block": other}, None
        if method.name == "keep_channels":
            lower, upper = sorted((draw.randrange(256), draw.randrange(256)))
            test = draw.randrange(3)
            return {"range": {"lower": lower, "upper": upper, "test": test}}, lower | upper << 8 | test << 16
        if one.kind == "byte":
            table = draw.randbytes(256)
            return {"table": list(table)}, (ctypes.c_uint8 * 256)(*table)
        if one.kind == "flag":
            value = draw.random() < 0.5
            return value, int(value)
        value = draw.uniform(0.1, 4) if one.kind == "double" else draw.randrange(2**24) if one.kind == "colour" else \
            draw.choice(RANGES.get(one.name, range(0, 40)))
        return value, value

    def comments(self):
        made = self.bytes_to(bytes(flat.BITMAPINFOHEADER(40, 1, 1, 1, 24, 0, 0, 0, 0, 0, 0)) + b"abcd")
        variable = {"array": "Uint32Array", "values": [0]}
        for text in (b"", b"words", b"\xFF" * 300):
            self.call("JpgCodSetComment", {"array": "Uint8Array", "values": list(text)}, len(text))
            _, [number], _ = self.call("JpgCodMainHGLOBAL", {"block": made}, 0, 0, 1, 1, variable, None)
            for enable in (1, 0):
                self.call("JpgDecGetCommentEnable", enable)
                size = flat.GlobalSize(self.blocks[number])
                _, [image], _ = self.call("JpgDecMainHGLOBAL", {"block": number}, size, variable, variable, None)
                self.call("JpgDecCommentCounts")
                for index in (-1, 0, 1):
                    self.call("JpgDecGetComment", index)
                self.free(image)
            self.free(number)
        self.call("JpgDecCommentFree")
        self.free(made)

    def palette(self):
        _, [number], _ = self.call("KirvoCreatePalette")
        for first in (0, 250, 300):
            for entries in (None, {"array": "Uint8Array", "values": [0] * 4 * 20}):
                self.call("GetPaletteEntries", {"palette": number}, first, 20, entries)
        self.call("DeleteObject", {"palette": number})
        self.call("DeleteObject", {"palette": number})
        del self.blocks[number]

    def record(self, calls):
        self.pictures, self.encoded, self.passing = {}, [], []
        self.palette()
        self.comments()
        skipped = ("KirvoCreatePalette", "GetPaletteEntries", "DeleteObject", "GlobalAlloc", "GlobalFree", "GlobalLock", "GlobalUnlock", "GlobalSize", "JpgCodFirst",
                   "JpgCodFirst_M", "JpgDecFirst", "JpgDecNext")
        names = [name for name in self.functions if name not in skipped]
        while len(self.steps) < calls:
            while len(self.pictures) < 30:
                number = self.picture()
                self.pictures[number] = self.header(number).biBitCount
            self.one(self.random.choice(names))
            if self.random.random() < 0.1:
                self.method(self.random.choice(self.methods))
            if self.random.random() < 0.01:
                self.encode_in_slices()
            if self.random.random() < 0.02:
                self.decode_in_pieces()
            for number in self.passing:
                self.free(number)
            self.passing.clear()
            while len(self.pictures) > 50 or self.random.random() < 0.05:
                number = self.random.choice(list(self.pictures))
                del self.pictures[number]
                self.free(number)


def smaller(one, other):
    one.biWidth, one.biHeight = min(one.biWidth, other.biWidth), min(one.biHeight, other.biHeight)
    return one


def size_of(dib):
    header = flat.BITMAPINFOHEADER.from_address(flat.GlobalLock(dib))
    return header.biWidth, header.biHeight


def re_range(name):
    return name.startswith("range") or name in ("colour", "start", "end")


def claimed_pixels(stream):
    sizes = [int.from_bytes(stream[at + 5:at + 7], "big") * int.from_bytes(stream[at + 7:at + 9], "big")
             for at in range(len(stream) - 9) if stream[at] == 0xFF and 0xC0 <= stream[at + 1] <= 0xCF]
    return max(sizes, default=0)


if __name__ == "__main__":
    recorder = Recorder(int(sys.argv[2]))
    recorder.record(int(sys.argv[3]))
    never = [name for name, count in recorder.succeeded.items() if not count and not name.startswith("Global")]
    assert not never, f"none of these calls succeeded: {never}"
    print("globalThis.recorded = [")
    print(",\n".join(json.dumps(step, separators=(",", ":")) for step in recorder.steps))
    print("];")
