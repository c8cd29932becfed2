"""to_ply and from_ply against NumPy."""

import array
import math
import mmap
import pathlib
import resource
import tracemalloc

import numpy as np
import pytest

from converters import Drawing, from_dxf, from_ply, to_dxf, to_ply

POINT = np.dtype([("x", "<f4"), ("y", "<f4"), ("z", "<f4"), ("intensity", "<f4")])


def random_points(count, columns=3, dtype=np.float32):
    return np.random.default_rng(count).normal(scale=100, size=(count, columns)).astype(dtype)


def binary_body(file):
    """The points of a binary file, read without this library."""
    return np.frombuffer(file.split(b"end_header\n", 1)[1], dtype=POINT)


def assert_body(file, xyz, intensity):
    body = binary_body(file)
    for axis, name in enumerate("xyz"):
        np.testing.assert_array_equal(body[name], xyz[:, axis])
    np.testing.assert_array_equal(body["intensity"], intensity)


def test_binary_file_holds_the_points_as_numpy_packs_them():
    points = random_points(1000, 4)
    assert_body(to_ply(points), points[:, :3], points[:, 3])


def test_header_declares_the_size_and_the_fields():
    header = to_ply(random_points(12), width=4, height=3).split(b"end_header\n")[0].decode()
    lines = header.splitlines()
    assert lines[:2] == ["ply", "format binary_little_endian 1.0"]
    assert "obj_info num_cols 4" in lines
    assert "obj_info num_rows 3" in lines
    assert "element vertex 12" in lines
    assert [line for line in lines if line.startswith("property")] == [
        f"property float {name}" for name in ("x", "y", "z", "intensity")
    ]


def test_ascii_lines_are_the_six_digits_that_python_prints():
    points = random_points(300, 4)
    body = to_ply(points, ascii=True).decode().split("end_header\n", 1)[1]
    assert body.splitlines() == [" ".join(f"{float(v):.6g}" for v in row) for row in points]


@pytest.mark.parametrize("ascii", [False, True])
def test_round_trip_gives_the_points_back(ascii):
    points = np.round(random_points(500, 4), 2)
    cloud = from_ply(to_ply(points, ascii=ascii))
    tolerance = {"rtol": 1e-5} if ascii else {"rtol": 0}
    np.testing.assert_allclose(cloud.xyz, points[:, :3], **tolerance)
    np.testing.assert_allclose(cloud.intensity, points[:, 3], **tolerance)
    assert (cloud.width, cloud.height, cloud.empty_scene, len(cloud)) == (500, 1, False, 500)


def test_missing_points_stay_nan():
    points = random_points(10)
    points[3] = np.nan
    xyz = from_ply(to_ply(points)).xyz
    np.testing.assert_array_equal(np.isnan(xyz), np.isnan(points))


VIEWS = {
    "float32": lambda p: p.astype(np.float32),
    "float64": lambda p: p,
    "every second row": lambda p: np.repeat(p, 2, axis=0)[::2],
    "backwards": lambda p: p[::-1].copy()[::-1],
    "Fortran order": np.asfortranarray,
    "columns of a wider table": lambda p: np.hstack([p, p, p])[:, 3:6],
    "columns backwards": lambda p: p[:, ::-1].copy()[:, ::-1],
    "big-endian": lambda p: p.astype(">f8"),
    "half precision": lambda p: p.astype(np.float16),
    "extended precision": lambda p: p.astype(np.longdouble),
    "matrix": lambda p: p.view(np.matrix),
    "mask of nothing": np.ma.masked_invalid,
    "nested lists": lambda p: p.tolist(),
    "memoryview": lambda p: memoryview(np.ascontiguousarray(p)),
    "structured": lambda p: np.rec.fromarrays(p.T, names="x,y,z"),
    "structured, other order and types": lambda p: np.rec.fromarrays(
        [p[:, 2], np.zeros(len(p)), p[:, 0].astype(np.float32), p[:, 1]], names="z,ring,x,y"
    ),
    "structured, packed to odd bytes": lambda p: np.array(
        [(b"a", *row) for row in p], dtype=[("tag", "S1"), ("x", "f8"), ("y", "f8"), ("z", "f8")]
    ),
}


