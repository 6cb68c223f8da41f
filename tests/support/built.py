"""What CMake says that it has built, the second argument of a check, and programs that use it."""
import json
import os
import pathlib
import shutil
import sys

import programs

SOURCE = pathlib.Path(__file__).resolve().parents[2]
CONFIG = json.loads(pathlib.Path(sys.argv[2]).read_text())
LIBRARY = pathlib.Path(CONFIG["library"])
FILES_LIBRARY = pathlib.Path(CONFIG["files_library"])
WINDOWS = CONFIG["system"] == "Windows"
BITS = str(8 * int(CONFIG["pointer_bytes"]))
SKIPPED = 77


def run(*command, code=0, folder=None):
    """What a command prints. It finds the libraries and leaves nothing beside Python's modules."""
    if str(command[0]).endswith(".exe") and WINDOWS:
        command = (SOURCE / "script/wine", BITS, *command)
    environment = {**os.environ, "LD_LIBRARY_PATH": str(LIBRARY.parent), "KIRVO_LIBRARY": str(LIBRARY),
                   "KIRVO_FILES_LIBRARY": str(FILES_LIBRARY), "PYTHONDONTWRITEBYTECODE": "1"}
    return programs.run(*command, code=code, env=environment, cwd=folder)


def need(program, package):
    """Skips the check where a program is missing."""
    if not shutil.which(program):
        print(f"needs {program}: Debian's {package}")
        sys.exit(SKIPPED)
