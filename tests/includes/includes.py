#!/usr/bin/env python3
"""Checks which folder of the tree includes what of which other one.

includes.py ROOT    fails when an include goes against the layers, enters the detail/ of another
                    folder, or is not written from the root
"""

import pathlib
import re
import sys

LIBRARY = ["universal_log_interface", "base", "dxfeditor", "converters"]
# What the sources of a folder may include besides its own headers. A layer of the library has those
# below it.
ALLOWED = {layer: set(LIBRARY[:level]) for level, layer in enumerate(LIBRARY)}
ALLOWED["tools"] = set(LIBRARY)
ALLOWED["python"] = set(LIBRARY)
ALLOWED["examples"] = {"converters", "dxfeditor", "universal_log_interface"}
ALLOWED["benchmarks"] = set(LIBRARY) | {"tests/support"}
ALLOWED["fuzz"] = set(LIBRARY) | {"tests/support"}
ALLOWED["tests"] = set(LIBRARY) | {"tools", "fuzz"}
# Programs outside the tree, as the tests of an install are, include it by angle brackets.
INCLUDE = re.compile(r'^\s*#\s*include\s*(?:"([^"]*)"|<([^>]*)>)', re.MULTILINE)


def may_enter(source, detail_owner):
    """Whether a source may include what is in the detail/ of a folder: its own sources may, and the
    tests in the folder of its name."""
    folders = source.split("/")
    if folders[0] == "tests":
        folders = folders[1:]
    return folders[0] == detail_owner


def fault(source, header, is_quoted):
    """What is wrong with an include; None when it is right."""
    folder = source.split("/")[0]
    target = header.split("/")[0]
    if target not in ALLOWED or "/" not in header:
        return "is not written from the root" if is_quoted else None
    if target != folder and not any(
            header.startswith(allowed + "/") for allowed in ALLOWED[folder]):
        return f"{folder} must not know {target}"
    if "/detail/" in header and not may_enter(source, target):
        return f"the detail of {target} serves {target} alone"
    return None


def faults(files):
    """All faults, as "file:line: include: what is wrong".

    files -- a dictionary of path from the root to text
    """
    found = []
    for source, text in sorted(files.items()):
        for match in INCLUDE.finditer(text):
            header = match[1] or match[2] or ""
            what = fault(source, header, match[1] is not None)
            if what:
                line = text.count("\n", 0, match.start(0) + 1) + 1
                found.append(f"{source}:{line}: {header}: {what}")
    return found


def sources_below(root):
    """The text of every source of the tree."""
    return {
        str(path.relative_to(root)): path.read_text(encoding="utf-8")
        for folder in ALLOWED for path in sorted((root / folder).rglob("*"))
        if path.suffix in {".h", ".cpp", ".hpp", ".cc", ".c"}
    }


def main():
    files = sources_below(pathlib.Path(sys.argv[1]))
    found = faults(files)
    print(*found, f"{len(files)} files, {len(found)} faults", sep="\n")
    # A tree in which nothing was found was not looked at.
    return 1 if found or len(files) < 100 else 0


if __name__ == "__main__":
    sys.exit(main())
