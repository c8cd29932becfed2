#!/usr/bin/python3
"""scans.py DUMP READER [FOLDER]: random scans, read by the program DUMP and by another reader.

READER is numpy (a reader of a page, here), open3d, vtk, broken (files that have to be refused) or
samples (the PLY files below FOLDER). The exit status is 77 where the reader is not installed.
"""

import json
import os
import random
import subprocess
import sys
import tempfile

try:
    import numpy as np
except ImportError:
    print("python3-numpy is not installed")
    sys.exit(77)

DTYPES = {"char": "i1", "int8": "i1", "uchar": "u1", "uint8": "u1", "short": "i2", "int16": "i2",
          "ushort": "u2", "uint16": "u2", "int": "i4", "int32": "i4", "uint": "u4", "uint32": "u4",
          "float": "f4", "float32": "f4", "double": "f8", "float64": "f8"}
EXTRA = {"bool": "u1", "double64": "f8", "int64": "i8", "uint64": "u8"}
ORDERS = {"binary_little_endian": "<", "binary_big_endian": ">", "ascii": "="}


# --- a plain reader ---------------------------------------------------------------------------

class Element:
    """An element of a header: properties are (name, type) or (name, count type, item type)."""

    def __init__(self, name, count):
        self.name = name
        self.count = int(count)
        self.properties = []


def read_header(data):
    """Format, elements and where the body begins. Lines end as the first one does."""
    end = b"\r\n" if data[3:5] == b"\r\n" else data[3:4]
    place = 0
    form, elements = None, []
    while True:
        stop = data.index(end, place)
        words = data[place:stop].decode("latin1").split()
        place = stop + len(end)
        if words[:1] == ["format"]:
            form = words[1]
        elif words[:1] == ["element"]:
            elements.append(Element(words[1], words[2]))
        elif words[:2] == ["property", "list"]:
            elements[-1].properties.append((words[4], words[2], words[3]))
        elif words[:1] == ["property"]:
            elements[-1].properties.append((words[2], words[1]))
        elif words[:1] == ["end_header"]:
            return form, elements, place


def number_of(text, dtype):
    return np.dtype(dtype).type(text) if dtype[0] == "f" else np.dtype(dtype).type(int(float(text)))


def read_vertices(data):
    """The vertices' scalar properties, name -> array, by the plainest way there is."""
    form, elements, place = read_header(data)
    types = {**DTYPES, **EXTRA}
    order = ORDERS[form]
    tokens = iter(data[place:].split()) if form == "ascii" else None

    def take(kind):
        nonlocal place
        if tokens is not None:
            return number_of(next(tokens).decode(), types[kind])
        dtype = np.dtype(order + types[kind])
        value = np.frombuffer(data, dtype, 1, place)[0]
        place += dtype.itemsize
        return value

    for element in elements:
        columns = {prop[0]: [] for prop in element.properties if len(prop) == 2}
        for _ in range(element.count):
            for prop in element.properties:
                if len(prop) == 2:
                    columns[prop[0]].append(take(prop[1]))
                else:
                    for _ in range(int(take(prop[1]))):
                        take(prop[2])
        if element.name == "vertex":
            kinds = dict(prop for prop in element.properties if len(prop) == 2)
            return {name: np.array(values, types[kinds[name]])
                    for name, values in columns.items()}
    return {}


# --- random files -----------------------------------------------------------------------------

