#!/usr/bin/env python3
"""Opens a JPEG file, blurs it and saves it as a BMP file: blur.py IN.JPG OUT.BMP"""
import sys
from ctypes import byref, c_int32, c_uint32

from kirvo import flat as kirvo


def show_progress(percent):
    print(f" {percent}%", end="\n" if percent == 100 else "", flush=True)


def blur_file(source, target):
    width, height, status = c_uint32(), c_uint32(), c_int32()
    print("reading", end="")
    kirvo.watch(show_progress)
    with kirvo.Block(kirvo.JpgDecMainEx(source, byref(width), byref(height),
                                        byref(status))) as photo:
        kirvo.check(status)
        print("blurring", end="")
        kirvo.watch(show_progress)
        with kirvo.Block(kirvo.Dib24Gausian(photo, 0, 0, width.value, height.value,
                                            byref(status))) as blurred:
            kirvo.check(status)
            kirvo.check(kirvo.DibWriteEx(target, blurred, 0, 0, -1, -1))
            print(f"{target}: {width.value} x {height.value}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("blur.py IN.JPG OUT.BMP")
    try:
        blur_file(sys.argv[1], sys.argv[2])
    except kirvo.KirvoError as error:
        sys.exit(str(error))
