"""Scans of any program, and clouds."""

import copy
import io
import mmap
import os
import pickle
import signal
import threading
import time
from pathlib import Path

import numpy as np
import pytest

from converters import (
    Cloud,
    Drawing,
    ReadError,
    from_dxf,
    from_ply,
    new_drawing,
    read_drawing,
    read_scan,
    to_dxf,
    to_ply,
)

SAMPLES = Path(os.environ.get("CONVERTERS_SAMPLE_DIR", "")) / "real" / "scans"

HEADER = (
    b"ply\nformat ascii 1.0\ncomment made here\nelement camera 1\nproperty float f\n"
    b"element vertex 2\nproperty double x\nproperty double y\nproperty double z\n"
    b"property uchar red\nproperty float scalar_Intensity\nproperty list uchar int near\n"
    b"end_header\n"
)
SCAN = HEADER + b"7\n1.5 2 3 255 0.5 2 1 2\n4 5 nan 0 1 0\n"


def test_every_scalar_property_is_kept_under_its_name_and_type():
    cloud = read_scan(SCAN)
    assert cloud.names == ("x", "y", "z", "red", "scalar_Intensity")
    assert cloud["red"].dtype == np.uint8
    assert cloud["red"].tolist() == [255, 0]
    assert cloud.x.tolist() == [1.5, 4.0]
    assert cloud.intensity.tolist() == [0.5, 1.0]
    assert cloud.bounds.tolist() == [[1.5, 2, 3], [1.5, 2, 3]]


def test_the_report_tells_what_else_the_file_held():
    report = read_scan(SCAN).report
    assert report.format == "ascii"
    assert report.comments == ("made here",)
    assert [(element.name, element.count) for element in report.elements] == [
        ("camera", 1),
        ("vertex", 2),
    ]
    near = report.elements[1].properties[-1]
    assert (near.name, near.type, near.count_type, near.use) == ("near", "int", "uchar", "dropped")
    assert report.points_without_place == 1


@pytest.mark.parametrize("kind", ["str", "path", "bytes", "mmap", "file", "array"])
def test_a_source_is_a_path_bytes_or_an_open_file(tmp_path, kind):
    path = tmp_path / "scan.ply"
    path.write_bytes(SCAN)
    with open(path, "rb") as file:
        sources = {
            "str": str(path),
            "path": path,
            "bytes": SCAN,
            "mmap": mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ),
            "file": file,
            "array": np.frombuffer(SCAN, dtype="u1"),
        }
        assert len(read_scan(sources[kind])) == 2


def test_a_text_file_is_refused():
    with pytest.raises(TypeError, match="binary mode"):
        read_scan(io.StringIO("ply"))


def test_a_picture_is_no_empty_scene():
    with pytest.raises(ReadError, match="no PLY file"):
        read_scan(b"\x89PNG\r\n\x1a\n")


def test_an_error_names_its_line():
    with pytest.raises(ReadError) as caught:
        read_scan(HEADER + b"7\n1,5 2 3 255 0.5 0\n4 5 6 0 1 0\n")
    assert caught.value.line == 15
    assert "1,5" in str(caught.value)


def test_a_missing_file_is_an_error_of_the_system(tmp_path):
    with pytest.raises(FileNotFoundError):
        read_scan(tmp_path / "none.ply")


@pytest.mark.parametrize("read", [read_scan, read_drawing, Drawing.load])
def test_an_empty_name_is_said_to_be_one(read):
    with pytest.raises(FileNotFoundError, match="the name of the file is empty: ''"):
        read("")


def test_nothing_is_written_to_an_empty_name():
    made = new_drawing()
    path = made.drawing().path()
    for save in (made.save, made.drawing().save):
        with pytest.raises(FileNotFoundError, match="the name of the file is empty"):
            save("")
    for save in (path.save, Cloud([[1, 2, 3]]).save):
        with pytest.raises(ValueError, match="no extension"):
            save("")


