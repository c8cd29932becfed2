"""The path of drawings."""

import copy
import os
import pickle
import shutil
import struct
import subprocess
from pathlib import Path

import numpy as np
import pytest

from converters import Drawing, DrawingPath, ReadError, read_drawing

EXAMPLES = Path(__file__).parents[2] / "examples"
SAMPLES = Path(os.environ.get("CONVERTERS_SAMPLE_DIR", "")) / "real" / "drawings"


def drawing(entities, header=""):
    """The bytes of a drawing: words, of which "_" are blanks."""
    words = f"{header}0 SECTION 2 ENTITIES {entities} 0 ENDSEC 0 EOF".split()
    return ("\n".join(words) + "\n").encode()


SQUARE = "0 LWPOLYLINE 5 2F 8 cut 70 1 90 4 10 0 20 0 10 2 20 0 10 2 20 2 10 0 20 2"
ARC = "0 ARC 8 holes 10 5 20 5 40 1 50 0 51 90"
TEXT = "0 TEXT 8 notes 10 0 20 0 40 1 1 word"
MILLIMETRES = "0 SECTION 2 HEADER 9 $INSUNITS 70 4 0 ENDSEC "


def test_a_path_is_a_sequence_of_contours():
    path = read_drawing(drawing(f"{SQUARE} {ARC}")).path()
    assert isinstance(path, DrawingPath)
    assert len(path) == 2
    square, arc = path
    assert square.closed and not arc.closed
    assert square.points.tolist() == [[0, 0, 0], [2, 0, 0], [2, 2, 0], [0, 2, 0], [0, 0, 0]]
    assert square.layer == "cut"
    assert square.length == 8
    assert arc.length == pytest.approx(np.pi / 2)
    assert path.bounds.tolist() == [[0, 0, 0], [6, 6, 0]]
    assert path.length == pytest.approx(8 + np.pi / 2)
    assert [contour.layer for contour in path[:1]] == ["cut"]


def test_a_contour_tells_its_entities_and_exact_pieces():
    square, arc = read_drawing(drawing(f"{SQUARE} {ARC}")).path()
    entity = square.entities[0]
    assert (entity.kind, entity.handle, entity.insert, entity.layer) == (
        "LWPOLYLINE",
        "2F",
        "",
        "cut",
    )
    assert [piece.kind for piece in square.pieces] == ["line"] * 4
    piece = arc.pieces[0]
    assert piece.kind == "arc"
    assert piece.curve["radius"] == pytest.approx(1)
    assert piece.curve["sweep"] == pytest.approx(np.pi / 2)
    assert (piece.points == arc.points).all()


def test_the_points_cannot_be_written_to():
    path = read_drawing(drawing(SQUARE)).path()
    with pytest.raises(ValueError):
        path[0].points[0, 0] = 1


def test_a_path_and_its_contours_are_arrays_of_points():
    path = read_drawing(drawing(f"{SQUARE} {ARC}")).path()
    for thing in (path, path[1]):
        array = np.asarray(thing)
        assert array.dtype == np.float64
        assert array.shape == (len(thing.points), 3)
        assert (array == thing.points).all()
        assert np.shares_memory(array, thing.points)
        assert np.asarray(thing, dtype="f4").dtype == np.float32
        copied = np.array(thing)
        copied[0] = 7
        assert not (thing.points == 7).any()
    assert (np.concatenate(path) == path.points).all()
    assert np.asarray(read_drawing(drawing("")).path()).shape == (0, 3)


def test_an_array_is_a_copy_only_where_that_is_allowed():
    contour = read_drawing(drawing(SQUARE)).path()[0]
    assert np.shares_memory(contour.__array__(copy=False), contour.points)
    assert not np.shares_memory(contour.__array__(copy=True), contour.points)
    with pytest.raises(ValueError, match="copy"):
        contour.__array__(np.float32, copy=False)


#: A line from (0, 0) to (3, 4), binary: groups of a two-byte code and a value.
BINARY = b"AutoCAD Binary DXF\r\n\x1a\0" + b"".join(
    struct.pack("<H", code) + (value.encode() + b"\0" if type(value) is str else struct.pack("<d", value))
    for code, value in [
        *((0, "SECTION"), (2, "ENTITIES"), (0, "LINE"), (8, "cut")),
        *((10, 0.0), (20, 0.0), (11, 3.0), (21, 4.0), (0, "ENDSEC"), (0, "EOF")),
    ]
)


@pytest.mark.parametrize("read", [read_drawing, Drawing.from_bytes])
def test_a_binary_drawing_says_that_it_has_a_path_alone(read):
    loaded = read(BINARY)
    assert repr(loaded) == "Drawing(binary)"
    assert loaded.path()[0].points.tolist() == [[0, 0, 0], [3, 4, 0]]
    assert "cut" in loaded.path().layers
    assert [finding.kind for finding in loaded.check()] == ["no unit"]
    assert loaded.unit == "" and loaded.left_out == () and bool(loaded)
    for use in (
        *(lambda: loaded.entities, lambda: loaded.layers, lambda: len(loaded)),
        *(loaded.walk, loaded.points, loaded.contours, lambda: list(loaded)),
    ):
        with pytest.raises(ReadError, match=r"a binary drawing.*path\(\)"):
            use()


def test_what_is_left_out_is_told():
    parts = read_drawing(drawing(f"{SQUARE} {TEXT}")).left_out
    assert [(part.kind, part.layer, part.number, part.reason) for part in parts] == [
        ("TEXT", "notes", 1, "annotation")
    ]


