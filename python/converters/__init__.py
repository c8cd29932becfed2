"""Scans and drawings: PLY and DXF files of any program as NumPy arrays, and back.

:func:`read_scan` reads point clouds, :func:`read_drawing` the paths of drawings:

>>> import converters
>>> import numpy as np
>>> cloud = converters.Cloud([[0.0, 0.0, 0.0], [1.0, 2.0, 3.0]], intensity=0.5)
>>> again = converters.read_scan(cloud.to_bytes())
>>> again.xyz
array([[0., 0., 0.],
       [1., 2., 3.]])
>>> drawing = converters.read_drawing(again.to_bytes("dxf"))
>>> [contour.points.tolist() for contour in drawing.path()]
[[[0.0, 0.0, 0.0]], [[1.0, 2.0, 3.0]]]

:func:`from_ply`, :func:`to_ply`, :func:`from_dxf` and :func:`to_dxf` are the library's functions of
the same names, which read by fixed rules that existing programs rely on: new programs are better
served by the readers above.

Arrays and files are read where they lie, whatever their strides and whether read-only or not, and
must not change during a call. No function holds the interpreter lock while it converts, so other
threads go on, and may convert too.

What cannot be read raises :exc:`ReadError`, a :exc:`ValueError`, with the reason. Setting the
environment variable ``VOLMAR_ENABLE_LOG`` to 1 shows the messages of the four functions on standard
error.
"""

from converters._native import __version__
from converters._sources import ReadError
from converters.builder import DrawingBuilder, new_drawing
from converters.check import Finding
from converters.cloud import Cloud, ScanElement, ScanProperty, ScanReport, read_scan
from converters.drawing import (
    Arc,
    Circle,
    Contour,
    Drawing,
    Entity,
    Layer,
    Line,
    Point,
    PointVector,
    Polyline,
    Spline,
    read_drawing,
)
from converters.dxf import from_dxf, to_dxf
from converters.path import DrawingPath, LeftOut, PathContour, PathEntity, PathPiece
from converters.ply import PlyCloud, from_ply, to_ply

__all__ = [
    "Arc",
    "Circle",
    "Cloud",
    "Contour",
    "Drawing",
    "DrawingBuilder",
    "DrawingPath",
    "Entity",
    "Finding",
    "Layer",
    "LeftOut",
    "Line",
    "PathContour",
    "PathEntity",
    "PathPiece",
    "PlyCloud",
    "Point",
    "PointVector",
    "Polyline",
    "ReadError",
    "ScanElement",
    "ScanProperty",
    "ScanReport",
    "Spline",
    "__version__",
    "from_dxf",
    "from_ply",
    "new_drawing",
    "read_drawing",
    "read_scan",
    "to_dxf",
    "to_ply",
]
