#include "tests/support/PathBytes.h"

#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Point = cv::Point3_<double>;

/// Collects bytes; of what is a structure, part by part: there are gaps between these.
class Bytes {
public:
    template <typename... Parts>
    void add(const Parts&... parts) {
        (addOne(parts), ...);
    }

    std::string take() { return std::move(m_bytes); }

private:
    template <typename Number>
    void addOne(const Number& number) {
        static_assert(std::is_arithmetic_v<Number> || std::is_enum_v<Number>);
        m_bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
    void addOne(const Point& point) { add(point.x, point.y, point.z); }
    void addOne(const std::string& text) {
        add(text.size());
        m_bytes += text;
    }
    void addOne(const converters::PathContour& contour) {
        add(contour.firstPoint, contour.endPoint, contour.firstPiece, contour.endPiece,
            contour.firstEntity, contour.endEntity, contour.length, contour.layer,
            contour.trueColour, contour.colour, contour.closed);
    }
    void addOne(const converters::PathPiece& piece) {
        add(piece.firstPoint, piece.lastPoint, piece.curve, piece.entity, piece.kind);
    }
    void addOne(const converters::PathArc& arc) {
        add(arc.centre, arc.normal, arc.radius, arc.sweep);
    }
    void addOne(const converters::PathEllipticArc& arc) {
        add(arc.centre, arc.major, arc.minor, arc.start, arc.sweep);
    }
    void addOne(const converters::PathSpline& spline) {
        add(spline.degree, spline.knots, spline.controlPoints, spline.weights);
    }
    void addOne(const converters::PathEntity& entity) {
        add(entity.handle, entity.insert, entity.layer, entity.kind);
    }
    void addOne(const converters::PathLayer& layer) {
        add(layer.name, layer.colour, layer.off, layer.frozen);
    }
    void addOne(const converters::LeftOut& entry) {
        add(entry.kind, entry.layer, entry.number, entry.reason);
    }
    template <typename Element>
    void addOne(const std::vector<Element>& elements) {
        add(elements.size());
        for (const Element& element : elements) {
            addOne(element);
        }
    }

    std::string m_bytes;
};

} // namespace

std::string bytesOf(const converters::DrawingPath& path) {
    Bytes bytes;
    bytes.add(path.points, path.contours, path.pieces, path.arcs, path.ellipticArcs, path.splines,
              path.entities, path.layers, path.leftOut, path.notes, path.drawingUnit, path.unit,
              path.lowest, path.highest, path.length, path.wayLength);
    return bytes.take();
}
