# What a macros file holds, read by somebody else's reader: a line "GROUP / MACRO" for each macro, " (off)" behind one
# that is disabled, and "GROUP /" for each group.
import plistlib
import sys

with open(sys.argv[1], "rb") as file:
    root = plistlib.load(file)
for group in root["MacroGroups"]:
    print(group["Name"] + " /")
    for macro in group.get("Macros", []):
        print(group["Name"] + " / " + macro.get("Name", "") + ("" if macro.get("IsActive", True) else " (off)"))
