# Prints nested_panel.dxf: a sheet from which brackets are cut, packed side by side, turned and
# mirrored: several hundred contours of one block.
#
#   awk -f dxf.awk -f make_nested_panel_drawing.awk > nested_panel.dxf

BEGIN {
    begin("A sheet of nested brackets. Made by make_nested_panel_drawing.awk.")
    layer("SHEET", 8)
    layer("CUT_OUTER", 1)
    layer("CUT_INNER", 3)
    layer("ENGRAVE", 5)
    blocks()
    block("BRACKET")
    # An angle with a round corner, three holes, a long hole, and a mark.
    quarter = sin(radians(22.5)) / cos(radians(22.5))
    split("0 120 120 45 30 30 0", xs)
    split("0 0 30 30 45 150 150", ys)
    bulges[4] = -quarter
    polyline("CUT_OUTER", 7, 1)
    circle("CUT_INNER", 15, 15, 6)
    circle("CUT_INNER", 15, 132, 6)
    circle("CUT_INNER", 104, 15, 6)
    split("50 80 80 50", xs)
    split("10 10 20 20", ys)
    bulges[2] = 1
    bulges[4] = 1
    polyline("CUT_INNER", 4, 1)
    arc("ENGRAVE", 15, 75, 8, 30, 330)
    endBlock()
    entities()

    rectangle("SHEET", 0, 0, 1500, 1000)
    # Two brackets each, one turned around, fill a rectangle.
    for (row = 0; row < 5; ++row) {
        for (column = 0; column < 8; ++column) {
            x = 40 + 180 * column
            y = 30 + 192 * row
            insert("0", "BRACKET", x, y, 0)
            insert("0", "BRACKET", x + 162, y + 186, 180)
        }
    }
    finish()
}
