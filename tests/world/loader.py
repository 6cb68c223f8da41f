"""Opens every file named in its input, by the classes of Python, and says what became of it."""

import sys

import kirvo

for name in map(str.strip, sys.stdin):
    try:
        image = kirvo.Image.open(name).negative()
        print(name, f"{image.width} {image.height}", sep="\t")
    except kirvo.Error as error:
        print(name, error, sep="\t")
