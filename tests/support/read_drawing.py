"""Prints what ezdxf makes of a drawing: what its audit finds, then points and polylines."""

import sys

import ezdxf

drawing = ezdxf.readfile(sys.argv[1])
audit = drawing.audit()
for finding in audit.errors + audit.fixes:
    print("finding", finding.message)
for entity in drawing.modelspace():
    if entity.dxftype() == "POINT":
        print("point", entity.dxf.layer, *map(repr, entity.dxf.location))
    elif entity.dxftype() == "POLYLINE":
        print("polyline", entity.dxf.layer, entity.is_closed)
        for vertex in entity.vertices:
            print("vertex", *map(repr, vertex.dxf.location), repr(vertex.dxf.bulge))
