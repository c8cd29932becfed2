#!/usr/bin/env python3
"""Compares the path of drawings with what other readers make of them.

path.py PATH_DUMP random COUNT     with reference.py, on random drawings with everything
path.py PATH_DUMP readers COUNT    with it, ezdxf and GDAL, on small random drawings, by entity
path.py PATH_DUMP spoiled COUNT    the same with paths that are wrong: each has to be found
path.py PATH_DUMP programs COUNT FOLDER
                                   with itself, on random drawings and those of a folder as other
                                   programs would have written them
path.py PATH_DUMP odd              with ezdxf's, on unusual drawings by hand
path.py PATH_DUMP samples FOLDER   with reference.py, on the drawings of a folder

CONVERTERS_TEST_EFFORT=N in the environment takes N times as many random drawings.
CONVERTERS_TEST_SEED=N begins with drawing N. What is found wrong is kept in
/tmp/path-findings. Exit status 77: something that is needed is not installed.
"""

import copy
import gc
import io
import json
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
from collections import Counter, defaultdict

# Small matrices: more threads only wait for each other.
os.environ.setdefault("OPENBLAS_NUM_THREADS", "1")

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
import beside
import comparison
import corruptions
import odd_drawings
import programs
import random_drawings
import readers
import reference

EFFORT = float(os.environ.get("CONVERTERS_TEST_EFFORT", "1"))
SEED = int(os.environ.get("CONVERTERS_TEST_SEED", "0"))
KEPT = pathlib.Path("/tmp/path-findings")
# Entities of model space by reader, and those passed over, by reader and reason.
COMPARED, PASSED_OVER = Counter(), Counter()
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


def small_drawing(seed, file):
    """Beside all readers at once: (drawing, path_dump's options)."""
    maker = random_drawings.Maker(seed, small=True)
    maker.make().saveas(file)
    drawing = beside.Drawing(file, 2e-3 * maker.size)
    return drawing, ["--tolerance", repr(drawing.tolerance), "--join", "0"]


def readers_findings(dump, seed, file):
    drawing, options = small_drawing(seed, file)
    json_of_path = dump.path_of(file, options)
    if not json_of_path["success"]:
        return ["refused: " + json_of_path["reason"]], options
    findings = drawing.findings(comparison.Path(json_of_path))
    COMPARED.update(drawing.compared)
    PASSED_OVER.update(drawing.passed_over)
    return findings, options


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
    began = time.process_time()
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "drawing.dxf")
        for seed in range(SEED, SEED + count):
            findings, options = findings_of(dump, seed, file)
            if findings:
                failed += 1
                keep(file, f"{name}-{seed}", getattr(options, "words", options), findings)
    print(f"{count} drawings, {failed} with findings, {time.process_time() - began:.0f} s")
    return 1 if failed else 0


def run_readers(dump, count):
    status = run_random(dump, count, readers_findings, "readers")
    for reader, number in COMPARED.items():
        reasons = {why: n for (who, why), n in PASSED_OVER.items() if who == reader}
        print(f"beside {reader}: {number} entities; passed over: {reasons}")
    # A rule that passes over most of the drawings compares nothing.
    few = [reader for reader, number in COMPARED.items() if number < COMPARED["reference"] * 0.7]
    print(f"too few beside {few}" if few else "enough beside each")
    return 1 if few else status


def spoiled(seed, json_of_path, drawing, spoil):
    """(a path with one entity spoiled, the key of that entity in model space), or None."""
    path = comparison.Path(copy.deepcopy(json_of_path))
    entities = path.dump["entities"]
    drawn = [index for index in sorted(set(path.pieces[:, 4]))
             if all((entities[index][1] or entities[index][0]) in expected
                    for expected in drawing.expected.values())]
    if not drawn:
        return None
    entity = random.Random(seed).choice(drawn)
    key = entities[entity][1] or entities[entity][0]
    return (path, key) if spoil(path, entity, drawing.tolerance) else None