def test_a_shift_is_taken_off_before_rounding():
    scan = (
        b"ply\nformat ascii 1.0\nelement vertex 1\nproperty double x\nproperty double y\n"
        b"property double z\nend_header\n4500000.125 5 6\n"
    )
    assert read_scan(scan, shift=(4500000, 0, 0)).x.tolist() == [0.125]
    automatic = read_scan(scan, shift="auto")
    assert automatic.report.shift == (4500000.0, 0.0, 0.0)
    with pytest.raises(ValueError, match="auto"):
        read_scan(scan, shift="much")


def test_progress_may_stop_the_reader():
    class Enough(Exception):
        pass

    def stop(done):
        raise Enough

    with pytest.raises(Enough):
        read_scan(SCAN, progress=stop)


def test_a_bar_is_set_to_its_total():
    class Bar:
        n = 0
        total = 200
        refreshed = 0

        def refresh(self):
            self.refreshed += 1

    bar = Bar()
    read_scan(SCAN, progress=bar)
    assert bar.refreshed > 0
    assert 0 < bar.n <= 200


def test_ctrl_c_stops_a_long_call():
    scan = Cloud(np.random.default_rng(1).random((2_000_000, 3))).to_bytes("ply-ascii")
    timer = threading.Timer(0.02, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    with pytest.raises(KeyboardInterrupt):
        for _ in range(50):
            read_scan(scan)
        time.sleep(5)


def test_a_cloud_is_a_container():
    cloud = Cloud([[1, 2, 3], [4, 5, 6], [7, 8, 9]], time=np.arange(3, dtype="f8"))
    assert len(cloud) == 3
    assert [point["x"] for point in cloud] == [1, 4, 7]
    assert cloud[1]["time"] == 1
    assert cloud[1:].x.tolist() == [4, 7]
    assert cloud[cloud.z > 5].x.tolist() == [4, 7]
    assert cloud[[2, 0]].x.tolist() == [7, 1]
    assert np.asarray(cloud, dtype="f8").shape == (3, 3)
    assert cloud.intensity.tolist() == [0, 0, 0]


def test_a_fourth_column_is_the_intensity():
    cloud = Cloud(np.arange(8.0).reshape(2, 4))
    assert cloud.names == ("x", "y", "z", "intensity")
    assert cloud.intensity.tolist() == [3, 7]
    assert Cloud(np.zeros((2, 4)), intensity=[5, 6]).intensity.tolist() == [5, 6]
    assert Cloud(np.zeros((0, 4))).names == ("x", "y", "z", "intensity")


@pytest.mark.parametrize("columns", [3, 4])
def test_an_organised_array_has_its_rows(columns):
    numbers = np.arange(6.0 * columns).reshape(2, 3, columns)
    cloud = Cloud(numbers, red=np.arange(6, dtype="u1").reshape(2, 3), time=1.5)
    assert (cloud.width, cloud.height) == (3, 2)
    assert cloud.grid["x"].tolist() == numbers[..., 0].tolist()
    assert cloud.grid["red"].tolist() == [[0, 1, 2], [3, 4, 5]]
    assert cloud["time"].tolist() == [1.5] * 6
    again = read_scan(cloud.to_bytes())
    assert (again.width, again.height) == (3, 2)
    assert (again.points == cloud.points).all()
    assert len(Cloud(numbers, width=6, height=1)) == 6


def test_organised_records_are_taken_where_they_lie():
    records = np.zeros((2, 3), dtype=[("x", "f4"), ("y", "f4"), ("z", "f4")])
    cloud = Cloud(records)
    assert (cloud.width, cloud.height) == (3, 2)
    records[1, 2]["x"] = 7
    assert cloud.x.tolist() == [0] * 5 + [7]


def test_rows_follow_from_their_width():
    cloud = Cloud(np.zeros((6, 3)), width=3)
    assert (cloud.width, cloud.height) == (3, 2)


def test_masked_numbers_are_missing():
    numbers = np.ma.masked_less(np.arange(6.0).reshape(2, 3), 1)
    assert np.isnan(Cloud(numbers).x).tolist() == [True, False]
    assert np.isnan(Cloud(np.ma.masked_less(np.arange(6).reshape(2, 3), 1)).x[0])


def test_properties_are_set_and_added():
    cloud = Cloud(np.zeros((2, 3), dtype="f4"), red=np.zeros(2, dtype="u1"))
    points = cloud.points
    cloud["red"] = [255, 0]
    cloud["x"] = 0.5
    assert cloud.points is points
    assert points["red"].tolist() == [255, 0] and points["red"].dtype == np.uint8
    assert cloud.x.tolist() == [0.5, 0.5]
    cloud["time"] = np.array([1, 2], dtype="i8")
    assert cloud.names == ("x", "y", "z", "red", "time")
    assert cloud["time"].dtype == np.int64
    assert cloud["red"].tolist() == [255, 0]
    cloud["intensity"] = 0.25
    assert cloud.intensity.tolist() == [0.25, 0.25]
    assert read_scan(cloud.to_bytes())["time"].tolist() == [1, 2]


def test_an_organised_cloud_takes_a_property_in_rows():
    cloud = Cloud(np.zeros((2, 3, 3)))
    cloud["row"] = np.array([[0, 0, 0], [1, 1, 1]])
    assert cloud["row"].tolist() == [0, 0, 0, 1, 1, 1]
    assert (cloud.width, cloud.height) == (3, 2)


@pytest.mark.parametrize("values", [[300, 0], [-1, 0], [0.5, 0], [np.nan, 0]])
def test_numbers_that_a_property_does_not_hold_are_refused(values):
    cloud = Cloud(np.zeros((2, 3)), red=np.array([1, 2], dtype="u1"))
    with pytest.raises(ValueError, match="'red' holds uint8"):
        cloud["red"] = values
    assert cloud["red"].tolist() == [1, 2]


@pytest.mark.parametrize(
    "index, values, error",
    [
        ("red", [1, 2, 3], ValueError),
        ("red", ["a", "b"], TypeError),
        (0, 1, TypeError),
        ([True, False], 1, TypeError),
        ("", 1, ValueError),
    ],
)
def test_other_things_cannot_be_set(index, values, error):
    cloud = Cloud(np.zeros((2, 3)))
    with pytest.raises(error):
        cloud[index] = values
    assert cloud.names == ("x", "y", "z")


def test_properties_are_attributes_unless_the_cloud_has_others_of_the_name():
    cloud = Cloud([[1, 2, 3]], red=np.array([7], dtype="u1"), save=1.0, width=1, _own=2.0)
    assert cloud.red.tolist() == [7]
    assert np.shares_memory(cloud.red, cloud.points)
    assert callable(cloud.save) and cloud.width == 1
    assert cloud["save"].tolist() == [1.0]
    assert "red" in dir(cloud) and "to_dataframe" in dir(cloud)
    cloud.red = 9
    assert cloud["red"].tolist() == [9]
    with pytest.raises(AttributeError, match="'green'"):
        cloud.green
    with pytest.raises(AttributeError, match=r"cloud\['green'\]"):
        cloud.green = 1
    with pytest.raises(AttributeError):
        cloud._own


def test_a_cloud_of_a_cloud_has_all_that_is_known_of_it():
    cloud = Cloud(np.arange(24.0).reshape(2, 3, 4), red=np.arange(6, dtype="u1"))
    again = Cloud(cloud, time=1.0)
    assert again.names == ("x", "y", "z", "intensity", "red", "time")
    assert (again.width, again.height) == (3, 2)
    assert Cloud(cloud, width=6, height=1).red.tolist() == cloud.red.tolist()
    assert Cloud(read_scan(REFLECTANCE)).intensity.tolist() == [7, 8]
    again["x"] = 0
    assert cloud.x[1] == 4


def test_the_library_writes_all_that_it_can_of_a_cloud():
    cloud = Cloud(np.arange(24.0).reshape(2, 3, 4))
    made = from_ply(to_ply(cloud))
    assert (made.width, made.height) == (3, 2)
    assert made.xyz.tolist() == cloud.xyz.tolist()
    assert made.intensity.tolist() == cloud.intensity.tolist()
    assert from_ply(to_ply(made)).points.tolist() == made.points.tolist()
    assert from_ply(to_ply(read_scan(REFLECTANCE))).intensity.tolist() == [7, 8]
    assert from_ply(to_ply(Cloud([[1, 2, 3]]), intensity=5)).intensity.tolist() == [5]
    upper = Cloud(np.ones(2, dtype=[("X", "f4"), ("Y", "f8"), ("Z", "i4")]))
    assert from_ply(to_ply(upper)).xyz.tolist() == [[1, 1, 1]] * 2
    assert from_dxf(to_dxf(cloud)).shape == (6, 3)


def test_an_organised_cloud_takes_a_mask_in_rows():
    cloud = Cloud(np.arange(18.0).reshape(2, 3, 3))
    assert cloud[cloud.grid["x"] > 8].x.tolist() == [9, 12, 15]
    with pytest.raises(IndexError):
        cloud[np.ones((3, 2), dtype=bool)]


def test_coordinates_are_set_together():
    cloud = Cloud([[1, 2, 3], [4, 5, 6]], intensity=7.0)
    cloud.xyz = cloud.xyz[:, ::-1] * 2
    assert cloud.xyz.tolist() == [[6, 4, 2], [12, 10, 8]]
    assert cloud.intensity.tolist() == [7, 7]
    for wrong in ([1, 2, 3], np.zeros((3, 3)), np.zeros((2, 4))):
        with pytest.raises(ValueError, match=r"expected \(2, 3\)"):
            cloud.xyz = wrong
    with pytest.raises(AttributeError, match="'bounds' cannot be set$"):
        cloud.bounds = 1


@pytest.mark.parametrize("read", [read_scan, read_drawing])
@pytest.mark.parametrize("source", [5, None, ["a.ply"]])
def test_other_sources_are_refused_in_words(read, source):
    with pytest.raises(TypeError, match="a path, the bytes of a file or an open file, not"):
        read(source)


def test_a_cloud_is_copied_and_pickled():
    cloud = Cloud([[1, 2, 3]], red=np.array([7], dtype="u1"))
    for made in (copy.copy(cloud), copy.deepcopy(cloud), pickle.loads(pickle.dumps(cloud))):
        assert made.red.tolist() == [7] and made.width == 1


def test_several_properties_are_structured_numbers():
    cloud = Cloud([[1, 2, 3], [4, 5, 6]], red=np.array([7, 8], dtype="u1"))
    pair = cloud[["x", "red"]]
    assert pair.dtype.names == ("x", "red")
    assert pair.tolist() == [(1, 7), (4, 8)]
    assert np.shares_memory(pair, cloud.points)
    for names in ("green", ["x", "green"]):
        with pytest.raises(KeyError, match="no 'green'; there are x, y, z, red"):
            cloud[names]
    assert len(cloud[[]]) == 0


def test_the_array_of_a_cloud_is_a_copy():
    cloud = Cloud([[1, 2, 3]])
    assert cloud.__array__(np.float64, copy=True).dtype == np.float64
    with pytest.raises(ValueError, match="copy"):
        cloud.__array__(copy=False)


def test_a_cloud_needs_coordinates():
    with pytest.raises(ValueError, match="no field z"):
        Cloud(np.zeros(2, dtype=[("x", "f4"), ("y", "f4")]))
    for shape in ((3,), (2, 2), (2, 5), (2, 2, 2), (1, 2, 2, 3)):
        with pytest.raises(ValueError, match="expected"):
            Cloud(np.zeros(shape))
    with pytest.raises(ValueError, match="is not the 2 points"):
        Cloud([[1, 2, 3], [4, 5, 6]], width=3, height=1)


@pytest.mark.parametrize("options", [{}, {"ascii": True}])
def test_a_saved_cloud_comes_back_the_same(tmp_path, options):
    numbers = np.random.default_rng(2).random((6, 3)) * 1e5
    cloud = Cloud(numbers, width=3, height=2, red=np.arange(6, dtype="u1"))
    cloud.save(tmp_path / "a.ply", **options)
    again = read_scan(tmp_path / "a.ply")
    assert (again.points == cloud.points).all()
    assert again.grid.shape == (2, 3)


def test_a_cloud_is_saved_by_its_extension(tmp_path):
    cloud = Cloud([[1, 2, 3]])
    cloud.save(tmp_path / "a.CSV")
    assert (tmp_path / "a.CSV").read_bytes() == b"x,y,z\n1,2,3\n"
    cloud.save(tmp_path / "a.xyz")
    assert (tmp_path / "a.xyz").read_bytes() == b"1 2 3\n"
    cloud.save(tmp_path / "a.dxf")
    assert b"POINT" in (tmp_path / "a.dxf").read_bytes()
    with pytest.raises(ValueError, match=".stl"):
        cloud.save(tmp_path / "a.stl")


def test_a_cloud_is_drawn():
    pytest.importorskip("matplotlib").use("Agg")
    cloud = Cloud(np.random.default_rng(3).random((100, 3)), intensity=0.5)
    assert len(cloud.plot().collections) == 1
    assert "data:image/png;base64," in cloud._repr_html_()


def test_a_cloud_becomes_a_data_frame():
    pytest.importorskip("pandas")
    assert list(Cloud([[1, 2, 3]]).to_dataframe().columns) == ["x", "y", "z"]


@pytest.mark.skipif(not SAMPLES.is_dir(), reason="no scans of other programs")
def test_scans_of_other_programs_are_read():
    paths = sorted(SAMPLES.glob("*.ply"))
    assert paths
    for path in paths:
        assert len(read_scan(path)) > 0, path


REFLECTANCE = (
    b"ply\nformat ascii 1.0\nelement vertex 2\nproperty float x\nproperty float y\n"
    b"property float z\nproperty uchar reflectance\nend_header\n1 2 3 7\n4 5 6 8\n"
)


def test_a_part_of_a_cloud_knows_its_intensity():
    cloud = read_scan(REFLECTANCE)
    for part in (cloud[1:], cloud[cloud.x > 1], cloud[[1]]):
        assert part.intensity.tolist() == [8]
        assert part.report is cloud.report


def test_whole_numbers_that_floats_do_not_hold_become_doubles():
    assert Cloud(np.array([[512345679, 2, 3]])).x.tolist() == [512345679]
    assert Cloud(np.array([[16777216, 2, 3]])).x.dtype == np.float32
    assert Cloud(np.array([[0.1, 2, 3]], dtype=">f8")).x.tolist() == [0.1]


@pytest.mark.parametrize(
    "arguments", [{"format": "pcd"}, {"digits": 0}, {"digits": 18}, {"format": ""}]
)
def test_formats_and_digits_that_there_are_not(arguments):
    with pytest.raises(ValueError, match="format|digits"):
        Cloud([[1, 2, 3]]).to_bytes(**arguments)


def test_digits_are_a_whole_number():
    assert Cloud([[1 / 3, 2, 3]]).to_bytes("xyz", digits=np.int64(3)) == b"0.333 2 3\n"
    with pytest.raises(TypeError):
        Cloud([[1, 2, 3]]).to_bytes("xyz", digits="3")


def test_a_shift_has_three_numbers():
    with pytest.raises(ValueError, match="2 numbers, expected 3"):
        read_scan(SCAN, shift=(1, 2))


def test_no_name_of_the_intensity_is_the_usual_one():
    assert read_scan(REFLECTANCE, intensity=None).intensity.tolist() == [7, 8]
