"""A drawing as other programs would have written it: the same groups spelled, ordered and accompanied
otherwise. What it shows stays the same, to the bit.

A drawing is a list of [code, value], bytes being characters of ISO 8859-1; a mutation is a function
of the list and a source of chance that gives the new list.
"""

PLAIN = {"POINT", "LINE", "ARC", "CIRCLE", "ELLIPSE", "INSERT"}
CURVES = PLAIN | {"LWPOLYLINE", "POLYLINE", "SPLINE"}
FLOATS = {*range(10, 60), *range(140, 148), *range(210, 240), *range(1010, 1060)}
INTEGERS = {*range(60, 80), *range(90, 100), *range(170, 180), *range(270, 290)}


def groups_of(text):
    lines = text.replace("\r\n", "\n").split("\n")
    return [[int(lines[i]), lines[i + 1]] for i in range(0, len(lines) - 1, 2)]


def text_of(groups, end="\n"):
    return "".join(f"{code:>3}{end}{value}{end}" for code, value in groups)


def objects_of(groups):
    """Runs of groups that begin with a 0."""
    starts = [i for i, group in enumerate(groups) if group[0] == 0] + [len(groups)]
    return [groups[a:b] for a, b in zip(starts, starts[1:])]


def each_object(groups, change):
    """Changes each object of BLOCKS and ENTITIES."""
    section = None
    result = []
    for one in objects_of(groups):
        if one[0][1] == "SECTION":
            section = one[1][1]
        if section in ("BLOCKS", "ENTITIES") and one[0][1] not in ("SECTION", "ENDSEC"):
            one = change(one)
        result += one
    return result


def is_float(code, value):
    return code in FLOATS and value.strip() not in ("", "nan", "inf", "-inf")


# Numbers

def exponents(groups, _):
    return [[code, f"{float(value):.16E}" if is_float(code, value) else value]
            for code, value in groups]


def short_numbers(groups, _):
    """1.0 as 1 and 0.5 as .5."""
    def short(value):
        text = repr(float(value))
        if "e" in text or "n" in text:
            return text
        text = text.rstrip("0").rstrip(".")
        return text.replace("0.", ".", 1) if text.lstrip("-").startswith("0.") else text or "0"
    return [[code, short(value) if is_float(code, value) else value] for code, value in groups]


def long_numbers(groups, _):
    def long(value):
        text = repr(float(value))
        return text if "e" in text else "+"[:value[0] != "-"] + text + "000000"
    return [[code, long(value) if is_float(code, value) else value] for code, value in groups]


def padded_values(groups, chance):
    def padded(code, value):
        if is_float(code, value) or code in INTEGERS:
            return " " * chance.randint(0, 6) + value.strip() + " " * chance.randint(0, 3)
        return value
    return [[code, padded(code, value)] for code, value in groups]


# Groups

def defaults_dropped(groups, _):
    """What has its default value is not written."""
    defaults = {60: 0, 67: 0, 62: 256, 39: 0, 48: 1, 370: -1, 38: 0, 43: 0}
    directions = {210: 0, 220: 0, 230: 1}

    def change(one):
        kind = one[0][1]
        values = {code: value for code, value in one}
        upright = all(float(values.get(code, value)) == value
                      for code, value in directions.items())
        gone = set()
        for code, value in one:
            if code in defaults and float(value) == defaults[code] and \
                    not (code in (38, 43) and kind != "LWPOLYLINE"):
                gone.add(code)
        if upright and kind in CURVES:
            gone |= set(directions)
        if kind == "INSERT":
            gone |= {code for code, value in ((41, 1), (42, 1), (43, 1), (50, 0), (70, 1),
                                              (71, 1), (44, 0), (45, 0), (30, 0))
                     if code in values and float(values[code]) == value}
        if kind in ("LINE", "POINT", "CIRCLE", "ARC"):
            gone |= {code for code in (30, 31) if code in values and float(values[code]) == 0}
        if kind == "LINE" and 31 in gone and 30 not in gone or kind == "LINE" and 30 in gone:
            # A point of two coordinates makes the other one flat, too, for some readers.
            gone -= {30, 31} if not {30, 31} <= gone else set()
        return [group for group in one if group[0] not in gone]
    return each_object(groups, change)


def markers_dropped(groups, _):
    """Without subclass markers and owners, as before R13."""
    return each_object(groups, lambda one: [group for group in one if group[0] not in (100, 330)])


def defaults_written(groups, _):
    def change(one):
        if one[0][1] not in CURVES:
            return one
        codes = {code for code, _ in one}
        more = [group for group in ([60, "0"], [67, "0"], [62, "256"], [370, "-1"], [48, "1.0"],
                                    [6, "BYLAYER"], [410, "Model"]) if group[0] not in codes]
        place = 1 + [code for code, _ in one].index(8)
        return one[:place] + more + one[place:]
    return each_object(groups, change)


def shuffled(groups, chance):
    """The groups of an entity in any order, where none is there twice."""
    def change(one):
        codes = [code for code, _ in one if code != 100]
        if one[0][1] not in PLAIN or len(set(codes)) != len(codes):
            return one
        rest = [group for group in one[1:] if group[0] != 100]
        chance.shuffle(rest)
        return one[:1] + rest
    return each_object(groups, change)


