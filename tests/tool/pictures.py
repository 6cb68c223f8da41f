#!/usr/bin/env python3
"""Pictures as people have them: pictures.py KIRVO

What is damaged is told and replaces nothing; orientation and metadata are kept; transparency stays;
JPEG files turn without loss. Metadata is judged by exiftool, pixels by libjpeg-turbo's programs.
"""
import hashlib
import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import unittest
import zlib

kirvo = os.path.abspath(sys.argv[1])


def run(*arguments, **options):
    return subprocess.run([kirvo, *map(str, arguments)], capture_output=True, text=True,
                          check=False, **options)


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def exif_of(path, *tags):
    result = subprocess.run(["exiftool", "-j", "-n", *[f"-{tag}" for tag in tags], path],
                            capture_output=True, text=True, check=True)
    return json.loads(result.stdout)[0]


def pixels_of(path):
    """Size and rows of a JPEG file by djpeg."""
    data = subprocess.run(["djpeg", "-dct", "int", "-nosmooth", "-ppm", path], capture_output=True,
                          check=True).stdout
    kind, width, height, rest = data.split(maxsplit=3)
    assert kind == b"P6"
    return int(width), int(height), rest.split(b"\n", 1)[-1]


def bmp_pixels(path):
    data = path.read_bytes()
    start, = struct.unpack_from("<I", data, 10)
    width, height, _, bits = struct.unpack_from("<iiHH", data, 18)
    assert bits == 24 and height > 0
    stride = (3 * width + 3) // 4 * 4
    rows = [data[start + i * stride:][:3 * width] for i in range(height)]
    return width, height, rows[::-1]


def png(path, width, height, rows, colour_type):
    """A PNG file of 8 bits a channel."""
    def chunk(kind, content):
        return (struct.pack(">I", len(content)) + kind + content +
                struct.pack(">I", zlib.crc32(kind + content)))

    raw = b"".join(b"\0" + bytes(row) for row in rows)
    path.write_bytes(b"\x89PNG\r\n\x1a\n" +
                     chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, colour_type, 0, 0, 0)) +
                     chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