@pytest.mark.parametrize("view", VIEWS)
def test_any_layout_of_the_array_gives_the_same_file(view):
    points = random_points(2500, dtype=np.float32).astype(np.float16).astype(np.float64)
    given = VIEWS[view](points)
    assert to_ply(given, 1.5) == to_ply(points.astype(np.float32), np.full(2500, 1.5))


def test_masked_numbers_are_written_as_missing():
    points = np.ma.masked_equal([[1, 2, 3], [4, 0, 6]], 0)
    expected = np.array([[1, 2, 3], [4, np.nan, 6]])
    assert_body(to_ply(points, np.ma.masked_equal([5, 7], 7)), expected, [5, np.nan])
    records = np.ma.array(np.zeros(2, dtype=POINT), mask=[(0, 0, 0, 0), (1, 0, 0, 0)])
    assert_body(to_ply(records), np.array([[0, 0, 0], [np.nan, 0, 0]]), 0)


def test_sizes_may_be_integers_of_numpy():
    points = random_points(12)
    assert to_ply(points, width=np.int64(4), height=np.uint8(3)) == to_ply(points, width=4)


@pytest.mark.parametrize("width", [4.0, "4"])
def test_sizes_of_other_types_are_refused(width):
    reason = f"'{type(width).__name__}' object cannot be interpreted as an integer"
    with pytest.raises(TypeError, match=reason):
        to_ply(random_points(12), width=width)
    with pytest.raises(TypeError, match=reason):
        to_ply(random_points(12), height=width)


def test_read_only_arrays_are_read_and_not_changed():
    points = random_points(10)
    before = points.copy()
    points.flags.writeable = False
    assert_body(to_ply(points), before, 0)


def test_integers_and_booleans_are_numbers():
    assert_body(to_ply(np.array([[1, 2, 3]], dtype=np.int16)), np.array([[1, 2, 3]]), 0)
    assert_body(to_ply([[True, False, 7]]), np.array([[1, 0, 7]]), 0)


def test_numbers_beyond_float32_become_infinite():
    body = binary_body(to_ply([[1e300, -1e300, 1e-300]]))[0]
    assert (body["x"], body["y"], body["z"]) == (math.inf, -math.inf, 0)


class TestIntensity:
    def test_is_zero_by_default(self):
        assert_body(to_ply(random_points(5)), random_points(5), 0)

    def test_one_number_is_for_all_points(self):
        assert_body(to_ply(random_points(5), 0.25), random_points(5), 0.25)

    @pytest.mark.parametrize("dtype", [np.float32, np.float64, np.uint8, ">f4"])
    def test_an_array_has_one_for_each_point(self, dtype):
        intensity = np.arange(10).astype(dtype)[::2]
        assert_body(to_ply(random_points(5), intensity), random_points(5), intensity)

    def test_comes_from_the_field_of_a_structured_array(self):
        points = np.zeros(4, dtype=POINT)
        points["intensity"] = [1, 2, 3, 4]
        assert_body(to_ply(points), np.zeros((4, 3)), [1, 2, 3, 4])

    def test_given_goes_before_the_one_in_the_points(self):
        assert_body(to_ply(np.ones((2, 4)), [5, 6]), np.ones((2, 3)), [5, 6])

    @pytest.mark.parametrize("shape", [(4,), (6,), (1, 5), (0,)])
    def test_of_another_shape_is_refused(self, shape):
        with pytest.raises(ValueError, match="intensity has shape"):
            to_ply(random_points(5), np.zeros(shape))


