#!/usr/bin/env python3
"""The command line in a terminal: terminal.py GROUP KIRVO...

GROUP is one of the classes below. KIRVO is the program, for WindowsInterruption with the command
before it that runs Windows programs.
"""
import fcntl
import os
import pathlib
import pty
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time
import unittest

kirvo = ""
windows = []  # the command that runs kirvo.exe


def run(*arguments, **options):
    return subprocess.run([kirvo, *map(str, arguments)], capture_output=True, check=False,
                          **options)


def in_terminal(command, columns=80, changes=None):
    """What a command writes to a terminal of so many columns, and its exit code."""
    environment = {**os.environ, "TERM": "xterm", **(changes or {})}
    if "NO_COLOR" not in (changes or {}):
        environment.pop("NO_COLOR", None)
    child, terminal = pty.fork()
    if child == 0:
        os.execvpe(str(command[0]), list(map(str, command)), environment)
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    text = b""
    while True:
        try:
            piece = os.read(terminal, 65536)
        except OSError:  # the other side is closed
            break
        if not piece:
            break
        text += piece
    os.close(terminal)
    return text.decode(), os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])


def wait_for(condition, seconds=10):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.005)
    return False


def current_umask():
    mask = os.umask(0)
    os.umask(mask)
    return mask


class InFolder(unittest.TestCase):
    step = 0  # seconds that an effect takes

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kirvo_test_"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.picture = self.folder / "in.bmp"
        run("make", "gradient", "1600x1200", self.picture, "-c", "000000", "FF8000")

    def long_conversion(self, output, seconds=1.5):
        """A conversion that takes about so long on this machine."""
        return ["convert", self.picture, output] + ["--hue", "2,10"] * self.steps(seconds)

    def steps(self, seconds):
        if not InFolder.step:
            begun = time.monotonic()
            run("convert", self.picture, self.folder / "measured.bmp", *["--hue", "2,10"] * 50)
            InFolder.step = (time.monotonic() - begun) / 50
            (self.folder / "measured.bmp").unlink()
        return max(20, int(seconds / InFolder.step))

    def parts(self):
        return list(self.folder.glob("*.part"))


