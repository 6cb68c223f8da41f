#!/usr/bin/env python3
"""A photo made ready for a page, 800 pixels wide: photo.py IN OUT.png"""
import sys

import kirvo


def show(percent: int) -> None:
    print(f" {percent}%", end="", flush=True)


def make_ready(source: str, target: str) -> None:
    with kirvo.progress(show):
        photo = kirvo.Image.open(source)  # upright, as its camera was held
        width, height = photo.width * 9 // 10, photo.height * 9 // 10
        part = photo.crop(photo.width // 20, photo.height // 20, width, height)
        page = part.resize(800, height * 800 // width).sharpen()
    page.to_pillow().save(target)


if __name__ == "__main__":
    try:
        make_ready(sys.argv[1], sys.argv[2])
    except kirvo.Error as error:
        sys.exit(str(error))
