"""Points as DXF drawings."""

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._buffers import ReadableBuffer, columns, contiguous


def to_dxf(points: npt.ArrayLike) -> bytes:
    """Makes a DXF drawing (release R12) of one POINT for each point.

    >>> to_dxf([[1.0, 2.0, 3.0]]).count(b"POINT")
    1

    The library writes the drawing through a file in a temporary folder, one at a time for a
    process: calls from several threads wait for each other.

    :param points: an array of shape (N, 3) or (rows, columns, 3); or a structured array of one or
        two dimensions with the fields x, y and z. Floats are read where they lie.
    :returns: the whole file
    :raises ValueError: for an array of another shape
    :raises TypeError: for values that are not real numbers
    :raises OSError: when the temporary file cannot be written or read
    """
    given = columns(points, with_intensity=False)
    return _native.to_dxf(given.x, given.y, given.z)


def from_dxf(data: ReadableBuffer) -> npt.NDArray[np.float64]:
    """Reads the bytes of a DXF drawing as points along its lines.

    Lines, circles, arcs, polylines and splines are sampled about ten times a unit, and joined where
    their ends lie within 0.001 of each other: the result is one walk along the contours, as
    :meth:`converters.Drawing.points` returns it. A drawing's (x, y) is the cloud's (x, 0, y); the
    points of a run of several POINTs are taken as (x, y, -z).

    >>> from_dxf(to_dxf([[0.0, 1.0, 2.0], [0.0, 1.0, 3.0]]))
    array([[ 0.,  1., -2.],
           [ 0.,  1., -3.]])

    Text that is not DXF counts as a drawing without entities.

    :param data: bytes, bytearray, memoryview, mmap, array of bytes or any other buffer
    :returns: an array of shape (N, 3)
    :raises ValueError: when there are no data at all
    """
    return _native.from_dxf(contiguous(data))
