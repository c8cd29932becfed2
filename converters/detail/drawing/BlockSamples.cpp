#include "converters/detail/drawing/BlockSamples.h"

#include "converters/detail/drawing/dxf/EntityCurves.h"
#include "converters/detail/drawing/geometry/CurveOperations.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace converters::drawing {

namespace {

/// What is equal but for rounding.
constexpr double rounding = 1e-12;

bool isAsLong(const Vector& axis, double scale) {
    return std::fabs(axis.dot(axis) - scale * scale) <= rounding * scale * scale;
}

bool isAcross(const Vector& axis, const Vector& other, double scale) {
    return std::fabs(axis.dot(other)) <= rounding * scale * scale;
}

/// How large a map draws what lies in the plane of x and y; none where it stretches that.
std::optional<double> scaleInPlane(const Affine& map) {
    const double scale = lengthOf(map.xAxis());
    const bool isUsual = scale > 1e-100 && scale < 1e100;
    return isUsual && isAsLong(map.yAxis(), scale) && isAcross(map.xAxis(), map.yAxis(), scale)
               ? std::optional(scale)
               : std::nullopt;
}

bool isSameInHeight(const Affine& map, double scale) {
    return isAsLong(map.zAxis(), scale) && isAcross(map.xAxis(), map.zAxis(), scale) &&
           isAcross(map.yAxis(), map.zAxis(), scale);
}

} // namespace

const BlockSamples::Samples* BlockSamples::find(const ChainLink* link) {
    if (link == nullptr || link->reversed || !m_joined.placementOf(*link).isBlock) {
        return nullptr;
    }
    return find(m_joined.expansion.drawn[link->drawn].entity, m_joined.placementOf(*link).map);
}

const BlockSamples::Samples* BlockSamples::find(std::uint32_t entity, const Affine& map) {
    const EntityKind kind = m_joined.drawing.entities[entity].kind;
    if (kind != EntityKind::ellipse && kind != EntityKind::spline) {
        return nullptr;
    }
    const std::optional<double> scale = scaleInPlane(map);
    if (!scale) {
        return nullptr;
    }
    const auto [kept, isNew] = m_kept.try_emplace(entity);
    Samples& samples = kept->second;
    if (isNew) {
        samples.scale = *scale;
        sample(entity, samples);
    }
    const bool fits = !samples.points.empty() &&
                      std::fabs(*scale - samples.scale) <= rounding * samples.scale &&
                      (samples.isFlat || isSameInHeight(map, *scale));
    return fits ? &samples : nullptr;
}

void BlockSamples::sample(std::uint32_t entity, Samples& samples) {
    constexpr std::size_t mostPoints = 1 << 18;
    const Affine identity;
    const Curve curve =
        EntityCurves(m_joined.drawing, m_joined.drawing.entities[entity], identity)[0];
    SamplingLimits limits = m_limits;
    // By less than what was taken for equal above.
    limits.tolerance = m_limits.tolerance / samples.scale * (1 - 4 * rounding);
    limits.step = m_limits.step / samples.scale * (1 - 4 * rounding);
    limits.maximumPoints = std::min(m_limits.maximumPoints, mostPoints - m_points);
    if (!appendPoints(curve, limits, samples.points)) {
        return;
    }
    m_points += samples.points.size();
    samples.length = samples.scale * lengthOf(curve);
    const double height = startOf(curve).z;
    samples.isFlat = std::all_of(samples.points.begin(), samples.points.end(),
                                 [&](const Point& point) { return point.z == height; });
}

} // namespace converters::drawing
