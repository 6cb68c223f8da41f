"""The example that every language has: a photo made ready for a page."""
import pathlib
import shutil

SHEET = pathlib.Path(__file__).resolve().parents[2] / "docs/contact-sheet.jpg"


def check_photo(run, folder, *command):
    """Its progress, its picture and its error. run(*command, code=0) gives what a command prints."""
    photo = folder / "写真.jpg"
    shutil.copy(SHEET, photo)
    shown = run(*command, photo, folder / "page.png")
    assert shown.count(" 100%") >= 4, shown # opened, cropped, resized, sharpened
    page = (folder / "page.png").read_bytes()
    assert page.startswith(b"\x89PNG") and int.from_bytes(page[16:20], "big") == 800
    photo.write_bytes(b"no picture at all" * 100)
    assert "写真.jpg: " in run(*command, photo, folder / "other.png", code=1)
    assert not (folder / "other.png").exists()
