#pragma once

#include "converters/DrawingPath.h"
#include "converters/detail/drawing/dxf/Drawing.h"

#include <cstdint>
#include <string_view>

namespace converters::drawing {

/// What begins with a group 0.
enum class ObjectKind : std::uint8_t {
    // What sections and blocks are made of.
    section,
    endOfSection,
    endOfFile,
    layer,
    blockRecord,
    block,
    endOfBlock,
    dictionary,
    spatialFilter,
    // Entities, to `insert` such that draw something to follow.
    point,
    line,
    arc,
    circle,
    ellipse,
    lwpolyline,
    polyline,
    spline,
    helix,
    insert,
    vertex,
    /// The end of the vertices of a POLYLINE or of the attributes of an INSERT; a window of a
    /// layout: nothing that is drawn.
    nothing,
    /// The form of the text that goes with a block.
    attributeDefinition,
    /// Anything else.
    other
};

/// What an object is by its name, as group 0 gives it: blanks around it and case do not matter.
ObjectKind objectKindOf(std::string_view name);

/// Whether the name of a section or a block begins like this, in whatever case.
/// @param start  in upper case
bool beginsWith(std::string_view name, std::string_view start);

/// Why entities of a kind that draws nothing to follow are left out of a path.
LeftOutReason reasonOf(std::string_view name);

} // namespace converters::drawing
