#!/usr/bin/env python3
"""Compares the path of drawings with what other readers make of them.

path.py PATH_DUMP random           with reference.py, on random drawings with everything
path.py PATH_DUMP ezdxf            with ezdxf's own flattening, on those that it reads rightly
path.py PATH_DUMP gdal             with GDAL's, the same
path.py PATH_DUMP odd              with ezdxf's, on unusual drawings by hand
path.py PATH_DUMP samples FOLDER   with reference.py, on the drawings of a folder

CONVERTERS_TEST_EFFORT=N in the environment takes N times as many random drawings; without, those
for ezdxf and gdal are skipped, since either may read one of them wrongly.
CONVERTERS_TEST_SEED=N begins with drawing N. What is found wrong is kept in
/tmp/path-findings. Exit status 77: something that is needed is not installed.
"""

import json
import math
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
from collections import Counter, defaultdict

try:
    import ezdxf
    import ezdxf.recover
    import numpy as np
    import scipy  # noqa: F401, pylint: disable=unused-import
except ImportError as missing:
    print(f"skipped: python3-{missing.name} is not installed")
    sys.exit(77)

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
# pylint: disable=wrong-import-position
import comparison
import odd_drawings
import random_drawings
import readers
import reference

EFFORT = float(os.environ.get("CONVERTERS_TEST_EFFORT", "1"))
SEED = int(os.environ.get("CONVERTERS_TEST_SEED", "0"))
KEPT = pathlib.Path("/tmp/path-findings")
# By the number of $INSUNITS.
METRES = [0, 0.0254, 0.3048, 1609.344, 1e-3, 1e-2, 1, 1e3, 2.54e-8, 2.54e-5, 0.9144, 1e-10, 1e-9,
          1e-6, 0.1, 10, 100, 1e9, 149597870700, 9460730472580800, 3.0856775814913673e16,
          1200 / 3937]


class Dump:
    """The program path_dump, which takes jobs as long as it lives."""

    def __init__(self, program):
        self.program = program
        self.process = None

    def path_of(self, drawing, options):
        if self.process is None or self.process.poll() is not None:
            self.process = subprocess.Popen([self.program], stdin=subprocess.PIPE,
                                            stdout=subprocess.PIPE, text=True)
        self.process.stdin.write("\t".join([*options, str(drawing)]) + "\n")
        self.process.stdin.flush()
        line = self.process.stdout.readline()
        if not line:
            return {"success": False, "reason": f"path_dump ended with {self.process.wait()}"}
        return json.loads(line)


class Options:
    """Options of the reader, at random, and what follows from them."""

    def __init__(self, chance, header, size):
        unit = header.get("$INSUNITS", 0)
        unit = unit if 0 <= unit < len(METRES) else 0
        self.words = []
        self.hidden = chance.random() < 0.15
        self.paper_space = chance.random() < 0.15
        self.plain_axes = chance.random() < 0.1
        wanted = chance.choice([0, 0, 0, 1, 4, 6])
        scale = chance.choice([1, 1, 1, 0.5, 100])
        # Without a unit, the drawing's other word on it counts.
        likely = unit or (1 if header.get("$MEASUREMENT", 1) == 0 else 4)
        factor = METRES[likely] / METRES[wanted] if wanted else 1.0
        result_unit = wanted or unit
        self.factor = factor * scale
        self.tolerance = 0.01 / 1000 / METRES[result_unit] if METRES[result_unit] else 0.01
        # Smaller ones on large drawings are for the benchmark.
        least = 1e-6 * size * self.factor
        if chance.random() < 0.5 or self.tolerance < least:
            self.tolerance = size * self.factor * 10 ** chance.uniform(-5, -1.5)
            self._add("--tolerance", self.tolerance)
        self.step = None
        if chance.random() < 0.2:
            self.step = size * self.factor * chance.uniform(0.02, 2)
            self._add("--step", self.step)
        self.join = 0.001 * self.factor
        if chance.random() < 0.6:
            self.join = 0.0
            self._add("--join", 0)
        if wanted:
            self._add("--unit", wanted)
        if scale != 1:
            self._add("--scale", scale)
        for name in ("hidden", "paper_space"):
            if getattr(self, name):
                self.words.append("--" + name.replace("_", "-"))
        if self.plain_axes:
            self._add("--axes", "plain")
        self.order = chance.choice(["drawn", "drawn", "nearest", "inside-first"])
        self._add("--order", self.order)

    def _add(self, name, value):
        self.words += [name, repr(value) if isinstance(value, float) else str(value)]

    def applied(self, points):
        points = points * self.factor
        if self.plain_axes:
            points = np.column_stack([points[:, 0], np.zeros(len(points)), points[:, 1]])
        return points