class TestOrganisedClouds:
    GRID = random_points(12, 4).reshape(3, 4, 4)

    def test_a_grid_of_numbers_keeps_its_rows(self):
        cloud = from_ply(to_ply(self.GRID))
        assert (cloud.width, cloud.height) == (4, 3)
        np.testing.assert_array_equal(cloud.grid["y"], self.GRID[:, :, 1])
        np.testing.assert_array_equal(cloud.grid["intensity"], self.GRID[:, :, 3])

    def test_a_grid_of_records_can_be_written_again(self):
        file = to_ply(self.GRID)
        assert to_ply(from_ply(file).grid) == file

    @pytest.mark.parametrize(
        "part",
        [np.s_[::2], np.s_[:, ::2], np.s_[::-1, 1:], np.s_[:, :1], np.s_[:1], np.s_[::2, 2:3]],
        ids=str,
    )
    def test_part_of_a_grid_is_read_in_place(self, part):
        given = self.GRID[part]
        rows, columns, _ = given.shape
        assert to_ply(given) == to_ply(np.ascontiguousarray(given).reshape(-1, 4), None, False, columns, rows)

    def test_a_transposed_grid_is_read_row_by_row(self):
        assert to_ply(self.GRID.transpose(1, 0, 2)) == to_ply(
            np.ascontiguousarray(self.GRID.transpose(1, 0, 2))
        )

    def test_intensities_may_be_flat_or_a_grid(self):
        flat = np.arange(12.0)
        assert to_ply(self.GRID, flat) == to_ply(self.GRID, flat.reshape(3, 4))
        with pytest.raises(ValueError, match="intensity has shape"):
            to_ply(self.GRID, flat.reshape(4, 3))

    def test_one_size_follows_from_the_other(self):
        points = random_points(12)
        both = to_ply(points, width=4, height=3)
        assert to_ply(points, width=4) == both
        assert to_ply(points, height=3) == both

    @pytest.mark.parametrize(
        "size",
        [
            {"width": 5},
            {"height": 5},
            {"width": 0},
            {"height": 0},
            {"width": 0, "height": 0},
            {"width": 3, "height": 3},
            {"width": -4, "height": -3},
            {"width": -12},
            {"width": 2**32 + 12, "height": 1},
            {"width": 2**32 + 4, "height": 2**32 + 3},
            {"width": 10**30, "height": 10**30},
            {"width": 13},
        ],
        ids=str,
    )
    def test_a_size_that_is_not_the_number_of_points_is_refused(self, size):
        with pytest.raises(ValueError, match="is not the 12 points given"):
            to_ply(random_points(12), **size)


class TestRefusedPoints:
    @pytest.mark.parametrize(
        "points", [np.zeros((0, 3)), [], np.zeros(0, dtype=POINT), np.zeros((2, 0, 3))], ids=repr
    )
    @pytest.mark.parametrize("ascii", [False, True])
    def test_no_points_raise_what_the_library_logs(self, points, ascii):
        with pytest.raises(ValueError) as raised:
            to_ply(points, ascii=ascii)
        assert str(raised.value) == (
            "PLYSerializer::SerializePlyBinary] Input point cloud has no data!"
        )

    @pytest.mark.parametrize("shape", [(3,), (5, 2), (5, 5), (2, 2, 2), (1, 1, 1, 3), ()], ids=str)
    def test_another_shape_is_named(self, shape):
        with pytest.raises(ValueError) as raised:
            to_ply(np.zeros(shape))
        assert str(raised.value) == f"points have shape {shape}, expected (N, 3) or (N, 4)"

    def test_more_points_than_a_file_can_count_are_refused(self):
        with pytest.raises(ValueError, match="2147483648 points are more than a file can count"):
            to_ply(np.broadcast_to(np.zeros(3), (2**31, 3)))

    def test_missing_fields_are_named(self):
        with pytest.raises(ValueError, match="points have no field y, z"):
            to_ply(np.zeros(3, dtype=[("x", "f4"), ("u", "f4")]))

    def test_records_of_three_dimensions_are_refused(self):
        with pytest.raises(ValueError, match="3 dimensions"):
            to_ply(np.zeros((2, 2, 2), dtype=POINT))

    @pytest.mark.parametrize("dtype", [complex, object, "U3", "M8[s]"])
    def test_values_that_are_no_real_numbers_are_refused(self, dtype):
        with pytest.raises(TypeError, match="x must be real numbers"):
            to_ply(np.zeros((2, 3), dtype=dtype))

    def test_a_field_of_records_is_refused(self):
        with pytest.raises((TypeError, ValueError)):
            to_ply(np.zeros(2, dtype=[("x", POINT), ("y", "f4"), ("z", "f4")]))

    def test_fields_of_arrays_are_refused(self):
        with pytest.raises((TypeError, ValueError)):
            to_ply(np.zeros(2, dtype=[("x", "f4", 3), ("y", "f4"), ("z", "f4")]))