class Maker:
    """Makes random files that the other reader takes."""

    def __init__(self, rng, reader):
        self.rng = rng
        self.plain = reader in ("open3d", "vtk")
        self.types = {**DTYPES, **({} if self.plain else EXTRA)}

    def kind(self, plain=False):
        if plain or self.rng.random() < 0.5:
            return self.rng.choice(["float", "double", "float32", "float64"])
        return self.rng.choice(list(self.types))

    def value(self, kind):
        dtype = np.dtype(self.types[kind])
        if dtype.kind == "f":
            value = dtype.type(self.rng.choice([self.rng.uniform(-1000, 1000), 0.0, -0.5,
                                                self.rng.uniform(4e6, 6e6)]))
            if not self.plain and self.rng.random() < 0.05:
                value = dtype.type(self.rng.choice([np.nan, np.inf, -np.inf]))
            return value
        info = np.iinfo(dtype)
        most = min(info.max, 2 ** 53)
        return dtype.type(self.rng.choice([0, self.rng.randint(max(info.min, -most), most), most]))

    def text(self, value, kind):
        if np.dtype(self.types[kind]).kind != "f":
            return str(value)
        style = self.rng.randrange(4)
        return (repr(value.item()) if self.types[kind] == "f8" and style == 0
                else str(value) if style < 2
                else "%.17g" % value if style == 2 else "%.17E" % value)

    def element(self, name):
        element = Element(name, self.rng.choice([0, 1, 2, 5, 30]))
        if name == "vertex":
            element.count += 1
            coordinates = [(n.upper() if not self.plain and self.rng.random() < 0.1 else n,
                            self.kind()) for n in "xyz"]
            others = [(n, self.kind()) for n in
                      ("red", "nx", "intensity", "time", "scalar_C2C")[:self.rng.randrange(6)]]
            element.properties = coordinates + others
            if self.rng.random() < 0.5 and not self.plain:
                self.rng.shuffle(element.properties)
        elif name == "face":
            element.properties = [("vertex_indices", "uchar", "int")]
        else:
            # VTK falls over an element without properties.
            element.properties = [("a%d" % i, self.kind())
                                  for i in range(self.rng.randrange(1 if self.plain else 0, 4))]
        if not self.plain:
            for i in range(self.rng.choice([0, 0, 1, 2])):
                element.properties.insert(self.rng.randrange(len(element.properties) + 1),
                                          ("l%d" % i, self.kind(), self.kind()))
        return element

    def elements(self):
        names = ["vertex"]
        # VTK and Open3D read what they know by its place.
        if not self.plain:
            names = self.rng.choice([[], ["camera"], ["face", "empty"]]) + names
        return [self.element(name) for name in names + self.rng.choice([[], ["face"], ["edge"]])]

    def make(self):
        form = self.rng.choice(list(ORDERS))
        elements = self.elements()
        end = self.rng.choice(["\n", "\n", "\r\n"] + ([] if self.plain else ["\r"]))
        lines = ["ply", "format %s 1.0" % form, "comment made at random"]
        for element in elements:
            lines.append("element %s %d" % (element.name, element.count))
            lines += ["property %s%s %s" % ("list " if len(p) == 3 else "", " ".join(p[1:]), p[0])
                      for p in element.properties]
        body = b"".join(self.body(element, form, end) for element in elements)
        return (end.join(lines + ["end_header"]) + end).encode() + body

    def body(self, element, form, end):
        order = ORDERS[form]
        parts = []

        def put(value, kind):
            if form == "ascii":
                parts.append(self.text(value, kind).encode() + b" ")
            else:
                parts.append(np.array(value, order + self.types[kind]).tobytes())

        for _ in range(element.count):
            for prop in element.properties:
                if len(prop) == 2:
                    put(self.value(prop[1]), prop[1])
                    continue
                count = 3 if prop[0] == "vertex_indices" else self.rng.randrange(6)
                put(np.dtype(self.types[prop[1]]).type(count), prop[1])
                for _ in range(count):
                    value = 0 if prop[0] == "vertex_indices" else self.value(prop[2])
                    put(np.dtype(self.types[prop[2]]).type(value), prop[2])
            if form == "ascii" and element.properties:
                parts[-1] = parts[-1].rstrip(b" ") + end.encode()
        return b"".join(parts)


# --- comparing --------------------------------------------------------------------------------

class Scan:
    """What DUMP made of a file."""

    def __init__(self, path, line):
        self.path = path
        for key, value in json.loads(line).items():
            setattr(self, key, value)
        self.xyzi = np.fromfile(path + ".points", "f4").reshape(-1, 4)
        dtype = np.dtype({"names": [f[0] for f in self.fields],
                          "formats": [{**DTYPES, **EXTRA}[f[1]] for f in self.fields],
                          "offsets": [f[2] for f in self.fields],
                          "itemsize": max(self.size, 1)}) if self.fields else None
        self.records = np.fromfile(path + ".records", dtype) if dtype else None


def dump(program, paths):
    """Runs DUMP on files."""
    lines = []
    for first in range(0, len(paths), 500):
        lines += subprocess.run([program] + paths[first:first + 500], check=True,
                                stdout=subprocess.PIPE).stdout.decode().splitlines()
    return [Scan(path, line) for path, line in zip(paths, lines)]


def same(a, b):
    with np.errstate(all="ignore"):
        return np.array_equal(np.asarray(a, "f8"), np.asarray(b, "f8"), equal_nan=True)


def check(condition, scan, what):
    if not condition:
        with open(scan.path, "rb") as file:
            print(file.read(1500))
        sys.exit("%s: %s (%s)" % (scan.path, what, scan.reason))


def check_numpy(scan, data):
    columns = read_vertices(data)
    check(scan.success, scan, "refused")
    check(list(columns) == [f[0] for f in scan.fields], scan, "fields")
    for name, values in columns.items():
        check(same(scan.records[name], values), scan, "property " + name)
    lower = {name.lower(): name for name in columns}
    with np.errstate(all="ignore"):
        for i, name in enumerate("xyz"):
            check(same(scan.xyzi[:, i], columns[lower[name]].astype("f4")), scan, name)
        if "intensity" in columns:
            check(same(scan.xyzi[:, 3], columns["intensity"].astype("f4")), scan, "intensity")