def own_findings(path, options):
    """What is wrong with a path by itself."""
    findings = comparison.chain_findings(path, options.join) + comparison.total_findings(path)
    findings += comparison.join_findings(path)
    findings += comparison.piece_findings(path, options.tolerance, options.join, options.step)
    return findings


def reference_findings(path, drawn, options, spread):
    theirs = defaultdict(list)
    layers = {}
    for strand in drawn.strands:
        key = (strand.handle, strand.insert)
        theirs[key].append(options.applied(strand.points))
        layers.setdefault(key, set()).add(strand.layer.casefold())
    ours = path.runs_by(lambda entity: (entity[0], entity[1]))
    for entity, ends in path.ends_with_pieceless():
        # Where it should be, and no longer than that: a dot.
        dot = theirs.get((entity[0], entity[1]), [ends])[0][0]
        nearest = np.linalg.norm(ends - dot, axis=1).argmin()
        ours[(entity[0], entity[1])].append(ends[nearest:nearest + 1])
    rounding = 1e-9 * spread + options.join
    findings = comparison.compare(ours, theirs, drawn.deviation * options.factor + rounding,
                                  options.tolerance + drawn.deviation * options.factor + rounding)
    length = sum(comparison.length_of(runs) for runs in theirs.values())
    if abs(path.dump["length"] - length) > 0.01 * length + 2 * options.join * len(path.pieces):
        findings.append(f"the length is {path.dump['length']}, not {length}")
    for entity in path.dump["entities"]:
        layer = path.layer_of(entity).casefold()
        if layer not in layers.get((entity[0], entity[1]), {layer}):
            findings.append(f"{entity[0]:X}: is on layer {layer}")
    return findings


def left_out_findings(path, drawn):
    ours = Counter()
    for left_out in path.dump["leftOut"]:
        ours[left_out["kind"]] += left_out["number"]
    theirs = Counter()
    for (kind, _), number in drawn.left_out.items():
        theirs[kind] += number
    if ours == theirs:
        return []
    return [f"left out: {dict(ours - theirs)} too many, {dict(theirs - ours)} too few"]


def with_reference(dump, file, doc, size, chance, strict=True):
    options = Options(chance, doc.header, size)
    deviation = options.tolerance / options.factor / 20
    drawn = reference.Reference(doc, deviation, options.hidden, options.paper_space)
    json_of_path = dump.path_of(file, options.words)
    if not json_of_path["success"]:
        return ["refused: " + json_of_path["reason"]], options
    path = comparison.Path(json_of_path)
    spread = np.abs(path.points).max(initial=size * options.factor)
    findings = reference_findings(path, drawn, options, spread) + own_findings(path, options)
    if strict:
        findings += left_out_findings(path, drawn)
    return findings, options


def random_findings(dump, seed, file):
    maker = random_drawings.Maker(seed)
    random_drawings.write(maker.make(), file, seed)
    doc = ezdxf.readfile(file)
    return with_reference(dump, file, doc, maker.size, random.Random(seed))


# What the two read rightly; the others are in README.md beside this file.
EZDXF_KINDS = [kind for kind in random_drawings.CURVES if kind != "FITTED"]
EZDXF_SPLINES = ["clamped", "rational", "repeated knots", "fit points, tangents"]
GDAL_KINDS = ["POINT", "LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "POLYLINE3D"]


def foreign_findings(dump, seed, file, kinds, splines, release, runs_of):
    maker = random_drawings.Maker(seed, only=kinds, plain=True, splines=splines,
                                  release=release, nested=False)
    maker.make().saveas(file)
    doc = ezdxf.readfile(file)
    tolerance = 1e-3 * maker.size
    options = ["--tolerance", repr(tolerance), "--join", "0"]
    json_of_path = dump.path_of(file, options)
    if not json_of_path["success"]:
        return ["refused: " + json_of_path["reason"]], options
    path = comparison.Path(json_of_path)
    ours = path.runs_by(lambda entity: entity[1] or entity[0])
    theirs, deviation = runs_of(doc, file, tolerance / 10)
    # Where scales are large, what is a deviation in a block is a larger one in the drawing.
    spread = np.abs(path.points).max(initial=maker.size)
    rounding = 1e-7 * spread
    return comparison.compare(ours, theirs, deviation(spread) + rounding,
                              tolerance + deviation(spread) + rounding, 0.01), options


def ezdxf_findings(dump, seed, file):
    def runs_of(doc, _, distance):
        # It looks at the middles of chords only: ask for more than is needed.
        return readers.ezdxf_runs(doc, distance / 10), lambda _: 3 * distance
    release = random.Random(seed).choice(random_drawings.RELEASES)
    return foreign_findings(dump, seed, file, EZDXF_KINDS, EZDXF_SPLINES, release, runs_of)


def gdal_findings(dump, seed, file):
    degrees = 0.5

    def runs_of(_, drawing, __):
        # Half a step's chord leaves an arc by this part of its radius.
        part = 1 - math.cos(math.radians(degrees) / 2)
        return readers.gdal_runs(drawing, degrees), lambda spread: 10 * part * spread
    return foreign_findings(dump, seed, file, GDAL_KINDS, None, "R2010", runs_of)


def keep(file, seed, options, findings):
    KEPT.mkdir(exist_ok=True)
    place = KEPT / f"{seed}.dxf"
    shutil.copy(file, place)
    (KEPT / f"{seed}.txt").write_text("\n".join([" ".join(map(str, options)), *findings]) + "\n",
                                      encoding="utf-8")
    print(f"drawing {seed}: {len(findings)} findings ({place}), options {options}")
    for finding in findings[:6]:
        print("   ", finding)


def run_random(dump, count, findings_of, name):
    failed = 0
    began = time.time()
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "drawing.dxf")
        for seed in range(SEED, SEED + count):
            findings, options = findings_of(dump, seed, file)
            if findings:
                failed += 1
                keep(file, f"{name}-{seed}", getattr(options, "words", options), findings)
    print(f"{count} drawings, {failed} with findings, {time.time() - began:.0f} s")
    return 1 if failed else 0


