"""The Python package, as installed: python_layer.py FOLDER OF THE EXAMPLES"""
import copy
import gc
import pathlib
import pickle
import resource
import subprocess
import sys
import tempfile
import threading
import time
import unittest

import numpy
import PIL.Image

import kirvo
from kirvo import Image, Range, flat

EXAMPLES = pathlib.Path(sys.argv.pop(1))
TYPED = pathlib.Path(__file__).with_name("typed.py")


def striped(width, height):
    rows = numpy.arange(width * height * 3).reshape(height, width, 3) * 7 % 251
    return rows.astype("uint8")


class Pixels(unittest.TestCase):
    def test_an_array_is_the_picture_itself(self):
        image = Image(3, 2)
        array = numpy.asarray(image)
        self.assertEqual(array.shape, (2, 3, 3))
        array[0, 1] = 10, 20, 30
        array[1, 2, 2] = 40
        self.assertEqual(image.get_pixel(1, 0), kirvo.rgb(10, 20, 30))
        self.assertEqual(image.get_pixel(2, 1), kirvo.rgb(0, 0, 40))

    def test_an_array_outlives_its_picture_and_a_change_of_depth(self):
        array = numpy.asarray(Image.solid(400, 300, kirvo.rgb(1, 2, 3)))
        gc.collect()
        self.assertTrue((array == (1, 2, 3)).all())

    def test_arrays_of_any_layout_make_pictures(self):
        array = striped(7, 5)
        for given in (array, array[::-1], array[:, ::-1], numpy.asfortranarray(array)):
            numpy.testing.assert_array_equal(numpy.asarray(Image.from_array(given)), given)
        grey = Image.from_array(array[:, :, 0])
        numpy.testing.assert_array_equal(numpy.asarray(grey)[:, :, 1], array[:, :, 0])
        with self.assertRaises(ValueError):
            Image.from_array(array.astype("uint16"))

    def test_every_depth_has_an_array(self):
        image = Image.from_array(striped(9, 4))
        numpy.testing.assert_array_equal(numpy.asarray(image.convert(32)), striped(9, 4))
        numpy.testing.assert_array_equal(numpy.asarray(image.convert(16)) & 0xF8, striped(9, 4) & 0xF8)
        eight = image.exact_256()
        self.assertEqual(eight.bits, 8)
        numpy.testing.assert_array_equal(numpy.asarray(eight), striped(9, 4))

    def test_pillow_takes_and_gives(self):
        picture = PIL.Image.fromarray(striped(6, 3))
        image = Image.from_pillow(picture)
        self.assertEqual(image.size, (6, 3))
        self.assertEqual(image.to_pillow().tobytes(), picture.tobytes())
        clear = PIL.Image.new("RGBA", (2, 1), (200, 0, 0, 0))
        self.assertEqual(Image.from_pillow(clear).get_pixel(0, 0), kirvo.rgb(255, 255, 255))

    def test_a_pickled_picture_is_another(self):
        eight = Image.from_array(striped(5, 3)).exact_256()
        self.assertEqual(pickle.loads(pickle.dumps(eight)).to_rgb(), striped(5, 3).tobytes())
        image = eight.convert(24)
        other = pickle.loads(pickle.dumps(image))
        other.set_pixel(0, 0, kirvo.rgb(1, 1, 1))
        self.assertNotEqual(other.handle, image.handle)
        self.assertEqual(image.to_rgb(), striped(5, 3).tobytes())

    def test_pictures_of_odd_and_least_sizes_come_back(self):
        for width, height in ((1, 1), (1, 7), (7, 1), (3, 2), (5, 5)):
            array = striped(width, height)
            for bits in (24, 32):
                image = Image.from_array(array).convert(bits)
                numpy.testing.assert_array_equal(numpy.asarray(image), array)
                self.assertEqual(numpy.asarray(PIL.Image.fromarray(array)).tolist(),
                                 numpy.asarray(image.to_pillow()).tolist())

    def test_every_mode_of_pillow_is_taken(self):
        colours = PIL.Image.fromarray(striped(9, 4))
        for mode in ("1", "L", "P", "RGB", "RGBX", "CMYK", "YCbCr", "HSV", "LA", "RGBA", "PA", "I", "F"):
            picture = (colours.convert("L").convert("LA").convert("PA") if mode == "PA" else colours.convert(mode))
            with self.subTest(mode):
                self.assertEqual(Image.from_pillow(picture).to_pillow().tobytes(),
                                 picture.convert("RGB").tobytes())

    def test_copies_are_others(self):
        image = Image.solid(2, 2, 5)
        other = copy.deepcopy(image)
        other.set_pixel(0, 0, 9)
        self.assertEqual((image.get_pixel(0, 0), other.get_pixel(0, 0)), (5, 9))


