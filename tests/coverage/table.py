#!/usr/bin/env python3
"""Prints what the tests cover, and compares the application's uncovered lines with the listed ones.

    table.py COVERAGE.json UNCOVERED.txt

UNCOVERED.txt has lines "FILE | text of the source line | reason"; # begins a comment. A line that
stands several times in a file is listed once for all.
"""

import collections
import json
import pathlib
import sys

APPLICATION = ["client", "platform", "eve_layer", "widgets", "supervision", "top"]
FOLDERS = ["client", "platform", "assets", "eve_layer", "widgets", "supervision", "top"]
INFORMATION = ["controller", "board", "server", "panel"]
# Run while building, not a part of the application.
EXCLUDED = {"assets/makestreams.cpp"}


def folder(path):
    parts = pathlib.PurePath(path).parts
    if len(parts) == 1:
        return "top"
    return "/".join(parts[:2]) if parts[0] == "simulator" else parts[0]


def percent(part, whole):
    return f"{100 * part / whole:6.1f} %" if whole else "       -"


def print_table(totals):
    print(f"{'folder':24} {'lines':>7} {'covered':>9} {'branches':>9} {'covered':>9}")
    simulator = ["simulator/" + name for name in INFORMATION]
    for name in FOLDERS + [name for name in simulator if name in totals]:
        lines, covered, branches, taken = totals[name]
        print(
            f"{name:24} {lines:7} {percent(covered, lines):>9} {branches:9} {percent(taken, branches):>9}"
        )


def count(files):
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])
    uncovered = collections.defaultdict(list)
    for file in files:
        path = file["file"]
        if path in EXCLUDED:
            continue
        total = totals[folder(path)]
        for line in file["lines"]:
            if line.get("gcovr/noncode", False):
                continue
            total[0] += 1
            total[1] += line["count"] > 0
            total[2] += len(line["branches"])
            total[3] += sum(branch["count"] > 0 for branch in line["branches"])
            if line["count"] == 0 and folder(path) in APPLICATION:
                uncovered[path].append(line["line_number"])
    return totals, uncovered


def read_listed(name):
    listed = set()
    for line in pathlib.Path(name).read_text(encoding="utf-8").splitlines():
        if line.strip() and not line.startswith("#"):
            path, text, reason = (part.strip() for part in line.split(" | "))
            if not reason:
                sys.exit(f"{name}: no reason given: {line}")
            listed.add((path, text))
    return listed


def main():
    coverage, listed_file = sys.argv[1:]
    files = json.loads(pathlib.Path(coverage).read_text(encoding="utf-8"))["files"]
    totals, uncovered = count(files)
    print_table(totals)

    listed = read_listed(listed_file)
    used, bad = set(), 0
    for path, numbers in sorted(uncovered.items()):
        source = pathlib.Path(path).read_text(encoding="utf-8").splitlines()
        for number in numbers:
            text = source[number - 1].strip()
            if (path, text) in listed:
                used.add((path, text))
            else:
                bad += 1
                print(f"{path}:{number}: not covered: {text}")
    for path, text in sorted(listed - used):
        bad += 1
        print(f"{listed_file}: covered, or gone: {path} | {text}")
    sys.exit(1 if bad else 0)


main()
