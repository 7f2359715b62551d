#!/usr/bin/env python3
"""Checks that every #include "..." under src/ stays on its own floor or goes down.

The floors, from the bottom: a folder may include its own headers and those of the folders listed
before it. Two folders are edges that only the application's composition (app) includes: the
Linux implementations of the platform interfaces, and the command line. The floors up to cli are
free of Qt, and include no Qt header either; only the Linux implementations include the headers of
X11, xcb and Tesseract. The platform interfaces include nothing of ours but common.

Usage: check-includes.py [SOURCE_ROOT]   (the repository's src/ by default)
Prints one line per offending include, as FILE:LINE: message, and exits 1 if there is any.
"""

import pathlib
import re
import sys

FLOORS = [
    # Without Qt.
    "common",  # shared vocabulary: chords, find-and-replace request, UTF-8 and ASCII helpers
    "transform",  # the engine
    "platform",  # interfaces to the system, in-memory implementations
    "settings/preferences",  # preference keys and read rules, protected terms store
    "clipboard/text",  # line tools, statistics, RTF and HTML readers
    "capture/text",  # recognised text assembled into lines
    "cli",  # the command line
    # With Qt.
    "platform/linux",  # the Linux implementations of the platform interfaces
    "settings",  # AppSettings, HotKeyManager
    "clipboard",  # the clipboard controllers, which read the settings
    "capture",
    "ui",
    "app/menu",
    "app",  # the composition: wires everything together
]
LAST_QT_FREE = "cli"
# Included by the composition only, whatever their floor.
EDGES = {"platform/linux", "cli"}
COMPOSITION = "app"
# Floors narrower than the order: the platform interfaces speak only the shared vocabulary.
ONLY_FROM = {"platform": {"common"}}

RANK = {folder: rank for rank, folder in enumerate(FLOORS)}
QT_FREE = set(FLOORS[: RANK[LAST_QT_FREE] + 1])
QUOTED_INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"')
QT_INCLUDE = re.compile(r"^\s*#\s*include\s+<(Q[A-Za-z]*|Qt[A-Za-z]*/[^>]*)>")
WINDOW_SYSTEM_INCLUDE = re.compile(r"^\s*#\s*include\s+<(X11|xcb|tesseract|leptonica)/")
WINDOW_SYSTEM_FOLDER = "platform/linux"


def folder_of(relative_path):
    """The floor a path (relative to src/) lies on: its longest listed parent folder."""
    parts = pathlib.PurePosixPath(relative_path).parts[:-1]
    for length in range(len(parts), 0, -1):
        candidate = "/".join(parts[:length])
        if candidate in RANK:
            return candidate
    return None


def check_file(path, root):
    own = folder_of(path.relative_to(root).as_posix())
    if own is None:
        return [f"{path}:1: folder not on any floor; add it to FLOORS in {pathlib.Path(__file__).name}"]
    problems = []
    for number, line in enumerate(path.read_text(encoding="utf-8", errors="replace").splitlines(), 1):
        if own in QT_FREE and QT_INCLUDE.match(line):
            problems.append(f"{path}:{number}: {own} is free of Qt but includes {line.strip()}")
            continue
        if own != WINDOW_SYSTEM_FOLDER and WINDOW_SYSTEM_INCLUDE.match(line):
            problems.append(f"{path}:{number}: only {WINDOW_SYSTEM_FOLDER} includes {line.strip()}")
            continue
        match = QUOTED_INCLUDE.match(line)
        if not match or "/" not in match.group(1):
            continue  # a header of the same folder, or a generated one beside the source
        included = match.group(1)
        target = folder_of(included)
        if target is None:
            problems.append(f'{path}:{number}: "{included}" is in no folder on a floor')
        elif target == own:
            continue
        elif RANK[target] > RANK[own]:
            problems.append(f'{path}:{number}: {own} includes "{included}" from {target}, a floor above it')
        elif own in ONLY_FROM and target not in ONLY_FROM[own]:
            problems.append(f'{path}:{number}: {own} includes "{included}"; it includes only {", ".join(sorted(ONLY_FROM[own]))}')
        elif target in EDGES and own != COMPOSITION:
            problems.append(f'{path}:{number}: {own} includes "{included}"; only {COMPOSITION} includes {target}')
    return problems


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2] / "src")
    sources = sorted(p for p in root.rglob("*") if p.suffix in {".h", ".cpp"} and p.is_file())
    if not sources:
        print(f"{root}: no sources found")
        return 1
    problems = [problem for path in sources for problem in check_file(path, root)]
    for problem in problems:
        print(problem)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
