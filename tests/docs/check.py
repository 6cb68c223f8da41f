#!/usr/bin/env python3
"""The pages in a browser: check.py GROUP. Live pages against the command line, to the byte."""
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile
import unittest

from PIL import Image

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "docs"))
import annotate
from browser import KIRVO, PAGES, ROOT, Browser, data_of, native, picture_of, write_samples

CATALOGUE = data_of("catalogue.js", "catalogue")

# Every slider at its ends and in its middle, every word of every list: the values that the page then
# shows with what it makes of them.
EACH_CONTROL = """
const all = [];
const note = async () => {
    const what = await shown();
    all.push({values: readAddress().get("values") ?? "", ...what});
};
await note();
for (const field of document.querySelectorAll(".fields input[type=range], .fields select")) {
    const before = field.value;
    const values = field.tagName === "SELECT" ? [...field.options].map(option => option.value)
        : [field.min, (Number(field.min) + Number(field.max)) / 2, field.max];
    for (const value of values) {
        put(field, value);
        await note();
    }
    put(field, before);
}
return all;
"""


def page_of(effect):
    return f"effect_{effect['option'][2:].replace('-', '_')}.html"


def options_of(effect, values):
    own = [effect["option"], *([values] if effect["values"] else [])]
    return own + [word for step in effect.get("behind", []) for word in step]


class Case(unittest.TestCase):
    WIDTH = 1280

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser(cls.WIDTH)
        cls.addClassCleanup(cls.browser.quit)
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name)
        write_samples(cls.folder)

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])
        away = [url for url in self.browser.requests()
                if not re.match(r"file://|data:|blob:|about:", url)]
        self.assertEqual(away, [], "requests that leave the machine")


class Effects(Case):
    def test_every_page_shows_what_the_command_line_makes(self):
        count = 0
        for effect in CATALOGUE:
            self.browser.open_live(page_of(effect))
            for shown in self.browser.wait(EACH_CONTROL):
                with self.subTest(effect=effect["option"], values=shown["values"]):
                    expected = native(self.folder, f"{effect['picture']}.jpg",
                                      *options_of(effect, shown["values"]))
                    if shown["error"]:
                        self.assertIsInstance(expected, str, shown["error"])  # refused there too
                    else:
                        self.assertEqual(shown["picture"], expected)
                count += 1
        self.assertGreater(count, 200)

    def test_the_first_effect_is_usable_within_a_second(self):
        self.assertLess(min(self.browser.open_live("effect_brightness.html") for _ in range(5)), 1000)

    def test_without_webassembly_the_still_pictures_stay(self):
        hidden = self.browser.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {
            "source": "delete window.WebAssembly"})
        self.addCleanup(self.browser.driver.execute_cdp_cmd,
                        "Page.removeScriptToEvaluateOnNewDocument", hidden)
        self.browser.open("effect_blur.html")
        told = self.browser.wait("""
            while (!document.querySelector(".live > .told")) await new Promise(go => setTimeout(go, 20));
            const still = document.querySelector(".still");
            return [document.querySelector(".live > .told").textContent, still.offsetHeight,
                    [...still.querySelectorAll("img")].every(image => image.naturalWidth > 0)];""")
        self.assertIn("does not run", told[0])
        self.assertGreater(told[1], 100)
        self.assertTrue(told[2])


