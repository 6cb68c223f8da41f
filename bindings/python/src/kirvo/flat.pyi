# The flat functions are declared when the module is loaded; their types are ctypes'.
from typing import Any

def __getattr__(name: str) -> Any: ...
