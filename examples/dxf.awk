# Functions that print a DXF drawing of release R2000, for the make_*_drawing.awk scripts here that
# make more than a plate. Units are millimetres, angles degrees.

function group(code, value) { printf "%3d\n%s\n", code, value }

function number(value) { return sprintf("%.4f", value) + 0 }

function point(offset, x, y) {
    group(10 + offset, number(x))
    group(20 + offset, number(y))
}

function nextHandle() { return sprintf("%X", 256 + handles++) }

function radians(degrees) { return degrees * atan2(0, -1) / 180 }

# Call begin(), layer() for each layer, blocks(), the blocks, entities(), and finish().
function begin(title) {
    group(999, title)
    group(0, "SECTION"); group(2, "HEADER")
    group(9, "$ACADVER"); group(1, "AC1015")
    group(9, "$INSUNITS"); group(70, 4)
    group(9, "$HANDSEED"); group(5, "FFFF")
    group(0, "ENDSEC")
    group(0, "SECTION"); group(2, "TABLES")
    group(0, "TABLE"); group(2, "LAYER"); group(5, "2"); group(100, "AcDbSymbolTable"); group(70, 9)
}

# flags: 0, or 1 for a frozen layer.
function layer(name, colour, flags) {
    group(0, "LAYER"); group(5, nextHandle())
    group(100, "AcDbSymbolTableRecord"); group(100, "AcDbLayerTableRecord")
    group(2, name); group(70, flags + 0); group(62, colour); group(6, "CONTINUOUS")
}

function blocks() {
    group(0, "ENDTAB"); group(0, "ENDSEC")
    group(0, "SECTION"); group(2, "BLOCKS")
}

function block(name) {
    group(0, "BLOCK"); group(5, nextHandle()); group(100, "AcDbEntity"); group(8, "0")
    group(100, "AcDbBlockBegin"); group(2, name); group(70, 0); point(0, 0, 0); group(30, 0)
    group(3, name)
}

function endBlock() {
    group(0, "ENDBLK"); group(5, nextHandle()); group(100, "AcDbEntity"); group(8, "0")
    group(100, "AcDbBlockEnd")
}

function entities() {
    group(0, "ENDSEC")
    group(0, "SECTION"); group(2, "ENTITIES")
}

function finish() {
    group(0, "ENDSEC")
    group(0, "EOF")
}

function entity(kind, class, on) {
    group(0, kind); group(5, nextHandle()); group(100, "AcDbEntity"); group(8, on)
    group(100, class)
}

function line(on, x1, y1, x2, y2) {
    entity("LINE", "AcDbLine", on)
    point(0, x1, y1)
    point(1, x2, y2)
}

function circle(on, x, y, radius) {
    entity("CIRCLE", "AcDbCircle", on)
    point(0, x, y)
    group(40, number(radius))
}

function arc(on, x, y, radius, start, end) {
    entity("ARC", "AcDbCircle", on)
    point(0, x, y)
    group(40, number(radius))
    group(100, "AcDbArc")
    group(50, number(start))
    group(51, number(end))
}

# A polyline of the corners xs[1] ys[1] ... to count; bulges[i] is that of the edge behind a corner.
function polyline(on, count, closed,    i) {
    entity("LWPOLYLINE", "AcDbPolyline", on)
    group(90, count); group(70, closed)
    for (i = 1; i <= count; ++i) {
        point(0, xs[i], ys[i])
        if (bulges[i] != 0) {
            group(42, sprintf("%.6f", bulges[i]) + 0)
        }
    }
    delete bulges
}

function rectangle(on, x, y, width, height) {
    xs[1] = xs[4] = x; xs[2] = xs[3] = x + width
    ys[1] = ys[2] = y; ys[3] = ys[4] = y + height
    polyline(on, 4, 1)
}

# The same with rounded corners.
function rounded(on, x, y, width, height, radius,    i, quarter) {
    quarter = sin(radians(22.5)) / cos(radians(22.5))
    xs[1] = xs[6] = x + radius; xs[2] = xs[5] = x + width - radius
    xs[3] = xs[4] = x + width; xs[7] = xs[8] = x
    ys[1] = ys[2] = y; ys[3] = ys[8] = y + radius
    ys[4] = ys[7] = y + height - radius; ys[5] = ys[6] = y + height
    for (i = 2; i <= 8; i += 2) {
        bulges[i] = quarter
    }
    polyline(on, 8, 1)
}

# A block drawn at a place, turned, and mirrored when xScale is -1.
function insert(on, name, x, y, turn, xScale) {
    entity("INSERT", "AcDbBlockReference", on)
    group(2, name)
    point(0, x, y)
    group(41, xScale == 0 ? 1 : xScale)
    group(50, number(turn))
}

function text(on, x, y, height, words) {
    entity("TEXT", "AcDbText", on)
    point(0, x, y)
    group(40, number(height))
    group(1, words)
}
