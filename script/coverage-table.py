#!/usr/bin/env python3
"""Prints lines and branches by layer, and the uncovered places: coverage-table.py COVERAGE.json"""
import collections
import itertools
import json
import os
import pathlib
import sys


class Count:
    def __init__(self):
        self.hit = 0
        self.all = 0

    def add(self, hit):
        self.all += 1
        self.hit += bool(hit)

    def __str__(self):
        share = 100 * self.hit / self.all if self.all else 100
        return f"{self.hit:5} of {self.all:5} {share:5.1f} %"


def lines_of(file):
    """The file's lines by number; instances of a template are one line, reached if one was."""
    merged = {}
    for line in file["lines"]:
        if line.get("gcovr/noncode") or line.get("gcovr/excluded"):
            continue
        known = merged.setdefault(line["line_number"], {"count": 0, "branches": []})
        known["count"] += line["count"]
        branches = [branch["count"] for branch in line["branches"]]
        known["branches"] = [a + b for a, b in
                             itertools.zip_longest(known["branches"], branches, fillvalue=0)]
    return merged


def source_of(name):
    """The path of a source; headers are compiled by links to them in the build tree."""
    return os.path.relpath(os.path.realpath(name))


def spans(numbers):
    """Numbers as text, neighbours joined: 3, 7-9."""
    groups = []
    for number in sorted(numbers):
        if groups and number == groups[-1][1] + 1:
            groups[-1][1] = number
        else:
            groups.append([number, number])
    return ", ".join(str(a) if a == b else f"{a}-{b}" for a, b in groups)


def main():
    report = json.loads(pathlib.Path(sys.argv[1]).read_text())
    folders = collections.defaultdict(lambda: (Count(), Count()))
    uncovered = []
    for file in sorted(report["files"], key=lambda file: source_of(file["file"])):
        name = source_of(file["file"])
        lines, branches = folders["/".join(pathlib.Path(name).parts[:2])]
        missed, half = [], []
        for number, line in lines_of(file).items():
            lines.add(line["count"])
            for count in line["branches"]:
                branches.add(count)
            if not line["count"]:
                missed.append(number)
            elif 0 in line["branches"]:
                half.append(number)
        if missed or half:
            uncovered.append((name, spans(missed), spans(half)))

    print(f"{'folder':<16}  {'lines':>22}  {'branches':>22}")
    for folder, (lines, branches) in sorted(folders.items()):
        print(f"{folder:<16}  {lines!s:>22}  {branches!s:>22}")
    print("\nNot run at all, or a branch of it never taken, by line:")
    for name, missed, half in uncovered:
        print(f"  {name}")
        if missed:
            print(f"    not run: {missed}")
        if half:
            print(f"    a branch not taken: {half}")


if __name__ == "__main__":
    main()
