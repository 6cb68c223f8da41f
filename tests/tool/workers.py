#!/usr/bin/env python3
"""Many pictures on all cores: workers.py KIRVO

Results are the same for every number of workers; what dies, is interrupted or finds no room leaves
inputs as they were and no output half written.
"""
import hashlib
import json
import os
import pathlib
import pty
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

kirvo = os.path.abspath(sys.argv[1])
PICTURES = 12


def run(*arguments, **options):
    return subprocess.run([kirvo, *map(str, arguments)], capture_output=True, text=True,
                          check=False, **options)


def content(folder):
    return {str(path.relative_to(folder)): hashlib.sha256(path.read_bytes()).hexdigest()
            for path in folder.rglob("*") if path.is_file()}


def children(process):
    try:
        return pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
    except OSError:
        return []


def wait_for(condition, seconds=20):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if condition():
            return True
        time.sleep(0.002)
    return False


class Workers(unittest.TestCase):
    def setUp(self):
        self.top = pathlib.Path(tempfile.mkdtemp(prefix="kirvo_test_"))
        self.addCleanup(shutil.rmtree, self.top)
        self.folder = self.top / "in"
        self.folder.mkdir()
        self.inputs = [self.folder / f"p{i:02}.jpg" for i in range(PICTURES)]
        run("make", "gradient", "800x600", self.inputs[0], "-c", "red", "blue")
        for i, path in enumerate(self.inputs[1:]):
            run("convert", self.inputs[0], path, "--hue", f"turn,{i * 20 + 7}")
        self.before = content(self.folder)

    def long_work(self, *arguments):
        """A conversion that takes long enough to be disturbed."""
        return [kirvo, "convert", *map(str, self.inputs), *map(str, arguments),
                *["--hue", "turn,5"] * 400]

    def test_same_bytes_and_same_order_for_every_number_of_workers(self):
        effects = ["--compose", f"{self.inputs[3]},key", "--key", "804020", "--blur", "--kernel",
                   "1,1,1,1,1,1,1,1,1", "--palette", "256", "--fit", "300x300"]
        made = {}
        for count in 1, 2, 3, 7:
            out = self.top / str(count)
            result = run("convert", *self.inputs, "-o", out, "--to", "png", "-j", count, "--json",
                         *effects)
            self.assertEqual(result.returncode, 0, result.stderr)
            records = json.loads(result.stdout)
            self.assertEqual([record["file"] for record in records], list(map(str, self.inputs)))
            made[count] = content(out)
        self.assertEqual(len(made[1]), PICTURES)
        for count in 2, 3, 7:
            self.assertEqual(made[count], made[1])

    def test_errors_stand_in_the_order_of_the_inputs(self):
        self.inputs[1].write_bytes(b"junk")
        self.inputs[7].unlink()
        for count in 1, 3:
            result = run("convert", *self.inputs, "-o", self.top / str(count), "-j", count)
            self.assertEqual(result.returncode, 1)
            lines = result.stderr.splitlines()
            self.assertIn("p01.jpg", lines[0])
            self.assertIn("p07.jpg", lines[1])
            self.assertEqual(lines[2], f"{PICTURES - 2} converted, 2 failed")

    def test_names_that_are_no_text_go_through(self):
        names = [os.fsencode(self.folder) + b"/\xff\xfe{width}.jpg",
                 os.fsencode(self.folder) + "/写真 Łódź.jpg".encode()]
        for name in names:
            shutil.copy(os.fsencode(self.inputs[0]), name)
        out = self.top / "out"
        result = subprocess.run([os.fsencode(kirvo), b"convert", *names, b"-o",
                                 os.fsencode(out) + b"/{name}-{width}.png", b"-j2"],
                                capture_output=True, check=False)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(sorted(os.listdir(os.fsencode(out))),
                         sorted([b"\xff\xfe{width}-800.png", "写真 Łódź-800.png".encode()]))

    def test_a_worker_that_dies_costs_one_picture_and_is_named(self):
        out = self.top / "out"
        child = subprocess.Popen(self.long_work("-o", out, "-j2"), stderr=subprocess.PIPE, text=True)
        self.assertTrue(wait_for(lambda: len(children(child.pid)) == 2))
        time.sleep(0.1)
        os.kill(int(children(child.pid)[0]), signal.SIGKILL)
        errors = child.communicate()[1]
        self.assertEqual(child.returncode, 1)
        self.assertIn(f"{PICTURES - 1} converted, 1 failed", errors)
        lost = [path for path in self.inputs if path.name in errors]
        self.assertEqual(len(lost), 1, errors)
        self.assertIn(f"{lost[0]}: the process that worked on it ended: killed by signal 9", errors)
        self.assertEqual(set(content(out)), {path.name for path in self.inputs} - {lost[0].name})
        self.assertEqual(content(self.folder), self.before)

    def test_killed_workers_leave_nothing_half_written(self):
        """In place, with a worker killed again and again at moments that differ."""
        for attempt in range(6):
            child = subprocess.Popen([kirvo, "-q", "convert", "--in-place", "-j2", "--rotate", "180",
                                      *map(str, self.inputs)], stderr=subprocess.DEVNULL)
            if wait_for(lambda: children(child.pid), 2):
                time.sleep(0.01 * attempt)
                for worker in children(child.pid)[:1]:
                    os.kill(int(worker), signal.SIGKILL)
            child.wait(60)
            self.assertEqual({path.name for path in self.folder.iterdir()},
                             {path.name for path in self.inputs})
            result = run("convert", *self.inputs, "-o", self.top / f"whole{attempt}", "--to", "bmp")
            self.assertEqual(result.returncode, 0, result.stderr)  # each is a whole picture

    def end_by(self, end):
        out = self.top / "out"
        child = subprocess.Popen(self.long_work("-o", out, "-j2"), stderr=subprocess.DEVNULL)
        self.assertTrue(wait_for(lambda: len(children(child.pid)) == 2))
        workers = children(child.pid)
        time.sleep(0.3)
        end(child)
        code = child.wait(20)
        alive = [w for w in workers if pathlib.Path(f"/proc/{w}/exe").exists()]
        self.assertEqual(content(self.folder), self.before)
        return code, alive, list(out.glob("*.part")) if out.exists() else []

    def test_ctrl_c_ends_the_workers_and_leaves_nothing(self):
        code, alive, parts = self.end_by(lambda child: child.send_signal(signal.SIGINT))
        self.assertEqual((code, alive, parts), (-signal.SIGINT, [], []))

    def test_an_interrupted_program_waits_until_its_workers_have_ended(self):
        """With a system that takes its time to kill: a byte in `killed` comes before each kill."""
        (self.top / "slow.c").write_text("""
            #include <fcntl.h>
            #include <signal.h>
            #include <stdlib.h>
            #include <sys/syscall.h>
            #include <unistd.h>
            int kill(pid_t process, int signal) {
                if (_Fork() == 0) {
                    usleep(500000);
                    int killed = open(getenv("KILLED"), O_WRONLY | O_CREAT | O_APPEND, 0600);
                    (void)!write(killed, "k", 1);
                    syscall(SYS_kill, process, signal);
                    _exit(0);
                }
                return 0;
            }""")
        slow, killed = self.top / "slow.so", self.top / "killed"
        subprocess.run(["cc", "-D_GNU_SOURCE", "-shared", "-fPIC", slow.with_suffix(".c"), "-o", slow], check=True)
        child = subprocess.Popen(self.long_work("-o", self.top / "out", "-j2"), stderr=subprocess.DEVNULL,
                                 env={**os.environ, "LD_PRELOAD": str(slow), "KILLED": str(killed)})
        self.assertTrue(wait_for(lambda: len(children(child.pid)) == 2))
        time.sleep(0.3)
        child.send_signal(signal.SIGINT)
        self.assertEqual(child.wait(20), -signal.SIGINT)
        self.assertEqual(killed.read_text() if killed.exists() else "", "kk")

    def test_workers_end_with_the_program_that_started_them(self):
        workers = []

        def kill(child):
            workers.extend(children(child.pid))
            child.kill()

        code, _, _ = self.end_by(kill)
        self.assertEqual(code, -signal.SIGKILL)
        self.assertTrue(wait_for(lambda: not any(
            pathlib.Path(f"/proc/{w}/exe").exists() for w in workers)))
        out = self.top / "out"
        self.assertEqual(list(out.glob("*.part")) if out.exists() else [], [])

    def test_a_full_disk_leaves_inputs_as_they_were(self):
        limit = 3000  # bytes a file may have
        for arguments in (["--in-place"], ["-o", self.top / "out"]):
            result = run("convert", *self.inputs, *arguments, "--negative", "-j2",
                         preexec_fn=lambda: (signal.signal(signal.SIGXFSZ, signal.SIG_IGN),
                                             resource.setrlimit(resource.RLIMIT_FSIZE,
                                                                (limit, limit))))
            self.assertEqual(result.returncode, 1)
            self.assertIn("p00.jpg: File too large", result.stderr)
            self.assertIn(f"0 converted, {PICTURES} failed", result.stderr)
            self.assertEqual(content(self.folder), self.before)
        self.assertEqual(list((self.top / "out").iterdir()), [])

    @unittest.skipUnless(os.geteuid() == 0, "only root mounts file systems")
    def test_a_small_file_system_leaves_inputs_as_they_were(self):
        disk = self.top / "disk"
        disk.mkdir()
        script = ('mount -t tmpfs -o size=64k none "$1" || exit 77; shift; "$@"; code=$?; '
                  'ls "$0"; exit $code')
        result = subprocess.run(["unshare", "--mount", "bash", "-c", script, disk, disk, kirvo,
                                 "convert", *self.inputs, "-o", disk, "--to", "bmp", "-j2"],
                                capture_output=True, text=True, check=False)
        if result.returncode == 77 or "unshare" in result.stderr:
            self.skipTest("no file system can be mounted here")
        self.assertEqual(result.returncode, 1)
        self.assertIn("No space left on device", result.stderr)
        self.assertEqual(result.stdout, "")  # nothing is left on it
        self.assertEqual(content(self.folder), self.before)

    def test_one_bar_for_all(self):
        child, terminal = pty.fork()
        if child == 0:
            command = self.long_work("-o", self.top / "out", "-j2")
            os.execve(command[0], command, {**os.environ, "TERM": "xterm"})
        text = b""
        try:
            while piece := os.read(terminal, 65536):
                text += piece
        except OSError:
            pass
        self.assertEqual(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]), 0)
        shares = [int(word.split(b"%")[0].split()[-1]) for word in text.split(b"\r") if b"%" in word]
        self.assertGreater(len(shares), 3)
        self.assertEqual(shares, sorted(shares))


