"""examples/convert_with_dask.py, on a cluster of two workers."""

import os
import shutil
import subprocess
import sys
from pathlib import Path

import pytest

distributed = pytest.importorskip("distributed")

EXAMPLES = Path(__file__).parent.parent.parent / "examples"
COMMAND = os.environ.get("CLOUDCONV") or shutil.which("cloudconv")

# The first time that it is to convert a file whose name says so, it fails.
FLAKY = """#!/bin/sh
for name; do
  case $name in
  *flaky*.dxf)
    if [ ! -e "$name.tried" ]; then
      touch "$name.tried"
      echo "$name: not now" >&2
      exit 1
    fi ;;
  esac
done
exec "{command}" "$@"
"""

# An exception that nobody asks for, as a client leaves it that closes on a busy machine.
LEAVES_A_FUTURE_BEHIND = """
import asyncio
import sys

sys.path.insert(0, {examples!r})
import convert_with_dask


def run(client, options):
    loop = asyncio.new_event_loop()
    loop.create_future().set_exception(TimeoutError("Timeout"))
    loop.close()
    print("left behind")
    return 0


convert_with_dask.run = run
sys.exit(convert_with_dask.main(sys.argv[1:]))
"""


@pytest.fixture(scope="module")
def scheduler():
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, dashboard_address="127.0.0.1:0"
    ) as cluster:
        yield cluster.scheduler_address


@pytest.fixture
def folder(tmp_path):
    """200 drawings in folders: five of them broken, three that convert at the second try."""
    if COMMAND is None:
        pytest.skip("cloudconv is not built")
    drawing = (EXAMPLES / "plate.dxf").read_bytes()
    for number in range(200):
        kind = "broken" if number % 40 == 39 else "flaky" if number % 70 == 1 else "good"
        file = tmp_path / "drawings" / f"folder {number % 7}" / f"{kind} {number}'s.dxf"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(b"no drawing" if kind == "broken" else drawing)
    flaky = tmp_path / "cloudconv"
    flaky.write_text(FLAKY.format(command=COMMAND))
    flaky.chmod(0o755)
    return tmp_path / "drawings"


def run(folder, *arguments):
    return subprocess.run(
        [sys.executable, str(EXAMPLES / "convert_with_dask.py"), str(folder), *arguments],
        stdout=subprocess.PIPE,
        stderr=subprocess.PIPE,
        text=True,
    )


def test_two_workers_convert_a_folder_list_what_fails_and_try_it_again(folder, scheduler):
    there = (f"--scheduler={scheduler}", f"--cloudconv={folder.parent / 'cloudconv'}")
    done = run(folder, *there, "--", "--ascii")
    assert done.stdout == "195 converted, 0 already there, 5 failed\n"
    assert done.returncode == 1
    assert len(list(folder.rglob("*.tried"))) == 3
    broken = sorted(folder.rglob("broken*.dxf"))
    for lines in (done.stderr.splitlines(), (folder / "failed.txt").read_text().splitlines()):
        assert len(lines) == len(broken) == 5
        for line, file in zip(lines, broken):
            assert f"{file}: no DXF file" in line
    results = list(folder.rglob("*.ply"))
    assert len(results) == 195
    assert {result.read_bytes()[:16] for result in results} == {b"ply\nformat ascii"}

    # The next run converts what has been mended, and nothing else.
    for file in broken[1:]:
        shutil.copy(EXAMPLES / "plate.dxf", file)
    broken[0].unlink()
    again = run(folder, *there)
    assert again.stdout == "4 converted, 195 already there, 0 failed\n"
    assert again.stderr == ""
    assert again.returncode == 0
    assert (folder / "failed.txt").read_text() == ""


def test_what_a_closing_client_leaves_behind_is_not_told(scheduler):
    program = LEAVES_A_FUTURE_BEHIND.format(examples=str(EXAMPLES))
    done = subprocess.run(
        [sys.executable, "-c", program, ".", f"--scheduler={scheduler}"],
        capture_output=True,
        text=True,
    )
    assert (done.returncode, done.stdout, done.stderr) == (0, "left behind\n", "")


def test_without_an_address_this_machine_is_the_cluster(folder):
    one = folder / "folder 4"
    done = run(one, "--workers=1", f"--cloudconv={COMMAND}", "--to=.csv", "--tries=1")
    assert done.returncode == 1
    assert len(list(one.rglob("*.csv"))) == len(list(one.rglob("*.dxf"))) - 1
