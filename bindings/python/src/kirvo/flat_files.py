"""KirvoFiles: pictures as people have them, opened into packed DIBs and saved again.

Declares every function of the second library for ctypes, as the module kirvo does for the first.
Texts are given as str or bytes and received in ctypes.create_string_buffer, null is None:

    from ctypes import byref
    from kirvo import flat as kirvo, flat_files as kirvo_files

    dib, photo = kirvo.HANDLE(), kirvo_files.KirvoFile()
    kirvo_files.check(kirvo_files.KirvoFilesOpen("photo.heic", None, byref(dib), byref(photo)), photo)
    kirvo_files.check(kirvo_files.KirvoFilesSave("photo.jpg", dib, photo, None, None))
    kirvo.GlobalFree(dib)
    kirvo_files.KirvoFilesClose(photo)

The library is the file that the environment variable KIRVO_FILES_LIBRARY names, else KirvoFiles.dll or
libkirvofiles.so beside the first library, else the one that the system finds. kirvo_files.h tells the rest.

Written by script/bindings from interface/kirvo_files.txt and kirvo_files.h: changes belong there.
"""
import ctypes
import os
import pathlib
from ctypes import (POINTER, Structure, c_char, c_double, c_int32, c_uint16, c_uint32, c_void_p,
                    sizeof)

from ._declared import Code, Functions, WINDOWS, load
from . import flat as kirvo  # loads the first library, which the second needs

_FILE = "KirvoFiles.dll" if WINDOWS else "libkirvofiles.so"

HANDLE = KirvoFile = c_void_p


class Text(ctypes.c_char_p):
    """str is passed as UTF-8, bytes as they are."""

    @classmethod
    def from_param(cls, text):
        if isinstance(text, (str, os.PathLike)):
            text = os.fspath(text)
            text = text.encode() if isinstance(text, str) else text
        return super().from_param(text)


def _load():
    beside = pathlib.Path(os.environ.get("KIRVO_LIBRARY", __file__)).with_name(_FILE)
    path = os.environ.get("KIRVO_FILES_LIBRARY") or (str(beside) if beside.exists() else _FILE)
    return load(path)


_files = _load()

#: The functions by their names.
functions = Functions()
_declare = functions.declare


class Status(Code):
    """What a call answers: 0 for success, below 0 for an error."""
    KIRVO_FILES_OK = 0, "Success."
    KIRVO_FILES_BAD_PARAMETER = -101, "A null pointer, a value out of its range, a structure whose size is none of this library's, or an image whose block is smaller than its header says."
    KIRVO_FILES_NO_MEMORY = -102, "Memory could not be allocated, or the picture would have more than 2^31 - 1 bytes."
    KIRVO_FILES_MISSING = -103, "There is no file or folder of that name."
    KIRVO_FILES_IS_FOLDER = -104, "The name is that of a folder."
    KIRVO_FILES_NO_PERMISSION = -105, "The system does not permit it."
    KIRVO_FILES_CANNOT_OPEN = -106, "The file cannot be opened for another reason; the reason's text has the system's words."
    KIRVO_FILES_READ_ERROR = -107, "The system failed to read what is in the file."
    KIRVO_FILES_CANNOT_WRITE = -108, "The file cannot be made, written or put into its place."
    KIRVO_FILES_DISK_FULL = -109, "The disk is full, or the user's share of it."
    KIRVO_FILES_EXISTS = -110, "There is a file of that name, and KIRVO_FILES_NEW_ONLY was asked for."
    KIRVO_FILES_EMPTY = -111, "The file is empty: it has no bytes at all."
    KIRVO_FILES_NOT_A_PICTURE = -112, "The content is no picture of a known format."
    KIRVO_FILES_ENDS_EARLY = -113, "The picture ends before all of its rows are there."
    KIRVO_FILES_DAMAGED = -114, "The picture is damaged."
    KIRVO_FILES_UNSUPPORTED = -115, "The format is known, but not this variant of it."
    KIRVO_FILES_NO_CODEC = -116, "The format is known, but this build or this system has no decoder or encoder for it."
    KIRVO_FILES_CLAIM_TOO_LARGE = -117, "The file claims a size out of all proportion to its bytes; see KIRVO_FILES_NO_LIMITS."
    KIRVO_FILES_NOT_WRITTEN = -118, "The format is not one that is written, or the name does not tell a format."
    KIRVO_FILES_TOO_LARGE = -119, "The format has no room for a picture this large; or a file of 2 GB or more."
    KIRVO_FILES_SIZE_LIMIT = -120, "The picture does not become so small as was asked for."
    KIRVO_FILES_EDGE = -121, "A turn without loss would cut or keep an edge, and neither was allowed."
    KIRVO_FILES_NO_FRAME = -122, "A frame was asked for that the file does not have."
    KIRVO_FILES_ABANDONED = -123, "The caller has abandoned the operation through a progress handler of kirvo.h."


