#!/usr/bin/env python3
"""Changes one thing in the source at a time and looks whether a test fails: mutants.py PATH COUNT SEED

Works on a copy of the tree in build/mutants, one for each room (the object layers share theirs), with
a build of its own, so that two rooms can be at work side by side; ccache spares them most of each
other's compiling. What script/bindings writes is changed where it was written to: the templates have
the same lines, and that both agree is a test of its own, left out here. Which changes are made, and in which order,
depends on the path and the seed alone; what became of each is kept beside the copy in results.json,
and a change that a test has noticed is not made again. One that none has noticed is a survivor, but
for those that tests/mutants/harmless.txt names with the reason why they change nothing. Ends with 1
when there is a survivor.
"""

import fcntl
import hashlib
import json
import os
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
HARMLESS = Path(__file__).with_name("harmless.txt")
# What hangs is ended after so much time of the processor, or of the clock.
PROCESSOR_SECONDS, SECONDS = 120, 1800
LINES_ABOVE = 10  # where words tell lines apart that are alike

LIBRARY = ("kirvo_kernel_tests kirvo_internal_simd_tests kirvo_internal_image_tests "
           "kirvo_internal_effects_tests kirvo_internal_jpeg_tests kirvo_internal_reduce_tests "
           "kirvo_internal_formats_tests kirvo_internal_files_tests kirvo_image_tests "
           "kirvo_effects_tone_tests kirvo_effects_filter_tests kirvo_effects_geometry_tests "
           "kirvo_effects_compose_tests kirvo_effects_draw_tests kirvo_reduce_tests "
           "kirvo_jpeg_tests kirvo_formats_tests kirvo_interface_tests kirvo_safety_tests")
BINDINGS = "kirvo kirvo_files kirvo_tool"
LAYERS = f"ctest: kirvo_layer_(depths|effects): {BINDINGS}"


class Suite:
    """The tests of a part of the source: first those that fail most likely, then the others."""

    def __init__(self, folder, preset, *stages):
        self.folder, self.preset, self.stages = folder, preset, stages
        room = folder.split("/")[0]
        self.work = SOURCE / "build" / "mutants" / ("include" if room == "bindings" else room)
        self.tree = self.work / "tree"
        self.build = self.tree / "build" / preset
        self.results = self.work / "results.json"
        self.ready = {}  # stages that pass without a change, with the digests of their programs
        self.files = set()  # in the folder of the build


# The first whose folder a path lies in. A stage is programs to be built and run, each with the tests
# to be left out, if any; or tests of CTest by a pattern, or a command in the folder of the build,
# with what has to be built for them.
SUITES = (
    Suite("src/simd", "native", "kirvo_kernel_tests", LIBRARY),
    Suite("src/jpeg", "native", "kirvo_internal_jpeg_tests kirvo_jpeg_tests", LIBRARY),
    Suite("src/formats", "native", "kirvo_internal_formats_tests kirvo_formats_tests", LIBRARY),
    Suite("src/reduce", "native", "kirvo_internal_reduce_tests kirvo_reduce_tests", LIBRARY),
    Suite("src/image", "native", "kirvo_internal_image_tests kirvo_image_tests", LIBRARY),
    Suite("src", "native", LIBRARY),
    Suite("files/windows", "win32", "kirvo_files_tests"),
    Suite("files", "native", "kirvo_files_tests-*World*", "kirvo_internal_pictures_tests kirvo_files_tests",
          "ctest: kirvo_files_real|kirvo_world: kirvo_files kirvo_tool kirvo_sample"),
    Suite("tools/calls", "native", "ctest: kirvo_view_code: kirvo kirvo_files kirvo_view_code"),
    Suite("tools", "native", "kirvo_tool_tests",
          "ctest: kirvo_tool_[cimp]|kirvo_readme|kirvo_world: kirvo_tool kirvo_sample",
          "run: python3 ../../tests/tool/workers.py ./kirvo Workers: kirvo_tool"),
    Suite("viewer", "win32", "kirvo_viewer_tests-Viewer*",  # without those that take a minute each
          "kirvo_viewer_tests-*Hostile*:*World*:*KeepsNothing*:*EveryEffect*"),
    Suite("bindings/python", "native", LAYERS,
          f"ctest: kirvo_layer_(python|basic)|bindings_python|kirvo_world_python: {BINDINGS}"),
    Suite("bindings/csharp", "native", LAYERS,
          f"ctest: kirvo_layer_csharp|bindings_csharp|kirvo_world_csharp: {BINDINGS}"),
    Suite("bindings/pascal", "native", LAYERS,
          f"ctest: kirvo_layer_pascal|bindings_pascal|kirvo_world_pascal: {BINDINGS}"),
    Suite("bindings/vb", "native", LAYERS,
          f"ctest: kirvo_layer_basic|bindings_basic|kirvo_world_vb: {BINDINGS}"),
    Suite("bindings/javascript", "wasm", "ctest: kirvo_javascript_(layer|types): kirvo_package",
          "ctest: kirvo_javascript_node: kirvo_package"),
    Suite("include", "native", LAYERS, f"ctest: kirvo_layer_cpp|kirvo_world_cpp: {BINDINGS}"),
)
ENDINGS = (".cpp", ".hpp", ".py", ".cs", ".pas", ".cls", ".bas", ".js")

