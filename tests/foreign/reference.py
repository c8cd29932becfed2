"""What a drawing shows, worked out slowly and plainly with NumPy and SciPy: ezdxf reads the file and
nothing else; geometry, blocks and layers go by the definition of the format.

A strand is one drawn entity as a dense run of points that leaves its curve by `deviation` at most.
"""

import math
from collections import Counter
from dataclasses import dataclass

import numpy as np
from scipy.interpolate import BSpline, CubicSpline

KINDS = {"POINT", "LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE"}
FULL = 2 * math.pi
IDENTITY = np.eye(4)


@dataclass
class Strand:
    kind: str
    handle: int
    insert: int
    layer: str
    points: np.ndarray  # n by 3
    closed: bool

    def length(self):
        return np.linalg.norm(np.diff(self.points, axis=0), axis=1).sum()


def unit(vector):
    return vector / np.linalg.norm(vector)


def axes_of(extrusion):
    """The arbitrary axis algorithm: columns are the axes of object coordinates."""
    normal = np.array(extrusion, float)
    if not normal.any():
        normal = np.array([0.0, 0.0, 1.0])
    normal = unit(normal)
    other = (0, 1, 0) if abs(normal[0]) < 1 / 64 and abs(normal[1]) < 1 / 64 else (0, 0, 1)
    x = unit(np.cross(other, normal))
    return np.column_stack([x, np.cross(normal, x), normal])


def sampled(curve, start, end, matrix, deviation, count=16):
    """Points of curve(t), as many as it takes for chords to leave it by the deviation at most."""
    while True:
        parameters = np.linspace(start, end, 2 * count + 1)
        points = mapped(curve(parameters), matrix)
        middle = (points[:-1:2] + points[2::2]) / 2
        error = np.linalg.norm(points[1::2] - middle, axis=1).max()
        # Half the chord's error again is left when the middles are points, too.
        if error < 2 * deviation or count > 60000:
            return points
        count *= 2


def mapped(points, matrix):
    return np.asarray(points) @ matrix[:3, :3].T + matrix[:3, 3]


def joined(pieces):
    return np.concatenate([pieces[0]] + [piece[1:] for piece in pieces[1:]])


# Entities; each function gives points of the world, and whether they return to their start.

def point_of(entity, matrix, _):
    return mapped([entity.dxf.location], matrix), False


def line_of(entity, matrix, _):
    return mapped([entity.dxf.start, entity.dxf.end], matrix), False


def circular(entity, start, sweep, matrix, deviation):
    axes = axes_of(entity.dxf.extrusion)
    centre = np.array(entity.dxf.center)
    radius = abs(entity.dxf.radius)

    def curve(t):
        flat = np.column_stack([np.cos(t), np.sin(t), 0 * t])
        return (centre + radius * flat) @ axes.T
    return sampled(curve, start, start + sweep, matrix, deviation), sweep == FULL


def circle_of(entity, matrix, deviation):
    return circular(entity, 0, FULL, matrix, deviation)


def arc_of(entity, matrix, deviation):
    start, end = entity.dxf.start_angle, entity.dxf.end_angle
    sweep = (end - start) % 360
    if sweep == 0 and start != end:
        sweep = 360
    return circular(entity, math.radians(start), math.radians(sweep) if sweep != 360 else FULL,
                    matrix, deviation)


def ellipse_of(entity, matrix, deviation):
    centre = np.array(entity.dxf.center)
    major = np.array(entity.dxf.major_axis)
    across = np.cross(axes_of(entity.dxf.extrusion)[:, 2], major)
    minor = unit(across) * np.linalg.norm(major) * entity.dxf.ratio
    start, end = entity.dxf.start_param, entity.dxf.end_param
    sweep = math.fmod(end - start, FULL)
    if sweep <= 0:
        sweep += FULL
    if abs(sweep - FULL) < 1e-9 or sweep < 1e-9:
        sweep = FULL

    def curve(t):
        return centre + np.cos(t)[:, None] * major + np.sin(t)[:, None] * minor
    return sampled(curve, start, start + sweep, matrix, deviation), sweep == FULL


