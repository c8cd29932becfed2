"""Drawings by hand that are unusual and whole: what programs write that random_drawings.py does not,
and ezdxf reads as the format has it. DRAWINGS has their texts by name."""

import math

DRAWINGS = {}
HEADER = (9, "$ACADVER", 1, "AC1015")
SUBCLASSES = {"LWPOLYLINE": "AcDbPolyline", "ELLIPSE": "AcDbEllipse", "SPLINE": "AcDbSpline",
              "LINE": "AcDbLine", "ARC": "AcDbArc", "CIRCLE": "AcDbCircle"}


def groups(*pairs):
    return "".join(f"{code}\n{value}\n" for code, value in zip(pairs[::2], pairs[1::2]))


def old(kind, *pairs):
    """An entity of R12 and before."""
    return groups(0, kind, 8, "0", *pairs)


def new(kind, *pairs):
    return groups(0, kind, 100, "AcDbEntity", 8, "0", 100, SUBCLASSES[kind], *pairs)


def section(name, body):
    return groups(0, "SECTION", 2, name) + body + groups(0, "ENDSEC")


def drawing(entities, blocks="", header=()):
    return (section("HEADER", groups(*header)) + section("BLOCKS", blocks) +
            section("ENTITIES", entities) + groups(0, "EOF"))


def block(name, body, *head):
    return groups(0, "BLOCK", 8, "0", 2, name, 70, 0, *head) + body + groups(0, "ENDBLK")


def polyline(flags, *vertices):
    """Vertices are (x, y, group, value...)."""
    return (old("POLYLINE", 66, 1, 10, 0, 20, 0, 30, 0, 70, flags) +
            "".join(old("VERTEX", 10, x, 20, y, 30, 0, *more) for x, y, *more in vertices) +
            old("SEQEND"))


def spline(flags, degree, knots, points, weights=()):
    pairs = [70, flags, 71, degree, 72, len(knots), 73, len(points)]
    for knot in knots:
        pairs += [40, knot]
    for x, y in points:
        pairs += [10, x, 20, y, 30, 0]
    for weight in weights:
        pairs += [41, weight]
    return new("SPLINE", *pairs)


LINE = old("LINE", 10, 0, 20, 0, 11, 2, 21, 1)
CIRCLE = old("CIRCLE", 10, 5, 20, 5, 40, 1)
ARCS = (old("ARC", 10, 1, 20, 2, 40, 3, 50, 350, 51, 80) +
        old("ARC", 10, 1, 20, 2, 40, 1, 50, 10, 51, 80, 210, 0, 220, 0, 230, -1) +
        polyline(1, (0, 0, 42, 2), (3, 1, 42, -0.2), (5, 5)))
FIVE = [(0, 0), (1, 2), (3, 2), (4, 0), (6, -1)]
CLAMPED = [0, 0, 0, 0, 1, 2, 2, 2, 2]


def add(name, text):
    DRAWINGS[name] = text


def add_polylines():
    add("no vertices follow", drawing(old("POLYLINE", 70, 1) + old("VERTEX", 10, 1, 20, 2) +
                                      old("VERTEX", 10, 4, 20, 2) + old("SEQEND")))
    add("bulge at the end", drawing(polyline(0, (0, 0, 42, 1), (1, 0, 42, 1))))
    add("two vertices, closed", drawing(polyline(1, (0, 0, 42, 1), (1, 0, 42, 1))))
    add("curve-fit", drawing(polyline(2, (0, 0, 70, 2, 42, 0.3, 50, 45), (0.5, 0.2, 70, 1),
                                      (1, 0, 70, 2, 42, 0.1))))
    add("widths", drawing(polyline(0, (0, 0, 40, 0.1, 41, 0.2), (1, 0, 40, 0.1), (1, 1))))
    add("closed where it starts", drawing(polyline(1, (0, 0), (3, 0), (3, 3), (0, 0))))
    add("pattern along it", drawing(polyline(129, (0, 0), (1, 0), (1, 1))))
    two = (10, 1, 20, 0, 10, 4, 20, 0)
    for name, pairs in {"fewer": (90, 1, 70, 0, *two), "more": (90, 99, 70, 0, *two),
                        "flags behind": (90, 2, *two, 70, 1), "no count": (70, 0, *two),
                        "flags with a point": (90, 2, 70, "1.0", *two),
                        "height behind": (90, 2, 70, 0, *two, 38, 4.5),
                        "numbers of vertices": (90, 2, 70, 0, 10, 1, 20, 0, 91, 1, 42, 1,
                                                10, 4, 20, 0, 91, 2, 42, 1),
                        "data of programs": (90, 2, 70, 0, *two, 1001, "A", 1010, 5, 1020, 6,
                                             1030, 7)}.items():
        add("lwpolyline, " + name, drawing(new("LWPOLYLINE", *pairs), header=HEADER))


def add_round_ones():
    angles = [(0, 360), (360, 0), (90, 450), (350, 10), (270, -90), (0, 720), (-180, 180),
              (30, 1e-14), (400, 500), (-400, -500), (0, 359.9999999)]
    for start, end in angles:
        for way in (1, -1):
            add(f"arc {start} {end} {way}",
                drawing(old("ARC", 10, 1, 20, 2, 40, 3, 50, start, 51, end, 210, 0, 220, 0, 230,
                            way)))
    add("negative radius", drawing(old("CIRCLE", 10, 1, 20, 2, 40, -3)))
    full = 2 * math.pi
    for start, end in [(0, full - 1e-9), (0, 6.283185), (3, 1), (-math.pi, math.pi), (full, 0),
                       (10, 2), (7, 8), (1e-9, full), (0, 2 * full)]:
        for ratio in (0.5, 2):
            add(f"ellipse {start} {end} {ratio}", drawing(
                new("ELLIPSE", 10, 1, 20, 2, 30, 0, 11, 2, 21, 0, 31, 0, 40, ratio, 41, start, 42,
                    end), header=HEADER))
    for normal in ((0, 0, 1), (1, 2, 3), (0.3, 0, -1)):
        add(f"slanted ellipse {normal}", drawing(
            new("ELLIPSE", 10, 1, 20, 2, 30, 0, 11, 2, 21, 1, 31, 1, 210, normal[0], 220,
                normal[1], 230, normal[2], 40, 0.5, 41, 0, 42, 4), header=HEADER))