FILE = to_ply([[1, 2, 3], [4, 5, 6]], [7, 8])


def as_mmap(data):
    memory = mmap.mmap(-1, len(data))
    memory.write(data)
    return memory


BUFFERS = {
    "bytes": bytes,
    "bytearray": bytearray,
    "memoryview": memoryview,
    "memoryview with gaps": lambda data: memoryview(bytes(b for byte in data for b in (byte, 0)))[::2],
    "mmap": as_mmap,
    "array": lambda data: array.array("B", data),
    "signed array": lambda data: array.array("b", data),
    "uint8": lambda data: np.frombuffer(data, dtype=np.uint8),
    "read-only void": lambda data: np.frombuffer(data, dtype="V1"),
    "two-dimensional": lambda data: np.frombuffer(data, dtype=np.uint8).reshape(1, -1),
    "wider items": lambda data: np.frombuffer(data + b"\0" * (-len(data) % 8), dtype=np.uint64),
}


class TestReading:
    @pytest.mark.parametrize("kind", BUFFERS)
    def test_any_buffer_is_read(self, kind):
        data = to_ply([[1, 2, 3], [4, 5, 6]], [7, 8], ascii=True)
        cloud = from_ply(BUFFERS[kind](data))
        assert cloud.points.tolist() == [(1, 2, 3, 7), (4, 5, 6, 8)]

    def test_a_bytearray_can_be_resized_afterwards(self):
        data = bytearray(FILE)
        from_ply(data)
        data.clear()
        with pytest.raises(ValueError):
            from_ply(data)
        data.extend(FILE)
        assert len(from_ply(data)) == 2

    @pytest.mark.parametrize("data", ["ply", None, 7, [1, 2]], ids=repr)
    def test_what_is_no_buffer_is_refused(self, data):
        with pytest.raises(TypeError):
            from_ply(data)

    def test_numbers_that_the_file_lacks_are_zero(self):
        file = b"ply\nformat ascii 1.0\nelement vertex 1\nproperty float y\nend_header\n5\n"
        assert from_ply(file).points.tolist() == [(0, 5, 0, 0)]

    def test_views_share_the_memory_of_the_points(self):
        cloud = from_ply(FILE)
        for view in (cloud.xyz, cloud.intensity, cloud.grid):
            assert np.shares_memory(view, cloud.points)
        cloud.xyz[1, 2] = 9
        cloud.intensity[1] = 10
        assert cloud.points[1].tolist() == (4, 5, 9, 10)

    def test_the_points_outlive_the_cloud(self):
        points = from_ply(FILE).points
        copies = [from_ply(FILE).xyz for _ in range(100)]
        assert points.tolist() == [(1, 2, 3, 7), (4, 5, 6, 8)]
        assert all(copy.tolist() == [[1, 2, 3], [4, 5, 6]] for copy in copies)

    @pytest.mark.parametrize(
        "file", [b"ply\nformat ascii 1.0\nelement vertex 0\nend_header\n", b"not PLY", b"\0", b" "]
    )
    def test_no_declared_points_are_an_empty_scene(self, file):
        cloud = from_ply(file)
        assert cloud.empty_scene
        assert (len(cloud), cloud.width, cloud.height) == (0, 0, 0)
        assert cloud.xyz.shape == (0, 3)
        assert cloud.intensity.shape == (0,)
        assert cloud.grid.shape == (0, 0)


