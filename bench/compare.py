#!/usr/bin/env python3
"""Compares sweepctl with other tools: medians of runs that take turns, and their ratios.

Every figure of one table comes from one call. The trees are made in a temporary folder, which goes
when the call ends.
"""

import argparse
import os
import plistlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time


def make_tree(root, folders, files_per_folder, blocks=False):
    """Folders three levels deep, files of up to 20,000 bytes: sparse, or with real blocks."""
    for i in range(folders):
        folder = f"{root}/group{i % 20:02d}/set{i // 20 % 50:02d}/folder{i:05d}"
        os.makedirs(folder)
        at = os.open(folder, os.O_RDONLY)
        for j in range(files_per_folder):
            size = (i * 31 + j * 977) % 20000
            file = os.open(f"file-{j:04d}-{i * 7919 % 99991:05d}.dat",
                           os.O_CREAT | os.O_WRONLY, 0o644, dir_fd=at)
            if blocks:
                os.write(file, b"x" * min(size, 4096))
            else:
                os.ftruncate(file, size)
            os.close(file)
        os.close(at)


def run(command):
    """Runs a command to its end; returns seconds and peak memory in KiB.

    A small program stands between, since a child's peak begins with the memory of who started it.
    """
    with tempfile.NamedTemporaryFile("r") as peak:
        start = time.perf_counter()
        status = subprocess.run(["/usr/bin/time", "-f", "%M", "-o", peak.name, *command],
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL, check=False).returncode
        seconds = time.perf_counter() - start
        if status != 0:
            sys.exit(f"bench: {' '.join(command)} ended with status {status}")
        return seconds, int(peak.read())


def drop_caches():
    subprocess.run(["sync"], check=True)
    with open("/proc/sys/vm/drop_caches", "w") as control:
        control.write("3")


def compare(title, contestants, runs, before_each=None, warm=True):
    """Runs the contestants (name -> command) in turns and prints medians against the first."""
    if warm:
        for command in contestants.values():
            run(command)
    figures = {name: [] for name in contestants}
    for _ in range(runs):
        for name, command in contestants.items():
            if before_each:
                before_each(name)
            figures[name].append(run(command))
    print(f"\n{title} (median of {runs})")
    base = None
    for name, results in figures.items():
        seconds = statistics.median(r[0] for r in results)
        memory = max(r[1] for r in results)
        base = base or seconds
        print(f"  {name:<28} {seconds * 1000:9.1f} ms   {seconds / base:5.2f}"
              f"   peak {memory / 1024:6.1f} MiB")


class Device:
    """A device root in a folder of its own with a tree as custom clean path."""

    TREE = "/var/mobile/Media/tree"

    def __init__(self, sweepctl, parent):
        self.root = tempfile.mkdtemp(prefix="sweepwright-bench-", dir=parent)
        self.options = [sweepctl, "--device-root", self.root, "--home", "/var/mobile",
                        "--no-progress"]
        os.makedirs(self.root + "/var/mobile/Media")

    def host(self, path):
        return self.root + path

    def sweepctl(self, *words):
        return self.options + list(words)


def bench_size(args, device):
    make_tree(device.host(Device.TREE), args.folders, args.files // args.folders)
    run(device.sweepctl("custom-paths", "add", Device.TREE))
    contestants = {
        "du -sb": ["du", "-sb", device.host(Device.TREE)],
        "sweepctl size custom": device.sweepctl("size", "custom"),
    }
    if shutil.which("gdu"):
        contestants["gdu -npc"] = ["gdu", "-npc", device.host(Device.TREE)]
    compare(f"size, warm, {args.files} files", contestants, args.runs)
    if args.cold:
        compare(f"size, cold, {args.files} files", contestants, args.runs,
                before_each=lambda _: drop_caches(), warm=False)


def bench_clean(args, device):
    os.makedirs(device.host("/var/mobile/tmp"))
    tree = device.host("/var/mobile/tmp/tree")

    def remake(_):
        if not os.path.exists(tree):
            make_tree(tree, args.folders, args.files // args.folders, blocks=True)

    compare(f"clean temp, {args.files} files with blocks", {
        "rm -rf": ["rm", "-rf", tree],
        "sweepctl clean temp": device.sweepctl("clean", "temp", "--yes"),
    }, args.runs, before_each=remake, warm=False)


def bench_scan(args, device):
    sample = device.root + "-sample"
    subprocess.run([args.sweepctl, "sample-device", sample, "--scale", str(args.scale)],
                   check=True, stdout=subprocess.DEVNULL)
    try:
        roots = [sample + "/private/var/mobile", sample + "/private/var/db",
                 sample + "/private/var/MobileAsset"]
        compare(f"scan of the sample device at scale {args.scale}", {
            "du -sb of the roots": ["du", "-sb"] + [r for r in roots if os.path.exists(r)],
            "sweepctl scan": [args.sweepctl, "--device-root", sample, "scan"],
        }, args.runs)
    finally:
        shutil.rmtree(sample)


def make_app(device, number, files):
    """One third-party app: a bundle with its Info.plist and a data container with caches."""
    identifier = f"com.example.app{number:05d}"
    bundle = device.host(f"/var/containers/Bundle/Application/B{number:05d}/X.app")
    data = device.host(f"/var/mobile/Containers/Data/Application/D{number:05d}")
    os.makedirs(bundle)
    with open(f"{bundle}/Info.plist", "wb") as info:
        plistlib.dump({"CFBundleIdentifier": identifier, "CFBundleName": f"App {number}"}, info,
                      fmt=plistlib.FMT_BINARY)
    make_tree(data + "/Library/Caches", 10, files // 10)
    with open(f"{data}/.com.apple.mobile_container_manager.metadata.plist", "wb") as metadata:
        plistlib.dump({"MCMMetadataIdentifier": identifier}, metadata, fmt=plistlib.FMT_BINARY)


def bench_apps(args, device):
    made = 0
    for count in args.apps:
        while made < count:
            make_app(device, made, 300)
            made += 1
        compare(f"{count} apps with 300 files each", {
            "du -sb of the containers":
                ["du", "-sb", device.host("/var/mobile/Containers/Data/Application")],
            "sweepctl apps": device.sweepctl("apps"),
        }, args.runs)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("what", choices=["size", "clean", "scan", "apps"])
    parser.add_argument("--sweepctl", required=True, help="the executable")
    parser.add_argument("--folder", help="where trees are made (another file system)")
    parser.add_argument("--files", type=int, default=300_000)
    parser.add_argument("--folders", type=int, default=20_000)
    parser.add_argument("--scale", type=int, default=100)
    parser.add_argument("--apps", type=int, nargs="+", default=[250, 1000])
    parser.add_argument("--runs", type=int, default=7)
    parser.add_argument("--cold", action="store_true", help="also with cold caches (as root)")
    args = parser.parse_args()
    device = Device(args.sweepctl, args.folder)
    try:
        {"size": bench_size, "clean": bench_clean, "scan": bench_scan,
         "apps": bench_apps}[args.what](args, device)
    finally:
        shutil.rmtree(device.root)


if __name__ == "__main__":
    main()