class Code(Case):
    """The code beside the pictures is what a compiler and an interpreter take."""

    # All languages, for each effect as its page begins.
    ALL = """
        const codes = [];
        const engine = await Engine.start();
        const take = name => PictureChoice.sample(engine, name);
        engine.setPicture(take("other"), "other.jpg");
        engine.setPicture(take("small"), "small.jpg");
        for (const effect of catalogue) {
            engine.setPicture(take(effect.picture));
            const {error} = engine.run([[effect.option, effect.first], ...(effect.behind ?? [])]);
            if (error) throw new Error(effect.option + ": " + error);
            const code = {};
            for (const language of engine.languages) code[language.name] = engine.code(language);
            codes.push([effect.option, code, engine.commandLine("in.jpg")]);
        }
        return codes;"""

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.browser.open_live("play.html")
        cls.codes = cls.browser.wait(cls.ALL)

    def test_there_is_some_in_six_languages_for_every_effect(self):
        self.assertEqual(len(self.codes), len(CATALOGUE))
        for option, code, line in self.codes:
            with self.subTest(option=option):
                self.assertEqual(set(code), {"C", "C++", "C#", "Delphi", "Visual Basic", "Python"})
                self.assertEqual({language for language, text in code.items() if not text}, set())
                self.assertIn(option, line)

    def wrapped(self, language, before, behind):
        return "".join(f"{before.format(i)}\n{code[language]}{behind}\n"
                       for i, (_, code, _) in enumerate(self.codes))

    def compile(self, name, text, *command):
        (self.folder / name).write_text(text)
        made = subprocess.run([*command, name], cwd=self.folder, capture_output=True, text=True)
        self.assertEqual(made.returncode, 0, made.stdout + made.stderr)

    def test_c_compiles(self):
        self.compile("code.c", "#include <kirvo_files.h>\n" + self.wrapped(
            "C", "int32_t step{}(HGLOBAL dib)\n{{", "return status;\n}"),
            "gcc", "-std=c99", "-fsyntax-only", f"-I{ROOT}/include")

    def test_cpp_compiles(self):
        self.compile("code.cpp", "#include <kirvo.hpp>\n" + self.wrapped(
            "C++", "void step{}(kirvo::Image dib)\n{{", "}"),
            "g++", "-std=c++17", "-fsyntax-only", f"-I{ROOT}/include")

    def test_csharp_compiles(self):
        text = self.wrapped("C#", "static void Step{}(IntPtr dib) {{", "}")
        self.compile("code.cs", f"using System;\nusing KirvoImaging;\nclass Steps {{\n{text}}}\n",
                     "mcs", "-target:library", "-out:code.dll", f"{ROOT}/bindings/csharp/Kirvo.cs",
                     f"{ROOT}/bindings/csharp/KirvoFiles.cs")

    def test_pascal_compiles(self):
        text = self.wrapped("Delphi", "procedure Step{}(dib: HGLOBAL);", "")
        self.compile("code.pas", "{$MODE DELPHI}\nunit code;\ninterface\nuses Kirvo, KirvoFiles;\nimplementation\n"
                     f"{text}end.\n", "fpc", "-Cn", f"-Fu{ROOT}/bindings/pascal", "-FU.", "-v0e")

    def test_python_makes_what_the_command_line_makes(self):
        program = ROOT / "tests/docs/run_code.py"
        for effect, (option, code, _) in zip(CATALOGUE, self.codes):
            with self.subTest(option=option):
                (self.folder / "code.py").write_text(code["Python"])
                subprocess.run([sys.executable, program, "code.py", f"{effect['picture']}.jpg"],
                               cwd=self.folder, check=True)
                self.assertEqual(picture_of(self.folder / "python.bmp"),
                                 native(self.folder, f"{effect['picture']}.jpg",
                                        *options_of(effect, effect["first"])))


class Pictures(Case):
    def setUp(self):
        image = Image.frombytes("RGB", (64, 48), bytes(i * 37 % 256 for i in range(64 * 48 * 3)))
        image.save(self.folder / "own.png")
        self.expected = native(self.folder, "own.png", "--negative")
        self.browser.open_live("effect_negative.html")

    def settled(self):
        return self.browser.wait("""
            while (!document.querySelector(".choice .told").textContent.includes("64 × 48"))
                await new Promise(go => setTimeout(go, 20));
            return [(await shown()).picture, document.querySelector(".choice .told").textContent];""")

    def test_one_that_is_chosen_is_worked_on(self):
        self.browser.driver.find_element("css selector", ".choice input[type=file]").send_keys(
            str(self.folder / "own.png"))
        picture, told = self.settled()
        self.assertEqual(picture, self.expected)
        self.assertIn("stays on your machine", told)

    def test_one_that_is_dropped_is_worked_on(self):
        content = (self.folder / "own.png").read_bytes()
        self.browser.run("""
            const carried = new DataTransfer();
            carried.items.add(new File([new Uint8Array(arguments[0])], "own.png", {type: "image/png"}));
            document.body.dispatchEvent(new DragEvent("drop",
                {dataTransfer: carried, bubbles: true, cancelable: true}));""", list(content))
        self.assertEqual(self.settled()[0], self.expected)

    def test_what_is_no_picture_is_told(self):
        (self.folder / "no.png").write_text("no picture")
        self.browser.driver.find_element("css selector", ".choice input[type=file]").send_keys(
            str(self.folder / "no.png"))
        told = self.browser.wait("""
            const told = document.querySelector(".choice .told");
            while (!told.textContent.includes("no.png")) await new Promise(go => setTimeout(go, 20));
            return told.textContent;""")
        self.assertIn("no picture that this browser reads", told)


