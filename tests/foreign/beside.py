"""A drawing's path beside the reference, ezdxf and GDAL at once, by the entities of model space."""

from collections import Counter

import ezdxf
import numpy as np

import comparison
import differences
import readers
import reference

# GDAL's arcs, in degrees a step: a chord leaves a bulge of one step by this part of its length.
STEP = 0.25
SAGITTA = np.radians(STEP) / 8


class Drawing:
    """A drawing, and what each reader makes of it."""

    def __init__(self, file, tolerance):
        self.doc = ezdxf.readfile(file)
        self.tolerance = tolerance
        self.entities = {int(entity.dxf.handle, 16): entity for entity in self.doc.modelspace()}
        self.compared = Counter()  # entities, by reader
        self.passed_over = Counter()  # entities, by reader and reason
        # The entities that each reader reads rightly, by their keys.
        self.expected = {"reference": set(self.entities)}
        self.runs = {"reference": self._reference_runs()}
        rightly = self._read_rightly("ezdxf", differences.of_ezdxf)
        self.runs["ezdxf"] = readers.ezdxf_runs(self.doc, tolerance / 4, rightly)
        if readers.gdal is not None:
            self._read_rightly("GDAL", differences.of_gdal)
            self.runs["GDAL"] = readers.gdal_runs(file, STEP)

    def _reference_runs(self):
        runs = readers.Runs()
        for strand in reference.Reference(self.doc, self.tolerance / 4).strands:
            runs.add(strand.insert or strand.handle, strand.layer, [strand.points])
        return runs

    def _read_rightly(self, reader, rule):
        """The entities that a reader reads rightly."""
        self.expected[reader] = set()
        for key, entity in self.entities.items():
            reasons = differences.reasons(entity, rule)
            self.passed_over.update((reader, reason) for reason in reasons)
            if not reasons:
                self.expected[reader].add(key)
        return [self.entities[key] for key in self.expected[reader]]

    def deviation(self, reader, points):
        """The most that a reader's chords leave their curves."""
        if reader == "GDAL":
            return SAGITTA * np.linalg.norm(np.ptp(points, axis=0))
        # ezdxf looks at the middles of chords alone; those of the reference are asked twice.
        return self.tolerance * (1.0 if reader == "ezdxf" else 0.25)

    def fine_readers(self, key):
        """The readers whose chords leave the curves of an entity by less than the tolerance."""
        return [reader for reader, runs in self.runs.items()
                if self.deviation(reader, np.concatenate(runs.all_of(key))) <= self.tolerance]

    def findings(self, path):
        """What is different in a path, in words."""
        ours = ours_of(path, self.runs["reference"])
        findings = [f"{key:X} is no entity of model space"
                    for key in ours.keys - self.entities.keys()]
        for reader, runs in self.runs.items():
            keys = self.expected[reader] & (ours.keys | runs.keys)
            self.compared[reader] += len(keys)
            for key in sorted(keys):
                findings += [f"{reader}: {key:X}, layer {what}"
                             for what in self._of(reader, key, ours.of(key), runs.of(key))]
        return findings

    def _of(self, reader, key, ours, theirs):
        if reader == "GDAL" and differences.loses_heights(self.entities[key]):
            ours, theirs = ({layer: [run * [1, 1, 0] for run in runs]
                             for layer, runs in some.items()} for some in (ours, theirs))
        points = np.concatenate([run for some in (ours, theirs) for runs in some.values()
                                 for run in runs])
        rounding = 1e-12 * np.abs(points).max()
        return comparison.compare(ours, theirs, self.deviation(reader, points) + rounding,
                                  self.tolerance + rounding, 0.002)


def ours_of(path, runs):
    """The path by entities of model space."""
    ours = readers.Runs()
    for first, last, _, _, entity in path.pieces:
        row = path.dump["entities"][entity]
        ours.add(row[1] or row[0], path.layer_of(row), [path.points[first:last + 1]])
    for row, ends in path.ends_with_pieceless():
        # A dot on one of the ends of its contour.
        key = row[1] or row[0]
        if len(ends):
            known = runs.all_of(key) or [ends]
            away = comparison.distances_to(ends, *comparison.segments_of(known))
            ours.add(key, path.layer_of(row), [ends[away.argmin()][None, :]])
    return ours
