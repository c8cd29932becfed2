#!/usr/bin/env python3
"""path_report.py MEASURED: the table of readPath beside GDAL and ezdxf from the JSON of path_benchmark.

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
    for peer, least in (("GDAL", FASTER_THAN_GDAL), ("ogr2ogr", None), ("ezdxf", FASTER_THAN_EZDXF)):
        theirs = measured[peer]
        ratio = theirs["seconds"] / ours["seconds"]
        if theirs["seconds"] <= 0 or (peer != "ogr2ogr" and not theirs["points"]):
            cells.append("not read")
        elif least is None:
            cells.append(f"{ratio:,.1f}")
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
    if "fromDxf" in measured:
        times = measured["readPath, step"]["seconds"] / measured["fromDxf"]["seconds"]
        cell, good = judged(times, f"at most {TIMES_FROM_DXF}", times <= TIMES_FROM_DXF)
        cells.append(cell)
        met = met and good
    else:
        cells.append("")
    return cells, met


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        rows = [row_of(measured) for measured in json.load(file)]
    print_table("The path: how many times faster than GDAL in the process, ogr2ogr and ezdxf; memory "
                "as a part of GDAL's; the path in steps of 0.1 as times the walk of fromDxf",
                ["drawing", "time", "points", "GDAL", "ogr2ogr", "ezdxf", "memory", "fromDxf"],
                [cells for cells, _ in rows])
    return 0 if all(met for _, met in rows) else 1


if __name__ == "__main__":
    sys.exit(main())