HEADER = b"ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\n"
READ_HEADER = "[PlyDeserializer::ReadHeader] Error parsing ply, "
REJECTED = "; [PLYDeserializer::DeserializePlyT] Reading Header Failed!"
REASONS = {
    b"": "[PLYDeserializer::DeserializePlyT] No Input data!",
    HEADER: "[PLYDeserializer::DeserializePlyT] Reading Header Failed!",
    b"PLY\nelement vertex 1\n": READ_HEADER + "line: 1" + REJECTED,
    HEADER.replace(b"1.0", b"2.0"): READ_HEADER + "line: 2 version 2.0 is not supported" + REJECTED,
    HEADER + b"property list uchar int i\n": READ_HEADER + "line: 5 List not supported" + REJECTED,
    HEADER + b"element face 0\n": READ_HEADER + "line: 5 element type 'face' not supported" + REJECTED,
    HEADER + b"element vertex 1\n": READ_HEADER + "line: 5 Only one set of vertices supported" + REJECTED,
    # A warning, such as the one for a comment, is no reason.
    HEADER + b"comment a\nproperty list uchar int i\n": READ_HEADER
    + "line: 6 List not supported"
    + REJECTED,
    # Names that are not UTF-8 are shown, not trusted.
    HEADER + b"element \xff\xfe\x80 0\n": READ_HEADER
    + r"line: 5 element type '\xff\xfe\x80' not supported"
    + REJECTED,
    HEADER.replace(b"ascii", b"binary_big_endian") + b"end_header\n0000": (
        "[PlyDeserializer::ReadData] Error parsing ply, Binary Big Endian not implemented"
        "; [PLYDeserializer::DeserializePlyT] Reading Data Failed!"
    ),
    HEADER.replace(b"ascii", b"binary_little_endian") + b"end_header\n00": (
        "[PlyDeserializer::ReadData] Error parsing ply, Binary Data doesn't match expected size"
        "; [PLYDeserializer::DeserializePlyT] Reading Data Failed!"
    ),
    HEADER + b"obj_info num_cols many\n": "obj_info num_cols or num_rows is not a number",
    HEADER + b"obj_info num_rows 99999999999\n": "obj_info num_cols or num_rows does not fit 32 bits",
}


@pytest.mark.parametrize("file", REASONS, ids=repr)
def test_a_broken_file_raises_what_the_library_logs(file):
    with pytest.raises(ValueError) as raised:
        from_ply(file)
    assert str(raised.value) == REASONS[file]


def test_a_very_long_reason_is_cut():
    with pytest.raises(ValueError) as raised:
        from_ply(HEADER + b"element " + b"x" * 1_000_000 + b" 0\n")
    assert 100 < len(str(raised.value)) < 5000


def test_memory_is_given_back():
    points = np.zeros((100_000, 3))
    file = to_ply(points)
    drawing = to_dxf(points[:2000])

    def megabytes_after(rounds):
        for _ in range(rounds):
            from_ply(to_ply(points)).xyz.sum()
            from_dxf(to_dxf(points[:2000]))
            shown = Drawing.from_bytes(drawing)
            shown.entities, shown.points(), shown.contours()
            with pytest.raises(ValueError):
                from_ply(file[:-1])
        pages = int(pathlib.Path("/proc/self/statm").read_text().split()[1])
        return pages * resource.getpagesize() / 1e6

    # A round makes six megabytes that a leak could keep.
    settled = megabytes_after(5)
    assert megabytes_after(40) < settled + 50


class TestMemory:
    """NumPy and bytes objects report what they allocate to tracemalloc."""

    COUNT = 200_000

    @pytest.mark.parametrize(
        "given",
        [
            np.zeros((COUNT, 3), dtype=np.float32),
            np.zeros((COUNT, 4)),
            np.zeros((2 * COUNT, 6))[::2, ::2],
            np.zeros((400, 1000, 3))[:, ::2],
            np.zeros(COUNT, dtype=[("tag", "S1"), ("x", "f8"), ("y", "f4"), ("z", "f8")]),
        ],
        ids=["float32", "float64", "strided", "grid", "structured"],
    )
    def test_writing_allocates_nothing_but_the_file(self, given):
        intensity = np.zeros(2 * self.COUNT, dtype=np.float32)[::2]
        tracemalloc.start()
        try:
            file = to_ply(given, intensity)
            _, peak = tracemalloc.get_traced_memory()
        finally:
            tracemalloc.stop()
        assert len(file) > 16 * self.COUNT
        assert peak < len(file) + 100_000

    def test_reading_allocates_no_copy_of_the_points(self):
        file = to_ply(np.zeros((self.COUNT, 3)))
        tracemalloc.start()
        try:
            cloud = from_ply(memoryview(file))
            xyz = cloud.xyz
            _, peak = tracemalloc.get_traced_memory()
        finally:
            tracemalloc.stop()
        assert len(xyz) == self.COUNT
        assert peak < 100_000
