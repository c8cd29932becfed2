#pragma once

#include <cstdint>
#include <string>

/// A drawing of random objects that dxflib reads without coming to harm: headers, tables, blocks
/// and entities of all kinds, with groups in any order, comments, extended data, unknown codes,
/// numbers in many forms, and all line ends. The same seed gives the same text everywhere.
std::string randomDrawing(std::uint32_t seed, int mostObjects = 60);

/// `text` after a few random changes, such as swapped, lost, repeated and hostile lines and bytes.
std::string mutated(std::string text, std::uint32_t seed);
