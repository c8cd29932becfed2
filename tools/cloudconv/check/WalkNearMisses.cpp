#include "tools/cloudconv/check/WalkNearMisses.h"

#include "dxfeditor/WalkNumbers.h"

#include <limits>

std::vector<converters::NearMiss> nearMissesOf(const DxfContents& drawing,
                                               const std::vector<Contour>& contours,
                                               double distance,
                                               converters::SearchProgress& progress) {
    std::vector<converters::ContourEnd> ends;
    for (const Contour& contour : contours) {
        if (contour.kind == ContourKind::Open) {
            // The ends of one contour may be a near miss, however short it is.
            constexpr double any = std::numeric_limits<double>::infinity();
            ends.push_back({drawing.points[contour.begin], contour.begin, any});
            ends.push_back({drawing.points[contour.end - 1], contour.begin, any});
        }
    }
    return converters::nearMissesAmong(ends, distance, dxfeditor::joinDistance, progress);
}