globals().update(Status.__members__)

# such files can be opened
KIRVO_FILES_READS = 1
# such files can be saved
KIRVO_FILES_WRITES = 2
# none, or to be told by the name
KIRVO_FILES_UNKNOWN = 0
# Windows and OS/2 bitmaps
KIRVO_FILES_BMP = 1
# JPEG
KIRVO_FILES_JPEG = 2
# PNG
KIRVO_FILES_PNG = 3
# Targa
KIRVO_FILES_TARGA = 4
# TIFF
KIRVO_FILES_TIFF = 5
# WebP
KIRVO_FILES_WEBP = 6
# GIF
KIRVO_FILES_GIF = 7
# icons
KIRVO_FILES_ICON = 8
# cursors
KIRVO_FILES_CURSOR = 9
# Q0, with its companion file
KIRVO_FILES_Q0 = 10
# RAW, as RawRead of kirvo.h describes it
KIRVO_FILES_RAW = 11
# Photo CD, with its maker's library
KIRVO_FILES_PHOTO_CD = 12
# HEIC and AVIF, on Windows where the system has a decoder
KIRVO_FILES_HEIF = 13
# cameras' own formats, on Windows where the system has a decoder
KIRVO_FILES_CAMERA = 14
# one above the last
KIRVO_FILES_FORMATS = 15
# "PNG"
KIRVO_FILES_FORMAT_NAME = 0
# "jpg jpeg jpe jfif", the usual one first
KIRVO_FILES_FORMAT_EXTENSIONS = 1
# by what it is read and written: "Kirvo, libjpeg-turbo 2.1.5"
KIRVO_FILES_FORMAT_CODEC = 2
# opening: rows as stored, whatever the EXIF orientation says
KIRVO_FILES_NO_TURN = 1
# opening: a picture with alpha gets 32 bits, alpha on top
KIRVO_FILES_KEEP_ALPHA = 2
# opening: what there is of a damaged or short file
KIRVO_FILES_KEEP_GOING = 4
# opening: claims of any size are believed
KIRVO_FILES_NO_LIMITS = 8
# opening: JPEG by Kirvo's decoder, come what may
KIRVO_FILES_KIRVO_ONLY = 16
# opening: alpha is laid over the options' background
KIRVO_FILES_BACKGROUND = 32
# description: the file's picture has transparency
KIRVO_FILES_HAS_ALPHA = 1
# description: progressive or interlaced
KIRVO_FILES_PROGRESSIVE = 2
# description: the file's coding loses nothing
KIRVO_FILES_LOSSLESS = 4
# description: the file's colours are cyan to black
KIRVO_FILES_CMYK = 8
# description: the file stores its top row first
KIRVO_FILES_TOP_DOWN = 16
# description: latitude and longitude are known
KIRVO_FILES_HAS_PLACE = 32
# description: a JPEG with arithmetic coding
KIRVO_FILES_ARITHMETIC = 0x40
# there is no such note
KIRVO_FILES_NOTE_NONE = 0
# "ends early: whole to row 320 of 480"
KIRVO_FILES_NOTE_ENDS_EARLY = 1
# a part is damaged, and what is there was taken
KIRVO_FILES_NOTE_DAMAGED = 2
# the headers contradict each other; the pixels are whole
KIRVO_FILES_NOTE_REPAIRED = 3
# "alpha laid over the background"
KIRVO_FILES_NOTE_ALPHA = 4
# "animation: number 1 of 12"
KIRVO_FILES_NOTE_FRAMES = 5
# "16 bits a channel reduced to 8", "CMYK converted"
KIRVO_FILES_NOTE_REDUCED = 6
# "turned upright (orientation 6)"
KIRVO_FILES_NOTE_TURNED = 7
# "decoded by libjpeg-turbo: progressive"
KIRVO_FILES_NOTE_DECODER = 8
# what was taken to save: a level, a quality, an encoder
KIRVO_FILES_NOTE_ENCODER = 9
# "XMP left out: BMP files have no place for it"
KIRVO_FILES_NOTE_METADATA = 10
# anything else
KIRVO_FILES_NOTE_TEXT = 11
# why the call failed, in particular: "photo.jpg: Permission denied", without a full stop
KIRVO_FILES_TEXT_REASON = 0
# the words of a note
KIRVO_FILES_TEXT_NOTE = 1
# "progressive, YCbCr 4:2:0", "V5 header, RLE8"
KIRVO_FILES_TEXT_VARIANT = 2
# by what it was decoded or encoded: "Kirvo"
KIRVO_FILES_TEXT_DECODER = 3
# maker and model
KIRVO_FILES_TEXT_CAMERA = 4
# the lens
KIRVO_FILES_TEXT_LENS = 5
# when it was taken: "2023-05-01 12:30:00"
KIRVO_FILES_TEXT_DATE = 6
# "1/250 s, f/2.8, ISO 100, 35 mm"
KIRVO_FILES_TEXT_EXPOSURE = 7
# "35.68950, 139.69170"
KIRVO_FILES_TEXT_PLACE = 8
# the ICC profile's name
KIRVO_FILES_TEXT_PROFILE = 9
# what made the file
KIRVO_FILES_TEXT_SOFTWARE = 10
# who made the picture
KIRVO_FILES_TEXT_ARTIST = 11
# whose it is
KIRVO_FILES_TEXT_COPYRIGHT = 12
# what it shows
KIRVO_FILES_TEXT_TITLE = 13
# JPEG: the first comment, in one line
KIRVO_FILES_TEXT_COMMENT = 14
# EXIF, a TIFF structure that begins with II or MM
KIRVO_FILES_DATA_EXIF = 0
# the ICC profile
KIRVO_FILES_DATA_ICC = 1
# XMP, UTF-8 text
KIRVO_FILES_DATA_XMP = 2
# JPEG: up to four quantisation tables one after the other, each 64 numbers of 16 bits, row by row
KIRVO_FILES_DATA_QUANTISERS = 3
# the file's palette, 4 bytes an entry: blue, green, red, 0
KIRVO_FILES_DATA_PALETTE = 4
# JPEG: the first comment
KIRVO_FILES_DATA_COMMENT = 5
# saving: without the metadata that the source came with
KIRVO_FILES_STRIP = 1
# saving: not where there is a file already
KIRVO_FILES_NEW_ONLY = 2
# saving: without colour
KIRVO_FILES_GREY = 4
# saving: the top byte of 32 bits is alpha
KIRVO_FILES_WITH_ALPHA = 8
# saving: Targa with run lengths
KIRVO_FILES_RLE = 16
# saving: WebP without loss
KIRVO_FILES_WEBP_LOSSLESS = 32
# saving: JPEG without the source's tables and sampling
KIRVO_FILES_FRESH = 0x40
# LZW
KIRVO_FILES_COMPRESSION_USUAL = 0
# none
KIRVO_FILES_COMPRESSION_NONE = 1
# LZW
KIRVO_FILES_COMPRESSION_LZW = 2
# Deflate
KIRVO_FILES_COMPRESSION_DEFLATE = 3
# PackBits
KIRVO_FILES_COMPRESSION_PACKBITS = 4
# as its EXIF orientation says
KIRVO_FILES_TURN_UPRIGHT = 0
# a quarter clockwise
KIRVO_FILES_TURN_90 = 1
# a half
KIRVO_FILES_TURN_180 = 2
# a quarter counter-clockwise
KIRVO_FILES_TURN_270 = 3
# top to bottom
KIRVO_FILES_TURN_FLIP = 4
# left to right
KIRVO_FILES_TURN_MIRROR = 5
# nothing is written; the answer is KIRVO_FILES_EDGE
KIRVO_FILES_EDGES_FAIL = 0
# they are cut off; a note says how much
KIRVO_FILES_EDGES_TRIM = 1
# they stay where they are, unturned; a note says so
KIRVO_FILES_EDGES_KEEP = 2