class Interruption(InFolder):
    def end_by(self, number):
        output = self.folder / "out.bmp"
        child = subprocess.Popen([kirvo, *map(str, self.long_conversion(output, 8))])
        time.sleep(0.3)
        self.assertIsNone(child.poll(), "too fast for this test")
        child.send_signal(number)
        self.assertEqual(child.wait(10), -number)
        self.assertEqual(list(self.folder.iterdir()), [self.picture])

    def test_ctrl_c_leaves_nothing(self):
        self.end_by(signal.SIGINT)

    def test_a_request_to_end_leaves_nothing(self):
        self.end_by(signal.SIGTERM)
        self.end_by(signal.SIGHUP)

    def test_the_shell_sees_130(self):
        command = [kirvo, *map(str, self.long_conversion(self.folder / "out.bmp", 8))]
        shell = subprocess.Popen(["sh", "-c", '"$@"; echo $?', "sh", *command],
                                 stdout=subprocess.PIPE, text=True)
        time.sleep(0.3)
        children = pathlib.Path(f"/proc/{shell.pid}/task/{shell.pid}/children").read_text()
        os.kill(int(children), signal.SIGINT)
        self.assertEqual(shell.communicate()[0], "130\n")

    def test_standard_input_is_copied_into_no_file(self):
        child = subprocess.Popen([kirvo, "convert", "-", str(self.folder / "out.bmp")],
                                 stdin=subprocess.PIPE, env={**os.environ, "TMPDIR": self.folder})
        child.stdin.write(self.picture.read_bytes()[:100000])
        child.stdin.flush()
        time.sleep(0.2)
        self.assertEqual(list(self.folder.iterdir()), [self.picture])
        child.send_signal(signal.SIGINT)
        self.assertEqual(child.wait(10), -signal.SIGINT)
        child.stdin.close()
        self.assertEqual(list(self.folder.iterdir()), [self.picture])

    def test_nobody_else_reads_a_file_that_is_not_complete(self):
        output = self.folder / "out.bmp"
        child = subprocess.Popen([kirvo, "make", "solid", "9000x7000", str(output), "-c", "red"])
        self.assertTrue(wait_for(self.parts))
        part = self.parts()[0]
        self.assertEqual(part.stat().st_mode & 0o777, 0o600)
        self.assertNotIn(str(child.pid), part.name)  # which could be foreseen
        self.assertEqual(child.wait(60), 0)
        self.assertEqual(output.stat().st_mode & 0o777, 0o666 & ~current_umask())

    def test_a_reader_that_goes_away_leaves_nothing(self):
        child = subprocess.Popen([kirvo, "convert", str(self.picture), "-", "--to", "bmp"],
                                 stdout=subprocess.PIPE, env={**os.environ, "TMPDIR": self.folder})
        child.stdout.read(10)
        child.stdout.close()
        self.assertEqual(child.wait(10), -signal.SIGPIPE)
        self.assertEqual(list(self.folder.iterdir()), [self.picture])

    def test_at_any_moment_the_output_is_whole_or_absent(self):
        output = self.folder / "out.bmp"
        command = [kirvo, "make", "solid", "6000x5000", str(output), "-c", "808080"]
        subprocess.run(command, check=True)
        size = output.stat().st_size
        before = 0
        for i in range(12):
            output.unlink(missing_ok=True)
            child = subprocess.Popen(command)
            wait_for(lambda: self.parts() or child.poll() is not None)
            time.sleep(i * 0.003)
            before += bool(self.parts())
            child.send_signal(signal.SIGINT)
            child.wait(10)
            self.assertEqual(self.parts(), [])
            if output.exists():
                self.assertEqual(output.stat().st_size, size)
        self.assertGreater(before, 0, "no signal came while the file was written")

    def test_the_old_file_stays_until_the_new_one_is_whole(self):
        output = self.folder / "out.bmp"
        output.write_bytes(b"old")
        child = subprocess.Popen([kirvo, "--force", *map(str, self.long_conversion(output, 8))])
        time.sleep(0.3)
        child.send_signal(signal.SIGINT)
        child.wait(10)
        self.assertEqual(output.read_bytes(), b"old")

    def test_ctrl_c_stays_ignored_where_it_was(self):
        output = self.folder / "out.bmp"
        child = subprocess.Popen(
            [kirvo, *map(str, self.long_conversion(output, 0.3))],
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_IGN))
        time.sleep(0.1)
        child.send_signal(signal.SIGINT)
        self.assertEqual(child.wait(30), 0)
        self.assertTrue(output.exists())

    def test_rights_and_links_of_a_replaced_file_stay(self):
        output, link = self.folder / "out.bmp", self.folder / "link.bmp"
        output.write_bytes(b"old")
        output.chmod(0o640)
        link.symlink_to(output)
        self.assertEqual(run("convert", "--force", self.picture, link).returncode, 0)
        self.assertTrue(link.is_symlink())
        self.assertEqual(output.stat().st_mode & 0o777, 0o640)
        self.assertEqual(output.read_bytes(), self.picture.read_bytes())

    def test_a_full_disk_is_an_error_and_leaves_nothing(self):
        limit = "ulimit -f 100; trap '' XFSZ; exec \"$@\""
        result = subprocess.run(["bash", "-c", limit, "bash", kirvo, "convert", str(self.picture),
                                 str(self.folder / "out.bmp")],
                                capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, 1)
        self.assertIn("out.bmp: File too large", result.stderr)
        self.assertEqual(list(self.folder.iterdir()), [self.picture])

    def test_a_gallery_appears_whole_or_not_at_all(self):
        # Its sheet, which comes last but one, is larger than its pictures.
        small, gallery = self.folder / "small.bmp", self.folder / "gallery"
        run("make", "solid", "40x30", small, "-c", "blue")
        limit = "ulimit -f 10; trap '' XFSZ; exec \"$@\""
        command = ["bash", "-c", limit, "bash", kirvo, "gallery", str(small), str(gallery)]
        for there in False, True:
            result = subprocess.run(command, capture_output=True, text=True, check=False)
            self.assertEqual(result.returncode, 1)
            self.assertIn("contact-sheet.jpg: File too large", result.stderr)
            self.assertEqual(gallery.exists(), there)
            self.assertEqual(list(gallery.glob("*")), [])
            gallery.mkdir(exist_ok=True)

    def test_ctrl_c_leaves_nothing_of_a_gallery(self):
        gallery, code = self.folder / "gallery", 0
        for _ in range(10):  # a busy machine may notice the files only when the gallery is done
            child = subprocess.Popen([kirvo, "gallery", "--quiet", str(self.picture), str(gallery)])
            self.assertTrue(wait_for(lambda: len(list(gallery.glob("*"))) > 10))
            child.send_signal(signal.SIGINT)
            code = child.wait(60)
            if code != 0:
                break
            shutil.rmtree(gallery)
        self.assertEqual(code, -signal.SIGINT)
        self.assertEqual(list(self.folder.iterdir()), [self.picture])