# What a build does not have, and what paints the sample pictures, where nothing is right or wrong.
ELSEWHERE = {"native": re.compile("_win32$|/windows/|/tools/sample/"),
             "win32": re.compile("_posix$|/codecs/|/tools/sample/"), "wasm": re.compile("^$")}

# What is changed into what. Spaces tell operators from templates and pointers.
CHANGES = [(re.compile(pattern), replacements) for pattern, replacements in (
    (r"(?<= )<(?= )", ["<="]), (r"(?<= )<=(?= )", ["<"]),
    (r"(?<= )>(?= )", [">="]), (r"(?<= )>=(?= )", [">"]),
    (r"(?<= )===(?= )", ["!=="]), (r"(?<= )!==(?= )", ["==="]),
    (r"(?<= )==(?= )", ["!="]), (r"(?<= )!=(?= )", ["=="]), (r"(?<= )<>(?= )", ["="]),
    (r"(?<= )&&(?= )", ["||"]), (r"(?<= )\|\|(?= )", ["&&"]),
    (r"(?<= )and(?= )", ["or"]), (r"(?<= )or(?= )", ["and"]),
    (r"(?<= )And(?= )", ["Or"]), (r"(?<= )Or(?= )", ["And"]),
    (r"(?<= )\+(?= )", ["-"]), (r"(?<= )-(?= )", ["+"]), (r"(?<= )\*(?= )", ["+"]),
    (r"(?<= )<<(?= )", [">>"]), (r"(?<= )>>(?= )", ["<<"]),
    (r"(?<= )\+=(?= )", ["-="]), (r"(?<= )-=(?= )", ["+="]),
    (r"\btrue\b", ["false"]), (r"\bfalse\b", ["true"]),
    (r"\bTrue\b", ["False"]), (r"\bFalse\b", ["True"]),
    (r"(?<![\w.\"'])\d+(?![\w.\"'])", ["+1", "-1"]),
)]
NO_CODE = re.compile(r"\s*(//|#|\*|static_assert|template|using |namespace |import |from |@)")

# Comments and texts, which are no code, by the ending of a file.
TEXT = r"\"(?:\\.|[^\"\\\n])*\"|'(?:\\.|[^'\\\n])*'"
NOT_CODE = {ending: re.compile(pattern, re.DOTALL) for ending, pattern in {
    ".js": rf"`[^`]*`|/\*.*?\*/|//[^\n]*|{TEXT}",
    ".py": rf"\"\"\".*?\"\"\"|{TEXT}|\#[^\n]*",
    ".pas": r"\{.*?\}|\(\*.*?\*\)|'[^'\n]*'|//[^\n]*",
    ".cls": r"\"[^\"\n]*\"|'[^\n]*|^(?:VERSION|BEGIN|END|Attribute|  MultiUse)[^\n]*",
    ".bas": r"\"[^\"\n]*\"|'[^\n]*|^Attribute[^\n]*",
}.items()}
IN_C = re.compile(rf"R\"(\w*)\(.*?\)\1\"|/\*.*?\*/|//[^\n]*|{TEXT}", re.DOTALL)


def code_of(path):
    """The text with what is no code blanked out, of the same length."""
    return NOT_CODE.get(path.suffix, IN_C).sub(lambda m: re.sub(r"[^\n]", " ", m[0]), path.read_text())


def changes_of(path):
    lines = path.read_text().split("\n")
    for number, (line, code) in enumerate(zip(lines, code_of(path).split("\n"))):
        if NO_CODE.match(line):
            continue
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


