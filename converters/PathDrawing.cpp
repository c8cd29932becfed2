#include "converters/PathDrawing.h"

#include "dxfeditor/DXFAttributes.h"
#include "dxfeditor/DXFLayer.h"
#include "dxfeditor/DXFPoint.h"
#include "dxfeditor/DXFPolyline.h"

#include <boost/locale/encoding_utf.hpp>

#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

namespace converters {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr int byLayer = 256;
constexpr unsigned isOpenPolyline = 0;
constexpr unsigned is3dPolyline = 8;

using Point = cv::Point3_<double>;

/// A name in ASCII: other characters by number, in UTF-16 as readers take it.
std::string asciiName(const std::string& name) {
    std::string result;
    for (const char16_t unit : boost::locale::conv::utf_to_utf<char16_t>(name)) {
        constexpr char16_t firstBeyond = 0x80;
        if (unit < firstBeyond) {
            result += static_cast<char>(unit);
        } else {
            char text[8];
            std::snprintf(text, sizeof text, "\\U+%04X", static_cast<unsigned>(unit));
            result += text;
        }
    }
    return result;
}

std::shared_ptr<DXFAttributes> attributesOf(const std::string& layer, int colour) {
    return std::make_shared<DXFAttributes>(layer, colour, -1, -1, "CONTINUOUS", 1.0, -1, false);
}

class DrawingBuilder {
public:
    explicit DrawingBuilder(const DrawingPath& path)
        : m_path(path), m_drawing(std::make_shared<DXFDocument>()) {}

    std::shared_ptr<DXFDocument> drawing() &&;

private:
    void addLayer(const PathLayer& layer);
    void addContour(const PathContour& contour);
    bool isFlat(const PathContour& contour) const;
    void appendPiece(const PathPiece& piece, DXFPolyline& polyline) const;
    void appendArc(const PathPiece& piece, DXFPolyline& polyline) const;
    std::shared_ptr<DXFAttributes> attributesOf(const PathContour& contour);

    const DrawingPath& m_path;
    std::shared_ptr<DXFDocument> m_drawing;
    std::vector<std::string> m_names;
    /// The record of the last contour, which the next one mostly shares.
    std::shared_ptr<DXFAttributes> m_attributes;
};

std::shared_ptr<DXFDocument> DrawingBuilder::drawing() && {
    for (const PathLayer& layer : m_path.layers) {
        addLayer(layer);
    }
    for (const PathContour& contour : m_path.contours) {
        addContour(contour);
    }
    return std::move(m_drawing);
}

void DrawingBuilder::addLayer(const PathLayer& layer) {
    constexpr int frozen = 1;
    m_names.push_back(asciiName(layer.name));
    const auto added = std::make_shared<DXFLayer>(m_names.back(), layer.frozen ? frozen : 0);
    // A layer that is off has its colour below zero.
    const int colour = layer.off ? -static_cast<int>(layer.colour) : layer.colour;
    added->setAttributes(converters::attributesOf(m_names.back(), colour));
    static_cast<void>(m_drawing->addLayer(added));
}

std::shared_ptr<DXFAttributes> DrawingBuilder::attributesOf(const PathContour& contour) {
    const std::string& layer = m_names.at(contour.layer);
    const int colour =
        contour.colour == m_path.layers[contour.layer].colour ? byLayer : contour.colour;
    if (m_attributes == nullptr || m_attributes->color() != colour ||
        m_attributes->layerName() != layer) {
        m_attributes = converters::attributesOf(layer, colour);
    }
    return m_attributes;
}

void DrawingBuilder::addContour(const PathContour& contour) {
    const Point& start = m_path.points[contour.firstPoint];
    std::shared_ptr<DXFEntity> entity;
    if (contour.endPoint - contour.firstPoint == 1) {
        entity = std::make_shared<DXFPoint>(start.x, start.y, start.z);
    } else {
        const bool flat = isFlat(contour);
        const auto polyline =
            std::make_shared<DXFPolyline>(0, 0, flat ? isOpenPolyline : is3dPolyline);
        if (flat && contour.firstPiece != contour.endPiece) {
            for (std::size_t i = contour.firstPiece; i < contour.endPiece; ++i) {
                appendPiece(m_path.pieces[i], *polyline);
            }
            const Point& end = m_path.points[contour.endPoint - 1];
            polyline->appendPoint({end.x, end.y, end.z, true, 0.0});
        } else {
            for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
                const Point& point = m_path.points[i];
                polyline->appendPoint({point.x, point.y, point.z, true, 0.0});
            }
        }
        polyline->shrinkToFit();
        entity = polyline;
    }
    entity->setAttributes(attributesOf(contour));
    static_cast<void>(m_drawing->addEntity(std::move(entity)));
}

/// Whether a contour lies in the plane z = 0; arcs across it have points beside it.
bool DrawingBuilder::isFlat(const PathContour& contour) const {
    for (std::size_t i = contour.firstPoint; i < contour.endPoint; ++i) {
        if (m_path.points[i].z != 0.0) {
            return false;
        }
    }
    for (std::size_t i = contour.firstPiece; i < contour.endPiece; ++i) {
        const PathPiece& piece = m_path.pieces[i];
        // Upright, but for the rounding of a turned block.
        constexpr double nearlyUpright = 1.0 - 1e-15;
        if (piece.kind == PathCurveKind::arc &&
            std::abs(m_path.arcs[piece.curve].normal.z) < nearlyUpright) {
            return false;
        }
    }
    return true;
}

/// Appends what comes before the last point of a piece.
void DrawingBuilder::appendPiece(const PathPiece& piece, DXFPolyline& polyline) const {
    if (piece.kind == PathCurveKind::arc) {
        appendArc(piece, polyline);
        return;
    }
    // What a step has put on a straight line is of no use to a polyline.
    const std::size_t end =
        piece.kind == PathCurveKind::line ? piece.firstPoint + 1 : piece.lastPoint;
    for (std::size_t i = piece.firstPoint; i < end; ++i) {
        const Point& point = m_path.points[i];
        polyline.appendPoint({point.x, point.y, point.z, true, 0.0});
    }
}

/// The bulge of an arc is the tangent of a quarter of its sweep, which has no end at a full turn:
/// more than a half turn is drawn in two.
void DrawingBuilder::appendArc(const PathPiece& piece, DXFPolyline& polyline) const {
    const PathArc& arc = m_path.arcs[piece.curve];
    const Point& start = m_path.points[piece.firstPoint];
    const double sweep = std::copysign(arc.sweep, arc.normal.z);
    if (arc.sweep <= pi) {
        polyline.appendPoint({start.x, start.y, 0.0, true, std::tan(sweep / 4)});
        return;
    }
    const double bulge = std::tan(sweep / 8);
    const Point radius = start - arc.centre;
    const double cosine = std::cos(sweep / 2);
    const double sine = std::sin(sweep / 2);
    polyline.appendPoint({start.x, start.y, 0.0, true, bulge});
    polyline.appendPoint({arc.centre.x + cosine * radius.x - sine * radius.y,
                          arc.centre.y + sine * radius.x + cosine * radius.y, 0.0, true, bulge});
}

} // namespace

std::shared_ptr<DXFDocument> drawingOf(const DrawingPath& path) {
    return DrawingBuilder(path).drawing();
}

} // namespace converters