class Links(Case):
    def test_a_kept_link_leads_back_to_its_values_and_picture(self):
        self.browser.open_live("effect_tone.html")
        self.browser.run("put(document.querySelectorAll('.fields input[type=number]')[1], '0.35')")
        self.browser.run("put(document.querySelector('.choice select'), 'landscape')")
        before = self.browser.wait("return [(await shown()).picture, location.hash]")
        self.browser.open_live("effect_tone.html" + before[1])
        after = self.browser.wait("return [(await shown()).picture, location.hash]")
        self.assertEqual(before, after)
        self.assertEqual(before[0], native(self.folder, "landscape.jpg", "--tone", "1.2,0.35,0.7"))

    def test_a_link_that_makes_no_sense_does_no_harm(self):
        for page in ("effect_gamma.html#values=%27%3Cb%3E,,x&picture=none", "play.html#steps=%5B%7B"):
            self.browser.open_live(page)


class Play(Case):
    def press(self, text):
        self.browser.run("""[...document.querySelectorAll('.live button')]
            .find(button => button.textContent === arguments[0]
                         || button.getAttribute('aria-label') === arguments[0]).click()""", text)
        return self.browser.wait("return (await shown()).picture")

    def add(self, option):
        self.browser.run("put(document.querySelector('.panel > .buttons select'), arguments[0])", option)
        return self.press("Add")

    def test_a_chain_is_changed_undone_and_taken_along(self):
        self.browser.open_live('play.html#steps=[["negative",""]]&picture=portrait')
        expect = lambda *options: native(self.folder, "portrait.jpg", *options)
        first = self.browser.wait("return (await shown()).picture")
        self.assertEqual(first, expect("--negative"))
        added = self.add("--rotate")
        self.assertEqual(added, expect("--negative", "--rotate", "90"))
        self.assertEqual(self.add("--mosaic"), expect("--negative", "--rotate", "90", "--mosaic", "12"))
        moved = self.press("Earlier: Mosaic")
        self.assertEqual(moved, expect("--negative", "--mosaic", "12", "--rotate", "90"))
        self.assertEqual(self.press("Undo"), expect("--negative", "--rotate", "90", "--mosaic", "12"))
        self.assertEqual(self.press("Redo"), moved)
        self.assertEqual(self.press("Remove: Negative"), expect("--mosaic", "12", "--rotate", "90"))
        line = self.browser.wait("""
            const tabs = [...document.querySelectorAll('[role=tab]')];
            tabs.find(tab => tab.textContent === "Command line").click();
            return document.querySelector('[role=tabpanel]').textContent;""")
        words = shlex.split(line)
        self.assertEqual(words[:2], ["kirvo", "convert"])
        self.assertEqual(expect(*words[4:]), expect("--mosaic", "12", "--rotate", "90"))
        self.assertEqual(self.saved(), expect("--mosaic", "12", "--rotate", "90"))
        self.press("Undo")
        self.press("Undo")
        self.press("Undo")
        self.assertEqual(self.press("Undo"), first)

    def saved(self):
        """The PNG file that the button saves."""
        driver = self.browser.driver
        driver.execute_cdp_cmd("Browser.setDownloadBehavior", {
            "behavior": "allow", "downloadPath": str(self.folder)})
        self.press("Save as PNG")
        file = self.folder / "portrait-changed.png"
        self.browser.wait("await new Promise(go => setTimeout(go, 1500))")
        return picture_of(file)

    def test_the_histogram_counts_every_pixel(self):
        self.browser.open_live('play.html#steps=[]')
        counts = self.browser.wait("""
            const engine = await Engine.start();
            engine.setPicture(PictureChoice.sample(engine, "landscape"));
            engine.run([]);
            return [0, 1, 2].map(i => engine.histogram().slice(256 * i, 256 * i + 256)
                .reduce((sum, count) => sum + count, 0));""")
        self.assertEqual(counts, [600 * 400] * 3)

    def test_what_fails_names_its_effect_and_keeps_the_others(self):
        self.browser.open_live('play.html#steps=[["negative",""],["crop","500,0,200,10"]]')
        shown = self.browser.wait("return await shown()")
        self.assertIn("Crop: the rectangle leaves the picture", shown["error"])
        self.assertEqual(shown["picture"], native(self.folder, "landscape.jpg", "--negative"))

    def test_keys_move_divider_tabs_and_sliders(self):
        self.browser.open_live("effect_brightness.html")
        driver = self.browser.driver
        divider = driver.find_element("css selector", ".divider")
        before = self.browser.run("return arguments[0].value", divider)
        divider.send_keys("\ue014\ue014")  # arrow right
        self.assertNotEqual(self.browser.run("return arguments[0].value", divider), before)
        slider = driver.find_element("css selector", ".fields input[type=range]")
        slider.send_keys("\ue014")
        self.assertEqual(self.browser.run(
            "return document.querySelector('.fields input[type=number]').value"), "31")
        tab = driver.find_element("css selector", "[role=tab]")
        tab.click()
        tab.send_keys("\ue014")
        self.assertEqual(self.browser.run("return document.activeElement.textContent"), "C++")