def run(suite, command, emulated=False):
    """A command in the copy, with what it starts; one that hangs is ended with all of it."""
    def apart():
        os.setpgid(0, 0)
        if not emulated:  # what serves Windows programs may go on to serve others
            resource.setrlimit(resource.RLIMIT_CPU, (PROCESSOR_SECONDS, PROCESSOR_SECONDS))

    folder = suite.build if suite.build.exists() else suite.tree
    with subprocess.Popen(list(map(str, command)), cwd=folder, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, preexec_fn=apart) as process:
        try:
            text = process.communicate(timeout=SECONDS)[0]
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            return "took too long"
    return None if process.returncode == 0 else text.decode(errors="replace")[-3000:]


def built(suite, targets):
    return run(suite, ["cmake", "--build", suite.build, "--target", *targets]) is None


def programs_of(stage):
    """The programs of a stage, each with the tests to be left out."""
    return [] if ": " in stage else [word.partition("-")[::2] for word in stage.split()]


def command_of(suite, program, but):
    emulated = suite.preset == "win32"
    return [*([suite.tree / "script/wine", "32"] if emulated else []),
            suite.build / (program + (".exe" if emulated else "")), "--gtest_brief=1",
            "--gtest_fail_fast", f"--gtest_filter=-{but}"]


def fails(suite, command, again):
    """Twice in a row, the second time what has failed: a machine with much to do may be late once."""
    emulated = suite.preset == "win32"
    failure = run(suite, command, emulated)
    return failure is not None and run(suite, again(failure), emulated) is not None


def failed_only(command):
    """The same program with the test that its output names as failed; all of it where none is named."""
    def again(output):
        names = re.findall(r"^\[  FAILED  \] ([\w/]+\.[\w/]+)", output, re.MULTILINE)
        return [*command[:-1], f"--gtest_filter={names[0]}"] if names else command
    return again


def failing_test(suite, stage, expected):
    """The first test of a stage that fails, or what does not build; None when all pass. Programs
    that came out byte for byte as before need no run."""
    if ": " in stage:
        how, what, targets = stage.split(": ")
        if not built(suite, targets.split()):
            return "the compiler"
        command = ["ctest", "--stop-on-failure", "-R", what] if how == "ctest" else what.split()
        again = ["ctest", "--rerun-failed"] if how == "ctest" else command
        return what if fails(suite, command, lambda _: again) else None
    if not built(suite, [program for program, _ in programs_of(stage)]):
        return "the compiler"
    changed = [(program, but) for program, but in programs_of(stage)
               if digest_of(suite, program) != expected.get(program)]
    if not changed and stage == suite.stages[0]:
        return "the same programs"
    for program, but in changed:
        command = command_of(suite, program, but)
        if fails(suite, command, failed_only(command)):
            return program
    return None


def digest_of(suite, program):
    """Of the program and of the libraries and programs that it makes use of."""
    digest = hashlib.sha256()
    for name in (program, program + ".exe", "libkirvo.so", "libkirvofiles.so", "Kirvo.dll",
                 "KirvoFiles.dll", "kirvo", "kirvo.exe", "KirvoView.exe"):
        file = suite.build / name
        if file.is_file():
            digest.update(file.read_bytes())
    return digest.hexdigest()


def prepare(suite, stage):
    """Builds and runs a stage without any change, once."""
    if stage in suite.ready:
        return
    print(f"building and testing the source as it is: {stage}", flush=True)
    if (failure := failing_test(suite, stage, {})) is not None:
        sys.exit(f"without any change {failure} fails")
    suite.ready[stage] = {program: digest_of(suite, program) for program, _ in programs_of(stage)}
    suite.files = set(suite.build.iterdir())


def copy_tree(suite):
    """Files of the project, those that have changed only, so that little is built again."""
    names = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "-z"], cwd=SOURCE,
                           stdout=subprocess.PIPE, check=True).stdout.decode().split("\0")
    for name in filter(None, names):
        source, copy = SOURCE / name, suite.tree / name
        if source.is_file() and (not copy.exists() or copy.read_bytes() != source.read_bytes()):
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.write_bytes(source.read_bytes())
            copy.chmod(source.stat().st_mode)
    if suite.preset == "wasm":  # held against the native library
        configure(suite, "native")
        if run(suite, ["cmake", "--build", suite.tree / "build/native", "--target", "kirvo"]) is not None:
            sys.exit("the native library cannot be built")
    configure(suite, suite.preset)


def configure(suite, preset):
    if not (suite.tree / "build" / preset / "build.ninja").exists():
        print("configuring", flush=True)
        if run(suite, ["cmake", "-S", suite.tree, "--preset", preset]) is not None:
            sys.exit("the copy cannot be configured")


