"""Drawings that are made."""

import math
import os
from typing import Optional, Union

import numpy as np
import numpy.typing as npt

from converters import _native
from converters._sources import write_file
from converters.drawing import Drawing

Array = npt.NDArray[np.float64]

_BY_LAYER = 256
_FORBIDDEN = frozenset('<>/\\":;?*|=`')


class DrawingBuilder:
    """A drawing to add to: points, lines, arcs and polylines, on layers.

    >>> drawing = DrawingBuilder()
    >>> drawing.add_layer("cut", colour=1)
    >>> drawing.add_line((0, 0), (30, 0), layer="cut")
    >>> drawing.add_polyline([(30, 0), (30, 20), (0, 20)], bulges=[0.5, 0, 0], layer="cut")
    >>> drawing.add_circle((10, 10), 4, layer="holes")
    >>> drawing
    DrawingBuilder(3 entities, 3 layers)
    >>> [contour.layer for contour in drawing.drawing().path()]
    ['cut', 'holes']

    The file is of release R12, ASCII, which names no unit. Lines, arcs and circles are written as
    polylines, in which arcs are bulges, exactly. What lies in the plane z = 0 is a 2D polyline, and
    what does not is a 3D one. A closed polyline ends with a vertex where it began, which every
    reader takes rightly.

    Places are (x, y) or (x, y, z), finite. A layer that is not there is added.
    """

    def __init__(self) -> None:
        # The names by which layers are known, whatever their case; each has its index.
        self._indexes: dict[str, int] = {}
        self._layers: list[tuple[str, int, bool, bool]] = []
        self._entities: list[tuple[int, int, Array, bool]] = []
        self.add_layer("0")

    def __repr__(self) -> str:
        entities = "1 entity" if len(self) == 1 else f"{len(self)} entities"
        layers = "1 layer" if len(self._layers) == 1 else f"{len(self._layers)} layers"
        return f"DrawingBuilder({entities}, {layers})"

    def __len__(self) -> int:
        return len(self._entities)

    def __bool__(self) -> bool:
        return True

    def add_layer(
        self, name: str, *, colour: int = 7, off: bool = False, frozen: bool = False
    ) -> None:
        """Adds a layer, or changes the one of this name; case does not tell layers apart.

        :param colour: the AutoCAD colour index, 1 to 255
        :raises ValueError: for another colour, and for a name that drawings cannot have
        """
        if not 1 <= colour <= 255:
            raise ValueError(f"the colour of a layer is {colour}, expected 1 to 255")
        index = self._indexes.get(name.casefold())
        if index is not None:
            self._layers[index] = (self._layers[index][0], colour, off, frozen)
            return
        printable = name.isprintable() and name.strip() == name != ""
        if not printable or not _FORBIDDEN.isdisjoint(name):
            raise ValueError(f"{name!r} cannot be the name of a layer")
        self._indexes[name.casefold()] = len(self._layers)
        self._layers.append((name, colour, off, frozen))

    def add_point(
        self, place: npt.ArrayLike, *, layer: str = "0", colour: Optional[int] = None
    ) -> None:
        """Adds a point.

        :param colour: the AutoCAD colour index, 1 to 255; by default that of the layer
        """
        self._add(_row(place), False, layer, colour)

    def add_points(
        self, places: npt.ArrayLike, *, layer: str = "0", colour: Optional[int] = None
    ) -> None:
        """Adds a point at each of the places, an array of shape (N, 2) or (N, 3)."""
        rows = _rows(places)
        if len(rows):
            self._add(rows, False, layer, colour)

    def add_line(
        self,
        start: npt.ArrayLike,
        end: npt.ArrayLike,
        *,
        layer: str = "0",
        colour: Optional[int] = None,
    ) -> None:
        """Adds a straight line."""
        self._add(np.concatenate([_row(start), _row(end)]), True, layer, colour)

    def add_polyline(
        self,
        points: npt.ArrayLike,
        *,
        bulges: Optional[npt.ArrayLike] = None,
        closed: bool = False,
        layer: str = "0",
        colour: Optional[int] = None,
    ) -> None:
        """Adds a polyline.

        :param points: its vertices, at least two, an array of shape (N, 2) or (N, 3)
        :param bulges: for each vertex the tangent of a quarter of the angle of the arc to the next
            one, above 0 counter-clockwise; by default all edges are straight. Of an open polyline
            the last is of no use
        :param closed: whether an edge leads from the last vertex to the first
        :raises ValueError: for other shapes, for places and bulges that are not finite, and for
            bulges of a polyline that does not lie in the plane z = 0
        """
        rows = _rows(points)
        if len(rows) < 2:
            raise ValueError("a polyline has at least two vertices")
        if bulges is not None:
            rows[:, 3] = _bulges(bulges, rows)
        if closed:
            rows = np.concatenate([rows, rows[:1]])
        # Behind the last vertex there is nothing.
        rows[-1, 3] = 0.0
        self._add(rows, True, layer, colour)

    def add_circle(
        self,
        centre: npt.ArrayLike,
        radius: float,
        *,
        layer: str = "0",
        colour: Optional[int] = None,
    ) -> None:
        """Adds a circle in the plane z = 0, counter-clockwise from its right."""
        self.add_arc(centre, radius, 0.0, 360.0, layer=layer, colour=colour)

    def add_arc(
        self,
        centre: npt.ArrayLike,
        radius: float,
        start_angle: float,
        end_angle: float,
        *,
        layer: str = "0",
        colour: Optional[int] = None,
    ) -> None:
        """Adds an arc in the plane z = 0, counter-clockwise.

        :param start_angle: in degrees, as the other one. Where both are the same direction, the arc
            is a circle
        :raises ValueError: when the radius is not above 0, or the centre beside the plane
        """
        middle = _row(centre)[0]
        if not (0 < radius < math.inf and middle[2] == 0):
            raise ValueError("an arc has a radius above 0 and lies in the plane z = 0")
        if not math.isfinite(start_angle) or not math.isfinite(end_angle):
            raise ValueError("the angles of an arc are finite")
        sweep = (end_angle - start_angle) % 360.0 or 360.0
        angles = np.radians(start_angle + np.array([0.0, 0.5, 1.0]) * sweep)
        rows = np.zeros((3, 4))
        rows[:, 0] = middle[0] + radius * np.cos(angles)
        rows[:, 1] = middle[1] + radius * np.sin(angles)
        if sweep == 360.0:
            rows[2] = rows[0]
        # Half of the arc each: its bulge has no end at a full turn.
        rows[:2, 3] = math.tan(math.radians(sweep) / 8)
        self._add(rows, True, layer, colour)

    def to_bytes(self) -> bytes:
        """The drawing as the bytes of a DXF file."""
        return _native.write_drawing(self._layers, self._entities)

    def save(self, path: Union[str, "os.PathLike[str]"]) -> None:
        """Writes the drawing to a file.

        :raises OSError: when that fails
        """
        write_file(path, self.to_bytes())

    def drawing(self) -> Drawing:
        """The drawing as it reads, to be followed, checked or shown."""
        return Drawing(self.to_bytes())

    def _repr_svg_(self) -> str:
        return self.drawing()._repr_svg_()

    def _add(self, rows: Array, is_polyline: bool, layer: str, colour: Optional[int]) -> None:
        if colour is not None and not 1 <= colour <= 255:
            raise ValueError(f"the colour is {colour}, expected 1 to 255")
        if layer.casefold() not in self._indexes:
            self.add_layer(layer)
        index = self._indexes[layer.casefold()]
        self._entities.append((index, _BY_LAYER if colour is None else colour, rows, is_polyline))