def add_splines():
    wrapped = FIVE + FIVE[:3]
    for name, arguments in {
            "uniform": (8, 3, range(9), FIVE), "closed": (11, 3, range(12), wrapped),
            "from below 0": (11, 3, range(-3, 9), wrapped), "closed in name": (9, 3, CLAMPED, FIVE),
            "Bezier curves": (8, 3, [0] * 4 + [1] * 3 + [2] * 4, FIVE + [(7, 1), (8, 3)]),
            "degree 10": (8, 10, [0] * 11 + [1] + [2] * 11,
                          [(i, math.sin(i)) for i in range(12)]),
            "a line": (24, 1, [0, 0, 1, 1], FIVE[:2]),
            "no end": (8, 3, [0, 0, 0, 0, 1, 2, 2, 2, 3], FIVE),
            "small knots": (8, 3, [knot * 1e-13 for knot in CLAMPED], FIVE),
            "knots that fall": (8, 3, [0, 0, 0, 0, 0.5, 0.499999, 1, 1, 1, 1], FIVE + [(7, 7)]),
            "without knots": (8, 3, [], FIVE),
            "weights": (8, 3, CLAMPED, FIVE, [1, 2, 3, 1, 1])}.items():
        add("spline, " + name, drawing(spline(*arguments), header=HEADER))


def add_inserts():
    def insert(*pairs):
        return old("INSERT", 2, "B", 10, 1, 20, 1, *pairs)
    for x, y, turn, way in [(-1, 1, 30, 1), (1, -1, 30, 1), (-1, -1, 30, 1), (-1, 1, 30, -1),
                            (2, -2, 77, -1), (-2, 2.0000001, 10, 1), (2, 3, 765, 1)]:
        add(f"insert {x} {y} {turn} {way}", drawing(
            insert(41, x, 42, y, 43, abs(x), 50, turn, 210, 0, 220, 0, 230, way),
            block("B", ARCS, 10, 3, 20, 4)))
    for name, pairs in {"turned": (50, 30), "scaled": (50, 30, 41, 2, 42, 2, 43, 2),
                        "mirrored": (50, 30, 41, -2, 42, 1),
                        "the other way": (210, 0, 220, 0, 230, -1)}.items():
        add("array, " + name, drawing(insert(70, 3, 71, 2, 44, 7, 45, 9, *pairs), block("B", ARCS)))
    add("array of none", drawing(insert(70, 0, 71, 0, 44, 5, 45, 5), block("B", LINE)))
    add("names without a number", drawing(old("INSERT", 2, "*U1"), block("*U1", CIRCLE)))
    add("attributes", drawing(insert(66, 1) + old("ATTRIB", 10, 0, 20, 0, 40, 1, 1, "x", 2, "T") +
                              old("SEQEND") + CIRCLE, block("B", LINE)))
    add("data in any order", drawing(
        old("INSERT", 41, " 2", 10, "1.0", 20, "  1.0", 42, "2.0 ", 2, "b"), block("B", LINE)))


def add_files():
    both = drawing(LINE + CIRCLE)
    lines = both.splitlines()
    add("no end mark", section("ENTITIES", LINE + CIRCLE))
    add("no end of a section", groups(0, "SECTION", 2, "ENTITIES") + LINE + groups(0, "EOF"))
    add("more behind the end", both + "hello\nworld\n")
    add("a mark behind the end", both + "\x1a")
    add("blocks behind", section("ENTITIES", old("INSERT", 2, "B", 10, 1, 20, 1)) +
        section("BLOCKS", block("B", LINE)) + groups(0, "EOF"))
    add("comments", groups(999, "a", 0, "SECTION", 999, "b", 2, "ENTITIES", 999, "c") +
        old("LINE", 999, "d", 10, 0, 20, 0, 999, "e", 11, 1, 21, 1) +
        groups(999, "f", 0, "ENDSEC", 999, "g", 0, "EOF"))
    add("carriage returns", both.replace("\n", "\r"))
    add("two carriage returns", both.replace("\n", "\r\r\n"))
    add("padded codes", "".join(f"{line:>3}\n" if i % 2 == 0 else line + "\n"
                                for i, line in enumerate(lines)))
    add("mark of UTF-8", "\ufeff" + both)
    for number in ("1.", ".5", "+5", "1E+00", "-0", " 1 ", "1" + "0" * 30, "0." + "3" * 300,
                   "-1e-400", "001", "-.5e-1"):
        add("number " + number[:9], drawing(old("LINE", 10, 0, 20, 0, 11, number, 21, 1)))
    for release in ("AC1.50", "AC2.10", "AC1004", "AC1009", "AC1012", "AC1014", "AC9999", ""):
        add("release " + release, drawing(new("LINE", 10, 0, 20, 0, 11, 2, 21, 1),
                                          header=(9, "$ACADVER", 1, release)))


for _maker in (add_polylines, add_round_ones, add_splines, add_inserts, add_files):
    _maker()
