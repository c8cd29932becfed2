"""Scans: point clouds with all that a PLY file says of each point."""

import math
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Iterator, Optional, Sequence, Union, overload

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._arrays import view_or_copy
from converters._sources import Progress, Source, bytes_of, callback, check
from converters._writing import TYPES, Savable, check_format, written
from converters.ply import layout_of

if TYPE_CHECKING:
    from matplotlib.axes import Axes

Records = npt.NDArray[np.void]

#: What a cloud consists of.
_PARTS = ("points", "width", "height", "report")
#: What a property may be called although a cloud has an attribute of this name: it is the same.
_USUAL = ("x", "y", "z", "intensity")


@dataclass(frozen=True)
class ScanProperty:
    """A property of an element, as a PLY header declares it."""

    name: str
    type: str
    """The type of its numbers: "float"."""
    count_type: Optional[str]
    """Of a list, the type of the count in front of its items; None for a single number."""
    use: str
    """What became of it: "x", "y", "z", "intensity", "kept" or "dropped"."""


@dataclass(frozen=True)
class ScanElement:
    """An element, as a PLY header declares it."""

    name: str
    count: int
    properties: tuple[ScanProperty, ...]


@dataclass(frozen=True)
class ScanReport:
    """What a file held, and what became of it."""

    format: str
    """ "ascii", "binary_little_endian" or "binary_big_endian"."""
    elements: tuple[ScanElement, ...]
    comments: tuple[str, ...]
    notes: tuple[str, ...]
    """What a person should know."""
    shift: tuple[float, float, float]
    """What was taken off the coordinates."""
    points_without_place: int
    """Points with a coordinate that is nan or infinite."""