class KirvoFilesOpenOptions(Structure):
    """How to open."""
    _fields_ = [
        ("size", c_uint32),
        ("flags", c_uint32),
        ("background", c_uint32),
        ("frame", c_uint32),
    ]


class KirvoFilesDescription(Structure):
    """A file in numbers."""
    _fields_ = [
        ("size", c_uint32),
        ("format", c_int32),
        ("width", c_uint32),
        ("height", c_uint32),
        ("fileBits", c_uint32),
        ("channels", c_uint32),
        ("colours", c_uint32),
        ("dibBits", c_uint32),
        ("flags", c_uint32),
        ("orientation", c_uint32),
        ("frames", c_uint32),
        ("frame", c_uint32),
        ("quality", c_uint32),
        ("sampleAcross", c_uint32),
        ("sampleDown", c_uint32),
        ("fileBytes", c_uint32),
        ("wholeRows", c_uint32),
        ("notes", c_uint32),
        ("dpiAcross", c_double),
        ("dpiDown", c_double),
        ("latitude", c_double),
        ("longitude", c_double),
    ]


class KirvoFilesSaveOptions(Structure):
    """How to save."""
    _fields_ = [
        ("size", c_uint32),
        ("format", c_int32),
        ("flags", c_uint32),
        ("quality", c_uint32),
        ("level", c_uint32),
        ("subsample", c_uint32),
        ("sizeLimit", c_uint32),
        ("bits", c_uint32),
        ("compression", c_int32),
        ("reserved", c_uint32),
        ("dpiAcross", c_double),
        ("dpiDown", c_double),
    ]