class Effects(unittest.TestCase):
    def test_effects_leave_their_picture_alone(self):
        image = Image.solid(4, 4, kirvo.rgb(100, 100, 100))
        self.assertEqual(image.brightness(20).get_pixel(0, 0), kirvo.rgb(151, 151, 151))
        self.assertEqual(image.negative(area=(0, 0, 2, -1)).get_pixel(1, 3), kirvo.rgb(155, 155, 155))
        self.assertEqual(image.get_pixel(1, 3), kirvo.rgb(100, 100, 100))

    def test_other_depths_become_24_bits_first(self):
        image = Image.from_array(striped(8, 8)).exact_256()
        self.assertEqual(image.sharpen(strength=2).bits, 24)
        self.assertEqual(image.crop(1, 1, 3, 2).bits, 8)
        image.compose(Image.solid(8, 8, 0), mode=0)
        self.assertEqual(image.bits, 24)

    def test_kernels_read_from_the_top(self):
        image = Image(3, 3)
        image.set_pixel(1, 0, kirvo.rgb(50, 60, 70))
        below = image.filter_3x3([0, 1, 0, 0, 0, 0, 0, 0, 0])
        self.assertEqual(below.get_pixel(1, 1), kirvo.rgb(50, 60, 70))
        self.assertEqual(below.get_pixel(1, 0), 0)

    def test_what_is_counted_and_kept(self):
        image = Image.solid(3, 3, kirvo.rgb(50, 100, 150))
        low = Range(0, 120, 1)
        self.assertEqual(image.keep_channels(low, low, low).get_pixel(0, 0), kirvo.rgb(50, 100, 0))
        self.assertEqual(image.keep_colours(0x102, low, low, low).get_pixel(0, 0), 0)
        self.assertEqual(image.separate()[1].get_pixel(0, 0), kirvo.rgb(0, 100, 0))
        self.assertEqual((image.histogram().blue[150], image.count_colours()), (9, 1))
        self.assertEqual(image.map_channels(range(255, -1, -1)).get_pixel(0, 0), kirvo.rgb(205, 155, 105))

    def test_errors_say_what_and_why(self):
        with self.assertRaises(kirvo.Error) as caught:
            Image(2, 2).brightness(101)
        self.assertEqual(caught.exception.status, flat.KIRVO_BAD_PARAMETER)
        self.assertRegex(str(caught.exception), "brightness: .*out of its range")
        again = pickle.loads(pickle.dumps(caught.exception))
        self.assertEqual((str(again), again.status), (str(caught.exception), caught.exception.status))
        with self.assertRaises(kirvo.Error):
            Image(0, 2)

    def test_numbers_that_do_not_fit_are_refused(self):
        image = Image.solid(4, 4, 7)
        large = 2**32
        for call in (lambda: Image(large + 3, 2), lambda: Image(3, large + 2), lambda: Image(3, 2, large + 24),
                     lambda: image.brightness(large + 5), lambda: image.crop(large, 0, 1, 1),
                     lambda: image.blur(area=(large, 0, 1, 1)), lambda: image.blur(area=(-2**31, 0, -1, -1)),
                     lambda: image.get_pixel(0, large), lambda: image.set_pixel(0, 0, large),
                     lambda: image.keep_channels(Range(0, 300, 1), Range(), Range()),
                     lambda: image.keep_colours(0x101, Range(0, 70000, 1)),
                     lambda: image.map_channels([256] * 256), lambda: image.filter_3x3([large] * 9)):
            with self.subTest(), self.assertRaises(kirvo.Error) as caught:
                call()
            self.assertEqual(caught.exception.status, flat.KIRVO_BAD_PARAMETER)
        self.assertEqual(image.resize(numpy.int64(2), numpy.uint8(3)).size, (2, 3))
        for call in (lambda: image.crop(0, 0, 1.5, 1), lambda: image.brightness("5")):
            self.assertRaises(TypeError, call)
        for call in (lambda: image.map_channels([0] * 255), lambda: Image.mix_masks([1], [1])):
            self.assertRaises(ValueError, call)