class Cloud(Savable):
    """A point cloud: a sequence of points, each with x, y, z and whatever else is known of it.

    >>> cloud = Cloud([[1, 2, 3], [4, 5, 6]], red=np.array([255, 0], dtype="u1"))
    >>> cloud
    Cloud(2 points: x, y, z, red)
    >>> cloud.x
    array([1., 4.], dtype=float32)
    >>> cloud["red"]  # or cloud.red
    array([255,   0], dtype=uint8)
    >>> cloud["time"] = [0.5, 1.5]
    >>> cloud[["x", "time"]].tolist()
    [(1.0, 0.5), (4.0, 1.5)]
    >>> len(cloud[cloud.x > 2])
    1
    >>> np.asarray(cloud)
    array([[1., 2., 3.],
           [4., 5., 6.]], dtype=float32)

    A cloud is a view of its ``points``: changing these changes it. Properties are attributes, too,
    unless their name is one of the cloud's own, such as ``save``, or begins with an underscore.
    """

    points: Records
    """A structured array of shape (N,), one record a point."""

    width: int
    """Points in a row of an organised cloud; else all points."""

    height: int
    """Rows of an organised cloud; else 1."""

    report: Optional[ScanReport]
    """What the file held, of a cloud that was read, or a part of one."""

    def __init__(
        self,
        points: npt.ArrayLike,
        *,
        width: Optional[int] = None,
        height: Optional[int] = None,
        **properties: npt.ArrayLike,
    ) -> None:
        """
        :param points: an array of shape (N, 3), or (N, 4) with the intensity, of which whole numbers
            become 32-bit floats where these hold them, else doubles; masked ones are nan. Or a
            structured array of shape (N,) with fields x, y and z and any others, of numbers. Of an
            organised cloud, (rows, columns) in place of N. Or a cloud, with all that it has
        :param width: points in a row; follows from ``points`` or ``height`` when it is not given
        :param height: rows; follows as ``width`` does
        :param properties: more of each point, one number for all or an array of shape (N,) for each
            name, or (rows, columns)
        :raises ValueError: for other shapes, and when width × height is not the number of points
        """
        records = _records(points.grid if isinstance(points, Cloud) else points, properties)
        if len(records) or width is not None or height is not None:
            self.width, self.height = layout_of(records.shape, width, height)
        else:
            self.width, self.height = 0, 0
        self.points = records.reshape(-1)
        self.report = points.report if isinstance(points, Cloud) else None

    @property
    def x(self) -> npt.NDArray[Any]:
        """The x of each point, a view."""
        return self.points[_axis(self.points, "x")]

    @property
    def y(self) -> npt.NDArray[Any]:
        """The y of each point, a view."""
        return self.points[_axis(self.points, "y")]

    @property
    def z(self) -> npt.NDArray[Any]:
        """The z of each point, a view."""
        return self.points[_axis(self.points, "z")]

    @property
    def xyz(self) -> npt.NDArray[Any]:
        """The coordinates, a new array of shape (N, 3). Setting it sets x, y and z."""
        return np.stack([self.x, self.y, self.z], axis=1)

    @property
    def intensity(self) -> npt.NDArray[Any]:
        """The intensity of each point, a view; zeros where there is none."""
        for name in self._intensity_names():
            return self.points[name]
        return np.zeros(len(self), dtype=np.float32)

    @property
    def names(self) -> tuple[str, ...]:
        """The names of all that is known of each point."""
        return self.points.dtype.names or ()

    @property
    def bounds(self) -> npt.NDArray[np.float64]:
        """The lowest and the highest corner of the smallest box around all points that have a
        place, an array of shape (2, 3); nan when there are none."""
        places = self.xyz.astype(np.float64)
        places = places[np.isfinite(places).all(axis=1)]
        if not len(places):
            return np.full((2, 3), np.nan)
        return np.stack([places.min(axis=0), places.max(axis=0)])

    @property
    def grid(self) -> Records:
        """The points of an organised cloud as an array of shape (height, width), a view."""
        return self.points.reshape(self.height, self.width)

    def __len__(self) -> int:
        return len(self.points)

    def __iter__(self) -> Iterator[np.void]:
        return iter(self.points)

    @overload
    def __getitem__(self, index: str) -> npt.NDArray[Any]: ...
    @overload
    def __getitem__(self, index: int) -> np.void: ...
    @overload
    def __getitem__(self, index: list[str]) -> Records: ...
    @overload
    def __getitem__(
        self, index: Union[slice, Sequence[int], npt.NDArray[Any]]
    ) -> "Cloud": ...
    def __getitem__(self, index: Any) -> Any:
        """A property by its name, a point by its number, or a part of the cloud, of which a mask of
        shape (N,) or (rows, columns) may be given. A list of names gives these properties as a
        structured array, a view.

        :raises KeyError: when there is no property of a name
        """
        names = [index] if isinstance(index, str) else _names(index)
        for name in names:
            if name not in self.names:
                raise KeyError(f"the points have no {name!r}; there are {', '.join(self.names)}")
        if isinstance(index, np.ndarray) and index.shape == (self.height, self.width):
            index = index.reshape(-1) if index.dtype == np.bool_ else index
        chosen = self.points[index]
        if names or isinstance(chosen, np.void):
            return chosen
        part = Cloud(chosen)
        part.report = self.report
        return part

    def __setitem__(self, name: str, values: npt.ArrayLike) -> None:
        """Sets a property of all points, in place, or adds one, in new ``points``.

        :param values: one number for all or an array of shape (N,), or (rows, columns); a property
            that is there keeps its type
        :raises ValueError: for another shape, and for numbers that a property of whole numbers
            does not hold
        """
        if not isinstance(name, str):
            raise TypeError(f"cloud[{name!r}] cannot be set, but cloud.points[{name!r}] can")
        if name not in self.names:
            self.points = _records(self.points, {name: self._flat(name, values)})
            return
        column = self.points[name]
        numbers = self._flat(name, values)
        with np.errstate(invalid="ignore"):
            held = numbers.astype(column.dtype)
        if column.dtype.kind in "biu" and not (held == numbers).all():
            raise ValueError(f"{name!r} holds {column.dtype}, which not all of the numbers are")
        column[:] = held

    def __getattr__(self, name: str) -> npt.NDArray[Any]:
        if name.startswith("_") or "points" not in vars(self) or name not in self.names:
            raise AttributeError(f"a cloud has no attribute {name!r}")
        column: npt.NDArray[Any] = self.points[name]
        return column

    def __setattr__(self, name: str, value: Any) -> None:
        if name in _PARTS:
            object.__setattr__(self, name, value)
            return
        if name == "xyz":
            self._set_xyz(np.asarray(value))
            return
        known = _axis(self.points, name) if name in ("x", "y", "z") else name
        if name not in _USUAL and hasattr(Cloud, name):
            raise AttributeError(f"{name!r} cannot be set")
        if known not in self.names:
            raise AttributeError(f"{name!r} cannot be set; cloud[{name!r}] = … adds a property")
        self[known] = value

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *(name for name in self.names if name.isidentifier())]

    def _set_xyz(self, table: npt.NDArray[Any]) -> None:
        if table.shape != (len(self), 3):
            raise ValueError(f"coordinates have shape {table.shape}, expected ({len(self)}, 3)")
        for axis, name in enumerate("xyz"):
            self[_axis(self.points, name)] = table[:, axis]

    @property
    def _xyzi(self) -> Records:
        """What the library's functions take of the cloud, of shape (height, width): a view."""
        names = {name: _axis(self.points, name) for name in "xyz"}
        for name in self._intensity_names():
            names.setdefault("intensity", name)
        fields: Any = self.points.dtype.fields
        dtype = np.dtype(
            {
                "names": list(names),
                "formats": [fields[name][0] for name in names.values()],
                "offsets": [fields[name][1] for name in names.values()],
                "itemsize": self.points.itemsize,
            }
        )
        return self.grid.view(dtype)

    def _flat(self, name: str, values: npt.ArrayLike) -> npt.NDArray[Any]:
        return _property(name, values, (self.height, self.width)).reshape(-1)

    def __array__(
        self, dtype: Optional[npt.DTypeLike] = None, copy: Optional[bool] = None
    ) -> npt.NDArray[Any]:
        if copy is False:
            raise ValueError("the coordinates of a cloud as an array are a copy")
        return view_or_copy(self.xyz, dtype, None)

    def __repr__(self) -> str:
        number = "1 point" if len(self) == 1 else f"{len(self)} points"
        shape = f", {self.width} × {self.height}" if self.height > 1 else ""
        return f"Cloud({number}{shape}: {', '.join(self.names)})"

    def to_dataframe(self) -> Any:
        """The points as a pandas.DataFrame, a column for each name."""
        import pandas

        return pandas.DataFrame({name: self.points[name] for name in self.names})

    def to_bytes(self, format: str = "ply", digits: Optional[int] = None) -> bytes:
        """The cloud as the bytes of a file.

        >>> Cloud([[1, 2, 3]]).to_bytes("csv")
        b'x,y,z\\n1,2,3\\n'

        :param format: "ply" (binary), "ply-ascii", "csv", "xyz" or "dxf"
        :param digits: significant digits of texts, 1 to 17; by default as many as it takes to read
            back the same
        :raises ValueError: for another format or number of digits
        """
        check_format(format, digits)
        comments = self.report.comments if self.report else ()
        return written(
            self.points, format, digits, width=self.width, height=self.height, comments=comments
        )

    def plot(self, ax: Optional["Axes"] = None, *, by: Optional[str] = None) -> "Axes":
        """Draws the points from above with matplotlib.

        :param ax: where to; a new figure's by default
        :param by: the property that colours them; the intensity, or else the height
        """
        if ax is None:
            import matplotlib.pyplot

            ax = matplotlib.pyplot.subplots()[1]
        names = [by] if by else [*self._intensity_names(), _axis(self.points, "z")]
        ax.scatter(self.x, self.y, c=self.points[names[0]], s=1)
        ax.set_aspect("equal")
        ax.set_xlabel("x")
        ax.set_ylabel("y")
        return ax

    def _repr_html_(self) -> str:
        """A picture of the cloud from above, for notebooks."""
        import base64
        import io

        from matplotlib.figure import Figure

        figure = Figure(figsize=(5, 4))
        self[:: max(1, len(self) // 20000)].plot(figure.subplots())
        buffer = io.BytesIO()
        figure.savefig(buffer, format="png", dpi=80)
        picture = base64.b64encode(buffer.getvalue()).decode()
        words = repr(self).replace("&", "&amp;").replace("<", "&lt;")
        return f'<p>{words}</p><img alt="the points from above" src="data:image/png;base64,{picture}">'

    def _intensity_names(self) -> Iterator[str]:
        if self.report is not None:
            for element in self.report.elements:
                for item in element.properties:
                    if item.use == "intensity" and item.name in self.names:
                        yield item.name
        if "intensity" in self.names:
            yield "intensity"


def read_scan(
    source: Source,
    *,
    intensity: Optional[str] = None,
    shift: Union[None, str, Sequence[float]] = None,
    progress: Optional[Progress] = None,
) -> Cloud:
    """Reads a PLY file of any program: text or binary, any types, with faces, lists and colours.

    Every scalar property of the vertices is kept under its name and type; the report tells what
    else there was.

    >>> cloud = read_scan(b"ply\\nformat ascii 1.0\\nelement vertex 1\\nproperty double x\\n"
    ...                   b"property double y\\nproperty double z\\nproperty uchar red\\n"
    ...                   b"element face 0\\nproperty list uchar int vertex_indices\\n"
    ...                   b"end_header\\n1.5 2 3 255\\n")
    >>> cloud
    Cloud(1 point: x, y, z, red)
    >>> [(element.name, element.count) for element in cloud.report.elements]
    [('vertex', 1), ('face', 0)]

    What is no such file is refused with the reason:

    >>> read_scan(b"\\x89PNG")
    Traceback (most recent call last):
        ...
    converters.ReadError: this is no PLY file: its first line is not 'ply'

    :param source: a path, the bytes of a file in any buffer, or an open file
    :param intensity: the property that counts as intensity; one of the usual names by default
    :param shift: taken off the coordinates before they are rounded to their type: three numbers, or
        "auto" for whole hundreds where coordinates are so large that floats lose a tenth of a
        millimetre
    :param progress: called with the part that is done, 0 to 1, or a bar as of tqdm. An exception
        that it raises stops the reader, as Ctrl-C does.
    :raises ReadError: with the reason, and the line where it is about one
    :raises OSError: when a file cannot be opened or read
    """
    automatic = isinstance(shift, str)
    if automatic and shift != "auto":
        raise ValueError(f'shift is "{shift}", expected three numbers or "auto"')
    vector = None if shift is None or automatic else tuple(float(number) for number in shift)
    if vector is not None and len(vector) != 3:
        raise ValueError(f"shift has {len(vector)} numbers, expected 3")
    failure, data, fields, size, facts = _native.read_scan(
        bytes_of(source), intensity or "", vector, automatic, callback(progress)
    )
    check(failure)
    dtype = np.dtype(
        {
            "names": [name for name, _, _ in fields],
            "formats": [TYPES[number] for _, number, _ in fields],
            "offsets": [offset for _, _, offset in fields],
            "itemsize": size,
        }
    )
    cloud = Cloud.__new__(Cloud)
    cloud.points = data.view(dtype)
    cloud.width = facts.pop("width")
    cloud.height = facts.pop("height")
    facts.pop("vertex_element")
    elements = tuple(
        ScanElement(name, count, tuple(ScanProperty(*row) for row in properties))
        for name, count, properties in facts.pop("elements")
    )
    cloud.report = ScanReport(
        facts.pop("format"),
        elements,
        **{key: tuple(value) if isinstance(value, list) else value for key, value in facts.items()},
    )
    return cloud


def _axis(records: Records, name: str) -> str:
    """The field's name in the letter case that it has."""
    names = records.dtype.names or ()
    return name if name in names else name.upper()


def _names(index: Any) -> list[str]:
    """The names in a list of names; none of any other index."""
    if isinstance(index, list) and all(isinstance(name, str) for name in index):
        return index
    return []


def _records(points: npt.ArrayLike, properties: dict[str, npt.ArrayLike]) -> Records:
    """The points with their properties as one structured array, of shape (N,) or (rows, columns)."""
    table = points if isinstance(points, np.ma.MaskedArray) else np.asarray(points)
    if table.dtype.names is None:
        columns = _columns(table)
        shape = columns["x"].shape
    elif properties:
        columns = {name: table[name] for name in table.dtype.names}
        shape = table.shape
    else:
        _check_fields(table)
        return np.asarray(table)
    for name, values in properties.items():
        columns[name] = _property(name, values, shape)
    made = np.empty(shape, dtype=[(name, column.dtype) for name, column in columns.items()])
    for name, column in columns.items():
        made[name] = column
    _check_fields(made)
    return made


def _columns(table: npt.NDArray[Any]) -> dict[str, npt.NDArray[Any]]:
    """The numbers of points that are no records, by name."""
    if table.shape == (0,):
        table = table.reshape(0, 3)
    if table.ndim not in (2, 3) or table.shape[-1] not in (3, 4):
        raise ValueError(
            f"points have shape {table.shape}, expected (N, 3), (N, 4), (rows, columns, 3) or "
            "(rows, columns, 4)"
        )
    if table.dtype.kind not in "biuf":
        raise TypeError(f"points must be real numbers, not {table.dtype}")
    if isinstance(table, np.ma.MaskedArray):
        floats = table.astype(np.result_type(table.dtype, np.float32))
        table = np.ma.filled(floats, np.nan)  # type: ignore[no-untyped-call]
    kind = table.dtype if table.dtype in (np.float32, np.float64) else _floats_for(table)
    names = ("x", "y", "z", "intensity")[: table.shape[-1]]
    return {name: table[..., axis].astype(kind) for axis, name in enumerate(names)}


def _property(name: str, values: npt.ArrayLike, shape: tuple[int, ...]) -> npt.NDArray[Any]:
    """A number for each of the points, which have this shape."""
    if not name:
        raise ValueError("a property has a name")
    numbers = np.asarray(values)
    if numbers.dtype.kind not in "biuf":
        raise TypeError(f"{name!r} must be real numbers, not {numbers.dtype}")
    if numbers.size == 1:
        return np.broadcast_to(numbers.reshape(()), shape)
    if numbers.shape not in (shape, (math.prod(shape),)):
        raise ValueError(f"{name!r} has shape {numbers.shape} for points of shape {shape}")
    return numbers.reshape(shape)


def _floats_for(numbers: npt.NDArray[Any]) -> "np.dtype[Any]":
    """The type that numbers of another one become: 32-bit floats where these hold them."""
    if numbers.dtype.kind == "f":
        return np.dtype("f4" if numbers.dtype.itemsize < 4 else "f8")
    return np.dtype("f4" if bool((numbers.astype("f4") == numbers).all()) else "f8")


def _check_fields(records: Records) -> None:
    names = records.dtype.names or ()
    missing = [name for name in "xyz" if name not in names and name.upper() not in names]
    if missing:
        raise ValueError(f"points have no field {', '.join(missing)}")
    if records.ndim not in (1, 2):
        raise ValueError(f"points have {records.ndim} dimensions, expected 1 or 2")
