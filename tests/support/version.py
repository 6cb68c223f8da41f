"""The version that CMakeLists.txt gives the project: the only place where it is set."""
import pathlib
import re

SOURCE = pathlib.Path(__file__).resolve().parents[2]
TEXT = re.search(r"^project\(Kirvo VERSION (\S+)", (SOURCE / "CMakeLists.txt").read_text(), re.M)[1]
PARTS = tuple(map(int, TEXT.split(".")))
NUMBER = int.from_bytes(bytes(PARTS), "big") # what GetVerKirvoDll answers
