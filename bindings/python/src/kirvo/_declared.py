"""What the flat modules of both libraries have in common: how functions and codes are declared."""
import ctypes
import enum
import sys
from typing import Any, Dict, Optional

WINDOWS = sys.platform == "win32"


def load(path: str) -> ctypes.CDLL:
    return getattr(ctypes, "WinDLL" if WINDOWS else "CDLL")(path)  # type: ignore[no-any-return]


class Code(enum.IntEnum):
    """A number with a meaning."""
    meaning: str

    def __new__(cls, value: int, meaning: str) -> "Code":
        code = int.__new__(cls, value)
        code._value_, code.meaning = value, meaning
        return code


class Functions(Dict[str, Any]):
    """The functions of a module by their names."""

    def declare(self, library: ctypes.CDLL, result: Any, *parameters: Any, usage: str,
                summary: str) -> Optional[Any]:
        name = usage.split("(")[0]
        if WINDOWS and name == "KirvoSetWindowHost":
            return None  # windows are the system's there
        function = getattr(library, name)
        function.restype, function.argtypes = result, parameters
        function.__name__, function.__doc__ = name, f"{usage}\n\n{summary}"
        self[name] = function
        return function
