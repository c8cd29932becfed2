"""Drawing: layers, entities and contours."""

import dataclasses
import os
import sys
from pathlib import Path

import numpy as np
import pytest

import converters
from converters import Drawing, Layer, from_dxf, to_dxf


def tags(*values):
    return "".join(f"{value}\n" for value in values)


def entity(kind, *values, layer="0", colour=None):
    return tags(0, kind, 8, layer, *(() if colour is None else (62, colour)), *values)


def line(x1, y1, x2, y2, **attributes):
    return entity("LINE", 10, x1, 20, y1, 11, x2, 21, y2, **attributes)


def section(name, *contents):
    return tags(0, "SECTION", 2, name) + "".join(contents) + tags(0, "ENDSEC")


def drawing(*entities, tables=""):
    file = section("TABLES", tables) + section("ENTITIES", *entities) + tags(0, "EOF")
    return Drawing.from_bytes(file.encode("utf-8", "surrogateescape"))


def layer(name, flags, *values):
    return tags(0, "LAYER", 2, name, 70, flags, *values)


def layer_table(*layers):
    return tags(0, "TABLE", 2, "LAYER", 70, len(layers)) + "".join(layers) + tags(0, "ENDTAB")


class TestLoading:
    def test_a_file_is_read_by_its_path(self, tmp_path):
        path = tmp_path / "drawing.dxf"
        path.write_bytes(to_dxf([[1, 2, 3]]))
        for given in (path, str(path)):
            assert Drawing.load(given).entities[0].position == (1, 2, 3)

    def test_a_missing_file_is_an_error_of_the_system(self, tmp_path):
        with pytest.raises(FileNotFoundError) as raised:
            Drawing.load(tmp_path / "missing.dxf")
        assert raised.value.filename.endswith("missing.dxf")

    def test_a_folder_is_an_error_of_the_system(self, tmp_path):
        with pytest.raises(IsADirectoryError):
            Drawing.load(tmp_path)

    def test_an_empty_file_is_refused(self, tmp_path):
        (tmp_path / "empty.dxf").touch()
        with pytest.raises(ValueError, match="could not be read as a drawing"):
            Drawing.load(tmp_path / "empty.dxf")

    @pytest.mark.parametrize("convert", [bytearray, memoryview, lambda d: memoryview(d + d)[: len(d)]])
    def test_any_buffer_is_read(self, convert):
        assert len(Drawing.from_bytes(convert(to_dxf([[1, 2, 3]]))).entities) == 1

    def test_a_text_that_is_no_drawing_is_empty(self):
        empty = Drawing.from_bytes(b"hello")
        assert repr(empty) == "Drawing(0 entities, 0 layers)"
        assert empty.points().shape == (0, 3)
        assert empty.contours() == []


class TestLayers:
    def test_come_in_the_order_of_the_file_with_their_attributes(self):
        table = layer_table(
            layer("walls", 0, 62, 3, 6, "DASHED"), layer("cold", 1, 62, 5), layer("shut", 4, 62, 1)
        )
        layers = drawing(tables=table).layers
        assert layers[0] == Layer("walls", 0, False, False, 3, "DASHED", layers[0].width)
        assert [(l.name, l.flags, l.frozen, l.locked, l.colour) for l in layers] == [
            ("walls", 0, False, False, 3),
            ("cold", 1, True, False, 5),
            ("shut", 4, False, True, 1),
        ]

    def test_of_the_same_name_are_one(self):
        table = layer_table(layer("a", 0, 62, 3), layer("a", 1, 62, 5))
        assert [(l.name, l.colour) for l in drawing(tables=table).layers] == [("a", 3)]

    @pytest.mark.parametrize("name", ["Wände", "壁", "\udcff\udce4"])
    def test_names_keep_every_byte(self, name):
        shown = drawing(line(0, 0, 1, 0, layer=name), tables=layer_table(layer(name, 0)))
        assert [l.name for l in shown.layers] == [name]
        assert shown.entities[0].layer == name
        assert os.fsencode(shown.entities[0].layer) == name.encode("utf-8", "surrogateescape")


