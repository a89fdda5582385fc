"""Reads every *.plist of a folder with plistlib and writes two files beside each: NAME.dump, its
content in a form that a test can make as well, and NAME.back, the same written by plistlib."""
import datetime
import pathlib
import plistlib
import struct
import sys

EPOCH = datetime.datetime(2001, 1, 1)


def dump(value):
    if isinstance(value, bool):
        return "b1" if value else "b0"
    if isinstance(value, int):
        return f"i{value}"
    if isinstance(value, float):
        return "r" + struct.pack(">d", value).hex()
    if isinstance(value, str):
        return "s" + value.encode("utf-16-be").hex()
    if isinstance(value, datetime.datetime):
        return f"t{(value - EPOCH) // datetime.timedelta(seconds=1)}"
    if isinstance(value, bytes):
        return "x" + value.hex()
    if isinstance(value, list):
        return "[" + "".join(dump(element) + "\n" for element in value) + "]"
    keys = sorted((key.encode("utf-16-be").hex(), element) for key, element in value.items())
    return "{" + "".join(f"{key}={dump(element)}\n" for key, element in keys) + "}"


for path in sorted(pathlib.Path(sys.argv[1]).glob("*.plist")):
    value = plistlib.loads(path.read_bytes())
    path.with_suffix(".dump").write_text(dump(value))
    path.with_suffix(".back").write_bytes(plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
