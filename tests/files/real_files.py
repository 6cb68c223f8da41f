#!/usr/bin/env python3
"""Files of other programs, as KirvoFiles and others read them: real_files.py GROUP BUILD_FOLDER

Groups: Written (by ImageMagick in every variant), Installed (pictures of the system's packages),
Jpeg (against djpeg), Orientation (against Pillow), Metadata (against exiftool). A picture equals
Pillow's or ImageMagick's reading, but for the rounding of what is reduced to 8 bits.
"""
import concurrent.futures
import io
import itertools
import json
import os
import pathlib
import random
import struct
import subprocess
import sys
import tempfile
import unittest

from PIL import Image, ImageChops, ImageCms, ImageOps, ImageStat

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).parent))
from kirvo_files import KEEP_ALPHA, KEEP_GOING, Library

LIBRARY = None
WIDTH, HEIGHT = 61, 47


def run(*command, **options):
    return subprocess.run([str(word) for word in command], check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, **options).stdout


def picture(mode="RGB"):
    size = (WIDTH, HEIGHT)
    image = Image.new("RGB", size)
    image.putdata([((x * 4 + y) % 256, (y * 5) % 256, (x * y) % 256)
                   for y in range(HEIGHT) for x in range(WIDTH)])
    if mode == "RGBA":
        image.putalpha(Image.frombytes("L", size, bytes((x * 7 + y * 3) % 256 for y in range(HEIGHT)
                                                        for x in range(WIDTH))))
    return image


def visible(image):
    """Without the colours that nobody sees."""
    image = image.convert("RGBA")
    mask = image.getchannel("A").point(lambda level: 255 if level else 0)
    return Image.composite(image, Image.new("RGBA", image.size), mask)


def distance(one, other):
    """The largest difference of a channel."""
    if one.size != other.size:
        return 999
    extrema = ImageChops.difference(visible(one), visible(other)).getextrema()
    return max(high for low, high in extrema)


def by_pillow(path):
    with Image.open(path) as image:
        if image.mode.startswith(("I", "F")):
            return None  # Pillow cuts such levels off
        if image.format != "TIFF":  # which Pillow turns as it reads it
            image = ImageOps.exif_transpose(image)
        return image.convert("RGBA")


def by_magick(path):
    # The best image of an icon, the first frame of anything else.
    select = "" if path.suffix in (".ico", ".cur") else "[0]"
    out = run("convert", f"{path}{select}", "-auto-orient", "-depth", "8", "PNG32:-")
    return Image.open(io.BytesIO(out)).convert("RGBA")


def difference(path, opened):
    """The smaller of the differences from the two other readings."""
    ours = opened.image()
    best = 1000
    for reading in (by_pillow, by_magick):
        try:
            other = reading(path)
        except Exception:
            continue
        if other is not None:
            best = min(best, distance(ours, other))
        if best == 0:
            break
    return best


def parallel(work, items):
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        return list(pool.map(work, items))