class TestEntities:
    def test_carry_layer_and_colour(self):
        first, second = drawing(
            line(0, 0, 1, 0, layer="walls", colour=3), line(0, 0, 1, 0)
        ).entities
        assert (first.layer, first.colour) == ("walls", 3)
        assert (second.layer, second.colour) == ("0", 256)

    def test_come_in_the_order_of_the_file(self):
        kinds = [
            e.kind
            for e in drawing(
                line(0, 0, 1, 0),
                entity("POINT", 10, 1, 20, 2, 30, 3),
                entity("CIRCLE", 10, 0, 20, 0, 40, 1),
                entity("ARC", 10, 0, 20, 0, 40, 1, 50, 0, 51, 90),
            ).entities
        ]
        assert kinds == ["line", "point", "circle", "arc"]

    def test_of_other_kinds_and_in_blocks_are_not_there(self):
        block = section(
            "BLOCKS",
            tags(0, "BLOCK", 2, "part", 10, 0, 20, 0),
            line(0, 0, 1, 0),
            tags(0, "ENDBLK"),
        )
        text = entity("TEXT", 10, 0, 20, 0, 40, 1, 1, "words")
        file = block + section("ENTITIES", text, line(5, 0, 6, 0)) + tags(0, "EOF")
        assert [e.start for e in Drawing.from_bytes(file.encode()).entities] == [(5, 0, 0)]

    def test_line(self):
        (shown,) = drawing(entity("LINE", 10, 1, 20, 2, 30, 3, 11, 4, 21, 5, 31, 6)).entities
        assert isinstance(shown, converters.Line)
        assert (shown.start, shown.end) == ((1, 2, 3), (4, 5, 6))
        np.testing.assert_array_equal(shown.coordinates, [[1, 2, 3], [4, 5, 6]])

    def test_point(self):
        (shown,) = drawing(entity("POINT", 10, 1, 20, 2, 30, 3)).entities
        assert isinstance(shown, converters.Point)
        assert shown.position == (1, 2, 3)
        np.testing.assert_array_equal(shown.coordinates, [[1, 2, 3]])

    def test_points_that_follow_each_other_are_one_entity(self):
        points = np.arange(12.0).reshape(4, 3)
        (shown,) = Drawing.from_bytes(to_dxf(points)).entities
        assert isinstance(shown, converters.PointVector)
        np.testing.assert_array_equal(shown.points, points)
        assert shown.coordinates is shown.points

    def test_circle(self):
        (shown,) = drawing(entity("CIRCLE", 10, 1, 20, 2, 30, 3, 40, 0.5)).entities
        assert isinstance(shown, converters.Circle)
        assert (shown.centre, shown.radius) == ((1, 2, 3), 0.5)
        np.testing.assert_array_equal(shown.coordinates, [[1, 2, 3]])

    def test_arc(self):
        (shown,) = drawing(entity("ARC", 10, 1, 20, 2, 30, 3, 40, 0.5, 50, 350, 51, 10)).entities
        assert isinstance(shown, converters.Arc)
        assert (shown.centre, shown.radius) == ((1, 2, 3), 0.5)
        assert (shown.start_angle, shown.end_angle) == (350, 10)
        np.testing.assert_array_equal(shown.coordinates, [[1, 2, 3]])

    def test_lightweight_polyline(self):
        (shown,) = drawing(
            entity("LWPOLYLINE", 90, 3, 70, 1, 10, 0, 20, 0, 42, 0.5, 10, 1, 20, 0, 10, 1, 20, 2)
        ).entities
        assert isinstance(shown, converters.Polyline)
        np.testing.assert_array_equal(shown.vertices, [[0, 0, 0], [1, 0, 0], [1, 2, 0]])
        np.testing.assert_array_equal(shown.bulges, [0.5, 0, 0])
        assert shown.closed
        assert shown.coordinates is shown.vertices

    def test_old_polyline(self):
        vertices = (entity("VERTEX", 10, x, 20, x * x, 30, 7) for x in range(3))
        (shown,) = drawing(
            entity("POLYLINE", 66, 1, 70, 8), *vertices, entity("SEQEND")
        ).entities
        assert isinstance(shown, converters.Polyline)
        np.testing.assert_array_equal(shown.vertices, [[0, 0, 7], [1, 1, 7], [2, 4, 7]])
        assert not shown.closed

    def test_spline(self):
        knots = [value for knot in (0, 0, 0, 1, 1, 1) for value in (40, knot)]
        weights = [value for weight in (1, 0.5, 1) for value in (41, weight)]
        control = [value for x, y in ((1, 0), (1, 1), (0, 1)) for value in (10, x, 20, y, 30, 5)]
        (shown,) = drawing(
            entity(
                *("SPLINE", 70, 8, 71, 2, 72, 6, 73, 3, 74, 1),
                *knots,
                *weights,
                *control,
                *(11, 8, 21, 9, 31, 0),
            )
        ).entities
        assert isinstance(shown, converters.Spline)
        assert shown.degree == 2
        np.testing.assert_array_equal(shown.knots, [0, 0, 0, 1, 1, 1])
        np.testing.assert_array_equal(shown.control_points, [[1, 0, 5], [1, 1, 5], [0, 1, 5]])
        np.testing.assert_array_equal(shown.weights, [1, 0.5, 1])
        np.testing.assert_array_equal(shown.fit_points, [[8, 9, 0]])
        assert shown.coordinates is shown.control_points

    def test_cannot_be_changed(self):
        (shown,) = Drawing.from_bytes(to_dxf(np.zeros((2, 3)))).entities
        with pytest.raises(dataclasses.FrozenInstanceError):
            shown.layer = "other"
        with pytest.raises(ValueError, match="read-only"):
            shown.points[0] = 1

    def test_coordinates_cannot_be_written_to(self):
        shown = drawing(
            entity("POINT", 10, 1, 20, 2),
            entity("LINE", 10, 1, 20, 2, 11, 3),
            entity("CIRCLE", 10, 1, 20, 2, 40, 1),
            entity("ARC", 10, 1, 20, 2, 40, 1),
            entity("LWPOLYLINE", 90, 2, 10, 1, 20, 2, 10, 3, 20, 4),
            entity("SPLINE", 71, 1, 40, 0, 40, 1, 10, 1, 20, 2),
        ).entities
        assert len(shown) == 6
        assert [each.kind for each in shown if each.coordinates.flags.writeable] == []

    def test_outlive_their_drawing(self):
        points = np.random.default_rng(3).normal(size=(1000, 3)).round(3)
        kept = [Drawing.from_bytes(to_dxf(points)).entities[0].points for _ in range(20)]
        for found in kept:
            np.testing.assert_array_equal(found, points)

    def test_are_made_once(self):
        shown = drawing(line(0, 0, 1, 0))
        assert shown.entities is shown.entities
        assert shown.layers is shown.layers


