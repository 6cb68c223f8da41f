#!/usr/bin/env python3
"""Changes one thing in the source at a time and looks whether a test fails: mutants.py PATH COUNT SEED

Works on a copy of the tree in build/mutants, which has a build of its own. Which changes are made,
and in which order, depends on the path and the seed alone; what became of each is kept in
build/mutants/results.json, and a change that a test has noticed is not made again. One that none has
noticed is a survivor, but for those that tests/mutants/harmless.txt names with the reason why they
change nothing. Ends with 1 when there is a survivor.
"""

import hashlib
import json
import random
import re
import subprocess
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
WORK = SOURCE / "build" / "mutants"
TREE = WORK / "tree"
RESULTS = WORK / "results.json"
HARMLESS = Path(__file__).with_name("harmless.txt")
TEST_SECONDS, BUILD_SECONDS = 300, 1800

LIBRARY = ("kirvo_kernel_tests kirvo_internal_simd_tests kirvo_internal_image_tests "
           "kirvo_internal_effects_tests kirvo_internal_jpeg_tests kirvo_internal_reduce_tests "
           "kirvo_internal_formats_tests kirvo_internal_files_tests kirvo_image_tests "
           "kirvo_effects_tone_tests kirvo_effects_filter_tests kirvo_effects_geometry_tests "
           "kirvo_effects_compose_tests kirvo_effects_draw_tests kirvo_reduce_tests "
           "kirvo_jpeg_tests kirvo_formats_tests kirvo_interface_tests kirvo_safety_tests")


class Suite:
    """The tests of a part of the source: first those that fail most likely, then the others."""

    def __init__(self, folder, preset, first, *others):
        self.folder, self.preset, self.stages = folder, preset, (first, *others)


# The first whose folder a path lies in. A stage is programs to be built and run, or tests of CTest by
# a pattern with what has to be built for them.
SUITES = (
    Suite("src/simd", "native", "kirvo_kernel_tests", LIBRARY),
    Suite("src/jpeg", "native", "kirvo_internal_jpeg_tests kirvo_jpeg_tests", LIBRARY),
    Suite("src/formats", "native", "kirvo_internal_formats_tests kirvo_formats_tests", LIBRARY),
    Suite("src/reduce", "native", "kirvo_internal_reduce_tests kirvo_reduce_tests", LIBRARY),
    Suite("src/image", "native", "kirvo_internal_image_tests kirvo_image_tests", LIBRARY),
    Suite("src", "native", LIBRARY),
    Suite("files/windows", "win32", "kirvo_files_tests"),
    Suite("files", "native", "kirvo_internal_pictures_tests kirvo_files_tests",
          "ctest: kirvo_files_real|kirvo_world: kirvo_files kirvo_tool kirvo_sample"),
    Suite("tools", "native", "kirvo_tool_tests",
          "ctest: kirvo_tool|kirvo_readme|kirvo_world: kirvo_tool kirvo_sample kirvo_tool_tests"),
    Suite("viewer", "win32", "kirvo_viewer_tests"),
    Suite("bindings/python", "native", "ctest: kirvo_layer_(python|effects)|bindings_python: kirvo kirvo_files"),
    Suite("bindings/csharp", "native", "ctest: kirvo_layer_(csharp|effects)|bindings_csharp: kirvo kirvo_files"),
    Suite("bindings/pascal", "native", "ctest: kirvo_layer_(pascal|effects)|bindings_pascal: kirvo kirvo_files"),
    Suite("include", "native", "ctest: kirvo_layer_(cpp|effects): kirvo kirvo_files"),
)
ENDINGS = (".cpp", ".hpp", ".py", ".cs", ".pas")

