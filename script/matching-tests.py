#!/usr/bin/env python3
"""matching-tests.py PATTERN: what has tests whose names (Suite.Test) match a regular expression

Prints the targets of tests/CMakeLists.txt on one line and a --gtest_filter for them on the next.
The names are read from the sources, so that nothing needs to be built first.
"""
import pathlib
import re
import sys

TESTS = pathlib.Path(__file__).resolve().parent.parent / "tests"
TEST = re.compile(r"^(?:TEST|TEST_F|TEST_P|TYPED_TEST|RC_GTEST_PROP|RC_GTEST_FIXTURE_PROP)"
                  r"\(\s*(\w+),\s*(\w+)", re.MULTILINE)


def target_of(source):
    folders = source.relative_to(TESTS).parts[:-1]
    return "test_endtoend" if "endtoend" in folders else f"test_{folders[0]}"


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    try:
        wanted = re.compile(sys.argv[1], re.IGNORECASE)
    except re.error as error:
        sys.exit(f"script/test: {sys.argv[1]}: not a regular expression: {error}")
    targets, filters = set(), set()
    for source in TESTS.rglob("*.cpp"):
        for suite, name in TEST.findall(source.read_text()):
            if wanted.search(f"{suite}.{name}"):
                targets.add(target_of(source))
                # A test with parameters has their name behind its own, and may have a prefix.
                filters.add(f"{suite}.{name}:{suite}.{name}/*:*/{suite}.{name}/*")
    if not targets:
        sys.exit(f"script/test: no test's name (Suite.Test) matches {sys.argv[1]}")
    print(*sorted(targets))
    print(":".join(sorted(filters)))


main()
