#pragma once

#include "converters/Scan.h"
#include "converters/detail/scan/Header.h"

#include <cstddef>
#include <optional>
#include <string>

namespace converters::scan {

/// Which properties of the vertices are what a point needs: indexes into their properties.
struct Roles {
    std::optional<std::size_t> x;
    std::optional<std::size_t> y;
    std::optional<std::size_t> z;
    std::optional<std::size_t> intensity;
};

/// Finds the properties, and sets the use of all that are kept: scalar ones, the first of a name.
///
/// @param vertices   their properties
/// @param intensity  name of the property to take; empty: a usual one
/// @return all but the intensity, which may be missing; vertices of which there are none may lack
///         the others, too
/// @throws Fault when a coordinate is missing, is a list or is there twice, or the property asked
///         for is missing or is a list
Roles assignRoles(ScanElement& vertices, const std::string& intensity);

} // namespace converters::scan
