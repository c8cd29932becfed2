"""What things are as arrays."""

from typing import Any, Optional

import numpy as np
import numpy.typing as npt


def view_or_copy(
    numbers: npt.NDArray[Any], dtype: Optional[npt.DTypeLike], copy: Optional[bool]
) -> npt.NDArray[Any]:
    """What ``__array__`` gives of the thing whose numbers these are: ``numbers`` themselves unless
    another type or a copy is asked for.

    :param copy: whether it must be a copy; by default where it takes one
    :raises ValueError: when it takes a copy and there must be none
    """
    kind = numbers.dtype if dtype is None else np.dtype(dtype)
    if copy is False and kind != numbers.dtype:
        raise ValueError(f"an array of {kind} is a copy of one of {numbers.dtype}")
    return numbers.astype(kind, copy=bool(copy))
