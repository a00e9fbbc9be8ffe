#!/usr/bin/env python3
"""Checks that each folder includes exactly the folders that the table below names.

    tests/layering/layering.py [SOURCE_FOLDER]

A folder may use itself and the folders that its line names. A name means that folder only, not its subfolders. The
table has no cycle, so every folder can be read and tested without those above it.
"""

import pathlib
import re
import sys

TREE = {
    "libraries/ground": "",
    # The window's program, from the floor to the roof.
    "common": "libraries/ground",
    "platform": "common libraries/ground",
    "platform/webengine": "common libraries/ground platform",
    "dialogs": "common icons platform",
    "search": "common platform",
    "search/web": "common platform search",
    "search/page/reduction": "",
    "search/page": "common platform search search/page/reduction",
    "search/image": "common platform search",
    "search/download": "common dialogs platform search",
    "search/file": "common platform search",
    "app": "common dialogs icons platform search search/web search/page search/image search/download search/file",
    "icons": "",
    # The services.
    "services/text": "libraries/ground",
    "services/http": "libraries/ground services/text",
    "services/index": "libraries/ground services/text",
    "services/config": "libraries/ground",
    "services/crawl": "libraries/ground services/config services/live services/text",
    "services/thumbnails": "libraries/ground",
    "services/sources":
        "libraries/ground services/crawl services/index services/text services/thumbnails",
    "services/live": "libraries/ground services/config services/http services/text services/thumbnails",
    "services/searches":
        "libraries/ground services/http services/index services/live services/text services/thumbnails",
    "services/app":
        "libraries/ground services/config services/crawl services/http services/index services/live services/searches services/sources services/text "
        "services/thumbnails",
}
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
MAX_LINES = 600


def place_of(name, file, top):
    """Returns the folder that contains `name`, included by `file`; None for a generated file."""
    if "/" not in name:
        folder = file.parent if (file.parent / name).exists() else None
    else:
        roots = [top / "libraries", top / "services"] if file.is_relative_to(top / "services") else [top / "libraries", top]
        folder = next(((root / name).parent for root in roots if (root / name).exists()), None)
        if folder is None:
            return "nowhere"
    return folder.relative_to(top).as_posix() if folder else None


def has_circle(folder, above=()):
    return folder in above or any(has_circle(used, (*above, folder)) for used in TREE[folder].split())


def check(top):
    problems, arrows = [], {}
    for folder in TREE:
        if has_circle(folder):
            problems.append(f"{folder}: the table has a cycle through it")
    for folder, allowed in TREE.items():
        used = set()
        for file in sorted(path for path in (top / folder).iterdir() if path.suffix in (".cpp", ".h")):
            text = file.read_text(encoding="utf-8")
            if text.count("\n") > MAX_LINES:
                problems.append(f"{file.relative_to(top)}: longer than {MAX_LINES} lines")
            for name in INCLUDE.findall(text):
                place = place_of(name, file, top)
                if place is None or place == folder:
                    continue
                used.add(place)
                if place not in allowed.split():
                    problems.append(f"{file.relative_to(top)} includes {name}, which {folder} may not use")
        problems += [f"{folder} does not use {unused}: remove it from the table"
                     for unused in sorted(set(allowed.split()) - used)]
        arrows[folder] = used
    known = {path.parent.relative_to(top).as_posix() for part in ("app", "common", "dialogs", "libraries", "platform",
                                                                  "search", "services")
             for path in (top / part).rglob("*.h")}
    problems += [f"{folder} is not in the table" for folder in sorted(known - set(TREE))]
    rooms = {folder: used for folder, used in arrows.items() if folder.startswith("services/")}
    count = sum(place.startswith("services/") for used in rooms.values() for place in used)
    print(f"{len(TREE)} folders; {len(rooms)} rooms of the services with {count} arrows between them")
    return problems


top_folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]).resolve()
faults = check(top_folder)
print("\n".join(faults))
sys.exit(1 if faults else 0)
