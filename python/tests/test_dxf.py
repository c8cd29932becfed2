"""to_dxf and from_dxf against NumPy."""

import os
import pathlib
import subprocess
import sys
import tracemalloc

import numpy as np
import pytest

from converters import from_dxf, to_dxf

TEMPORARY = pathlib.Path("/var/tmp/melgrav/tarnowell3/temp_dxf_files")


def random_points(count, dtype=np.float64):
    return np.random.default_rng(count).normal(scale=100, size=(count, 3)).astype(dtype)


def drawn_points(file):
    """The coordinates of a drawing's POINT entities, read without this library."""
    lines = [line.strip() for line in file.decode("ascii").splitlines()]
    points = []
    inside = False
    for code, value in zip(lines[::2], lines[1::2]):
        if code == "0":
            inside = value == "POINT"
            if inside:
                points.append({})
        elif inside and code in ("10", "20", "30"):
            points[-1][code] = float(value)
    return np.array([[p["10"], p["20"], p["30"]] for p in points]).reshape(-1, 3)


@pytest.mark.parametrize("count", [0, 1, 2, 1000, 1025])
def test_each_point_is_drawn(count):
    points = random_points(count)
    np.testing.assert_allclose(drawn_points(to_dxf(points)), points, rtol=0, atol=1e-15)


def test_round_trip_mirrors_the_height():
    points = random_points(1000)
    np.testing.assert_allclose(from_dxf(to_dxf(points)), points * [1, 1, -1], rtol=0, atol=1e-15)


VIEWS = {
    "float32": lambda p: p.astype(np.float32),
    "every second row": lambda p: np.repeat(p, 2, axis=0)[::2],
    "Fortran order": np.asfortranarray,
    "nested lists": lambda p: p.tolist(),
    "a grid": lambda p: p.reshape(5, 10, 3),
    "a grid with gaps": lambda p: np.repeat(p.reshape(5, 10, 3), 2, axis=1)[:, ::2],
    "structured": lambda p: np.rec.fromarrays([p[:, 2], p[:, 1], p[:, 0]], names="z,y,x"),
    "big-endian": lambda p: p.astype(">f4"),
}


@pytest.mark.parametrize("view", VIEWS)
def test_any_layout_of_the_array_gives_the_same_drawing(view):
    points = random_points(50, np.float32).astype(np.float64)
    assert to_dxf(VIEWS[view](points)) == to_dxf(points)


@pytest.mark.parametrize("shape", [(3,), (5, 2), (5, 4), (2, 2, 4), ()], ids=str)
def test_another_shape_is_named(shape):
    with pytest.raises(ValueError) as raised:
        to_dxf(np.zeros(shape))
    assert str(raised.value) == f"points have shape {shape}, expected (N, 3)"


def test_values_that_are_no_real_numbers_are_refused():
    with pytest.raises(TypeError, match="x must be real numbers, not complex128"):
        to_dxf(np.zeros((2, 3), dtype=complex))


def test_nothing_is_left_in_the_temporary_folder():
    to_dxf(random_points(3))
    assert TEMPORARY.is_dir()
    assert not (TEMPORARY / f"tmp{os.getpid()}.dxf").exists()


def test_a_temporary_file_that_cannot_be_written_raises_what_the_library_logs():
    obstacle = TEMPORARY / f"tmp{os.getpid()}.dxf"
    (obstacle / "kept").mkdir(parents=True)
    try:
        with pytest.raises(OSError) as raised:
            to_dxf(random_points(3))
        assert str(raised.value) == f"DXFWriter: Cannot open {obstacle} for writing."
    finally:
        (obstacle / "kept").rmdir()
        obstacle.rmdir()
    assert len(to_dxf(random_points(3))) > 0


LIMITED = """
import resource
from converters import to_dxf
resource.setrlimit(resource.RLIMIT_FSIZE, (4096, 4096))
try:
    to_dxf([[1, 2, 3]] * 1000)
except OSError as error:
    print(error)
"""


def test_a_drawing_that_cannot_be_written_in_full_is_an_error_of_the_system():
    # Not this process: it could not raise its limit again.
    output = subprocess.run([sys.executable, "-c", LIMITED], check=True, stdout=subprocess.PIPE)
    assert output.stdout == b"the temporary drawing could not be written and read back\n"


def test_writing_allocates_nothing_but_the_drawing():
    points = np.zeros((2 * 20_000, 6), dtype=np.float32)[::2, ::2]
    tracemalloc.start()
    try:
        file = to_dxf(points)
        _, peak = tracemalloc.get_traced_memory()
    finally:
        tracemalloc.stop()
    assert peak < len(file) + 20_000


def test_reading_allocates_no_copy_of_the_points():
    file = to_dxf(np.zeros((20_000, 3)))
    tracemalloc.start()
    try:
        points = from_dxf(memoryview(file))
        _, peak = tracemalloc.get_traced_memory()
    finally:
        tracemalloc.stop()
    assert points.shape == (20_000, 3)
    assert peak < 20_000


def line(x1, y1, x2, y2):
    return f"0\nLINE\n8\n0\n10\n{x1}\n20\n{y1}\n11\n{x2}\n21\n{y2}\n"


def drawing(*entities):
    return ("0\nSECTION\n2\nENTITIES\n" + "".join(entities) + "0\nENDSEC\n0\nEOF\n").encode()


def test_a_line_is_walked_in_the_plane_of_x_and_z():
    steps = np.linspace(0, 1, 51)
    expected = np.column_stack([1 + 3 * steps, 0 * steps, 2 + 4 * steps])
    points = from_dxf(drawing(line(1, 2, 4, 6)))
    assert points.dtype == np.float64
    np.testing.assert_allclose(points, expected, atol=1e-14)


@pytest.mark.parametrize("convert", [bytes, bytearray, memoryview, lambda d: np.frombuffer(d, "u1")])
def test_any_buffer_is_read(convert):
    assert len(from_dxf(convert(drawing(line(0, 0, 1, 0))))) == 11


def test_points_can_be_changed_and_belong_to_the_caller():
    file = drawing(line(0, 0, 1, 0))
    points = from_dxf(file)
    points += 1
    assert from_dxf(file)[0].tolist() == [0, 0, 0]


@pytest.mark.parametrize("data", [b"hello", b"\0", b"0\nEOF\n", drawing()], ids=repr)
def test_a_text_without_entities_has_no_points(data):
    assert from_dxf(data).shape == (0, 3)


def test_no_data_at_all_are_refused():
    with pytest.raises(ValueError, match="the data could not be read as a drawing"):
        from_dxf(b"")


@pytest.mark.parametrize("data", ["0\nEOF\n", None, 7])
def test_what_is_no_buffer_is_refused(data):
    with pytest.raises(TypeError):
        from_dxf(data)
