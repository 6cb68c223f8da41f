"""Kirvo: image processing on packed DIBs.

Declares every function of the library for ctypes, with the types of its parameters. Addresses of
variables are given with byref(), arrays as ctypes arrays, file names as text, null as None:

    from ctypes import byref, c_int32, c_uint32
    from kirvo import flat as kirvo

    width, height, status = c_uint32(), c_uint32(), c_int32()
    photo = kirvo.JpgDecMainEx("photo.jpg", byref(width), byref(height), byref(status))
    kirvo.check(status)
    kirvo.check(kirvo.DibWriteEx("photo.bmp", photo, 0, 0, -1, -1))
    kirvo.GlobalFree(photo)

Images and other blocks are handles, which the caller frees with GlobalFree, or owns with a Block.
The library is the file that the environment variable KIRVO_LIBRARY names, else Kirvo.dll or
libkirvo.so beside this module, else the one that the system finds. help(kirvo.DibReadEx) tells what
a function is for; kirvo.h tells the ranges and the status codes, under the same names.

Written by script/bindings from interface/kirvo.txt and kirvo.h: changes belong there.
"""
import ctypes
import os
import pathlib
from ctypes import (CFUNCTYPE, POINTER, Structure, c_double, c_int16, c_int32, c_size_t, c_ssize_t,
                    c_uint8, c_uint16, c_uint32, c_void_p)

from ._declared import Code, Functions, WINDOWS, load

_FILE = "Kirvo.dll" if WINDOWS else "libkirvo.so"

HANDLE = c_void_p


class FileName(ctypes.c_char_p):
    """Text is passed in the system's encoding, bytes as they are."""

    @classmethod
    def from_param(cls, name):
        if name is None or isinstance(name, bytes):
            return super().from_param(name)
        if WINDOWS:
            return super().from_param(os.fspath(name).encode("mbcs", "strict"))
        return super().from_param(os.fsencode(name))


def _load():
    beside = pathlib.Path(__file__).with_name(_FILE)
    path = os.environ.get("KIRVO_LIBRARY") or (str(beside) if beside.exists() else _FILE)
    return load(path)


_kirvo = _load()
_kernel32 = ctypes.WinDLL("kernel32") if WINDOWS else _kirvo
_gdi32 = ctypes.WinDLL("gdi32") if WINDOWS else _kirvo

#: The functions by their names.
functions = Functions()
_declare = functions.declare


class Status(Code):
    """What a call answers: 0 for success, below 0 for an error."""
    KIRVO_OK = 0, "Success."
    KIRVO_BAD_PARAMETER = -1, "A rectangle that is empty, negative or outside the image, a value out of its range, or a block of memory smaller than its header says."
    KIRVO_NO_MEMORY = -2, "Memory could not be allocated, or the result would have no pixels or more than 2^31 - 1 bytes, or a JPEG stream has outgrown its block."
    KIRVO_NULL_HANDLE = -3, "Null handle, null data, or a handle that is freed or invented."
    KIRVO_CANNOT_OPEN = -4, "A file could not be opened or created."
    KIRVO_READ_ERROR = -5, "A read error, or a file that is too short."
    KIRVO_WRITE_ERROR = -6, "A write error: the disk is full or was taken away."
    KIRVO_JPEG_NO_SOI = -10, "JPEG: no start of image."
    KIRVO_JPEG_MARKER = -11, "JPEG: a marker that does not belong into the entropy-coded data."
    KIRVO_JPEG_EARLY_EOI = -12, "JPEG: end of image before the first scan."
    KIRVO_JPEG_HEADER = -13, "JPEG: a header that is damaged, incomplete, or asks for what the decoder does not offer."
    KIRVO_JPEG_HUFFMAN = -14, "JPEG: a Huffman code that does not exist, or a table that was not defined."
    KIRVO_JPEG_CATEGORY = -15, "JPEG encoder: a coefficient that has no code."
    KIRVO_ABANDONED = -16, "The caller has abandoned a piecewise encode or decode."
    KIRVO_BUSY = -17, "Another encode or decode is in progress."
    KIRVO_JPEG_FRAME = -19, "JPEG: a frame type other than baseline and progressive Huffman coding."
    KIRVO_NOT_BMP = -20, "Not a BMP file, or a depth that BMP files do not have."
    KIRVO_NEEDS_8 = -21, "The grey JPEG encoder takes 8 bits: DecreaseColorMono256 makes them."
    KIRVO_NEEDS_24 = -22, "The image must have 24 bits: IncreaseColor16M and DibConvert24bit make them."
    KIRVO_NOT_TARGA = -25, "Not an uncompressed 24-bit Targa file."
    KIRVO_Q0_SIZE = -26, "The companion file of a Q0 file is missing or holds no size, or the Q0 file is too short for it."
    KIRVO_NOT_RAW = -27, "Not a RAW file, or one too short for its size."
    KIRVO_RAW_PALETTE = -28, "A RAW file with a palette, which the reader does not offer."
    KIRVO_MORE_THAN_256 = -30, "More than 256 different colours (239 and the system colours in mode 0)."
    KIRVO_MORE_THAN_16 = -31, "More than 16 different colours, or in mode 0 others than the system colours."
    KIRVO_NOT_ICON = -35, "Not an icon or cursor file."
    KIRVO_NEEDS_8_16_24_32 = -40, "The image must have 8, 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer."
    KIRVO_NEEDS_16_24_32 = -41, "The image must have 16, 24 or 32 bits: IncreaseColor16M makes 24 of fewer."
    KIRVO_NEEDS_24_32 = -42, "The image must have 24 or 32 bits: DibConvert24bit and IncreaseColor16M make 24."
    KIRVO_NEEDS_8_24_32 = -43, "The image must have 8, 24 or 32 bits."
    KIRVO_NEEDS_16_32 = -44, "The image must have 16 or 32 bits."
    KIRVO_NEEDS_1_4_8 = -45, "The image must have 1, 4 or 8 bits."
    KIRVO_NEEDS_8_24 = -46, "The image must have 8 or 24 bits: IncreaseColor16M and DibConvert24bit make 24."
    KIRVO_NEEDS_16_24 = -47, "The image must have 16 or 24 bits."


