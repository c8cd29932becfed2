#include "tools/cloudconv/Contours.h"

#include "dxfeditor/DXFDocument.h"
#include "dxfeditor/DXFEntity.h"

#include <algorithm>
#include <cmath>

namespace {

/// Tells what contours are, by the entities that they are made of.
class Classification {
public:
    explicit Classification(const DxfContents& drawing) : m_pieces(drawing.pieces) {
        for (const std::shared_ptr<DXFEntity>& entity : drawing.document->entities()) {
            m_types.push_back(entity->type());
        }
    }

    ContourKind kindOf(const DXFContour& contour) const {
        const std::vector<int> types = typesOf(contour);
        const bool isOfPoints = std::all_of(types.begin(), types.end(), [](int type) {
            return type == DXFEntityType::Point || type == DXFEntityType::PointVector;
        });
        if (isOfPoints || contour.end - contour.begin == 1) {
            return ContourKind::Points;
        }
        if (types == std::vector<int>{DXFEntityType::Circle}) {
            return ContourKind::Circle;
        }
        return contour.closed ? ContourKind::Closed : ContourKind::Open;
    }

    bool isOfPoints(const DXFContour& contour) const {
        const std::vector<int> types = typesOf(contour);
        return std::all_of(types.begin(), types.end(),
                           [](int type) { return type == DXFEntityType::PointVector; });
    }

private:
    /// The types of a contour's entities. Single points tell nothing where they are joined to more:
    /// a circle with a point on it is a circle.
    std::vector<int> typesOf(const DXFContour& contour) const {
        const bool isSingle = contour.end - contour.begin == 1;
        std::vector<int> types;
        for (std::size_t i = contour.firstPiece; i < contour.endPiece; ++i) {
            const DXFPiece& piece = m_pieces[i];
            const std::size_t ofEntity = piece.end - piece.begin + (piece.isJoined ? 1 : 0);
            if (isSingle ? piece.begin < piece.end : ofEntity > 1) {
                types.push_back(m_types[piece.entity]);
            }
        }
        return types;
    }

    const std::vector<DXFPiece>& m_pieces;
    std::vector<int> m_types;
};

} // namespace

bool hasPlace(const cv::Point3_<double>& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

double distanceOf(const cv::Point3_<double>& a, const cv::Point3_<double>& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

std::vector<Contour> contoursOf(const DxfContents& drawing) {
    const Classification classification(drawing);
    std::vector<Contour> contours;
    contours.reserve(drawing.contours.size());
    for (const DXFContour& contour : drawing.contours) {
        const ContourKind kind = classification.kindOf(contour);
        double length = 0.0;
        for (std::size_t i = contour.begin + 1; i < contour.end && kind != ContourKind::Points;
             ++i) {
            length += distanceOf(drawing.points[i - 1], drawing.points[i]);
        }
        contours.push_back(
            {kind, contour.begin, contour.end, length, classification.isOfPoints(contour)});
    }
    return contours;
}