def run_spoiled(dump, count):
    """Each reader has to find each corruption."""
    failed = 0
    tried = Counter()
    with tempfile.TemporaryDirectory() as folder:
        file = os.path.join(folder, "drawing.dxf")
        for seed in range(SEED, SEED + count):
            drawing, options = small_drawing(seed, file)
            json_of_path = dump.path_of(file, options)
            for spoil in corruptions.CORRUPTIONS:
                path, key = spoiled(seed, json_of_path, drawing, spoil) or (None, None)
                found = drawing.findings(path) if path else []
                for reader in drawing.fine_readers(key) if path else []:
                    tried[spoil.__name__, reader] += 1
                    if not any(what.startswith(f"{reader}: {key:X},") for what in found):
                        failed += 1
                        print(f"drawing {seed}: {spoil.__name__} of {key:X} not found by {reader}")
    few = [f"{spoil.__name__}, {reader}" for spoil in corruptions.CORRUPTIONS
           for reader in drawing.runs if tried[spoil.__name__, reader] < count // 20]
    print(f"{sum(tried.values())} comparisons with spoiled paths, {failed} without a finding; "
          f"too few: {few}")
    return 1 if failed or few else 0


def shown_by(json_of_path):
    """What a path says of what is drawn, apart from handles and from what is left out."""
    names = ("success", "reason", "points", "pieces", "arcs", "ellipticArcs", "splines", "length")
    layers = [layer["name"].casefold() for layer in json_of_path.get("layers", [])]
    contours = [(contour["points"], contour["closed"], contour["colour"], layers[contour["layer"]])
                for contour in json_of_path.get("contours", [])]
    return {"contours": contours, **{name: json_of_path.get(name) for name in names}}


def program_findings(dump, text, seed, file):
    """Of a text of one byte a character and of the same as another program would write it."""
    options = ["--tolerance", "0.01", "--join", "0"]
    names, other = programs.rewritten(text, random.Random(seed))
    paths = []
    for content in (text, other):
        pathlib.Path(file).write_bytes(content.encode("latin-1"))
        paths.append(shown_by(dump.path_of(file, options)))
    return [f"{name} after {names}" for name in paths[0] if paths[0][name] != paths[1][name]]


def texts_of(folder, count):
    """(name, text) of the drawings of a folder, if it is there, and of random ones."""
    for drawing in sorted(pathlib.Path(folder).glob("**/*.dxf")):
        text = drawing.read_bytes().decode("latin-1")
        for seed in range(4 if not text.startswith("AutoCAD Binary") else 0):
            yield f"{drawing.name}-{seed}", text
    for seed in range(SEED, SEED + count):
        stream = io.StringIO()
        doc = random_drawings.Maker(seed, small=True).make()
        doc.write(stream)
        yield seed, doc.encode(stream.getvalue()).decode("latin-1")


def run_programs(dump, count, folder):
    failed = total = 0
    with tempfile.TemporaryDirectory() as temporary:
        file = os.path.join(temporary, "drawing.dxf")
        for name, text in texts_of(folder, count):
            total += 1
            findings = program_findings(dump, text, str(name), file)
            if findings:
                failed += 1
                keep(file, f"program-{name}", ["--tolerance", "0.01", "--join", "0"], findings)
    print(f"{total} drawings, {failed} with findings")
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
    runs = readers.ezdxf_runs(read_tolerantly(file), tolerance / 100).points.values()
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
    if mode == "programs":
        return run_programs(dump, max(1, round(int(sys.argv[3]) * EFFORT)), sys.argv[4])
    count = max(1, round(int(sys.argv[3]) * EFFORT))
    if mode != "random" and readers.gdal is None:
        print("without GDAL: python3-gdal is not installed")
    if mode == "random":
        return run_random(dump, count, random_findings, mode)
    # ezdxf makes a hundred thousand objects a drawing, few of them in cycles.
    gc.freeze()
    gc.set_threshold(200_000, 50, 50)
    return run_readers(dump, count) if mode == "readers" else run_spoiled(dump, count)


if __name__ == "__main__":
    sys.exit(main())
