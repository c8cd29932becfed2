#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A property line of a PLY header.
struct PlyPropertyLine {
    std::string type;
    std::string name;
};

/// An element of a PLY header.
struct PlyElementLine {
    std::string name;
    std::string count;
    std::vector<PlyPropertyLine> properties;
};

/// What a PLY header says, whether the library takes it or not.
struct PlyInventory {
    /// Whether the file begins as a PLY file does.
    bool isPly = false;
    /// As the file names it: "ascii", "binary_little_endian", "binary_big_endian".
    std::string format;
    std::vector<PlyElementLine> elements;
};

/// Reads a header for a description, without judging it. Stops at "end_header" or the first zero
/// byte.
PlyInventory plyInventoryOf(std::string_view bytes);
