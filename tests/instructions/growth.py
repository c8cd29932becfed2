#!/usr/bin/env python3
"""Compares the instructions for hostile drawings with those for the same, ten times as large.

growth.py WORKLOADS    fails when one takes out of proportion more

They are counted with callgrind, so that no busy machine changes the answer.
"""

import os
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from counts import count  # pylint: disable=wrong-import-position

# Ten times in proportion, a little more where things are sorted, a hundred times where the cost goes
# with the square.
MOST = 20
# De Boor's algorithm takes half the square of the degree, for each point. Blocks are gone through
# as often as they are inserted, which PathOptions::maximumEntities bounds.
MOST_OF_SQUARE = 110
DEPTHS = "path-TheDepthsOfBlocksInBlocksEachInserted"
SQUARE = {"DegreeOfASpline", "path-OneSplineOfAHighDegree", DEPTHS, DEPTHS + "-inside-first"}


def main():
    with tempfile.TemporaryDirectory() as directory:
        counts = {name: figure for name, (figure, _) in count(sys.argv[1], directory).items()}
    names = [name.removesuffix(":small") for name in counts if name.endswith(":small")]
    good = len(names) > 1 and len(counts) == 2 * len(names)
    for name in names:
        small, large = counts[name + ":small"], counts[name + ":large"]
        most = MOST_OF_SQUARE if name in SQUARE else MOST
        verdict = ""
        if large > most * small:
            verdict = "  OUT OF PROPORTION"
            good = False
        print(f"{name:48} {small:12,} {large:14,} {large / small:6.1f}{verdict}")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
