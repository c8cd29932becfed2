#pragma once

#include "converters/Scan.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace converters::scan {

/// Bytes of an element's scalar properties: those of a binary record without lists.
std::size_t scalarBytes(const ScanElement& element);

/// For each property its number among the scalar ones, lists taking none.
std::vector<std::size_t> scalarOffsets(const ScanElement& element);

bool hasLists(const ScanElement& element);

/// The least bytes that a record takes in a file of the format.
std::uint64_t leastBytes(const ScanElement& element, ScanFormat format);

/// Whether binary numbers of the format have not the byte order of the processor.
bool isSwapped(ScanFormat format);

/// "the file ends after 1,203 of 5,000 vertices"
std::string endsAfter(const ScanElement& element, std::uint64_t records);

} // namespace converters::scan
