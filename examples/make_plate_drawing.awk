# Prints plate.dxf: a plate with rounded corners, two holes and an engraved line, drawn with every
# kind of entity that has a length. Units are millimetres.
#
#   awk -f make_plate_drawing.awk > plate.dxf
#   awk -v gap=0.002 -f make_plate_drawing.awk > plate_with_gap.dxf
#
# The outline comes in pieces, not in order and not in one direction, as drawings do. With a gap its
# left side begins that much too late: too little to see, and enough to break the contour.

function group(code, value) { printf "%3d\n%s\n", code, value }

function comment(text) { group(999, text) }

function entity(kind, class, layer) {
    group(0, kind)
    group(5, sprintf("%X", ++handle))
    group(100, "AcDbEntity")
    group(8, layer)
    group(100, class)
}

function point(offset, x, y) {
    group(10 + offset, x)
    group(20 + offset, y)
}

function layer(name, colour) {
    group(0, "LAYER")
    group(5, sprintf("%X", ++handle))
    group(100, "AcDbSymbolTableRecord")
    group(100, "AcDbLayerTableRecord")
    group(2, name)
    group(70, 0)
    group(62, colour)
    group(6, "CONTINUOUS")
}

function line(x1, y1, x2, y2) {
    entity("LINE", "AcDbLine", "OUTLINE")
    point(0, x1, y1)
    point(1, x2, y2)
}

function arc(x, y, start, end) {
    entity("ARC", "AcDbCircle", "OUTLINE")
    point(0, x, y)
    group(40, 1)
    group(100, "AcDbArc")
    group(50, start)
    group(51, end)
}

function vertex(x, y) {
    entity("VERTEX", "AcDbVertex", "ENGRAVING")
    group(100, "AcDb2dVertex")
    point(0, x, y)
    group(30, 0)
}

BEGIN {
    handle = 255
    comment("A plate with rounded corners, two holes and an engraved line.")
    comment("Made by make_plate_drawing.awk.")
    group(0, "SECTION"); group(2, "HEADER")
    group(9, "$ACADVER"); group(1, "AC1015")
    group(9, "$INSUNITS"); group(70, 4)
    group(9, "$HANDSEED"); group(5, "FFFF")
    group(0, "ENDSEC")

    group(0, "SECTION"); group(2, "TABLES")
    group(0, "TABLE"); group(2, "LAYER"); group(5, "2"); group(100, "AcDbSymbolTable"); group(70, 3)
    layer("OUTLINE", 7)
    layer("HOLES", 1)
    layer("ENGRAVING", 5)
    group(0, "ENDTAB")
    group(0, "ENDSEC")

    group(0, "SECTION"); group(2, "ENTITIES")
    comment("The outline: four sides, then four corners.")
    line(1, 0, 11, 0)
    line(1, 8, 11, 8)
    line(12, 1, 12, 7)
    line(0, 7 - gap, 0, 1)
    arc(1, 1, 180, 270)
    arc(11, 7, 0, 90)
    arc(11, 1, 270, 360)
    arc(1, 7, 90, 180)

    comment("A round hole, and one of six sides whose polyline returns to its first vertex.")
    entity("CIRCLE", "AcDbCircle", "HOLES")
    point(0, 3, 5.5)
    group(40, 1)
    entity("LWPOLYLINE", "AcDbPolyline", "HOLES")
    group(90, 7)
    group(70, 0)
    for (i = 0; i <= 6; ++i) {
        turn = (i % 6) * atan2(0, -1) / 3
        point(0, sprintf("%.6f", 9 + 1.2 * cos(turn)), sprintf("%.6f", 5.5 + 1.2 * sin(turn)))
    }

    comment("The engraved line: a zigzag, an old-style polyline, that goes on as a spline.")
    entity("POLYLINE", "AcDb2dPolyline", "ENGRAVING")
    group(66, 1)
    point(0, 0, 0)
    group(30, 0)
    group(70, 0)
    for (i = 0; i <= 4; ++i) {
        vertex(1.5 + i, 1.5 + i % 2)
    }
    group(0, "SEQEND")
    group(5, sprintf("%X", ++handle))
    group(100, "AcDbEntity")
    group(8, "ENGRAVING")
    entity("SPLINE", "AcDbSpline", "ENGRAVING")
    group(70, 8); group(71, 3); group(72, 9); group(73, 5); group(74, 0)
    for (i = 0; i < 9; ++i) {
        group(40, i < 4 ? 0 : i < 5 ? 1 : 2)
    }
    point(0, 5.5, 1.5); point(0, 6.5, 0.5); point(0, 8, 4); point(0, 9.5, 0.5); point(0, 10.5, 2)
    group(0, "ENDSEC")
    group(0, "EOF")
}