globals().update(Status.__members__)

# GlobalAlloc: the block is known by a handle
GMEM_MOVEABLE = 2
# GlobalAlloc: the block is zero
GMEM_ZEROINIT = 0x40
# GlobalAlloc: both
GHND = 0x42
# biCompression: plain pixels
BI_RGB = 0
# biCompression: plain pixels under three masks
BI_BITFIELDS = 3
# the message that carries progress
WM_COMMAND = 0x111
# GetSystemMetrics: height of a menu bar
SM_CYMENU = 15
# GetSystemMetrics: width of a window's frame
SM_CXFRAME = 32
# SetWindowPos: the position stays
SWP_NOMOVE = 2
# SetWindowPos: the order of windows stays
SWP_NOZORDER = 4
# version of this header: 1.0.4.2, as GetVerKirvoDll tells it
KIRVO_VERSION = 0x1000402


class BITMAPINFOHEADER(Structure):
    """Header of a device-independent bitmap, as in Win32."""
    _fields_ = [
        ("biSize", c_uint32),
        ("biWidth", c_int32),
        ("biHeight", c_int32),
        ("biPlanes", c_uint16),
        ("biBitCount", c_uint16),
        ("biCompression", c_uint32),
        ("biSizeImage", c_uint32),
        ("biXPelsPerMeter", c_int32),
        ("biYPelsPerMeter", c_int32),
        ("biClrUsed", c_uint32),
        ("biClrImportant", c_uint32),
    ]


class RGBQUAD(Structure):
    """One entry of a colour table."""
    _fields_ = [
        ("rgbBlue", c_uint8),
        ("rgbGreen", c_uint8),
        ("rgbRed", c_uint8),
        ("rgbReserved", c_uint8),
    ]


class PALETTEENTRY(Structure):
    """One entry of a logical palette."""
    _fields_ = [
        ("peRed", c_uint8),
        ("peGreen", c_uint8),
        ("peBlue", c_uint8),
        ("peFlags", c_uint8),
    ]


class RECT(Structure):
    """A rectangle by its edges."""
    _fields_ = [
        ("left", c_int32),
        ("top", c_int32),
        ("right", c_int32),
        ("bottom", c_int32),
    ]


class KirvoWindowHost(Structure):
    """How a program without Win32 windows takes part: the window calls that the library makes."""
    SendMessageAFunction = CFUNCTYPE(c_ssize_t, HANDLE, c_uint32, c_size_t, c_ssize_t)
    GetWindowRectFunction = CFUNCTYPE(c_int32, HANDLE, POINTER(RECT))
    GetClientRectFunction = CFUNCTYPE(c_int32, HANDLE, POINTER(RECT))
    SetWindowPosFunction = CFUNCTYPE(c_int32, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32,
        c_uint32)
    GetSystemMetricsFunction = CFUNCTYPE(c_int32, c_int32)
    _fields_ = [
        ("SendMessageA", SendMessageAFunction),
        ("GetWindowRect", GetWindowRectFunction),
        ("GetClientRect", GetClientRectFunction),
        ("SetWindowPos", SetWindowPosFunction),
        ("GetSystemMetrics", GetSystemMetricsFunction),
    ]


class JpgDecSpec(Structure):
    """What the header of a JPEG stream says."""
    _fields_ = [
        ("width", c_uint32),
        ("height", c_uint32),
        ("components", c_uint32),
        ("lumaBlocks", c_uint32),
        ("restartInterval", c_uint32),
        ("commentCount", c_uint32),
        ("fileSize", c_uint32),
    ]


# Names of Windows

GlobalAlloc = _declare(
    _kernel32, HANDLE, c_uint32, c_size_t,
    usage="GlobalAlloc(flags, bytes)",
    summary="Allocates a movable block.")