def comments(groups, chance):
    result = []
    for group in groups:
        if chance.random() < 0.1:
            result.append([999, chance.choice(["", "a comment", "0", "ENDSEC"])])
        result.append(group)
    return result


def reactors(groups, _):
    """Data of programs between braces: what is in it belongs to nobody else."""
    def change(one):
        place = [i for i, (code, _) in enumerate(one) if code == 5]
        if not place:
            return one
        data = [[102, "{ACAD_REACTORS"], [330, "1F"], [102, "}"], [102, "{ACAD_XDICTIONARY"],
                [360, "2F"], [102, "}"], [102, "{OTHER"], [10, "77.0"], [20, "78.0"], [40, "5.0"],
                [70, "1"], [42, "0.5"], [8, "nowhere"], [60, "1"], [102, "}"]]
        return one[:place[0] + 1] + data + one[place[0] + 1:]
    return each_object(groups, change)


def extended_data(groups, _):
    data = [[1001, "PROGRAM"], [1000, "some text"], [1002, "{"], [1070, "12"], [1071, "123456"],
            [1040, "3.5"], [1041, "1.0"], [1010, "1.0"], [1020, "2.0"], [1030, "3.0"],
            [1011, "1.0"], [1021, "2.0"], [1031, "3.0"], [1003, "0"], [1005, "1F"],
            [1004, "00FF"], [1002, "}"]]

    def change(one):
        return one if one[0][1] in ("ENDBLK", "EOF") else one + data
    return each_object(groups, change)


# Objects

SQUARE = [[10, "0.0"], [20, "0.0"], [10, "9.0"], [20, "0.0"], [10, "9.0"], [20, "9.0"]]
OTHERS = [
    [[0, "ACAD_PROXY_ENTITY"], [8, "0"], [90, "498"], [91, "500"], [92, "8"],
     [310, "0102030405060708"], [94, "0"]],
    [[0, "HATCH"], [8, "0"], [100, "AcDbHatch"], [10, "0.0"], [20, "0.0"], [30, "0.0"],
     [2, "SOLID"], [70, "1"], [71, "0"], [91, "1"], [92, "2"], [72, "1"], [73, "1"], [93, "3"],
     *SQUARE, [97, "0"], [75, "0"], [76, "1"], [98, "0"]],
    [[0, "MLINE"], [8, "0"], [2, "STANDARD"], [40, "1.0"], [70, "0"], [71, "1"], [72, "2"],
     [73, "1"], [10, "0.0"], [20, "0.0"], [11, "1.0"], [21, "1.0"], [12, "1.0"], [22, "0.0"],
     [74, "2"], [41, "0.5"], [41, "0.0"], [75, "0"]],
    [[0, "LEADER"], [8, "0"], [3, "STANDARD"], [71, "1"], [76, "3"], *SQUARE],
    [[0, "DIMENSION"], [8, "0"], [2, "*D999"], [10, "1.0"], [20, "1.0"], [13, "0.0"],
     [23, "0.0"], [14, "5.0"], [24, "5.0"], [70, "32"]],
    [[0, "WIPEOUT"], [8, "0"], [100, "AcDbWipeout"], [10, "0.0"], [20, "0.0"], [11, "1.0"],
     [21, "0.0"], [12, "0.0"], [22, "1.0"], [71, "2"], [91, "2"], [14, "0.0"], [24, "0.0"],
     [14, "1.0"], [24, "1.0"]],
    [[0, "REGION"], [8, "0"], [70, "1"], [1, "rmmhm n o n"], [3, "more of it"], [1, "0"]],
    [[0, "3DSOLID"], [8, "0"], [70, "1"], [1, "LINE"], [1, "0"], [3, "SECTION"]],
    [[0, "ACAD_TABLE"], [8, "0"], [2, "*T1"], [10, "1.0"], [20, "1.0"], [91, "1"], [92, "1"],
     [141, "3.0"], [142, "5.0"], [171, "1"], [1, "text"]],
    [[0, "IMAGE"], [8, "0"], [10, "0.0"], [20, "0.0"], [11, "0.1"], [21, "0.0"], [12, "0.0"],
     [22, "0.1"], [13, "640.0"], [23, "480.0"], [340, "FF1"]],
    [[0, "MTEXT"], [8, "0"], [10, "0.0"], [20, "0.0"], [40, "2.5"], [1, "text"],
     [101, "Embedded Object"], [70, "1"], [10, "1.0"], [20, "0.0"], [11, "5.0"], [21, "5.0"],
     [40, "0.0"], [46, "0.0"], [71, "2"]],
    [[0, "MULTILEADER"], [8, "0"], [270, "2"], [300, "CONTEXT_DATA{"], [40, "1.0"],
     [10, "1.0"], [20, "1.0"], [302, "LEADER{"], [10, "2.0"], [20, "2.0"], [304, "LEADER_LINE{"],
     *SQUARE, [305, "}"], [303, "}"], [301, "}"], [340, "5A"]],
    [[0, "VIEWPORT"], [8, "0"], [10, "0.0"], [20, "0.0"], [40, "9.0"], [41, "9.0"], [68, "1"]],
    [[0, "OLE2FRAME"], [8, "0"], [70, "2"], [3, "OLE"], [10, "0.0"], [20, "0.0"], [90, "2"],
     [310, "0102"], [1, "OLE"]],
    [[0, "ACDBPOINTCLOUDEX"], [8, "0"], [10, "1.0"], [20, "1.0"]],
]


