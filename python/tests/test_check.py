"""What is found in drawings."""

import json
import os
import shutil
import subprocess
from pathlib import Path

import pytest

from converters import Finding, PathEntity, ReadError, read_drawing

EXAMPLES = Path(__file__).parent.parent.parent / "examples"
MILLIMETRES = "0 SECTION 2 HEADER 9 $INSUNITS 70 4 0 ENDSEC "


def drawing(*entities, header=MILLIMETRES):
    words = f"{header}0 SECTION 2 ENTITIES {' '.join(entities)} 0 ENDSEC 0 EOF".split()
    return read_drawing(("\n".join(words) + "\n").encode())


def line(x1, y1, x2, y2, handle="2F"):
    return f"0 LINE 5 {handle} 8 cut 10 {x1} 20 {y1} 11 {x2} 21 {y2}"


def test_a_sound_drawing_has_no_findings():
    assert drawing(line(0, 0, 1, 0)).check() == ()


def test_a_near_miss_tells_both_ends():
    (finding,) = drawing(line(0, 0, 1, 0), line(1.0625, 0, 2, 0)).check()
    assert isinstance(finding, Finding)
    assert finding.kind == "near miss"
    assert finding.text == "the ends at (1, 0) and (1.0625, 0) lie 0.0625 apart and are not joined"
    assert finding.places == ((1, 0, 0), (1.0625, 0, 0))
    assert finding.place == (1, 0, 0)
    assert finding.entities == ()


def test_a_duplicate_tells_the_entity_and_the_one_that_it_repeats():
    (finding,) = drawing(line(0, 0, 1, 0), line(1, 0, 0, 0, "A1")).check()
    assert finding.kind == "duplicate"
    assert finding.place == (0, 0, 0) or finding.place == (1, 0, 0)
    assert [entity.handle for entity in finding.entities] == ["A1", "2F"]
    assert finding.entities[0] == PathEntity("LINE", "A1", "", "cut")


def test_a_finding_without_a_place_has_none():
    (finding,) = drawing(line(0, 0, 1, 0), header="").check()
    assert (finding.kind, finding.place, finding.places) == ("no unit", None, ())


def test_options_are_those_of_the_path():
    gap = drawing(line(0, 0, 1, 0), line(1.25, 0, 2, 0))
    assert gap.check() == ()
    assert [finding.kind for finding in gap.check(distance=0.5)] == ["near miss"]
    assert gap.check(distance=0.5, join=0.3) == ()
    assert [finding.place for finding in gap.check(distance=0.05, unit="cm")] == [(0.1, 0, 0)]
    assert gap.check(distance=0.5, layers="other") == ()
    hidden = drawing(line(0, 0, 1, 0) + " 60 1")
    assert [finding.kind for finding in hidden.check()] == ["left out"]
    assert hidden.check(hidden=True) == ()


@pytest.mark.parametrize("distance", [0, -1, float("nan"), float("inf")])
def test_a_distance_that_is_none_is_refused(distance):
    with pytest.raises(ValueError, match="expected a number above 0"):
        drawing(line(0, 0, 1, 0)).check(distance=distance)


def test_what_cannot_be_followed_raises_the_reason():
    with pytest.raises(ReadError):
        drawing(line(0, 0, 1, 0)).check(tolerance=-1)


def test_progress_goes_up_to_the_end_and_may_stop_the_search():
    loaded = drawing(*(line(i, 0, i, 1) for i in range(300)))
    told = []
    loaded.check(progress=told.append)
    assert told == sorted(told)
    assert told[-1] > 0.9
    assert len([done for done in told if 0.5 < done < 1]) > 50, "of the search, too"

    class Enough(Exception):
        pass

    def stop(done):
        if done > 0.7:
            raise Enough

    with pytest.raises(Enough):
        loaded.check(progress=stop)


@pytest.mark.parametrize("name", ["plate_with_gap", "floor_plan"])
def test_findings_are_those_of_the_command(name):
    command = os.environ.get("CLOUDCONV") or shutil.which("cloudconv")
    if command is None:
        pytest.skip("cloudconv is not built")
    file = EXAMPLES / f"{name}.dxf"
    told = subprocess.run([command, "check", "--json", file], stdout=subprocess.PIPE).stdout
    expected = [
        (finding["kind"], finding["text"], [tuple(place) for place in finding["places"]])
        for finding in json.loads(told)[0]["findings"]
    ]
    found = read_drawing(file).check()
    assert [(finding.kind, finding.text, list(finding.places)) for finding in found] == expected
    assert len(found) > 0
