"""KirvoFiles for tests in Python: a picture that is open becomes an image of Pillow's."""
import ctypes
import os
import pathlib

from PIL import Image

STATUS = {"OK": 0, "ENDS_EARLY": -113, "DAMAGED": -114, "UNSUPPORTED": -115, "NO_CODEC": -116}
NO_TURN, KEEP_ALPHA, KEEP_GOING, NO_LIMITS, KIRVO_ONLY, BACKGROUND = 1, 2, 4, 8, 16, 32
TEXTS = ["reason", "note", "variant", "decoder", "camera", "lens", "date", "exposure", "place", "profile",
         "software", "artist", "copyright", "title"]
MODES = {24: "BGR", 8: "P", 4: "P;4", 1: "P;1"}


def structure(*names):
    """32-bit numbers, and fractions where a name begins with a dot."""
    return [(name.lstrip("."), ctypes.c_double if name.startswith(".") else ctypes.c_uint32)
            for name in " ".join(names).split()]


class Description(ctypes.Structure):
    _fields_ = structure("size format width height fileBits channels colours dibBits flags orientation",
                         "frames frame quality sampleAcross sampleDown fileBytes wholeRows notes",
                         ".dpiAcross .dpiDown .latitude .longitude")


class OpenOptions(ctypes.Structure):
    _fields_ = structure("size flags background frame")


class SaveOptions(ctypes.Structure):
    _fields_ = structure("size format flags quality level subsample sizeLimit bits compression reserved",
                         ".dpiAcross .dpiDown")


class Library:
    def __init__(self, folder):
        folder = pathlib.Path(folder)
        self.kirvo = ctypes.CDLL(str(folder / "libkirvo.so"), mode=ctypes.RTLD_GLOBAL)
        self.files = ctypes.CDLL(str(folder / "libkirvofiles.so"))
        self.kirvo.GlobalLock.restype = ctypes.c_void_p
        self.kirvo.GlobalSize.restype = ctypes.c_size_t
        handle, text, number = ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32
        for name in ("GlobalLock", "GlobalUnlock", "GlobalFree", "GlobalSize"):
            getattr(self.kirvo, name).argtypes = [handle]
        self.files.KirvoFilesClose.argtypes = [handle]
        self.files.KirvoFilesDescribe.argtypes = [handle, handle]
        self.files.KirvoFilesText.argtypes = [handle, number, number, text, number]
        self.files.KirvoFilesData.argtypes = [handle, number, text, number]
        self.files.KirvoFilesSave.argtypes = [text, handle, handle, handle, handle]
        self.files.KirvoFilesTurn.argtypes = [text, text, number, number, number, handle]

    def open(self, path, flags=0, frame=0, background=0):
        return Picture(self, path, OpenOptions(16, flags, background, frame), decode=True)

    def info(self, path, flags=0):
        return Picture(self, path, OpenOptions(16, flags, 0, 0), decode=False)


class Picture:
    def __init__(self, library, path, options, decode):
        self.library, self.file, self.dib = library, ctypes.c_void_p(), ctypes.c_void_p()
        path = os.fsencode(path)
        if decode:
            self.status = library.files.KirvoFilesOpen(path, ctypes.byref(options), ctypes.byref(self.dib),
                                                       ctypes.byref(self.file))
        else:
            self.status = library.files.KirvoFilesInfo(path, ctypes.byref(options), ctypes.byref(self.file))
        self.about = Description(ctypes.sizeof(Description))
        library.files.KirvoFilesDescribe(self.file, ctypes.byref(self.about))
        self.texts = {name: self._text(kind, 0) for kind, name in enumerate(TEXTS) if name != "note"}
        self.notes = [self._text(1, index) for index in range(self.about.notes)]

    def __del__(self):
        self.library.kirvo.GlobalFree(self.dib)
        self.library.files.KirvoFilesClose(self.file)

    def _text(self, kind, index):
        room = ctypes.create_string_buffer(4096)
        self.library.files.KirvoFilesText(self.file, kind, index, room, 4096)
        return room.value.decode()

    def data(self, kind):
        count = self.library.files.KirvoFilesData(self.file, kind, None, 0)
        room = ctypes.create_string_buffer(count)
        self.library.files.KirvoFilesData(self.file, kind, room, count)
        return room.raw[:count]

    @property
    def ok(self):
        return self.status == 0

    def image(self):
        """RGB, or RGBA where alpha was kept."""
        kirvo = self.library.kirvo
        block = ctypes.string_at(kirvo.GlobalLock(self.dib), kirvo.GlobalSize(self.dib))
        kirvo.GlobalUnlock(self.dib)
        number = lambda at: int.from_bytes(block[at:at + 4], "little", signed=True)
        width, height, bits, colours = number(4), number(8), block[14], number(32)
        start = 40 + (12 if bits in (16, 32) else 4 * colours)
        stride = (width * bits + 31) // 32 * 4
        assert number(0) == 40 and height > 0, "no clean header"
        assert len(block) >= start + stride * height, "the block is too small"
        mode = MODES.get(bits) or ("BGRA" if bits == 32 else
                                   "BGR;16" if number(40) == 0xF800 else "BGR;15")
        kind = "P" if bits <= 8 else "RGBA" if bits == 32 else "RGB"
        image = Image.frombytes(kind, (width, height), block[start:start + stride * height], "raw", mode,
                                stride, -1)
        if bits <= 8:
            palette = block[40:40 + 4 * colours]
            image.putpalette(bytes(palette[4 * i + k] for i in range(colours) for k in (2, 1, 0)))
            image = image.convert("RGB")
        if bits == 32 and not self.about.flags & 1:
            image = image.convert("RGB")
        return image

    def save(self, path, **options):
        """The status and the picture's new file."""
        given = SaveOptions(ctypes.sizeof(SaveOptions), **options)
        return self.library.files.KirvoFilesSave(os.fsencode(path), self.dib, self.file, ctypes.byref(given),
                                                 None)