class WindowsInterruption(unittest.TestCase):
    """Wine gives a Windows program ctrl-C when its process gets SIGINT."""

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kirvo_test_"))
        self.addCleanup(shutil.rmtree, self.folder)

    def process_of(self, name):
        """The process that runs a program on this folder, not the scripts before it."""
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                arguments = (process / "cmdline").read_bytes()
                if name in os.readlink(process / "exe") and os.fsencode(self.folder) in arguments:
                    return int(process.name)
            except OSError:
                pass
        return None

    def interrupt(self, *arguments, after):
        child = subprocess.Popen([*windows, *map(str, arguments)], stderr=subprocess.DEVNULL)
        self.assertTrue(wait_for(lambda: self.process_of("wine"), 60))
        time.sleep(after)
        process = self.process_of("wine")
        if process:
            os.kill(process, signal.SIGINT)
        return child.wait(60)

    def test_ctrl_c_leaves_nothing(self):
        picture = self.folder / "in.bmp"
        subprocess.run([*windows, "make", "solid", "8x6", picture, "-c", "0000FF"], check=True)
        code = self.interrupt("convert", picture, self.folder / "out.bmp", "--resize", "4000x3000",
                              *["--hue", "2,10"] * 500, after=0.5)
        self.assertEqual(code, 130)
        self.assertEqual(list(self.folder.iterdir()), [picture])

    def test_ctrl_c_ends_the_workers_too(self):
        pictures = [self.folder / f"{i}.bmp" for i in range(6)]
        subprocess.run([*windows, "make", "solid", "900x600", pictures[0], "-c", "blue"], check=True)
        for copy in pictures[1:]:
            shutil.copy(pictures[0], copy)
        code = self.interrupt("convert", *pictures, "-o", self.folder / "out", "-j2", "--resize",
                              "4000x3000", *["--hue", "2,10"] * 500, after=2)
        self.assertEqual(code, 130)
        time.sleep(1)
        self.assertEqual(sorted(self.folder.glob("**/*.part")), [])
        self.assertEqual(sorted(self.folder.glob("*.bmp")), pictures)


class ProgressBar(InFolder):
    bar = re.compile(r"\r(\S+) +\[(#*)(\.*)\] +(\d+)% (\d+ s|\d+:\d\d min) left")

    def long_run(self, *options, **terminal):
        output = self.folder / "out.bmp"
        for seconds in 1.5, 5, 15:  # the machine may have become faster since it was measured
            output.unlink(missing_ok=True)
            begun = time.monotonic()
            text, code = in_terminal([kirvo, *options, *self.long_conversion(output, seconds)],
                                     **terminal)
            self.assertEqual(code, 0, text)
            if time.monotonic() - begun > 1:
                break
        return text

    def test_long_work_shows_progress_and_the_time_left(self):
        text = self.long_run()
        bars = self.bar.findall(text)
        self.assertGreater(len(bars), 1, text)
        shares = [int(bar[3]) for bar in bars]
        self.assertEqual(shares, sorted(shares))
        self.assertTrue(all(0 <= share <= 100 for share in shares))
        self.assertEqual(bars[0][0], "hue")
        self.assertRegex(text, r"\r +\r$")  # gone in the end

    def test_short_work_shows_nothing(self):
        text, code = in_terminal([kirvo, "convert", self.picture, self.folder / "out.bmp"])
        self.assertEqual((text, code), ("", 0))

    def test_quiet_shows_nothing(self):
        self.assertEqual(self.long_run("--quiet"), "")

    def test_many_inputs_are_one_piece_of_work(self):
        inputs = [self.folder / f"{i}.bmp" for i in range(8)]
        for copy in inputs:
            shutil.copy(self.picture, copy)
        for seconds in 0.2, 1, 3:
            effects = ["--hue", "2,10"] * self.steps(seconds)
            text, code = in_terminal([kirvo, "convert", "--force", *inputs, "-o",
                                      self.folder / "out", *effects])
            self.assertEqual(code, 0, text)
            self.assertIn("8 converted, 0 failed", text)
            bars = self.bar.findall(text)
            if bars:
                break
        shares = [int(bar[3]) for bar in bars]
        self.assertEqual(shares, sorted(shares))
        self.assertIn(bars[-1][0], [path.name for path in inputs])

    def test_narrow_terminals_are_not_overrun(self):
        for piece in self.long_run(columns=48).split("\r"):
            self.assertLess(len(piece), 48)

    def test_a_file_gets_no_bar(self):
        result = run(*self.long_conversion(self.folder / "out.bmp"))
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, b"", b""))


