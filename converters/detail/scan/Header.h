#pragma once

#include "converters/Scan.h"
#include "converters/detail/input/ByteWindow.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace converters::scan {

/// A line of the header that does not belong there and was passed over.
struct OddLine {
    std::uint64_t line;
    /// In words: "'propery' is no keyword of a header".
    std::string fault;
};

/// What a header says.
struct Header {
    /// Nothing when it does not say.
    std::optional<ScanFormat> format;
    /// Their properties are all unused yet.
    std::vector<ScanElement> elements;
    /// Index into `elements`.
    std::optional<std::size_t> vertices;
    std::vector<std::string> comments;
    std::vector<std::string> objInfo;
    /// Of "obj_info num_cols" and "num_rows"; 0 when not given.
    std::uint64_t columns = 0;
    std::uint64_t rows = 0;
    /// The number of the line behind the header.
    std::uint64_t bodyLine = 1;
    /// Whether all lines ended with CR LF.
    bool endsWithPairs = false;
    /// The first one. A file with such a line is taken as long as its body is just what the other
    /// lines declare: the line may have been meant to declare more.
    std::optional<OddLine> oddLine;
};

/// Takes the header from the start of a file, and leaves the window at the first byte of the body.
/// @throws Fault
Header readHeader(input::ByteWindow& window);

} // namespace converters::scan
