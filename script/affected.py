#!/usr/bin/env python3
"""affected.py [--since REV] FILE...: the C++ sources among FILEs, each with what it depends on

Prints "DIGEST SOURCE" for each source: the digest is of the source, of every header of ours that it
includes, however indirectly, and of clang-tidy's rules. With --since only the sources of which any
of that differs from REV. A REV that is not in this checkout's history counts as one from which
everything differs.
"""
import hashlib
import os
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
ROOTS = [ROOT / "src", ROOT / "tests"]  # where our headers are found, beside the including file
INCLUDE = re.compile(rb'^\s*#\s*(?:include|import)\s*"([^"]+)"', re.MULTILINE)
RULES = [path for path in (ROOT / ".clang-tidy", ROOT / "tests" / ".clang-tidy") if path.is_file()]


def headers_of(source, known={}):
    """The files of ours that `source` names in its includes."""
    if source not in known:
        found = []
        for name in INCLUDE.findall(source.read_bytes()):
            for folder in [source.parent, *ROOTS]:
                header = pathlib.Path(os.path.normpath(folder / os.fsdecode(name)))
                if header.is_file():
                    found.append(header)
                    break
        known[source] = found
    return known[source]


def closure(source):
    seen, waiting = {source}, [source]
    while waiting:
        new = [header for header in headers_of(waiting.pop()) if header not in seen]
        seen.update(new)
        waiting += new
    return sorted(seen)


def git(*words):
    return subprocess.run(["git", "-c", f"safe.directory={ROOT}", *words], cwd=ROOT,
                          capture_output=True, check=True).stdout


def changed_since(revision):
    """Files that differ from `revision`; None where it is not known here."""
    try:
        tracked = git("diff", "--name-only", "-z", revision, "--")
        new = git("ls-files", "-z", "--others", "--exclude-standard")
    except (subprocess.CalledProcessError, FileNotFoundError):
        print(f"{revision} is not in this checkout's history: every source counts as changed",
              file=sys.stderr)
        return None
    return {ROOT / os.fsdecode(name) for name in (tracked + new).split(b"\0") if name}


def main():
    words = sys.argv[1:]
    changed = None
    if words[:1] == ["--since"]:
        changed = changed_since(words[1])
        words = words[2:]
    for name in words:
        files = [*closure(ROOT / name), *RULES]
        if changed is not None and changed.isdisjoint(files):
            continue
        digest = hashlib.sha256(name.encode())
        for file in files:
            digest.update(file.read_bytes())
        print(digest.hexdigest()[:40], name)


main()
