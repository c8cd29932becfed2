"""What a DXF drawing holds: layers, entities and the contours that they form."""

import os
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path
from typing import Any, Callable, ClassVar, Union

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._buffers import ReadableBuffer, contiguous

Coordinates = tuple[float, float, float]
Array = npt.NDArray[np.float64]


@dataclass(frozen=True)
class Layer:
    """A layer of a drawing."""

    name: str
    flags: int
    """The layer's flags (group 70)."""
    frozen: bool
    """Whether the flags say frozen and nothing else."""
    locked: bool
    """Whether the flags say locked and nothing else."""
    colour: int
    """The colour's number (group 62)."""
    line_type: str
    width: int
    """Line weight."""


@dataclass(frozen=True, eq=False)
class Entity:
    """A drawable object, in drawing units; its arrays cannot be written to."""

    kind: ClassVar[str]
    """The entity's kind in one word, for example "line"."""

    layer: str
    """Name of the layer that the entity is on."""
    colour: int
    """The colour's number (group 62); 256 is the layer's colour."""
    line_type: str
    width: int
    """Line weight."""

    @property
    def coordinates(self) -> Array:
        """The points that define the entity, as an array of shape (N, 3)."""
        raise NotImplementedError


@dataclass(frozen=True, eq=False)
class Point(Entity):
    """A single point."""

    kind = "point"
    position: Coordinates

    @property
    def coordinates(self) -> Array:
        return _table(self.position)


@dataclass(frozen=True, eq=False)
class PointVector(Entity):
    """Several points that follow each other in the drawing."""

    kind = "points"
    points: Array
    """An array of shape (N, 3)."""

    @property
    def coordinates(self) -> Array:
        return self.points


@dataclass(frozen=True, eq=False)
class Line(Entity):
    """A straight line."""

    kind = "line"
    start: Coordinates
    end: Coordinates

    @property
    def coordinates(self) -> Array:
        return _table(self.start, self.end)


@dataclass(frozen=True, eq=False)
class Circle(Entity):
    """A circle."""

    kind = "circle"
    centre: Coordinates
    radius: float

    @property
    def coordinates(self) -> Array:
        return _table(self.centre)


@dataclass(frozen=True, eq=False)
class Arc(Entity):
    """A circular arc, counter-clockwise from its start to its end."""

    kind = "arc"
    centre: Coordinates
    radius: float
    start_angle: float
    """In degrees."""
    end_angle: float
    """In degrees."""

    @property
    def coordinates(self) -> Array:
        return _table(self.centre)


@dataclass(frozen=True, eq=False)
class Polyline(Entity):
    """A polyline of either kind."""

    kind = "polyline"
    vertices: Array
    """An array of shape (N, 3)."""
    bulges: Array
    """For each vertex the tangent of a quarter of the arc's angle to the next one. Walks ignore it:
    they follow the chord."""
    closed: bool

    @property
    def coordinates(self) -> Array:
        return self.vertices


@dataclass(frozen=True, eq=False)
class Spline(Entity):
    """A rational B-spline."""

    kind = "spline"
    degree: int
    knots: Array
    control_points: Array
    """An array of shape (N, 3)."""
    weights: Array
    """One for each control point."""
    fit_points: Array
    """An array of shape (N, 3)."""

    @property
    def coordinates(self) -> Array:
        return self.control_points


@dataclass(frozen=True, eq=False)
class Contour:
    """A part of a drawing's walk that is joined end to end."""

    points: Array
    """Its points in cloud coordinates, in the order of the walk: an array of shape (N, 3)."""
    closed: bool
    """Whether it ends where it began."""

    @property
    def length(self) -> float:
        """Length of the way along the points; nothing is added to close it."""
        return float(np.linalg.norm(np.diff(self.points, axis=0), axis=1).sum())


class Drawing:
    """A DXF drawing. It does not change, and any number of threads may use it.

    >>> from converters import to_dxf
    >>> drawing = Drawing.from_bytes(to_dxf([[0.0, 1.0, 2.0], [0.0, 1.0, 3.0]]))
    >>> drawing
    Drawing(1 entity, 2 layers)
    >>> entity = drawing.entities[0]
    >>> entity.kind, entity.layer, entity.colour
    ('points', '0', 7)
    >>> entity.coordinates
    array([[0., 1., 2.],
           [0., 1., 3.]])
    """

    def __init__(self, model: _native.DrawingModel) -> None:
        """Not for callers: use :meth:`load` or :meth:`from_bytes`."""
        self._model = model

    @staticmethod
    def load(path: Union[str, "os.PathLike[str]"]) -> "Drawing":
        """Reads a DXF file.

        :raises OSError: when the file cannot be read
        :raises ValueError: when it is empty
        """
        return Drawing.from_bytes(Path(path).read_bytes())

    @staticmethod
    def from_bytes(data: ReadableBuffer) -> "Drawing":
        """Reads the bytes of a DXF file, which may lie in any buffer.

        Text that is not DXF counts as a drawing without entities.

        :raises ValueError: when there are no data at all
        """
        return Drawing(_native.DrawingModel.from_bytes(contiguous(data)))

    def __repr__(self) -> str:
        return f"Drawing({_count(self.entities, 'entity', 'entities')}, " + (
            f"{_count(self.layers, 'layer', 'layers')})"
        )

    @cached_property
    def layers(self) -> tuple[Layer, ...]:
        """The layers, in the order of the file."""
        return tuple(Layer(*row) for row in self._model.layers())

    @cached_property
    def entities(self) -> tuple[Entity, ...]:
        """The entities that walks follow, in the order of the file. Entities of other kinds, and
        those inside blocks, are not read."""
        return tuple(_entity(*row) for row in self._model.entities())

    def points(self) -> Array:
        """The walk along the contours, an array of shape (N, 3): see
        :func:`converters.from_dxf`."""
        return self._model.walk()[0]

    def contours(self) -> list[Contour]:
        r"""The walk of :meth:`points`, cut where it jumps: what is joined end to end is one
        contour. The contours' arrays are views of one array.

        >>> lines = "0 LINE 10 0 20 0 11 1 21 0 0 LINE 10 3 20 0 11 1 21 0 0 EOF"
        >>> drawing = Drawing.from_bytes(lines.replace(" ", "\n").encode() + b"\n")
        >>> [(len(c.points), round(c.length, 6)) for c in drawing.contours()]
        [(31, 3.0)]
        """
        points, spans = self._model.walk()
        return [Contour(points[begin:end], closed) for begin, end, closed in spans]


#: The classes of the library's type codes.
_CLASSES: tuple[Callable[..., Entity], ...] = (
    Polyline,
    Point,
    PointVector,
    Circle,
    Arc,
    Line,
    Spline,
)


def _entity(
    type_code: int,
    layer: str,
    colour: int,
    line_type: str,
    width: int,
    data: tuple[Any, ...],
) -> Entity:
    for item in data:
        if isinstance(item, np.ndarray):
            item.flags.writeable = False
    return _CLASSES[type_code](layer, colour, line_type, width, *data)


def _table(*points: Coordinates) -> Array:
    table = np.array(points, dtype=np.float64)
    table.flags.writeable = False
    return table


def _count(items: tuple[object, ...], one: str, many: str) -> str:
    return f"{len(items)} {one if len(items) == 1 else many}"
