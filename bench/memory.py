#!/usr/bin/env python3
"""Peak memory and time of sweepctl on trees of extreme shape.

Each tree is made in a temporary device beneath TMPDIR (or /dev/shm), looked at by a dry run, cleaned
once, and gone when the call ends. An empty device stands first: what lies above its figures is what
the tree costs.
"""

import argparse
import os
import shutil
import subprocess
import sys
import tempfile

from compare import run

TEMPORARY = "var/mobile/tmp"


def flat(folder, entries):
    """So many files in one folder."""
    os.makedirs(folder, exist_ok=True)
    at = os.open(folder, os.O_RDONLY)
    for i in range(entries):
        os.close(os.open(f"file-{i:07d}.dat", os.O_CREAT | os.O_WRONLY, 0o644, dir_fd=at))
    os.close(at)


def chain(folder, levels):
    """Folders in each other, each with a file."""
    os.makedirs(folder)
    at = os.open(folder, os.O_RDONLY)
    for _ in range(levels):
        os.close(os.open("file", os.O_CREAT | os.O_WRONLY, 0o644, dir_fd=at))
        os.mkdir("d", dir_fd=at)
        below = os.open("d", os.O_RDONLY, dir_fd=at)
        os.close(at)
        at = below
    os.close(at)


def comb(folder, levels):
    """The same with two further folders beside each, so that a walk has to come back up."""
    chain(folder, levels)
    at = os.open(folder, os.O_RDONLY)
    for _ in range(levels):
        os.mkdir("a", dir_fd=at)
        os.mkdir("z", dir_fd=at)
        below = os.open("d", os.O_RDONLY, dir_fd=at)
        os.close(at)
        at = below
    os.close(at)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("sweepctl")
    parser.add_argument("--entries", type=int, default=1_000_000)
    parser.add_argument("--levels", type=int, default=50_000)
    options = parser.parse_args()
    sweepctl = os.path.abspath(options.sweepctl)
    count, levels = options.entries, options.levels
    shapes = [
        ("nothing", lambda base: None),
        (f"{count:,} files in a folder", lambda base: flat(f"{base}/folder", count)),
        (f"{count:,} files in the folder that is emptied", lambda base: flat(base, count)),
        (f"{levels:,} levels", lambda base: chain(f"{base}/deep", levels)),
        (f"{levels:,} levels, side folders", lambda base: comb(f"{base}/deep", levels)),
    ]
    place = os.environ.get("TMPDIR") or ("/dev/shm" if os.path.isdir("/dev/shm") else None)
    for name, make in shapes:
        root = tempfile.mkdtemp(dir=place)
        try:
            os.makedirs(f"{root}/{TEMPORARY}")
            make(f"{root}/{TEMPORARY}")
            clean = [sweepctl, "--device-root", root, "clean", "temp"]
            for what, command in (("dry run", [*clean, "--dry-run"]), ("clean", [*clean, "--yes"])):
                seconds, peak = run(command)
                print(f"{name:45} {what:8} {seconds:7.2f} s {peak / 1024:7.1f} MiB", flush=True)
            if os.listdir(f"{root}/{TEMPORARY}"):
                sys.exit(f"bench: {name}: something is left")
        finally:
            subprocess.run(["rm", "-rf", root], check=False)
            shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    main()
