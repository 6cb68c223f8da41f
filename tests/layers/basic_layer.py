"""The class of Visual Basic, run as basic.py runs it: basic_layer.py

Every effect makes what the package for Python makes of the same picture.
"""
import ctypes
import os
import pathlib
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(SOURCE / "bindings/python/src")]
import effects
import kirvo
from basic import KINDS, Array, Error, Program, Result, Thing, basic_lines
from effects import COLOUR, LOW, OTHERS, SAME, SMALL
from kirvo import flat, flat_files

LIBRARY, FILES = (ctypes.CDLL(os.environ[name], mode=ctypes.RTLD_GLOBAL)
                  for name in ("KIRVO_LIBRARY", "KIRVO_FILES_LIBRARY"))
CHOSEN = {"VBA7": True, "Win64": True}
MODULE = list(basic_lines(SOURCE / "bindings/vb/Kirvo.bas", CHOSEN))
CLASS = [line for line in basic_lines(SOURCE / "bindings/vb/KirvoImage.cls", CHOSEN)
         if line.split()[0] not in ("VERSION", "BEGIN", "END", "MultiUse")]


def array(kind, values):
    made = Array(KINDS[kind], len(values) - 1)
    made.items[:] = values
    return made


def content(handle):
    """The bytes of a packed DIB."""
    data = ctypes.string_at(flat.GlobalLock(handle), flat.GlobalSize(handle))
    flat.GlobalUnlock(handle)
    return data


class Picture:
    """A StdPicture."""

    def __init__(self, handle):
        self.Handle = handle


