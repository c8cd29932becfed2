#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// What a scan is made of.
struct ScanKind {
    /// Double coordinates, colours and normals; else float coordinates and intensity.
    bool isRich;
    /// Two triangles for each point behind the points.
    bool hasFaces;
    /// "ascii", "binary_little_endian" or "binary_big_endian".
    const char* format;
};

/// Makes the PLY file of `size` random points.
std::vector<unsigned char> scanFileOf(const ScanKind& kind, std::size_t size);

/// Bytes before the points.
std::size_t headerSizeOf(const std::vector<unsigned char>& file);
