"""Point clouds as PLY files."""

import math
import operator
from dataclasses import dataclass
from typing import Optional

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._buffers import Column, ReadableBuffer, column, columns, contiguous

#: The most points that a PLY file of this library can count.
_MOST_POINTS = 2**31 - 1


@dataclass(frozen=True, eq=False)
class PlyCloud:
    """What a PLY file holds.

    >>> import numpy as np
    >>> from converters import from_ply, to_ply
    >>> grid = np.zeros((2, 3), dtype=[("x", "f4"), ("y", "f4"), ("z", "f4")])
    >>> cloud = from_ply(to_ply(grid))
    >>> cloud
    PlyCloud(6 points, width=3, height=2, empty_scene=False)
    >>> cloud.grid.shape
    (2, 3)
    """

    points: npt.NDArray[np.void]
    """One record a point, with the float32 fields x, y, z and intensity. Numbers that the file
    does not have are 0, or nan where it says so."""

    width: int
    """Points in a row; all points for a cloud without rows."""

    height: int
    """Number of rows; 1 for a cloud without rows."""

    empty_scene: bool
    """Whether the file declares no points at all. That includes data that are not PLY."""

    @property
    def _xyzi(self) -> npt.NDArray[np.void]:
        return self.grid

    def __len__(self) -> int:
        return len(self.points)

    def __repr__(self) -> str:
        return (
            f"PlyCloud({len(self)} points, width={self.width}, height={self.height}, "
            f"empty_scene={self.empty_scene})"
        )

    @property
    def xyz(self) -> npt.NDArray[np.float32]:
        """The coordinates as an array of shape (N, 3), a view of ``points``."""
        floats = self.points.view(np.float32)
        return floats.reshape(len(self), self.points.itemsize // floats.itemsize)[:, :3]

    @property
    def intensity(self) -> npt.NDArray[np.float32]:
        """The intensities as an array of shape (N,), a view of ``points``."""
        intensities: npt.NDArray[np.float32] = self.points["intensity"]
        return intensities

    @property
    def grid(self) -> npt.NDArray[np.void]:
        """The points as an array of shape (height, width), a view of ``points``."""
        return self.points.reshape(self.height, self.width)


def to_ply(
    points: npt.ArrayLike,
    intensity: Optional[npt.ArrayLike] = None,
    ascii: bool = False,
    width: Optional[int] = None,
    height: Optional[int] = None,
) -> bytes:
    """Makes a PLY file of x, y, z and intensity as 32-bit floats.

    >>> to_ply([[1, 2, 3]], intensity=7, ascii=True).splitlines()[-1]
    b'1 2 3 7'

    Floats are read where they lie, of any strides and byte alignment; other numbers are converted
    first. Numbers beyond the range of 32-bit floats become infinite.

    :param points: an array of shape (N, 3) or (N, 4), the fourth number being the intensity, or
        (rows, columns, 3) or (rows, columns, 4) for an organised cloud; or a structured array of
        one or two dimensions with the fields x, y, z and, if wanted, intensity; or a cloud, with its
        rows and intensity. nan marks a missing point; masked numbers are written as nan.
    :param intensity: one number for all points, or one for each; used instead of the intensity in
        ``points``. Without either it is 0.
    :param ascii: text of six significant digits instead of little-endian binary
    :param width: points in a row of an organised cloud; follows from ``points`` or ``height`` when
        it is not given
    :param height: rows of an organised cloud; follows as ``width`` does
    :returns: the whole file
    :raises ValueError: for an array of another shape, for no points at all, and when width × height
        is not the number of points
    :raises TypeError: for values that are not real numbers
    """
    given = columns(points, with_intensity=True)
    shape = given.x.shape
    width, height = layout_of(shape, width, height)
    return _native.to_ply(
        given.x,
        given.y,
        given.z,
        _intensities(given.intensity if intensity is None else intensity, shape),
        width,
        height,
        ascii,
    )


def from_ply(data: ReadableBuffer) -> PlyCloud:
    """Reads the bytes of a PLY file, binary little-endian or ASCII.

    >>> from_ply(to_ply([[1.0, 2.0, 3.0]])).xyz
    array([[1., 2., 3.]], dtype=float32)

    A file without a vertex element, which includes any data that are not PLY, is an empty scene and
    no error:

    >>> from_ply(b"ply")
    PlyCloud(0 points, width=0, height=0, empty_scene=True)

    The Point Cloud Library, which says where the numbers go, prints a line on standard error for each
    of x, y, z and intensity that the file lacks. Such a one is 0, unless another property stands in
    its place: of ``float x``, ``float foo`` and ``float z`` the cloud has foo as y.

    :param data: bytes, bytearray, memoryview, mmap, array of bytes or any other buffer
    :raises ValueError: with the reason when the file is broken, or has what the reader does
        not take: other elements than vertices, lists, big-endian data, another version than 1.0
    """
    return PlyCloud(*_native.from_ply(contiguous(data)))


def layout_of(
    shape: tuple[int, ...], width: Optional[int], height: Optional[int]
) -> tuple[int, int]:
    """Width and height of a cloud whose columns have this shape.

    :raises ValueError: when those given are not those of so many points
    """
    count = math.prod(shape)
    if count > _MOST_POINTS:
        raise ValueError(f"{count} points are more than a file can count")
    width = None if width is None else operator.index(width)
    height = None if height is None else operator.index(height)
    if width is None and height is None:
        return (shape[1], shape[0]) if len(shape) == 2 else (count, 1)
    if width is None:
        width = count // height if height else 0
    if height is None:
        height = count // width if width else 0
    if width < 0 or height < 0 or width * height != count:
        raise ValueError(f"width {width} × height {height} is not the {count} points given")
    return width, height


def _intensities(intensity: Optional[npt.ArrayLike], shape: tuple[int, ...]) -> Column:
    """One intensity for each point."""
    values = column(0.0 if intensity is None else intensity, "intensity")
    if values.ndim == 0:
        return np.broadcast_to(values, shape)
    if values.shape not in (shape, (math.prod(shape),)):
        raise ValueError(f"intensity has shape {values.shape} for points of shape {shape}")
    return values
