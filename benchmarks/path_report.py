#!/usr/bin/env python3
"""path_report.py MEASURED: the tables of PathReader and readPath beside GDAL and ezdxf, and of
cloudconv beside ogr2ogr, from the JSON of path_benchmark.

The exit status says whether every goal is met. A drawing that a peer does not read has no ratio.
"""

import json
import sys

from report import milliseconds, print_table

# Times faster than GDAL and ezdxf, parts of GDAL's memory, and times the time of fromDxf.
FASTER_THAN_GDAL = 10
FASTER_THAN_EZDXF = 100
PART_OF_MEMORY = 1 / 3
TIMES_FROM_DXF = 1.2
# Below, a page more or less decides.
LEAST_MEMORY = 4096


def judged(value, goal, is_met):
    return f"{value:,.2f} ({'yes' if is_met else 'NO'}, {goal})", is_met


def times_faster(ours, theirs, least):
    if theirs["seconds"] <= 0 or not theirs["points"]:
        return "not read", True
    ratio = theirs["seconds"] / ours["seconds"]
    return judged(ratio, f"at least {least}", ratio >= least)


def part_of_memory(ours, theirs):
    if theirs["kibibytes"] < LEAST_MEMORY:
        return f"{ours['kibibytes']:,.0f} KiB", True
    part = ours["kibibytes"] / theirs["kibibytes"]
    return judged(part, "at most 0.33", part <= PART_OF_MEMORY)


def streamed_row_of(measured):
    ours = measured["PathReader"]
    theirs = measured["GDAL"]
    time, is_fast = times_faster(ours, theirs, FASTER_THAN_GDAL)
    memory, is_small = part_of_memory(ours, theirs)
    cells = [measured["drawing"], milliseconds(1e3 * ours["seconds"]), f"{ours['points']:,.0f}"]
    return cells + [time, f"{ours['kibibytes'] / 1024:,.1f} MiB", memory], is_fast and is_small


def kept_row_of(measured):
    ours = measured["readPath"]
    time, met = times_faster(ours, measured["ezdxf"], FASTER_THAN_EZDXF)
    cells = [measured["drawing"], milliseconds(1e3 * ours["seconds"]),
             f"{ours['kibibytes'] / 1024:,.1f} MiB", time]
    if "fromDxf" in measured and measured["readPath, step"]["seconds"] > 0:
        times = measured["readPath, step"]["seconds"] / measured["fromDxf"]["seconds"]
        cell, good = judged(times, f"at most {TIMES_FROM_DXF}", times <= TIMES_FROM_DXF)
        cells.append(cell)
        met = met and good
    else:
        cells.append("")
    return cells, met


def command_row_of(measured):
    ours = measured["cloudconv"]
    theirs = measured["ogr2ogr"]
    cells = [measured["drawing"], milliseconds(1e3 * ours["seconds"]),
             f"{ours['kibibytes'] / 1024:,.1f} MiB"]
    if min(ours["seconds"], theirs["seconds"]) <= 0:
        return cells + ["not read", ""], True
    ratio = theirs["seconds"] / ours["seconds"]
    part = ours["kibibytes"] / theirs["kibibytes"]
    time, is_fast = judged(ratio, f"at least {FASTER_THAN_GDAL}", ratio >= FASTER_THAN_GDAL)
    memory, is_small = judged(part, "at most 0.33", part <= PART_OF_MEMORY)
    return cells + [time, memory], is_fast and is_small


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        measured = json.load(file)
    streamed = [streamed_row_of(each) for each in measured]
    print_table("PathReader: how many times faster than GDAL in the process, memory as a part of "
                "its; neither keeps anything",
                ["drawing", "time", "points", "GDAL", "memory", "its memory"],
                [cells for cells, _ in streamed])
    kept = [kept_row_of(each) for each in measured]
    print_table("readPath: how many times faster than ezdxf; both keep all points. In steps of 0.1, "
                "as times the walk of fromDxf",
                ["drawing", "time", "memory", "ezdxf", "fromDxf"],
                [cells for cells, _ in kept])
    commands = [command_row_of(each) for each in measured]
    print_table("The command as a whole: how many times faster than ogr2ogr, memory as a part of its",
                ["drawing", "time", "memory", "ogr2ogr", "its memory"],
                [cells for cells, _ in commands])
    return 0 if all(met for _, met in streamed + kept + commands) else 1


if __name__ == "__main__":
    sys.exit(main())
