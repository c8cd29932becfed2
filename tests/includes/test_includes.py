#!/usr/bin/env python3
"""Checks that includes.py finds what it is there to find."""

import unittest

from includes import faults


def faults_of(source, line):
    return faults({source: "#pragma once\n" + line + "\n"})


class Includes(unittest.TestCase):

    def assert_right(self, source, line):
        self.assertEqual(faults_of(source, line), [])

    def assert_wrong(self, source, line, reason):
        found = faults_of(source, line)
        self.assertEqual(len(found), 1, f"{source} includes {line}")
        self.assertIn(reason, found[0])
        self.assertTrue(found[0].startswith(source + ":2: "), found[0])

    def test_layers_include_those_below(self):
        self.assert_right("base/A.h", '#include "universal_log_interface/B.h"')
        self.assert_right("dxfeditor/A.h", '#include "base/stitching/B.h"')
        self.assert_right("converters/detail/ply/A.h", '#include "dxfeditor/B.h"')
        self.assert_right("tools/cloudconv/A.cpp", '#include "converters/B.h"')
        self.assert_right("python/native/A.cpp", '#include <dxfeditor/B.h>')

    def test_no_layer_includes_one_above(self):
        for source, header in [("universal_log_interface/A.h", "base/B.h"),
                               ("base/A.h", "dxfeditor/B.h"), ("base/A.h", "converters/B.h"),
                               ("dxfeditor/A.cpp", "converters/B.h"),
                               ("dxfeditor/detail/reading/A.cpp", "converters/B.h"),
                               ("converters/A.cpp", "tools/cloudconv/B.h"),
                               ("converters/A.cpp", "tests/support/B.h"),
                               ("tools/A.cpp", "python/native/B.h"),
                               ("python/native/A.cpp", "tests/support/B.h"),
                               ("benchmarks/A.cpp", "tests/system/B.h")]:
            self.assert_wrong(source, f'#include "{header}"', "must not know")
            self.assert_wrong(source, f"#include <{header}>", "must not know")

    def test_details_serve_their_folder_and_its_tests(self):
        header = '#include "dxfeditor/detail/walking/B.h"'
        self.assert_right("dxfeditor/A.cpp", header)
        self.assert_right("dxfeditor/text/A.cpp", header)
        self.assert_right("dxfeditor/detail/reading/A.cpp", header)
        self.assert_right("tests/dxfeditor/walking/A.cpp", header)
        for source in ["converters/A.cpp", "tools/cloudconv/A.cpp", "fuzz/A.cpp",
                       "benchmarks/A.cpp", "python/native/A.cpp", "examples/A.cpp",
                       "tests/converters/A.cpp", "tests/system/A.cpp", "tests/support/A.h"]:
            reason = "serves dxfeditor alone"
            self.assert_wrong(source, header, reason)
            self.assert_wrong(source, "  # include <dxfeditor/detail/B.h>", reason)

    def test_includes_are_written_from_the_root(self):
        self.assert_wrong("base/A.cpp", '#include "B.h"', "from the root")
        self.assert_wrong("base/stitching/A.cpp", '#include "../B.h"', "from the root")
        self.assert_right("base/A.cpp", "#include <vector>")
        self.assert_right("converters/A.cpp", "#include <pcl/point_cloud.h>")

    def test_every_include_of_a_file_is_looked_at(self):
        text = '#include "base/B.h"\n#include "tools/C.h"\n\n#include "python/D.h"\n'
        self.assertEqual([fault.split(": ")[0] for fault in faults({"dxfeditor/A.h": text})],
                         ["dxfeditor/A.h:2", "dxfeditor/A.h:4"])


if __name__ == "__main__":
    unittest.main()
