# Prints floor_plan.dxf: a floor of an office in millimetres, 341 contours on seven layers, with what
# a floor plan has besides: names of rooms, which no tool follows, and a frozen layer.
#
#   awk -f dxf.awk -f make_floor_plan_drawing.awk > floor_plan.dxf

function room(x, y, width, height, name) {
    rectangle("WALLS", x + 100, y + 100, width - 200, height - 200)
    text("NAMES", x + width / 2 - 600, y + height / 2, 300, name)
}

BEGIN {
    begin("A floor of an office. Made by make_floor_plan_drawing.awk.")
    layer("WALLS", 7)
    layer("DOORS", 1)
    layer("WINDOWS", 4)
    layer("FURNITURE", 3)
    layer("COLUMNS", 8)
    layer("STAIRS", 6)
    layer("LIGHTS", 40)
    layer("NAMES", 2)
    layer("WIRING", 5, 1)
    blocks()
    block("DOOR")
    # The leaf and its swing: one contour of a line and an arc.
    line("0", 0, 0, 0, 900)
    arc("0", 0, 0, 900, 0, 90)
    endBlock()
    block("WINDOW")
    rectangle("0", 0, 0, 1500, 200)
    line("0", 0, 100, 1500, 100)
    endBlock()
    block("DESK")
    rectangle("0", -800, 0, 1600, 800)
    rounded("0", -250, -450, 500, 450, 150)
    rounded("0", -220, 420, 440, 260, 40)
    endBlock()
    block("TABLE")
    circle("0", 0, 0, 600)
    for (i = 0; i < 4; ++i) {
        circle("0", 850 * cos(radians(90 * i)), 850 * sin(radians(90 * i)), 220)
    }
    endBlock()
    entities()

    rectangle("WALLS", -300, -300, 42600, 18600)
    # Seven offices on either side of a corridor.
    for (i = 0; i < 7; ++i) {
        for (side = 0; side < 2; ++side) {
            x = 6000 * i
            y = side * 10800
            room(x, y, 6000, 7200, "Office " (2 * i + side + 1))
            insert("DOORS", "DOOR", x + 2500, side == 0 ? 7100 : 10900, side == 0 ? 0 : -90)
            for (k = 0; k < 2; ++k) {
                insert("WINDOWS", "WINDOW", x + 1000 + 2400 * k, side == 0 ? -200 : 18000)
            }
            for (k = 0; k < 4; ++k) {
                insert("FURNITURE", "DESK", x + 1600 + 2800 * (k % 2),
                       y + 1800 + 2400 * int(k / 2) + side * 600, k < 2 ? 0 : 180)
            }
        }
    }
    # What stands in the corridor.
    for (i = 0; i < 9; ++i) {
        rectangle("COLUMNS", 2700 + 4500 * i, 8800, 400, 400)
        circle("LIGHTS", 7000 + 3200 * i, 8200, 180)
    }
    for (i = 0; i < 5; ++i) {
        insert("FURNITURE", "TABLE", 5000 + 8000 * i, 9900, 45)
    }
    for (i = 0; i < 24; ++i) {
        line("STAIRS", 36200 + 220 * i, 7600, 36200 + 220 * i, 8600)
    }
    for (i = 0; i < 21; ++i) {
        line("STAIRS", 400 + 220 * i, 7600, 400 + 220 * i, 8600)
    }
    for (i = 0; i < 12; ++i) {
        line("WIRING", 500 + 3400 * i, 500, 500 + 3400 * i, 17500)
    }
    finish()
}
