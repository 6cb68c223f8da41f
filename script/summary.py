#!/usr/bin/env python3
"""Counts the tests of build folders: summary.py build/native build/win32 ...

A GoogleTest program counts by its cases, any other test as one. A program that failed without a
failed case (it crashed, or could not start) is one failure, and so is a target without results.
"""
import pathlib
import sys
import xml.etree.ElementTree as xml


def test_cases(report):
    # What failed tests print is not always text.
    return xml.fromstring(report.read_text("utf-8", "replace")).iter("testcase")


def count_cases(report):
    """(passed, names of failed cases, skipped) of a GoogleTest report."""
    passed, failed, skipped = 0, [], 0
    for case in test_cases(report):
        if case.find("failure") is not None:
            failed.append(f"{case.get('classname')}.{case.get('name')}")
        elif case.get("result") == "completed":
            passed += 1
        else:
            skipped += 1
    return passed, failed, skipped


def count_target(folder):
    results = folder / "ctest.xml"
    if not results.exists():
        return 0, ["could not be built and tested"], 0
    passed, failed, skipped = 0, [], 0
    for test in test_cases(results):
        name = test.get("name")
        well = test.get("status") == "run"
        report = folder / "reports" / f"{name}.xml"
        if report.exists():
            case_counts = count_cases(report)
            passed += case_counts[0]
            failed += case_counts[1]
            skipped += case_counts[2]
            if not well and not case_counts[1]:
                failed.append(f"{name} (exit code or time limit)")
        elif well:
            passed += 1
        else:
            failed.append(name)
    return passed, failed, skipped


def main():
    all_passed = all_failed = 0
    for folder in map(pathlib.Path, sys.argv[1:]):
        passed, failed, skipped = count_target(folder)
        note = f", {skipped} skipped" if skipped else ""
        print(f"{folder.name:8} {passed} passed, {len(failed)} failed{note}")
        for name in failed:
            print(f"         failed: {name}")
        all_passed += passed
        all_failed += len(failed)
    print(f"{all_passed} passed, {all_failed} failed")
    return 1 if all_failed or not all_passed else 0


sys.exit(main())
