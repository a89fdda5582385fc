"""Times plistlib on the files "binary" and "xml" of a folder and prints name and seconds of processor time."""
import pathlib
import plistlib
import sys
import time


def timed(name, function):
    start = time.process_time()
    result = function()
    print(name, time.process_time() - start)
    return result


folder = pathlib.Path(sys.argv[1])
binary, xml = (folder / "binary").read_bytes(), (folder / "xml").read_bytes()
value = timed("binary-read", lambda: plistlib.loads(binary, fmt=plistlib.FMT_BINARY))
timed("binary-write", lambda: plistlib.dumps(value, fmt=plistlib.FMT_BINARY))
if xml:
    timed("xml-read", lambda: plistlib.loads(xml, fmt=plistlib.FMT_XML))
    timed("xml-write", lambda: plistlib.dumps(value, fmt=plistlib.FMT_XML))
