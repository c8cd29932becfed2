"""Drawings made at random with ezdxf: every kind of entity that a path is made of, in blocks that are
nested, turned, mirrored, stretched and arrayed, in every release, as text and binary.

The same seed makes the same drawing.
"""

import math
import random

import ezdxf
from ezdxf.math import ConstructionArc


RELEASES = ["R12", "R2000", "R2004", "R2007", "R2010", "R2013", "R2018"]
CURVES = ["POINT", "LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "POLYLINE3D",
          "FITTED", "FITTED3D", "SPLINE"]
OTHERS = ["TEXT", "MTEXT", "SOLID", "3DFACE", "XLINE", "RAY", "HATCH", "MESH", "ATTDEF", "POLYMESH",
          "POLYFACE", "DIMENSION", "LEADER", "3DSOLID", "REGION", "MLINE", "IMAGE", "WIPEOUT",
          "TRACE"]
SPLINES = ["clamped", "rational", "uniform", "closed", "rational closed", "repeated knots",
           "fit points", "fit points, tangents", "fit and control points"]
LAYERS = ["0", "walls", "Umri\u00df", "cut lines", "off", "frozen", "off and frozen"]
# What one drawing may come to when its blocks are drawn.
MOST_ENTITIES = 400


class Maker:
    """Makes one drawing; a small one has a few entities."""

    def __init__(self, seed, small=False):
        self.random = random.Random(seed)
        self.small = small
        self.release = self.random.choice(RELEASES)
        self.size = 10 ** self.random.uniform(-0.5, 3)
        # Maps lie far from the origin.
        self.offset = self.random.choice([0, 0, 0, 1e3, 4e5, 6e6]) * self.random.uniform(-1, 1)
        self.round = 0.15
        if self.random.random() < 0.1:
            self.size = 10 ** self.random.uniform(-6, 7)
            self.offset = self.round = 0
        self.doc = ezdxf.new(self.release, setup=False)
        if small:
            self.forget_header()
        self.weights = {}  # entities of each block when it is drawn
        self.left = 12 if small else MOST_ENTITIES

    def make(self):
        self.doc.header["$INSUNITS"] = self.random.choice([0, 1, 2, 4, 4, 4, 5, 6, 14, 21,
                                                           self.random.randint(3, 24)])
        self.doc.header["$MEASUREMENT"] = self.random.randint(0, 1)
        for name in LAYERS[1:]:
            layer = self.doc.layers.add(name, color=self.random.randint(1, 255))
            if "off" in name:
                layer.off()
            if "frozen" in name:
                layer.freeze()
        names = []
        for i in range(self.random.choice([0, 0, 1, 2] if self.small else [0, 1, 2, 4, 6])):
            name = self.random.choice([f"block {i}", f"*U{i + 1}", f"*D{i + 901}", f"Bl\u00f6ck-{i}"])
            if i == 0 and self.random.random() < 0.8:
                self.offset = 0
            base = self.point() if self.random.random() < 0.5 else (0, 0, 0)
            block = self.doc.blocks.new(name, base_point=base)
            count = self.random.randint(0, 2 if self.small else 5)
            self.weights[name] = self.fill(block, count, names)
            names.append(name)
        count = self.random.choice([1, 2, 2, 3] if self.small else [1, 2, 5, 12, 25])
        self.fill(self.doc.modelspace(), count, names)
        if self.random.random() < 0.2:
            self.fill(self.doc.layout("Layout1") if self.release != "R12"
                      else self.doc.layout(), 2, [])
        return self.doc

    def forget_header(self):
        """Leaves what says how the rest is to be read: the rest is most of a small file."""
        variables = self.doc.header.hdrvars
        for name in set(variables) - {"$ACADVER", "$DWGCODEPAGE", "$HANDLING", "$HANDSEED",
                                      "$INSUNITS"}:
            del variables[name]

    # Numbers

    def length(self):
        return self.size * 10 ** self.random.uniform(-2, 0)

    def coordinate(self):
        if self.random.random() < self.round:
            return float(self.random.randint(-3, 3)) + round(self.offset)
        return self.random.uniform(-self.size, self.size) + self.offset

    def point(self, flat=None):
        flat = self.random.random() < 0.5 if flat is None else flat
        return (self.coordinate(), self.coordinate(), 0.0 if flat else self.coordinate())

    def angle(self):
        if self.random.random() < 0.3:
            return float(self.random.choice([0, 30, 45, 90, 180, 270, 360]))
        return self.random.uniform(-400, 800)

    def direction(self):
        return tuple(self.random.gauss(0, 1) for _ in range(3))

    def extrusion(self):
        kind = self.random.random()
        if kind < 0.5:
            return (0, 0, 1)
        if kind < 0.7:
            return (0, 0, -1)
        if kind < 0.75:
            return (0.01, -0.012, self.random.choice([-1, 1]))  # either side of 1/64
        if kind < 0.8:
            return (0, 0, self.random.choice([-2.5, 0.3]))
        if kind < 0.85:
            return (0.02, 0.001, 1)
        return self.direction()

    def attributes(self, solid=True):
        attributes = {"layer": self.random.choice(LAYERS[:4])}
        if self.random.random() < 0.12:
            attributes["layer"] = self.random.choice(LAYERS)
        if self.random.random() < 0.04:
            attributes["invisible"] = 1
        if self.random.random() < 0.3:
            attributes["color"] = self.random.choice([0, 256, 1, 7, 200])
        if solid and self.random.random() < 0.4:
            attributes["extrusion"] = self.extrusion()
        return attributes

    # Entities

    def fill(self, layout, count, blocks):
        """Returns how many entities are drawn when the layout is."""
        drawn = 0
        for _ in range(count):
            if blocks and self.random.random() < 0.35:
                drawn += self.insert(layout, self.random.choice(blocks))
            elif self.random.random() < 0.06:
                drawn += self.add_chain(layout)
            elif self.random.random() < 0.08:
                self.other(layout, self.random.choice(OTHERS))
            else:
                self.curve(layout, self.random.choice(CURVES))
                drawn += 1
        return drawn

    def curve(self, layout, kind):
        makers = {"POINT": self.add_point, "LINE": self.add_line, "ARC": self.add_arc,
                  "CIRCLE": self.add_circle, "ELLIPSE": self.add_ellipse,
                  "LWPOLYLINE": self.add_lwpolyline, "POLYLINE": self.add_polyline,
                  "POLYLINE3D": self.add_polyline3d, "FITTED": self.add_fitted,
                  "FITTED3D": self.add_fitted3d, "SPLINE": self.add_spline}
        if self.release == "R12" and kind in ("ELLIPSE", "LWPOLYLINE", "SPLINE"):
            kind = "POLYLINE"
        makers[kind](layout)

    def add_point(self, layout):
        layout.add_point(self.point(), self.attributes())

    def add_line(self, layout):
        layout.add_line(self.point(), self.point(), self.attributes())

    def add_arc(self, layout):
        start = self.angle()
        end = self.angle()
        if abs((end - start) % 360) < 0.01 or abs((end - start) % 360 - 360) < 0.01:
            end = start + self.random.uniform(0.5, 359)
        layout.add_arc(self.point(), self.length(), start, end, dxfattribs=self.attributes())

    def add_circle(self, layout):
        layout.add_circle(self.point(), self.length(), self.attributes())

    def add_ellipse(self, layout):
        normal = self.extrusion()
        # Any direction that is perpendicular to the normal.
        other = self.direction()
        across = (normal[1] * other[2] - normal[2] * other[1],
                  normal[2] * other[0] - normal[0] * other[2],
                  normal[0] * other[1] - normal[1] * other[0])
        factor = self.length() / math.hypot(*across)
        start, end = 0.0, 2 * math.pi
        if self.random.random() < 0.7:
            start = self.random.uniform(-7, 7)
            end = start + self.random.uniform(0.05, 2 * math.pi - 0.05)
        attributes = self.attributes(solid=False)
        attributes["extrusion"] = normal
        layout.add_ellipse(self.point(), [factor * value for value in across],
                           10 ** self.random.uniform(-2.5, 0), start, end, attributes)

    def add_chain(self, layout):
        """Lines and arcs end to end, in any direction, as workpieces are drawn: perhaps closed,
        perhaps with gaps that are too small to be seen."""
        points = [(self.coordinate(), self.coordinate(), 0.0)
                  for _ in range(self.random.randint(2, 7))]
        if self.random.random() < 0.5:
            points.append(points[0])
        attributes = {"layer": "walls"}
        for start, end in zip(points, points[1:]):
            if self.random.random() < 0.5:
                start, end = end, start
            if self.random.random() < 0.3:
                arc = ConstructionArc.from_2p_angle(start[:2], end[:2],
                                                    self.random.uniform(20, 300))
                layout.add_arc(arc.center, arc.radius, arc.start_angle, arc.end_angle,
                               dxfattribs=attributes)
            else:
                gap = self.random.choice([0, 0, 0.0004, -0.0004])
                layout.add_line(start, (end[0] + gap, *end[1:]), attributes)
        return len(points) - 1

    def bulge(self):
        kind = self.random.random()
        if kind < 0.4:
            return 0.0
        if kind < 0.6:
            return self.random.choice([-1.0, 1.0])
        return self.random.choice([-1, 1]) * 10 ** self.random.uniform(-6, 1.5)

    def vertices(self):
        vertices = []
        for _ in range(self.random.randint(2, 9)):
            if vertices and self.random.random() < 0.1:
                vertices.append((*vertices[-1][:2], self.bulge()))
            else:
                vertices.append((self.coordinate(), self.coordinate(), self.bulge()))
        if self.random.random() < 0.1:
            vertices.append((*vertices[0][:2], self.bulge()))
        return vertices

    def add_lwpolyline(self, layout):
        attributes = self.attributes()
        if self.random.random() < 0.3:
            attributes["elevation"] = self.coordinate()
        layout.add_lwpolyline(self.vertices(), "xyb", close=self.random.random() < 0.4,
                              dxfattribs=attributes)

    def add_polyline(self, layout):
        attributes = self.attributes()
        elevation = self.coordinate() if self.random.random() < 0.3 else 0.0
        attributes["elevation"] = (0, 0, elevation)
        layout.add_polyline2d(self.vertices(), format="xyb", close=self.random.random() < 0.4,
                              dxfattribs=attributes)

    def add_polyline3d(self, layout):
        points = [self.point(flat=False) for _ in range(self.random.randint(2, 9))]
        layout.add_polyline3d(points, close=self.random.random() < 0.4,
                              dxfattribs=self.attributes(solid=False))

    def add_fitted(self, layout):
        """A polyline as CAD programs leave it after fitting: with the frame that is not drawn."""
        spline = self.random.random() < 0.5
        polyline = layout.add_polyline2d([], dxfattribs=self.attributes())
        polyline.dxf.flags |= 4 if spline else 2
        for _ in range(self.random.randint(3, 8)):
            flags = self.random.choice([16, 8, 8]) if spline else self.random.choice([0, 1])
            polyline.append_vertex((self.coordinate(), self.coordinate()),
                                   {"flags": flags, "bulge": 0.0 if spline else self.bulge()})
        for _ in range(2):
            polyline.append_vertex((self.coordinate(), self.coordinate()),
                                   {"flags": 8 if spline else 0})

    def add_fitted3d(self, layout):
        polyline = layout.add_polyline3d([], dxfattribs=self.attributes(solid=False))
        polyline.dxf.flags |= 4 | self.random.choice([0, 1])
        for _ in range(self.random.randint(2, 8)):
            flags = 32 | self.random.choice([16, 8, 8])
            polyline.append_vertex(self.point(flat=False), {"flags": flags})
        for _ in range(2):
            polyline.append_vertex(self.point(flat=False), {"flags": 40})

    def control_points(self, least):
        return [self.point(flat=False) for _ in range(self.random.randint(least, least + 8))]

    def weights_of(self, points):
        return [10 ** self.random.uniform(-1, 1) for _ in points]

    def add_spline(self, layout):
        kind = self.random.choice(SPLINES)
        degree = self.random.choice([1, 2, 3, 3, 3, 4, 5])
        attributes = self.attributes(solid=False)
        if kind.startswith("fit points"):
            points = self.control_points(2 if self.random.random() < 0.2 else 3)
            spline = layout.add_spline(points, dxfattribs=attributes)
            if "tangents" in kind:
                spline.dxf.start_tangent = self.unit()
                spline.dxf.end_tangent = self.unit()
            return
        points = self.control_points(degree + 1)
        spline = layout.add_spline(dxfattribs=attributes)
        if kind in ("closed", "rational closed"):
            spline.set_closed(points, degree)
            if kind == "rational closed":
                spline.weights = self.weights_of(spline.control_points)
                spline.dxf.flags |= 4
            return
        if kind == "uniform":
            spline.set_uniform(points, degree)
            return
        knots = [0.0] * (degree + 1)
        for _ in range(len(points) - degree - 1):
            step = self.random.choice([0.2, 1, 1, 3]) * self.random.uniform(0.5, 2)
            if kind == "repeated knots" and self.random.random() < 0.4 and \
                    knots.count(knots[-1]) < degree:
                step = 0.0
            knots.append(knots[-1] + step)
        last = knots[-1] + 1
        knots += [last] * (degree + 1)
        spline.dxf.degree = degree
        spline.control_points = points
        spline.knots = knots
        spline.dxf.flags |= 8
        if kind == "rational":
            spline.weights = self.weights_of(points)
            spline.dxf.flags |= 4
        if kind == "fit and control points":
            spline.fit_points = [points[0], points[-1]]

    def unit(self):
        vector = self.direction()
        length = math.hypot(*vector)
        return tuple(value / length for value in vector)

    def other(self, layout, kind):
        attributes = self.attributes(solid=False)
        if kind == "TEXT":
            layout.add_text("a text", dxfattribs=attributes)
        elif kind == "ATTDEF" and layout.is_any_layout is False:
            layout.add_attdef("TAG", (0, 0), dxfattribs=attributes)
        elif kind == "SOLID":
            layout.add_solid([(0, 0), (1, 0), (0, 1), (1, 1)], attributes)
        elif kind == "3DFACE":
            layout.add_3dface([(0, 0, 0), (1, 0, 0), (1, 1, 0), (0, 1, 0)], attributes)
        elif kind == "TRACE":
            layout.add_trace([(0, 0), (1, 0), (0, 1), (1, 1)], attributes)
        elif kind == "POLYMESH":
            layout.add_polymesh((3, 4), attributes)
        elif kind == "POLYFACE":
            face = layout.add_polyface(attributes)
            face.append_face([(0, 0, 0), (1, 0, 0), (1, 1, 1)])
        elif kind == "DIMENSION" and layout is self.doc.modelspace():
            layout.add_linear_dim(self.point(), self.point(), self.point(),
                                  dxfattribs=attributes).render()
        elif self.release != "R12":
            self.newer_other(layout, kind, attributes)

    def newer_other(self, layout, kind, attributes):
        """What R12 has not."""
        if kind in ("3DSOLID", "REGION"):
            layout.new_entity(kind, attributes)
        elif kind == "MLINE":
            layout.add_mline([self.point(), self.point()], dxfattribs=attributes)
        elif kind == "LEADER":
            layout.add_leader([self.point(), self.point()], dxfattribs=attributes)
        elif kind == "WIPEOUT":
            layout.add_wipeout([(0, 0), (9, 9)], attributes)
        elif kind == "IMAGE":
            picture = self.doc.add_image_def("a.png", (640, 480))
            layout.add_image(picture, (0, 0), (4, 3), dxfattribs=attributes)
        elif kind == "MTEXT":
            layout.add_mtext("a text", attributes)
        elif kind == "XLINE":
            layout.add_xline((0, 0), (1, 1), dxfattribs=attributes)
        elif kind == "RAY":
            layout.add_ray((0, 0), (1, 1), dxfattribs=attributes)
        elif kind == "HATCH":
            hatch = layout.add_hatch(dxfattribs=attributes)
            hatch.paths.add_polyline_path([(0, 0), (1, 0), (1, 1)])
        elif kind == "MESH":
            mesh = layout.add_mesh(attributes)
            with mesh.edit_data() as data:
                data.vertices = [(0, 0, 0), (1, 0, 0), (0, 1, 0)]
                data.faces = [(0, 1, 2)]

    # Blocks

    def scale(self):
        if self.random.random() < 0.4:
            return 1.0
        return self.random.choice([-1, 1]) * 10 ** self.random.uniform(-1, 1)

    def insert(self, layout, name):
        columns = rows = 1
        if self.random.random() < 0.2:
            columns, rows = self.random.randint(1, 4), self.random.randint(1, 3)
        drawn = columns * rows * self.weights[name]
        if drawn > self.left or drawn > MOST_ENTITIES // 4:
            return 0
        self.left -= drawn
        attributes = self.attributes()
        if self.random.random() < 0.5:
            scale = self.scale()
            scales = (scale, scale, scale)
        else:
            scales = (self.scale(), self.scale(), self.scale())
        attributes.update(zip(("xscale", "yscale", "zscale"), scales))
        if self.random.random() < 0.7:
            attributes["rotation"] = self.angle()
        if columns * rows > 1:
            attributes.update(column_count=columns, row_count=rows,
                              column_spacing=self.random.uniform(-2, 2) * self.size,
                              row_spacing=self.random.uniform(-2, 2) * self.size)
        insert = layout.add_blockref(name, self.point(), attributes)
        if self.random.random() < 0.1:
            insert.add_attrib("TAG", "a value", (0, 0))
        return drawn


def with_line_ends(data, chance):
    """The bytes of a text with other line ends and other blanks around its group codes."""
    lines = data.split(b"\r\n") if b"\r\n" in data else data.split(b"\n")
    if chance.random() < 0.3:
        for i in range(0, len(lines) - 1, 2):
            lines[i] = b" " * chance.randint(0, 5) + lines[i].strip()
    return chance.choice([b"\n", b"\r\n", b"\r"]).join(lines)


def write(doc, path, seed):
    """Writes the drawing as text or, one in five, as binary; says which."""
    chance = random.Random(seed)
    if chance.random() < 0.2:
        doc.saveas(path, fmt="bin")
        return "binary"
    doc.saveas(path)
    if chance.random() < 0.3:
        with open(path, "rb") as file:
            data = file.read()
        with open(path, "wb") as file:
            file.write(with_line_ends(data, chance))
    return "text"