def new_drawing() -> DrawingBuilder:
    """An empty drawing to add to.

    >>> drawing = new_drawing()
    >>> drawing.add_point((1, 2))
    >>> drawing.to_bytes().count(b"POINT")
    1
    """
    return DrawingBuilder()


def _rows(places: npt.ArrayLike) -> Array:
    """Rows of x, y, z and no bulge."""
    table = np.asarray(places, dtype=np.float64)
    if table.shape == (0,):
        table = table.reshape(0, 3)
    if table.ndim != 2 or table.shape[1] not in (2, 3):
        raise ValueError(f"places have shape {table.shape}, expected (N, 2) or (N, 3)")
    if not np.isfinite(table).all():
        raise ValueError("a place is not finite")
    rows = np.zeros((len(table), 4))
    rows[:, : table.shape[1]] = table
    return rows


def _row(place: npt.ArrayLike) -> Array:
    """One row of x, y, z and no bulge."""
    numbers = np.asarray(place, dtype=np.float64)
    if numbers.shape not in ((2,), (3,)):
        raise ValueError(f"a place has shape {numbers.shape}, expected (2,) or (3,)")
    return _rows(numbers[np.newaxis])


def _bulges(bulges: npt.ArrayLike, rows: Array) -> Array:
    """One bulge for each of the rows."""
    values = np.asarray(bulges, dtype=np.float64)
    if values.shape != (len(rows),):
        raise ValueError(f"bulges have shape {values.shape} for {len(rows)} vertices")
    if not np.isfinite(values).all():
        raise ValueError("a bulge is not finite")
    if values.any() and rows[:, 2].any():
        raise ValueError("only a polyline in the plane z = 0 has bulges")
    return values
