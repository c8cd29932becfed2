#pragma once

#include "converters/DrawingPath.h"

#include <string>

/// A unit as people write it, UTF-8: "mm"; empty for none.
std::string symbolOf(converters::LengthUnit unit);

/// The unit of a symbol; none for one that is not known.
converters::LengthUnit unitOf(const std::string& symbol);