# What is changed into what. Spaces tell operators from templates and pointers.
CHANGES = [(re.compile(pattern), replacements) for pattern, replacements in (
    (r"(?<= )<(?= )", ["<="]), (r"(?<= )<=(?= )", ["<"]),
    (r"(?<= )>(?= )", [">="]), (r"(?<= )>=(?= )", [">"]),
    (r"(?<= )==(?= )", ["!="]), (r"(?<= )!=(?= )", ["=="]),
    (r"(?<= )&&(?= )", ["||"]), (r"(?<= )\|\|(?= )", ["&&"]),
    (r"(?<= )and(?= )", ["or"]), (r"(?<= )or(?= )", ["and"]),
    (r"(?<= )\+(?= )", ["-"]), (r"(?<= )-(?= )", ["+"]), (r"(?<= )\*(?= )", ["+"]),
    (r"(?<= )<<(?= )", [">>"]), (r"(?<= )>>(?= )", ["<<"]),
    (r"(?<= )\+=(?= )", ["-="]), (r"(?<= )-=(?= )", ["+="]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]),
    (r"(?<![\w.\"'])\d+(?![\w.\"'])", ["+1", "-1"]),
)]
NO_CODE = re.compile(r"\s*(//|#|\*|\(\*|static_assert|template|using |namespace |import |from |\"\"\")")


def code_of(line):
    """The line with texts and its comment blanked out, of the same length."""
    line = re.sub(r"\"(\\.|[^\"\\])*\"|'(\\.|[^'\\])*'", lambda m: " " * len(m[0]), line)
    return re.sub(r"//.*", lambda m: " " * len(m[0]), line)


def changes_of(path):
    for number, line in enumerate(path.read_text().split("\n")):
        if NO_CODE.match(line):
            continue
        code = code_of(line)
        for pattern, replacements in CHANGES:
            for match in pattern.finditer(code):
                for replacement in replacements:
                    text = replacement
                    if text in ("+1", "-1"):
                        value = int(match[0]) + int(text)
                        if value < 0:
                            continue
                        text = str(value)
                    yield number, line, line[:match.start()] + text + line[match.end():]


