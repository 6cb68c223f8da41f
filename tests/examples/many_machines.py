#!/usr/bin/env python3
"""Thumbnails on a cluster: many_machines.py LIBRARY_FOLDER KIRVO

A local cluster of two workers, one of which is killed on the way; every thumbnail is found, and a
second run makes only what is missing. Ends with 77 where Dask is not installed.
"""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

root = pathlib.Path(__file__).resolve().parents[2]
libraries, kirvo = pathlib.Path(sys.argv[1]).resolve(), os.path.abspath(sys.argv[2])
environment = {**os.environ, "KIRVO_LIBRARY": str(libraries / "libkirvo.so"),
               "KIRVO_FILES_LIBRARY": str(libraries / "libkirvofiles.so"),
               "DASK_DISTRIBUTED__WORKER__DAEMON": "False"}
COUNT = 40


def python_with_dask():
    for python in sys.executable, "/usr/bin/python3":
        if subprocess.run([python, "-c", "import distributed"], check=False,
                          stderr=subprocess.DEVNULL).returncode == 0:
            return python
    print("python3-distributed is not installed")
    sys.exit(77)


python = python_with_dask()


def wait_for(condition, what, seconds=90):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end, what
        time.sleep(0.01)


def make_pictures(folder):
    """A tree with pictures of several formats, and one that is none."""
    (folder / "a/写真").mkdir(parents=True)
    subprocess.run([kirvo, "make", "gradient", "2400x1800", folder / "0.jpg", "-c", "red", "blue"],
                   check=True)
    for i in range(1, COUNT - 3):
        shutil.copy(folder / "0.jpg", folder / ("a" if i % 2 else "a/写真") / f"{i}.jpg")
    for kind in "png", "bmp", "tif":
        subprocess.run([kirvo, "convert", folder / "0.jpg", folder / f"a/same.{kind}", "--palette",
                        "256"] if kind == "bmp" else
                       [kirvo, "convert", folder / "0.jpg", folder / f"a/same.{kind}"], check=True)
    (folder / "notes.txt").write_text("no picture")


class Cluster:
    def __init__(self, folder):
        self.folder = folder
        self.file = folder / "scheduler.json"
        self.all = [self.start("dask_scheduler", "--port", "0", "--no-dashboard", "--host",
                               "127.0.0.1", "--scheduler-file", self.file)]
        wait_for(self.file.exists, "no scheduler")
        self.address = json.loads(self.file.read_text())["address"]
        self.workers = [self.start("dask_worker", self.address, "--nthreads", "1", "--no-nanny",
                                   "--no-dashboard", "--host", "127.0.0.1", "--local-directory",
                                   folder) for _ in range(2)]
        self.all += self.workers

    def start(self, module, *arguments):
        return subprocess.Popen([python, "-m", f"distributed.cli.{module}", *map(str, arguments)],
                                env=environment, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    def close(self):
        for process in self.all:
            process.kill()
            process.wait()


def script(*arguments):
    return [python, root / "examples/many_pictures.py", *arguments]


def finish(process, code):
    output, errors = process.communicate(timeout=300)
    assert process.returncode == code, (process.returncode, output, errors)
    return output, errors


def start(*arguments):
    return subprocess.Popen(script(*arguments), env=environment, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE)


def check(top):
    tree, to, own = top / "tree", top / "small", top / "cluster"
    own.mkdir()
    make_pictures(tree)
    cluster = Cluster(own)
    try:
        work = start(tree, to, "--scheduler", cluster.address, "--size", "100")
        wait_for(lambda: len(list(to.rglob("*.jpg"))) >= 3 or work.poll() is not None,
                 "nothing is made")
        assert work.poll() is None, work.communicate()
        assert len(list(to.rglob("*.jpg"))) < COUNT, "too fast to be disturbed"
        cluster.workers[0].send_signal(signal.SIGKILL)
        output, _ = finish(work, 0)
        assert f"{COUNT} made, 0 failed" in output, output
        made = sorted(to.rglob("*"))
        thumbnails = [path for path in made if path.is_file()]
        assert len(thumbnails) == COUNT, thumbnails
        described = subprocess.run([kirvo, "info", *thumbnails], check=True, text=True,
                                   stdout=subprocess.PIPE).stdout.splitlines()
        assert len(described) == COUNT and all("JPEG, 100 x 75" in line for line in described)
        assert (to / "a/same.png.jpg").exists() and (to / "a/写真/2.jpg").exists()

        for path in thumbnails[:5]:
            path.unlink()
        (tree / "broken.jpg").write_bytes(b"\xff\xd8 broken")
        output, errors = finish(start(tree, to, "--scheduler", cluster.address, "--size", "100"), 1)
        assert "5 made, 1 failed" in output and "broken.jpg: " in errors, (output, errors)
        assert all(path.exists() for path in thumbnails)
        (tree / "broken.jpg").unlink()
        assert "0 made, 0 failed" in finish(start(tree, to), 0)[0]  # nothing to do: no cluster

        shutil.copy(thumbnails[0], tree / "a/same.png.jpg")  # as the thumbnail of same.png is named
        _, errors = finish(start(tree, to, "--scheduler", "nowhere"), 1)
        assert errors.startswith("nowhere: no scheduler answers there"), errors
        output, _ = finish(start(tree, to, "--scheduler", cluster.address), 0)
        assert "1 made" in output and (to / "a/same.png.jpg.jpg").exists(), output
        finish(start(tree, tree), 2)
    finally:
        cluster.close()


top = pathlib.Path(tempfile.mkdtemp(prefix="kirvo_test_"))
try:
    check(top)
finally:
    shutil.rmtree(top)
