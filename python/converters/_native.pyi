from typing import Any

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
