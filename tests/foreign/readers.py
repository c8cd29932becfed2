"""What ezdxf and GDAL make of a drawing: runs of points and names of layers, by the handle of what
stands in model space."""

import struct
from collections import defaultdict

import numpy as np
from ezdxf import path as ezdxf_path

try:
    from osgeo import gdal, ogr
    gdal.UseExceptions()
    gdal.PushErrorHandler("CPLQuietErrorHandler")
    # Each entity of a block by itself, with its layer and whether it is hidden.
    gdal.SetConfigOption("DXF_MERGE_BLOCK_GEOMETRIES", "NO")
except ImportError:
    gdal = None

KINDS = {"POINT", "LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE"}


class Runs:
    """Runs of points by key and by layer, its name in lower case."""

    def __init__(self):
        self.points = defaultdict(list)
        self.keys = set()

    def add(self, key, layer, runs):
        if runs:
            self.points[key, layer.casefold()] += runs
            self.keys.add(key)

    def of(self, key):
        """The runs by layer."""
        return {layer: runs for (one, layer), runs in self.points.items() if one == key}

    def all_of(self, key):
        return [run for runs in self.of(key).values() for run in runs]


# ezdxf

class Visibility:
    """Which entities of a drawing are shown, and on which layer."""

    def __init__(self, doc):
        self.layers = {layer.dxf.name.casefold(): layer for layer in doc.layers}

    def frozen(self, name):
        return name.casefold() in self.layers and self.layers[name.casefold()].is_frozen()

    def off(self, name):
        return name.casefold() in self.layers and self.layers[name.casefold()].is_off()

    def shown(self, entities, layer_of_insert=None):
        """(entity, layer) of all that is drawn, blocks taken apart."""
        for entity in entities:
            layer = entity.dxf.layer
            if layer == "0" and layer_of_insert is not None:
                layer = layer_of_insert
            if entity.dxf.get("invisible", 0) or self.frozen(layer):
                continue
            if entity.dxftype() == "INSERT":
                singles = entity.multi_insert() if entity.mcount > 1 else [entity]
                for single in singles:
                    yield from self.shown(single.virtual_entities(), layer)
            elif entity.dxftype() in KINDS and not self.off(layer):
                yield entity, layer


def _array(points):
    return np.array([point.xyz if hasattr(point, "xyz") else point for point in points], float)


def _flattened_ellipse(entity, distance):
    """Nothing where parameters are a multiple of a full turn apart, or chords of no length."""
    try:
        return _array(entity.flattening(distance / 4, 8))
    except ZeroDivisionError:
        return np.empty((0, 3))


def flattened(entity, distance):
    """Runs of an entity, by the flattening of ezdxf that is exact on its points."""
    kind = entity.dxftype()
    if kind == "POINT":
        return [_array([entity.dxf.location])]
    if kind == "LINE":
        return [_array([entity.dxf.start, entity.dxf.end])]
    if kind in ("ARC", "CIRCLE") and entity.dxf.radius > 0:
        # Of a small radius, its number of points has no bound below.
        points = entity.flattening(min(distance, entity.dxf.radius / 10))
        return [_array(points)]
    if kind == "SPLINE":
        # make_path() gives Bezier curves, which other degrees than 3 and weights are not. It looks
        # at the middles of chords alone: ask for more.
        # Weights make bends that four points to a knot span miss.
        return [_array(entity.flattening(distance / 4, 32 if len(entity.weights) else 16))]
    if kind == "ELLIPSE":
        run = _flattened_ellipse(entity, distance)
        if len(run):
            return [run]
    if kind == "LWPOLYLINE" or kind == "POLYLINE" and entity.is_2d_polyline:
        # make_path() has a Bezier curve for each quarter of a bulge's arc.
        parts = list(entity.virtual_entities())
        return [run for part in parts for run in flattened(part, distance)]
    if kind == "POLYLINE" and not entity.is_3d_polyline:
        return []
    run = _array(ezdxf_path.make_path(entity, segments=8).flattening(distance))
    return [run] if len(run) else []


def ezdxf_runs(doc, distance, entities=None):
    """By ezdxf alone: virtual_entities(), multi_insert() and flattening()."""
    runs = Runs()
    visibility = Visibility(doc)
    for entity in doc.modelspace() if entities is None else entities:
        for single, layer in visibility.shown([entity]):
            runs.add(int(entity.dxf.handle, 16), layer, flattened(single, distance))
    return runs


# GDAL

def gdal_runs(file, degrees=0.1):
    """By GDAL's driver; arcs in steps of so many degrees. It knows nothing of group 60."""
    gdal.SetConfigOption("OGR_ARC_STEPSIZE", str(degrees))
    runs = Runs()
    source = ogr.Open(file)
    for feature in source.GetLayer(0):
        geometry = feature.GetGeometryRef()
        style = feature.GetStyleString() or ""
        # Text has a label, areas have a brush; what is hidden has a colour that is transparent.
        if geometry is None or not style.startswith("PEN(c:#") or feature.GetField("PaperSpace"):
            continue
        if len(style.split("(c:#")[1].split(")")[0].split(",")[0]) == 8:
            continue
        handle = feature.GetField("EntityHandle")
        runs.add(int(handle, 16) if handle else 0, _name(feature.GetField("Layer")),
                 _runs_in(geometry))
    return runs


def _name(text):
    """GDAL takes names for one byte a character, which since 2007 they are not."""
    try:
        return text.encode("latin-1").decode("utf-8")
    except UnicodeError:
        return text


def _runs_in(geometry):
    if geometry.GetDimension() == 2:
        return []  # a face
    if geometry.GetGeometryCount():
        parts = (geometry.GetGeometryRef(i) for i in range(geometry.GetGeometryCount()))
        return [run for part in parts for run in _runs_in(part)]
    if geometry.IsEmpty():
        return []
    data = bytes(geometry.ExportToIsoWkb())
    kind = struct.unpack_from("<I", data, 1)[0]
    width = 3 if kind // 1000 == 1 else 2
    start = 5 if kind % 1000 == 1 else 9
    points = np.frombuffer(data, "<f8", offset=start).reshape(-1, width)
    if width == 2:
        points = np.column_stack([points, np.zeros(len(points))])
    return [points]