GlobalLock = _declare(
    _kernel32, c_void_p, HANDLE,
    usage="GlobalLock(block)",
    summary="Locks a block.")

GlobalUnlock = _declare(
    _kernel32, c_int32, HANDLE,
    usage="GlobalUnlock(block)",
    summary="Undoes one GlobalLock.")

GlobalFree = _declare(
    _kernel32, HANDLE, HANDLE,
    usage="GlobalFree(block)",
    summary="Frees a block, locked or not.")

GlobalSize = _declare(
    _kernel32, c_size_t, HANDLE,
    usage="GlobalSize(block)",
    summary="Size of a block.")

GetPaletteEntries = _declare(
    _gdi32, c_uint32, HANDLE, c_uint32, c_uint32, POINTER(PALETTEENTRY),
    usage="GetPaletteEntries(palette, first, count, out entries[count])",
    summary="Reads entries of a logical palette.")

DeleteObject = _declare(
    _gdi32, c_int32, HANDLE,
    usage="DeleteObject(object)",
    summary="Deletes a logical palette.")

KirvoSetWindowHost = _declare(
    _kirvo, None, POINTER(KirvoWindowHost),
    usage="KirvoSetWindowHost(in host)",
    summary="Sets the window host.")


# Images

GetVerKirvoDll = _declare(
    _kirvo, c_uint32,
    usage="GetVerKirvoDll()",
    summary="Version of the library.")

KirvoSetProcess = _declare(
    _kirvo, c_int32, HANDLE, c_uint32, c_int32,
    usage="KirvoSetProcess(window, command, enable)",
    summary="Registers for progress messages of the next long operation.")

DibNumColors = _declare(
    _kirvo, c_uint16, c_void_p,
    usage="DibNumColors(header)",
    summary="Number of colour-table entries of an image.")

PaletteSize = _declare(
    _kirvo, c_uint16, c_void_p,
    usage="PaletteSize(header)",
    summary="Size of the colour part of an image.")

DibQueryBitCount = _declare(
    _kirvo, c_int32, HANDLE,
    usage="DibQueryBitCount(dib)",
    summary="Depth of an image.")

XPaletteQuad = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_uint32,
    usage="XPaletteQuad(dib, index, colour)",
    summary="Sets one colour-table entry.")

KirvoCreatePalette = _declare(
    _kirvo, HANDLE,
    usage="KirvoCreatePalette()",
    summary="Makes a logical palette of the library's fixed 256 colours.")

DibMemAllocEx = _declare(
    _kirvo, HANDLE, c_uint32, c_int32, c_uint32,
    usage="DibMemAllocEx(width, height, bits)",
    summary="Allocates a new packed DIB.")


# BMP files

DibReadEx = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_int32),
    usage="DibReadEx(name, out width, out height, out bits, out status)",
    summary="Reads a BMP file of any depth.")

Dib24Read = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_int32),
    usage="Dib24Read(name, out width, out height, out status)",
    summary="Reads a 24-bit BMP file.")

DibWriteEx = _declare(
    _kirvo, c_int32, FileName, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="DibWriteEx(name, dib, x, y, width, height)",
    summary="Writes an image, or a rectangle of it, as a BMP file.")

Dib24Write = _declare(
    _kirvo, c_int32, FileName, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Write(name, dib, x, y, width, height)",
    summary="Writes a 24-bit image, or a rectangle of it, as a BMP file.")


# JPEG decoder

JpgDecFirst = _declare(
    _kirvo, c_int32, HANDLE, c_int32, POINTER(HANDLE),
    usage="JpgDecFirst(data, size, out image)",
    summary="Begins a decode with the first bytes of a stream.")

JpgDecNext = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, POINTER(HANDLE),
    usage="JpgDecNext(data, size, final, out image)",
    summary="Goes on with a decode that JpgDecFirst has begun.")

JpgDecMainEx = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_int32),
    usage="JpgDecMainEx(name, out width, out height, out error)",
    summary="Decodes a file.")

JpgDecMainHGLOBAL = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_int32),
    usage="JpgDecMainHGLOBAL(data, size, out width, out height, out error)",
    summary="Decodes a stream that is in memory.")

JpgDecSetNoblock = _declare(
    _kirvo, None, c_int32, c_int32, c_int32,
    usage="JpgDecSetNoblock(a, b, c)",
    summary="Does nothing.")

JpgDecGetSpecEx = _declare(
    _kirvo, c_int32, FileName, POINTER(JpgDecSpec),
    usage="JpgDecGetSpecEx(name, out spec)",
    summary="Reads the header of a file up to its image data.")

JpgDecGetSpec = _declare(
    _kirvo, c_int32, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_uint32),
    usage="JpgDecGetSpec(name, out width, out height, out components, out lumaBlocks)",
    summary="The first four values of JpgDecGetSpecEx.")

JpgDecGetCommentEnable = _declare(
    _kirvo, None, c_int32,
    usage="JpgDecGetCommentEnable(enable)",
    summary="Switches the storing and the retrieval of comments on or off.")

