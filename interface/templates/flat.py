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
@{ statuses }@


globals().update(Status.__members__)

@{ constants }@
@{ structures }@
@{ functions }@


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
