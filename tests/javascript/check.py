#!/usr/bin/env python3
"""The package for JavaScript: check.py CHECK FOLDER OF THE PACKAGE LIBRARY

The library is the native one, whose results are those of WebAssembly, byte for byte.
"""
import contextlib
import functools
import http.server
import json
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import threading

HERE = pathlib.Path(__file__).parent
PACKAGE, LIBRARY = (pathlib.Path(argument).resolve() for argument in sys.argv[2:4])
sys.dont_write_bytecode = True


def run(*command, **environment):
    subprocess.run(list(map(str, command)), check=True, env={**os.environ, **environment})


def recording(folder, seed, steps):
    """Calls and what the native library did, as a script."""
    path = folder / f"recorded_{seed}.js"
    with path.open("w") as out:
        subprocess.run(["/usr/bin/python3", HERE / "record.py", LIBRARY, str(seed), str(steps)], check=True,
                       stdout=out)
    return path


def check_node(folder):
    """Random calls in Node: each build of the package, each level."""
    assert (PACKAGE / "kirvo.wasm").stat().st_size < 400 * 1024
    for seed, module, level in ((1, "kirvo.mjs", "wasm"), (2, "kirvo-embedded.mjs", "wasm"),
                                (3, "kirvo.js", "scalar")):
        run("node", HERE / "replay_node.mjs", PACKAGE / module, recording(folder, seed, 20000), KIRVO_CPU=level)


def check_layer(folder):
    """What pictures promise."""
    run("node", "--expose-gc", HERE / "layer_test.mjs", KIRVO_PACKAGE=str(PACKAGE))


def check_types(folder):
    """A program in TypeScript is accepted; that its mistakes are not, it says itself."""
    (folder / "node_modules").mkdir()
    (folder / "node_modules/kirvo-wasm").symlink_to(PACKAGE)
    options = ["--strict", "--noEmit", "--target", "es2022", "--module", "node16", "--moduleResolution",
               "node16", "--lib", "es2022,dom"]
    (folder / "package.json").write_text('{"type": "module"}')
    shutil.copy(HERE / "program.ts", folder)
    run("tsc", *options, folder / "program.ts")


def check_browser(folder):
    """The same in Chromium: from a page on the disk, and by the modules of a server."""
    from selenium import webdriver
    page = (HERE / "page.html").read_text()
    disk = folder / "disk.html"
    disk.write_text(page.replace("@package@", PACKAGE.as_uri()).replace("@tests@", HERE.as_uri())
                    .replace("@recorded@", recording(folder, 4, 20000).as_uri()))
    shutil.copytree(PACKAGE, folder / "package")
    shutil.copy(HERE / "replay.js", folder)
    shutil.copy(HERE / "modules.html", folder)
    options = webdriver.ChromeOptions()
    for option in ("--headless=new", "--no-sandbox", "--disable-dev-shm-usage", "--disable-gpu",
                   f"--user-data-dir={folder}/profile"):
        options.add_argument(option)
    with served(folder) as address, webdriver.Chrome(options=options) as driver:
        driver.set_script_timeout(120)
        for url in (disk.as_uri(), f"{address}/modules.html"):
            driver.get(url)
            found = driver.execute_async_script(
                "window.finished.then(arguments[0], error => arguments[0](String(error)))")
            assert found == [], f"{url}: {json.dumps(found, indent=1)}"


@contextlib.contextmanager
def served(folder):
    """The address of a server of this folder."""
    handler = functools.partial(Quiet, directory=folder)
    with http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler) as server:
        threading.Thread(target=server.serve_forever, daemon=True).start()
        yield f"http://127.0.0.1:{server.server_address[1]}"
        server.shutdown()


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


with tempfile.TemporaryDirectory() as made_for_this:
    globals()[f"check_{sys.argv[1]}"](pathlib.Path(made_for_this))