JpgDecCommentCounts = _declare(
    _kirvo, c_int32,
    usage="JpgDecCommentCounts()",
    summary="Counts the comments of the last stream.")

JpgDecGetComment = _declare(
    _kirvo, HANDLE, c_int32,
    usage="JpgDecGetComment(index)",
    summary="A stored comment.")

JpgDecCommentFree = _declare(
    _kirvo, None,
    usage="JpgDecCommentFree()",
    summary="Frees the stored comments.")

JpgDecGetQtable = _declare(
    _kirvo, c_int32, POINTER(c_uint16), POINTER(c_uint16),
    usage="JpgDecGetQtable(out luma[64], out chroma[64])",
    summary="Quantisation tables 0 and 1 as they stood when the last decode reached its image data, 64 values each, row by row.")

JpgDecGetQtableEx = _declare(
    _kirvo, c_int32, c_int32, POINTER(c_uint16),
    usage="JpgDecGetQtableEx(number, out table[64])",
    summary="One quantisation table of the last decode.")

JpgDecGetLastUexMarker = _declare(
    _kirvo, c_uint16, POINTER(c_uint32),
    usage="JpgDecGetLastUexMarker(out position)",
    summary="The marker that ended the last decode with KIRVO_JPEG_MARKER.")


# JPEG encoder

JpgCodGetStatus = _declare(
    _kirvo, c_uint32, POINTER(c_uint32), POINTER(c_uint32),
    usage="JpgCodGetStatus(out source_bytes, out output_bytes)",
    summary="Sizes of the most recent encode.")

JpgCodFirst = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="JpgCodFirst(dib, left, top, width, height, mcus_per_call, out status)",
    summary="Starts to encode a rectangle in colour and writes the headers.")

JpgCodNext = _declare(
    _kirvo, c_int32, c_int32, POINTER(c_uint32),
    usage="JpgCodNext(control, out stream_bytes)",
    summary="Goes on with the encode that JpgCodFirst has started.")

JpgCodMainEx = _declare(
    _kirvo, c_int32, FileName, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32,
    usage="JpgCodMainEx(path, dib, left, top, width, height, unused1, unused2)",
    summary="Encodes a rectangle in colour into a file.")

JpgCodMainHGLOBAL = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_uint32), POINTER(c_int32),
    usage="JpgCodMainHGLOBAL(dib, left, top, width, height, out stream_bytes, out status)",
    summary="Encodes a rectangle in colour into a memory block.")

JpgCodFirst_M = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="JpgCodFirst_M(dib, left, top, width, height, grey_mode, mcus_per_call, out status)",
    summary="Starts to encode a rectangle as a grey stream.")

JpgCodNext_M = _declare(
    _kirvo, c_int32, c_int32, POINTER(c_uint32),
    usage="JpgCodNext_M(control, out stream_bytes)",
    summary="Goes on with the encode that JpgCodFirst_M has started.")

JpgCodMainEx_M = _declare(
    _kirvo, c_int32, FileName, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32,
    usage="JpgCodMainEx_M(path, dib, left, top, width, height, grey_mode)",
    summary="Encodes a rectangle as a grey stream into a file.")

JpgCodMainHGLOBAL_M = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_uint32),
    POINTER(c_int32),
    usage="JpgCodMainHGLOBAL_M(dib, left, top, width, height, grey_mode, out stream_bytes, out status)",
    summary="Encodes a rectangle as a grey stream into a memory block.")


# JPEG encoder settings

JpgCodSetSubsample = _declare(
    _kirvo, c_int32, c_int32,
    usage="JpgCodSetSubsample(mode)",
    summary="Sets how colour streams sample chroma.")

JpgCodSetQ = _declare(
    _kirvo, c_int32, c_int32,
    usage="JpgCodSetQ(q)",
    summary="Selects one of the quality levels 2 to 5.")

JpgCodSetQEx = _declare(
    _kirvo, c_int32, c_int32,
    usage="JpgCodSetQEx(level)",
    summary="Selects a quality level.")

JpgCodSetQtable = _declare(
    _kirvo, c_int32, POINTER(c_int16), POINTER(c_int16),
    usage="JpgCodSetQtable(in luminance[64], in chrominance[64])",
    summary="Loads quantisation tables of the caller's, which are used at level 0 only (JpgCodSetQEx).")

JpgCodSetQtableEx = _declare(
    _kirvo, c_int32, POINTER(c_int16), POINTER(c_int16), c_int32,
    usage="JpgCodSetQtableEx(in luminance[64], in chrominance[64], count)",
    summary="As JpgCodSetQtable, and sets how many coefficients of each block are coded at level 0.")

JpgCodSetComment = _declare(
    _kirvo, None, POINTER(c_uint8), c_uint32,
    usage="JpgCodSetComment(in text[length], length)",
    summary="Sets a comment for the next stream only.")


# Targa, Q0, RAW, Photo CD and icon files

