#include "dxfeditor/detail/Output.h"

#include <cstddef>
#include <new>

namespace dxfeditor {

namespace {

using Point = Run::Point;

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
    auto piece = walk.pieces.begin();
    for (const Chain& chain : walk.chains) {
        const std::size_t start = points.size();
        const auto end = walk.pieces.begin() + static_cast<std::ptrdiff_t>(chain.piecesEnd);
        for (; piece != end; ++piece) {
            append(*piece, runs, points);
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
