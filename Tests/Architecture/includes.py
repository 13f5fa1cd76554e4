#!/usr/bin/env python3
"""Holds every include of Source/ and Host/ against the list of who may use whom.

    includes.py ROOT

A room is a folder of Source/ or Host/, or one of Host/Desktop's own folders. Prints each include that
breaks a rule as "FILE:LINE: RULE"; the exit status is 1 if there was one.
"""

import re
import sys
from pathlib import Path

BASE = ["Source/Base"]
FILES = [*BASE, "Source/Timecode", "Source/BWF"]
SPOT = [*FILES, "Source/ADL"]
MODEL = [*SPOT, "Source/Spot"]
CORE = [*MODEL, "Source/Model"]
SESSION = [*MODEL, "Host/Session"]
FIELD = [*CORE, "Host/Media"]
CHECK = [*FIELD, "Host/Field", "Host/Session"]
PREPARE = [*CHECK, "Host/Check"]
TARGET = [*SESSION, "Host/Media", "Host/Peaks"]  # none uses another, and none knows the tables of the view
TARGETS = ["Host/Bounce", "Host/DawProject", "Host/Otio", "Host/Report"]
ARDOUR = [*TARGET, "Host/Embedded"]
DESTINATIONS = ["Host/Session", "Host/Embedded", "Host/Ardour", *TARGETS]
TASKS = ["Host/Field", "Host/Media", "Host/Check", "Host/Prepare"]
PORTABLE = [*CORE, "Host/Session", "Host/Recording", "Host/Peaks", "Host/Timeline", "Host/Embedded", *TASKS,
            "Host/Ardour", *TARGETS, "Host/Destinations"]

# A room and the rooms that it may use beside itself.
MAY_USE = {
    "Source/Base": [],
    "Source/Timecode": BASE,
    "Source/BWF": BASE,
    "Source/ADL": FILES,
    "Source/Spot": SPOT,
    "Source/Model": MODEL,
    "Source/View": CORE,
    "Host/Session": MODEL,
    "Host/Timeline": [*SESSION, "Host/Peaks"],
    "Host/Embedded": SESSION,
    "Host/Field": FIELD,
    "Host/Media": SPOT,
    "Host/Peaks": [*BASE, "Host/Media"],
    "Host/Check": CHECK,
    "Host/Prepare": PREPARE,
    "Host/Recording": PREPARE,
    **dict.fromkeys(TARGETS, TARGET),
    "Host/Ardour": ARDOUR,
    "Host/Destinations": DESTINATIONS,
    "Host/Program": [*CORE, "Host/Session", "Host/Embedded", "Host/Recording", *TASKS, "Host/Destinations"],
}

# The shell's own rooms, each of which uses none but those before it.
DESKTOP = ["Host/Desktop/" + name for name in ("Logic", "Theme", "Timeline", "ViewHost", "Shell")]
for number, desktop_room in enumerate(DESKTOP):
    MAY_USE[desktop_room] = [*PORTABLE, "Source/View", *DESKTOP[:number]]

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*(?:"([^"]+)"|<([^>]+)>)')


def room_of(path):
    """Source/BWF of Source/BWF/AES31BWF.h."""
    return "/".join(path.parts[:3 if path.parts[:2] == ("Host", "Desktop") else 2])


def resolve(root, file, name):
    """The included file, relative to the root, found as the compilers find it; None if there is none."""
    for folder in (file.parent, Path("Source"), Path("Host"), Path()):
        if (root / folder / name).is_file():
            return (root / folder / name).resolve().relative_to(root)
    return None


def broken_rule(root, file, quoted, angled):
    """What is wrong with one include, or None."""
    room = room_of(file)
    if room not in MAY_USE:
        return f"{room} is not in the list of rooms"
    if angled:
        library = angled.partition("/")[0] if "/" in angled else "sys"
        if room in CORE and library not in ("sys", "linux"):  # the system's own headers
            return f"{room} may use the standard libraries only, and uses <{angled}>"
        return None
    target = resolve(root, file, quoted)
    if target is None:
        return f'there is no "{quoted}"'
    used = room_of(target)
    if used != room and used not in MAY_USE[room]:
        return f"{room} may not use {used}: {target}"
    return None


def main():
    root = Path(sys.argv[1]).resolve()
    files = [path for top in ("Source", "Host") for path in sorted((root / top).rglob("*"))
             if path.suffix in (".h", ".cpp", ".m", ".mm")]
    faults = 0
    for path in files:
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            found = INCLUDE.match(line)
            fault = found and broken_rule(root, path.relative_to(root), *found.groups())
            if fault:
                print(f"{path.relative_to(root)}:{number}: {fault}")
                faults += 1
    if not files:
        print(f"{root}: no sources")
    sys.exit(1 if faults or not files else 0)


if __name__ == "__main__":
    main()
