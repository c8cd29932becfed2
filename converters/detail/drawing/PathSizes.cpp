#include "converters/detail/drawing/PathSizes.h"

#include "base/LargePages.h"

namespace converters::drawing {

PathSizes sizesOf(const PathContours& contours) {
    return {contours.points.size(),   contours.contours.size(), contours.pieces.size(),
            contours.entities.size(), contours.arcs.size(),     contours.ellipticArcs.size(),
            contours.splines.size()};
}

void cutTo(const PathSizes& sizes, PathContours& contours) {
    contours.points.resize(sizes.points);
    contours.contours.resize(sizes.contours);
    contours.pieces.resize(sizes.pieces);
    contours.entities.resize(sizes.entities);
    contours.arcs.resize(sizes.arcs);
    contours.ellipticArcs.resize(sizes.ellipticArcs);
    contours.splines.resize(sizes.splines);
}

void reserve(const PathSizes& sizes, PathContours& contours) {
    base::reserveLarge(contours.points, sizes.points);
    base::reserveLarge(contours.contours, sizes.contours);
    base::reserveLarge(contours.pieces, sizes.pieces);
    base::reserveLarge(contours.entities, sizes.entities);
    base::reserveLarge(contours.arcs, sizes.arcs);
    base::reserveLarge(contours.ellipticArcs, sizes.ellipticArcs);
    base::reserveLarge(contours.splines, sizes.splines);
}

} // namespace converters::drawing