def check_points(scan, points):
    check(scan.success, scan, "refused")
    check(len(points) == scan.points, scan, "%d points" % len(points))
    check(same(scan.xyzi[:, :3], np.asarray(points).astype("f4").reshape(-1, 3)), scan, "points")


def open3d_reader():
    import open3d
    open3d.utility.set_verbosity_level(open3d.utility.VerbosityLevel.Error)
    return lambda path: np.asarray(open3d.io.read_point_cloud(
        path, format="ply", remove_nan_points=False, remove_infinite_points=False).points)


def vtk_reader():
    from vtkmodules.util.numpy_support import vtk_to_numpy
    from vtkmodules.vtkIOPLY import vtkPLYReader

    def read(path):
        reader = vtkPLYReader()
        reader.SetFileName(path)
        reader.Update()
        return vtk_to_numpy(reader.GetOutput().GetPoints().GetData())
    return read


# --- files that are broken --------------------------------------------------------------------

def broken_versions(rng, data):
    """Files that no reader can give all points of."""
    form, elements, body = read_header(data)
    vertex = next(e for e in elements if e.name == "vertex")
    names = [p[0] for p in vertex.properties if p[0].lower() in "xyz"]
    header = data[:body]
    yield b"", "empty"
    yield data[1:], "no magic"
    yield b"\x89PNG\r\n\x1a\n" + data, "a picture"
    yield data[:rng.randrange(body)], "cut in the header"
    yield header.replace(b"format", b"formal") + data[body:], "no format"
    yield header.replace(b"element vertex", b"element vortex") + data[body:], "no vertices"
    yield header.replace(b" 1.0", b" 2.0", 1) + data[body:], "another version"
    yield header.replace(b"element vertex", b"element vertex -", 1) + data[body:], "a count"
    for name in names:
        yield header.replace((" %s" % name).encode() + data[3:4], b" w" + data[3:4]) + data[body:], \
            "no " + name
    last = [e for e in elements if e.properties and e.count][-1]
    line = ("element %s %d" % (last.name, last.count)).encode()
    more = ("element %s %d" % (last.name, last.count + 1)).encode()
    yield header.replace(line, more, 1) + data[body:], "one more record"
    yield header.replace(line, ("element %s 18446744073709551615" % last.name).encode(), 1) \
        + data[body:], "more records than there are bytes"
    if form == "ascii":
        tokens = data[body:].split(b" ")
        place = rng.randrange(len(tokens))
        for word in (b"x", b"1,5", b"0x10", b"1.5.5", b"1e", b"--1"):
            changed = tokens[:place] + [word + b" " + tokens[place]] + tokens[place + 1:]
            yield header + b" ".join(changed), "a word"
        yield header + data[body:].rstrip().rsplit(None, 1)[0], "without the last value"
    else:
        yield data[:-1], "without the last byte"
        yield data[:rng.randrange(body, len(data))], "cut in the body"


def main():
    program, reader = sys.argv[1:3]
    rng = random.Random(int(os.environ.get("CONVERTERS_SCAN_SEED", "1")))
    effort = int(os.environ.get("CONVERTERS_TEST_EFFORT", "1"))
    try:
        read = {"open3d": open3d_reader, "vtk": vtk_reader}.get(reader, lambda: None)()
    except ImportError:
        print("python3-%s is not installed" % reader)
        sys.exit(77)

    with tempfile.TemporaryDirectory() as folder:
        files = {}

        def add(data, note=""):
            path = os.path.join(folder, "scan%d.ply" % len(files))
            files[path] = (data, note)
            with open(path, "wb") as file:
                file.write(data)

        if reader == "samples":
            if not os.path.isdir(sys.argv[3]):
                print("there are no samples in", sys.argv[3])
                sys.exit(77)
            for root, _, names in os.walk(sys.argv[3]):
                for name in sorted(names):
                    if name.endswith(".ply"):
                        with open(os.path.join(root, name), "rb") as file:
                            add(file.read(), name)
        else:
            maker = Maker(rng, reader)
            for _ in range({"broken": 60}.get(reader, 400) * effort):
                data = maker.make()
                if reader == "broken":
                    for version, how in broken_versions(rng, data):
                        add(version, how)
                else:
                    add(data)

        for scan in dump(program, list(files)):
            data, note = files[scan.path]
            if reader == "broken":
                check(not scan.success and scan.reason, scan, "taken: " + note)
            elif read is None:
                check_numpy(scan, data)
            else:
                check_points(scan, read(scan.path))
        print(len(files), "files compared")


if __name__ == "__main__":
    main()
