"""What callers hand over, in the form that the native module reads in place."""

import array
import mmap
from typing import Any, NamedTuple, Optional, Union

import numpy as np
import numpy.typing as npt

Column = Union[npt.NDArray[np.float32], npt.NDArray[np.float64]]

#: The contents of a file, in anything that shows its bytes.
ReadableBuffer = Union[
    bytes, bytearray, memoryview, mmap.mmap, "array.array[Any]", npt.NDArray[Any]
]


class Columns(NamedTuple):
    """The numbers of every point, one array for each name; all of one shape."""

    x: Column
    y: Column
    z: Column
    intensity: Optional[Column]


def columns(points: npt.ArrayLike, *, with_intensity: bool) -> Columns:
    """Views of the numbers in ``points``; only numbers that are no floats are converted.

    :param points: a cloud; a structured array with the fields x, y and z (and intensity), of one or two
        dimensions; or numbers whose last axis holds x, y, z (and intensity)
    """
    # Clouds have their records for here; as an array they would be coordinates alone.
    points = getattr(points, "_xyzi", points)
    table = points if isinstance(points, np.ma.MaskedArray) else np.asarray(points)
    if table.dtype.names is not None:
        found = {name: table[name] for name in table.dtype.names}
        missing = [name for name in "xyz" if name not in found]
        if missing:
            raise ValueError(f"points have no field {', '.join(missing)}")
        intensity = found.get("intensity") if with_intensity else None
    else:
        widths = (3, 4) if with_intensity else (3,)
        if table.shape == (0,):
            table = table.reshape(0, 3)
        if table.ndim not in (2, 3) or table.shape[-1] not in widths:
            wanted = " or ".join(f"(N, {width})" for width in widths)
            raise ValueError(f"points have shape {table.shape}, expected {wanted}")
        found = {name: table[..., axis] for axis, name in enumerate("xyz")}
        intensity = table[..., 3] if table.shape[-1] == 4 else None

    if found["x"].ndim not in (1, 2):
        raise ValueError(f"points have {found['x'].ndim} dimensions, expected 1 or 2")
    return Columns(
        column(found["x"], "x"),
        column(found["y"], "y"),
        column(found["z"], "z"),
        None if intensity is None else column(intensity, "intensity"),
    )


def column(numbers: npt.ArrayLike, name: str) -> Column:
    """The numbers as they lie, if they are floats of the machine; else converted to float64.
    Masked ones become nan."""
    if isinstance(numbers, np.ma.MaskedArray) and numbers.dtype.kind in "biuf":
        doubles = numbers.astype(np.float64)
        return np.ma.filled(doubles, np.nan)  # type: ignore[no-any-return, no-untyped-call]
    values = np.asarray(numbers)
    if values.dtype in (np.float32, np.float64) and values.dtype.isnative:
        return values
    if values.dtype.kind not in "biuf":
        raise TypeError(f"{name} must be real numbers, not {values.dtype}")
    return values.astype(np.float64)


def contiguous(data: ReadableBuffer) -> ReadableBuffer:
    """``data`` itself, or a copy of its bytes where they do not lie side by side."""
    view = memoryview(data)  # type: ignore[arg-type]  # an array has a buffer
    return data if view.c_contiguous else view.tobytes()
