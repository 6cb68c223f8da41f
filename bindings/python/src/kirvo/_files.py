"""KirvoFiles, by ctypes, and the error of the package."""
from __future__ import annotations

import ctypes
import os
import pathlib
from ctypes import POINTER, Structure, c_char_p, c_double, c_int32, c_uint32, c_void_p
from typing import Any, Optional

from . import flat


class Error(Exception):
    """What went wrong, in words; `status` is the code behind it, `filename` the file's name or
    None."""

    def __init__(self, status: int, text: str, filename: Optional[str] = None) -> None:
        super().__init__(text)
        self.status, self.filename = status, filename

    def __reduce__(self) -> tuple[Any, ...]:
        return Error, (self.status, str(self), self.filename)


class OpenOptions(Structure):
    _fields_ = [(name, c_uint32) for name in ("size", "flags", "background", "frame")]


class SaveOptions(Structure):
    _fields_ = [("size", c_uint32), ("format", c_int32), ("flags", c_uint32), ("quality", c_uint32),
                ("level", c_uint32), ("subsample", c_uint32), ("sizeLimit", c_uint32),
                ("bits", c_uint32), ("compression", c_int32), ("reserved", c_uint32),
                ("dpiAcross", c_double), ("dpiDown", c_double)]


class Description(Structure):
    _fields_ = [*((name, c_uint32) for name in (
        "size format width height fileBits channels colours dibBits flags orientation frames frame "
        "quality sampleAcross sampleDown fileBytes wholeRows notes").split()),
        *((name, c_double) for name in ("dpiAcross", "dpiDown", "latitude", "longitude"))]


NO_TURN, KEEP_ALPHA, KEEP_GOING, NO_LIMITS, KIRVO_ONLY, BACKGROUND = 1, 2, 4, 8, 16, 32
STRIP, NEW_ONLY, GREY, WITH_ALPHA, RLE, WEBP_LOSSLESS, FRESH = 1, 2, 4, 8, 16, 32, 64
TEXT_REASON, TEXT_NOTE = 0, 1

_WINDOWS = os.name == "nt"
_NAME: Any = ctypes.c_wchar_p if _WINDOWS else c_char_p


def _load() -> Any:
    """The second library lies beside the first."""
    file = "KirvoFiles.dll" if _WINDOWS else "libkirvofiles.so"
    named = os.environ.get("KIRVO_LIBRARY")
    beside = (pathlib.Path(named) if named else pathlib.Path(__file__)).with_name(file)
    path = str(beside) if beside.exists() else file
    return getattr(ctypes, "WinDLL")(path) if _WINDOWS else ctypes.CDLL(path)


_library = _load()


def _declare(name: str, result: Any, *parameters: Any) -> Any:
    function = getattr(_library, name)
    function.restype, function.argtypes = result, parameters
    return function


_W = "W" if _WINDOWS else ""
status_text = _declare("KirvoFilesStatusText", c_uint32, c_int32, c_char_p, c_uint32)
format_of = _declare("KirvoFilesFormatOf", c_int32, c_char_p)
open_file = _declare("KirvoFilesOpen" + _W, c_int32, _NAME, POINTER(OpenOptions), POINTER(c_void_p),
                     POINTER(c_void_p))
open_memory = _declare("KirvoFilesOpenMemory", c_int32, c_char_p, c_uint32, POINTER(OpenOptions),
                       POINTER(c_void_p), POINTER(c_void_p))
save_file = _declare("KirvoFilesSave" + _W, c_int32, _NAME, c_void_p, c_void_p, POINTER(SaveOptions),
                     POINTER(c_void_p))
save_memory = _declare("KirvoFilesSaveMemory", c_int32, c_void_p, c_void_p, POINTER(SaveOptions),
                       POINTER(c_void_p), POINTER(c_uint32), POINTER(c_void_p))
close = _declare("KirvoFilesClose", None, c_void_p)
describe = _declare("KirvoFilesDescribe", c_int32, c_void_p, POINTER(Description))
text = _declare("KirvoFilesText", c_uint32, c_void_p, c_int32, c_uint32, c_char_p, c_uint32)


def name_of(path: str | bytes | os.PathLike[Any]) -> Any:
    """A file's name as the library takes it: UTF-16 on Windows, bytes elsewhere."""
    return os.fsdecode(path) if _WINDOWS else os.fsencode(path)


def words(file: Any, kind: int, index: int = 0) -> str:
    room = ctypes.create_string_buffer(int(text(file, kind, index, None, 0)))
    text(file, kind, index, room, len(room))
    return room.value.decode("utf-8", "replace")


def meaning(status: int) -> str:
    """A status code in words."""
    known = flat.Status._value2member_map_.get(status)
    if known is not None and status < 0:
        return str(known.meaning).rstrip(".")
    room = ctypes.create_string_buffer(int(status_text(status, None, 0)))
    status_text(status, room, len(room))
    return room.value.decode()


def check(status: int, file: Any, filename: Optional[str] = None) -> None:
    if status != 0:
        raise Error(status, (file and words(file, TEXT_REASON)) or meaning(status), filename)
