#!/usr/bin/env python3
"""Writes small inputs for the fuzz targets to begin with: seeds.py FOLDER makes FOLDER/<target>/.

The same inputs each time, made with Python's own writers of property lists and zlib, which know
nothing of the product's readers.
"""
import datetime
import pathlib
import plistlib
import struct
import sys
import zlib

DATE = datetime.datetime(2024, 2, 29, 12, 30, 45)


def both(value):
    """A value as binary and as XML property list."""
    for form, name in ((plistlib.FMT_BINARY, "binary"), (plistlib.FMT_XML, "xml")):
        try:
            yield name, plistlib.dumps(value, fmt=form, sort_keys=False)
        except TypeError:  # XML has no way to write a UID
            pass


def property_lists():
    every_type = {
        "yes": True, "no": False, "small": -5, "lowest": -2**63, "most": 2**64 - 1, "real": 0.1,
        "infinite": float("inf"), "text": "plain", "wide": "清理 <&> \"é\" 🧹", "data": b"\0\xff\n",
        "date": DATE, "array": [1, "two", [], {}], "nested": {"a": {"b": [[True]]}},
    }
    shared = ["again", "again", {"again": "again"}]
    deep = []
    for _ in range(60):
        deep = [deep]
    for name, value in (("every-type", every_type), ("shared", shared), ("deep", deep),
                        ("uid", {"uid": plistlib.UID(7)}), ("text", "only text"), ("empty", {})):
        for form, content in both(value):
            yield f"{name}.{form}", content
    yield "mark.xml", b"\xef\xbb\xbf" + plistlib.dumps({"a": 1})
    yield "entities.xml", (b'<?xml version="1.0" encoding="UTF-8"?><!DOCTYPE plist>'
                           b"<!-- a comment --><plist version='1.0'><dict><key>a&amp;&#x41;</key>"
                           b"<string><![CDATA[<raw>]]></string><key>hex</key>"
                           b"<integer>0x7F</integer><key>t</key><true/></dict></plist>")


def strings_tables():
    table = ('/* a comment */\n"key" = "text";\n// another\nplain = word;\nalone;\n'
             '"escapes" = "\\n\\t\\"\\\\ \\U6e05 \\Ud83d\\Ude00";\n"清理" = "🧹";\nbroken = ;\n')
    yield "utf-8", table.encode()
    yield "utf-8-mark", b"\xef\xbb\xbf" + table.encode()
    yield "cr-lf", table.replace("\n", "\r\n").encode()


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def picture(rows, colour, depth=8, interlaced=0, device=False, width=4, height=3, before=()):
    content = b"\x89PNG\r\n\x1a\n"
    if device:
        content += chunk(b"CgBI", b"\x50\x00\x20\x02")
    content += chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, depth, colour, 0, 0,
                                          interlaced))
    for kind, data in before:
        content += chunk(kind, data)
    packed = zlib.compress(rows)
    if device:
        packed = packed[2:-4]  # no frame of zlib's
    return content + chunk(b"IDAT", packed) + chunk(b"IEND", b"")


def pictures():
    def rows(width_bytes, height=3):
        return b"".join(bytes([y % 5]) + bytes((y * 31 + x * 7) % 256 for x in range(width_bytes))
                        for y in range(height))

    for colour, channels in ((0, 1), (2, 3), (4, 2), (6, 4)):
        yield f"colour-{colour}", picture(rows(4 * channels), colour)
        yield f"deep-{colour}", picture(rows(8 * channels), colour, depth=16)
    palette = (b"PLTE", bytes(range(12)))
    yield "palette", picture(rows(1), 3, depth=2, before=[palette])
    yield "palette-clear", picture(rows(1), 3, depth=2, before=[palette, (b"tRNS", b"\x00\x80")])
    yield "key-colour", picture(rows(12), 2, before=[(b"tRNS", bytes(6))])
    yield "gamma", picture(rows(12), 2, before=[(b"gAMA", struct.pack(">I", 45455))])
    interlaced = b"\0" * 200
    yield "interlaced", picture(interlaced[:3 * 12 + 12], 2, interlaced=1)
    yield "device-rgb", picture(rows(12), 2, device=True)
    yield "device-rgba", picture(rows(16), 6, device=True)
    yield "device-interlaced", picture(interlaced, 6, device=True, interlaced=1)
    for y, x, twist in ((3, 2, 0), (9, 9, 1), (19, 0, 0), (0, 19, 1)):
        yield f"rows-{y}-{x}", b"R" + bytes([x, y, twist]) + rows(3 * (x + 1), y + 1)


def app_metadata():
    info = {"CFBundleIdentifier": "com.example.app", "CFBundleDisplayName": "示例",
            "CFBundleName": "Example", "CFBundleIconFile": "old",
            "CFBundleIcons": {"CFBundlePrimaryIcon": {"CFBundleIconFiles": ["a", "b@2x"]}},
            "CFBundleIconFiles": ["top"], "MCMMetadataIdentifier": "com.example.app"}
    odd = {"CFBundleIdentifier": 5, "CFBundleDisplayName": "", "CFBundleIcons": ["no"],
           "CFBundleIconFiles": [], "MCMMetadataIdentifier": "../../etc"}
    for name, value in (("info", info), ("odd", odd), ("list", ["no dictionary"])):
        for form, content in both(value):
            yield f"{name}.{form}", content


def clean_history():
    def entry(number, **changed):
        whole = {"identifier": f"ID-{number}", "cleanType": number % 11, "cleanTypeName": "缓存文件",
                 "cleanedBytes": 1024 * number, "cleanDate": f"2024-02-{number % 28 + 1:02} 01:02:03"}
        whole.update(changed)
        return whole

    cases = {
        "whole": [entry(1), entry(2), entry(3)],
        "full": [{"identifier": str(number)} for number in range(100)],
        "over": [{} for _ in range(103)],
        "odd": [entry(1, cleanDate="0001-01-01 00:00:00"), entry(2, cleanDate="9999-12-31 23:59:59"),
                entry(3, cleanedBytes=-1), entry(4, cleanType="x"), entry(5, identifier=7),
                entry(6, cleanDate=DATE), entry(7, cleanedBytes=2**64 - 1), "no entry", 5, {}],
        "no-list": {"identifier": "x"},
    }
    for name, records in cases.items():
        value = {"CleanHistoryRecords": records, "TotalCleanedBytes": 5, "AppLanguage": "en"}
        for form, content in both(value):
            yield f"{name}.{form}", content
    yield "damaged", b"bplist00 cut short"


TARGETS = {"property_list": property_lists, "strings_table": strings_tables, "image": pictures,
           "app_metadata": app_metadata, "clean_history": clean_history}


def main():
    if len(sys.argv) != 2:
        sys.exit(f"usage: {sys.argv[0]} FOLDER")
    for target, seeds in TARGETS.items():
        folder = pathlib.Path(sys.argv[1]) / target
        folder.mkdir(parents=True, exist_ok=True)
        for name, content in seeds():
            (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
