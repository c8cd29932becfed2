from typing import Any, Callable, Optional

import numpy as np
import numpy.typing as npt

from converters._buffers import Column, ReadableBuffer

__version__: str

def to_ply(
    x: Column,
    y: Column,
    z: Column,
    intensity: Column,
    width: int,
    height: int,
    ascii: bool,
) -> bytes: ...
def from_ply(data: ReadableBuffer) -> tuple[npt.NDArray[np.void], int, int, bool]: ...
def to_dxf(x: Column, y: Column, z: Column) -> bytes: ...
def from_dxf(data: ReadableBuffer) -> npt.NDArray[np.float64]: ...

class DrawingModel:
    @staticmethod
    def from_bytes(data: ReadableBuffer) -> DrawingModel: ...
    def layers(self) -> list[tuple[str, int, bool, bool, int, str, int]]: ...
    def entities(self) -> list[tuple[int, str, int, str, int, tuple[Any, ...]]]: ...
    def walk(
        self,
    ) -> tuple[npt.NDArray[np.float64], list[tuple[int, int, bool]]]: ...

def read_scan(
    data: ReadableBuffer,
    intensity: str,
    shift: Optional[tuple[float, ...]],
    automatic_shift: bool,
    progress: Optional[Callable[[float], Any]],
) -> tuple[
    Optional[tuple[str, int]],
    npt.NDArray[np.uint8],
    list[tuple[str, int, int]],
    int,
    dict[str, Any],
]: ...
def write_points(
    records: npt.NDArray[np.uint8],
    fields: list[tuple[str, int, int]],
    record_size: int,
    format: str,
    digits: Optional[int],
    width: int,
    height: int,
    comments: list[str],
) -> bytes: ...
def write_drawing(
    layers: list[tuple[str, int, bool, bool]],
    entities: list[tuple[int, int, npt.NDArray[np.float64], bool]],
) -> bytes: ...
def read_path(
    data: ReadableBuffer,
    options: dict[str, Any],
    progress: Optional[Callable[[float], Any]],
) -> tuple[Optional[tuple[str, int]], PathModel]: ...

def check_path(
    data: ReadableBuffer,
    options: dict[str, Any],
    distance: float,
    progress: Optional[Callable[[float], Any]],
) -> tuple[
    Optional[tuple[str, int]],
    list[
        tuple[
            str,
            str,
            tuple[tuple[float, float, float], ...],
            list[tuple[str, int, int, str]],
        ]
    ],
]: ...

class PathModel:
    def points(self) -> npt.NDArray[np.float64]: ...
    def contours(
        self,
    ) -> list[
        tuple[
            tuple[int, int],
            tuple[int, int],
            tuple[int, int],
            float,
            int,
            bool,
            int,
            Optional[int],
        ]
    ]: ...
    def entity(self, index: int) -> tuple[str, int, int, int]: ...
    def piece(self, index: int) -> tuple[str, int, int, int, dict[str, Any]]: ...
    def layers(self) -> list[tuple[str, int, bool, bool]]: ...
    def left_out(self) -> list[tuple[str, str, int, str]]: ...
    def summary(self) -> dict[str, Any]: ...
    def to_dxf(self) -> bytes: ...
