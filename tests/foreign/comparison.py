"""Compares a path, as path_dump prints it, with strands of points that are known to be right, and
its exact pieces with its points."""

import math
from collections import defaultdict

import numpy as np
from scipy.interpolate import BSpline
from scipy.spatial import cKDTree

POINT, LINE, ARC, ELLIPTIC_ARC, SPLINE = range(5)


def segments_of(runs):
    """Starts and ends of all segments of some runs of points; a single point is one, too."""
    starts = [run[:-1] if len(run) > 1 else run for run in runs]
    ends = [run[1:] if len(run) > 1 else run for run in runs]
    return np.concatenate(starts), np.concatenate(ends)


def distances_to(points, starts, ends):
    """Of each point to the nearest of some segments; in portions that stay in the cache."""
    along = ends - starts
    square = np.maximum((along * along).sum(axis=1), 1e-300)
    result = np.empty(len(points))
    portion = max(1, 20_000 // len(starts))
    for first in range(0, len(points), portion):
        some = points[first:first + portion, None, :]
        part = ((some - starts) * along).sum(axis=2) / square
        nearest = starts + np.clip(part, 0, 1)[:, :, None] * along
        result[first:first + portion] = np.sqrt((((some - nearest)) ** 2).sum(axis=2).min(axis=1))
    return result


def rough_squares(points, starts, ends):
    """The squares of distances_to(), several times as fast, and good to 1e-15 of the extent's
    square alone."""
    middle = starts.mean(axis=0)
    points, starts = points - middle, starts - middle
    along = ends - middle - starts
    square = np.maximum((along * along).sum(axis=1), 1e-300)
    from_origin = (starts * along).sum(axis=1)
    starts_square = (starts * starts).sum(axis=1)
    result = np.empty(len(points))
    portion = max(1, 60_000 // len(starts))
    for first in range(0, len(points), portion):
        some = points[first:first + portion]
        # (point - start) . along, and its part of the segment
        way = some @ along.T - from_origin
        part = np.clip(way / square, 0, 1)
        away = starts_square - 2 * (some @ starts.T) + part * (part * square - 2 * way)
        result[first:first + portion] = away.min(axis=1) + (some * some).sum(axis=1)
    return np.maximum(result, 0)


def farthest(points, runs, limit):
    """The most that any of the points is away from the runs, or 0 where it is below the limit."""
    starts, ends = segments_of(runs)
    if len(points) * len(starts) > 400_000:
        points = _not_obviously_near(points, starts, ends, limit)
    if not len(points):
        return 0.0
    extent = np.linalg.norm(np.ptp(np.concatenate([points, starts]), axis=0))
    if 1e-14 * extent * extent < 0.1 * limit * limit:
        points = points[~(rough_squares(points, starts, ends) <= 0.9 * limit * limit)]
    if not len(points):
        return 0.0
    # A portion shows what is wrong, too.
    portion = points[::max(1, len(points) // 2000)]
    return distances_to(portion, starts, ends).max()


def _not_obviously_near(points, starts, ends, limit):
    """Without the points that are near one of the segments whose middles are nearest."""
    tree = cKDTree((starts + ends) / 2)
    count = min(3, len(starts))
    candidates = tree.query(points, k=count)[1].reshape(len(points), count)
    along = ends[candidates] - starts[candidates]
    square = np.maximum((along * along).sum(axis=2), 1e-300)
    part = ((points[:, None, :] - starts[candidates]) * along).sum(axis=2) / square
    nearest = starts[candidates] + np.clip(part, 0, 1)[:, :, None] * along
    away = np.sqrt(((points[:, None, :] - nearest) ** 2).sum(axis=2).min(axis=1))
    return points[~(away <= limit)]


class Path:
    """The JSON of path_dump as arrays."""

    def __init__(self, dump):
        self.dump = dump
        self.points = np.array(dump["points"], float).reshape(-1, 3)
        self.pieces = np.array(dump["pieces"], int).reshape(-1, 5)

    def runs_by(self, key):
        """Runs of points of the pieces, by key(entity's row)."""
        runs = defaultdict(list)
        for first, last, _, _, entity in self.pieces:
            runs[key(self.dump["entities"][entity])].append(self.points[first:last + 1])
        return runs

    def pieceless(self):
        """Entities without a piece, by their indexes: those without extent on others' ends."""
        return set(range(len(self.dump["entities"]))) - set(self.pieces[:, 4])

    def ends_with_pieceless(self):
        """(entity's row, ends of pieces of its contour) of each entity without a piece."""
        pieceless = self.pieceless()
        for contour in self.dump["contours"]:
            for entity in pieceless.intersection(range(*contour["entities"])):
                rows = self.pieces[slice(*contour["pieces"])]
                yield self.dump["entities"][entity], self.points[np.unique(rows[:, :2])]

    def layer_of(self, entity):
        return self.dump["layers"][entity[3]]["name"]


def length_of(runs):
    return sum(np.linalg.norm(np.diff(run, axis=0), axis=1).sum() for run in runs)


def shortening(runs, sagitta):
    """By how much chords may be shorter than what they leave by the sagitta at most: of a path by no
    more than a hundredth."""
    length = length_of(runs)
    count = sum(len(run) - 1 for run in runs)
    # 8/3 sagitta^2 / chord for each, for small sagittas.
    return min(4 * (sagitta * count) ** 2 / length, 0.01 * length) if length else sagitta


def compare(ours, theirs, on_curve, within, length_part=0.01):
    """Findings, in words, on runs of points by key that should be the same curves.

    on_curve: the most that a point of ours is away from theirs; within: the most that a point of
    theirs is away from our chords.
    """
    findings = []
    for key in ours.keys() - theirs.keys():
        findings.append(f"{key}: drawn, and should not be")
    for key in theirs.keys() - ours.keys():
        findings.append(f"{key}: not drawn")
    for key in ours.keys() & theirs.keys():
        away = farthest(np.concatenate(ours[key]), theirs[key], on_curve)
        if not away <= on_curve:
            findings.append(f"{key}: a point is {away:.6g} beside the curve (of {on_curve:.3g})")
        away = farthest(np.concatenate(theirs[key]), ours[key], within)
        if not away <= within:
            findings.append(f"{key}: the curve is {away:.6g} beside the chords (of {within:.3g})")
        a, b = length_of(ours[key]), length_of(theirs[key])
        if abs(a - b) > length_part * b + 2 * within + shortening(ours[key], within):
            findings.append(f"{key}: length {a:.9g} for {b:.9g}")
    return findings


# The exact pieces

def frame_of(normal, start):
    """Two directions across the normal, the first towards the start."""
    first = start / np.linalg.norm(start)
    return first, np.cross(normal, first)


def curve_of(path, piece):
    """(curve, from, to) of a piece, its kind aside."""
    first, last, kind, index, _ = piece
    dump = path.dump
    start, end = path.points[first], path.points[last]
    if kind in (POINT, LINE):
        return (lambda t: start + t[:, None] * (end - start)), 0.0, 1.0
    if kind == ARC:
        arc = dump["arcs"][index]
        centre, normal = np.array(arc["centre"]), np.array(arc["normal"])
        x, y = frame_of(normal, start - centre)
        radius = arc["radius"]
        return (lambda t: centre + radius * (np.cos(t)[:, None] * x + np.sin(t)[:, None] * y),
                0.0, arc["sweep"])
    if kind == ELLIPTIC_ARC:
        arc = dump["ellipticArcs"][index]
        centre, x, y = (np.array(arc[name]) for name in ("centre", "major", "minor"))
        return (lambda t: centre + np.cos(t)[:, None] * x + np.sin(t)[:, None] * y,
                arc["start"], arc["start"] + arc["sweep"])
    spline = dump["splines"][index]
    points = np.array(spline["controlPoints"]).reshape(-1, 3)
    weights = np.array(spline["weights"] or [1.0] * len(points))
    knots, degree = np.array(spline["knots"]), spline["degree"]
    flat = BSpline(knots, np.column_stack([points * weights[:, None], weights]), degree)

    def curve(t):
        # The last span is closed.
        values = flat(np.minimum(t, np.nextafter(knots[len(points)], knots[degree])))
        return values[:, :3] / values[:, 3:]
    return curve, knots[degree], knots[len(points)]


def shape_findings(path, piece, scale):
    """What is promised of the record of a curve, apart from its points."""
    _, _, kind, index, _ = piece
    if kind == ARC:
        arc = path.dump["arcs"][index]
        if abs(math.hypot(*arc["normal"]) - 1) > 1e-9:
            yield "an arc's normal is not of length 1"
        if not (0 < arc["sweep"] <= 2 * math.pi and arc["radius"] > 0):
            yield "an arc's sweep or radius is out of range"
    elif kind == ELLIPTIC_ARC:
        arc = path.dump["ellipticArcs"][index]
        major, minor = np.array(arc["major"]), np.array(arc["minor"])
        if abs(major @ minor) > 1e-9 * (major @ major):
            yield "half axes are not perpendicular"
        if np.linalg.norm(minor) > np.linalg.norm(major) * (1 + 1e-12):
            yield "the minor half axis is the longer one"
        if not 0 < arc["sweep"] <= 2 * math.pi:
            yield "an elliptic arc's sweep is out of range"
    elif kind == SPLINE:
        spline = path.dump["splines"][index]
        count = len(spline["controlPoints"]) // 3
        if len(spline["knots"]) != count + spline["degree"] + 1:
            yield "the number of knots is wrong"
        if np.any(np.diff(spline["knots"]) < 0):
            yield "knots fall"
        if spline["weights"] and (len(spline["weights"]) != count or min(spline["weights"]) <= 0):
            yield "weights are wrong"


def join_findings(path):
    """Open contours of which exactly two end at one place should be one."""
    ends = defaultdict(int)
    for contour in path.dump["contours"]:
        first, end = contour["points"]
        if not contour["closed"] and end - first > 1:
            for point in (path.points[first], path.points[end - 1]):
                ends[tuple(point + 0.0)] += 1
    return [f"two contours end at {place}" for place, number in ends.items() if number == 2]


def piece_findings(path, tolerance, join, step=None):
    """Whether pieces lie on their points and chain, and whether chords keep the tolerance."""
    findings = []
    scale = 1 + np.abs(path.points).max(initial=0)
    near = 1e-9 * scale + join
    for number, piece in enumerate(path.pieces):
        first, last, kind, _, _ = piece
        if step is not None:
            widest = np.linalg.norm(np.diff(path.points[first:last + 1], axis=0), axis=1)
            if widest.max(initial=0) > step * (1 + 1e-9) + join:
                findings.append(f"piece {number}: a step of {widest.max()}, not {step}")
        findings += [f"piece {number}: {what}" for what in shape_findings(path, piece, scale)]
        if kind in (POINT, LINE):
            if last - first != (1 if kind == LINE else 0) and step is None:
                findings.append(f"piece {number}: kind {kind} has {last - first + 1} points")
            continue
        curve, start, end = curve_of(path, piece)
        parameters = np.linspace(start, end, 12 * (last - first) + 41)
        if kind == SPLINE:
            # Between knots that are near each other, weights may lead far away.
            knots = np.clip(path.dump["splines"][piece[3]]["knots"], start, end)
            parameters = np.unique(np.concatenate([parameters, knots]))
        dense = curve(parameters)
        points = path.points[first:last + 1]
        ends = max(np.linalg.norm(dense[0] - points[0]), np.linalg.norm(dense[-1] - points[-1]))
        if ends > near:
            findings.append(f"piece {number}: an end is {ends:.6g} beside its curve")
        away = farthest(points, [dense], near)
        if away > near + bow_of(dense):
            findings.append(f"piece {number}: a point is {away:.6g} beside its curve, kind {kind}")
        limit = tolerance * (1 + 1e-9) + near
        away = along_chords(dense, points)
        if away > limit:
            away = farthest(dense, [points], limit)
        if away > limit:
            findings.append(f"piece {number}: chords leave it by {away:.6g} of {tolerance:.3g}")
    return findings


def bow_of(dense):
    """More than what chords of dense points leave their curve by: what those of twice the length
    do, a quarter of which it is where the curve is smooth."""
    return np.linalg.norm(dense[1:-1] - (dense[:-2] + dense[2:]) / 2, axis=1).max()


def along_chords(dense, points):
    """The most that dense points of a curve are away from the chords that belong to them."""
    nearest = np.maximum.accumulate(cKDTree(dense).query(points)[1])
    chord = np.clip(np.searchsorted(nearest, np.arange(len(dense)), side="right") - 1, 0,
                    len(points) - 2)
    starts = points[chord]
    along = points[chord + 1] - starts
    square = np.maximum((along * along).sum(axis=1), 1e-300)
    part = np.clip(((dense - starts) * along).sum(axis=1) / square, 0, 1)
    return np.linalg.norm(dense - starts - part[:, None] * along, axis=1).max()


def chain_findings(path, join):
    """Whether contours, pieces and points cover each other as promised."""
    findings = []
    point = piece = 0
    for number, contour in enumerate(path.dump["contours"]):
        first, end = contour["points"]
        first_piece, end_piece = contour["pieces"]
        if first != point or first_piece != piece or end <= first or end_piece <= first_piece:
            findings.append(f"contour {number}: does not begin where the last one ends")
        point, piece = end, end_piece
        rows = path.pieces[first_piece:end_piece]
        if rows[0][0] != first or rows[-1][1] != end - 1 or np.any(rows[1:, 0] != rows[:-1, 1]):
            findings.append(f"contour {number}: its pieces do not chain")
        points = path.points[first:end]
        same = bool((points[0] == points[-1]).all()) and len(points) > 1
        if same != contour["closed"]:
            findings.append(f"contour {number}: closed {contour['closed']}, ends same {same}")
        if len(points) > 1 and not np.diff(points, axis=0).any(axis=1).all():
            findings.append(f"contour {number}: a point is there twice")
        entities = set(range(*contour["entities"]))
        if set(rows[:, 4]) != entities - path.pieceless():
            findings.append(f"contour {number}: its pieces are not of its entities")
        length = length_of([points])
        if contour["length"] < length * (1 - 1e-4) - join:
            findings.append(f"contour {number}: length {contour['length']}, of chords {length}")
    if point != len(path.points) or piece != len(path.pieces):
        findings.append("points or pieces are in no contour")
    return findings


def total_findings(path):
    findings = []
    total = sum(contour["length"] for contour in path.dump["contours"])
    if abs(total - path.dump["length"]) > 1e-9 * (1 + total):
        findings.append("the length is not that of all contours")
    ways = 0.0
    contours = path.dump["contours"]
    for before, after in zip(contours, contours[1:]):
        ways += np.linalg.norm(path.points[after["points"][0]] -
                               path.points[before["points"][1] - 1])
    if abs(ways - path.dump["wayLength"]) > 1e-9 * (1 + ways):
        findings.append(f"the ways' length is {path.dump['wayLength']}, not {ways}")
    if len(path.points):
        if (path.points.min(axis=0) != path.dump["lowest"]).any() or \
                (path.points.max(axis=0) != path.dump["highest"]).any():
            findings.append("the bounds are not those of the points")
    return findings
