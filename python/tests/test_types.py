"""Type hints and stubs."""

import subprocess
import sys
from pathlib import Path

import pytest

import converters
from converters import _native

ROOT = Path(__file__).parent.parent
PACKAGE = Path(converters.__file__).parent

USE = """
import converters
import numpy as np
import numpy.typing as npt

data: bytes = converters.to_ply([[1, 2, 3]], intensity=np.ones(1), width=1)
cloud: converters.PlyCloud = converters.from_ply(bytearray(data))
xyz: npt.NDArray[np.float32] = cloud.xyz
walk: npt.NDArray[np.float64] = converters.from_dxf(converters.to_dxf(xyz))
drawing = converters.Drawing.load("drawing.dxf")
for entity in drawing.entities:
    if isinstance(entity, converters.Arc):
        angle: float = entity.start_angle
findings: list[str] = [finding.text for finding in drawing.check(distance=0.2)]
made: converters.DrawingBuilder = converters.new_drawing()
made.add_line((0, 0), (1, 0), layer="cut")
made.add_polyline(xyz, closed=True)
lengths: list[float] = [contour.length for contour in drawing.contours()]
"""
MISUSE = """
import converters
converters.from_ply("a text")
converters.to_ply([[1, 2, 3]], width="wide")
number: int = converters.to_dxf([[1, 2, 3]])
"""
CONFIGURED = ("--config-file", str(ROOT / "pyproject.toml"))


def mypy(*arguments):
    return subprocess.run(
        [sys.executable, "-m", "mypy", "--no-error-summary", *CONFIGURED, *arguments],
        text=True,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        cwd=PACKAGE.parent,
    )


def test_the_package_and_its_example_keep_to_their_types():
    result = mypy(str(PACKAGE), str(ROOT / "examples" / "plot_walk.py"))
    assert result.stdout == ""
    assert result.returncode == 0


def test_callers_are_checked(tmp_path):
    (tmp_path / "use.py").write_text(USE)
    (tmp_path / "misuse.py").write_text(MISUSE)
    assert mypy(str(tmp_path / "use.py")).stdout == ""
    errors = mypy(str(tmp_path / "misuse.py")).stdout
    assert [line.split(":")[1] for line in errors.splitlines() if ": error:" in line] == [
        "3",
        "4",
        "5",
    ]


def test_stubs_name_what_the_module_has():
    names = {name for name in dir(_native) if not name.startswith("__")}
    stub = (PACKAGE / "_native.pyi").read_text()
    assert names == {
        "DrawingModel",
        "PathModel",
        "check_path",
        "from_dxf",
        "from_ply",
        "read_path",
        "read_scan",
        "to_dxf",
        "to_ply",
        "write_drawing",
        "write_points",
    }
    methods = {name for name in dir(_native.DrawingModel) if not name.startswith("_")}
    methods |= {name for name in dir(_native.PathModel) if not name.startswith("_")}
    for name in names - {"DrawingModel", "PathModel"} | methods:
        assert f"def {name}(" in stub
    assert stub.count("def ") == len(names) - 1 + len(methods)


@pytest.mark.parametrize("name", [n for n in converters.__all__ if not n.startswith("_")])
def test_everything_public_has_a_docstring(name):
    thing = getattr(converters, name)
    assert thing.__doc__
    for member, value in vars(thing).items() if isinstance(thing, type) else ():
        if not member.startswith("_") and (callable(value) or hasattr(value, "func")):
            assert getattr(value, "__doc__", None), f"{name}.{member}"
