#!/usr/bin/env python3
"""Holds README.md to its word: readme.py KIRVO KIRVO_SAMPLE

Every command of the tool runs, in the order in which they stand; the lines of C are those that the
guide's example compiles and runs; every link leads somewhere.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

root = pathlib.Path(__file__).resolve().parents[2]
readme = (root / "README.md").read_text()
kirvo, sample = map(os.path.abspath, sys.argv[1:3])


class Readme(unittest.TestCase):
    def test_commands(self):
        commands = re.findall(r"^    (kirvo .*)$", readme, re.M)
        self.assertGreater(len(commands), 5)
        with tempfile.TemporaryDirectory() as folder:
            subprocess.run([sample, "large.bmp", "900", "600"], cwd=folder, check=True)
            subprocess.run([kirvo, "convert", "large.bmp", "photo.jpg"], cwd=folder, check=True)
            (pathlib.Path(folder) / "large.bmp").unlink()
            (pathlib.Path(folder) / "icon.ico").write_bytes(icon())
            for command in commands:
                script = f'kirvo() {{ "{kirvo}" "$@"; }}; {command}'
                result = subprocess.run(["bash", "-c", script], cwd=folder, capture_output=True,
                                        check=False)
                self.assertEqual(result.returncode, 0, (command, result.stderr))
            made = set(os.listdir(folder))
            self.assertLessEqual({"small.png", "thumbnails", "web", "posters", "blurred.jpg", "sky.jpg",
                                  "gallery"}, made)

    def test_lines_of_c(self):
        code = re.search(r"```c\n(.*?)```", readme, re.S).group(1)
        self.assertIn(code, (root / "docs/snippets/first.c").read_text())

    def test_links(self):
        links = re.findall(r"\]\(([^)#]+)", readme)
        self.assertGreater(len(links), 4)
        for link in links:
            self.assertTrue((root / link).exists(), link)

    def test_help_says_the_same_of_exit_codes(self):
        text = subprocess.run([kirvo, "--help"], capture_output=True, text=True, check=True).stdout
        for part in "0 done", "1 an input failed", "2 wrong usage", "130 interrupted":
            self.assertIn(part, text)
            self.assertIn(part, " ".join(readme.split()))


def icon():
    """One picture of 2 x 2 pixels in two colours, and its mask."""
    header = bytes([40, 0, 0, 0, 2, 0, 0, 0, 4, 0, 0, 0, 1, 0, 1, 0]) + bytes(24)
    picture = header + bytes([0, 0, 0, 0, 255, 255, 255, 0]) + bytes(8) + bytes(8)
    entry = bytes([2, 2, 2, 0, 1, 0, 1, 0]) + len(picture).to_bytes(4, "little")
    return bytes([0, 0, 1, 0, 1, 0]) + entry + (22).to_bytes(4, "little") + picture


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