class Files(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.photo = pathlib.Path(self.folder.name) / "写真.jpg"
        PIL.Image.fromarray(striped(1000, 700) // 8).save(self.photo, quality=95)

    def test_names_in_any_script(self):
        for path in (self.photo, str(self.photo), str(self.photo).encode()):
            self.assertEqual(Image.open(path).size, (1000, 700))
        image = Image.open(self.photo)
        target = self.photo.with_name("été.png")
        image.save(target)
        self.assertEqual(PIL.Image.open(target).tobytes(), image.to_pillow().tobytes())

    def test_errors_have_the_name_and_the_reason(self):
        wrong = self.photo.with_name("文書.jpg")
        wrong.write_text("no picture")
        with self.assertRaises(kirvo.Error) as caught:
            Image.open(wrong)
        self.assertIn("文書.jpg", str(caught.exception))
        self.assertEqual(caught.exception.filename, str(wrong))
        with self.assertRaises(kirvo.Error) as caught:
            Image.open(self.photo.with_name("missing.jpg"))
        self.assertIn("missing.jpg: ", str(caught.exception))
        with self.assertRaises(kirvo.Error):
            Image(1, 1).save(self.photo.with_name("picture.nothing"))

    def test_a_name_ends_where_it_ends(self):
        for call in (Image.open, Image(1, 1).save):
            with self.assertRaises(ValueError):
                call(f"{self.photo}\0.png")

    def test_bytes_of_files(self):
        image = Image.open(self.photo)
        self.assertEqual(image.to_bytes("png")[:8], b"\x89PNG\r\n\x1a\n")
        self.assertEqual(image._repr_png_()[:4], b"\x89PNG")
        self.assertEqual(Image.from_bytes(image.to_bytes("bmp")).to_rgb(), image.to_rgb())

    def test_progress_reports_and_may_raise(self):
        seen = []
        image = Image.open(self.photo, progress=seen.append)
        self.assertEqual(seen[-1], 100)
        seen.clear()
        with kirvo.progress(seen.append):
            image.blur()
        self.assertEqual((seen[0], seen[-1]), (0, 100))
        self.assertEqual(seen, sorted(set(seen)))

        for kind in ("jpg", "png"):
            seen.clear()
            with kirvo.progress(seen.append):
                image.to_bytes(kind)
            self.assertEqual(seen[-1], 100)

        def preview(percent):
            seen.append(percent)
            image.crop(0, 0, 9, 9).blur() # of which nothing is reported
        seen.clear()
        with kirvo.progress(preview):
            image.sharpen()
        self.assertEqual(seen, sorted(set(seen)))
        self.assertGreater(len(seen), 5)

        def enough(percent):
            if percent >= 30:
                raise KeyError(percent)
        for operation in (image.blur, lambda: image.to_bytes("jpg"), lambda: Image.open(self.photo)):
            with self.subTest(), kirvo.progress(enough), self.assertRaises(KeyError):
                operation()
        self.assertEqual(Image.open(self.photo).size, (1000, 700))

    def test_an_encode_ends_with_what_its_listener_raises(self):
        def stop(percent):
            raise KeyError(percent)

        def seconds(operation):
            began = time.perf_counter()
            operation()
            return time.perf_counter() - began

        noise = numpy.random.default_rng(1).integers(0, 255, (1500, 1500, 3), dtype=numpy.uint8)
        image = Image.from_array(noise)

        def ended():
            with kirvo.progress(stop), self.assertRaises(KeyError):
                image.to_bytes("jpg")
        whole, part = (min(seconds(operation) for _ in range(5))
                       for operation in (lambda: image.to_bytes("jpg"), ended))
        self.assertLess(2 * part, whole)

    def test_the_example(self):
        target = self.photo.with_name("page.png")
        command = [sys.executable, EXAMPLES / "photo.py"]
        shown = subprocess.run([*command, self.photo, target], check=True, text=True,
                               stdout=subprocess.PIPE).stdout
        self.assertGreaterEqual(shown.count(" 100%"), 4)
        with PIL.Image.open(target) as page:
            self.assertEqual(page.size, (800, 560))
        self.photo.write_text("no picture")
        failed = subprocess.run([*command, self.photo, target], text=True, stderr=subprocess.PIPE)
        self.assertEqual(failed.returncode, 1)
        self.assertIn("写真.jpg: ", failed.stderr)


class Many(unittest.TestCase):
    def test_threads_take_turns(self):
        image = Image.from_array(striped(300, 200))
        stream, wrong = image.to_bytes("jpg"), []

        def work():
            for _ in range(20):
                with kirvo.progress(lambda percent: None):
                    decoded = Image.from_bytes(stream)
                if decoded.blur().size != (300, 200) or image.to_bytes("jpg") != stream:
                    wrong.append(decoded)
        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(wrong, [])

    def test_pictures_that_nobody_frees_are_collected(self):
        for number in range(300): # together 3.6 GB
            image = Image(2000, 2000)
            image.itself = image # a cycle
            if number % 20 == 19:
                gc.collect()
        self.assertLess(resource.getrusage(resource.RUSAGE_SELF).ru_maxrss, 1_500_000)


class Types(unittest.TestCase):
    def test_programs_pass_mypy_strict(self):
        for program in (EXAMPLES / "photo.py", TYPED):
            done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--cache-dir=/dev/null", program],
                                  text=True, stdout=subprocess.PIPE)
            self.assertEqual(done.returncode, 0, done.stdout)

    def test_every_effect_can_be_called(self):
        subprocess.run([sys.executable, TYPED], check=True)


if __name__ == "__main__":
    unittest.main()
