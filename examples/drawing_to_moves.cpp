// drawing_to_moves IN.dxf: prints the path of a drawing as the moves of a machine, straight ones
// and arcs, in millimetres, with short ways between contours; and tells what of the drawing is not
// in it.

#include "converters/DrawingPath.h"

#include <cmath>
#include <iostream>

namespace {

using converters::DrawingPath;
using converters::PathContour;
using converters::PathCurveKind;
using converters::PathPiece;

std::ostream& operator<<(std::ostream& stream, const cv::Point3_<double>& point) {
    return stream << point.x << ' ' << point.y << ' ' << point.z;
}

/// An arc is one move; of any other curve each chord is, and keeps the tolerance.
void printPiece(const DrawingPath& path, const PathPiece& piece) {
    constexpr double degreesPerRadian = 180.0 / 3.14159265358979323846;
    if (piece.kind == PathCurveKind::arc) {
        const converters::PathArc& arc = path.arcs[piece.curve];
        std::cout << "arc to " << path.points[piece.lastPoint] << " about " << arc.centre
                  << ", axis " << arc.normal << ", " << arc.sweep * degreesPerRadian
                  << " degrees\n";
        return;
    }
    for (std::size_t i = piece.firstPoint + 1; i <= piece.lastPoint; ++i) {
        std::cout << "line to " << path.points[i] << '\n';
    }
}

void printContour(const DrawingPath& path, const PathContour& contour) {
    std::cout << "go to " << path.points[contour.firstPoint] << ": "
              << (contour.closed ? "closed" : "open") << " contour on layer "
              << path.layers[contour.layer].name << ", " << contour.length << " long\n";
    for (std::size_t i = contour.firstPiece; i < contour.endPiece; ++i) {
        printPiece(path, path.pieces[i]);
    }
}

} // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::cerr << "usage: drawing_to_moves IN.dxf\n";
        return 2;
    }
    converters::PathOptions options;
    options.unit = converters::LengthUnit::millimetre;
    options.order = converters::PathOrder::nearest;
    DrawingPath path;
    const auto result = converters::readPath(std::filesystem::path(argv[1]), path, options);
    if (!result) {
        std::cerr << "drawing_to_moves: " << argv[1] << ": " << result.reason << '\n';
        return 1;
    }

    for (const PathContour& contour : path.contours) {
        printContour(path, contour);
    }
    for (const converters::LeftOut& leftOut : path.leftOut) {
        std::cerr << "left out: " << leftOut.number << ' ' << leftOut.kind << " on layer "
                  << leftOut.layer << " (" << nameOf(leftOut.reason) << ")\n";
    }
    return std::cout.flush() ? 0 : 1;
}
