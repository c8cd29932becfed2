// One pass over the walk: the memory for all points is there before, and each run writes its points
// behind those of the run before it. Runs are near in the walk and far apart in memory, so they are
// asked for some pieces ahead.
//
// Not done: a part of the walk for each of several threads. The indices of the points are known
// from the sizes of the runs alone; but calls run on the caller's thread, and writing memory is the
// limit.

#include "dxfeditor/detail/walking/Output.h"

#include "base/LargePages.h"
#include "base/Prefetch.h"

#include <cstddef>
#include <new>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// The walk jumps about in the drawing. This many pieces ahead, entities are on their way from
/// memory; twice as many, the pointers to them, and three times, the runs.
constexpr std::size_t lookAhead = 8;

} // namespace

std::vector<Point> roomFor(const std::vector<Run>& runs, const Entities& entities) {
    std::size_t count = 0;
    for (const Run& run : runs) {
        count += run.size(entities);
    }
    std::vector<Point> points;
    if (count > points.max_size()) {
        throw std::bad_alloc();
    }
    base::reserveLarge(points, count);
    return points;
}

void append(const base::Walk& walk, const std::vector<Run>& runs, const Entities& entities,
            std::vector<Point>& points, std::vector<DXFContour>* contours,
            std::vector<DXFPiece>* pieces, base::StageProgress progress) {
    progress.begin(points.capacity());
    std::size_t start = points.size();
    std::size_t firstPiece = 0;
    if (pieces != nullptr) {
        pieces->reserve(walk.size());
    }
    for (std::size_t i = 0; i < walk.size(); ++i) {
        if (i + 3 * lookAhead < walk.size()) {
            base::prefetch(&runs[walk[i + 3 * lookAhead].run]);
            runs[walk[i + 2 * lookAhead].run].prefetchPointer(entities);
            runs[walk[i + lookAhead].run].prefetchEntity(entities);
        }
        const base::Piece& piece = walk[i];
        const std::size_t begin = points.size();
        progress.reached(begin);
        runs[piece.run].appendTo(points, entities, piece.direction, piece.dropped);
        if (pieces != nullptr) {
            pieces->push_back({begin, points.size(), runs[piece.run].entity(),
                               piece.dropped != Dropped::Nothing});
        }
        if (!piece.endsChain) {
            continue;
        }
        if (piece.closesChain) {
            points.back() = points[start];
        }
        if (contours != nullptr) {
            contours->push_back({start, points.size(), piece.closesChain, firstPiece, i + 1});
        }
        start = points.size();
        firstPiece = i + 1;
    }
}

} // namespace dxfeditor