def run(command, seconds, **options):
    try:
        return subprocess.run(command, timeout=seconds, cwd=TREE, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace", **options)
    except subprocess.TimeoutExpired as late:
        return subprocess.CompletedProcess(command, -1, "took too long\n" + str(late.stdout or ""))


def build_folder(suite):
    return TREE / "build" / suite.preset


def ninja(suite, programs):
    return run(["cmake", "--build", build_folder(suite), "--target", *programs], BUILD_SECONDS)


def runs(suite, program):
    emulator = ["script/wine", "32"] if suite.preset == "win32" else []
    ending = ".exe" if suite.preset == "win32" else ""
    path = build_folder(suite) / (program + ending)
    command = [*emulator, str(path), "--gtest_brief=1", "--gtest_fail_fast"]
    return run(["timeout", str(TEST_SECONDS), *command], TEST_SECONDS + 30)


def failing_test(suite, stage, expected):
    """The first test of a stage that fails, or what does not build; None when all pass. Programs
    that came out byte for byte as before need no run."""
    if stage.startswith("ctest: "):
        _, pattern, targets = stage.split(": ")
        if ninja(suite, targets.split()).returncode != 0:
            return "the compiler"
        result = run(["ctest", "--test-dir", build_folder(suite), "-R", pattern,
                      "--stop-on-failure"], BUILD_SECONDS)
        return None if result.returncode == 0 else pattern
    programs = stage.split()
    if ninja(suite, programs).returncode != 0:
        return "the compiler"
    for program in programs:
        if expected is None or digest_of(suite, program) != expected.get(program):
            if runs(suite, program).returncode != 0:
                return program
    return None


def digest_of(suite, program):
    """Of the program and the libraries that it loads."""
    digest = hashlib.sha256()
    for name in (program, program + ".exe", "libkirvo.so", "libkirvofiles.so", "Kirvo.dll",
                 "KirvoFiles.dll", "kirvo"):
        file = build_folder(suite) / name
        if file.is_file():
            digest.update(file.read_bytes())
    return digest.hexdigest()


def copy_tree():
    """Files of the project, those that have changed only, so that little is built again."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=SOURCE,
                           stdout=subprocess.PIPE, check=True).stdout.decode().split("\0")
    for name in filter(None, names):
        source, copy = SOURCE / name, TREE / name
        if source.is_file() and (not copy.exists() or copy.read_bytes() != source.read_bytes()):
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(source.read_bytes())
            copy.chmod(source.stat().st_mode)


def harmless():
    """File, and the line as it is and as it becomes, without spaces; behind them the reason."""
    known = set()
    if HARMLESS.exists():
        for block in HARMLESS.read_text().split("\n\n"):
            lines = [line for line in block.split("\n") if line and not line.startswith("#")]
            if len(lines) >= 3:
                known.add((lines[0].strip(), squeezed(lines[1]), squeezed(lines[2])))
    return known


def squeezed(line):
    return re.sub(r"\s+", "", line)


def main():
    path, count, seed = SOURCE / sys.argv[1], int(sys.argv[2]), sys.argv[3]
    name = str(path.relative_to(SOURCE))
    suite = next((suite for suite in SUITES if name.startswith(suite.folder)), None)
    if suite is None or not path.exists():
        sys.exit(f"no tests are known for {name}; there are {' '.join(s.folder for s in SUITES)}")
    files = sorted(path.rglob("*")) if path.is_dir() else [path]
    elsewhere = re.compile("_win32$|/windows/" if suite.preset == "native" else "_posix$|/codecs/")
    candidates = [(file.relative_to(SOURCE), *change) for file in files
                  if file.suffix in ENDINGS and not elsewhere.search(str(file.with_suffix("")))
                  for change in changes_of(file)]
    random.Random(f"{name} {seed}").shuffle(candidates)

    copy_tree()
    if not (build_folder(suite) / "build.ninja").exists():
        print("configuring", flush=True)
        if run(["cmake", "--preset", suite.preset], BUILD_SECONDS).returncode != 0:
            sys.exit("the copy cannot be configured")
    print("building and testing the source as it is", flush=True)
    expected = {}
    for stage in suite.stages:
        if (failure := failing_test(suite, stage, None)) is not None:
            sys.exit(f"without any change {failure} fails")
        if not stage.startswith("ctest: "):
            expected.update({program: digest_of(suite, program) for program in stage.split()})

    results = json.loads(RESULTS.read_text()) if RESULTS.exists() else {}
    reasons = harmless()
    survivors = killed = same = explained = 0
    for file, number, line, changed in candidates[:count]:
        key = f"{file}|{squeezed(line)}|{squeezed(changed)}|{number + 1}"
        if results.get(key, "survives") == "survives" and (
                str(file), squeezed(line), squeezed(changed)) in reasons:
            explained += 1
            continue
        outcome = results.get(key)
        if outcome in (None, "survives"):
            outcome = try_change(suite, TREE / file, number, changed, expected)
            results[key] = outcome
            RESULTS.write_text(json.dumps(results, indent=0))
        if outcome == "survives":
            survivors += 1
            print(f"{file}:{number + 1}: no test notices\n  {line.strip()}\n  {changed.strip()}",
                  flush=True)
        elif outcome == "the same programs":
            same += 1
        else:
            killed += 1
    print(f"{name}: {killed} noticed, {survivors} not noticed, {same} make the same programs, "
          f"{explained} known to change nothing")
    return 1 if survivors else 0


def try_change(suite, file, number, changed, expected):
    original = file.read_text()
    lines = original.split("\n")
    lines[number] = changed
    try:
        file.write_text("\n".join(lines))
        programs = [program for program in suite.stages[0].split()
                    if not suite.stages[0].startswith("ctest: ")]
        if programs and ninja(suite, programs).returncode == 0 and all(
                digest_of(suite, program) == expected.get(program) for program in programs):
            if not any(stage.startswith("ctest: ") for stage in suite.stages):
                return "the same programs"
        for stage in suite.stages:
            if (failure := failing_test(suite, stage, expected)) is not None:
                return failure
        return "survives"
    finally:
        file.write_text(original)


sys.exit(main())
