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


def _run_of(entity, distance):
    if entity.dxftype() == "POINT":
        return np.array([entity.dxf.location], float)
    if entity.dxftype() == "SPLINE":
        # make_path() gives Bezier curves, which other degrees than 3 and weights are not.
        return np.array([point.xyz for point in entity.flattening(distance, 8)], float)
    # One Bezier curve for a quarter leaves a circle by 0.03 % of its radius; eight do not.
    path = ezdxf_path.make_path(entity, segments=8)
    return np.array([point.xyz for point in path.flattening(distance)], float)


def ezdxf_runs(doc, distance):
    """By ezdxf alone: virtual_entities(), multi_insert() and flattening()."""
    runs = defaultdict(list)
    for entity in doc.modelspace():
        drawn = _entities_of(entity) if entity.dxftype() == "INSERT" else [entity]
        for single in drawn:
            if single.dxftype() in KINDS or single.dxftype() == "POINT":
                run = _run_of(single, distance)
                if len(run):
                    runs[int(entity.dxf.handle, 16)].append(run)
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
