"""The path of a drawing: contours to follow with a tool."""

from dataclasses import dataclass
from functools import cached_property
from typing import TYPE_CHECKING, Any, Iterator, Optional, Sequence, Union, overload

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._arrays import view_or_copy
from converters._sources import Progress, callback, check
from converters._buffers import ReadableBuffer
from converters._writing import Savable, check_format, written

if TYPE_CHECKING:
    from matplotlib.axes import Axes

Array = npt.NDArray[np.float64]
Coordinates = tuple[float, float, float]

#: Units by their numbers in a drawing's $INSUNITS.
UNITS = (
    "",
    "in",
    "ft",
    "mi",
    "mm",
    "cm",
    "m",
    "km",
    "microinch",
    "mil",
    "yd",
    "angstrom",
    "nm",
    "um",
    "dm",
    "dam",
    "hm",
    "Gm",
    "au",
    "ly",
    "pc",
    "US survey ft",
)
_ORDERS = ("drawn", "nearest", "inside-first")
_AXES = ("drawing", "plain")


@dataclass(frozen=True)
class PathEntity:
    """An entity of the drawing that a contour is made of."""

    kind: str
    """As a DXF file spells it: "LWPOLYLINE"."""
    handle: str
    """As the file has it, a hexadecimal number; empty where it has none."""
    insert: str
    """The handle of the outermost INSERT that draws it; empty where none does."""
    layer: str


@dataclass(frozen=True, eq=False)
class PathPiece:
    """A part of a contour that is one exact curve."""

    kind: str
    """ "point", "line", "arc", "elliptic arc" or "spline"."""
    points: Array
    """The points that it became, its ends among them: an array of shape (N, 3)."""
    entity: PathEntity
    curve: dict[str, Any]
    """The numbers of the curve by name. Of an arc its centre, normal, radius and sweep; of an
    elliptic arc its centre, major, minor, start and sweep; of a spline its degree, knots,
    control_points and weights. Angles are in radians."""


@dataclass(frozen=True)
class LeftOut:
    """Entities of a drawing that are not in its path."""

    kind: str
    """As the file spells it: "MTEXT"."""
    layer: str
    number: int
    reason: str
    """In words: "annotation"."""


@dataclass(frozen=True, eq=False)
class PathContour:
    """A stretch of a path that is walked without lifting the tool. As an array it is its points."""

    points: Array
    """In order, an array of shape (N, 3)."""
    closed: bool
    """Whether it returns to its start; its last point then equals its first."""
    layer: str
    colour: int
    """The AutoCAD colour index, 1 to 255."""
    true_colour: Optional[int]
    """0xRRGGBB, where the drawing gives it."""
    length: float
    """Along the exact curves."""
    _model: Any
    _pieces: tuple[int, int]
    _entities: tuple[int, int]
    _path: "DrawingPath"

    def __repr__(self) -> str:
        state = "closed" if self.closed else "open"
        return f"PathContour({len(self.points)} points, {state}, layer {self.layer!r})"

    def __array__(
        self, dtype: Optional[npt.DTypeLike] = None, copy: Optional[bool] = None
    ) -> npt.NDArray[Any]:
        return view_or_copy(self.points, dtype, copy)

    @property
    def entities(self) -> tuple[PathEntity, ...]:
        """What it is made of, in order."""
        return tuple(self._path._entity(index) for index in range(*self._entities))

    @property
    def pieces(self) -> tuple[PathPiece, ...]:
        """Its exact curves, in order. The last point of a piece is the first of the next."""
        return tuple(self._path._piece(index) for index in range(*self._pieces))


