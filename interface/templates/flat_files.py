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
@{ statuses }@


globals().update(Status.__members__)

@{ constants }@
@{ structures }@
@{ functions }@


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
