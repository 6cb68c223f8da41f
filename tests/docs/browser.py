"""A headless Chromium for pages from the disk, and the pictures that it and the command line make."""
import base64
import json
import pathlib
import re
import subprocess
import zlib

from PIL import Image
from selenium import webdriver
from selenium.webdriver.support.ui import WebDriverWait

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGES = ROOT / "build/docs/html"
KIRVO = ROOT / "build/native/kirvo"

# The picture of a canvas as its size and the CRC-32 of its red, green and blue bytes.
CHECKSUM = """
const crcTable = new Uint32Array(256).map((_, n) => {
    for (let k = 0; k < 8; ++k) n = n & 1 ? 0xEDB88320 ^ (n >>> 1) : n >>> 1;
    return n;
});
window.pictureOf = canvas => {
    const {width, height} = canvas;
    const {data} = canvas.getContext("2d").getImageData(0, 0, width, height);
    let crc = -1;
    for (let i = 0; i < data.length; ++i)
        if (i % 4 < 3) crc = crcTable[(crc ^ data[i]) & 255] ^ (crc >>> 8);
    return [width, height, (crc ^ -1) >>> 0];
};
// What the page shows once it has followed a change.
window.shown = async () => {
    await new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)));
    const told = document.querySelector(".panel > .told");
    return {error: told.classList.contains("wrong") ? told.textContent : "",
            picture: pictureOf(document.querySelector("canvas.after"))};
};
window.put = (field, value) => {
    field.value = value;
    field.dispatchEvent(new Event(field.tagName === "SELECT" ? "change" : "input", {bubbles: true}));
};
"""


class Browser:
    def __init__(self, width=1280):
        chosen = webdriver.ChromeOptions()
        for option in ("--headless=new", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                       "--disable-dev-shm-usage"):
            chosen.add_argument(option)
        chosen.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(options=chosen)
        self.driver.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": 900, "deviceScaleFactor": 1, "mobile": False})
        self.look(False)

    def look(self, dark):
        self.driver.execute_cdp_cmd("Emulation.setEmulatedMedia", {"features": [
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"}]})

    def open(self, page):
        self.driver.get("about:blank")  # a change behind # alone would load nothing
        self.driver.get(f"file://{PAGES}/{page}")

    def open_live(self, page):
        """Opens a page and waits until it runs; what the page says of when that was."""
        self.open(page)
        WebDriverWait(self.driver, 60, 0.02).until(
            lambda _: self.run("return document.querySelector('.live.runs') !== null"))
        self.run(CHECKSUM)
        return int(self.run("return document.querySelector('.live').dataset.milliseconds"))

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def wait(self, script, *arguments):
        """The value of an asynchronous function's body."""
        self.driver.set_script_timeout(120)
        result = self.driver.execute_async_script(
            f"const done = arguments[arguments.length - 1]; (async () => {{ {script} }})()"
            ".then(value => done({value}), error => done({error: String(error)}));", *arguments)
        assert "error" not in result, result
        return result.get("value")

    def complaints(self):
        return [entry["message"] for entry in self.driver.get_log("browser")
                if entry["level"] == "SEVERE"]

    def requests(self):
        """The addresses of all that pages have asked for."""
        messages = [json.loads(entry["message"])["message"]
                    for entry in self.driver.get_log("performance")]
        return [message["params"]["request"]["url"] for message in messages
                if message["method"] == "Network.requestWillBeSent"]

    def quit(self):
        self.driver.quit()


def data_of(script, name):
    """What a script of the pages gives a constant."""
    text = (PAGES / script).read_text()
    return json.loads(re.search(rf"^const {name} = (.*);$", text, re.MULTILINE)[1])


def write_samples(folder):
    for name, content in data_of("samples.js", "samples").items():
        (folder / f"{name}.jpg").write_bytes(base64.b64decode(content))


def native(folder, source, *options):
    """Size and checksum of what the command line makes, or its words."""
    made = subprocess.run(
        [KIRVO, "--quiet", "--force", "convert", "--decoder", "kirvo", source, "made.bmp", *options, "--depth", "24"],
        cwd=folder, capture_output=True, text=True)
    return made.stderr if made.returncode else picture_of(folder / "made.bmp")


def picture_of(file):
    image = Image.open(file).convert("RGB")
    return [image.width, image.height, zlib.crc32(image.tobytes())]