def bulged(first, last, bulge, height, axes, matrix, deviation):
    chord = np.subtract(last, first)
    angle = 4 * math.atan(bulge)

    def curve(t):
        # The chord to the point at a part of the angle: stable for any bulge.
        factor = np.sin(t * angle / 2) / math.sin(angle / 2)
        turn = (t - 1) * angle / 2
        x = first[0] + factor * (np.cos(turn) * chord[0] - np.sin(turn) * chord[1])
        y = first[1] + factor * (np.sin(turn) * chord[0] + np.cos(turn) * chord[1])
        return np.column_stack([x, y, np.full_like(x, height)]) @ axes.T
    return sampled(curve, 0.0, 1.0, matrix, deviation)


def polyline_of_2d(vertices, closed, height, extrusion, matrix, deviation):
    """Vertices are x, y, bulge; one that is where the last one was adds nothing."""
    axes = axes_of(extrusion)
    if closed:
        vertices = vertices + [vertices[0]]
    pieces = []
    for first, last in zip(vertices, vertices[1:]):
        if first[:2] == last[:2]:
            continue
        if first[2] == 0:
            ends = [(*first[:2], height), (*last[:2], height)]
            pieces.append(mapped(np.array(ends) @ axes.T, matrix))
        else:
            pieces.append(bulged(first[:2], last[:2], first[2], height, axes, matrix, deviation))
    if not pieces:
        return mapped(np.array([(*vertices[0][:2], height)]) @ axes.T, matrix), False
    return joined(pieces), closed


def lwpolyline_of(entity, matrix, deviation):
    return polyline_of_2d([tuple(vertex) for vertex in entity.get_points("xyb")], entity.closed,
                          entity.dxf.elevation, entity.dxf.extrusion, matrix, deviation)


def polyline_of(entity, matrix, deviation):
    drawn = [vertex for vertex in entity.vertices if not vertex.dxf.flags & 16]
    if entity.is_3d_polyline:
        points = [vertex.dxf.location for vertex in drawn]
        if entity.is_closed:
            points.append(points[0])
        return mapped(points, matrix), entity.is_closed
    vertices = [(*vertex.dxf.location.vec2, vertex.dxf.bulge) for vertex in drawn]
    height = entity.dxf.elevation[2] if entity.dxf.hasattr("elevation") else 0.0
    return polyline_of_2d(vertices, entity.is_closed, height, entity.dxf.extrusion, matrix,
                          deviation)


def interpolated(entity):
    """The cubic through fit points: chord lengths, tangents of unit length, else natural ends."""
    points = np.array(entity.fit_points)
    points = points[np.insert(np.diff(points, axis=0).any(axis=1), 0, True)]
    chords = np.linalg.norm(np.diff(points, axis=0), axis=1)
    parameters = np.insert(np.cumsum(chords), 0, 0)

    def end(name):
        if not entity.dxf.hasattr(name) or not any(entity.dxf.get(name)):
            return (2, np.zeros(3))
        return (1, unit(np.array(entity.dxf.get(name))))
    cubic = CubicSpline(parameters, points, bc_type=(end("start_tangent"), end("end_tangent")))
    return cubic, parameters


def spline_of(entity, matrix, deviation):
    if len(entity.control_points) == 0:
        curve, breaks = interpolated(entity)
    else:
        degree = entity.dxf.degree
        points = np.array(list(entity.control_points), float)
        weights = np.array(entity.weights or [1.0] * len(points), float)
        knots = np.array(entity.knots, float)
        flat = BSpline(knots, np.column_stack([points * weights[:, None], weights]), degree)
        breaks = np.unique(knots[degree:len(points) + 1])

        def curve(t):
            values = flat(t)
            return values[:, :3] / values[:, 3:]
    pieces = []
    for start, end in zip(breaks, breaks[1:]):
        # The end belongs to the next span, where the curve may turn: stay just before it.
        inside = np.nextafter(end, start)
        pieces.append(sampled(lambda t, inside=inside: curve(np.minimum(t, inside)), start, end,
                              matrix, deviation, 8))
    points = joined(pieces)
    return points, bool(np.linalg.norm(points[0] - points[-1]) < 1e-9 * (1 + np.abs(points).max()))