class Colours(InFolder):
    def test_headings_and_errors_have_colours(self):
        text, code = in_terminal([kirvo, "--help"])
        self.assertEqual(code, 0)
        self.assertIn("\x1b[1mCommands:\x1b[0m", text)
        text, code = in_terminal([kirvo, "info", "none.bmp"])
        self.assertEqual(code, 1)
        self.assertIn("\x1b[1;31mkirvo:\x1b[0m none.bmp: No such file", text)

    def test_no_color_and_dumb_terminals_are_respected(self):
        for changes in {"NO_COLOR": "1"}, {"TERM": "dumb"}:
            for arguments in ["--help"], ["info", "none.bmp"]:
                self.assertNotIn("\x1b", in_terminal([kirvo, *arguments], changes=changes)[0])
        self.assertIn("\x1b", in_terminal([kirvo, "--help"], changes={"NO_COLOR": ""})[0])

    def test_a_picture_is_not_written_to_a_terminal(self):
        text, code = in_terminal([kirvo, "convert", self.picture, "-", "--to", "bmp"])
        self.assertEqual(code, 1)
        self.assertIn("standard output: is a terminal", text)


class Completions(InFolder):
    def script(self, shell):
        result = run("--completions", shell)
        self.assertEqual(result.returncode, 0)
        path = self.folder / ("_kirvo" if shell == "zsh" else "kirvo." + shell)
        path.write_bytes(result.stdout)
        return path

    def bash(self, *words):
        """The completions of the last word."""
        commands = ('source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _kirvo; '
                    '[ ${#COMPREPLY[@]} = 0 ] || printf "%s\\n" "${COMPREPLY[@]}"')
        result = subprocess.run(["bash", "-c", commands, "bash", self.script("bash"), *words],
                                capture_output=True, text=True, cwd=self.folder, check=True)
        self.assertEqual(result.stderr, "")
        return result.stdout.split("\n")[:-1]

    def test_bash(self):
        subprocess.run(["bash", "-n", self.script("bash")], check=True)
        self.assertEqual(self.bash("kirvo", "conv"), ["convert"])
        self.assertEqual(self.bash("kirvo", "make", "s"), ["solid"])
        self.assertEqual(self.bash("kirvo", "convert", "--to", "b"), ["bmp"])
        self.assertLessEqual({"bmp", "jpg", "tga"}, set(self.bash("kirvo", "convert", "--to", "")))
        self.assertEqual(self.bash("kirvo", "convert", "--sharpen", "stro"), ["strong", "strongest"])
        self.assertEqual(self.bash("kirvo", "convert", "--compose", "in.b"), ["in.bmp"])
        self.assertEqual(self.bash("kirvo", "effects", "mosaic"), ["mosaic", "mosaic-average"])
        self.assertEqual(self.bash("kirvo", "turn", "m"), ["mirror"])
        self.assertEqual(self.bash("kirvo", "turn", "90", "in.b"), ["in.bmp"])
        self.assertEqual(self.bash("kirvo", "convert", "in.bmp", "--mosaic"),
                         ["--mosaic", "--mosaic-average"])
        self.assertEqual(self.bash("kirvo", "convert", "--palette", "exact"),
                         ["exact256", "exact16"])
        self.assertEqual(self.bash("kirvo", "convert", "--brightness", ""), [])
        self.assertEqual(self.bash("kirvo", "make", "gradient", "--vert"), ["--vertical"])
        self.assertEqual(self.bash("kirvo", "make", "solid", "--vert"), [])
        self.assertEqual(self.bash("kirvo", "info", "--js"), ["--json"])
        (self.folder / "two words.bmp").touch()
        (self.folder / "inner").mkdir()
        self.assertEqual(sorted(self.bash("kirvo", "convert", "in")), ["in.bmp", "inner"])
        self.assertEqual(self.bash("kirvo", "info", "two"), ["two words.bmp"])
        self.assertEqual(self.bash("kirvo", "convert", "-o", "in"), ["inner"])
        options = set(self.bash("kirvo", "convert", "--"))
        listed = re.findall(r"^  (--\S+)", run("effects").stdout.decode(), re.M)
        self.assertGreater(len(listed), 30)
        self.assertLessEqual(set(listed), options)

    @unittest.skipUnless(shutil.which("fish"), "fish is not installed")
    def test_fish(self):
        script = self.script("fish")

        def complete(line):
            result = subprocess.run(
                ["fish", "--no-config", "-c", "source $argv[1]; complete -C $argv[2]", script,
                 line], capture_output=True, text=True, cwd=self.folder, check=True,
                env={**os.environ, "HOME": str(self.folder)})
            self.assertEqual(result.stderr, "")
            return [line.split("\t")[0] for line in result.stdout.splitlines()]

        self.assertEqual(complete("kirvo conv"), ["convert"])
        self.assertLessEqual({"bmp", "jpg", "tga"}, set(complete("kirvo convert --to ")))
        self.assertEqual(complete("kirvo convert --sharpen stro"), ["strong", "strongest"])
        self.assertEqual(complete("kirvo convert --compose in.b"), ["in.bmp"])
        self.assertEqual(complete("kirvo effects mosaic"), ["mosaic", "mosaic-average"])
        self.assertEqual(complete("kirvo convert --mosaic"), ["--mosaic", "--mosaic-average"])
        self.assertEqual(complete("kirvo make s"), ["solid"])
        self.assertEqual(complete("kirvo make gradient --vert"), ["--vertical"])
        self.assertEqual(complete("kirvo make solid --vert"), [])
        self.assertEqual(complete("kirvo info in.b"), ["in.bmp"])
        self.assertEqual(complete("kirvo convert --js"), ["--json"])

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh(self):
        subprocess.run(["zsh", "-n", self.script("zsh")], check=True)

        def complete(line):
            """What stands on the line after Tab."""
            setup = (f"fpath=({self.folder} $fpath); autoload -Uz compinit; "
                     f"compinit -D -u; cd {self.folder}; PS1=; unsetopt promptsp; "
                     "show() { print -r -- \"<$BUFFER>\" >result; }; zle -N show; "
                     "bindkey '^X' show; print ready\n")
            child, terminal = pty.fork()
            if child == 0:
                os.execvpe("zsh", ["zsh", "-f", "-i"], {**os.environ, "TERM": "dumb"})
            result = self.folder / "result"
            result.unlink(missing_ok=True)
            os.write(terminal, setup.encode())
            seen = b""
            while b"\nready" not in seen:
                seen += os.read(terminal, 4096)
            os.write(terminal, line.encode() + b"\t\x18")
            self.assertTrue(wait_for(lambda: result.exists() and result.read_text(), 20), seen)
            os.kill(child, signal.SIGKILL)
            os.waitpid(child, 0)
            os.close(terminal)
            return result.read_text().strip("<>\n")

        self.assertEqual(complete("kirvo conv"), "kirvo convert ")
        self.assertEqual(complete("kirvo make gradient --vert"), "kirvo make gradient --vertical ")
        self.assertEqual(complete("kirvo convert in.bmp --palette exact25"),
                         "kirvo convert in.bmp --palette exact256 ")
        self.assertEqual(complete("kirvo convert in.b"), "kirvo convert in.bmp ")
        self.assertEqual(complete("kirvo convert --sharpen emb"), "kirvo convert --sharpen emboss")
        self.assertEqual(complete("kirvo effects poster"), "kirvo effects posterise ")
        self.assertEqual(complete("kirvo convert --compose in.b"), "kirvo convert --compose in.bmp ")
        self.assertEqual(complete("kirvo convert --blur --sharpen-"),
                         "kirvo convert --blur --sharpen-more ")

    def test_other_shells_are_wrong_usage(self):
        self.assertEqual(run("--completions", "tcsh").returncode, 2)


