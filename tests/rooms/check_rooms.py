#!/usr/bin/env python3
"""Checks that includes run downward only: between the layers of the project, and between the rooms of a layer.

usage: check_rooms.py PROJECT

A file belongs to the room whose folder it is in. A header beside the rooms belongs to the one that holds its source,
or, without one, to the uppermost that it includes; sources beside the rooms stand above those before "beside", but for
values, which stand in the lowest room.
"""

import pathlib
import re
import sys

LAYERS = ["platform", "messages", "pathfinder", "catalogue", "tools"]  # lowest first, as are the rooms
ROOMS = {
    "pathfinder": ["values", "limits", "linking", "search", "planning", "learning", "beside"],
    "catalogue": [
        "text", "model", "reading", "store", "import", "check", "picture", "explanation", "explorer", "conditions",
        "comparison", "beside", "c"]}
# What stands beside the rooms and is passed around between them.
VALUES = {"pathfinder": {
    "hop", "linked_metamodel", "metamodel", "requirement", "search_limits", "semver", "version_baseline",
    "version_id"}}
INCLUDE = re.compile(r'^#include "([a-z_]+/[\w./]+)"', re.MULTILINE)


def complaints(project):
    """What includes upward, and what is in no room."""
    files = {str(file.relative_to(project)): INCLUDE.findall(file.read_text(encoding="utf-8"))
             for layer in LAYERS for file in sorted((project / layer).rglob("*.[ch]pp"))}
    for layer, rooms in ROOMS.items():
        found = {file.split("/")[1] for file in files if file.startswith(layer + "/") and file.count("/") > 1}
        yield from (f"{layer}/{room}/ has no place among the rooms" for room in sorted(found - set(rooms)))
    for file, includes in files.items():
        for included in includes:
            if included in files and place_of(file, files) < place_of(included, files):
                yield f"{file} includes {included}, which stands above it"


def place_of(file, files):
    """The layer of a file and its room, both as numbers."""
    layer, *folders = file.split("/")
    rooms = ROOMS.get(layer, [])
    if len(folders) > 1:
        room = rooms.index(folders[0]) if folders[0] in rooms else 0
    elif pathlib.PurePath(file).stem in VALUES.get(layer, ()):
        room = 0
    elif file.endswith(".cpp"):
        room = beside(rooms)
    else:
        room = room_of_header(file, layer, rooms, files)
    return LAYERS.index(layer), room


def beside(rooms):
    """The place of sources that are in no room."""
    return rooms.index("beside") if "beside" in rooms else len(rooms)


def room_of_header(header, layer, rooms, files):
    """The room of a header that stands beside the rooms."""
    source = header.split("/")[1].replace(".hpp", ".cpp")
    if f"{layer}/{source}" in files:
        return beside(rooms)
    for number, room in enumerate(rooms):
        if f"{layer}/{room}/{source}" in files:
            return number
    below = [place_of(other, files) for other in files[header] if other in files and other.startswith(layer + "/")]
    return max((room for _, room in below), default=0)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    FOUND = list(complaints(pathlib.Path(sys.argv[1])))
    print("\n".join(FOUND) or "All includes run downward.")
    sys.exit(bool(FOUND))