class Pictures(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kirvo_test_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.photo = self.folder / "photo.jpg"
        result = run("make", "gradient", "320x240", self.photo, "-c", "navy", "gold", "red", "white")
        self.assertEqual(result.returncode, 0, result.stderr)

    def path(self, name):
        return self.folder / name

    def check(self, *arguments, code=0):
        result = run(*arguments)
        self.assertEqual(result.returncode, code, (arguments, result.stdout, result.stderr))
        return result.stdout + result.stderr


class Damage(Pictures):
    def setUp(self):
        super().setUp()
        run("convert", self.photo, self.path("large.jpg"), "--resize", "640x480", "--sharpen",
            "emboss-corner", "--quality", "95")
        whole = self.path("large.jpg").read_bytes()
        self.cut = self.path("cut.jpg")
        self.cut.write_bytes(whole[:len(whole) // 2])

    def test_what_ends_early_is_told_and_not_written(self):
        text = self.check("convert", self.cut, self.path("out.bmp"), code=1)
        self.assertRegex(text, r"cut\.jpg: ends early: whole to row \d+ of 480")
        self.assertFalse(self.path("out.bmp").exists())

    def test_keep_going_writes_what_there_is(self):
        text = self.check("convert", "--keep-going", self.cut, self.path("out.bmp"))
        self.assertIn("ends early", text)
        self.assertEqual(bmp_pixels(self.path("out.bmp"))[:2], (640, 480))

    def test_no_file_is_replaced_by_a_damaged_picture(self):
        before = digest(self.cut)
        self.path("out.bmp").write_bytes(b"precious")
        for arguments in (["--in-place", self.cut], ["--in-place", "--keep-going", self.cut],
                          ["--force", self.cut, self.path("out.bmp")],
                          ["--force", "--keep-going", self.cut, self.path("out.bmp")]):
            self.check("convert", *arguments, "--negative", code=1)
        self.assertEqual(digest(self.cut), before)
        self.assertEqual(self.path("out.bmp").read_bytes(), b"precious")

    def test_a_huge_claim_is_refused_and_described_at_once(self):
        header = bytearray(self.photo.read_bytes()[:629])
        at = header.index(b"\xff\xc0") + 5
        header[at:at + 4] = struct.pack(">HH", 26000, 27000)
        bomb = self.path("bomb.jpg")
        bomb.write_bytes(header)
        begun = time.monotonic()
        text = self.check("info", bomb)
        self.assertIn("27000 x 26000", text)
        self.check("convert", bomb, self.path("out.bmp"), code=1)
        self.assertLess(time.monotonic() - begun, 2)

    def test_files_that_cannot_be_opened_are_told_in_the_systems_words(self):
        for name, words in (("none.jpg", "No such file or directory"),
                            ("", "Is a directory")):
            for command in ["info", self.path(name)], ["convert", self.path(name), self.path("o.bmp")]:
                self.assertIn(words, self.check(*command, code=1))
        (self.path("empty.jpg")).touch()
        self.assertIn("empty", self.check("info", self.path("empty.jpg"), code=1))


class Metadata(Pictures):
    def setUp(self):
        super().setUp()
        self.mark(self.photo, "Orientation#=6", "Make=Maker", "Model=Model 7", "ISO=200",
                  "ExposureTime=1/250", "FNumber=2.8", "DateTimeOriginal=2023:05:01 12:30:00",
                  "GPSLatitude=35.6895", "GPSLatitudeRef=N", "GPSLongitude=139.6917",
                  "GPSLongitudeRef=E", "XMP:Title=A test", "XResolution=300", "YResolution=300",
                  "ResolutionUnit=inches")

    def mark(self, path, *tags):
        subprocess.run(["exiftool", "-q", "-overwrite_original", *[f"-{tag}" for tag in tags], path],
                       check=True)

    def test_info_shows_it(self):
        record = json.loads(self.check("info", "--json", self.photo))[0]
        self.assertEqual((record["width"], record["height"]), (240, 320))  # as it is seen
        self.assertEqual(record["orientation"], 6)
        self.assertIn("Model 7", record["camera"])
        self.assertEqual(record["date"], "2023-05-01 12:30:00")
        self.assertIn("1/250", record["exposure"])
        self.assertAlmostEqual(record["place"]["latitude"], 35.6895, places=3)
        self.assertEqual(record["dpi"], [300, 300])
        self.assertIn("Model 7", self.check("info", self.photo))

    def test_pictures_are_turned_upright_and_tell_so(self):
        self.check("convert", self.photo, self.path("up.bmp"))
        self.check("convert", self.photo, self.path("as_stored.bmp"), "--no-turn")
        up, stored = bmp_pixels(self.path("up.bmp")), bmp_pixels(self.path("as_stored.bmp"))
        self.assertEqual(up[:2], (240, 320))
        self.assertEqual(stored[:2], (320, 240))
        for x, y in (0, 0), (239, 0), (100, 319):  # a quarter clockwise
            self.assertEqual(up[2][y][3 * x:][:3], stored[2][239 - x][3 * y:][:3])

    def test_metadata_goes_along(self):
        for kind in "jpg", "png", "tif", "webp":
            out = self.path(f"out.{kind}")
            self.check("convert", self.photo, out, "--fit", "100x100")
            found = exif_of(out, "Model", "Orientation", "ISO", "GPSLatitude", "Title",
                            "ThumbnailImage")
            self.assertEqual(found.get("Model"), "Model 7", (kind, found))
            self.assertIn(found.get("Orientation", 1), (1,), kind)
            self.assertNotIn("ThumbnailImage", found)

    def test_strip_leaves_it_out(self):
        out = self.path("out.jpg")
        self.check("convert", self.photo, out, "--strip")
        self.assertEqual(set(exif_of(out, "Model", "GPSLatitude", "Title", "ISO")), {"SourceFile"})

    def test_in_place_keeps_it_too(self):
        self.check("convert", "--in-place", self.photo, "--brightness", "5")
        found = exif_of(self.photo, "Model", "Orientation", "ImageWidth")
        self.assertEqual((found["Model"], found["ImageWidth"]), ("Model 7", 240))
        self.assertEqual(found.get("Orientation", 1), 1)

    def test_a_comment_is_written(self):
        out = self.path("out.jpg")
        self.check("convert", self.photo, out, "--comment", "hello there")
        self.assertEqual(exif_of(out, "Comment")["Comment"], "hello there")
        self.assertEqual(exif_of(out, "Model")["Model"], "Model 7")
        again = self.path("again.jpg")
        self.check("convert", out, again, "--comment", "写真 Łódź", "--strip")
        self.assertEqual(exif_of(again, "Comment")["Comment"], "写真 Łódź")  # and only this one
        self.assertNotIn("Model", exif_of(again, "Model"))
        self.assertIn("comment: 写真 Łódź", self.check("info", "--long", again))

    def test_a_comment_without_a_place_is_told(self):
        out = self.path("out.png")
        told = self.check("convert", self.photo, out, "--comment", "hello there")
        self.assertIn("the comment left out: only JPEG files get one", told)


class Quality(Pictures):
    def test_a_jpeg_from_a_jpeg_loses_hardly_anything(self):
        self.check("convert", self.photo, self.path("a.jpg"), "--quality", "70")
        self.check("convert", self.path("a.jpg"), self.path("b.jpg"))
        a, b = pixels_of(self.path("a.jpg")), pixels_of(self.path("b.jpg"))
        self.assertEqual(a[:2], b[:2])
        error = sum(abs(x - y) for x, y in zip(a[2], b[2])) / len(a[2])
        self.assertLess(error, 0.6)

    def test_quality_decides_the_size(self):
        sizes = []
        for quality in 20, 50, 80, 95:
            out = self.path(f"{quality}.jpg")
            self.check("convert", self.photo, out, "--sharpen", "emboss", "--quality", quality)
            sizes.append(out.stat().st_size)
        self.assertEqual(sizes, sorted(sizes))
        self.check("convert", self.photo, self.path("x.jpg"), "--quality", "80", "--level", "2", code=2)

    def test_a_file_is_made_to_a_size(self):
        for limit in 4000, 8000:
            out = self.path(f"{limit}.jpg")
            self.check("convert", self.photo, out, "--sharpen", "emboss-corner", "--size", limit)
            self.assertLessEqual(out.stat().st_size, limit)


class Transparency(Pictures):
    def setUp(self):
        super().setUp()
        self.logo = self.path("logo.png")  # left opaque red, right invisible green
        row = bytes([255, 0, 0, 255] * 20 + [0, 255, 0, 0] * 20)
        png(self.logo, 40, 30, [row] * 30, 6)

    def test_it_stays_where_the_format_has_it(self):
        self.check("convert", self.logo, self.path("small.png"), "--resize", "50%", "--rotate", "180",
                   "--negative")
        record = json.loads(self.check("info", "--json", self.path("small.png")))[0]
        self.assertEqual((record["width"], record["height"], record.get("alpha")), (20, 15, True))
        self.check("convert", self.path("small.png"), self.path("s.bmp"), "--background", "#102030")
        rows = bmp_pixels(self.path("s.bmp"))[2]
        self.assertEqual(tuple(rows[7][:3]), (0x30, 0x20, 0x10))  # turned: transparent at the left
        self.assertEqual(tuple(rows[7][-3:]), (255, 255, 0))     # red inverted

    def test_what_is_not_seen_does_not_shine_through(self):
        self.check("convert", self.logo, self.path("tiny.png"), "--resize", "1x1")
        self.check("convert", self.path("tiny.png"), self.path("t.bmp"), "--background", "white")
        blue, green, red = bmp_pixels(self.path("t.bmp"))[2][0][:3]
        self.assertGreater(red, 250)
        self.assertLess(abs(green - blue), 6)  # no green of the invisible half
        self.assertLess(abs(green - 128), 6)

    def test_it_is_laid_over_white_or_a_colour(self):
        text = self.check("convert", self.logo, self.path("white.bmp"))
        self.assertIn("alpha", text)
        self.assertEqual(tuple(bmp_pixels(self.path("white.bmp"))[2][0][-3:]), (255, 255, 255))
        self.check("convert", self.logo, self.path("c.bmp"), "--background", "teal")
        self.assertEqual(tuple(bmp_pixels(self.path("c.bmp"))[2][0][-3:]), (128, 128, 0))


class Turning(Pictures):
    def test_there_and_back_is_the_same(self):
        before = pixels_of(self.photo)
        for there, back in ("90", "270"), ("180", "180"), ("flip", "flip"), ("mirror", "mirror"):
            self.check("turn", there, self.photo)
            self.assertFalse(pixels_of(self.photo) == before)
            self.check("turn", back, self.photo)
            self.assertTrue(pixels_of(self.photo) == before, there)
        self.assertEqual(list(self.folder.iterdir()), [self.photo])

    def test_as_libjpeg_turbo_turns(self):
        out, want = self.path("out.jpg"), self.path("want.jpg")
        for way, option in (("90", "-rotate 90"), ("270", "-rotate 270"), ("180", "-rotate 180"),
                            ("flip", "-flip vertical"), ("mirror", "-flip horizontal")):
            self.check("turn", way, self.photo, out, "--force")
            subprocess.run(["jpegtran", *option.split(), "-outfile", want, self.photo], check=True)
            self.assertTrue(pixels_of(out) == pixels_of(want), way)

    def test_edges_are_kept_or_cut_and_told(self):
        odd = self.path("odd.jpg")
        self.check("convert", self.photo, odd, "--crop", "0,0,101,67", "--subsample", "4")
        self.assertIn("stay", self.check("turn", "90", odd, self.path("kept.jpg")))
        self.assertIn("cut", self.check("turn", "90", odd, self.path("cut.jpg"), "--trim"))
        before = digest(odd)
        self.check("turn", "90", odd, "--perfect", code=1)
        self.assertEqual(digest(odd), before)
        self.assertEqual(pixels_of(self.path("kept.jpg"))[:2], (67, 101))
        self.assertEqual(pixels_of(self.path("cut.jpg"))[:2], (64, 101))

    def test_several_files_and_what_is_no_jpeg(self):
        copy = self.path("copy.jpg")
        shutil.copy(self.photo, copy)
        before = digest(self.photo)
        self.check("turn", "90", self.photo, copy, code=1)  # which would be the output
        self.assertEqual((digest(self.photo), digest(copy)), (before, before))
        text = self.check("turn", "90", "--in-place", self.photo, copy)
        self.assertIn("2 turned, 0 failed", text)
        self.assertEqual(pixels_of(copy)[:2], (240, 320))
        self.check("convert", self.photo, self.path("x.bmp"))
        before = digest(self.path("x.bmp"))
        self.check("turn", "90", self.path("x.bmp"), code=1)
        self.assertEqual(digest(self.path("x.bmp")), before)
        self.check("turn", "45", self.photo, code=2)
        self.assertIn("did you mean mirror?", self.check("turn", "miror", self.photo, code=2))


class Speaking(Pictures):
    def test_versions_of_the_format_libraries(self):
        text = self.check("--version")
        for word in "kirvo 1.0.4.2", "JPEG", "PNG", "TIFF", "WebP", "GIF", "icon":
            self.assertIn(word, text)
        self.assertRegex(text, r"libjpeg-turbo \d|no JPEG library")

    def test_an_unknown_level_of_the_processor_is_told(self):
        result = run("info", self.photo, env={**os.environ, "KIRVO_CPU": "avx3"})
        self.assertEqual(result.returncode, 0)
        self.assertIn("KIRVO_CPU=avx3 is none of scalar, sse2, avx2 and avx512", result.stderr)
        self.assertEqual(run("info", self.photo, env={**os.environ, "KIRVO_CPU": "sse2"}).stderr, "")

    def test_notes_are_quiet_on_request(self):
        row = bytes([1, 2, 3, 0] * 8)
        png(self.path("x.png"), 8, 8, [row] * 8, 6)
        self.assertIn("alpha", self.check("convert", self.path("x.png"), self.path("x.bmp")))
        self.assertEqual(self.check("-q", "convert", self.path("x.png"), self.path("y.bmp")), "")

    def test_decoder_kirvo_keeps_to_its_own(self):
        subprocess.run(["jpegtran", "-progressive", "-outfile", self.path("p.jpg"), self.photo],
                       check=True)
        self.check("convert", self.path("p.jpg"), self.path("whole.bmp"))
        told = self.check("convert", self.path("p.jpg"), self.path("first.bmp"), "--decoder", "kirvo")
        self.assertIn("decoded by Kirvo alone, which is not made for it: progressive", told)
        self.check("convert", self.photo, self.path("base.bmp"))
        whole, first, base = (bmp_pixels(self.path(name))[2]
                              for name in ("whole.bmp", "first.bmp", "base.bmp"))
        error = sum(abs(a - b) for x, y in zip(whole, base) for a, b in zip(x, y))
        self.assertLess(error / (320 * 240 * 3), 1)
        self.assertFalse(first == whole)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