def read_tolerantly(drawing):
    try:
        return ezdxf.readfile(str(drawing))
    except (ezdxf.DXFError, OSError):
        # Of texts only, but of broken ones.
        return ezdxf.recover.readfile(str(drawing))[0]


def odd_findings(dump, file, text):
    with open(file, "w", encoding="utf-8", newline="") as drawing:
        drawing.write(text)
    tolerance = 1e-3
    json_of_path = dump.path_of(file, ["--tolerance", repr(tolerance), "--join", "0"])
    if not json_of_path["success"]:
        return ["refused: " + json_of_path["reason"]]
    ours = comparison.Path(json_of_path).runs_by(lambda entity: "all")
    runs = readers.ezdxf_runs(read_tolerantly(file), tolerance / 100).values()
    theirs = {"all": [run for some in runs for run in some]}
    rounding = 1e-9 * np.abs(np.concatenate(theirs["all"])).max()
    return comparison.compare(ours, theirs, tolerance / 10 + rounding, 1.1 * tolerance + rounding)


def run_odd(dump):
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "drawing.dxf")
        for name, text in odd_drawings.DRAWINGS.items():
            findings = odd_findings(dump, file, text)
            if findings:
                failed += 1
                keep(file, name.replace(" ", "-"), ["--join", "0"], findings)
    print(f"{len(odd_drawings.DRAWINGS)} drawings, {failed} with findings")
    return 1 if failed else 0


def run_samples(dump, folder):
    drawings = sorted(pathlib.Path(folder).glob("**/*.dxf"))
    if not drawings:
        print(f"skipped: no drawings in {folder}")
        return 77
    failed = 0
    for drawing in drawings:
        findings = sample_findings(dump, drawing)
        print(f"{drawing.name}: {len(findings)} findings")
        for finding in findings[:10]:
            print("   ", finding)
        failed += bool(findings)
    return 1 if failed else 0


def sample_findings(dump, drawing):
    doc = read_tolerantly(drawing)
    points = comparison.Path(dump.path_of(drawing, [])).points
    size = np.ptp(points, axis=0).max() if len(points) else 1.0
    findings = []
    for seed in range(3):
        found, options = with_reference(dump, drawing, doc, size, random.Random(seed), False)
        findings += [f"{' '.join(options.words)}: {what}" for what in found]
    return findings


def main():
    dump = Dump(sys.argv[1])
    mode = sys.argv[2]
    if mode == "odd":
        return run_odd(dump)
    if mode == "samples":
        return run_samples(dump, sys.argv[3])
    if mode == "gdal" and readers.gdal is None:
        print("skipped: python3-gdal is not installed")
        return 77
    if mode != "random" and "CONVERTERS_TEST_EFFORT" not in os.environ:
        # What they read otherwise than the format has it is not known to the last drawing.
        print(f"skipped: compared with {mode} when CONVERTERS_TEST_EFFORT is set")
        return 77
    counts = {"random": (40, random_findings), "ezdxf": (25, ezdxf_findings),
              "gdal": (25, gdal_findings)}
    count, findings_of = counts[mode]
    return run_random(dump, max(1, round(count * EFFORT)), findings_of, mode)


if __name__ == "__main__":
    sys.exit(main())
