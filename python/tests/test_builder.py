"""Drawings that are made."""

import math

import numpy as np
import pytest

from converters import DrawingBuilder, from_dxf, new_drawing, read_drawing


@pytest.fixture
def made():
    return new_drawing()


def ezdxf_of(made, tmp_path):
    """The entities and layers as ezdxf reads them, without a complaint."""
    ezdxf = pytest.importorskip("ezdxf")
    made.save(tmp_path / "made.dxf")
    document = ezdxf.readfile(tmp_path / "made.dxf")
    assert not document.audit().has_errors
    return list(document.modelspace()), document.layers


def test_an_empty_drawing_is_one(made, tmp_path):
    assert isinstance(made, DrawingBuilder)
    assert len(made) == 0 and bool(made)
    assert repr(made) == "DrawingBuilder(0 entities, 1 layer)"
    assert len(read_drawing(made.to_bytes()).path()) == 0
    entities, layers = ezdxf_of(made, tmp_path)
    assert entities == []
    assert [layer.dxf.name for layer in layers] == ["0", "Defpoints"]


def test_points_are_points(made, tmp_path):
    made.add_point((1, 2))
    made.add_point([1, 2, 3], layer="holes", colour=5)
    made.add_points(np.arange(6, dtype="f4").reshape(2, 3), layer="holes")
    made.add_points([])
    entities, _ = ezdxf_of(made, tmp_path)
    assert [entity.dxftype() for entity in entities] == ["POINT"] * 4
    assert [tuple(entity.dxf.location) for entity in entities] == [
        (1, 2, 0),
        (1, 2, 3),
        (0, 1, 2),
        (3, 4, 5),
    ]
    assert [entity.dxf.layer for entity in entities] == ["0", "holes", "holes", "holes"]
    assert entities[1].dxf.color == 5
    assert len(made) == 3


def test_lines_and_polylines_are_read_back_whole(made, tmp_path):
    made.add_line((0, 0), (30, 0), layer="cut")
    made.add_line((0, 0, 1), (0, 0, 9), layer="rise")
    made.add_polyline([(5, 5), (7, 5), (7, 6)], closed=True, layer="cut")
    made.add_polyline(np.array([(0, 0, 20), (1, 2, 3)]))
    contours = made.drawing().path()
    assert [contour.points.tolist() for contour in contours] == [
        [[0, 0, 0], [30, 0, 0]],
        [[0, 0, 1], [0, 0, 9]],
        [[5, 5, 0], [7, 5, 0], [7, 6, 0], [5, 5, 0]],
        [[0, 0, 20], [1, 2, 3]],
    ]
    assert [contour.closed for contour in contours] == [False, False, True, False]
    assert [contour.layer for contour in contours] == ["cut", "rise", "cut", "0"]
    assert len(from_dxf(made.to_bytes())) > 300
    entities, layers = ezdxf_of(made, tmp_path)
    assert [entity.get_mode() for entity in entities] == [
        "AcDb2dPolyline",
        "AcDb3dPolyline",
        "AcDb2dPolyline",
        "AcDb3dPolyline",
    ]
    assert [tuple(point) for point in entities[3].points()] == [(0, 0, 20), (1, 2, 3)]
    assert {"cut", "rise"} < {layer.dxf.name for layer in layers}


def test_bulges_are_exact_arcs(made, tmp_path):
    bulge = math.tan(math.pi / 8)
    made.add_polyline([(1, 0), (0, 1), (0, 0)], bulges=[bulge, 0, 7])
    (contour,) = made.drawing().path()
    assert [piece.kind for piece in contour.pieces] == ["arc", "line"]
    assert contour.pieces[0].curve["radius"] == pytest.approx(1)
    assert contour.length == pytest.approx(math.pi / 2 + 1)
    (entity,), _ = ezdxf_of(made, tmp_path)
    assert [vertex.dxf.bulge for vertex in entity.vertices] == [pytest.approx(bulge), 0, 0]


def test_the_closing_edge_may_be_an_arc(made):
    made.add_polyline([(-1, 0), (1, 0)], bulges=[0, 1], closed=True)
    (contour,) = made.drawing().path()
    assert contour.closed
    assert [piece.kind for piece in contour.pieces] == ["line", "arc"]
    assert contour.length == pytest.approx(2 + math.pi)


