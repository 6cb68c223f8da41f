"""Pictures. Written by script/bindings from interface/: changes belong there."""
from __future__ import annotations

import ctypes
import importlib
import operator
import os
import weakref
from ctypes import byref, c_int32, c_uint8, c_uint32, c_void_p
from typing import Any, Callable, NamedTuple, Optional, Sequence, Union

from . import _files, flat, flat_files
from ._files import Error
from ._operation import Operation, Progress, progress as watched

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]
#: The part of a picture that an effect works on: x, y, width, height. A width or height below 0 goes
#: as far as the picture.
Area = tuple[int, int, int, int]

_HEADER = 40
_MASKS = {16: (0xF800, 0x07E0, 0x001F), 32: (0x00FF0000, 0x0000FF00, 0x000000FF)}


def rgb(red: int, green: int, blue: int) -> int:
    """A colour as the library writes it: 0x00BBGGRR."""
    return red | green << 8 | blue << 16


class Range(NamedTuple):
    """A range of values; test: 0 anything passes, 1 what is inside, 2 what is outside."""
    lower: int = 0
    upper: int = 0
    test: int = 0


class Histogram(NamedTuple):
    """How often each of 256 values of each channel occurs."""
    red: tuple[int, ...]
    green: tuple[int, ...]
    blue: tuple[int, ...]


def _whole(value: int, least: int = -2**31, most: int = 2**31 - 1) -> int:
    """A number as the library's functions take it, which would otherwise lose its upper bits."""
    number = operator.index(value)
    if not least <= number <= most:
        raise Error(flat.KIRVO_BAD_PARAMETER, f"{number} is not from {least} to {most}")
    return number


def _packed(values: Range) -> int:
    return _whole(values[0], 0, 255) | _whole(values[1], 0, 255) << 8 | _whole(values[2], 0, 2) << 16


def _numbers(kind: Any, count: int, values: Sequence[int]) -> Any:
    """An array of numbers, all of which are given."""
    if len(values) != count:
        raise ValueError(f"{count} numbers are needed, not {len(values)}")
    bits = 8 * ctypes.sizeof(kind)
    signed = bits > 8
    return (kind * count)(*(_whole(value, -2**(bits - 1) if signed else 0, 2**(bits - signed) - 1)
                            for value in values))


def _free(dib: int) -> None:
    flat.GlobalUnlock(dib)
    flat.GlobalFree(dib)


class _File:
    """What is known of a file: pictures that came from it share this."""

    def __init__(self, handle: Any) -> None:
        self.handle = handle
        weakref.finalize(self, flat_files.KirvoFilesClose, handle).atexit = False


def _check(status: int, what: str) -> None:
    if status < 0:
        raise Error(status, f"{what}: {_files.meaning(status)}")