def harmless():
    """By file and the line as it is and as it becomes, without spaces: the words to be found above it."""
    known = {}
    if HARMLESS.exists():
        for block in HARMLESS.read_text().split("\n\n"):
            lines = [line for line in block.split("\n") if line and not line.startswith("#")]
            if len(lines) >= 3:
                file, _, words = lines[0].strip().partition(": ")
                known.setdefault((file, squeezed(lines[1]), squeezed(lines[2])), []).append(words)
    return known


def is_harmless(change, reasons):
    file, number, line, changed = change
    above = "\n".join((SOURCE / file).read_text().split("\n")[max(number - LINES_ABOVE, 0):number])
    return any(words in above for words in reasons.get((str(file), squeezed(line), squeezed(changed)), []))


def squeezed(line):
    return re.sub(r"\s+", "", line)


def suite_of(name):
    return next((suite for suite in SUITES if name.startswith(suite.folder)), None)


def main():
    path, count, seed = SOURCE / sys.argv[1], int(sys.argv[2]), sys.argv[3]
    name = str(path.relative_to(SOURCE))
    suite = suite_of(name)
    if suite is None or not path.exists():
        sys.exit(f"no tests are known for {name}; there are {' '.join(s.folder for s in SUITES)}")
    files = sorted(path.rglob("*")) if path.is_dir() else [path]
    candidates = [(file.relative_to(SOURCE), *change) for file in files
                  if file.suffix in ENDINGS and not ELSEWHERE[suite.preset].search(str(file.with_suffix("")))
                  and suite is suite_of(str(file.relative_to(SOURCE)))
                  for change in changes_of(file)]
    random.Random(f"{name} {seed}").shuffle(candidates)

    suite.work.mkdir(parents=True, exist_ok=True)
    lock = (suite.work / "lock").open("w")
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        sys.exit(f"another run is at work on {suite.folder}")
    copy_tree(suite)
    results = json.loads(suite.results.read_text()) if suite.results.exists() else {}
    results = {key: outcome for key, outcome in results.items() if not passed(outcome)}
    reasons = harmless()
    chosen = []
    for change in candidates:
        if len(chosen) == count:
            break
        if try_stage(suite, 0, change, results, reasons) != "the compiler":  # else none to be tried
            chosen.append(change)
    for stage in range(1, len(suite.stages)):
        for change in chosen:
            try_stage(suite, stage, change, results, reasons)

    outcomes = [outcome_of(change, results, reasons) for change in chosen]
    for (file, number, line, changed), outcome in zip(chosen, outcomes):
        if passed(outcome):
            print(f"{file}:{number + 1}: no test notices\n  {line.strip()}\n  {changed.strip()}")
    survivors = sum(passed(outcome) > 0 for outcome in outcomes)
    same = outcomes.count("the same programs")
    explained = outcomes.count("harmless")
    print(f"{name}: {len(chosen) - survivors - same - explained} noticed, {survivors} not noticed, "
          f"{same} make the same programs, {explained} known to change nothing")
    return 1 if survivors else 0


def key_of(change):
    file, number, line, changed = change
    return f"{file}|{squeezed(line)}|{squeezed(changed)}|{number + 1}"


def passed(outcome):
    """How many stages a change has passed that none has noticed."""
    return int(outcome.removeprefix("passed ")) if outcome.startswith("passed ") else 0


def outcome_of(change, results, reasons):
    """What notices a change, or how many stages it has passed; empty where it was not tried yet."""
    outcome = results.get(key_of(change), "")
    return "harmless" if (passed(outcome) or not outcome) and is_harmless(change, reasons) else outcome


def try_stage(suite, stage, change, results, reasons):
    """The outcome of a change after a stage, for which those that have passed the one before are tried."""
    outcome = outcome_of(change, results, reasons)
    if not outcome or passed(outcome) == stage > 0:
        outcome = try_change(suite, suite.stages[stage], change) or f"passed {stage + 1}"
        results[key_of(change)] = outcome
        suite.results.write_text(json.dumps(results, indent=0))
        print(f"{change[0]}:{change[1] + 1}: {outcome}", flush=True)
    return outcome


def try_change(suite, stage, change):
    """The test of a stage that notices a change, which is undone again; None when none does."""
    file, number, _, changed = change
    prepare(suite, stage)
    copy = suite.tree / file
    original = copy.read_bytes()
    lines = original.decode().split("\n")
    lines[number] = changed + ("\r" if lines[number].endswith("\r") else "")
    try:
        copy.write_bytes("\n".join(lines).encode())
        return failing_test(suite, stage, suite.ready[stage])
    finally:
        copy.write_bytes(original)
        for left in set(suite.build.iterdir()) - suite.files:  # by a program that has gone astray
            shutil.rmtree(left) if left.is_dir() else left.unlink()


sys.exit(main())
