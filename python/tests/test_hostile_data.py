"""Broken data end in a ValueError or a result, never in anything else."""

import numpy as np
import pytest

from converters import Drawing, from_dxf, from_ply, to_dxf, to_ply

POINTS = np.random.default_rng(2).normal(size=(20, 3))
FILES = {
    "binary": (to_ply(POINTS), from_ply),
    "ascii": (to_ply(POINTS, ascii=True), from_ply),
    "drawing": (to_dxf(POINTS), from_dxf),
    "entities": (to_dxf(POINTS), lambda data: Drawing.from_bytes(data).entities),
}


def damaged(file, random):
    """The file cut short, or with a few bytes changed, dropped or doubled."""
    data = bytearray(file[: random.integers(len(file) + 1)] if random.random() < 0.3 else file)
    for _ in range(random.integers(1, 6)):
        if not data:
            break
        place = random.integers(len(data))
        kind = random.integers(3)
        if kind == 0:
            data[place] = random.integers(256)
        elif kind == 1:
            del data[place]
        else:
            data[place:place] = data[place : place + random.integers(1, 9)]
    return data


@pytest.mark.parametrize("kind", FILES)
def test_damaged_files_are_read_or_refused(kind):
    file, read = FILES[kind]
    random = np.random.default_rng(4)
    outcomes = {"read": 0, "refused": 0}
    for _ in range(1500):
        try:
            read(damaged(file, random))
            outcomes["read"] += 1
        except ValueError as error:
            assert str(error)
            outcomes["refused"] += 1
    assert outcomes["read"] > 0
    assert outcomes["refused"] > 0 or read is not from_ply


@pytest.mark.parametrize("type", ["float", "double"])
@pytest.mark.parametrize("format", ["ascii", "binary_little_endian"])
@pytest.mark.parametrize("count", [2**31, 2**32 + 1, 10**12, 2**61, 2**64 - 1, 2**64, 10**30])
def test_counts_that_the_file_cannot_hold_are_refused(count, format, type):
    header = f"ply\nformat {format} 1.0\nelement vertex {count}\nproperty {type} x\nend_header\n0\n"
    with pytest.raises(ValueError):
        from_ply(header.encode())
