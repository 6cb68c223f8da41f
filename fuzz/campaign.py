#!/usr/bin/env python3
"""Shares time among fuzzers by what still finds something.

    fuzz/campaign.py BUDGET NAME ...    BUDGET: 4h, 30m
    fuzz/campaign.py --document         only brings docs/SAFETY.md up to date

A target runs in turns, under the sanitizers and fast by turns, on one corpus. First each has one;
then the next turn goes to the one whose last turns found most new features a second, and every so
often to the one that has waited longest. After each turn its figures are added to fuzz/totals.txt.
Ends with 1 when a case has failed; its target has no further turn then.
"""

import os
import re
import subprocess
import sys
import time
from pathlib import Path

SOURCE = Path(__file__).resolve().parent
BUILD = SOURCE.parent / "build"
TOTALS = SOURCE / "totals.txt"
SAFETY = SOURCE.parent / "docs" / "SAFETY.md"
HEADING = "# target: executions, edges of the library covered, seconds\n"
LONGEST_TURN = 300
TURNS_BETWEEN_THE_PATIENT = 4


def read_totals():
    totals = {}
    if TOTALS.exists():
        for line in TOTALS.read_text().splitlines():
            if not line.startswith("#"):
                name, figures = line.split(":")
                totals[name] = [int(figure) for figure in figures.split()]
    return totals


def add_to_totals(name, executions, edges, seconds):
    totals = read_totals()
    before = totals.get(name, [0, 0, 0])
    totals[name] = [before[0] + executions, max(before[1], edges), before[2] + seconds]
    lines = [f"{name}: {' '.join(map(str, totals[name]))}\n" for name in sorted(totals)]
    part = TOTALS.with_suffix(".part")
    part.write_text(HEADING + "".join(lines))
    part.replace(TOTALS)


def document():
    """Brings the figures in the table of SAFETY.md up to date: the last three columns."""
    totals = read_totals()

    def row(match):
        executions, edges, seconds = totals.get(match[2], [0, 0, 0])
        return f"{match[1]}| {executions:,} | {edges:,} | {seconds / 3600:.1f} |"

    text = SAFETY.read_text()
    text = re.sub(r"^(\| `(\w+)` \|[^|\n]*)\|[^|\n]*\|[^|\n]*\|[^|\n]*\|$", row, text, flags=re.M)
    sums = [sum(column) for column in zip(*totals.values())]
    text = re.sub(r"^(\| all \|[^|\n]*)\|[^|\n]*\|[^|\n]*\|[^|\n]*\|$",
                  rf"\1| {sums[0]:,} | | {sums[2] / 3600:.1f} |", text, flags=re.M)
    SAFETY.write_text(text)


class Target:
    def __init__(self, name):
        self.name = name
        self.turns = 0
        self.features = {}  # by build, which count differently
        self.yields = []  # new features a second, of each turn but the first of each build
        self.failed = False
        self.last = 0.0

    def run(self, seconds):
        wide = self.turns % 2 == 0
        build = "fuzz-wide" if wide else "fuzz"
        # Spreading over rare features, looking for shorter inputs and long inputs take more time
        # than these executions do; the sanitizers' turns see to all of it.
        options = ["-entropic=0", "-reduce_inputs=0", "-max_len=1024"] if wide else []
        began = time.monotonic()
        result = subprocess.run(
            [SOURCE / "run", BUILD / build / f"kirvo_fuzz_{self.name}", str(seconds), *options],
            stdout=subprocess.PIPE, text=True, env={**os.environ, "KIRVO_FUZZ_WORK": BUILD / "fuzz"})
        self.last = time.monotonic()
        print(f"{build:9}", result.stdout, end="", flush=True)
        figures = re.search(r"(\d+) executions +(\d+) edges +(\d+) features", result.stdout)
        executions, edges, features = (int(figure) for figure in figures.groups())
        add_to_totals(self.name, executions, edges if wide else 0, round(self.last - began))
        if build in self.features:
            self.yields.append(max(features - self.features[build], 0) / (self.last - began))
        self.features[build] = features
        self.turns += 1
        self.failed = result.returncode != 0

    def promise(self):
        """Targets of which too little is known go first."""
        return sum(self.yields[-2:]) / 2 if self.turns >= 4 else float("inf")


def campaign(budget, names):
    seconds = int(budget[:-1]) * {"h": 3600, "m": 60}[budget[-1]]
    end = time.monotonic() + seconds
    turn = max(2, min(LONGEST_TURN, seconds // (8 * len(names))))
    targets = [Target(name) for name in names]
    count = 0
    while time.monotonic() < end and (going := [one for one in targets if not one.failed]):
        count += 1
        if count % TURNS_BETWEEN_THE_PATIENT == 0:
            chosen = min(going, key=lambda one: one.last)
        else:
            chosen = max(going, key=lambda one: (one.promise(), -one.turns))
        chosen.run(max(1, min(turn, int(end - time.monotonic()))))
        document()
    return 1 if any(one.failed for one in targets) else 0


if sys.argv[1] == "--document":
    document()
else:
    sys.exit(campaign(sys.argv[1], sys.argv[2:]))
