#!/usr/bin/env python3
"""Every effect of the package as a program with type hints calls it: typed.py"""
from __future__ import annotations

import kirvo
from kirvo import Image, Range


def effects(photo: Image, other: Image) -> list[Image]:
    low = Range(0, 120, 1)
    part = (1, 1, -1, 4)
    return [
        photo.crop(0, 0, 4, 3),
        photo.resize(new_width=5, new_height=4, smooth=False, area=part),
        photo.flip(), photo.mirror(area=part), photo.rotate_180(), photo.rotate_90(direction=1),
        photo.brightness(10), photo.contrast(level=-10), photo.gamma(0.5),
        photo.gamma_channels(red=1.5), photo.tone(1, 2), photo.tone_channels(green=0.5),
        photo.negative(), photo.monochrome(), photo.half_tone(), photo.swap_channels(3),
        photo.map_channels(range(256)), photo.change_hue(2, 120), photo.exclusive_or(0xFFFFFF),
        photo.blur(area=part), photo.sharpen(strength=2), photo.relief(mode=2),
        photo.colour_edges(threshold=5, mode=1), photo.dilate(radius=2), photo.erode(luminance=True),
        photo.keep_channels(low, low, Range()), photo.mosaic(3), photo.mosaic_average(block=2),
        photo.keep_bits(3, 3, 2), photo.reduce_256(), photo.reduce_16(), photo.reduce_grey(),
        photo.dither_256(), photo.exact_256(), photo.reduce_16().exact_16(mode=1), photo.interleave(other.resize(6, 5)),
        photo.convert(16), photo.filter_3x3([0, 0, 0, 0, 1, 0, 0, 0, 0], divisor=1),
        photo.keep_colours(0x102, low, third=low), *photo.separate(),
        Image.solid(2, 2, 7), Image.gradient_across(2, 2, 0, 7), Image.gradient_down(2, 2, 0, 7),
        Image.gradient_corners(3, 3, 1, 2, 3, 4),
    ]


def changes(photo: Image, other: Image) -> None:
    photo.paste(other, to_left=1, to_top=1)
    photo.compose(other, mode=1)
    photo.set_pixel(5, 4, kirvo.rgb(1, 2, 3))
    photo.set_line(0, 2, 1, 5)
    photo.mix_3x3(2, 2)
    photo.mix_5x5(2, 2)


def numbers(photo: Image) -> tuple[int, int, int]:
    Image.key_colour(0)
    Image.mix_masks([1] * 9, [1] * 25)
    return photo.histogram().red[0], photo.count_colours(), photo.get_pixel(5, 4)


def main() -> None:
    photo = Image.from_rgb(6, 5, bytes(range(90)))
    other = Image(3, 3)
    for made in effects(photo, other):
        assert made.width > 0 and made.height > 0
    before: bytes = photo.to_rgb()
    assert before == bytes(range(90))
    changes(photo, other)
    assert numbers(photo)[2] == 0x030201


if __name__ == "__main__":
    main()
