#!/usr/bin/env python3
"""Checks that the tests which documents name as proof are there.

named_tests.py TESTS DOCUMENT...    fails when TESTS, a folder, lacks a file or a name that is quoted
"""

import pathlib
import re
import sys

# A file of tests, or words run together, perhaps behind a suite's name: `LikeThis`, `Suite.LikeThis`.
QUOTED = re.compile(r"`(\w+\.cpp|(?:[A-Z]\w*\.)?(?:[A-Z][a-z]+\d*){2,})`")


def main():
    folder = pathlib.Path(sys.argv[1])
    paths = [*folder.rglob("*.cpp"), *folder.rglob("CMakeLists.txt")]
    files = {path.name for path in paths}
    words = set(re.findall(r"\w+", "\n".join(path.read_text(encoding="utf-8") for path in paths)))
    count = 0
    missing = []
    for document in sys.argv[2:]:
        for name in QUOTED.findall(pathlib.Path(document).read_text(encoding="utf-8")):
            count += 1
            if name not in files and not set(name.split(".")) <= words:
                missing.append(f"{document}: {name}")
    print(f"{count} names, {len(missing)} of them missing", *missing, sep="\n")
    return 1 if missing or count < 20 else 0


if __name__ == "__main__":
    sys.exit(main())
