#pragma once

#include "converters/DrawingPath.h"

#include <cstddef>
#include <cstdint>

/// Options that vary with the bytes of an input, so that one input always has the same; few points
/// and entities are allowed, so that no input takes long.
converters::PathOptions pathOptionsFor(const std::uint8_t* bytes, std::size_t size);

/// Reads the path of any bytes and ends the process where the result is not as promised.
void verifyReadPath(const std::uint8_t* bytes, std::size_t size);
