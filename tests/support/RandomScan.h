#pragma once

#include "converters/Scan.h"
#include "tests/support/Random.h"

#include <cstddef>
#include <string>
#include <vector>

/// A PLY file of random layout and what it says.
struct RandomScan {
    std::string file;
    converters::ScanFormat format = converters::ScanFormat::ascii;
    /// The scalar properties of the vertices, in the order of the file.
    std::vector<converters::ScanProperty> properties;
    /// Of each vertex, the numbers of these properties. Types of eight bytes hold whole numbers
    /// that a double holds exactly.
    std::vector<std::vector<double>> vertices;
    std::size_t width = 0;
    std::size_t height = 0;
    /// Where the body begins, and where the last number of the last record begins: without it, the
    /// file is broken. The same when no record has a number.
    std::size_t body = 0;
    std::size_t lastNumber = 0;
};

/// What a random scan may have.
struct RandomScanRules {
    /// What fromPly() takes and reads right: ASCII or binary little-endian, no element but the
    /// vertices, no lists, float coordinates and intensity, a record a line.
    bool forFromPly = false;
    std::size_t mostVertices = 30;
};

RandomScan randomScan(Random& random, const RandomScanRules& rules = {});