class Folder(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        picture().save(self.folder / "colour.png")
        picture("RGBA").save(self.folder / "alpha.png")

    def write(self, jobs):
        """Files by name, each of ImageMagick's options after the name of its source."""
        def one(job):
            name, source, *options = job
            path = self.folder / name.split(":")[-1]
            given = name.replace(path.name, str(path))
            try:
                run("convert", self.folder / f"{source}.png", *options, given)
            except subprocess.CalledProcessError:
                return None
            return path if path.exists() else None
        return [path for path in parallel(one, jobs) if path]

    def check(self, paths, tolerance=lambda path, opened: 1 if opened.notes else 0):
        """Equal or refused with a reason; answers the refused ones."""
        def one(path):
            opened = LIBRARY.open(path, KEEP_ALPHA)
            if not opened.ok:
                self.assertIn(str(path), opened.texts["reason"])
                self.assertGreater(len(opened.texts["reason"]), len(str(path)) + 5)
                return path.name
            different = difference(path, opened)
            # Five and six bits of a channel are widened by each in its own way.
            allowed = 1 if opened.about.dibBits == 16 else tolerance(path, opened)
            self.assertLessEqual(different, allowed, f"{path.name}: {opened.texts['variant']}")
            return None
        return [name for name in parallel(one, paths) if name]


class Written(Folder):
    def test_bmp(self):
        kinds = {"colour": ["-type", "TrueColor"], "palette": ["-colors", "200", "-type", "Palette"],
                 "sixteen": ["-colors", "13", "-type", "Palette"], "bilevel": ["-monochrome"],
                 "grey": ["-colorspace", "Gray"]}
        jobs = [(f"{version}:{version}-{kind}-{packed}.bmp", "colour", *options, "-compress", packed)
                for version in ("bmp2", "bmp3", "bmp") for kind, options in kinds.items()
                for packed in ("None", "RLE")]
        jobs += [(f"{version}:{version}-alpha.bmp", "alpha") for version in ("bmp2", "bmp3", "bmp")]
        jobs += [(f"bmp:{kind}.bmp", "colour", "-define", f"bmp:subtype={kind}")
                 for kind in ("RGB565", "RGB555")]
        self.assertEqual(self.check(self.write(jobs)), [])

    def test_half_a_png_is_told_by_its_last_row(self):
        path = self.folder / "half.png"
        picture().save(path)
        data = path.read_bytes()
        for size, words in ((33, "ends early: within its headers"),
                            (len(data) * 2 // 3, "ends early: whole to row ")):
            path.write_bytes(data[:size])
            self.assertIn(words, LIBRARY.open(path).texts["reason"])
        going = LIBRARY.open(path, KEEP_GOING)
        self.assertGreater(going.about.wholeRows, HEIGHT // 4)
        top = (0, 0, WIDTH, going.about.wholeRows)
        self.assertEqual(distance(going.image().crop(top), picture().crop(top)), 0)

    def test_png(self):
        kinds = ["Bilevel", "Grayscale", "GrayscaleAlpha", "Palette", "PaletteAlpha", "TrueColor",
                 "TrueColorAlpha"]
        jobs = [(f"{kind}-{depth}-{rows}.png", "alpha" if "Alpha" in kind else "colour", "-type", kind,
                 "-depth", depth, "-interlace", rows)
                for kind in kinds for depth in "1 2 4 8 16".split() for rows in ("None", "PNG")]
        self.assertEqual(self.check(self.write(jobs)), [])

    def test_tiff_of_printing_colours_with_alpha(self):
        self.assertEqual(self.check(self.write([("cmyk.tif", "alpha", "-colorspace", "CMYK")])), [])

    def test_targa(self):
        kinds = {"colour": ["colour"], "palette": ["colour", "-colors", "200", "-type", "Palette"],
                 "grey": ["colour", "-colorspace", "Gray"], "alpha": ["alpha"]}
        jobs = [(f"{kind}-{packed}.tga", *options, "-compress", packed)
                for kind, options in kinds.items() for packed in ("None", "RLE")]
        self.assertEqual(self.check(self.write(jobs)), [])

    def test_tiff(self):
        kinds = ["Bilevel", "Grayscale", "GrayscaleAlpha", "Palette", "TrueColor", "TrueColorAlpha"]
        jobs = [(f"{kind}-{packed}-{depth}.tif", "alpha" if "Alpha" in kind else "colour", "-type", kind,
                 "-depth", depth, "-compress", packed)
                for kind in kinds for packed in ("None", "LZW", "Zip", "RLE") for depth in ("8", "16")]
        jobs += [(f"{packed}.tif", "colour", "-monochrome", "-compress", packed)
                 for packed in ("Group4", "Fax")]
        jobs += [("TIFF64:big.tif", "colour"), ("msb.tif", "colour", "-endian", "msb"), ("planes.tif", "colour", "-interlace", "plane"),
                 ("tiles.tif", "colour", "-define", "tiff:tile-geometry=16x16"),
                 ("cmyk.tif", "colour", "-colorspace", "CMYK", "-compress", "LZW")]
        self.assertEqual(self.check(self.write(jobs)), [])

    def test_alpha_beside_a_palette_is_as_deep_as_its_indices(self):
        levels = b"".join(level.to_bytes(2, "little") for channel in range(3)
                          for level in range(0, 65536, 4369))
        entries = [(256, 4, 4, 1), (257, 4, 1, 1), (258, 3, 0x40004, 2), (259, 3, 1, 1), (262, 3, 3, 1),
                   (273, 4, 242, 1), (277, 3, 2, 1), (278, 4, 1, 1), (279, 4, 4, 1), (320, 3, 146, 48),
                   (338, 3, 2, 1)]
        path = self.folder / "x.tif"
        path.write_bytes(b"II*\0" + struct.pack("<IH", 8, len(entries)) +
                         b"".join(struct.pack("<HHII", tag, kind, count, value)
                                  for tag, kind, value, count in entries) +
                         bytes(4) + levels + bytes((0x0F, 0x18, 0x20, 0x3F)))
        opened = LIBRARY.open(path, KEEP_ALPHA)
        self.assertTrue(opened.ok, opened.texts["reason"])
        self.assertEqual(list(opened.image().convert("RGBA").getdata()),
                         [(0, 0, 0, 255), (17, 17, 17, 136), (34, 34, 34, 0), (51, 51, 51, 255)])

    def test_a_fax_of_grey_with_alpha_is_refused(self):  # which no two programs read alike
        for path in self.write([("x.tif", "alpha", "-type", "GrayscaleAlpha", "-compress", "Group4")]):
            self.assertIn("a fax of several samples", LIBRARY.open(path).texts["reason"])

    def test_gif_webp_and_icons(self):
        jobs = [("plain.gif", "colour"), ("clear.gif", "alpha"), ("rows.gif", "colour", "-interlace", "GIF"),
                ("one.ico", "alpha"), ("large.ico", "alpha", "-resize", "256x256!"),
                ("lossless.webp", "colour", "-define", "webp:lossless=true"),
                ("alpha.webp", "alpha", "-define", "webp:lossless=true"),
                ("lossy.webp", "colour", "-quality", "80"), ("lossy-alpha.webp", "alpha", "-quality", "80")]
        self.assertEqual(self.check(self.write(jobs)), [])

    def test_what_is_saved_is_read_by_others(self):
        for source, mode in (("colour", "RGB"), ("alpha", "RGBA")):
            opened = LIBRARY.open(self.folder / f"{source}.png", KEEP_ALPHA)
            for name, options in itertools.product(
                    ("x.bmp", "x.png", "x.tga", "x.tif", "x.webp"),
                    ({"flags": 8 | 32}, {"flags": 8 | 16 | 32, "compression": 3})):
                path = self.folder / name
                self.assertEqual(opened.save(path, **options), 0, name)
                readings = [distance(picture(mode), by(path)) for by in (by_pillow, by_magick)]
                self.assertEqual(min(readings), 0, f"{name} {mode}")


class Jpeg(Folder):
    def check_against_djpeg(self, paths):
        def one(path):
            opened = LIBRARY.open(path)
            self.assertTrue(opened.ok, opened.texts["reason"])
            other = Image.open(io.BytesIO(run("djpeg", "-dct", "int", "-nosmooth", "-rgb", path)))
            other = other.convert("RGB")
            with Image.open(path) as tagged:
                turn = {2: 0, 3: 3, 4: 1, 5: 5, 6: 4, 7: 6, 8: 2}.get(tagged.getexif().get(0x0112))
            if turn is not None:
                other = other.transpose(turn)
            mean = ImageStat.Stat(ImageChops.difference(opened.image(), other)).mean
            self.assertLess(sum(mean) / 3, 2, f"{path.name}: {opened.texts['variant']}")
            return opened.texts["decoder"]
        return parallel(one, paths)

    def test_every_variant_of_cjpeg(self):
        picture().save(self.folder / "colour.ppm")
        paths = []
        options = ["", "-sample 1x1", "-sample 2x1", "-sample 1x2", "-sample 4x1", 
                   "-progressive", "-arithmetic", "-optimize", "-restart 1", "-grayscale",
                   "-progressive -restart 2B", "-rgb", "-quality 4"]
        for index, (quality, option) in enumerate(itertools.product(("50", "90"), options)):
            path = self.folder / f"{index}.jpg"
            path.write_bytes(run("cjpeg", "-quality", quality, *option.split(),
                                 self.folder / "colour.ppm"))
            paths.append(path)
        decoders = self.check_against_djpeg(paths)
        self.assertIn("Kirvo", decoders)

    def test_the_hardest_pictures_are_not_taken_for_damage(self):
        tile = {"points": lambda x, y: 255 * (x + y & 1), "lines": lambda x, y: 255 * (x & 1),
                "blocks": lambda x, y: 255 * (x // 8 + y // 8 & 1), "white": lambda x, y: 255}
        for (title, level), quality, option in itertools.product(
                tile.items(), ("1", "50", "100"),
                ("", "-sample 1x1 -optimize", "-progressive -dct fast", "-rgb -dct float")):
            levels = bytes(level(x, y) for y in range(24) for x in range(40) for _ in range(3))
            path = self.folder / f"{title}.jpg"
            path.write_bytes(run("cjpeg", "-quality", quality, *option.split(),
                                 input=b"P6 40 24 255\n" + levels))
            opened = LIBRARY.open(path)
            self.assertTrue(opened.ok, f"{title} {quality} {option}: {opened.texts['reason']}")

    def test_no_damage_that_djpeg_tells_is_passed_over(self):
        path, told = self.folder / "x.jpg", 0
        for seed, options in enumerate((["-interlace", "JPEG"], [], ["-sampling-factor", "1x1"])):
            whole, = self.write([("whole.jpg", "colour", "-resize", "300%", *options)])
            data, chance = whole.read_bytes(), random.Random(seed)
            for _ in range(50):
                damaged = bytearray(data)
                damaged[chance.randrange(data.index(b"\xff\xda") + 14, len(data) - 2)] ^= (
                    1 << chance.randrange(8))
                path.write_bytes(damaged)
                theirs = subprocess.run(["djpeg", path], stdout=subprocess.DEVNULL,
                                        stderr=subprocess.PIPE)
                if theirs.stderr:
                    told += 1
                    self.assertFalse(LIBRARY.open(path).ok, theirs.stderr)
        self.assertGreater(told, 20)

    def test_half_a_file_is_refused_with_its_last_row(self):
        for options in ([], ["-interlace", "JPEG"]):
            path, = self.write([("x.jpg", "colour", *options)])
            data = path.read_bytes()
            path.write_bytes(data[:len(data) * 2 // 3])
            self.assertIn("ends early: whole to row", LIBRARY.open(path).texts["reason"])
            self.assertTrue(LIBRARY.open(path, KEEP_GOING).ok)

    def test_the_last_scans_of_a_progressive_file_may_be_missing(self):
        path, = self.write([("x.jpg", "colour", "-interlace", "JPEG")])
        data = path.read_bytes()
        path.write_bytes(data[:data.rindex(b"\xff\xda")] + b"\xff\xd9")
        self.assertIn("ends early", LIBRARY.open(path).texts["reason"])
        going_on = LIBRARY.open(path, KEEP_GOING)
        self.assertTrue(going_on.ok)
        self.assertTrue(any("ends early" in note for note in going_on.notes), going_on.notes)

    def test_turns_are_those_of_jpegtran(self):
        picture().save(self.folder / "colour.ppm")
        turns = {1: "-rotate 90", 2: "-rotate 180", 3: "-rotate 270", 4: "-flip vertical",
                 5: "-flip horizontal"}
        finer = self.folder / "finer"  # the first coefficient in four passes, bits one by one
        finer.write_text("0: 0-0, 0, 3; 1 2: 0-0, 0, 0; 0: 0-0, 3, 2; 0: 0-0, 2, 1; 0: 0-0, 1, 0;"
                         "0: 1-63, 0, 3; 0: 1-63, 3, 2; 0: 1-63, 2, 1; 0: 1-63, 1, 0;"
                         "1: 1-63, 0, 0; 2: 1-1, 0, 0; 2: 2-63, 0, 0;")
        each = self.folder / "each"
        each.write_text("0; 1; 2;")
        options = ["", "-sample 1x1", "-sample 2x1", "-sample 1x2", "-sample 4x1", "-grayscale",
                   "-restart 2B", "-optimize", "-arithmetic", "-quality 3", "-progressive",
                   "-progressive -grayscale", "-progressive -restart 1B -quality 98",
                   "-progressive -sample 1x2,1x1,2x2", "-rgb -progressive", f"-scans {finer}",
                   f"-scans {finer} -sample 1x1", f"-scans {each}", f"-scans {each} -restart 2B"]
        source, ours, theirs = (self.folder / name for name in ("s.jpg", "ours.jpg", "theirs.jpg"))
        for option, (turning, words), edges in itertools.product(options, turns.items(), (1, 2)):
            source.write_bytes(run("cjpeg", "-quality", "80", *option.split(),
                                   self.folder / "colour.ppm"))
            status = LIBRARY.files.KirvoFilesTurn(os.fsencode(source), os.fsencode(ours), turning, edges,
                                                  0, None)
            self.assertEqual(status, 0, f"{option} {words}")
            trim = ["-trim"] if edges == 1 else []
            theirs.write_bytes(run("jpegtran", *words.split(), *trim, source))
            self.assertEqual(run("djpeg", ours), run("djpeg", theirs), f"{option} {words} {trim}")
            kinds = [b"\xff\xc2" in path.read_bytes() for path in (source, ours)]
            self.assertEqual(*kinds, f"{option}: progressive files stay so, and no other becomes one")

    def test_one_without_huffman_tables_has_the_usual_ones(self):
        path, = self.write([("x.jpg", "colour", "-define", "jpeg:optimize-coding=false")])
        data = path.read_bytes()
        at, kept = 2, data[:2]
        while data[at + 1] != 0xDA:
            end = at + 2 + int.from_bytes(data[at + 2:at + 4], "big")
            kept += data[at:end] if data[at + 1] != 0xC4 else b""
            at = end
        path.write_bytes(kept + data[at:])
        self.check_against_djpeg([path])
        ours, theirs = self.folder / "ours.jpg", self.folder / "theirs.jpg"
        self.assertEqual(LIBRARY.files.KirvoFilesTurn(os.fsencode(path), os.fsencode(ours), 1, 2, 0, None), 0)
        theirs.write_bytes(run("jpegtran", "-rotate", "90", path))
        self.assertEqual(run("djpeg", ours), run("djpeg", theirs))

    def test_cmyk(self):
        paths = self.write([("cmyk.jpg", "colour", "-colorspace", "CMYK", "-quality", "95")])
        self.assertEqual(self.check(paths, lambda path, opened: 1), [])

    def test_photographs_of_packages(self):
        self.assertGreater(len(self.check_against_djpeg(installed(("jpg", "jpeg"), 40))), 5)


def installed(extensions, count):
    """Pictures of this system, at most so many, from all its folders alike."""
    found = []
    for root in ("/usr/share", "/usr/lib"):
        for folder, _, names in os.walk(root):
            found += [pathlib.Path(folder, name) for name in names
                      if name.lower().endswith(tuple("." + word for word in extensions))]
    found = sorted(path for path in found
                   if not path.is_symlink() and 0 < path.stat().st_size < 1_500_000)
    step = max(1, len(found) // count)
    return found[::step][:count]


class Installed(Folder):
    def test_icons_and_wallpapers(self):
        paths = installed(("png", "gif", "ico", "bmp", "tga", "tif", "tiff", "webp"), 450)
        self.assertGreater(len(paths), 200, "too few packages with pictures are installed")
        refused = self.check(paths)
        self.assertLess(len(refused), len(paths) // 50 + 1, refused)


class Orientation(Folder):
    def test_every_orientation_of_every_format(self):
        for suffix, orientation in itertools.product((".jpg", ".png", ".tif", ".webp"), range(1, 9)):
            path = self.folder / f"{orientation}{suffix}"
            image = picture()
            exif = Image.Exif()
            exif[0x0112] = orientation
            options = {".webp": {"lossless": True}, ".jpg": {"quality": 95, "subsampling": 0}}.get(suffix, {})
            image.save(path, exif=exif.tobytes(), **options)
            opened = LIBRARY.open(path)
            self.assertTrue(opened.ok, opened.texts["reason"])
            with Image.open(path) as other:
                if suffix != ".tif":  # which Pillow turns as it reads it
                    other = ImageOps.exif_transpose(other)
                other = other.convert("RGB")
            self.assertEqual(opened.image().size, other.size, path.name)
            mean = ImageStat.Stat(ImageChops.difference(opened.image(), other)).mean
            self.assertLess(max(mean), 3 if suffix == ".jpg" else 0.001, path.name)
            self.assertEqual(LIBRARY.info(path).about.width, other.size[0])


class Metadata(Folder):
    TAGS = {"Make": "Maker", "Model": "Model X", "DateTimeOriginal": "2023:05:01 12:30:00",
            "ExposureTime": "1/250", "FNumber": "2.8", "ISO": "400", "FocalLength": "35",
            "LensModel": "A lens", "Artist": "Łukasz", "Copyright": "nobody", "Software": "a program",
            "GPSLatitude": "35.6895", "GPSLatitudeRef": "N", "GPSLongitude": "139.6917",
            "GPSLongitudeRef": "E", "XMP-dc:Title": "写真"}

    def tagged(self, title, orientation):
        path = self.folder / title
        profile = ImageCms.ImageCmsProfile(ImageCms.createProfile("sRGB")).tobytes()
        picture().save(path, icc_profile=profile, dpi=(300, 150), quality=95)
        # A thumbnail, for it to be dropped.
        small = self.folder / "small.jpg"
        picture().resize((16, 12)).save(small)
        run("exiftool", "-q", "-overwrite_original", f"-Orientation#={orientation}",
            f"-ThumbnailImage<={small}", "-ExifImageWidth=61", "-ExifImageHeight=47",
            *(f"-{name}={value}" for name, value in self.TAGS.items()), path)
        return path

    def tags(self, path):
        return json.loads(run("exiftool", "-json", "-n", "-a", path))[0]

    def test_is_told_as_exiftool_tells_it(self):
        about = LIBRARY.info(self.tagged("a.jpg", 6))
        self.assertEqual(about.texts["camera"], "Maker Model X")
        self.assertEqual(about.texts["date"], "2023-05-01 12:30:00")
        self.assertEqual(about.texts["exposure"], "1/250 s, f/2.8, ISO 400, 35 mm")
        self.assertEqual(about.texts["place"], "35.68950, 139.69170")
        self.assertEqual(about.texts["lens"], "A lens")
        self.assertEqual(about.texts["artist"], "Łukasz")
        self.assertIn("sRGB", about.texts["profile"])
        self.assertEqual(about.about.orientation, 6)
        self.assertAlmostEqual(about.about.dpiAcross, 150)  # turned with the picture
        self.assertAlmostEqual(about.about.dpiDown, 300)

    def test_goes_along_into_every_format(self):
        opened = LIBRARY.open(self.tagged("a.jpg", 6))
        for title in ("b.jpg", "b.png", "b.tif", "b.webp"):
            path = self.folder / title
            self.assertEqual(opened.save(path), 0)
            tags = self.tags(path)
            for name in ("Make", "Model", "DateTimeOriginal", "Artist", "Copyright", "LensModel"):
                self.assertEqual(tags.get(name), self.TAGS[name], f"{title}: {name}")
            self.assertEqual(tags.get("Title"), "写真", title)
            self.assertAlmostEqual(tags["GPSLatitude"], 35.6895, 4)
            self.assertIn(tags.get("Orientation", 1), (1,), title)
            self.assertNotIn("ThumbnailImage", tags, title)
            self.assertIn("ProfileDescription", tags, title)
            self.assertEqual((tags["ImageWidth"], tags["ImageHeight"]), (47, 61))
            self.assertEqual(tags.get("ExifImageWidth", 47), 47, title)
            self.assertNotIn("Error", tags, title)
            self.assertNotIn("Warning", tags, f"{title}: {tags.get('Warning')}")
            bare = self.folder / ("bare-" + title)
            self.assertEqual(opened.save(bare, flags=1), 0)
            self.assertNotIn("Make", self.tags(bare))
            self.assertNotIn("ProfileDescription", self.tags(bare))

    def test_goes_on_from_every_format(self):
        opened = LIBRARY.open(self.tagged("a.jpg", 1))
        for title in ("b.png", "b.tif", "b.webp"):
            opened.save(self.folder / title)
            again = LIBRARY.open(self.folder / title)
            path = self.folder / "c.jpg"
            self.assertEqual(again.save(path), 0)
            tags = self.tags(path)
            for name in ("Make", "Model", "DateTimeOriginal", "Artist"):
                self.assertEqual(tags.get(name), self.TAGS[name], f"{title}: {name}")
            self.assertIn("ProfileDescription", tags, title)
            self.assertEqual(tags.get("Title"), "写真", title)
            self.assertNotIn("Warning", tags, title)


if __name__ == "__main__":
    LIBRARY = Library(sys.argv.pop(2))
    unittest.main(verbosity=1)
