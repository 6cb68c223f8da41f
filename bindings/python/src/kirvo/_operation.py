"""One operation of the library at a time, with its progress."""
from __future__ import annotations

import contextlib
import ctypes
import threading
from typing import Callable, Iterator, Optional

from . import flat

Progress = Callable[[int], object]

_COMMAND = 1
_lock = threading.RLock()
_local = threading.local()
_running: list[Operation] = []


def _window() -> int:
    """Receives reports: on Windows a hidden window of this thread, so that no other has to fetch
    its messages."""
    if flat.WINDOWS:
        if not hasattr(_local, "window"):
            _local.window = flat._open_window()
        return int(_local.window[0])
    if not flat._kept:
        flat._kept.extend(flat._open_host())
    return int(flat._kept[0])


class Operation:
    """Holds the library; reports progress to this thread's listener; gives on what that raised."""

    def __enter__(self) -> Operation:
        _lock.acquire()
        self._inner = bool(_running)
        self._listener: Optional[Progress] = None
        self._raised: Optional[BaseException] = None
        self._last = -1
        _running.append(self)
        return self

    def begin(self) -> None:
        """The next call of the library is what reports; operations inside another do not."""
        if not self._inner:
            self._listener = getattr(_local, "listener", None)
        if self._listener:
            flat._watcher = self._receive
            flat.KirvoSetProcess(_window(), _COMMAND, 1)

    def done(self, succeeded: bool) -> None:
        """After the call: raises what the listener raised."""
        if self._listener and self._raised is None and succeeded and self._last != 100:
            self._receive(100)
        if self._raised is not None:
            raised, self._raised = self._raised, None
            raise raised

    def __exit__(self, *_: object) -> None:
        if self._listener:
            flat.KirvoSetProcess(None, _COMMAND, 0)
            flat._watcher = None
        _running.pop()
        _lock.release()

    def _receive(self, percent: int) -> None:
        if self._raised is not None or self._listener is None:
            return
        flat.KirvoSetProcess(None, _COMMAND, 0) # what the listener itself does is not reported
        try:
            self._last = percent
            self._listener(percent)
        except BaseException as error: # also KeyboardInterrupt: it goes on where it belongs
            self._raised = error
            self._abandon()
        else:
            flat.KirvoSetProcess(_window(), _COMMAND, 1)

    @staticmethod
    def _abandon() -> None:
        """A codec stops; an effect runs to its end without further reports."""
        flat.JpgDecNext(None, 0, -1, ctypes.byref(flat.HANDLE()))
        flat.JpgCodNext(-1, ctypes.byref(ctypes.c_uint32()))
        flat.JpgCodNext_M(-1, ctypes.byref(ctypes.c_uint32()))


@contextlib.contextmanager
def progress(listener: Optional[Progress]) -> Iterator[None]:
    """Operations of this thread inside the `with` call listener(percent): 0, then steps of at least
    5, and 100 at the end. An exception that it raises ends the operation and reaches the caller."""
    outer = getattr(_local, "listener", None)
    _local.listener = listener
    try:
        yield
    finally:
        _local.listener = outer
