#!/usr/bin/env python3
"""Makes the pictures of the reference with the command line: pictures.py PROGRAMS FOLDER

PROGRAMS holds kirvo and kirvo_sample; pictures.txt says which pictures.
"""
import collections
import pathlib
import subprocess
import sys

LIST = pathlib.Path(__file__).with_name("pictures.txt")
Picture = collections.namedtuple("Picture", "function file options before")
KINDS = ("portrait", "lettering")  # of samples beside the landscape


def pictures():
    count = collections.Counter()
    for line in LIST.read_text().splitlines():
        if line and not line.startswith("#"):
            function, options = line.split(maxsplit=1)
            first, _, rest = options.partition(" ")
            if first in KINDS:
                options = rest
            count[function] += 1
            # dithered pictures are larger as JPEG files, and no longer what they were
            kind = "png" if options.startswith("--palette") else "jpg"
            yield Picture(function, f"{function}-{count[function]}.{kind}", options,
                          first if first in KINDS else "before")


def made(picture):
    """Pictures that have no picture before them."""
    return picture.options.startswith("make ")


def shown_effect(picture, names):
    """The effect that a picture of the reference shows: others on its line prepare for it."""
    options = [word[2:] for word in picture.options.split() if word[2:] in names]
    telling = [name for name in options if name not in ("crop", "resize")]
    return (telling or options[-1:] or [None])[0]


def make_all(programs, folder):
    def run(program, *arguments):
        subprocess.run([programs / program, *arguments], check=True, cwd=folder,
                       stdout=subprocess.DEVNULL)

    def convert(source, target, *options):
        run("kirvo", "--quiet", "--force", "convert", source, target, *options)

    fine = ["--level", "2", "--subsample", "1"]
    run("kirvo_sample", "scene.bmp", "1200", "800")
    run("kirvo_sample", "scene2.bmp", "1200", "800", "2")
    convert("scene.bmp", "before.bmp", "--resize", "240x160")
    convert("before.bmp", "before.jpg", *fine)
    for kind in KINDS:
        run("kirvo_sample", "large.bmp", "1200", "800", "1", kind)
        convert("large.bmp", f"{kind}.bmp", "--resize", "240x160")
        convert("large.bmp", f"sample-{kind}.jpg", "--resize", "600x400", "--level", "3")
        convert(f"{kind}.bmp", f"{kind}.jpg", *fine)
    (folder / "large.bmp").unlink()
    convert("scene2.bmp", "other.bmp", "--resize", "240x160")
    convert("scene2.bmp", "small.bmp", "--resize", "120x80")
    convert("other.bmp", "parts.bmp", "--keep", "rgball,128,255,1,0,255,0,0,255,0")
    for name, source in (("landscape", "scene"), ("other", "scene2")):
        convert(f"{source}.bmp", f"sample-{name}.jpg", "--resize", "600x400", "--level", "3")
    convert("scene2.bmp", "sample-small.jpg", "--resize", "240x160", "--level", "3")
    convert("scene.bmp", "scene.jpg", "--crop", "0,160,1200,480", "--level", "4")
    for picture in pictures():
        words = picture.options.split()
        if made(picture):
            run("kirvo", "--force", *words[:3], picture.file, *words[3:])
        elif "--level" in words:
            convert("before.bmp", picture.file, *words)
        else:
            convert(f"{picture.before}.bmp", picture.file, *words, *fine)
    for name in ("scene", "scene2", "before", *KINDS, "other", "parts", "small"):
        (folder / f"{name}.bmp").unlink()


if __name__ == "__main__":
    make_all(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]))