SQUARE = [(0, 0, 1, 0), (1, 1, 1, 0), (1, 1, 0, 1), (0, 0, 0, 1)]


class TestWalk:
    def test_points_are_those_of_from_dxf(self):
        file = section("ENTITIES", *(line(*ends) for ends in SQUARE)) + tags(0, "EOF")
        np.testing.assert_array_equal(
            Drawing.from_bytes(file.encode()).points(), from_dxf(file.encode())
        )

    def test_lines_that_meet_are_one_closed_contour(self):
        (contour,) = drawing(*(line(*ends) for ends in SQUARE)).contours()
        assert contour.points.shape == (41, 3)
        assert contour.closed
        np.testing.assert_array_equal(contour.points[0], contour.points[-1])
        assert contour.length == pytest.approx(4)

    def test_a_gap_beyond_the_tolerance_opens_a_contour(self):
        def contours(gap):
            return drawing(line(0, 0, 1, 0), line(1 + gap, 0, 2, 0)).contours()

        assert [len(c.points) for c in contours(0.0005)] == [20]
        assert [len(c.points) for c in contours(0.002)] == [10, 11]
        assert not any(c.closed for c in contours(0.002))

    def test_contours_follow_each_other_as_the_points_do(self):
        shown = drawing(
            line(0, 0, 1, 0),
            line(5, 5, 6, 5),
            line(1, 0, 2, 0),
            entity("CIRCLE", 10, 20, 20, 0, 40, 1),
            line(6, 5, 7, 5),
        )
        contours = shown.contours()
        np.testing.assert_array_equal(np.concatenate([c.points for c in contours]), shown.points())
        assert [(len(c.points), round(c.points[:, 0].mean())) for c in contours] == [
            (21, 6),
            (62, 20),
            (21, 1),
        ]

    def test_a_contour_is_an_array_of_its_points(self):
        (contour,) = drawing(line(0, 0, 1, 0)).contours()
        np.testing.assert_array_equal(np.asarray(contour), contour.points)
        assert np.asarray(contour, dtype="f4").dtype == np.float32

    def test_contours_share_one_array(self):
        first, second = drawing(line(0, 0, 1, 0), line(5, 0, 6, 0)).contours()
        assert first.points.base is second.points.base or np.shares_memory(
            first.points.base, second.points.base
        )

    def test_a_single_point_is_a_contour_that_meets_itself(self):
        (contour,) = drawing(entity("POINT", 10, 3, 20, 4, 30, 5)).contours()
        assert contour.points.tolist() == [[3, 0, 4]]
        assert contour.length == 0
        assert contour.closed

    def test_contours_of_many_random_lines_cut_the_walk_where_it_jumps(self):
        random = np.random.default_rng(5)
        for _ in range(30):
            corners = random.integers(0, 6, size=(random.integers(1, 40), 4))
            shown = drawing(*(line(*ends) for ends in corners))
            contours = shown.contours()
            points = shown.points()
            starts = np.cumsum([0] + [len(c.points) for c in contours])
            assert starts[-1] == len(points)
            np.testing.assert_array_equal(np.concatenate([c.points for c in contours]), points)
            for contour in contours:
                steps = np.linalg.norm(np.diff(contour.points, axis=0), axis=1)
                # Along a line a step is between 0.1 and, for the shortest lines here, 0.2.
                assert (steps < 0.2).all()
                ends = contour.points[[0, -1]]
                assert contour.closed == (np.linalg.norm(ends[0] - ends[1]) < 0.001)


SAMPLES = sorted((Path(os.environ.get("CONVERTERS_SAMPLE_DIR", "")) / "drawings").glob("*.dxf"))


@pytest.mark.skipif(not SAMPLES, reason="no drawings by other programs here")
@pytest.mark.parametrize("path", SAMPLES or [None], ids=lambda path: getattr(path, "name", ""))
def test_drawings_by_other_programs_are_read(path):
    shown = Drawing.load(path)
    assert shown.layers
    assert all(e.coordinates.shape[1] == 3 for e in shown.entities)
    np.testing.assert_array_equal(shown.points(), from_dxf(path.read_bytes()))
    assert sum(len(c.points) for c in shown.contours()) == len(shown.points())


def test_no_reference_is_lost_or_kept():
    file = to_dxf(np.zeros((3, 3)))
    before = sys.getrefcount(file)
    for _ in range(100):
        shown = Drawing.from_bytes(file)
        shown.entities, shown.layers, shown.points(), shown.contours()
    del shown
    assert sys.getrefcount(file) == before
