"""What a DXF drawing holds: layers, entities and the contours that they form."""

import os
from dataclasses import dataclass
from functools import cached_property
from typing import TYPE_CHECKING, Any, Callable, ClassVar, Iterator, Optional, Sequence, Union

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._arrays import view_or_copy
from converters._buffers import ReadableBuffer, contiguous
from converters._sources import Progress, ReadError, Source, bytes_of, read_file, write_file
from converters.check import Finding, findings_of
from converters.path import DrawingPath, LeftOut, path_of, path_options

if TYPE_CHECKING:
    from matplotlib.axes import Axes

#: What the files begin with that are no text.
_BINARY = b"AutoCAD Binary DXF\r\n\x1a\0"

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

    @property
    def off(self) -> bool:
        """Whether the layer is switched off."""
        return self.colour < 0


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
    """A part of a drawing's walk that is joined end to end. As an array it is its points."""

    points: Array
    """Its points in cloud coordinates, in the order of the walk: an array of shape (N, 3)."""
    closed: bool
    """Whether it ends where it began."""

    @property
    def length(self) -> float:
        """Length of the way along the points; nothing is added to close it."""
        return float(np.linalg.norm(np.diff(self.points, axis=0), axis=1).sum())

    def __array__(
        self, dtype: Optional[npt.DTypeLike] = None, copy: Optional[bool] = None
    ) -> npt.NDArray[Any]:
        return view_or_copy(self.points, dtype, copy)


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

    Of a binary one there are the path and what comes of it. Its layers, entities and walk, which are
    read from text alone, raise :exc:`converters.ReadError`.
    """

    def __init__(self, data: ReadableBuffer) -> None:
        """Not for callers: use :func:`converters.read_drawing`."""
        # A copy, so that what the caller does with the buffer does not matter.
        self._data = bytes(data)

    @staticmethod
    def load(path: Union[str, "os.PathLike[str]"]) -> "Drawing":
        """Reads a DXF file.

        :raises OSError: when the file cannot be read
        :raises ValueError: when it is empty
        """
        return Drawing.from_bytes(read_file(path))

    @staticmethod
    def from_bytes(data: ReadableBuffer) -> "Drawing":
        """Reads the bytes of a DXF file, which may lie in any buffer.

        Text that is not DXF counts as a drawing without entities; :func:`converters.read_drawing`
        refuses it.

        :raises ValueError: when there are no data at all
        """
        drawing = Drawing(contiguous(data))
        if not drawing._is_binary:
            drawing._model  # refuses what it has to
        return drawing

    def __reduce__(self) -> tuple[Any, ...]:
        # Of the file's bytes all is made again.
        return Drawing, (self._data,)

    @property
    def _is_binary(self) -> bool:
        return self._data.startswith(_BINARY)

    @cached_property
    def _model(self) -> _native.DrawingModel:
        if self._is_binary:
            raise ReadError(
                "this is a binary drawing, of which path() is read; layers, entities and the walk "
                "are read from text alone"
            )
        return _native.DrawingModel.from_bytes(self._data)

    @cached_property
    def _default_path(self) -> DrawingPath:
        return self.path()

    def __repr__(self) -> str:
        if self._is_binary:
            return "Drawing(binary)"
        return f"Drawing({_count(self.entities, 'entity', 'entities')}, " + (
            f"{_count(self.layers, 'layer', 'layers')})"
        )

    def __len__(self) -> int:
        return len(self.entities)

    def __iter__(self) -> Iterator[Entity]:
        return iter(self.entities)

    def __bool__(self) -> bool:
        return True

    def path(
        self,
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
        progress: Optional[Progress] = None,
    ) -> DrawingPath:
        """The true geometry of the drawing, blocks included, as contours to follow with a tool.

        Lengths are in units of the result.

        :param tolerance: the most that a chord may leave its curve; by default 0.01 mm, or 0.01
            where no unit is known
        :param step: the most between neighbouring points, of straight lines, too
        :param join: ends nearer than this are joined; by default 0.001 units of the drawing
        :param unit: of the result, such as "mm"; by default that of the drawing
        :param scale: multiplies coordinates, after units
        :param layers: names of the layers to take; * and ? stand for others
        :param except_layers: names of layers to leave out
        :param hidden: takes what is invisible, and layers that are off or frozen
        :param paper_space: takes paper space, too
        :param axes: "drawing" for (x, y, z), "plain" for (x, 0, y)
        :param order: "drawn", "nearest" for short ways between contours, or "inside-first"
        :param maximum_points: more are refused before memory is asked for
        :param progress: called with the part that is done, 0 to 1, or a bar as of tqdm
        :raises converters.ReadError: with the reason
        """
        options = path_options(
            tolerance=tolerance,
            step=step,
            join=join,
            unit=unit,
            scale=scale,
            layers=layers,
            except_layers=except_layers,
            hidden=hidden,
            paper_space=paper_space,
            axes=axes,
            order=order,
            maximum_points=maximum_points,
        )
        return path_of(self._data, options, progress)

    def check(
        self,
        *,
        distance: float = 0.1,
        tolerance: Optional[float] = None,
        join: Optional[float] = None,
        unit: Optional[str] = None,
        scale: float = 1.0,
        layers: Union[None, str, Sequence[str]] = None,
        except_layers: Union[None, str, Sequence[str]] = None,
        hidden: bool = False,
        paper_space: bool = False,
        progress: Optional[Progress] = None,
    ) -> tuple[Finding, ...]:
        r"""What one must know before something follows the path: near misses, duplicates, entities
        without extent, geometry that is left out, contours that meet themselves, a missing unit.

        >>> lines = "0 SECTION 2 ENTITIES 0 LINE 5 2F 8 cut 10 0 20 0 11 3 21 4 0 ENDSEC 0 EOF"
        >>> drawing = read_drawing(lines.replace(" ", "\n").encode() + b"\n")
        >>> [finding.text for finding in drawing.check()]
        ['the drawing does not say what its unit is']

        The findings are those of the command ``cloudconv check``, by kind and in the order of the
        path. Annotation that is left out is none.

        :param distance: ends that are this near and not joined are near misses, in units of the
            result
        :raises converters.ReadError: with the reason

        The others are those of :meth:`path`.
        """
        options = path_options(
            tolerance=tolerance,
            join=join,
            unit=unit,
            scale=scale,
            layers=layers,
            except_layers=except_layers,
            hidden=hidden,
            paper_space=paper_space,
        )
        return findings_of(self._data, options, distance, progress)

    @property
    def left_out(self) -> tuple[LeftOut, ...]:
        """What the drawing holds and its path does not."""
        return self._default_path.left_out

    @property
    def unit(self) -> str:
        """The unit of the drawing: "mm"; empty where it names none."""
        return self._default_path.drawing_unit

    def walk(self) -> Array:
        """The walk by the rules of :func:`converters.from_dxf`, an array of shape (N, 3)."""
        return self.points()

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the drawing to a file, as it was read."""
        write_file(path, self._data)

    def plot(self, ax: Optional["Axes"] = None) -> "Axes":
        """Draws the path with matplotlib, as :meth:`converters.DrawingPath.plot` does."""
        return self._default_path.plot(ax)

    def _repr_svg_(self) -> str:
        return self._default_path._repr_svg_()

    @cached_property
    def layers(self) -> tuple[Layer, ...]:
        """The layers, in the order of the file."""
        return tuple(Layer(*row) for row in self._model.layers())

    @cached_property
    def entities(self) -> tuple[Entity, ...]:
        """The entities that walks follow, in the order of the file. Entities of other kinds, and
        those inside blocks, are not among them; :meth:`path` follows these, too."""
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


def read_drawing(source: Source, *, progress: Optional[Progress] = None) -> Drawing:
    r"""Reads a DXF file of any program, text or binary; of a binary one the path is all there is.

    >>> lines = "0 SECTION 2 ENTITIES 0 LINE 8 cut 10 0 20 0 11 3 21 4 0 ENDSEC 0 EOF"
    >>> drawing = read_drawing(lines.replace(" ", "\n").encode() + b"\n")
    >>> drawing.path()
    DrawingPath(1 contour, 2 points)
    >>> drawing.path(step=1).length
    5.0

    What is no drawing is refused with the reason.

    :param source: a path, the bytes of a file in any buffer, or an open file
    :param progress: as for :meth:`Drawing.path`
    :raises converters.ReadError: with the reason
    :raises OSError: when a file cannot be opened or read
    """
    drawing = Drawing(bytes_of(source))
    drawing.__dict__["_default_path"] = drawing.path(progress=progress)
    return drawing


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