Targa24Read = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_int32),
    usage="Targa24Read(name, out width, out height, out status)",
    summary="Reads an uncompressed 24-bit Targa file (image type 2), with either origin.")

Targa24Write = _declare(
    _kirvo, c_int32, FileName, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Targa24Write(name, dib, x, y, width, height)",
    summary="Writes a 24-bit image, or a rectangle of it, as an uncompressed Targa file with its origin at the bottom left.")

Q0Read = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_int32),
    usage="Q0Read(name, out width, out height, out bits, out status)",
    summary="Reads a Q0 file.")

RawRead = _declare(
    _kirvo, HANDLE, FileName, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_int32),
    usage="RawRead(name, out width, out height, out bits, out status)",
    summary="Reads a RAW file.")

PcdRead = _declare(
    _kirvo, HANDLE, FileName, c_int32, c_size_t, POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_int32),
    usage="PcdRead(name, resolution, progress, out width, out height, out status)",
    summary="Reads a Photo CD image with the Photo CD access library, which is loaded for the length of the call by the name PCDLIB32.DLL and the system's search rules.")

IcoGetInfo = _declare(
    _kirvo, c_int32, FileName, c_void_p, c_uint32,
    usage="IcoGetInfo(name, out records[size], size)",
    summary="Lists the images of an icon or cursor file by its directory.")

IcoGetInfoEx = _declare(
    _kirvo, c_int32, FileName, c_void_p, c_uint32,
    usage="IcoGetInfoEx(name, out records[], size)",
    summary="Lists the images of an icon or cursor file by their own headers.")

IcoGetData = _declare(
    _kirvo, HANDLE, FileName, c_int32, POINTER(c_uint32), POINTER(c_uint32), POINTER(c_uint32),
    POINTER(c_int32), POINTER(HANDLE),
    usage="IcoGetData(name, index, out width, out height, out bits, out status, out mask)",
    summary="Reads one image of an icon or cursor file, and its transparency mask.")


# Copy and compose

Dib24Copy = _declare(
    _kirvo, c_int32, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Copy(to, from, left, top, width, height)",
    summary="Copies a rectangle into an image that was made of exactly its size.")

Dib24CopyEx = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24CopyEx(to, to_left, to_top, from, from_left, from_top, width, height)",
    summary="Copies a rectangle between two images of any sizes and one depth.")

Dib24DupEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24DupEx(from, left, top, width, height, out status)",
    summary="Duplicates a rectangle into a new image of the same depth, with its colour table or masks.")

Dib24Add = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Add(to, to_left, to_top, from, from_left, from_top, width, height, mode)",
    summary="Composes a rectangle of one image onto one of the same size of another.")

SetKeyColorDib24Add = _declare(
    _kirvo, None, c_uint32,
    usage="SetKeyColorDib24Add(colour)",
    summary="Sets the key colour of Dib24Add for the whole process.")


# Flip, mirror, turn

Dib24Flip = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Flip(dib, left, top, width, height)",
    summary="Turns a rectangle upside down, in place.")

Dib24Mirror = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Mirror(dib, left, top, width, height)",
    summary="Exchanges left and right in a rectangle, in place.")

Dib24FlipMirror = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24FlipMirror(dib, left, top, width, height)",
    summary="Turns a rectangle by 180 degrees, in place.")

Dib24Rotate = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Rotate(dib, left, top, width, height, direction, out status)",
    summary="Turns a rectangle by 90 degrees into a new image of height x width pixels, with the source's colour table or masks.")


# Zoom

Dib24ZoomEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24ZoomEx(dib, left, top, width, height, new_width, new_height, out status)",
    summary="Resizes a rectangle into a new image by taking the nearest pixel.")

Dib24ZoomEx2 = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    c_int32,
    usage="Dib24ZoomEx2(dib, left, top, width, height, new_width, new_height, out status, smooth)",
    summary="Resizes a rectangle into a new image by taking the nearest pixel, as Dib24ZoomEx but with 32-bit coordinates, or by averaging.")


# Tone

Dib24Negative = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24Negative(dib, x, y, width, height)",
    summary="Inverts a rectangle in place.")

Dib24RGBChange = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32,
    usage="Dib24RGBChange(dib, mode, x, y, width, height)",
    summary="Exchanges the channels of a rectangle in place.")

Dib24Brightness = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Brightness(dib, x, y, width, height, level, out status)",
    summary="Brightens or darkens.")

Dib24Contrast = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Contrast(dib, x, y, width, height, level, out status)",
    summary="Raises or lowers the contrast around mid-grey.")

Dib24Monochrome = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Monochrome(dib, x, y, width, height, out status)",
    summary="Turns a rectangle to grey.")

Dib24HalfTone = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24HalfTone(dib, x, y, width, height, out status)",
    summary="Halves the intensity.")

Dib24ToneCtrl = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24ToneCtrl(dib, x, y, width, height, numerator, denominator, out status)",
    summary="Multiplies all channels by a fraction.")