class Speed(unittest.TestCase):
    """Two workers do as much work as one in about half the time, on processors of their own."""

    def seconds(self, workers, *groups):
        """What programs take that work side by side on a group of pictures each."""
        begun = time.monotonic()
        programs = [subprocess.Popen([kirvo, "-f", "convert", *pictures, "-o", self.out,
                                      "-j", str(workers), *["--hue", "turn,9"] * 6],
                                     stdout=subprocess.DEVNULL) for pictures in groups]
        self.assertEqual([program.wait() for program in programs], [0] * len(programs))
        return time.monotonic() - begun

    def test_two_processors_are_used(self):
        if len(os.sched_getaffinity(0)) < 2:
            self.skipTest("one processor")
        with tempfile.TemporaryDirectory() as folder:
            folder = pathlib.Path(folder)
            run("make", "gradient", "3000x2000", folder / "0.jpg", "-c", "red", "blue")
            for i in range(1, 16):
                shutil.copy(folder / "0.jpg", folder / f"{i}.jpg")
            inputs = sorted(folder.glob("*.jpg"))
            self.out = folder / "out"
            gains, shares = [], []
            for attempt in range(8):  # others may be at work too
                two = self.seconds(2, inputs)
                gains.append(self.seconds(1, inputs) / two)
                if gains[-1] > 1.8:
                    return
                # What the machine gives to two programs that know nothing of each other.
                shares.append(two / self.seconds(1, inputs[:8], inputs[8:]))
                if shares[-1] < 1.1:
                    return
            self.fail(f"two workers: {gains} times as fast as one, {shares} times two programs")


if __name__ == "__main__":
    for ignorable in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
        signal.signal(ignorable, signal.SIG_DFL)
    unittest.main(argv=sys.argv[:1] + sys.argv[2:], verbosity=2)
