"""Where ezdxf 0.18.1 and GDAL 3.6.2 are known to read an entity otherwise than the format has it; the
table in README.md says which is right.

Each rule is a function of an entity and the INSERTs that it is in, outermost first; it gives the
reason in words, or None.
"""


def scales_of(insert):
    return [insert.dxf.get(name, 1.0) for name in ("xscale", "yscale", "zscale")]


def stretched(insert):
    scales = [abs(scale) for scale in scales_of(insert)]
    return max(scales) - min(scales) > 1e-9 * max(scales)


def scaled(insert):
    return scales_of(insert) != [1.0, 1.0, 1.0]


def tilted(entity):
    """Whether its plane is not that of x and y."""
    return any(tuple(entity.dxf.get("extrusion", (0, 0, 1)))[:2])


def upright(entity):
    return not tilted(entity) and tuple(entity.dxf.get("extrusion", (0, 0, 1)))[2] > 0


def clamped(spline):
    knots, degree = list(spline.knots), spline.dxf.degree
    return knots[0] == knots[degree] and knots[-1] == knots[-degree - 1]


def ezdxf_of_spline(spline, inserts):
    if len(spline.control_points):
        return None if clamped(spline) else "unclamped knots"
    if not (spline.dxf.hasattr("start_tangent") and spline.dxf.hasattr("end_tangent")):
        return "fit points without tangents"
    return "fit points in a stretched block" if any(map(stretched, inserts)) else None


def places_of(entity):
    """Of the vertices of a polyline in its plane."""
    if entity.dxftype() == "LWPOLYLINE":
        return set(entity.get_points("xy"))
    return {tuple(vertex.dxf.location)[:2] for vertex in entity.vertices}


def far(ellipse, inserts):
    """Whether it lies a thousand times its size from the origin, in its block or where that is."""
    places = [ellipse.dxf.center] + [insert.dxf.insert for insert in inserts]
    return max(place.magnitude for place in places) > 1000 * ellipse.dxf.major_axis.magnitude


def of_ezdxf(entity, inserts):
    kind = entity.dxftype()
    if kind == "SPLINE":
        return ezdxf_of_spline(entity, inserts)
    if kind == "ELLIPSE" and abs(entity.dxf.ratio) < 0.05 and any(map(stretched, inserts)) and \
            far(entity, inserts):
        return "a flat ellipse in a stretched block"
    if kind == "POLYLINE" and entity.dxf.flags & 4 and \
            any(vertex.dxf.flags & 16 for vertex in entity.vertices):
        return "the frame of a polyline"
    if (kind == "LWPOLYLINE" or kind == "POLYLINE" and entity.is_2d_polyline) and \
            len(places_of(entity)) == 1:
        return "a polyline without extent"
    if kind == "INSERT" and any(map(stretched, inserts)):
        return "a block in a stretched block"
    if kind == "INSERT" and entity.mcount > 1 and any(map(scaled, inserts)):
        return "an array in a scaled block"
    return None


def bulges_of(entity):
    if entity.dxftype() == "LWPOLYLINE":
        return [bulge for (bulge,) in entity.get_points("b")]
    return [vertex.dxf.get("bulge", 0.0) for vertex in entity.vertices]


def height_lost(entity, inserts):
    """Whether GDAL drops the height: it takes a 2D POLYLINE's from its vertices, and has none to
    add that of a block to where an LWPOLYLINE says nothing of its own."""
    if entity.dxftype() == "LWPOLYLINE":
        return bool(inserts) and not entity.dxf.hasattr("elevation")
    return entity.dxftype() == "POLYLINE" and entity.is_2d_polyline and \
        bool(entity.dxf.get("elevation", (0, 0, 0))[2])


def of_gdal(entity, inserts):
    kind = entity.dxftype()
    if entity.dxf.get("invisible", 0):
        return "invisible"
    if kind == "ARC" and not -360 < entity.dxf.end_angle - entity.dxf.start_angle <= 360:
        return "angles more than a turn apart"
    if kind in ("LEADER", "MLINE", "DIMENSION"):
        return "lines of annotation"
    if kind == "SPLINE":
        return "a spline"
    if kind in ("LWPOLYLINE", "POLYLINE") and any(abs(bulge) > 1 for bulge in bulges_of(entity)):
        return "bulges above 1"
    if height_lost(entity, inserts) and any(map(tilted, (entity, *inserts))):
        return "heights in a tilted block"
    if kind == "INSERT" and inserts and not upright(entity):
        return "a block that is mirrored or tilted in another"
    return None


def all_in(entity, inserts=()):
    """(entity, INSERTs that it is in) of an entity of model space and all that it draws."""
    yield entity, inserts
    if entity.dxftype() == "INSERT" and entity.block() is not None:
        for inner in entity.block():
            yield from all_in(inner, (*inserts, entity))


def reasons(entity, rule):
    """The reasons by a rule for an entity of model space and all that it draws."""
    return {rule(*one) for one in all_in(entity)} - {None}


def loses_heights(entity):
    """Whether GDAL drops the height of something that an entity of model space draws."""
    return any(height_lost(*one) for one in all_in(entity))
