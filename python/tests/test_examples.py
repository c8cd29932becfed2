"""The programs in examples/."""

import runpy
import subprocess
import sys
from pathlib import Path

import matplotlib
import numpy as np
import pytest

matplotlib.use("Agg")
import matplotlib.pyplot as plt  # noqa: E402
from matplotlib.image import imread  # noqa: E402

from converters import Drawing  # noqa: E402

PLOT_WALK = Path(__file__).parent.parent / "examples" / "plot_walk.py"
# A closed triangle, and a line apart from it.
ENDS = [(0, 0, 4, 0), (4, 0, 0, 3), (0, 3, 0, 0), (5, 1, 7, 1)]
DRAWING = (
    "0\nSECTION\n2\nENTITIES\n"
    + "".join(f"0\nLINE\n8\n0\n10\n{a}\n20\n{b}\n11\n{c}\n21\n{d}\n" for a, b, c, d in ENDS)
    + "0\nENDSEC\n0\nEOF\n"
)


@pytest.fixture
def path(tmp_path):
    file = tmp_path / "drawing.dxf"
    file.write_text(DRAWING)
    return file


def test_plot_walk_draws_each_contour_with_its_length(path):
    _, axes = plt.subplots()
    runpy.run_path(str(PLOT_WALK))["plot_walk"](Drawing.load(path), axes)
    labels = [text.get_text() for text in axes.get_legend().get_texts()]
    assert labels == ["1: open, 2 long", "2: closed, 12 long"]
    crosses = [line.get_xdata().tolist() for line in axes.lines if line.get_marker() == "x"]
    assert crosses == [[5, 7]]
    arrows = [text for text in axes.texts if text.arrow_patch is not None]
    steps = [[(*arrow.xyann,), (*arrow.xy,)] for arrow in arrows]
    assert np.allclose(steps[0], [(6, 1), (6.1, 1)]), "half-way, in the direction of the walk"
    assert len(steps) == 2
    assert all(start != end for start, end in steps)
    plt.close("all")


def test_plot_walk_draws_an_empty_drawing():
    _, axes = plt.subplots()
    runpy.run_path(str(PLOT_WALK))["plot_walk"](Drawing.from_bytes(b"0\nEOF\n"), axes)
    assert not axes.lines
    plt.close("all")


def test_plot_walk_writes_a_picture(path, tmp_path):
    picture = tmp_path / "walk.png"
    command = [sys.executable, PLOT_WALK, path, picture]
    subprocess.run(command, check=True)
    pixels = imread(picture)
    assert pixels.shape[:2] == (1200, 1200)
    # White, the axes' black and the two contours' colours.
    assert len({tuple(color) for color in pixels.reshape(-1, pixels.shape[2]).round(1)}) > 4


def test_plot_walk_writes_scalable_pictures(path, tmp_path):
    runpy.run_path(str(PLOT_WALK))["main"]([str(path), str(tmp_path / "walk.svg")])
    assert "<svg" in (tmp_path / "walk.svg").read_text()
