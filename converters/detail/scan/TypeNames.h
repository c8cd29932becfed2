#pragma once

#include "converters/Scan.h"

#include <optional>
#include <string_view>

namespace converters::scan {

/// The type of a name in a header: "float", "float32". Nothing for a name that is none.
std::optional<ScalarType> typeOfName(std::string_view name);

} // namespace converters::scan
