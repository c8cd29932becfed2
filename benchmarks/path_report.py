#!/usr/bin/env python3
"""path_report.py MEASURED: the tables of readPath beside GDAL and ezdxf, and of cloudconv beside
ogr2ogr, from the JSON of path_benchmark.

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


def row_of(measured):
    ours = measured["readPath"]
    cells = [measured["drawing"], milliseconds(1e3 * ours["seconds"]), f"{ours['points']:,.0f}"]
    met = True
    for peer, least in (("GDAL", FASTER_THAN_GDAL), ("ezdxf", FASTER_THAN_EZDXF)):
        theirs = measured[peer]
        ratio = theirs["seconds"] / ours["seconds"]
        if theirs["seconds"] <= 0 or not theirs["points"]:
            cells.append("not read")
        else:
            cell, good = judged(ratio, f"at least {least}", ratio >= least)
            cells.append(cell)
            met = met and good
    memory = ours["kibibytes"] / max(measured["GDAL"]["kibibytes"], 1)
    if measured["GDAL"]["kibibytes"] < LEAST_MEMORY:
        cells.append(f"{ours['kibibytes']:,.0f} KiB")
    else:
        cell, good = judged(memory, "at most 0.33", memory <= PART_OF_MEMORY)
        cells.append(cell)
        met = met and good
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
    rows = [row_of(each) for each in measured]
    print_table("The path: how many times faster than GDAL in the process and ezdxf; memory as a "
                "part of GDAL's; the path in steps of 0.1 as times the walk of fromDxf",
                ["drawing", "time", "points", "GDAL", "ezdxf", "memory", "fromDxf"],
                [cells for cells, _ in rows])
    commands = [command_row_of(each) for each in measured]
    print_table("The command as a whole: how many times faster than ogr2ogr, memory as a part of its",
                ["drawing", "time", "memory", "ogr2ogr", "its memory"],
                [cells for cells, _ in commands])
    return 0 if all(met for _, met in rows + commands) else 1


if __name__ == "__main__":
    sys.exit(main())
