#!/usr/bin/env python3
"""Hostile and odd files through the command line: check.py TOOL FOLDER"""

import hashlib
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

TOOL, WORLD = map(Path, sys.argv[1:3])
FILES = sorted(WORLD.iterdir())
SECONDS = 60  # for all of them; they take one or two


def digests():
    return [hashlib.sha256(path.read_bytes()).hexdigest() for path in FILES]


def kirvo_tool(*arguments):
    return subprocess.run([TOOL, *arguments], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          text=True, errors="replace", timeout=SECONDS)


class CommandLine(unittest.TestCase):
    def converted(self, folder, *options):
        result = kirvo_tool("convert", *options, *FILES, "-o", f"{folder}/{{name}}-{{ext}}.png")
        self.assertEqual(result.returncode, 1, result.stdout[-300:])  # some cannot be converted
        counts = re.search(r"(\d+) converted, (\d+) failed", result.stdout)
        made = sorted(Path(folder).iterdir())
        self.assertEqual(int(counts[1]), len(made))
        self.assertEqual(int(counts[1]) + int(counts[2]), len(FILES))
        # Each failure is told in words, with the name.
        self.assertEqual(len(set(re.findall(rf"^kirvo: {WORLD}/([^:]+): .*\w", result.stdout, re.M))
                             - {path.name for path in made}) >= int(counts[2]), True)
        return made

    def test_converts_what_is_a_picture_and_names_what_is_not(self):
        before = digests()
        with tempfile.TemporaryDirectory() as folder:
            made = self.converted(folder)
            names = {path.name for path in made}
            self.assertIn("sound-grey-jpg.png", names)
            self.assertIn("sound-colour-jpg.png", names)
            self.assertEqual(kirvo_tool("info", *made).returncode, 0)  # all of them are whole
        self.assertEqual(digests(), before)

    def test_keeps_going_where_it_is_told_to(self):
        with tempfile.TemporaryDirectory() as less, tempfile.TemporaryDirectory() as more:
            strict, kept = self.converted(less), self.converted(more, "--keep-going")
            self.assertLess({path.name for path in strict}, {path.name for path in kept})

    def test_informs_of_each_or_says_why_not(self):
        for options in ((), ("--long",), ("--json",)):
            result = kirvo_tool("info", *options, *FILES)
            self.assertEqual(result.returncode, 1)
            self.assertNotIn("terminate", result.stdout)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
