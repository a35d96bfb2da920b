#!/usr/bin/env python3
"""Compares sweepctl with other tools on a far device: a real sshfs mount, each way delayed.

Every figure of one table comes from one call. Before each run the device is mounted afresh, so that
no cache knows anything of it. Where no such device can be had this says why and fails.
"""

import argparse
import os
import shutil
import subprocess

from compare import compare, make_tree
from far_device import FarDevice


def mounted_afresh(device, prepare=lambda: None):
    def before(_):
        device.unmount()
        prepare()
        device.mount()
    return before


def bench_scan(args, device):
    subprocess.run([args.sweepctl, "sample-device", device.here + "/sample"], check=True,
                   stdout=subprocess.DEVNULL)
    sample = device.there + "/sample"
    roots = [f"{sample}/private/var/{folder}" for folder in ("mobile", "db", "MobileAsset")]
    compare("scan of the sample device", {
        "du -sb of the roots": ["du", "-sb", *roots],
        "sweepctl scan": [args.sweepctl, "--no-progress", "--device-root", sample, "scan"],
    }, args.runs, before_each=mounted_afresh(device), warm=False)
    shutil.rmtree(device.here + "/sample")


def bench_clean(args, device):
    shapes = {
        "one tree": lambda tmp: make_tree(f"{tmp}/tree", args.folders, args.files),
        "folders side by side": lambda tmp: [
            make_tree(f"{tmp}/{i:04d}", 1, args.files) for i in range(args.folders // 4)],
        "files side by side": lambda tmp: [
            open(f"{tmp}/{i:04d}", "w").close() for i in range(args.folders)],
    }
    tmp = "/phone/var/mobile/tmp"
    for name, make in shapes.items():
        def prepare(make=make):
            shutil.rmtree(device.here + "/phone", ignore_errors=True)
            os.makedirs(device.here + tmp)
            make(device.here + tmp)

        prepare()
        entries = sum(len(folders) + len(files) for _, folders, files in os.walk(device.here + tmp))
        sweepctl = [args.sweepctl, "--no-progress", "--device-root", device.there + "/phone",
                    "--home", "/var/mobile", "clean", "temp", "--yes"]
        compare(f"clean of {entries} entries, {name}", {
            "rm -rf": ["rm", "-rf", device.there + tmp],
            "sweepctl clean temp": sweepctl,
        }, args.runs, before_each=mounted_afresh(device, prepare), warm=False)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--sweepctl", required=True, help="the executable")
    parser.add_argument("--round-trip", type=float, default=4, help="milliseconds")
    parser.add_argument("--folders", type=int, default=200)
    parser.add_argument("--files", type=int, default=8, help="in each folder")
    parser.add_argument("--runs", type=int, default=5)
    args = parser.parse_args()
    args.sweepctl = os.path.abspath(args.sweepctl)
    device = FarDevice(args.round_trip / 2000)
    try:
        print(f"a question to the device takes {device.round_trip() * 1000:.1f} ms")
        bench_scan(args, device)
        bench_clean(args, device)
    finally:
        device.close()


if __name__ == "__main__":
    main()
