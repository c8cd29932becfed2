"""Point clouds to PLY and DXF files in memory, and back.

Four functions convert between NumPy arrays and the bytes of a file, and :class:`Drawing` shows
what a DXF drawing holds:

>>> import converters
>>> import numpy as np
>>> points = np.array([[0.0, 0.0, 0.0], [1.0, 2.0, 3.0]])
>>> cloud = converters.from_ply(converters.to_ply(points, intensity=0.5))
>>> cloud.xyz
array([[0., 0., 0.],
       [1., 2., 3.]], dtype=float32)
>>> cloud.points["intensity"]
array([0.5, 0.5], dtype=float32)

Arrays and files are read where they lie, whatever their strides and whether read-only or not, and
must not change during a call. No function holds the interpreter lock while it converts, so other
threads go on, and may convert too.

What cannot be converted raises :exc:`ValueError` with the reason that the library logged. Setting
the environment variable ``VOLMAR_ENABLE_LOG`` to 1 shows all messages on standard error.
"""

from converters._native import __version__
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
)
from converters.dxf import from_dxf, to_dxf
from converters.ply import PlyCloud, from_ply, to_ply

__all__ = [
    "Arc",
    "Circle",
    "Contour",
    "Drawing",
    "Entity",
    "Layer",
    "Line",
    "PlyCloud",
    "Point",
    "PointVector",
    "Polyline",
    "Spline",
    "__version__",
    "from_dxf",
    "from_ply",
    "to_dxf",
    "to_ply",
]
