"""The wheel, built and installed as a user would, without a network."""

import os
import subprocess
import sys
import zipfile
from pathlib import Path

import pytest

import converters

ROOT = Path(__file__).parent.parent

PROGRAM = """
import converters, numpy, pathlib
assert pathlib.Path(converters.__file__).is_relative_to({prefix!r}), converters.__file__
points = numpy.random.default_rng(1).random((10, 3)).astype("f4")
numpy.testing.assert_array_equal(converters.from_ply(converters.to_ply(points)).xyz, points)
assert len(converters.from_dxf(converters.to_dxf(points))) == 10
try:
    converters.from_ply(b"ply\\nelement vertex 1\\nelement face 1\\n")
except ValueError as error:
    print(error)
"""


@pytest.fixture(scope="module")
def environment(tmp_path_factory):
    """A fresh virtual environment with the wheel, and that wheel's file."""
    folder = tmp_path_factory.mktemp("wheel")
    variables = {k: v for k, v in os.environ.items() if k not in ("PYTHONPATH", "PYTHONHOME")}

    def run(*command):
        subprocess.run([str(word) for word in command], check=True, env=variables, cwd=folder)

    run(sys.executable, "-m", "venv", "--system-site-packages", folder / "venv")
    python = folder / "venv" / "bin" / "python"
    pip = (python, "-m", "pip", "--disable-pip-version-check")
    offline = ("--no-index", "--no-build-isolation", "--no-deps")
    run(*pip, "wheel", *offline, "--wheel-dir", folder, ROOT)
    (wheel,) = folder.glob("*.whl")
    run(*pip, "install", "--no-index", wheel)
    return python, wheel, variables


def test_wheel_holds_the_package_and_the_logging_library(environment):
    _, wheel, _ = environment
    names = {name for name in zipfile.ZipFile(wheel).namelist() if name.startswith("converters/")}
    sources = {f"converters/{file.name}" for file in (ROOT / "converters").glob("*.py*")}
    libraries = {name for name in names if ".so" in name}
    assert names == sources | {"converters/py.typed"} | libraries
    assert any("/_native." in name for name in libraries)
    assert "converters/libuniversal_log_interface.so.1" in libraries
    assert wheel.name.startswith(f"converters-{converters.__version__}-")
    assert "linux" in wheel.name


def test_installed_wheel_converts_without_the_build_tree(environment, tmp_path):
    python, wheel, variables = environment
    # A library that still came from a build folder would be missed now.
    tree = ROOT.parent / "build" / "wheel-cmake"
    hidden = tree.with_name("wheel-cmake.hidden")
    tree.rename(hidden)
    try:
        prefix = str(python.parent.parent)
        result = subprocess.run(
            [python, "-c", PROGRAM.format(prefix=prefix)],
            text=True,
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            env=variables,
            cwd=tmp_path,
        )
    finally:
        hidden.rename(tree)
    assert result.returncode == 0, result.stdout
    assert "element type 'face' not supported" in result.stdout


def test_building_leaves_the_sources_alone(environment):
    assert environment
    for leftover in ("build", "dist", "converters.egg-info"):
        assert not (ROOT / leftover).exists()