Dib24ToneCtrlEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_double, c_double, c_double,
    POINTER(c_int32),
    usage="Dib24ToneCtrlEx(dib, x, y, width, height, red, green, blue, out status)",
    summary="Multiplies each channel by its factor.")

Dib24Gamma = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_double, POINTER(c_int32),
    usage="Dib24Gamma(dib, x, y, width, height, gamma, out status)",
    summary="Corrects the gamma.")

DibGammaEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_double, c_double, c_double,
    POINTER(c_int32),
    usage="DibGammaEx(dib, x, y, width, height, red, green, blue, out status)",
    summary="Corrects the gamma of each channel, as Dib24Gamma does.")

Dib24Separate = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(HANDLE), POINTER(HANDLE),
    POINTER(HANDLE),
    usage="Dib24Separate(dib, x, y, width, height, out red, out green, out blue)",
    summary="Separates the channels.")

DibColorMapEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_uint8), POINTER(c_int32),
    usage="DibColorMapEx(dib, x, y, width, height, in table[256], out status)",
    summary="Maps every channel through a table.")


# Hue and HSV

RGB2HSV = _declare(
    _kirvo, None, c_int32, c_int32, c_int32, POINTER(c_int32), POINTER(c_int32), POINTER(c_int32),
    usage="RGB2HSV(red, green, blue, out hue, out saturation, out value)",
    summary="Converts a colour to hue, saturation and value.")

RGB2SV = _declare(
    _kirvo, None, c_int32, c_int32, c_int32, POINTER(c_int32), POINTER(c_int32),
    usage="RGB2SV(red, green, blue, out saturation, out value)",
    summary="Saturation and value of a colour.")

RGB2V = _declare(
    _kirvo, c_int32, c_int32, c_int32, c_int32,
    usage="RGB2V(red, green, blue)",
    summary="Value of a colour.")

HSV2RGB = _declare(
    _kirvo, None, c_int32, c_int32, c_int32, POINTER(c_int32), POINTER(c_int32), POINTER(c_int32),
    usage="HSV2RGB(hue, saturation, value, out red, out green, out blue)",
    summary="Converts hue, saturation and value to a colour.")

DibModifyHue = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32,
    usage="DibModifyHue(dib, mode, value)",
    summary="Changes the hue of a whole image in place.")

DibModifyHueEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="DibModifyHueEx(dib, x, y, width, height, mode, value, out status)",
    summary="Makes a copy of a rectangle with its hue changed.")


# Filters

Dib24Gausian = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Gausian(dib, x, y, width, height, out status)",
    summary="Blurs a rectangle with a fixed 3 x 3 kernel.")

SetFilter3x3 = _declare(
    _kirvo, None, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32,
    c_int32,
    usage="SetFilter3x3(k0, k1, k2, k3, k4, k5, k6, k7, k8, divisor)",
    summary="Sets the kernel of DibFilter3x3, for the life of the process.")

DibFilter3x3 = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="DibFilter3x3(dib, x, y, width, height, out status)",
    summary="Filters a rectangle with the kernel of SetFilter3x3.")

Dib24Mix3X3SetMask = _declare(
    _kirvo, None, POINTER(c_int32),
    usage="Dib24Mix3X3SetMask(in weights[9])",
    summary="Sets the mask of Dib24Mix3X3, for the life of the process.")

Dib24Mix5X5SetMask = _declare(
    _kirvo, None, POINTER(c_int32),
    usage="Dib24Mix5X5SetMask(in weights[25])",
    summary="Sets the mask of Dib24Mix5X5, for the life of the process.")

Dib24Mix3X3 = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32,
    usage="Dib24Mix3X3(dib, x, y)",
    summary="Draws the 3 x 3 neighbours of one pixel towards its colour, in place.")

Dib24Mix5X5 = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32,
    usage="Dib24Mix5X5(dib, x, y)",
    summary="Draws the 5 x 5 neighbours of one pixel towards its colour, in place.")

Dib24Sharpen = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Sharpen(dib, x, y, width, height, mode, out status)",
    summary="Sharpens a rectangle, or shows its edges in grey.")

Dib24SharpenEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24SharpenEx(dib, x, y, width, height, strength, out status)",
    summary="Sharpens a rectangle as mode 0 of Dib24Sharpen does, with a choice of strength.")

Dib24ColorEdge = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24ColorEdge(dib, x, y, width, height, threshold, mode, out status)",
    summary="Keeps the colours of a rectangle at its edges and paints the rest white, the padding of the rows included.")

Dib24Filter = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_uint32, c_uint32, c_uint32,
    POINTER(c_int32),
    usage="Dib24Filter(dib, x, y, width, height, red, green, blue, out status)",
    summary="Keeps channel values by range.")

Dib24FilterEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_uint32, c_uint32, c_uint32,
    c_uint32, c_uint32, POINTER(c_int32),
    usage="Dib24FilterEx(dib, x, y, width, height, range0, range1, range2, range3, range4, out status)",
    summary="Keeps pixels or channels by ranges in RGB or HSV.")