@pytest.mark.parametrize(
    "angles, sweep",
    [((0, 90), 90), ((270, 90), 180), ((-90, 180), 270), ((10, 5), 355), ((30, 390), 360)],
)
def test_arcs_and_circles_are_what_they_are(made, angles, sweep):
    made.add_arc((3, 4), 2, *angles)
    (contour,) = made.drawing().path()
    assert contour.length == pytest.approx(2 * math.radians(sweep))
    assert np.allclose(np.linalg.norm(contour.points[:, :2] - (3, 4), axis=1), 2)
    start = math.radians(angles[0])
    assert contour.points[0, :2] == pytest.approx((3 + 2 * math.cos(start), 4 + 2 * math.sin(start)))
    assert contour.closed == (sweep == 360)


def test_a_circle_is_closed(made):
    made.add_circle((1, 2, 0), 3)
    (contour,) = made.drawing().path()
    assert contour.closed
    assert contour.length == pytest.approx(6 * math.pi)
    assert made.drawing().check(distance=0.01)[0].kind == "no unit"
    assert made._repr_svg_().count("<polyline") == 1


def test_layers_have_colours_and_states(made, tmp_path):
    made.add_layer("cut", colour=1)
    made.add_layer("aux", frozen=True)
    made.add_layer("über", colour=3, off=True)
    made.add_line((0, 0), (1, 0), layer="CUT")
    made.add_line((0, 0), (1, 0), layer="new")
    made.add_layer("CUT", colour=2)
    _, layers = ezdxf_of(made, tmp_path)
    by_number = "\\U+00FCber"  # as files of release R12 have it
    assert [layer.dxf.name for layer in layers] == ["0", "cut", "aux", by_number, "new", "Defpoints"]
    assert layers.get("cut").color == 2
    assert layers.get("aux").is_frozen() and not layers.get("aux").is_off()
    assert layers.get(by_number).is_off() and layers.get(by_number).color == 3
    path = made.drawing().path(except_layers="new")
    assert [contour.layer for contour in path] == ["cut"]
    assert "über" in path.layers


@pytest.mark.parametrize("name", ["", " a", "a\nb", "a\0b", "a*", "\\U+00E9", "\ud800"])
def test_names_that_drawings_cannot_have_are_refused(made, name):
    with pytest.raises(ValueError, match="cannot be the name of a layer"):
        made.add_line((0, 0), (1, 0), layer=name)
    assert len(made) == 0


@pytest.mark.parametrize(
    "add",
    [
        lambda made: made.add_point((1,)),
        lambda made: made.add_point([[1, 2]]),
        lambda made: made.add_points([1, 2, 3]),
        lambda made: made.add_point((1, math.nan)),
        lambda made: made.add_line((0, 0), (math.inf, 0)),
        lambda made: made.add_polyline([(0, 0)]),
        lambda made: made.add_polyline([(0, 0), (1, 0)], bulges=[1]),
        lambda made: made.add_polyline([(0, 0), (1, 0)], bulges=[math.nan, 0]),
        lambda made: made.add_polyline([(0, 0, 1), (1, 0, 1)], bulges=[1, 0]),
        lambda made: made.add_circle((0, 0), 0),
        lambda made: made.add_circle((0, 0), math.nan),
        lambda made: made.add_circle((0, 0, 1), 1),
        lambda made: made.add_arc((0, 0), 1, 0, math.inf),
        lambda made: made.add_point((0, 0), colour=0),
        lambda made: made.add_layer("a", colour=256),
    ],
)
def test_what_cannot_be_drawn_is_refused(made, add):
    with pytest.raises(ValueError):
        add(made)
    assert len(made) == 0


def test_a_file_that_cannot_be_written_is_an_error_of_the_system(made, tmp_path):
    with pytest.raises(FileNotFoundError):
        made.save(tmp_path / "missing" / "made.dxf")


def test_what_was_read_is_saved_as_it_was(tmp_path):
    made = new_drawing()
    made.add_line((0, 0), (1, 0))
    read_drawing(made.to_bytes()).save(tmp_path / "again.dxf")
    assert (tmp_path / "again.dxf").read_bytes() == made.to_bytes()


def test_random_polylines_come_back(made):
    random = np.random.default_rng(7)
    tables = [
        random.normal(0, 10.0 ** random.integers(0, 6), (random.integers(2, 9), 3)) for _ in range(50)
    ]
    for table in tables:
        made.add_polyline(table)
    entities = made.drawing().entities
    assert len(entities) == len(tables)
    for entity, table in zip(entities, tables):
        assert np.allclose(entity.coordinates, table, rtol=0, atol=1e-9)
