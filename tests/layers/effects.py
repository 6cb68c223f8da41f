"""Calls of every effect at each depth, with a part of the picture and without one, and programs in other
languages that make them: effects.py LANGUAGE FOLDER writes one with the pictures that it needs and, in
expected/, what the package for Python makes.
"""
import dataclasses
import json
import pathlib
import sys

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(SOURCE / "bindings/python/src"), str(SOURCE / "interface")]
import kirvo
from description import Description
from header import Header
from kirvo import Range
from layers import Layers

COLOUR = 0x96643C
LOW, OTHERS = Range(0, 120, 1), Range(50, 99, 2)
# What methods are given; other pictures by their sizes.
SMALL, SAME = (4, 5), (7, 9)
GIVEN = {
    "crop": (1, 2, 4, 3), "resize": (3, 4), "brightness": (17,), "contrast": (-30,), "gamma": (0.5,),
    "gamma_channels": (0.5, 1.5, 2), "tone": (1, 2), "tone_channels": (0.5, 1.5, 0.25), "swap_channels": (3,),
    "map_channels": (bytes(range(255, -1, -1)),), "change_hue": (2, 120), "exclusive_or": (COLOUR,),
    "keep_channels": (LOW, OTHERS, LOW), "mosaic": (3,), "mosaic_average": (2,), "keep_bits": (3, 4, 2),
    "interleave": (SAME,), "paste": (SMALL, 1, 2), "compose": (SMALL, 1, 2, 1), "set_pixel": (3, 4, COLOUR),
    "set_line": (1, 5, 3, COLOUR), "mix_3x3": (3, 3), "mix_5x5": (4, 4), "solid": (3, 5, COLOUR),
    "gradient_across": (7, 2, 0, COLOUR), "gradient_down": (2, 7, 0, COLOUR),
    "gradient_corners": (4, 5, 1, COLOUR, 3000, 0xFF)}
# What those are given besides whose parameters all have defaults.
OTHERWISE = {"sharpen": (2,), "relief": (3,), "colour_edges": (5, 1), "dilate": (2, True), "erode": (1, True),
             "rotate_90": (1,), "resize": (3, 4, False), "exact_256": (0,), "paste": (SMALL,), "compose": (SAME,),
             "gamma_channels": (), "tone_channels": ()}


def picture(width=7, height=9):
    return kirvo.Image.from_rgb(width, height, bytes(7 * i % 251 for i in range(3 * width * height)))


def other(size):
    return kirvo.Image.gradient_across(*size, 0, COLOUR).reduce_256()


def packed(value):
    return value.lower | value.upper << 8 | value.test << 16 if isinstance(value, Range) else value


@dataclasses.dataclass
class Call:
    method: object
    bits: int
    given: tuple
    area: tuple

    @property
    def capitals(self):
        return "".join(map(str.capitalize, self.method.name.split("_")))

    @property
    def few(self):
        """Whether the picture may have no more than 16 colours."""
        return self.method.name == "exact_16"

    def first(self):
        image = picture().reduce_16().convert(24) if self.few else picture()
        return image.exact_256(1) if self.bits == 8 else image.convert(self.bits)

    def made(self):
        image = self.first()
        given = (other(value) if value in (SMALL, SAME) else value for value in self.given)
        made = getattr(image, self.method.name)(*given, **({"area": self.area} if self.area else {}))
        return image if self.method.way == "change" else made

    def __str__(self):
        return f"{self.method.name}{self.given} at {self.bits} bits in {self.area}"


def calls():
    for method in Layers(Description(), Header()).methods:
        for bits in (8, 16, 24, 32):
            for area in [(), (1, 2, 4, 3), (2, 1, -1, -1)] if method.has_area else [()]:
                for given in {GIVEN.get(method.name, ()), OTHERWISE.get(method.name, GIVEN.get(method.name, ()))}:
                    if area:  # which stands behind all others
                        given += tuple(json.loads(one.value) for one in method.parameters[len(given):])
                    yield Call(method, bits, given, area)


def literal(value, yes_and_no):
    if value in (SMALL, SAME):
        return "small" if value == SMALL else "same"
    if isinstance(value, bytes):
        return "table"
    return yes_and_no[value] if isinstance(value, bool) else str(packed(value))


