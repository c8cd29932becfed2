#include "dxfeditor/detail/Output.h"

#include <cstddef>
#include <new>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// The walk jumps about in the drawing; this many pieces ahead, entities are on their way from
/// memory.
constexpr std::size_t lookAhead = 8;

void append(const Piece& piece, const std::vector<Run>& runs, std::vector<Point>& points) {
    const Run& run = runs[piece.run];
    switch (piece.dropped) {
    case Dropped::Nothing:
        run.appendTo(points, piece.direction);
        break;
    case Dropped::Last:
        run.appendTo(points, piece.direction);
        points.pop_back();
        break;
    case Dropped::First: {
        // The dropped point takes the place of the one before it for a moment.
        const Point before = points.back();
        points.pop_back();
        const std::size_t place = points.size();
        run.appendTo(points, piece.direction);
        points[place] = before;
        break;
    }
    }
}

} // namespace

std::vector<Point> roomFor(const std::vector<Run>& runs) {
    std::size_t count = 0;
    for (const Run& run : runs) {
        count += run.size();
    }
    std::vector<Point> points;
    if (count > points.max_size()) {
        throw std::bad_alloc();
    }
    points.reserve(count);
    return points;
}

void append(const Walk& walk, const std::vector<Run>& runs, std::vector<Point>& points,
            std::vector<DXFContour>* contours) {
    const std::size_t pieces = walk.pieces.size();
    std::size_t piece = 0;
    for (const Chain& chain : walk.chains) {
        const std::size_t start = points.size();
        for (; piece < chain.piecesEnd; ++piece) {
            if (piece + 2 * lookAhead < pieces) {
                __builtin_prefetch(&runs[walk.pieces[piece + 2 * lookAhead].run]);
                runs[walk.pieces[piece + lookAhead].run].prefetch();
            }
            append(walk.pieces[piece], runs, points);
        }
        if (chain.closed) {
            points.back() = points[start];
        }
        if (contours != nullptr) {
            contours->push_back({start, points.size(), chain.closed});
        }
    }
}

} // namespace dxfeditor
