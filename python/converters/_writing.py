"""Files that points become."""

import operator
import os
from pathlib import Path
from typing import Any, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._sources import write_file

#: NumPy's types, by the library's numbers for the types of PLY.
TYPES = {1: "i1", 2: "u1", 3: "i2", 4: "u2", 5: "i4", 6: "u4", 7: "f4", 8: "f8"}
_NUMBERS = {np.dtype(name): number for number, name in TYPES.items()}

_KINDS = ("ply", "ply-ascii", "csv", "xyz", "dxf")

#: Most significant digits of a double.
_MOST_DIGITS = 17

#: Formats by their extensions.
_FORMATS = {".ply": "ply", ".csv": "csv", ".xyz": "xyz", ".dxf": "dxf"}


class Savable:
    """What can be a file, by its ``to_bytes``."""

    def to_bytes(self, format: str = "ply", digits: Optional[int] = None) -> bytes:
        raise NotImplementedError

    def save(
        self,
        path: Union[str, "os.PathLike[str]"],
        *,
        ascii: bool = False,
        digits: Optional[int] = None,
    ) -> None:
        """Writes a file, .ply, .csv, .xyz or .dxf, as ``to_bytes`` tells.

        :param ascii: PLY as text
        :raises ValueError: for another extension
        :raises OSError: when the file cannot be written
        """
        write_file(path, self.to_bytes(_format_of(path, ascii), digits))


def _format_of(path: Union[str, "os.PathLike[str]"], ascii: bool) -> str:
    """The format that a file's extension says.

    :param ascii: PLY as text
    :raises ValueError: for another extension
    """
    extension = Path(path).suffix.lower()
    if extension not in _FORMATS:
        raise ValueError(f"{extension or 'no extension'}: not one of {', '.join(_FORMATS)}")
    format = _FORMATS[extension]
    return format + "-ascii" if ascii and format == "ply" else format


def check_format(format: str, digits: Optional[int]) -> None:
    """
    :raises ValueError: for a format or a number of digits that there is not
    """
    if format not in _KINDS:
        raise ValueError(f"format is {format!r}, expected one of {', '.join(_KINDS)}")
    if digits is not None and not 1 <= operator.index(digits) <= _MOST_DIGITS:
        raise ValueError(f"{digits} digits, expected 1 to {_MOST_DIGITS}")


def written(
    records: npt.NDArray[np.void],
    format: str,
    digits: Optional[int],
    *,
    width: int,
    height: int,
    comments: Sequence[str] = (),
) -> bytes:
    """A file of these points.

    :param records: a structured array of shape (N,)
    :param format: one that :func:`check_format` takes, as ``digits``
    """
    packed = _packed(records)
    fields: Any = packed.dtype.fields or {}
    return _native.write_points(
        packed.view(np.uint8),
        [(name, _NUMBERS[field[0]], field[1]) for name, field in fields.items()],
        packed.itemsize,
        format,
        None if digits is None else operator.index(digits),
        width,
        height,
        list(comments),
    )


def _packed(records: npt.NDArray[np.void]) -> npt.NDArray[np.void]:
    """The records as the writer takes them: types of PLY, side by side, in the machine's order."""
    types = []
    for name in records.dtype.names or ():
        kind = records.dtype[name].newbyteorder("=")
        if kind not in _NUMBERS:
            kind = np.dtype("u1" if kind.kind == "b" else "f8")
        types.append((name, kind))
    return np.ascontiguousarray(records.astype(np.dtype(types), copy=False))