class DrawingPath(Savable, Sequence[PathContour]):
    """The contours of a drawing, in the order in which they are walked. As an array it is the points
    of all.

    >>> from converters import read_drawing
    >>> path = read_drawing("0 SECTION 2 ENTITIES 0 CIRCLE 8 holes 10 0 20 0 40 5 0 ENDSEC 0 EOF "
    ...                     .replace(" ", "\\n").encode()).path(tolerance=0.1)
    >>> path
    DrawingPath(1 contour, 17 points)
    >>> contour = path[0]
    >>> contour.closed, contour.layer, round(contour.length, 3)
    (True, 'holes', 31.416)
    >>> contour.pieces[0].kind, contour.pieces[0].curve["radius"]
    ('arc', 5.0)
    >>> np.asarray(path).shape, np.asarray(contour, dtype="f4").dtype
    ((17, 3), dtype('float32'))
    """

    points: Array
    """The points of all contours, an array of shape (N, 3)."""
    left_out: tuple[LeftOut, ...]
    """What the drawing holds and the path does not."""
    notes: tuple[str, ...]
    """What the reader had to assume."""
    drawing_unit: str
    """The unit of the drawing: "mm"; empty where it names none."""
    unit: str
    """The unit of the coordinates here."""
    length: float
    """Of all contours."""
    way_length: float
    """Of the straight ways between contours."""

    def __init__(self, model: _native.PathModel) -> None:
        """Not for callers: use :meth:`converters.Drawing.path`."""
        self._model = model
        facts = model.summary()
        self.points = model.points()
        self.points.flags.writeable = False
        self.left_out = tuple(LeftOut(*row) for row in model.left_out())
        self.notes = tuple(facts["notes"])
        self.drawing_unit = UNITS[facts["drawing_unit"]]
        self.unit = UNITS[facts["unit"]]
        self.length = facts["length"]
        self.way_length = facts["way_length"]
        self._lowest: Coordinates = facts["lowest"]
        self._highest: Coordinates = facts["highest"]

    @property
    def bounds(self) -> Array:
        """The lowest and the highest corner of the smallest box around all points, an array of
        shape (2, 3); nan when there are none."""
        if not len(self.points):
            return np.full((2, 3), np.nan)
        return np.array([self._lowest, self._highest])

    @cached_property
    def layers(self) -> tuple[str, ...]:
        """The names of the drawing's layers."""
        return tuple(name for name, _, _, _ in self._model.layers())

    @cached_property
    def _contours(self) -> list[PathContour]:
        return [
            PathContour(
                self.points[slice(*span)],
                closed,
                self.layers[layer],
                colour,
                true_colour,
                length,
                self._model,
                pieces,
                entities,
                self,
            )
            for span, pieces, entities, length, layer, closed, colour, true_colour in (
                self._model.contours()
            )
        ]

    def __len__(self) -> int:
        return len(self._contours)

    @overload
    def __getitem__(self, index: int) -> PathContour: ...
    @overload
    def __getitem__(self, index: slice) -> list[PathContour]: ...
    def __getitem__(self, index: Any) -> Any:
        return self._contours[index]

    def __iter__(self) -> Iterator[PathContour]:
        return iter(self._contours)

    def __array__(
        self, dtype: Optional[npt.DTypeLike] = None, copy: Optional[bool] = None
    ) -> npt.NDArray[Any]:
        return view_or_copy(self.points, dtype, copy)

    def __repr__(self) -> str:
        contours = "1 contour" if len(self) == 1 else f"{len(self)} contours"
        return f"DrawingPath({contours}, {len(self.points)} points)"

    def to_dataframe(self) -> Any:
        """The points as a pandas.DataFrame with the columns x, y, z, contour, which counts the
        contours from 1, and layer."""
        import pandas

        layers = np.array([contour.layer for contour in self], dtype=object)
        return pandas.DataFrame(
            {
                **{name: self.points[:, axis] for axis, name in enumerate("xyz")},
                "contour": self._contour_numbers,
                "layer": layers[self._contour_numbers - 1],
            }
        )

    def to_bytes(self, format: str = "ply", digits: Optional[int] = None) -> bytes:
        """The path as the bytes of a file, as the command ``cloudconv`` writes it: PLY as one row of
        points, whose intensity counts the contours from 1; "csv" and "xyz" with all digits and the
        same number in a fourth column; "dxf" as a polyline a contour, on its layer, with arcs as
        bulges.

        PLY holds coordinates as 32-bit floats, and a drawing of release R12 names no unit.

        :param format: "ply" (binary), "ply-ascii", "csv", "xyz" or "dxf"
        :param digits: significant digits of texts, 1 to 17; by default as many as it takes to read
            back the same. Drawings have theirs in any case
        :raises ValueError: for another format or number of digits
        """
        check_format(format, digits)
        if format == "dxf":
            return self._model.to_dxf()
        number, kind = ("intensity", "f4") if format.startswith("ply") else ("contour", "f8")
        records = np.empty(len(self.points), dtype=[(name, kind) for name in ("x", "y", "z", number)])
        for axis, name in enumerate("xyz"):
            records[name] = self.points[:, axis]
        records[number] = self._contour_numbers
        return written(records, format, digits, width=len(records), height=min(len(records), 1))

    def plot(self, ax: Optional["Axes"] = None) -> "Axes":
        """Draws the contours in the plane of x and y with matplotlib.

        :param ax: where to; a new figure's by default
        """
        if ax is None:
            import matplotlib.pyplot

            ax = matplotlib.pyplot.subplots()[1]
        for contour in self:
            marker = "." if len(contour.points) == 1 else None
            ax.plot(contour.points[:, 0], contour.points[:, 1], marker=marker, linewidth=1)
        ax.set_aspect("equal")
        return ax

    def _repr_svg_(self) -> str:
        """A picture of the contours, for notebooks."""
        low, high = self.bounds if len(self.points) else np.zeros((2, 3))
        size = float(max(high[0] - low[0], high[1] - low[1])) or 1.0
        lines = []
        for contour in self:
            places = np.stack([contour.points[:, 0] - low[0], high[1] - contour.points[:, 1]], 1)
            text = " ".join(f"{x:.6g},{y:.6g}" for x, y in places)
            lines.append(f'<polyline points="{text}"/>')
        box = f"{-size / 50:.6g} {-size / 50:.6g} {size * 1.04:.6g} {size * 1.04:.6g}"
        return (
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="{box}" width="480" height="480">'
            f'<g fill="none" stroke="currentColor" stroke-width="{size / 400:.6g}"'
            f' stroke-linecap="round">{"".join(lines)}</g></svg>'
        )

    @cached_property
    def _contour_numbers(self) -> npt.NDArray[np.intp]:
        """The number of the contour of each point, counted from 1."""
        return np.repeat(np.arange(len(self)) + 1, [len(contour.points) for contour in self])

    def _entity(self, index: int) -> PathEntity:
        kind, handle, insert, layer = self._model.entity(index)
        return PathEntity(kind, handle_text(handle), handle_text(insert), self.layers[layer])

    def _piece(self, index: int) -> PathPiece:
        kind, first, last, entity, curve = self._model.piece(index)
        return PathPiece(kind, self.points[first : last + 1], self._entity(entity), curve)


