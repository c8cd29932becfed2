"""ezdxf_path.py DRAWING: has ezdxf do what readPath does; prints its CPU seconds without those of
the start, the kibibytes that it took, and the points."""

import resource
import sys
import time

import ezdxf
from ezdxf import path

TOLERANCE = 0.01


def entities_of(insert):
    for single in insert.multi_insert() if insert.mcount > 1 else [insert]:
        for entity in single.virtual_entities():
            if entity.dxftype() == "INSERT":
                yield from entities_of(entity)
            else:
                yield entity


def main():
    memory = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
    start = time.process_time()
    points = 0
    for entity in ezdxf.readfile(sys.argv[1]).modelspace():
        for single in entities_of(entity) if entity.dxftype() == "INSERT" else [entity]:
            try:
                points += len(list(path.make_path(single).flattening(TOLERANCE)))
            except TypeError:
                points += 1
    seconds = time.process_time() - start
    print(seconds, resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - memory, points)


main()
