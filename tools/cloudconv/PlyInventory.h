#pragma once

#include <cstdint>
#include <optional>
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
    /// As the line has it, a number or not.
    std::string count;
    std::vector<PlyPropertyLine> properties;

    /// The count; nothing when it is no number.
    std::optional<std::uint64_t> number() const;
};

/// What a PLY header says, whether the library takes it or not.
struct PlyInventory {
    /// Whether the file begins as a PLY file does.
    bool isPly = false;
    /// Whether the header ends.
    bool hasEnd = false;
    /// As the file names it: "ascii", "binary_little_endian", "binary_big_endian".
    std::string format;
    std::vector<PlyElementLine> elements;
};

/// Reads a header for a description, without judging it: its lines and words are those of the
/// library. Stops at "end_header" or the first zero byte.
PlyInventory plyInventoryOf(std::string_view bytes);