class Image:
    """A picture: a packed DIB of 1, 4, 8, 16, 24 or 32 bits, freed with the last reference to it."""

    def __init__(self, width: int, height: int, bits: int = 24) -> None:
        """A new picture, black."""
        fits = 0 < width < 2**31 and 0 < height < 2**31 and 0 < bits <= 32
        dib = flat.DibMemAllocEx(width, height, bits) if fits else None
        if not dib:
            raise Error(flat.KIRVO_BAD_PARAMETER,
                        "Image: no such size or depth, or not enough memory")
        self._take(dib, None)
        for index, mask in enumerate(_MASKS.get(bits, ())):
            c_uint32.from_address(self._address + _HEADER + 4 * index).value = mask

    def _take(self, dib: Any, file: Optional[_File]) -> None:
        self._dib, self._file = int(dib), file
        address = flat.GlobalLock(dib)
        self._address = int(address)
        self._header = flat.BITMAPINFOHEADER.from_address(address)
        weakref.finalize(self, _free, self._dib).atexit = False

    @classmethod
    def _of(cls, dib: Any, file: Optional[_File] = None) -> Image:
        image = cls.__new__(cls)
        image._take(dib, file)
        return image

    # Files

    @classmethod
    def open(cls, path: Path, progress: Optional[Progress] = None, *, frame: int = 0,
             background: Optional[int] = None, turn: bool = True, keep_alpha: bool = False,
             keep_going: bool = False, limits: bool = True) -> Image:
        """Opens a picture of any format.

        progress: called with percentages
        frame: which picture of the file, from 1; 0 for the usual one
        background: the colour below transparent pixels; white by default
        turn: whether it is turned upright as its EXIF orientation says
        keep_alpha: whether a picture with alpha gets 32 bits, alpha on top
        keep_going: whether a damaged file gives what there is of it
        limits: whether claims of sizes out of proportion to the file are refused
        """
        return cls._opened(progress, _options(frame, background, turn, keep_alpha, keep_going, limits),
                           os.fsdecode(path), flat_files.KirvoFilesOpen, _files.name_of(path))

    @classmethod
    def from_bytes(cls, data: bytes, progress: Optional[Progress] = None, *, frame: int = 0,
                   background: Optional[int] = None, turn: bool = True, keep_alpha: bool = False,
                   keep_going: bool = False, limits: bool = True) -> Image:
        """Opens a file that is in memory; the rest as open."""
        data = bytes(data)
        return cls._opened(progress, _options(frame, background, turn, keep_alpha, keep_going, limits),
                           None, flat_files.KirvoFilesOpenMemory, data, len(data))

    @classmethod
    def _opened(cls, progress: Optional[Progress], options: Any,
                filename: Optional[str], function: Any, *what: Any) -> Image:
        if progress:
            with watched(progress):
                return cls._opened(None, options, filename, function, *what)
        dib, known = c_void_p(), c_void_p()
        with Operation() as operation:
            operation.begin()
            status = function(*what, byref(options), byref(dib), byref(known))
            file = _File(known.value) if known.value else None
            image = cls._of(dib.value, file) if dib.value else None
            operation.done(status == 0)
            _files.check(status, known, filename)
        assert image is not None
        return image

    def save(self, path: Path, *, quality: int = 0, strip: bool = False, new_only: bool = False,
             size_limit: int = 0, **options: float) -> None:
        """Saves the picture in the format that the name tells, complete or not at all. What the file
        that it came from knew besides its pixels goes along.

        quality: of JPEG and WebP, 1 to 100; 0 for the usual
        strip: whether metadata stays away
        new_only: whether a file that exists is an error
        size_limit: of JPEG and WebP, the most bytes; 0 for any number
        options: other fields of KirvoFilesSaveOptions: format, flags, level, subsample, bits, ...
        """
        how = _save_options(quality, strip, new_only, size_limit, options)
        file = c_void_p()
        try:
            with Operation() as operation:
                operation.begin()
                status = flat_files.KirvoFilesSave(_files.name_of(path), self._dib, self._known, byref(how),
                                          byref(file))
                operation.done(status == 0)
                _files.check(status, file, os.fsdecode(path))
        finally:
            flat_files.KirvoFilesClose(file)

    def to_bytes(self, format: str, *, quality: int = 0, strip: bool = False, size_limit: int = 0,
                 **options: float) -> bytes:
        """The picture as the bytes of a file; format: "png", "jpg", ...; the rest as save."""
        number = int(flat_files.KirvoFilesFormatOf(format.encode()))
        how = _save_options(quality, strip, False, size_limit, {"format": number, **options})
        file, block, count = c_void_p(), c_void_p(), c_uint32()
        try:
            with Operation() as operation:
                operation.begin()
                status = flat_files.KirvoFilesSaveMemory(self._dib, self._known, byref(how), byref(block),
                                            byref(count), byref(file))
                operation.done(status == 0)
                _files.check(status, file)
            return ctypes.string_at(flat.GlobalLock(block), count.value)
        finally:
            flat.GlobalUnlock(block)
            flat.GlobalFree(block)
            flat_files.KirvoFilesClose(file)

    def _repr_png_(self) -> bytes:
        return self.to_bytes("png", strip=True)

    @property
    def _known(self) -> Any:
        return self._file.handle if self._file else None

    @property
    def notes(self) -> list[str]:
        """What had to be left out or repaired when the picture was opened."""
        said = _files.Description(ctypes.sizeof(_files.Description))
        if self._file:
            flat_files.KirvoFilesDescribe(self._known, byref(said))
        return [_files.words(self._known, flat_files.KIRVO_FILES_TEXT_NOTE, index) for index in range(said.notes)]

    # Size and pixels

    @property
    def size(self) -> tuple[int, int]:
        """Width and height."""
        return self.width, self.height

    @property
    def width(self) -> int:
        return int(self._header.biWidth)

    @property
    def height(self) -> int:
        return int(self._header.biHeight)

    @property
    def bits(self) -> int:
        """Bits of a pixel."""
        return int(self._header.biBitCount)

    @property
    def handle(self) -> int:
        """The packed DIB for the functions of kirvo.flat; it stays owned."""
        return self._dib

    def __repr__(self) -> str:
        return f"<kirvo.Image {self.width} x {self.height}, {self.bits} bits>"

    @property
    def _stride(self) -> int:
        return (self.width * self.bits + 31) // 32 * 4

    @property
    def _bottom(self) -> int:
        """Address of the lowest row, which lies first in memory."""
        return self._address + int(self._header.biSize) + int(flat.PaletteSize(self._address))

    @property
    def __array_interface__(self) -> dict[str, Any]:
        """Height x width x 3: red, green, blue, the top row first. Of 24 and 32 bits these are the
        picture's own bytes, so that writing changes it; other depths give a copy."""
        if self.bits not in (24, 32):
            return self._copied_interface()
        top = self._bottom + self._stride * (self.height - 1)
        return {"version": 3, "typestr": "|u1", "shape": (self.height, self.width, 3),
                "strides": (-self._stride, self.bits // 8, -1), "data": (top + 2, False)}

    def _copied_interface(self) -> dict[str, Any]:
        return {"version": 3, "typestr": "|u1", "shape": (self.height, self.width, 3),
                "data": bytearray(self.to_rgb())}

    def to_rgb(self) -> bytes:
        """The pixels: three bytes each, red, green, blue, from the top left, without padding."""
        image = self.convert(24)
        stride, width = image._stride, 3 * image.width
        stored = ctypes.string_at(image._bottom, stride * image.height)
        rows = b"".join(stored[at:at + width] for at in range(len(stored) - stride, -1, -stride))
        pixels = bytearray(len(rows))
        pixels[0::3], pixels[1::3], pixels[2::3] = rows[2::3], rows[1::3], rows[0::3]
        return bytes(pixels)

    @classmethod
    def from_rgb(cls, width: int, height: int, pixels: bytes) -> Image:
        """A picture of 24 bits of pixels as to_rgb gives them."""
        if len(pixels) != 3 * width * height:
            raise ValueError(f"{3 * width * height} bytes make {width} x {height} pixels, "
                             f"not {len(pixels)}")
        image = cls(width, height)
        rows = bytearray(len(pixels))
        rows[0::3], rows[1::3], rows[2::3] = pixels[2::3], pixels[1::3], pixels[0::3]
        for y in range(height):
            row = bytes(rows[3 * width * y:3 * width * (y + 1)])
            ctypes.memmove(image._bottom + image._stride * (height - 1 - y), row, len(row))
        return image

    @classmethod
    def from_array(cls, array: Any) -> Image:
        """A picture of 24 bits of an array of bytes: height x width x 3 (red, green, blue), x 4 (the
        fourth is left out), or height x width (grey)."""
        view = memoryview(array)
        if view.format not in ("B", "<B", "|u1") or view.ndim not in (2, 3) or \
                view.ndim == 3 and view.shape and view.shape[2] not in (3, 4):
            raise ValueError("an array of bytes is needed: height x width, x 3 or x 4")
        assert view.shape is not None
        height, width, depth = (*view.shape, 1)[:3]
        data = view.tobytes()
        pixels = bytearray(3 * width * height)
        for channel in range(3):
            pixels[channel::3] = data[channel::depth] if depth > 1 else data
        return cls.from_rgb(width, height, bytes(pixels))

    @classmethod
    def from_pillow(cls, picture: Any) -> Image:
        """A picture of 24 bits of one of Pillow's; what is transparent is laid over white."""
        if "A" in picture.getbands() or "transparency" in picture.info:
            clear = picture.convert("RGBA")
            picture = clear.copy()
            picture.paste((255, 255, 255, 255), (0, 0, *clear.size))
            picture.alpha_composite(clear)
        picture = picture.convert("RGB")
        return cls.from_rgb(picture.width, picture.height, picture.tobytes())

    def to_pillow(self) -> Any:
        """The picture as one of Pillow's, mode RGB."""
        pillow: Any = importlib.import_module("PIL.Image")
        return pillow.frombytes("RGB", self.size, self.to_rgb())

    @classmethod
    def _of_block(cls, block: bytes, file: Optional[_File] = None) -> Image:
        dib = flat.GlobalAlloc(flat.GHND, len(block))
        if not dib:
            raise Error(flat.KIRVO_NO_MEMORY, f"copy: {_files.meaning(flat.KIRVO_NO_MEMORY)}")
        ctypes.memmove(flat.GlobalLock(dib), block, len(block))
        flat.GlobalUnlock(dib)
        return cls._of(dib, file)

    @property
    def _block(self) -> bytes:
        return ctypes.string_at(self._address, int(flat.GlobalSize(self._dib)))

    def copy(self) -> Image:
        """Another picture of the same pixels."""
        return self._of_block(self._block, self._file)

    def __reduce__(self) -> tuple[Any, ...]:
        """Pickled are the pixels, not what is known of a file."""
        return self._of_block, (self._block,)

    __copy__ = copy

    def __deepcopy__(self, memo: object) -> Image:
        return self.copy()

    def convert(self, bits: int) -> Image:
        """The picture at another depth: 16, 24 or 32 bits."""
        if bits not in (16, 24, 32):
            raise Error(flat.KIRVO_BAD_PARAMETER, "convert: 16, 24 or 32 bits")
        if bits == self.bits:
            return self.copy()
        if self.bits <= 8 and bits != 24:
            return self.convert(24).convert(bits)
        function = flat.IncreaseColor16M if self.bits <= 8 else \
            {16: flat.DibConvert16bit, 24: flat.DibConvert24bit, 32: flat.DibConvert32bit}[bits]
        return self._make("convert", (1, 4, 8, 16, 24, 32), None,
                          lambda dib, _, status: function(dib, status))

    # Effects

    def crop(self, left: int, top: int, width: int, height: int) -> Image:
        """Duplicates a rectangle into a new image of the same depth, with its colour table or
        masks.

        left: rectangle in the source
        top: rectangle in the source
        width: rectangle in the source
        height: rectangle in the source
        """
        return self._make("crop", (8, 16, 24, 32), None,
                    lambda dib, a, status: flat.Dib24DupEx(dib, _whole(left), _whole(top), _whole(width), _whole(height), status))

    def resize(self, new_width: int, new_height: int, smooth: bool = True, *,
        area: Optional[Area] = None) -> Image:
        """Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx
        but with 32-bit coordinates, or by averaging.

        new_width: size of the result, at least 1
        new_height: size of the result, at least 1
        smooth: 1 switches smoothing on, any other value off
        area: the part that is worked on
        """
        return self._make("resize", (16, 24, 32), area,
                    lambda dib, a, status: flat.Dib24ZoomEx2(dib, *a, _whole(new_width), _whole(new_height), status, smooth))

    def flip(self, *, area: Optional[Area] = None) -> Image:
        """Turns a rectangle upside down.

        area: the part that is worked on
        """
        return self._changed("flip", (8, 16, 24, 32), area, lambda dib, a: flat.Dib24Flip(dib, *a))

    def mirror(self, *, area: Optional[Area] = None) -> Image:
        """Exchanges left and right in a rectangle.

        area: the part that is worked on
        """
        return self._changed("mirror", (8, 16, 24, 32), area,
                    lambda dib, a: flat.Dib24Mirror(dib, *a))

    def rotate_180(self, *, area: Optional[Area] = None) -> Image:
        """Turns a rectangle by 180 degrees.

        area: the part that is worked on
        """
        return self._changed("rotate_180", (8, 16, 24, 32), area,
                    lambda dib, a: flat.Dib24FlipMirror(dib, *a))

    def rotate_90(self, direction: int = 0, *, area: Optional[Area] = None) -> Image:
        """Turns a rectangle by 90 degrees into a new image of height x width pixels, with the
        source's colour table or masks.

        direction: 0 clockwise: the top left corner goes to the top right; 1 counter-
            clockwise: it goes to the bottom left
        area: the part that is worked on
        """
        return self._make("rotate_90", (8, 16, 24, 32), area,
                    lambda dib, a, status: flat.Dib24Rotate(dib, *a, _whole(direction), status))

    def brightness(self, level: int, *, area: Optional[Area] = None) -> Image:
        """Brightens or darkens: channel + level * 255 / 100 (truncated), clamped to 0..255.

        level: -100 to 100
        area: the part that is worked on
        """
        return self._make("brightness", (24, 32), area,
                    lambda dib, a, status: flat.Dib24Brightness(dib, *a, _whole(level), status))

    def contrast(self, level: int, *, area: Optional[Area] = None) -> Image:
        """Raises or lowers the contrast around mid-grey: channel * (level + 100) / 100 + -128
        * level / 100 (both truncated), clamped to 0..255.

        level: -100 (all grey) to 100 (2 * channel - 128)
        area: the part that is worked on
        """
        return self._make("contrast", (24, 32), area,
                    lambda dib, a, status: flat.Dib24Contrast(dib, *a, _whole(level), status))

    def gamma(self, gamma: float, *, area: Optional[Area] = None) -> Image:
        """Corrects the gamma: 255 * (channel / 255)^gamma in double precision, truncated.

        gamma: 0 or more
        area: the part that is worked on
        """
        return self._make("gamma", (24,), area,
                    lambda dib, a, status: flat.Dib24Gamma(dib, *a, gamma, status))

    def gamma_channels(self, red: float = 1.0, green: float = 1.0, blue: float = 1.0, *,
        area: Optional[Area] = None) -> Image:
        """Corrects the gamma of each channel, as Dib24Gamma does.

        red: gammas, 0 or more
        green: gammas, 0 or more
        blue: gammas, 0 or more
        area: the part that is worked on
        """
        return self._make("gamma_channels", (8, 16, 24, 32), area,
                    lambda dib, a, status: flat.DibGammaEx(dib, *a, red, green, blue, status))

    def tone(self, numerator: int, denominator: int, *, area: Optional[Area] = None) -> Image:
        """Multiplies all channels by a fraction: channel * numerator / denominator,
        truncated, 255 at most.

        numerator: 1 to 255
        denominator: 0 or more
        area: the part that is worked on
        """
        return self._make("tone", (24, 32), area,
                    lambda dib, a, status: flat.Dib24ToneCtrl(dib, *a, _whole(numerator), _whole(denominator), status))

    def tone_channels(self, red: float = 1.0, green: float = 1.0, blue: float = 1.0, *,
        area: Optional[Area] = None) -> Image:
        """Multiplies each channel by its factor: channel * factor, truncated, at most 255 (0
        stays 0 with an infinite factor).

        red: factors, 0 or more
        green: factors, 0 or more
        blue: factors, 0 or more
        area: the part that is worked on
        """
        return self._make("tone_channels", (24, 32), area,
                    lambda dib, a, status: flat.Dib24ToneCtrlEx(dib, *a, red, green, blue, status))

    def negative(self, *, area: Optional[Area] = None) -> Image:
        """Inverts a rectangle: 255 - channel.

        area: the part that is worked on
        """
        return self._changed("negative", (16, 24, 32), area,
                    lambda dib, a: flat.Dib24Negative(dib, *a))

    def monochrome(self, *, area: Optional[Area] = None) -> Image:
        """Turns a rectangle to grey: (77 red + 150 green + 29 blue + 128) / 256 in all three
        channels.

        area: the part that is worked on
        """
        return self._make("monochrome", (24, 32), area,
                    lambda dib, a, status: flat.Dib24Monochrome(dib, *a, status))

    def half_tone(self, *, area: Optional[Area] = None) -> Image:
        """Halves the intensity: channel / 2.

        area: the part that is worked on
        """
        return self._make("half_tone", (24, 32), area,
                    lambda dib, a, status: flat.Dib24HalfTone(dib, *a, status))

    def swap_channels(self, mode: int, *, area: Optional[Area] = None) -> Image:
        """Exchanges the channels of a rectangle.

        mode: what red, green and blue are taken from: 0 nothing changes (KIRVO_OK even for a
            null handle), 1 red, blue, green; 2 green, blue, red; 3 green, red, blue; 4 blue,
            red, green; 5 blue, green, red
        area: the part that is worked on
        """
        return self._changed("swap_channels", (24, 32), area,
                    lambda dib, a: flat.Dib24RGBChange(dib, _whole(mode), *a))

    def map_channels(self, table: Sequence[int], *, area: Optional[Area] = None) -> Image:
        """Maps every channel through a table: table[channel].

        table: 256 bytes
        area: the part that is worked on
        """
        return self._make("map_channels", (8, 16, 24, 32), area,
                    lambda dib, a, status: flat.DibColorMapEx(dib, *a, _numbers(c_uint8, 256, table), status))

    def change_hue(self, mode: int, value: int, *, area: Optional[Area] = None) -> Image:
        """Makes a copy of a rectangle with its hue changed.

        mode: as for DibModifyHue
        value: degrees, 0 to 359 for every mode
        area: the part that is worked on
        """
        return self._make("change_hue", (16, 24, 32), area,
                    lambda dib, a, status: flat.DibModifyHueEx(dib, *a, _whole(mode), _whole(value), status))

    def exclusive_or(self, colour: int, *, area: Optional[Area] = None) -> Image:
        """XORs a colour over a rectangle.

        colour: 0x00BBGGRR
        area: the part that is worked on
        """
        return self._changed("exclusive_or", (16, 24, 32), area,
                    lambda dib, a: flat.Dib24XOR(dib, *a, _whole(colour, 0, 2**32 - 1)))

    def blur(self, *, area: Optional[Area] = None) -> Image:
        """Blurs a rectangle with a fixed 3 x 3 kernel.

        area: the part that is worked on
        """
        return self._make("blur", (24,), area,
                    lambda dib, a, status: flat.Dib24Gausian(dib, *a, status))

    def sharpen(self, strength: int = 0, *, area: Optional[Area] = None) -> Image:
        """Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength: the
        Laplacian is divided by 8, 6, 4 or 2.

        strength: 0 (divides by 8) to 3 (by 2); any other value acts as 0
        area: the part that is worked on
        """
        return self._make("sharpen", (24,), area,
                    lambda dib, a, status: flat.Dib24SharpenEx(dib, *a, _whole(strength), status))

    def relief(self, mode: int = 1, *, area: Optional[Area] = None) -> Image:
        """Sharpens a rectangle, or shows its edges in grey.

        mode: 0 to 5
        area: the part that is worked on
        """
        return self._make("relief", (24,), area,
                    lambda dib, a, status: flat.Dib24Sharpen(dib, *a, _whole(mode), status))

    def colour_edges(self, threshold: int = 20, mode: int = 0, *,
        area: Optional[Area] = None) -> Image:
        """Keeps the colours of a rectangle at its edges and paints the rest white, the
        padding of the rows included.

        threshold: any value
        mode: 0, 1 or 2
        area: the part that is worked on
        """
        return self._make("colour_edges", (24,), area,
                    lambda dib, a, status: flat.Dib24ColorEdge(dib, *a, _whole(threshold), _whole(mode), status))

    def dilate(self, radius: int = 1, luminance: bool = False, *,
        area: Optional[Area] = None) -> Image:
        """Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels:
        dilation or erosion of bright areas.

        radius: 1 to 64
        luminance: 0 for channels on their own, else by luminance
        area: the part that is worked on
        """
        return self._make("dilate", (16, 24, 32), area,
                    lambda dib, a, status: flat.DibBlockMxM(dib, *a, _whole(radius), 1, luminance, status))

    def erode(self, radius: int = 1, luminance: bool = False, *,
        area: Optional[Area] = None) -> Image:
        """Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels:
        dilation or erosion of bright areas.

        radius: 1 to 64
        luminance: 0 for channels on their own, else by luminance
        area: the part that is worked on
        """
        return self._make("erode", (16, 24, 32), area,
                    lambda dib, a, status: flat.DibBlockMxM(dib, *a, _whole(radius), 0, luminance, status))

    def keep_channels(self, red: Range, green: Range, blue: Range, *,
        area: Optional[Area] = None) -> Image:
        """Keeps channel values by range: a value that fails its channel's test becomes 0.

        red: ranges
        green: ranges
        blue: ranges
        area: the part that is worked on
        """
        return self._make("keep_channels", (24, 32), area,
                    lambda dib, a, status: flat.Dib24Filter(dib, *a, _packed(red), _packed(green), _packed(blue), status))

    def mosaic(self, block: int, *, area: Optional[Area] = None) -> Image:
        """Mosaic by samples: every block of block x block pixels, counted from the
        rectangle's top left, takes the pixel at its own top left.

        block: size of the blocks in pixels, at least 1; may exceed the rectangle
        area: the part that is worked on
        """
        return self._make("mosaic", (8, 16, 24, 32), area,
                    lambda dib, a, status: flat.DibMosaicEx(dib, *a, _whole(block), status))

    def mosaic_average(self, block: int, *, area: Optional[Area] = None) -> Image:
        """Mosaic by averages: every block of block x block pixels, counted from the
        rectangle's top left, takes the average of its channels (of its indexes at 8 bits),
        truncated.

        block: size of the blocks in pixels, 1 to 1024
        area: the part that is worked on
        """
        return self._make("mosaic_average", (8, 16, 24, 32), area,
                    lambda dib, a, status: flat.DibMosaicEx2(dib, *a, _whole(block), status))

    def keep_bits(self, red_bits: int, green_bits: int, blue_bits: int) -> Image:
        """Makes a copy of a 24-bit image that keeps only the top bits of each channel.

        red_bits: bits of red kept, 0 to 8
        green_bits: bits of green kept, 0 to 8
        blue_bits: bits of blue kept, 0 to 8
        """
        return self._make("keep_bits", (24,), None,
                    lambda dib, a, status: flat.DibCutDepth(dib, _whole(red_bits), _whole(green_bits), _whole(blue_bits), status))

    def reduce_256(self) -> Image:
        """Makes an 8-bit image with error diffusion to 256 fixed colours."""
        return self._make("reduce_256", (24, 32), None,
                    lambda dib, a, status: flat.DecreaseColor256(dib, status))

    def reduce_16(self) -> Image:
        """Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16
        fixed colours."""
        return self._make("reduce_16", (24, 32), None,
                    lambda dib, a, status: flat.DecreaseColor16(dib, status))

    def reduce_grey(self) -> Image:
        """Makes an 8-bit grey image, without diffusion."""
        return self._make("reduce_grey", (24, 32), None,
                    lambda dib, a, status: flat.DecreaseColorMono256(dib, status))

    def dither_256(self) -> Image:
        """Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither
        of 8 x 8 pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255: a channel
        value v becomes level v / 51, one more where v mod 51 is above the dither's
        threshold."""
        return self._make("dither_256", (24, 32), None,
                    lambda dib, a, status: flat.Decrease256Fast(dib, status))

    def exact_256(self, mode: int = 1) -> Image:
        """Makes an 8-bit image with exactly the colours of the source.

        mode: 0 or 1
        """
        return self._make("exact_256", (24, 32), None,
                    lambda dib, a, status: flat.Decrease256PaletteEx(dib, _whole(mode), status))

    def exact_16(self, mode: int = 1) -> Image:
        """Makes a 4-bit image with exactly the colours of the source.

        mode: 0 or 1
        """
        return self._make("exact_16", (24, 32), None,
                    lambda dib, a, status: flat.Decrease16PaletteEx(dib, _whole(mode), status))

    def interleave(self, other: Image) -> Image:
        """Interleaves the rows of two images: stored row 2i of the result is row y1 + i of
        the first, stored row 2i + 1 row y2 + i of the second.

        other: packed DIB of the same depth
        """
        other = other.convert(self._at((24, 32)).bits)
        return self._make("interleave", (24, 32), None,
                    lambda dib, a, status: flat.Dib24InterLeave(dib, 0, 0, other._dib, 0, 0, self.width, self.height, status))

    def paste(self, other: Image, to_left: int = 0, to_top: int = 0) -> None:
        """Copies a rectangle between two images of any sizes and one depth.

        other: packed DIB of 8, 16, 24 or 32 bits
        to_left: corner of the rectangle in the destination
        to_top: corner of the rectangle in the destination
        """
        self._ready((16, 24, 32))
        other = other.convert(self.bits)
        self._apply("paste", (16, 24, 32), None,
                    lambda dib, a: flat.Dib24CopyEx(dib, _whole(to_left), _whole(to_top), other._dib, 0, 0, other.width, other.height))

    def compose(self, other: Image, mode: int = 0, to_left: int = 0, to_top: int = 0) -> None:
        """Composes a rectangle of one image onto one of the same size of another.

        other: packed DIB of 24 or 32 bits
        mode: 0 to 4
        to_left: corner of the rectangle in the destination
        to_top: corner of the rectangle in the destination
        """
        self._ready((24, 32))
        other = other.convert(self.bits)
        self._apply("compose", (24, 32), None,
                    lambda dib, a: flat.Dib24Add(dib, _whole(to_left), _whole(to_top), other._dib, 0, 0, other.width, other.height, _whole(mode)))

    def set_pixel(self, x: int, y: int, colour: int) -> None:
        """Writes one pixel of a direct-colour image.

        x: column from the left
        y: row from the top
        colour: 0x00BBGGRR
        """
        self._ready((16, 24, 32))
        self._apply("set_pixel", (16, 24, 32), None,
                    lambda dib, a: flat.DibSetPixelColor(dib, _whole(x), _whole(y), _whole(colour, 0, 2**32 - 1)))

    def set_line(self, x0: int, x1: int, y: int, colour: int) -> None:
        """Fills the pixels x0 to x1 (inclusive) of one row with a colour.

        x0: first column
        x1: last column
        y: row from the top
        colour: 0x00BBGGRR
        """
        self._ready((16, 24, 32))
        self._apply("set_line", (16, 24, 32), None,
                    lambda dib, a: flat.DibSetLineColor(dib, _whole(x0), _whole(x1), _whole(y), _whole(colour, 0, 2**32 - 1)))

    def mix_3x3(self, x: int, y: int) -> None:
        """Draws the 3 x 3 neighbours of one pixel towards its colour, in place.

        x: the centre
        y: the centre
        """
        self._ready((16, 24, 32))
        self._apply("mix_3x3", (16, 24, 32), None,
                    lambda dib, a: flat.Dib24Mix3X3(dib, _whole(x), _whole(y)))

    def mix_5x5(self, x: int, y: int) -> None:
        """Draws the 5 x 5 neighbours of one pixel towards its colour, in place: as
        Dib24Mix3X3.

        x: the centre
        y: the centre
        """
        self._ready((16, 24, 32))
        self._apply("mix_5x5", (16, 24, 32), None,
                    lambda dib, a: flat.Dib24Mix5X5(dib, _whole(x), _whole(y)))

    @classmethod
    def solid(cls, width: int, height: int, colour: int) -> Image:
        """Makes an image of one colour.

        width: size in pixels, at least 1
        height: size in pixels, at least 1
        colour: 0x00BBGGRR
        """
        status = c_int32()
        with Operation():
            dib = flat.Dib24Solid(_whole(width), _whole(height), 24, _whole(colour, 0, 2**32 - 1), byref(status))
        if not dib:
            _check(status.value or flat.KIRVO_NO_MEMORY, "solid")
        return cls._of(dib)

    @classmethod
    def gradient_across(cls, width: int, height: int, start: int, end: int) -> Image:
        """Makes a horizontal gradient: each channel of column i is start + ((end - start) x
        i) / (width - 1), truncating; start alone when the width is 1. 16- and 32-bit images
        are black, as those of Dib24Solid.

        width: size in pixels, at least 1
        height: size in pixels, at least 1
        start: colour of the left column, 0x00BBGGRR
        end: colour of the right column
        """
        status = c_int32()
        with Operation():
            dib = flat.Dib24Gradation1(_whole(width), _whole(height), 24, _whole(start, 0, 2**32 - 1), _whole(end, 0, 2**32 - 1), byref(status))
        if not dib:
            _check(status.value or flat.KIRVO_NO_MEMORY, "gradient_across")
        return cls._of(dib)

    @classmethod
    def gradient_down(cls, width: int, height: int, start: int, end: int) -> Image:
        """Makes a vertical gradient, from start at the top to end at the bottom: a
        Dib24Gradation1 of the sizes exchanged, turned by Dib24Rotate, which reports progress
        (per column). 16- and 32-bit images are black, as those of Dib24Solid.

        width: size in pixels, at least 1
        height: size in pixels, at least 1
        start: colour of the top row, 0x00BBGGRR
        end: colour of the bottom row
        """
        status = c_int32()
        with Operation():
            dib = flat.Dib24Gradation2(_whole(width), _whole(height), 24, _whole(start, 0, 2**32 - 1), _whole(end, 0, 2**32 - 1), byref(status))
        if not dib:
            _check(status.value or flat.KIRVO_NO_MEMORY, "gradient_down")
        return cls._of(dib)

    @classmethod
    def gradient_corners(cls, width: int, height: int, top_left: int, top_right: int,
        bottom_left: int, bottom_right: int) -> Image:
        """Makes a bilinear gradient between four corners.

        width: size in pixels, at least 1
        height: size in pixels, at least 1
        top_left: colours 0x00BBGGRR
        top_right: colours 0x00BBGGRR
        bottom_left: colours 0x00BBGGRR
        bottom_right: colours 0x00BBGGRR
        """
        status = c_int32()
        with Operation():
            dib = flat.Dib24Gradation3(_whole(width), _whole(height), 24, _whole(top_left, 0, 2**32 - 1), _whole(top_right, 0, 2**32 - 1), _whole(bottom_left, 0, 2**32 - 1), _whole(bottom_right, 0, 2**32 - 1), byref(status))
        if not dib:
            _check(status.value or flat.KIRVO_NO_MEMORY, "gradient_corners")
        return cls._of(dib)

    def filter_3x3(self, weights: Sequence[int], divisor: int = 0, *,
                   area: Optional[Area] = None) -> Image:
        """Filters with a kernel of 3 x 3 weights, row by row from the top left neighbour.

        weights: nine of them
        divisor: divides the sums; 0: the sum of the weights, or 1
        area: the part that is worked on
        """
        a, b, c, d, e, f, g, h, i = map(_whole, weights)
        divided = _whole(divisor or sum(weights))

        def call(dib: int, area: Area, status: Any) -> Any:
            flat.SetFilter3x3(g, h, i, d, e, f, a, b, c, divided)
            return flat.DibFilter3x3(dib, *area, status)
        return self._make("filter_3x3", (16, 24, 32), area, call)

    def keep_colours(self, flags: int, first: Range = Range(), second: Range = Range(),
                     third: Range = Range(), *, area: Optional[Area] = None) -> Image:
        """Keeps colours by ranges.

        flags: 0x101 channels of RGB, 0x102 pixels of RGB, 0x202 pixels by hue, saturation and value
        first, second, third: ranges
        area: the part that is worked on
        """
        fields = [_whole(field, -2**15, 2**15 - 1) for field in (flags, *first, *second, *third)]
        words = [low & 0xFFFF | (high & 0xFFFF) << 16 for low, high in zip(fields[::2], fields[1::2])]
        return self._make("keep_colours", (24, 32), area,
                          lambda dib, a, status: flat.Dib24FilterEx(dib, *a, *words, status))

    def separate(self, *, area: Optional[Area] = None) -> tuple[Image, Image, Image]:
        """Three pictures with one channel each: red, green, blue."""
        made = [c_void_p() for _ in range(3)]
        self._apply("separate", (24, 32), area,
                    lambda dib, a: flat.Dib24Separate(dib, *a, *map(byref, made)))
        red, green, blue = (self._of(dib.value, self._file) for dib in made)
        return red, green, blue

    def histogram(self, *, area: Optional[Area] = None) -> Histogram:
        """How often each value of each channel occurs."""
        counted = [(c_uint32 * 256)() for _ in range(3)]
        self._apply("histogram", (8, 16, 24, 32), area,
                    lambda dib, a: flat.DibHistgram(dib, *a, *counted))
        return Histogram(*(tuple(numbers) for numbers in counted))

    def count_colours(self) -> int:
        """The number of different colours."""
        count = c_uint32()
        self._apply("count_colours", (1, 4, 8, 16, 24, 32), None,
                    lambda dib, _: flat.DibCountColors(dib, byref(count)))
        return count.value

    def get_pixel(self, x: int, y: int) -> int:
        """A pixel's colour, 0x00BBGGRR."""
        colour = c_uint32()
        _check(flat.DibGetPixelColor(self._dib, _whole(x), _whole(y), byref(colour)), "get_pixel")
        return colour.value

    @staticmethod
    def key_colour(colour: int) -> None:
        """The colour that compose leaves out in mode 4, for the whole process."""
        with Operation():
            flat.SetKeyColorDib24Add(_whole(colour, 0, 2**32 - 1))

    @staticmethod
    def mix_masks(three: Sequence[int], five: Sequence[int]) -> None:
        """The weights of mix_3x3 and mix_5x5 in tenths, row by row from the top left neighbour, for
        the whole process."""
        small, large = _numbers(c_int32, 9, three), _numbers(c_int32, 25, five)
        with Operation():
            flat.Dib24Mix3X3SetMask(small)
            flat.Dib24Mix5X5SetMask(large)

    # How a function of the library is called

    def _inside(self, area: Optional[Area]) -> Area:
        x, y, width, height = map(_whole, (0, 0, -1, -1) if area is None else area)
        return (x, y, _whole(self.width - x) if width < 0 else width,
                _whole(self.height - y) if height < 0 else height)

    def _at(self, depths: Sequence[int]) -> Image:
        return self if self.bits in depths else self.convert(24)

    def _make(self, what: str, depths: Sequence[int], area: Optional[Area],
              call: Callable[[int, Area, Any], Any]) -> Image:
        """Calls a function that makes a picture."""
        status = c_int32()
        with Operation() as operation:
            source = self._at(depths)
            operation.begin()
            dib = call(source._dib, self._inside(area), byref(status))
            image = self._of(dib, self._file) if dib else None
            operation.done(image is not None)
        if image is None:
            _check(status.value if status.value < 0 else flat.KIRVO_NO_MEMORY, what)
        assert image is not None
        return image

    def _apply(self, what: str, depths: Sequence[int], area: Optional[Area],
               call: Callable[[int, Area], Any]) -> None:
        """Calls a function that works on what is there."""
        with Operation() as operation:
            source = self._at(depths)
            operation.begin()
            status = int(call(source._dib, self._inside(area)))
            operation.done(status >= 0)
        _check(status, what)

    def _changed(self, what: str, depths: Sequence[int], area: Optional[Area],
                 call: Callable[[int, Area], Any]) -> Image:
        """A copy on which a function has worked."""
        with Operation() as operation:
            image = self.copy() if self.bits in depths else self.convert(24)
            operation.begin()
            status = int(call(image._dib, self._inside(area)))
            operation.done(status >= 0)
        _check(status, what)
        return image

    def _ready(self, depths: Sequence[int]) -> None:
        """Becomes a picture of 24 bits when its depth is none of these. The old pixels live as long
        as it does: arrays may look at them."""
        if self.bits not in depths:
            image = self.convert(24)
            self._take(flat.GlobalAlloc(flat.GHND, flat.GlobalSize(image._dib)), self._file)
            ctypes.memmove(self._address, image._address, flat.GlobalSize(image._dib))


def _options(frame: int, background: Optional[int], turn: bool, keep_alpha: bool, keep_going: bool,
             limits: bool) -> Any:
    flags = (0 if turn else flat_files.KIRVO_FILES_NO_TURN) | (flat_files.KIRVO_FILES_KEEP_ALPHA if keep_alpha else 0) | \
        (flat_files.KIRVO_FILES_KEEP_GOING if keep_going else 0) | (0 if limits else flat_files.KIRVO_FILES_NO_LIMITS) | \
        (0 if background is None else flat_files.KIRVO_FILES_BACKGROUND)
    return _files.OpenOptions(ctypes.sizeof(_files.OpenOptions), flags, background or 0, frame)


def _save_options(quality: int, strip: bool, new_only: bool, size_limit: int,
                  options: dict[str, float]) -> Any:
    how = _files.SaveOptions(size=ctypes.sizeof(_files.SaveOptions), quality=quality,
                             sizeLimit=size_limit)
    for name, value in options.items():
        if name not in (field[0] for field in _files.SaveOptions._fields_):
            raise TypeError(f"save has no option {name}")
        setattr(how, name, value)
    how.flags |= (flat_files.KIRVO_FILES_STRIP if strip else 0) | (flat_files.KIRVO_FILES_NEW_ONLY if new_only else 0)
    return how
