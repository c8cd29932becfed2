#!/usr/bin/python3
"""Writes drawings with ezdxf, and what a reader should find in them.

write_drawings.py FOLDER RELEASE writes for a release of DXF, such as R12,
  RELEASE.dxf       a drawing with every kind of entity that is read, and many that are not
  RELEASE.entities  the entities in order, as "kind numbers {layer colour"
  RELEASE.points    the points that they are sampled into, one "x y z" a line, in no order
"""

import math
import sys

import ezdxf

COLOR = 5
COLOR_OF_LAYER = 256


def text(number):
    return repr(float(number)).removesuffix(".0")


class Drawing:
    """A drawing and, beside it, what it holds. Entities are far apart, so that no runs join."""

    def __init__(self, release):
        self.release = release
        self.document = ezdxf.new(release, setup=True)
        self.document.layers.add("walls", color=3)
        self.space = self.document.modelspace()
        self.origin = 0.0
        self.entities = []
        self.points = []

    def attributes(self, layer):
        self.origin += 100.0
        return {"layer": layer, "color": COLOR}

    def expect(self, kind, numbers, layer, color=COLOR):
        self.entities.append("%s {%s %d" % (" ".join([kind, *map(text, numbers)]), layer, color))

    def sample(self, start, end):
        """A straight piece, in ten steps a unit."""
        steps = math.trunc(math.hypot(end[0] - start[0], end[1] - start[1]) * 10)
        for i in range(steps + 1):
            part = i / steps if steps else 0.0
            self.points.append((start[0] + (end[0] - start[0]) * part, 0.0,
                                start[1] + (end[1] - start[1]) * part))

    def line(self, layer="walls"):
        attributes = self.attributes(layer)
        x = self.origin
        self.space.add_line((x, 1, 7), (x + 2.5, -1.25, 8), dxfattribs=attributes)
        self.expect("line", (x, 1, 7, x + 2.5, -1.25, 8), layer)
        self.sample((x, 1), (x + 2.5, -1.25))

    def circle(self, radius):
        attributes = self.attributes("0")
        x = self.origin
        self.space.add_circle((x, 2, 3), radius, dxfattribs=attributes)
        self.expect("circle", (x, 2, 3, radius), "0")
        count = max(32, math.trunc(radius * 20 * math.pi))
        for i in range(count):
            angle = 2 * math.pi * i / count
            self.points.append((x + radius * math.cos(angle), 0.0, 2 + radius * math.sin(angle)))

    def arc(self, start, end):
        attributes = self.attributes("0")
        x = self.origin
        self.space.add_arc((x, 2, 3), 4.0, start, end, dxfattribs=attributes)
        self.expect("arc", (x, 2, 3, 4, start, end), "0")
        sweep = math.radians(end - start + (360 if start > end else 0))
        count = max(4, math.trunc(40 * sweep))
        for i in range(count + 1):
            angle = math.radians(start) + sweep * i / count
            self.points.append((x + 4 * math.cos(angle), 0.0, 2 + 4 * math.sin(angle)))

    def single_point(self):
        attributes = self.attributes("0")
        self.space.add_point((self.origin, 2, 3), dxfattribs=attributes)
        self.expect("point", (self.origin, 2, 3), "0")
        self.points.append((self.origin, 0.0, 2.0))

    def several_points(self):
        numbers = []
        for height in (1.0, -2.0, 0.5):
            attributes = self.attributes("0")
            self.space.add_point((self.origin, 2, height), dxfattribs=attributes)
            numbers += [self.origin, 2, height]
            self.points.append((self.origin, 2.0, -height))
        self.expect("points", numbers, "0")

    def polyline(self, kind, closed):
        attributes = self.attributes("walls")
        x = self.origin
        corners = [(x, 0), (x + 3, 0), (x + 3, 2.5), (x, 2.5)]
        flags = int(closed)
        bulge = 0.0
        height = 0.0
        # A polyline is read with the attributes of its last vertex, and ezdxf gives those a layer
        # only. A light one has no vertices of that kind.
        color = COLOR if kind == "light" else COLOR_OF_LAYER
        if kind == "light":
            bulge = 0.5
            self.space.add_lwpolyline([(*corner, bulge) for corner in corners], format="xyb",
                                      close=closed, dxfattribs=attributes)
        elif kind == "flat":
            self.space.add_polyline2d(corners, close=closed, dxfattribs=attributes)
        else:
            height = 4.0
            flags += 8
            self.space.add_polyline3d([(*corner, height) for corner in corners], close=closed,
                                      dxfattribs=attributes)
        numbers = [number for corner in corners for number in (*corner, height, bulge)]
        self.expect("polyline 0 0 %d" % flags, numbers, "walls", color)
        for start, end in zip(corners, corners[1:]):
            self.sample(start, end)
        if closed:
            self.sample(corners[0], corners[-1])

    def spline(self, weights):
        attributes = self.attributes("0")
        x = self.origin
        controls = [(x, 0, 0), (x + 1, 2, 0), (x + 3, -2, 0), (x + 4, 0, 0), (x + 6, 1, 0)]
        if weights is None:
            spline = self.space.add_open_spline(controls, dxfattribs=attributes)
            weights = [1] * len(controls)
        else:
            spline = self.space.add_rational_spline(controls, weights, dxfattribs=attributes)
        curve = spline.construction_tool()
        numbers = [n for point, weight in zip(controls, weights) for n in (*point, weight)]
        self.entities.append(" ".join(["spline 3 knots", *map(text, curve.knots()), "control",
                                       *map(text, numbers), "fit {0 %d" % COLOR]))
        length = sum(math.dist(a, b) for a, b in zip(controls, controls[1:]))
        count = max(4, math.trunc(length / 0.1))
        for i in range(count + 1):
            point = curve.point(curve.max_t * i / count)
            self.points.append((point.x, 0.0, point.y))

    def foreign_entities(self):
        """What a reader passes over, the geometry in blocks included."""
        modern = self.release != "R12"
        space = self.space
        block = self.document.blocks.new("PART")
        block.add_line((0, 0), (5, 5))
        block.add_point((1, 1))
        block.add_circle((0, 0), 3)
        block.add_polyline2d([(0, 0), (1, 1), (2, 0)])
        block.add_attdef("TAG", (0, 0))
        if modern:
            block.add_lwpolyline([(0, 0), (1, 1), (2, 0)])
            block.add_open_spline([(0, 0), (1, 2), (3, 1), (4, 4)])
        space.add_blockref("PART", (50, 50)).add_attrib("TAG", "value", (1, 1))
        space.add_text("text", dxfattribs={"layer": "walls"})
        space.add_solid([(0, 0), (1, 0), (0, 1)])
        space.add_3dface([(0, 0), (1, 0), (0, 1), (1, 1)])
        space.add_linear_dim(base=(0, 2), p1=(0, 0), p2=(3, 0)).render()
        if modern:
            space.add_mtext("a long text " * 500)
            space.add_ellipse((0, 0), (3, 0), 0.5)
            space.add_leader([(0, 0), (1, 1), (2, 1)])
            hatch = space.add_hatch(color=2)
            hatch.paths.add_polyline_path([(0, 0), (10, 0), (10, 10), (0, 10)])
            image = self.document.add_image_def("picture.png", (640, 480))
            space.add_image(image, (0, 0), (6, 4))
            space.add_ray((0, 0), (1, 0))
            space.add_xline((0, 0), (1, 0))

    def draw(self):
        self.single_point()
        self.line()
        self.foreign_entities()
        self.several_points()
        self.circle(0.25)
        self.circle(3.5)
        self.arc(10.0, 100.0)
        self.arc(300.0, 30.0)
        for closed in (False, True):
            self.polyline("flat", closed)
            self.polyline("space", closed)
            if self.release != "R12":
                self.polyline("light", closed)
        if self.release != "R12":
            self.spline(None)
            self.spline([1, 2, 0.5, 2, 1])
        self.line("0")
        self.space = self.document.layout()
        self.line("0")

    def save(self, folder):
        path = folder + "/" + self.release
        self.document.saveas(path + ".dxf")
        with open(path + ".entities", "w", encoding="ascii") as file:
            file.writelines(entity + "\n" for entity in self.entities)
        with open(path + ".points", "w", encoding="ascii") as file:
            file.writelines("%r %r %r\n" % point for point in self.points)


drawing = Drawing(sys.argv[2])
drawing.draw()
drawing.save(sys.argv[1])
