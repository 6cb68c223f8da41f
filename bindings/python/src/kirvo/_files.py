"""What the pictures of files share, and the error of the package."""
from __future__ import annotations

import ctypes
import os
from typing import Any, Optional

from . import flat, flat_files


class Error(Exception):
    """What went wrong, in words; `status` is the code behind it, `filename` the file's name or
    None."""

    def __init__(self, status: int, text: str, filename: Optional[str] = None) -> None:
        super().__init__(text)
        self.status, self.filename = status, filename

    def __reduce__(self) -> tuple[Any, ...]:
        return Error, (self.status, str(self), self.filename)


OpenOptions: Any = flat_files.KirvoFilesOpenOptions
SaveOptions: Any = flat_files.KirvoFilesSaveOptions
Description: Any = flat_files.KirvoFilesDescription


def name_of(path: str | bytes | os.PathLike[Any]) -> bytes:
    """A file's name as the library takes it: UTF-8 on Windows, the system's bytes elsewhere."""
    name = os.fsdecode(path).encode() if os.name == "nt" else os.fsencode(path)
    if b"\0" in name:
        raise ValueError("embedded null byte")
    return name


def words(file: Any, kind: int, index: int = 0) -> str:
    room = ctypes.create_string_buffer(int(flat_files.KirvoFilesText(file, kind, index, None, 0)))
    flat_files.KirvoFilesText(file, kind, index, room, len(room))
    return room.value.decode("utf-8", "replace")


def meaning(status: int) -> str:
    """A status code in words."""
    known = flat.Status._value2member_map_.get(status)
    if known is not None and status < 0:
        return str(known.meaning).rstrip(".")
    room = ctypes.create_string_buffer(int(flat_files.KirvoFilesStatusText(status, None, 0)))
    flat_files.KirvoFilesStatusText(status, room, len(room))
    return room.value.decode()


def check(status: int, file: Any, filename: Optional[str] = None) -> None:
    if status != 0:
        raise Error(status, (file and words(file, flat_files.KIRVO_FILES_TEXT_REASON)) or meaning(status), filename)