MAKERS = {"POINT": point_of, "LINE": line_of, "ARC": arc_of, "CIRCLE": circle_of,
          "ELLIPSE": ellipse_of, "LWPOLYLINE": lwpolyline_of, "POLYLINE": polyline_of,
          "SPLINE": spline_of}


def insert_matrices(insert, base):
    """From the block to where the INSERT stands, for each place of its array."""
    dxf = insert.dxf
    axes = np.eye(4)
    axes[:3, :3] = axes_of(dxf.extrusion)
    angle = math.radians(dxf.rotation)
    turn = np.eye(4)
    turn[:2, :2] = [[math.cos(angle), -math.sin(angle)], [math.sin(angle), math.cos(angle)]]
    scale = np.diag([dxf.xscale, dxf.yscale, dxf.zscale, 1.0])
    back = np.eye(4)
    back[:3, 3] = -np.array(base)
    for row in range(max(dxf.row_count, 1)):
        for column in range(max(dxf.column_count, 1)):
            # The array turns with the insert and is not scaled.
            step = turn[:3, :3] @ [column * dxf.column_spacing, row * dxf.row_spacing, 0]
            move = np.eye(4)
            move[:3, 3] = np.array(dxf.insert) + step
            yield axes @ move @ turn @ scale @ back


class Reference:
    """The strands of a drawing, and what is not drawn: (kind, why) with its number."""

    def __init__(self, doc, deviation, hidden=False, paper_space=False):
        self.doc = doc
        self.deviation = deviation
        self.hidden = hidden
        self.strands = []
        self.left_out = Counter()
        self.layers = {layer.dxf.name.casefold(): layer for layer in doc.layers}
        self._walk(doc.modelspace(), IDENTITY, None, 0, ())
        for layout in doc.layouts:
            if not layout.is_modelspace:
                if paper_space:
                    self._walk(layout, IDENTITY, None, 0, ())
                else:
                    for entity in layout:
                        if entity.dxftype() != "VIEWPORT":
                            self.left_out[(entity.dxftype(), "paper space")] += 1

    def _hidden_why(self, entity, layer):
        entry = self.layers.get(layer.casefold())
        if entity.dxf.get("invisible", 0):
            return "invisible"
        if entry is not None and entry.is_frozen():
            return "frozen"
        if entry is not None and entry.is_off():
            return "off"
        return None

    def _walk(self, entities, matrix, parent_layer, insert, chain):
        for entity in entities:
            kind = entity.dxftype()
            layer = entity.dxf.layer
            if layer == "0" and parent_layer is not None:
                layer = parent_layer
            why = None if self.hidden else self._hidden_why(entity, layer)
            if kind == "INSERT":
                self._walk_insert(entity, matrix, layer, insert, chain, why)
            elif kind == "POLYLINE" and not (entity.is_2d_polyline or entity.is_3d_polyline):
                self.left_out[(kind, "mesh")] += 1
            elif kind == "ATTDEF" and chain and not entity.is_const:
                pass  # What an INSERT draws of it are its ATTRIBs.
            elif kind not in KINDS:
                self.left_out[(kind, "no path")] += 1
            elif why:
                self.left_out[(kind, why)] += 1
            else:
                self._draw(entity, kind, layer, matrix, insert)

    def _draw(self, entity, kind, layer, matrix, insert):
        points, closed = MAKERS[kind](entity, matrix, self.deviation)
        handle = int(entity.dxf.handle or "0", 16)
        self.strands.append(Strand(kind, handle, insert, layer, points, closed))

    def _walk_insert(self, entity, matrix, layer, insert, chain, why):
        """What is on a layer that is off goes by itself; all else that hides an INSERT hides all."""
        block = entity.block()
        self.left_out.update([("ATTRIB", "no path")] * len(entity.attribs))
        if why in ("invisible", "frozen"):
            self.left_out[("INSERT", why)] += 1
        elif block is None or block.block.is_xref or block.name in chain:
            self.left_out[("INSERT", "block")] += 1
        else:
            outermost = insert or int(entity.dxf.handle or "0", 16)
            for place in insert_matrices(entity, block.base_point):
                self._walk(block, matrix @ place, layer, outermost, chain + (block.name,))