def _number(name: str, value: Any) -> Optional[float]:
    if value is None:
        return None
    if isinstance(value, str) or not hasattr(value, "__float__"):
        raise TypeError(f"{name} is {value!r}, expected a number")
    return float(value)


def path_options(
    *,
    tolerance: Optional[float] = None,
    step: Optional[float] = None,
    join: Optional[float] = None,
    unit: Optional[str] = None,
    scale: float = 1.0,
    layers: Union[None, str, Sequence[str]] = None,
    except_layers: Union[None, str, Sequence[str]] = None,
    hidden: bool = False,
    paper_space: bool = False,
    axes: str = "drawing",
    order: str = "drawn",
    maximum_points: Optional[int] = None,
) -> dict[str, Any]:
    """The options of a path as the native module takes them."""
    return {
        "tolerance": _number("tolerance", tolerance),
        "step": _number("step", step),
        "join": _number("join", join),
        "unit": _choice("unit", unit or "", UNITS),
        "scale": _number("scale", scale),
        "layers": _names(layers),
        "except_layers": _names(except_layers),
        "hidden": hidden,
        "paper_space": paper_space,
        "axes": _choice("axes", axes, _AXES),
        "order": _choice("order", order, _ORDERS),
        "maximum_points": maximum_points,
    }


def path_of(
    data: ReadableBuffer, options: dict[str, Any], progress: Optional[Progress]
) -> DrawingPath:
    """Reads the path of a drawing's bytes."""
    failure, model = _native.read_path(data, options, callback(progress))
    check(failure)
    return DrawingPath(model)


def _names(names: Union[None, str, Sequence[str]]) -> list[str]:
    if names is None:
        return []
    return [names] if isinstance(names, str) else list(names)


def _choice(name: str, value: str, choices: Sequence[str]) -> int:
    if value not in choices:
        known = ", ".join(repr(choice) for choice in choices if choice)
        raise ValueError(f"{name} is {value!r}, expected one of {known}")
    return choices.index(value)


def handle_text(number: int) -> str:
    """A handle as files have it; empty for none."""
    return f"{number:X}" if number else ""
