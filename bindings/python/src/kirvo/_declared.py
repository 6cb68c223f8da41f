"""What the flat modules of both libraries have in common: how functions and codes are declared."""
import ctypes
import enum
import sys

WINDOWS = sys.platform == "win32"


def load(path):
    return ctypes.WinDLL(path) if WINDOWS else ctypes.CDLL(path)


class Code(enum.IntEnum):
    """A number with a meaning."""

    def __new__(cls, value, meaning):
        code = int.__new__(cls, value)
        code._value_, code.meaning = value, meaning
        return code


class Functions(dict):
    """The functions of a module by their names."""

    def declare(self, library, result, *parameters, usage, summary):
        name = usage.split("(")[0]
        if WINDOWS and name == "KirvoSetWindowHost":
            return None  # windows are the system's there
        function = getattr(library, name)
        function.restype, function.argtypes = result, parameters
        function.__name__, function.__doc__ = name, f"{usage}\n\n{summary}"
        self[name] = function
        return function
