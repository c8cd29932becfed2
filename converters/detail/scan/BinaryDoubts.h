#pragma once

#include "converters/Scan.h"
#include "converters/detail/scan/Columns.h"

#include <cstddef>
#include <string_view>

/// What tells that the bytes of a body are not the binary numbers that its header speaks of.
namespace converters::scan {

/// Whether bytes that are said to be binary are numbers in text.
bool isNumberText(std::string_view bytes);

/// Whether bytes that are said to be binary have gone through a program that takes all files for
/// text: they are characters in UTF-8, many of which only such a program makes.
bool isConvertedText(std::string_view bytes);

/// Whether coordinates make sense in the other byte order alone: there, all of them are of usual
/// magnitude; as the header has it, most are far beyond or next to nothing.
///
/// @param element  the vertices, without lists
/// @param records  `count` of them, as in the file
/// @param isSwapped  whether the byte order that the header speaks of is not the processor's
bool areOfOtherByteOrder(const ScanElement& element, RecordBytes records, std::size_t count,
                         bool isSwapped);

} // namespace converters::scan