# Patterns, mosaics and histograms

Dib24Mosaic = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="Dib24Mosaic(dib, x, y, width, height, block, out status)",
    summary="Mosaic of a 24-bit image.")

DibMosaicEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="DibMosaicEx(dib, x, y, width, height, block, out status)",
    summary="Mosaic by samples.")

DibMosaicEx2 = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="DibMosaicEx2(dib, x, y, width, height, block, out status)",
    summary="Mosaic by averages.")

Dib24XOR = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32, c_uint32,
    usage="Dib24XOR(dib, x, y, width, height, colour)",
    summary="XORs a colour over a rectangle, in place.")

DibHistgram = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32, POINTER(c_uint32),
    POINTER(c_uint32), POINTER(c_uint32),
    usage="DibHistgram(dib, x, y, width, height, out red[256], out green[256], out blue[256])",
    summary="Counts how often each channel value occurs in a rectangle.")

DibCountColors = _declare(
    _kirvo, c_int32, HANDLE, POINTER(c_uint32),
    usage="DibCountColors(dib, out count)",
    summary="Counts the different colours of an image.")

Dib24Solid = _declare(
    _kirvo, HANDLE, c_int32, c_int32, c_int32, c_uint32, POINTER(c_int32),
    usage="Dib24Solid(width, height, bits, colour, out status)",
    summary="Makes an image of one colour.")

Dib24Gradation1 = _declare(
    _kirvo, HANDLE, c_int32, c_int32, c_int32, c_uint32, c_uint32, POINTER(c_int32),
    usage="Dib24Gradation1(width, height, bits, start, end, out status)",
    summary="Makes a horizontal gradient.")

Dib24Gradation2 = _declare(
    _kirvo, HANDLE, c_int32, c_int32, c_int32, c_uint32, c_uint32, POINTER(c_int32),
    usage="Dib24Gradation2(width, height, bits, start, end, out status)",
    summary="Makes a vertical gradient, from start at the top to end at the bottom.")

Dib24Gradation3 = _declare(
    _kirvo, HANDLE, c_int32, c_int32, c_int32, c_uint32, c_uint32, c_uint32, c_uint32,
    POINTER(c_int32),
    usage="Dib24Gradation3(width, height, bits, top_left, top_right, bottom_left, bottom_right, out status)",
    summary="Makes a bilinear gradient between four corners.")

Dib24InterLeave = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, HANDLE, c_int32, c_int32, c_int32, c_int32,
    POINTER(c_int32),
    usage="Dib24InterLeave(first, x1, y1, second, x2, y2, width, height, out status)",
    summary="Interleaves the rows of two images.")

DibBlockMxM = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32, c_int32,
    POINTER(c_int32),
    usage="DibBlockMxM(dib, x, y, width, height, radius, maximum, luminance, out status)",
    summary="Maximum or minimum filter over squares of (2 radius + 1) x (2 radius + 1) pixels.")


# Depth conversion

DibConvert24bit = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DibConvert24bit(dib, out status)",
    summary="Makes a 24-bit image of a 16- or 32-bit one. 5-bit 31 gives 248.")

DibConvert16bit = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DibConvert16bit(dib, out status)",
    summary="Makes a 16-bit image of a 24- or 32-bit one.")

DibConvert32bit = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DibConvert32bit(dib, out status)",
    summary="Makes a 32-bit image of a 16- or 24-bit one, with the masks 0x00FF0000, 0x0000FF00 and 0x000000FF.")

DibCutDepth = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, c_int32, c_int32, POINTER(c_int32),
    usage="DibCutDepth(dib, red_bits, green_bits, blue_bits, out status)",
    summary="Makes a copy of a 24-bit image that keeps only the top bits of each channel.")


# Colour reduction

DecreaseColor256 = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DecreaseColor256(dib, out status)",
    summary="Makes an 8-bit image with error diffusion to 256 fixed colours.")

DecreaseColor16 = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DecreaseColor16(dib, out status)",
    summary="Makes a 4-bit image with error diffusion, as DecreaseColor256 spreads it, to 16 fixed colours.")

DecreaseColorMono256 = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="DecreaseColorMono256(dib, out status)",
    summary="Makes an 8-bit grey image, without diffusion.")

Decrease256Fast = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="Decrease256Fast(dib, out status)",
    summary="Makes an 8-bit image with the palette of KirvoCreatePalette and an ordered dither of 8 x 8 pixels over the 6 x 6 x 6 cube of levels 0, 51, 102, 153, 204, 255.")

Decrease256PaletteEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, POINTER(c_int32),
    usage="Decrease256PaletteEx(dib, mode, out status)",
    summary="Makes an 8-bit image with exactly the colours of the source.")

Decrease256Palette = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="Decrease256Palette(dib, out status)",
    summary="Decrease256PaletteEx with mode 0.")