# Status codes of KirvoFiles

KirvoFilesStatusText = _declare(
    _files, c_uint32, c_int32, POINTER(c_char), c_uint32,
    usage="KirvoFilesStatusText(status, out text[capacity], capacity)",
    summary="A status in words, in English.")


# Formats

KirvoFilesAbilities = _declare(
    _files, c_uint32, c_int32,
    usage="KirvoFilesAbilities(format)",
    summary="What can be done with a format in this build, on this system.")

KirvoFilesFormatText = _declare(
    _files, c_uint32, c_int32, c_int32, POINTER(c_char), c_uint32,
    usage="KirvoFilesFormatText(format, word, out text[capacity], capacity)",
    summary="A word about a format.")

KirvoFilesFormatOf = _declare(
    _files, c_int32, Text,
    usage="KirvoFilesFormatOf(name)",
    summary="The format that a name tells.")


# Open and inform

KirvoFilesOpen = _declare(
    _files, c_int32, Text, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE), POINTER(HANDLE),
    usage="KirvoFilesOpen(name, in options, out dib, out file)",
    summary="Opens a picture, whatever its format.")

KirvoFilesOpenW = _declare(
    _files, c_int32, c_void_p, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE), POINTER(HANDLE),
    usage="KirvoFilesOpenW(name, in options, out dib, out file)",
    summary="KirvoFilesOpen with a UTF-16 name.")

KirvoFilesOpenMemory = _declare(
    _files, c_int32, c_void_p, c_uint32, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE),
    POINTER(HANDLE),
    usage="KirvoFilesOpenMemory(in bytes[count], count, in options, out dib, out file)",
    summary="KirvoFilesOpen of a file that is in memory.")

KirvoFilesInfo = _declare(
    _files, c_int32, Text, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE),
    usage="KirvoFilesInfo(name, in options, out file)",
    summary="What the headers of a file say.")

KirvoFilesInfoW = _declare(
    _files, c_int32, c_void_p, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE),
    usage="KirvoFilesInfoW(name, in options, out file)",
    summary="KirvoFilesInfo with a UTF-16 name.")

KirvoFilesInfoMemory = _declare(
    _files, c_int32, c_void_p, c_uint32, POINTER(KirvoFilesOpenOptions), POINTER(HANDLE),
    usage="KirvoFilesInfoMemory(in bytes[count], count, in options, out file)",
    summary="KirvoFilesInfo of a file that is in memory.")

