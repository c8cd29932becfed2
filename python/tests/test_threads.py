"""Conversions beside each other, and beside other threads of Python."""

import sys
import threading
from concurrent.futures import ThreadPoolExecutor

import numpy as np
import pytest

from converters import Drawing, from_dxf, from_ply, to_dxf, to_ply

POINTS = np.random.default_rng(1).normal(size=(60_000, 3))
ASCII = to_ply(POINTS, ascii=True)
DRAWING = to_dxf(POINTS[:5000])
# Three thousand lines of a thousand points each.
LONG_LINES = Drawing.from_bytes(
    (
        "0\nSECTION\n2\nENTITIES\n"
        + "".join(f"0\nLINE\n8\n0\n10\n0\n20\n{y}\n11\n100\n21\n{y}\n" for y in range(3000))
        + "0\nENDSEC\n0\nEOF\n"
    ).encode()
)

CONVERSIONS = {
    "to_ply": lambda: to_ply(POINTS, ascii=True),
    "from_ply": lambda: from_ply(ASCII),
    "to_dxf": lambda: to_dxf(POINTS[:5000]),
    "from_dxf": lambda: from_dxf(DRAWING),
    "Drawing.from_bytes": lambda: Drawing.from_bytes(DRAWING),
    "Drawing.points": LONG_LINES.points,
    "Drawing.contours": LONG_LINES.contours,
}


@pytest.mark.parametrize("name", CONVERSIONS)
def test_other_threads_run_during_a_conversion(name):
    """The interpreter is kept from switching threads by itself, so the count below moves during a
    conversion only if the conversion gives the lock away."""
    count = 0
    moved = threading.Event()

    def convert():
        for _ in range(200):
            before = count
            CONVERSIONS[name]()
            if count != before:
                moved.set()
                return

    interval = sys.getswitchinterval()
    sys.setswitchinterval(1000)
    try:
        worker = threading.Thread(target=convert)
        worker.start()
        while worker.is_alive():
            count += 1
            # Waits for the lock to be given back if a conversion has it, and lets it start if not.
            worker.join(timeout=0.0001)
    finally:
        sys.setswitchinterval(interval)
    assert moved.is_set()


def test_threads_get_their_own_results():
    clouds = [np.full((1000 + i, 3), float(i)) for i in range(16)]
    with ThreadPoolExecutor(4) as pool:
        files = list(pool.map(to_ply, clouds))
        drawings = list(pool.map(to_dxf, clouds))
        read = list(pool.map(from_ply, files))
        walked = list(pool.map(from_dxf, drawings))
    for i, points in enumerate(clouds):
        np.testing.assert_array_equal(read[i].xyz, points)
        np.testing.assert_array_equal(walked[i], points * [1, 1, -1])


def test_drawings_are_written_one_at_a_time():
    """All of them go through one temporary file."""
    together = threading.Barrier(4)

    def draw(number):
        points = np.full((2000, 3), float(number))
        together.wait()
        return [to_dxf(points).count(b"\n%d.0\n" % number) for _ in range(25)]

    with ThreadPoolExecutor(4) as pool:
        for counts in pool.map(draw, range(11, 15)):
            assert counts == [6000] * 25


def test_threads_get_their_own_reasons():
    def reason(number):
        header = b"ply\nformat ascii 1.0\nelement vertex 1\nelement e%d 1\n" % number
        with pytest.raises(ValueError) as raised:
            from_ply(header)
        return str(raised.value)

    with ThreadPoolExecutor(4) as pool:
        for number, text in enumerate(pool.map(reason, range(400))):
            assert f"element type 'e{number}' not supported" in text
            assert text.count("not supported") == 1
