"""What ezdxf and GDAL make of a drawing: runs of points, by the handle of what stands in model space."""

from collections import defaultdict

import numpy as np
from ezdxf import path as ezdxf_path

try:
    from osgeo import gdal, ogr
    gdal.UseExceptions()
except ImportError:
    gdal = None

KINDS = {"LINE", "ARC", "CIRCLE", "ELLIPSE", "LWPOLYLINE", "POLYLINE", "SPLINE"}


def _entities_of(insert):
    for single in insert.multi_insert() if insert.mcount > 1 else [insert]:
        for entity in single.virtual_entities():
            if entity.dxftype() == "INSERT":
                yield from _entities_of(entity)
            else:
                yield entity


def _runs_of(entity, distance):
    kind = entity.dxftype()
    if kind == "POINT":
        return [np.array([entity.dxf.location], float)]
    if kind == "SPLINE":
        # make_path() gives Bezier curves, which other degrees than 3 and weights are not.
        return [np.array([point.xyz for point in entity.flattening(distance, 8)], float)]
    if kind == "LWPOLYLINE" or kind == "POLYLINE" and entity.is_2d_polyline:
        # make_path() has a Bezier curve for each quarter of a bulge's arc.
        parts = list(entity.virtual_entities())
        return [run for part in parts for run in _runs_of(part, distance)]
    # One Bezier curve for a quarter leaves a circle by 0.03 % of its radius; eight do not.
    path = ezdxf_path.make_path(entity, segments=8)
    run = np.array([point.xyz for point in path.flattening(distance)], float)
    return [run] if len(run) else []


def ezdxf_runs(doc, distance):
    """By ezdxf alone: virtual_entities(), multi_insert() and flattening()."""
    runs = defaultdict(list)
    for entity in doc.modelspace():
        drawn = _entities_of(entity) if entity.dxftype() == "INSERT" else [entity]
        for single in drawn:
            if single.dxftype() in KINDS or single.dxftype() == "POINT":
                runs[int(entity.dxf.handle, 16)] += _runs_of(single, distance)
    return runs


def gdal_runs(file, degrees=0.5):
    """By GDAL's driver; arcs in steps of so many degrees."""
    gdal.SetConfigOption("OGR_ARC_STEPSIZE", str(degrees))
    runs = defaultdict(list)
    source = ogr.Open(file)
    for feature in source.GetLayerByName("entities"):
        handle = feature.GetField("EntityHandle")
        geometry = feature.GetGeometryRef()
        if geometry is not None:
            _add(geometry, runs[int(handle, 16) if handle else 0])
    return runs


def _add(geometry, runs):
    if geometry.GetGeometryCount():
        for index in range(geometry.GetGeometryCount()):
            _add(geometry.GetGeometryRef(index), runs)
        return
    points = np.array(geometry.GetPoints(), float)
    if points.shape[1] == 2:
        points = np.column_stack([points, np.zeros(len(points))])
    runs.append(points)