class System:
    """What the class calls of Windows, and what came of it."""

    def __init__(self):
        self.bitmaps, self.receivers, self.contexts = {}, {}, 0
        self.calls = {
            "RtlMoveMemory": ctypes.memmove, "MultiByteToWideChar": self.widened, "GetDC": self.context,
            "ReleaseDC": self.release, "CreateDIBitmap": self.bitmap, "GetDIBits": self.bits,
            "OleCreatePictureIndirect": self.picture, "CreateWindowExA": self.window,
            "SetWindowLongPtrA": self.receive, "DestroyWindow": self.receivers.pop}

    @staticmethod
    def widened(page, flags, text, count, wide, room):
        data = ctypes.string_at(text, count).decode("utf-8").encode("utf-16-le")
        assert (page, flags) == (65001, 0) and len(data) <= 2 * room
        ctypes.memmove(wide, data, len(data))
        return len(data) // 2

    def context(self, window):
        assert window == 0
        self.contexts += 1
        return 11

    def release(self, window, context):
        assert (window, context) == (0, 11)
        self.contexts -= 1
        return 1

    def bitmap(self, context, header, flags, bits, info, usage):
        assert (context, flags, bits - header, info, usage) == (11, 4, 40, header, 0)
        width, height, _, _, size = (ctypes.c_int32 * 5).from_address(header + 4)
        self.bitmaps[21] = (height, ctypes.string_at(bits, size or (3 * width + 3) // 4 * 4 * height))
        return 21

    def bits(self, context, bitmap, first, lines, bits, info, usage):
        height, data = self.bitmaps[bitmap]
        assert (context, first, bits - info, usage) == (11, 0, 40, 0)
        ctypes.memmove(bits, data, len(data))
        return min(lines, height)

    @staticmethod
    def picture(description, identifier, owns, made):
        size, kind = (ctypes.c_int32 * 2).from_address(description)
        bitmap, colours = (ctypes.c_ssize_t * 2).from_address(description + 8)
        assert (size, kind, colours, owns) == (24, 1, 0, 1)
        assert ctypes.string_at(identifier, 16).hex() == "8009f87b32bf1a108bbb00aa00300cab"
        made.value = Picture(bitmap)
        return 0

    def window(self, *given):
        assert given[1] == b"STATIC" and given[8] == -3  # for messages alone
        self.receivers[31] = None
        return 31

    def receive(self, window, index, function):
        assert index == -4  # what receives messages
        self.receivers[window] = function
        return 0


class Listener:
    def __init__(self):
        self.seen = []

    def KirvoProgress(self, percent):
        self.seen.append(percent)


class Layer(unittest.TestCase):
    def setUp(self):
        self.system = System()
        self.program = Program({"Kirvo.dll": LIBRARY, "KirvoFiles.dll": FILES, "kernel32": LIBRARY,
                                "gdi32": LIBRARY, "user32": None}, self.system.calls)
        self.program.load(MODULE)
        self.program.load(CLASS, "KirvoImage")

    def basic(self, image):
        """The picture of Python as one of Basic."""
        data = content(image.handle)
        handle = flat.GlobalAlloc(flat.GHND, len(data))
        ctypes.memmove(flat.GlobalLock(handle), data, len(data))
        flat.GlobalUnlock(handle)
        made = self.program.new("KirvoImage")
        made.Adopt(handle)
        return made

    def given(self, values):
        """Arguments as Basic takes them."""
        for value in values:
            if value in (SMALL, SAME):
                yield self.basic(effects.other(value))
            elif isinstance(value, bytes):
                yield array("byte", value)
            else:
                yield -1 if value is True else effects.packed(value)

    def assert_same(self, image, expected):
        self.assertEqual((image.Width, image.Height, image.Bits), (expected.width, expected.height, expected.bits))
        self.assertEqual(content(image.Handle), content(expected.handle))

    def assert_fails(self, status, text, call):
        with self.assertRaises(Error) as caught:
            call()
        self.assertEqual(caught.exception.number, -2147221504 + 512 - status)
        self.assertRegex(str(caught.exception), text)

    def test_every_effect_is_that_of_the_other_layers(self):
        for call in effects.calls():
            with self.subTest(str(call)):
                image = self.basic(call.first())
                answer = getattr(image, call.capitals)(*self.given(call.given), *call.area)
                if call.method.way == "change":
                    self.assert_same(image, call.made())
                else:
                    self.assert_same(answer, call.made())
                    self.assert_same(image, call.first())

    def test_what_is_written_by_hand_is_that_of_the_other_layers(self):
        first = effects.picture()
        image = self.basic(first)
        weights = [1, -2, 3, -4, 15, -6, 7, -8, 9]
        for divisor in (0, 5):
            self.assert_same(image.Filter3x3(array("long", weights), divisor, 1, 2, -1, 4),
                             first.filter_3x3(weights, divisor=divisor, area=(1, 2, -1, 4)))
        flat_weights = [1, 0, -1, 2, 0, -2, 1, 0, -1]
        self.assert_same(image.Filter3x3(array("long", flat_weights)), first.filter_3x3(flat_weights))
        for area in ((), (1, 2, 4, -1)):
            self.assert_same(image.KeepColours(array("integer", [0x102, *LOW, *OTHERS, *LOW]), *area),
                             first.keep_colours(0x102, LOW, OTHERS, LOW, **({"area": area} if area else {})))
        self.assertEqual(image.Range(0x105, 0x1F0, 2), 0x2F005)
        self.assertEqual(image.Range(1, 2), 0x10201)
        channels = [Thing(), Thing(), Thing()]
        image.Separate(*channels)
        for channel, expected in zip(channels, first.separate()):
            self.assert_same(channel.value, expected)
        counts = [array("long", [7] * 256) for _ in range(3)]
        image.Histogram(*counts)
        self.assertEqual([tuple(one.items) for one in counts], list(first.histogram()))
        self.assertEqual(image.CountColours(), first.count_colours())
        self.assertEqual(image.GetPixel(3, 4), first.get_pixel(3, 4))
        self.assert_fails(flat.KIRVO_BAD_PARAMETER, "^GetPixel: KIRVO_BAD_PARAMETER: ", lambda: image.GetPixel(7, 0))

    def test_settings_of_the_process_are_made(self):
        try:
            image = self.basic(effects.picture())
            image.MixMasks(array("long", range(1, 10)), array("long", range(25)))
            for size, point in (("3x3", (3, 3)), ("5x5", (3, 4))):
                expected = effects.picture()
                one = self.basic(expected)
                getattr(expected, f"mix_{size}")(*point)
                getattr(one, f"Mix{size}")(*point)
                self.assert_same(one, expected)
                self.assertNotEqual(content(one.Handle), content(effects.picture().handle))
            image.KeyColour(COLOUR)
            image.Compose(self.basic(kirvo.Image.solid(7, 9, COLOUR)), 4)
            self.assert_same(image, effects.picture())
        finally:
            kirvo.Image.mix_masks([1] * 9, [1] * 25)
            kirvo.Image.key_colour(0)

    def test_new_pictures_are_black_and_have_masks(self):
        for bits, masks in ((8, None), (16, (0xF800, 0x7E0, 0x1F)), (24, None), (32, (0xFF0000, 0xFF00, 0xFF))):
            image = self.program.new("KirvoImage")
            image.Create(5, 3, bits)
            self.assert_same(image, kirvo.Image(5, 3, bits))
            if masks:
                data = content(image.Handle)[40:52]
                self.assertEqual(tuple(memoryview(data).cast("I")), masks)
        image.Create(2, 1)
        self.assertEqual((image.Width, image.Height, image.Bits), (2, 1, 24))
        for size in ((0, 5), (5, 0), (-1, 5)):
            self.assert_fails(flat.KIRVO_BAD_PARAMETER, "^Create: ", lambda: image.Create(*size))
            self.assertEqual(image.Handle, 0)

    def test_every_depth_becomes_every_other(self):
        for bits in (8, 16, 24, 32):
            first = effects.picture().exact_256(mode=1) if bits == 8 else effects.picture().convert(bits)
            for depth in (16, 24, 32):
                image = self.basic(first)
                made = image.Convert(depth)
                self.assert_same(made, first.convert(depth))
                self.assertNotEqual(made.Handle, image.Handle)
            self.assert_same(self.basic(first).Copy(), first)
        four = effects.picture().reduce_16()
        for depth in (16, 24, 32):
            self.assert_same(self.basic(four).Convert(depth), four.convert(depth))
        self.assert_fails(flat.KIRVO_BAD_PARAMETER, "^Convert: ", lambda: self.basic(effects.picture()).Convert(17))

    def test_memory_is_freed_with_the_picture(self):
        image = self.basic(effects.picture())
        made = image.Blur()
        handles = [image.Handle, made.Handle]
        self.assertTrue(all(flat.GlobalSize(handle) for handle in handles))
        del made
        self.assertEqual([flat.GlobalSize(handle) > 0 for handle in handles], [True, False])
        image.Adopt(self.basic(effects.picture(3, 3)).Release())
        self.assertEqual((flat.GlobalSize(handles[0]), image.Width), (0, 3))
        handle = image.Release()
        self.assertEqual((image.Handle, flat.GlobalSize(handle) > 0), (0, True))
        image.Adopt(handle)
        image.Clear()
        self.assertEqual((image.Handle, flat.GlobalSize(handle)), (0, 0))
        for call in (image.Copy, image.Blur, lambda: image.Width):
            self.assert_fails(flat.KIRVO_NULL_HANDLE, "KIRVO_NULL_HANDLE", call)
        eight = self.basic(effects.picture().exact_256())
        before = eight.Handle
        eight.Compose(self.basic(effects.picture(2, 2)))
        self.assertEqual((eight.Bits, flat.GlobalSize(before)), (24, 0))

    def test_nothing_stays_locked(self):
        image = self.basic(effects.picture())
        for call in (lambda: image.Width, image.Copy, image.Blur, lambda: image.Convert(16), lambda: image.Picture):
            call()
            # A block that is not locked is let go at once.
            self.assertEqual(flat.GlobalUnlock(image.Handle), 0)

    def test_errors_say_what_and_why(self):
        image = self.basic(effects.picture())
        for call, name in ((lambda: image.Brightness(101), "Brightness"), (lambda: image.Crop(6, 0, 5, 1), "Crop"),
                           (lambda: image.SwapChannels(9), "SwapChannels"), (lambda: image.Solid(0, 1, 2), "Solid")):
            self.assert_fails(flat.KIRVO_BAD_PARAMETER, f"^{name}: KIRVO_BAD_PARAMETER: A rectangle", call)

    def test_files_of_any_name_are_opened_and_saved(self):
        with tempfile.TemporaryDirectory() as folder:
            path = str(pathlib.Path(folder) / "写真 é.png")
            self.basic(effects.picture()).SaveFile(path)
            image = self.program.new("KirvoImage")
            image.OpenFile(path)
            self.assert_same(image, kirvo.Image.open(path))
            sizes = []
            for quality in (10, 95):
                self.basic(effects.picture(99, 80)).SaveFile(str(pathlib.Path(folder) / "made.jpg"), quality)
                sizes.append((pathlib.Path(folder) / "made.jpg").stat().st_size)
            self.assertLess(2 * sizes[0], sizes[1])
            missing = str(pathlib.Path(folder) / "文書.jpg")
            for call in (lambda: image.OpenFile(missing),
                         lambda: self.basic(effects.picture()).SaveFile(f"{missing}/x.png")):
                with self.assertRaises(Error) as caught:
                    call()
                self.assertRegex(str(caught.exception), r"文書\.jpg.*: .*[a-z]$")
                self.assertLess(caught.exception.number, -2147221504 + 512 + 1000)
                self.assertGreater(caught.exception.number, -2147221504 + 512)
            self.assertEqual(image.Handle, 0)  # which is no picture to be saved
            self.assert_fails(flat_files.KIRVO_FILES_BAD_PARAMETER, "^a value out of its range$", lambda: image.SaveFile(path))

    def test_an_error_of_a_file_that_has_no_words_has_those_of_its_status(self):
        self.system.calls["KirvoFilesText"] = lambda *given: 1
        with self.assertRaises(Error) as caught:
            self.program.new("KirvoImage").OpenFile("missing.jpg")
        self.assertEqual(str(caught.exception), "there is no such file")

    def test_flags_of_opening_count(self):
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / "cut.bmp"
            path.write_bytes(effects.picture().to_bytes("bmp")[:-60])
            image = self.program.new("KirvoImage")
            self.assertRaises(Error, image.OpenFile, str(path))
            image.OpenFile(str(path), flat_files.KIRVO_FILES_KEEP_GOING)
            self.assertEqual(image.Height, 9)

    def test_a_listener_hears_of_every_operation_and_goes_along(self):
        def receive(window, message, command, percent):
            name = list(self.program.procedures)[self.system.receivers[window]]
            return self.program.call_named(name, list(map(Result, (window, message, command, percent))))

        host = flat.KirvoWindowHost(SendMessageA=flat.KirvoWindowHost.SendMessageAFunction(receive))
        flat.KirvoSetWindowHost(ctypes.byref(host))
        try:
            image, listener = self.basic(effects.picture(600, 700)), Listener()
            image.Listener = listener
            made = image.Blur()
            self.assertEqual((listener.seen[0], listener.seen[-1]), (0, 100))
            for call in (made.Flip, lambda: made.Flip().Negative().Convert(32), lambda: made.Copy().Sharpen(1)):
                listener.seen.clear()
                self.assertIs(call().Listener, listener)
            self.assertEqual(listener.seen[-1], 100)
            self.assertEqual(list(self.system.receivers), [31])
            for _ in range(2):  # where nothing is watched, there is nothing to destroy
                self.program.call_named("kirvowatch", [Result(None)])
                self.assertEqual(self.system.receivers, {})
        finally:
            flat.KirvoSetWindowHost(None)

    def test_pictures_of_forms_come_and_go(self):
        first = effects.picture()
        for bits in (24, 32):
            picture = self.basic(first.convert(bits)).Picture
            taken = self.program.new("KirvoImage")
            taken.TakePicture(picture, 7, 9)
            self.assert_same(taken, first)
        self.assert_fails(flat.KIRVO_BAD_PARAMETER, "^TakePicture: ", lambda: taken.TakePicture(picture, 7, 12))
        self.assertEqual(self.system.contexts, 0)
        self.system.calls["OleCreatePictureIndirect"] = lambda *given: 1
        self.assert_fails(flat.KIRVO_NO_MEMORY, "^Picture: ", lambda: taken.Copy().Picture)


if __name__ == "__main__":
    unittest.main()