Decrease16PaletteEx = _declare(
    _kirvo, HANDLE, HANDLE, c_int32, POINTER(c_int32),
    usage="Decrease16PaletteEx(dib, mode, out status)",
    summary="Makes a 4-bit image with exactly the colours of the source.")

Decrease16Palette = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="Decrease16Palette(dib, out status)",
    summary="Decrease16PaletteEx with mode 0.")

IncreaseColor16M = _declare(
    _kirvo, HANDLE, HANDLE, POINTER(c_int32),
    usage="IncreaseColor16M(dib, out status)",
    summary="Makes a 24-bit image of an indexed one.")


# Single pixels and lines

DibGetPixelColor = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, POINTER(c_uint32),
    usage="DibGetPixelColor(dib, x, y, out colour)",
    summary="Reads one pixel of an image of any depth.")

DibSetPixelColor = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_uint32,
    usage="DibSetPixelColor(dib, x, y, colour)",
    summary="Writes one pixel of a direct-colour image.")

DibSetLineColor = _declare(
    _kirvo, c_int32, HANDLE, c_int32, c_int32, c_int32, c_uint32,
    usage="DibSetLineColor(dib, x0, x1, y, colour)",
    summary="Fills the pixels x0 to x1 (inclusive) of one row with a colour.")


# Window fitting

FitWindowToImageEx = _declare(
    _kirvo, None, HANDLE, HANDLE, c_uint32,
    usage="FitWindowToImageEx(window, dib, scale)",
    summary="Resizes a window so that its client area shows an image at a whole scale.")

FitWindowToImage = _declare(
    _kirvo, None, HANDLE, HANDLE,
    usage="FitWindowToImage(window, dib)",
    summary="FitWindowToImageEx at scale 1.")


# Conveniences of this module

class KirvoError(Exception):
    """A status code other than KIRVO_OK, which `status` holds."""

    def __init__(self, status):
        self.status = Status(status) if status in list(Status) else status
        super().__init__(f"{self.status.name}: {self.status.meaning}"
                         if isinstance(self.status, Status) else f"status {status}")


def check(status):
    """Raises KirvoError unless the status, a number or a c_int32, is KIRVO_OK."""
    value = getattr(status, "value", status)
    if value != Status.KIRVO_OK:
        raise KirvoError(value)


class Block:
    """Owns an image or another block and frees it at the end of a `with`. It stands for its handle
    in every call."""

    def __init__(self, handle):
        self._as_parameter_ = HANDLE(handle)

    @property
    def handle(self):
        """The handle, which stays owned; None without a block."""
        return self._as_parameter_.value

    def __bytes__(self):
        try:
            return ctypes.string_at(GlobalLock(self), GlobalSize(self)) if self.handle else b""
        finally:
            GlobalUnlock(self)

    def free(self):
        """Frees the block now."""
        handle, self._as_parameter_ = self.handle, HANDLE()
        if handle:
            GlobalFree(handle)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.free()


_COMMAND = 1
_watcher = None
_kept = []  # the library and the system keep addresses of these


def _receive(command, percent):
    if command == _COMMAND and _watcher:
        _watcher(percent)
    return 0


def _open_window():
    """A hidden window that receives progress messages."""
    user32 = ctypes.WinDLL("user32")
    window_function = ctypes.WINFUNCTYPE(c_ssize_t, HANDLE, c_uint32, c_size_t, c_ssize_t)
    user32.DefWindowProcW.restype = c_ssize_t
    user32.DefWindowProcW.argtypes = HANDLE, c_uint32, c_size_t, c_ssize_t
    user32.CreateWindowExW.restype = HANDLE
    user32.CreateWindowExW.argtypes = [c_uint32, ctypes.c_wchar_p, ctypes.c_wchar_p, c_uint32,
                                       *[c_int32] * 4, *[HANDLE] * 4]
    set_function = getattr(user32, "SetWindowLongPtrW", user32.SetWindowLongW)
    set_function.restype, set_function.argtypes = HANDLE, (HANDLE, c_int32, window_function)

    @window_function
    def receive(window, message, first, second):
        if message == WM_COMMAND:
            return _receive(first, second)
        return user32.DefWindowProcW(window, message, first, second)

    messages_only, window_function_index = -3, -4
    window = user32.CreateWindowExW(0, "STATIC", None, 0, 0, 0, 0, 0, messages_only, None, None,
                                    None)
    set_function(window, window_function_index, receive)
    return window, receive


def _open_host():
    host = KirvoWindowHost(SendMessageA=KirvoWindowHost.SendMessageAFunction(
        lambda window, message, command, percent: _receive(command, percent)))
    KirvoSetWindowHost(ctypes.byref(host))
    return 1, host


def watch(progress):
    """The next long operation calls progress(percent): 0, then steps of at least 5, and 100 at the
    end; None ends that. Away from Windows this sets the window host."""
    global _watcher
    _watcher = progress
    if not _kept:
        _kept.extend(_open_window() if WINDOWS else _open_host())
    KirvoSetProcess(_kept[0], _COMMAND, 1 if progress else 0)