class CSharp:
    name = "Every.cs"
    head = """using KirvoImaging;
static class Every
{
    static KirvoImage First(string name, int bits)
    {
        KirvoImage image = KirvoImage.Open(name);
        return bits == 8 ? image.Exact256(1) : image.Convert(bits);
    }
    static void Main()
    {
        KirvoImage image, small = KirvoImage.Open("small.bmp"), same = KirvoImage.Open("same.bmp");
        byte[] table = new byte[256];
        for (int i = 0; i < 256; ++i)
            table[i] = (byte)(255 - i);
"""
    tail = "    }\n}\n"

    @staticmethod
    def line(call, first, target):
        given = [literal(value, ("false", "true")) for value in call.given]
        given += [f"new KirvoArea({', '.join(map(str, call.area))})"] if call.area else []
        owner = "KirvoImage" if call.method.way == "static" else "image"
        made = f"{owner}.{call.capitals}({', '.join(given)})"
        image = f'image = First("{first}", {call.bits}); '
        return f'        {image}{made}{"; image" if call.method.way == "change" else ""}.Save("{target}");'


class Pascal:
    name = "Every.dpr"
    head = """program Every;
{$MODE DELPHI}
uses
  cthreads, cwstring, SysUtils, Kirvo, KirvoImages;
var
  Image, Small, Same: TKirvoImage;
  Table: array [0..255] of Byte;
  I: Integer;

function First(const Name: string; Bits: Integer): TKirvoImage;
begin
  Result := TKirvoImage.Open(Name);
  if Bits = 8 then
    Result := Result.Exact256(1)
  else
    Result := Result.Convert(Bits);
end;

begin
  Small := TKirvoImage.Open('small.bmp');
  Same := TKirvoImage.Open('same.bmp');
  for I := 0 to 255 do
    Table[I] := 255 - I;
"""
    tail = "end.\n"

    @staticmethod
    def line(call, first, target):
        given = [literal(value, ("False", "True")) for value in (*call.given, *call.area)]
        owner = "TKirvoImage" if call.method.way == "static" else "Image"
        made = f"{owner}.{call.capitals}" + (f"({', '.join(given)})" if given else "")
        between = "; Image" if call.method.way == "change" else ""
        return f"  Image := First('{first}', {call.bits}); {made}{between}.Save('{target}');"


class Cpp:
    name = "every.cpp"
    head = """#include <kirvo.hpp>
static kirvo::Image first(const char* name, int bits) {
    const kirvo::Image image = kirvo::Image::open(name);
    return bits == 8 ? image.exact_256({1}) : image.convert(bits);
}
int main() {
    const kirvo::Image small = kirvo::Image::open("small.bmp"), same = kirvo::Image::open("same.bmp");
    uint8_t table[256];
    for (int i = 0; i < 256; ++i)
        table[i] = static_cast<uint8_t>(255 - i);
    kirvo::Image image = same.convert(24);
"""
    tail = "}\n"

    @staticmethod
    def line(call, first, target):
        values = [literal(value, ("false", "true")) for value in call.given]
        needed = sum(not one.optional for one in call.method.parameters)
        given = values[:needed]
        if len(values) > needed or (call.area and needed < len(call.method.parameters)):
            given.append(f"{{{', '.join(values[needed:])}}}")
        given += [f"kirvo::Area{{{', '.join(map(str, call.area))}}}"] if call.area else []
        owner = "kirvo::Image::" if call.method.way == "static" else "image."
        made = f"{owner}{call.method.name}({', '.join(given)})"
        return f'    image = first("{first}", {call.bits}); {made}.save("{target}");'


def main():
    language, folder = {"csharp": CSharp, "pascal": Pascal, "cpp": Cpp}[sys.argv[1]], pathlib.Path(sys.argv[2])
    for name, image in (("first", picture()), ("few", picture().reduce_16().convert(24)), ("small", other(SMALL)),
                        ("same", other(SAME))):
        image.save(folder / f"{name}.bmp")
    (folder / "expected").mkdir()
    with (folder / language.name).open("w") as program:
        program.write(language.head)
        for number, call in enumerate(calls()):
            call.made().save(folder / f"expected/{number}.bmp")
            print(language.line(call, "few.bmp" if call.few else "first.bmp", f"{number}.bmp"), file=program)
        program.write(language.tail)


if __name__ == "__main__":
    main()
