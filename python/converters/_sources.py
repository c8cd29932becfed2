"""Where files come from and go to, and how reading them is told and fails."""

import errno
import os
from typing import IO, Any, Callable, Optional, Protocol, Union

from converters._buffers import ReadableBuffer, contiguous

#: A path, the bytes of a file, or an open file.
Source = Union[str, "os.PathLike[str]", ReadableBuffer, IO[bytes]]


class ProgressBar(Protocol):
    """A bar as tqdm has it."""

    n: Any
    total: Any

    def refresh(self) -> Any:
        """Shows it."""


#: Called with the part of the work that is done, 0 to 1; or a bar that is set to it.
Progress = Union[Callable[[float], Any], ProgressBar]


class ReadError(ValueError):
    """A file that could not be read; the text says why.

    >>> from converters import read_scan
    >>> try:
    ...     read_scan(b"ply\\nformat ascii 3.0\\n")
    ... except ReadError as error:
    ...     print(error.line)
    2
    """

    def __init__(self, reason: str, line: Optional[int] = None) -> None:
        super().__init__(reason)
        self.line = line
        """The line of the file that the reason is about, counted from 1, or None."""


# Callers know it by this name.
ReadError.__module__ = "converters"


def read_file(path: Union[str, "os.PathLike[str]"]) -> bytes:
    """The whole file.

    :raises OSError: when that fails
    """
    with open(_named(path), "rb") as file:
        return file.read()


def write_file(path: Union[str, "os.PathLike[str]"], contents: bytes) -> None:
    """Makes or replaces a file.

    :raises OSError: when that fails
    """
    with open(_named(path), "wb") as file:
        file.write(contents)


def _named(path: Union[str, "os.PathLike[str]"]) -> str:
    name = os.fspath(path)
    if not name:
        raise FileNotFoundError(errno.ENOENT, "the name of the file is empty", name)
    return name


def bytes_of(source: Source) -> ReadableBuffer:
    """The whole file."""
    if isinstance(source, (str, os.PathLike)):
        return read_file(source)
    if hasattr(source, "read") and not hasattr(source, "find"):  # an mmap has both
        contents = source.read()
        if isinstance(contents, str):
            raise TypeError("the file is open as a text; open it in binary mode")
        return contents
    try:
        return contiguous(source)  # type: ignore[arg-type]
    except TypeError:
        kind = type(source).__name__
        raise TypeError(f"expected a path, the bytes of a file or an open file, not {kind}") from None


def check(failure: Optional[tuple[str, int]]) -> None:
    """Raises what the native module has to say of a failure."""
    if failure is not None:
        reason, line = failure
        raise ReadError(reason, line or None)


def callback(progress: Optional[Progress]) -> Optional[Callable[[float], Any]]:
    """What the native module calls."""
    if progress is None or not hasattr(progress, "refresh"):
        return progress
    bar: ProgressBar = progress  # type: ignore[assignment]

    def show(done: float) -> None:
        bar.n = done if bar.total is None else done * bar.total
        bar.refresh()

    return show