def other_entities(groups, chance):
    """Between the entities, those that are no path, with coordinates that look like one's."""
    def change(one):
        # Not among the vertices of a polyline or the attributes of an insert.
        if chance.random() < 0.5 or one[0][1] not in CURVES | {"TEXT", "MTEXT"}:
            return one
        return [*chance.choice(OTHERS), *one]
    return each_object(groups, change)


def attributes(groups, _):
    """INSERTs that are followed by attributes."""
    def change(one):
        if one[0][1] != "INSERT" or any(code == 66 for code, _ in one):
            return one
        attribute = [[0, "ATTRIB"], [8, "0"], [10, "1.0"], [20, "2.0"], [40, "2.5"], [1, "value"],
                     [2, "TAG"], [70, "0"], [101, "Embedded Object"], [10, "3.0"], [40, "1.0"]]
        return one + [[66, "1"]] + attribute + attribute + [[0, "SEQEND"], [8, "0"]]
    return each_object(groups, change)


def case_changed(groups, _):
    """Names in another case than where they are defined."""
    def change(one):
        names = (8, 2) if one[0][1] == "INSERT" else (8,)
        return [[code, value.upper() if code in names and value.isascii() and "\\" not in value
                 else value] for code, value in one]
    return each_object(groups, change)


# Sections

def sections_of(groups):
    sections, one = [], []
    for group in groups:
        if group == [0, "SECTION"]:
            one = []
        one.append(group)
        if group == [0, "ENDSEC"]:
            sections.append(one)
            one = []
    return sections


def sections_turned(groups, _):
    """The sections in the opposite order, without those that only programs read."""
    kept = [one for one in sections_of(groups) if one[1][1] not in ("CLASSES", "OBJECTS")]
    header = [one for one in kept if one[1][1] == "HEADER"]
    rest = [one for one in kept if one[1][1] != "HEADER"]
    return [group for one in header + rest[::-1] for group in one] + [[0, "EOF"]]


def tables_thinned(groups, _):
    """Without the tables of anything but layers, and of layers only those that are not plain."""
    result = []
    for one in objects_of(groups):
        values = dict(one)
        if one[0][1] in ("LTYPE", "STYLE", "APPID", "DIMSTYLE", "UCS", "VIEW", "VPORT"):
            continue
        if one[0][1] == "LAYER" and not int(values.get(70, 0)) & 1 and int(values.get(62, 7)) == 7:
            continue
        result += one
    return result


def anonymous_blocks(groups, _):
    """Blocks under names as programs give them."""
    names = {}
    for one in objects_of(groups):
        name = dict(one).get(2, "")
        if one[0][1] == "BLOCK" and not name.startswith("*"):
            names[name.casefold()] = "*" + "UDEXT"[len(names) % 5] + str(9000 + len(names))

    def change(one):
        if one[0][1] not in ("BLOCK", "INSERT", "BLOCK_RECORD"):
            return one
        return [[code, names.get(value.casefold(), value) if code in (2, 3) else value]
                for code, value in one]
    return [group for one in objects_of(groups) for group in change(one)]


MUTATIONS = [exponents, short_numbers, long_numbers, padded_values, defaults_dropped,
             markers_dropped, defaults_written, shuffled, comments, reactors, extended_data,
             other_entities, attributes, case_changed, sections_turned, tables_thinned,
             anonymous_blocks]


# The text

def with_line_ends(text, chance):
    """Other line ends, other blanks around group codes, blank lines before some; perhaps something
    behind the end."""
    lines = text.split("\n")[:-1]
    if chance.random() < 0.5:
        for i in range(0, len(lines) - 1, 2):
            lines[i] = " " * chance.randint(0, 5) + lines[i].strip() + " " * chance.choice([0, 0, 2])
    end = chance.choice(["\n", "\r\n", "\r"])
    if chance.random() < 0.2:
        lines = [chance.choice(["", "  "]) + end + line
                 if i % 2 == 0 and chance.random() < 0.1 else line
                 for i, line in enumerate(lines)]
    start = chance.choice(["", "", "\xef\xbb\xbf"]) if text.isascii() else ""
    behind = chance.choice(["", "", end, end + end, "\x1a", "\0" * 100])
    return start + end.join(lines) + end + behind


def rewritten(text, chance):
    """(the names of some mutations, the text after them)."""
    groups = groups_of(text)
    # Those that add groups come behind the one that wants each of them once.
    chosen = sorted(chance.sample(MUTATIONS, chance.randint(1, 5)), key=MUTATIONS.index)
    for mutation in chosen:
        groups = mutation(groups, chance)
    return [mutation.__name__ for mutation in chosen], with_line_ends(text_of(groups), chance)
