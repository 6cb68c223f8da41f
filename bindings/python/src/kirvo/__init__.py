"""Kirvo: pictures opened, changed and saved.

    import kirvo

    photo = kirvo.Image.open("photo.jpg")
    photo.resize(800, 600).sharpen().save("small.png")

Effects give a new image and leave their own alone; an image of a depth that an effect does not take
becomes one of 24 bits first. Whatever fails raises kirvo.Error. Threads take turns in the library.
kirvo.flat has the functions of kirvo.h as they are.
"""
from ._files import Error
from ._image import Area, Histogram, Image, Range, rgb
from ._operation import progress
from ._version import __version__

__all__ = ["Area", "Error", "Histogram", "Image", "Range", "progress", "rgb", "__version__"]
