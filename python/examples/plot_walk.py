#!/usr/bin/env python3
"""Plots the walk along a DXF drawing's contours.

    plot_walk.py DRAWING.dxf            shows it in a window
    plot_walk.py DRAWING.dxf WALK.png   writes a picture; .svg and .pdf work as well

Each contour has a colour of its own. A dot marks where it starts, an arrow half-way where it is
heading, and crosses mark the ends of contours that do not close.
"""

import argparse
from typing import Optional, Sequence

import matplotlib.pyplot as plt
import numpy as np
from matplotlib.axes import Axes

from converters import Drawing


def plot_walk(drawing: Drawing, axes: Axes) -> None:
    """Draws the walk, seen along the y axis: the drawing's plane is the cloud's x-z plane."""
    for number, contour in enumerate(drawing.contours(), start=1):
        x, z = contour.points[:, 0], contour.points[:, 2]
        state = "closed" if contour.closed else "open"
        (line,) = axes.plot(x, z, label=f"{number}: {state}, {contour.length:.4g} long")
        axes.plot(x[0], z[0], "o", color=line.get_color())
        if not contour.closed:
            axes.plot(x[[0, -1]], z[[0, -1]], "x", color="black")
        # A corner comes twice: there, a step leads nowhere.
        steps = np.flatnonzero((np.diff(x) != 0) | (np.diff(z) != 0))
        if len(steps) > 0:
            middle = steps[len(steps) // 2]
            axes.annotate(
                "",
                xy=(x[middle + 1], z[middle + 1]),
                xytext=(x[middle], z[middle]),
                arrowprops={
                    "arrowstyle": "-|>",
                    "color": line.get_color(),
                    "mutation_scale": 20,
                    "shrinkA": 0,
                    "shrinkB": 0,
                },
            )
    axes.set_aspect("equal", adjustable="datalim")
    axes.set_xlabel("x, drawing units")
    axes.set_ylabel("z, drawing units")
    if axes.lines:
        axes.legend(loc="best", fontsize="small")


def main(arguments: Optional[Sequence[str]] = None) -> None:
    parser = argparse.ArgumentParser(description="Plots the walk along a DXF drawing's contours.")
    parser.add_argument("drawing", help="DXF file")
    parser.add_argument("picture", nargs="?", help="file to write instead of showing a window")
    options = parser.parse_args(arguments)

    figure, axes = plt.subplots(figsize=(8, 8), layout="constrained")
    plot_walk(Drawing.load(options.drawing), axes)
    axes.set_title(options.drawing)
    if options.picture is None:
        plt.show()
    else:
        figure.savefig(options.picture, dpi=150)
    plt.close(figure)


if __name__ == "__main__":
    main()