KirvoFilesClose = _declare(
    _files, None, HANDLE,
    usage="KirvoFilesClose(file)",
    summary="Frees what is known of a file.")


# What is known of a file

KirvoFilesDescribe = _declare(
    _files, c_int32, HANDLE, POINTER(KirvoFilesDescription),
    usage="KirvoFilesDescribe(file, inout description)",
    summary="A file in numbers.")

KirvoFilesNote = _declare(
    _files, c_int32, HANDLE, c_uint32,
    usage="KirvoFilesNote(file, index)",
    summary="What a note is about.")

KirvoFilesText = _declare(
    _files, c_uint32, HANDLE, c_int32, c_uint32, POINTER(c_char), c_uint32,
    usage="KirvoFilesText(file, kind, index, out text[capacity], capacity)",
    summary="A text about a file.")

KirvoFilesData = _declare(
    _files, c_uint32, HANDLE, c_int32, c_void_p, c_uint32,
    usage="KirvoFilesData(file, kind, out bytes[capacity], capacity)",
    summary="Bytes that come with a file.")

KirvoFilesSetData = _declare(
    _files, c_int32, POINTER(HANDLE), c_int32, c_void_p, c_uint32,
    usage="KirvoFilesSetData(inout file, kind, in bytes[count], count)",
    summary="Gives a file's metadata other bytes, to be saved with a picture, also where the rest of its metadata is not (KIRVO_FILES_STRIP).")


# Save

KirvoFilesSave = _declare(
    _files, c_int32, Text, HANDLE, HANDLE, POINTER(KirvoFilesSaveOptions), POINTER(HANDLE),
    usage="KirvoFilesSave(name, dib, source, in options, out file)",
    summary="Saves a picture as a file, complete or not at all.")

KirvoFilesSaveW = _declare(
    _files, c_int32, c_void_p, HANDLE, HANDLE, POINTER(KirvoFilesSaveOptions), POINTER(HANDLE),
    usage="KirvoFilesSaveW(name, dib, source, in options, out file)",
    summary="KirvoFilesSave with a UTF-16 name.")

KirvoFilesSaveMemory = _declare(
    _files, c_int32, HANDLE, HANDLE, POINTER(KirvoFilesSaveOptions), POINTER(HANDLE),
    POINTER(c_uint32), POINTER(HANDLE),
    usage="KirvoFilesSaveMemory(dib, source, in options, out block, out count, out file)",
    summary="Saves a picture into a block of memory.")


# Turn a JPEG without loss

KirvoFilesTurn = _declare(
    _files, c_int32, Text, Text, c_int32, c_int32, c_uint32, POINTER(HANDLE),
    usage="KirvoFilesTurn(source, target, turning, edges, flags, out file)",
    summary="Turns a JPEG without loss.")

KirvoFilesTurnW = _declare(
    _files, c_int32, c_void_p, c_void_p, c_int32, c_int32, c_uint32, POINTER(HANDLE),
    usage="KirvoFilesTurnW(source, target, turning, edges, flags, out file)",
    summary="KirvoFilesTurn with UTF-16 names.")


# Conveniences of this module

class KirvoFilesError(Exception):
    """A status other than KIRVO_FILES_OK, which `status` holds, with the reason."""

    def __init__(self, status, reason=""):
        self.status = Status(status) if status in list(Status) else status
        name = self.status.name if isinstance(self.status, Status) else f"status {status}"
        super().__init__(f"{name}: {reason or getattr(self.status, 'meaning', '')}")


def text(file, kind, index=0):
    """A text about a file, KIRVO_FILES_TEXT_..., as str."""
    room = ctypes.create_string_buffer(KirvoFilesText(file, kind, index, None, 0))
    KirvoFilesText(file, kind, index, room, sizeof(room))
    return room.value.decode()


def check(status, file=None):
    """Raises KirvoFilesError unless the status is KIRVO_FILES_OK."""
    if status != Status.KIRVO_FILES_OK:
        raise KirvoFilesError(status, text(file, KIRVO_FILES_TEXT_REASON))


def options(kind, **values):
    """Options with their size, KirvoFilesOpenOptions or KirvoFilesSaveOptions, to be given by
    byref()."""
    return kind(size=sizeof(kind), **values)
