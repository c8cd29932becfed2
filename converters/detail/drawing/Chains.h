#pragma once

#include "converters/detail/drawing/PathSettings.h"
#include "converters/detail/drawing/Progress.h"
#include "converters/detail/drawing/dxf/Drawing.h"
#include "converters/detail/drawing/dxf/Expansion.h"

#include <cstdint>
#include <vector>

namespace converters::drawing {

/// A drawn entity as a part of a contour.
struct ChainLink {
    /// Index into Expansion::drawn.
    std::uint32_t drawn;
    bool reversed;
    /// Whether it is the last one of its contour, and whether the ends of that meet.
    bool endsChain;
    bool closesChain;
};

/// Joins entities end to end to contours.
///
/// A contour begins with the first entity in the order of the drawing that is in none yet, and
/// follows it in its direction: at its end, the first entity of those that have an end there comes
/// next, until none has or the contour is back at its start; then the same from its start
/// backwards. Contours are in the order of their first entities.
///
/// Ends that are nearly equal come before those that are only in reach. Otherwise contours of
/// entities shorter than the join distance, as small drawings in large units have them, would be
/// walked back and forth. Two such entities join no others.
///
/// An entity that is closed by itself, and a POINT, is a contour of its own. One that is nothing
/// but a dot belongs to a contour that has an end of an entity there.
///
/// @param expansion  loses what is not finite where it is drawn
/// @param leftOut    gets that, as broken
std::vector<ChainLink> joinToChains(Drawing& drawing, Expansion& expansion,
                                    const LayerTable& layers, double joinDistance,
                                    LeftOutTable& leftOut, const Progress& progress);

} // namespace converters::drawing