def test_options_choose_what_is_followed():
    loaded = read_drawing(drawing(f"{SQUARE} {ARC}", MILLIMETRES))
    assert loaded.unit == "mm"
    assert len(loaded.path(layers="CU?")) == 1
    assert len(loaded.path(except_layers=["cut", "h*"])) == 0
    inches = loaded.path(unit="in")
    assert inches.unit == "in"
    assert inches[0].length == pytest.approx(8 / 25.4)
    assert len(loaded.path(step=0.5)[0].points) == 17
    assert loaded.path(axes="plain")[0].points[2].tolist() == [2, 0, 2]
    assert len(loaded.path(tolerance=0.001)[1].points) > len(loaded.path(tolerance=0.1)[1].points)
    assert loaded.path(scale=2)[0].length == 16
    for wrong in ({"unit": "cubit"}, {"order": "any"}, {"axes": "polar"}):
        with pytest.raises(ValueError, match="expected one of"):
            loaded.path(**wrong)


def test_failures_have_reasons():
    with pytest.raises(ReadError):
        read_drawing(b"\x89PNG")
    with pytest.raises(ReadError):
        read_drawing(drawing(SQUARE)).path(maximum_points=2)
    with pytest.raises(ReadError):
        read_drawing(drawing(SQUARE)).path(tolerance=-1)


def test_progress_may_stop_the_work():
    class Enough(Exception):
        pass

    def stop(done):
        raise Enough

    with pytest.raises(Enough):
        read_drawing(drawing(SQUARE)).path(progress=stop)


def test_a_drawing_is_a_container_and_shows_itself(tmp_path):
    loaded = read_drawing(drawing(SQUARE))
    assert len(loaded) == 1
    assert [entity.kind for entity in loaded] == ["polyline"]
    assert loaded.walk().shape == loaded.points().shape
    assert loaded._repr_svg_().count("<polyline") == 1
    loaded.save(tmp_path / "a.dxf")
    assert len(Drawing.load(tmp_path / "a.dxf").path()) == 1
    assert len(read_drawing(tmp_path / "a.dxf").path()) == 1


def test_a_drawing_goes_to_other_processes():
    loaded = read_drawing(drawing(SQUARE))
    for made in (pickle.loads(pickle.dumps(loaded)), copy.deepcopy(loaded)):
        assert made.path()[0].points.tolist() == loaded.path()[0].points.tolist()
        assert len(made) == 1


def test_a_path_is_drawn():
    pytest.importorskip("matplotlib").use("Agg")
    assert len(read_drawing(drawing(f"{SQUARE} {ARC}")).plot().lines) == 2


@pytest.mark.parametrize("name", ["plate", "floor_plan"])
@pytest.mark.parametrize(
    "extension, options",
    [
        ("ply", {}),
        ("ply", {"ascii": True}),
        ("csv", {}),
        ("csv", {"digits": 5}),
        ("xyz", {}),
        ("dxf", {}),
    ],
)
def test_a_path_is_saved_as_the_command_writes_it(tmp_path, name, extension, options):
    command = os.environ.get("CLOUDCONV") or shutil.which("cloudconv")
    if command is None:
        pytest.skip("cloudconv is not built")
    expected, saved = (tmp_path / f"{part}.{extension}" for part in ("expected", "saved"))
    arguments = [f"--{option}" for option in options]
    arguments += [str(value) for value in options.values() if value is not True]
    subprocess.run([command, EXAMPLES / f"{name}.dxf", expected, "--quiet", *arguments], check=True)
    read_drawing(EXAMPLES / f"{name}.dxf").path().save(saved, **options)
    assert saved.read_bytes() == expected.read_bytes()
    assert len(saved.read_bytes()) > 100


def test_a_path_without_contours_is_saved(tmp_path):
    path = read_drawing(drawing(TEXT)).path()
    assert path.to_bytes("xyz") == b""
    assert path.to_bytes("csv") == b"x,y,z,contour\n"
    assert len(read_drawing(path.to_bytes("dxf")).path()) == 0
    assert b"element vertex 0\n" in path.to_bytes()


def test_a_path_is_saved_as_nothing_else(tmp_path):
    path = read_drawing(drawing(SQUARE)).path()
    with pytest.raises(ValueError, match=".stl"):
        path.save(tmp_path / "a.stl")
    with pytest.raises(ValueError, match="digits"):
        path.to_bytes("dxf", digits=0)
    with pytest.raises(ValueError, match="format"):
        path.to_bytes("pcd")


def test_a_path_becomes_a_data_frame():
    pytest.importorskip("pandas")
    frame = read_drawing(drawing(f"{SQUARE} {ARC}")).path().to_dataframe()
    assert list(frame.columns) == ["x", "y", "z", "contour", "layer"]
    assert frame.x.tolist()[:5] == [0, 2, 2, 0, 0]
    assert frame.groupby("contour").layer.first().tolist() == ["cut", "holes"]
    assert len(frame[frame.contour == 1]) == 5
    assert len(read_drawing(drawing("")).path().to_dataframe()) == 0


@pytest.mark.skipif(not SAMPLES.is_dir(), reason="no drawings of other programs")
def test_drawings_of_other_programs_are_followed():
    paths = sorted(SAMPLES.glob("*.dxf"))
    assert paths
    for path in paths:
        loaded = read_drawing(path)
        assert len(loaded.path()) > 0 or loaded.left_out, path


@pytest.mark.parametrize("name", ["tolerance", "step", "join", "scale"])
def test_lengths_are_numbers(name):
    with pytest.raises(TypeError, match=f"{name} is '0.1', expected a number"):
        read_drawing(drawing(ARC)).path(**{name: "0.1"})
    assert len(read_drawing(drawing(ARC)).path(**{name: np.float32(0.5)})) == 1
