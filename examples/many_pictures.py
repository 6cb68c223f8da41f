#!/usr/bin/env python3
"""Makes thumbnails of a tree of pictures on many machines: many_pictures.py FROM TO [options]

Each picture below FROM becomes a JPEG file of the same name below TO. The work goes to the workers of
a Dask cluster; without --scheduler to processes on this machine. A picture whose worker dies is given
to another, one that fails is tried again, and a run that was stopped goes on where it was: what is
there and newer than its picture is not made again.

Debian: apt install python3-distributed. Every machine sees FROM and TO under these names, has
libkirvo.so and libkirvofiles.so; the Python package kirvo travels there. The guide many-machines.md
shows how to start workers.
"""
import argparse
import contextlib
import os
import pathlib
import sys
import tempfile
import zipfile

from distributed import Client, LocalCluster, as_completed
from distributed.diagnostics.plugin import UploadFile

HERE = pathlib.Path(__file__).resolve().parent
PACKAGE = [HERE / "kirvo", HERE.parent / "bindings/python/src/kirvo"]
KINDS = {".bmp", ".dib", ".gif", ".ico", ".jfif", ".jpe", ".jpeg", ".jpg", ".png", ".tga", ".tif",
         ".tiff", ".webp"}


def thumbnail(source, target, size):
    """Runs on a worker: makes one thumbnail, complete or not at all. Answers why not, or None."""
    import kirvo

    try:
        picture = kirvo.Image.open(source)
    except kirvo.Error as error:
        return str(error)  # trying it again would not help
    scale = min(1, size / max(picture.size))
    small = picture.resize(*(max(1, round(side * scale)) for side in picture.size))
    os.makedirs(os.path.dirname(target), exist_ok=True)
    small.save(target, format=kirvo.flat_files.KIRVO_FILES_JPEG)
    return None  # a disk may be full in passing: an error there is worth another attempt


@contextlib.contextmanager
def packed_module():
    """The Python package as one file, for workers to import."""
    source = next(place for place in PACKAGE if (place / "__init__.py").exists())
    with tempfile.TemporaryDirectory() as folder:
        packed = pathlib.Path(folder, "kirvo.zip")
        with zipfile.ZipFile(packed, "w") as modules:
            for module in source.glob("*.py"):
                modules.write(module, f"kirvo/{module.name}")
        yield packed


def work_to_do(top, to):
    """The pictures whose thumbnails are missing or older, and these."""
    taken = set()  # a.png becomes a.png.jpg, where there may be a picture of that name
    for folder, folders, names in os.walk(top):
        folders.sort()
        folders[:] = [name for name in folders if pathlib.Path(folder, name).resolve() != to]
        for name in sorted(names):
            source = pathlib.Path(folder, name)
            if source.suffix.lower() not in KINDS:
                continue
            target = to / source.relative_to(top)
            if target.suffix.lower() not in (".jpg", ".jpeg"):
                target = target.with_name(target.name + ".jpg")
            while target in taken:
                target = target.with_name(target.name + ".jpg")
            taken.add(target)
            try:
                if target.stat().st_mtime >= source.stat().st_mtime:
                    continue
            except OSError:
                pass
            yield str(source), str(target)


def run(client, work, size):
    """Answers how many have failed."""
    with packed_module() as module:  # to workers that come later too
        client.register_worker_plugin(UploadFile(str(module)), name="kirvo")
    sources, targets = zip(*work)
    futures = client.map(thumbnail, sources, targets, size=size, retries=3, pure=False)
    source_of = {future.key: source for future, source in zip(futures, sources)}
    failed = 0
    for done, future in enumerate(as_completed(futures), 1):
        error = future.exception()
        why = str(error) if error else future.result()
        if why:
            failed += 1
            name = source_of[future.key]
            print(why if why.startswith(name) else f"{name}: {why}", file=sys.stderr)
        future.release()
        if sys.stderr.isatty():
            print(f"\r{done} of {len(work)}", end="", file=sys.stderr)
    return failed


def main():
    parser = argparse.ArgumentParser(description="Thumbnails of a tree of pictures, on a cluster.")
    parser.add_argument("tree", metavar="FROM", type=pathlib.Path)
    parser.add_argument("to", metavar="TO", type=pathlib.Path)
    parser.add_argument("--size", type=int, default=160, help="pixels of the longer side (160)")
    parser.add_argument("--scheduler", help="address of a cluster: tcp://host:8786")
    arguments = parser.parse_args()
    if arguments.size < 1 or not arguments.tree.is_dir():
        parser.error(f"{arguments.tree}: no such folder" if arguments.size > 0 else "--size: 1 or more")
    tree, to = arguments.tree.resolve(), arguments.to.resolve()
    if tree == to:
        parser.error("the thumbnails want a folder of their own")
    work = list(work_to_do(tree, to))
    failed = 0
    if work:
        address = arguments.scheduler or LocalCluster(threads_per_worker=1, dashboard_address=None)
        try:
            client = Client(address)
        except (OSError, ValueError) as error:
            parser.exit(1, f"{address}: no scheduler answers there: {error}\n")
        with client:
            failed = run(client, work, arguments.size)
    print(f"{len(work) - failed} made, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
