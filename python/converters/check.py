"""What one must know of a drawing before something follows its path."""

from dataclasses import dataclass
from typing import Any, Optional

from converters import _native
from converters._buffers import ReadableBuffer
from converters._sources import Progress, callback, check
from converters.path import Coordinates, PathEntity, handle_text


@dataclass(frozen=True)
class Finding:
    """Something that is found in a drawing."""

    kind: str
    """ "near miss", "duplicate", "without extent", "left out", "touches itself", "crosses itself"
    or "no unit"."""
    text: str
    """In words, with entities and places."""
    places: tuple[Coordinates, ...]
    """Where, in coordinates of the path: of a near miss both ends, else one place or none."""
    entities: tuple[PathEntity, ...]
    """The entity that it is about, and of a duplicate the one that it repeats."""

    @property
    def place(self) -> Optional[Coordinates]:
        """The first of the places; None where there is none."""
        return self.places[0] if self.places else None


def findings_of(
    data: ReadableBuffer, options: dict[str, Any], distance: float, progress: Optional[Progress]
) -> tuple[Finding, ...]:
    """Checks the path of a drawing's bytes, which is read with these options."""
    # Not so for nan, either.
    if not 0 < distance < float("inf"):
        raise ValueError(f"distance is {distance}, expected a number above 0")
    failure, found = _native.check_path(data, options, distance, callback(progress))
    check(failure)
    return tuple(
        Finding(
            kind,
            text,
            places,
            tuple(
                PathEntity(kind, handle_text(handle), handle_text(insert), layer)
                for kind, handle, insert, layer in entities
            ),
        )
        for kind, text, places, entities in found
    )