class Search(Case):
    def setUp(self):
        self.browser.open("index.html")

    def found(self, typed):
        """Titles and places of what the list shows, as a person sees it."""
        field = self.browser.driver.find_element("id", "search")
        field.clear()
        field.send_keys(typed)
        return self.browser.run("""
            return [...document.querySelectorAll("#found a")]
                .map(link => [link.firstChild.textContent, link.getAttribute("href")])""")

    def test_words_that_people_type_lead_where_they_should(self):
        for typed, wanted in {
            "crop": "Crop", "gray": "Mono", "grayscale": "Mono", "grey": "Mono", "thumbnail": "Fit",
            "resize": "Resize", "display": "The first picture in a window", "colour": "Colours",
            "color": "Colours", "unicode": "KirvoFilesOpenW", "c#": "C# and .NET", "C#": "C# and .NET",
            "delphi": "Delphi, Free Pascal, Lazarus", "png": "Any picture file",
            "decode": "JpgDecMainEx", "encode": "JpgCodMainEx", "free": "Ownership",
        }.items():
            with self.subTest(typed=typed):
                found = self.found(typed)
                self.assertTrue(found)
                self.assertEqual(found[0][0], wanted, found)

    def test_numbers_of_statuses_lead_to_them(self):
        for _, name, number in annotate.codes():
            if int(number) < 0:
                for typed in (number, number.replace("-", "−")):
                    self.assertEqual(self.browser.run("return find(arguments[0])[0].title", typed), name)
        self.assertEqual(self.found("-7"), [["No status has the number -7", "group__status.html"]])

    def test_every_exported_name_leads_to_itself(self):
        names = [*annotate.functions(), *(name for _, name, _ in annotate.codes())]
        exported = re.findall(r"^\s+(\w+)$", (ROOT / "kirvo.def").read_text(), re.MULTILINE)
        self.assertEqual(set(exported) - set(names), set())
        firsts = self.browser.run(
            "return arguments[0].map(name => [find(name)[0]?.title, find(name.toLowerCase())[0]?.title])",
            names)
        for name, first in zip(names, firsts):
            self.assertEqual(first, [name, name])

    def test_nothing_found_is_said(self):
        found = self.found("qwertz")
        self.assertEqual(found, [["Nothing found for “qwertz”", "modules.html"]])

    def test_every_place_exists(self):
        entries = data_of("entries.js", "entries")
        anchors = {}
        for title, _, place, _ in entries:
            page, _, anchor = place.partition("#")
            if page not in anchors:
                anchors[page] = set(re.findall(r'id="([^"]+)"', (PAGES / page).read_text()))
            self.assertTrue(not anchor or anchor in anchors[page], (title, place))


class Screens(Case):
    WIDTH = 390

    def test_no_page_is_wider_than_a_phone(self):
        for page in sorted(path.name for path in PAGES.glob("*.html")):
            self.browser.open(page)
            width = self.browser.run("return document.documentElement.scrollWidth")
            self.assertLessEqual(width, 390, page)

    def test_every_link_and_picture_of_the_pages_is_there(self):
        for path in PAGES.glob("*.html"):
            for target in re.findall(r'(?:href|src|data)="([^"#:]+)(?:#[^"]*)?"', path.read_text()):
                self.assertTrue((PAGES / target).exists(), f"{path.name}: {target}")

    def test_the_whole_is_small(self):
        size = sum(path.stat().st_size for path in PAGES.rglob("*") if path.is_file())
        self.assertLess(size, 6_000_000)


class Accessibility(Case):
    PAGES = ("index.html", "guide.html", "guide_windows.html", "effects.html", "effect_hue.html",
             "effect_kernel.html", "effect_crop.html", "play.html", "group__status.html",
             "group__filter.html", "languages.html", "command_line.html", "modules.html")

    def test_axe_finds_nothing_serious(self):
        axe = (ROOT / "build/docs/axe/package/axe.min.js").read_text()
        for dark in (False, True):
            self.browser.look(dark)
            for page in self.PAGES:
                (self.browser.open_live if page.startswith(("effect_", "play")) else self.browser.open)(page)
                if page == "index.html":
                    self.browser.driver.find_element("id", "search").send_keys("decode")
                self.browser.run(axe)
                found = self.browser.wait("""
                    const {violations} = await axe.run({preload: false});
                    return violations.filter(one => ["serious", "critical"].includes(one.impact))
                        .map(one => [one.id, one.nodes.map(node => node.target.join(" ")).slice(0, 5)]);""")
                with self.subTest(page=page, dark=dark):
                    self.assertEqual(found, [])


if __name__ == "__main__":
    unittest.main(verbosity=2)
