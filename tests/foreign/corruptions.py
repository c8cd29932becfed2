"""Ways to spoil a path, each of which every comparison has to find. Each is a function of a path, the
index of one of its entities and the tolerance; it spoils the path and says whether it could."""

import numpy as np

import comparison


def rows_of(path, entity):
    return np.flatnonzero(path.pieces[:, 4] == entity)


def runs_of(path, entity):
    return [path.points[first:last + 1] for first, last in path.pieces[rows_of(path, entity), :2]]


def drop_entity(path, entity, _):
    path.pieces = np.delete(path.pieces, rows_of(path, entity), axis=0)
    return True


def draw_twice(path, entity, tolerance):
    length = comparison.length_of(runs_of(path, entity))
    path.pieces = np.concatenate([path.pieces, path.pieces[rows_of(path, entity)]])
    return length > 20 * tolerance + 0.02 * path.dump["length"]


def move_point(path, entity, tolerance):
    """To the side, by three tolerances."""
    first, last = path.pieces[rows_of(path, entity)[0], :2]
    middle = (first + last + 1) // 2
    along = path.points[last] - path.points[first]
    if last - first > 1:
        along = path.points[middle + 1 if middle < last else middle] - path.points[middle - 1]
    side = np.array([-along[1], along[0], 0.0])
    if not side.any():
        side = np.array([1.0, 0.0, 0.0])
    path.points[middle] += 3 * tolerance * side / np.linalg.norm(side)
    return True


def swap_layer(path, entity, _):
    row = path.dump["entities"][entity]
    row[3] = (row[3] + 1) % len(path.dump["layers"])
    return len(path.dump["layers"]) > 1


def skip_points(path, entity, tolerance):
    """Chords four times as long; where a curve has few points they may do."""
    for row in rows_of(path, entity):
        first, last = path.pieces[row, :2]
        if last - first >= 16:
            run = path.points[first:last + 1]
            path.pieces[row, :2] = len(path.points), len(path.points) + len(run[::8]) - 1
            path.points = np.concatenate([path.points, run[::8]])
            return comparison.along_chords(run, run[::8]) > 2 * tolerance
    return False


def swell(path, entity, tolerance):
    """By one in a hundred about the first point of all."""
    runs = runs_of(path, entity)
    size = np.ptp(np.concatenate(runs), axis=0)[:2].max()
    for run in runs:
        run += 0.01 * (run - runs[0][0])
    return size > 400 * tolerance


CORRUPTIONS = [drop_entity, draw_twice, move_point, swap_layer, skip_points, swell]
