# What a macros file or a library holds, read by somebody else's reader: a line "GROUP /" for each group, and "GROUP / MACRO" for each
# macro, " (off)" behind what is disabled.
import plistlib
import sys

with open(sys.argv[1], "rb") as file:
    root = plistlib.load(file)


def state(thing):
    return "" if thing.get("IsActive", True) else " (off)"


for group in root["Items"] if "Items" in root else root["MacroGroups"]:
    print(group["Name"] + " /" + state(group))
    for macro in group.get("Macros", []):
        print(group["Name"] + " / " + macro.get("Name", "") + state(macro))