class ManualPage(InFolder):
    @unittest.skipUnless(shutil.which("groff"), "groff is not installed")
    def test_formats_without_warnings(self):
        page = run("--man").stdout
        result = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-P-c"], input=page,
                                capture_output=True, check=True)
        self.assertEqual(result.stderr, b"")
        text = re.sub(r".\x08", "", result.stdout.decode()).replace("‐\n", "")
        for part in ("NAME", "SYNOPSIS", "COMMANDS", "EFFECTS", "EXIT STATUS", "ENVIRONMENT",
                     "EXAMPLES", "kirvo make gradient", "--in-place", "NO_COLOR", "130"):
            self.assertIn(part, text)
        for option in re.findall(r"^  (--\S+)", run("effects").stdout.decode(), re.M):
            self.assertIn(option, text)

    def test_says_what_the_help_says(self):
        page = run("--man").stdout.decode().replace("\\-", "-")
        for command in "info", "convert", "gallery", "effects":
            help_text = run(command, "--help").stdout.decode()
            for line in re.findall(r"^  (kirvo .*)$", help_text, re.M):
                self.assertIn(line, page)


if __name__ == "__main__":
    # Whoever started the tests may have had these ignored, and children would inherit that.
    for ignorable in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
        signal.signal(ignorable, signal.SIG_DFL)
    windows = sys.argv[2:]
    kirvo = os.path.abspath(sys.argv[-1])
    unittest.main(argv=sys.argv[:2], verbosity=2)
