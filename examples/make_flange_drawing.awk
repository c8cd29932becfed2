# Prints flange.dxf: a flange of 135 contours on five layers, for pictures and pages of crowded
# drawings.
#
#   awk -f dxf.awk -f make_flange_drawing.awk > flange.dxf

# A slot along an arc: two edges and two round ends.
function slot(turn, radius, sweep, width,    inner, outer, i, bulge) {
    inner = radius - width / 2
    outer = radius + width / 2
    for (i = 1; i <= 4; ++i) {
        xs[i] = (i < 3 ? outer : inner) * cos(radians(turn + (i == 2 || i == 3 ? sweep : 0)))
        ys[i] = (i < 3 ? outer : inner) * sin(radians(turn + (i == 2 || i == 3 ? sweep : 0)))
    }
    bulge = sin(radians(sweep / 4)) / cos(radians(sweep / 4))
    bulges[1] = bulge
    bulges[2] = 1
    bulges[3] = -bulge
    bulges[4] = 1
    polyline("SLOTS", 4, 1)
}

BEGIN {
    begin("A flange of 135 contours. Made by make_flange_drawing.awk.")
    layer("OUTLINE", 7)
    layer("BOLTS", 1)
    layer("SLOTS", 3)
    layer("VENTS", 5)
    layer("SCALE", 8)
    blocks()
    block("HEXAGON")
    for (i = 1; i <= 6; ++i) {
        xs[i] = 5 * cos(radians(60 * i))
        ys[i] = 5 * sin(radians(60 * i))
    }
    polyline("0", 6, 1)
    endBlock()
    entities()

    # Outline, bore and both edges of the seal's groove.
    circle("OUTLINE", 0, 0, 250)
    circle("OUTLINE", 0, 0, 60)
    circle("OUTLINE", 0, 0, 150)
    circle("OUTLINE", 0, 0, 158)
    for (i = 0; i < 24; ++i) {
        x = 220 * cos(radians(15 * i))
        y = 220 * sin(radians(15 * i))
        circle("BOLTS", x, y, 9)
        circle("BOLTS", x, y, 15)
    }
    for (i = 0; i < 12; ++i) {
        slot(30 * i + 5, 180, 20, 14)
    }
    for (i = 0; i < 35; ++i) {
        ring = i < 14 ? 0 : 1
        turn = ring == 0 ? i * 360 / 14 : (i - 14) * 360 / 21
        radius = ring == 0 ? 92 : 125
        insert("VENTS", "HEXAGON", radius * cos(radians(turn)), radius * sin(radians(turn)), turn)
    }
    for (i = 0; i < 36; ++i) {
        long = i % 9 == 0 ? 262 : 256
        line("SCALE", 251 * cos(radians(10 * i)), 251 * sin(radians(10 * i)),
             long * cos(radians(10 * i)), long * sin(radians(10 * i)))
    }
    finish()
}
