#include "converters/detail/drawing/contours/Region.h"

#include <algorithm>
#include <cmath>

namespace converters::drawing {

namespace {

/// Fewer edges than this are gone through one by one.
constexpr std::size_t fewEdges = 32;
/// How many stripes an edge may lie in, on average.
constexpr std::size_t stripesPerEdge = 4;

} // namespace

void PlaneBox::take(const PlaneBox& other) {
    lowX = std::min(lowX, other.lowX);
    lowY = std::min(lowY, other.lowY);
    highX = std::max(highX, other.highX);
    highY = std::max(highY, other.highY);
}

Region::Region(const ContourShape& contour, const PlaceRounding& rounding, OrderCost& cost)
    : m_contour(&contour), m_rounding(&rounding), m_cost(&cost) {
    measure();
    cost.looks += contour.size;
    m_inner = encloses() ? pointWithin() : middleOfLongestEdge();
}

/// Box and area: twice that is the sum of the cross products of neighbouring corners.
void Region::measure() {
    const Place first = corner(0);
    m_box = {first.x, first.y, first.x, first.y};
    double sum = 0;
    for (std::size_t i = 0; i + 1 < m_contour->size; ++i) {
        const Edge each = edge(i);
        m_box.take({each.to.x, each.to.y, each.to.x, each.to.y});
        // From the first corner, whose distance from the origin would only cost digits.
        sum += (each.from.x - first.x) * (each.to.y - first.y) -
               (each.from.y - first.y) * (each.to.x - first.x);
    }
    m_size.box = (m_box.highX - m_box.lowX) * (m_box.highY - m_box.lowY);
    m_size.area = m_contour->closed ? std::fabs(sum) : 0;
}

bool Region::encloses() const {
    // A triangle, with the copy of its start.
    return m_contour->closed && m_contour->size >= 4 && m_size.box > 0;
}

Place Region::middleOfLongestEdge() const {
    Place middle = corner(0);
    double longest = 0;
    for (std::size_t i = 0; i + 1 < m_contour->size; ++i) {
        const Edge each = edge(i);
        const double square = squareBetween(each.from, each.to);
        if (square > longest) {
            longest = square;
            middle = 0.5 * (each.from + each.to);
        }
    }
    return middle;
}

/// The middle of the widest stretch inside at half the height: away from edges that contours have
/// in common.
Place Region::pointWithin() const {
    const double y = 0.5 * (m_box.lowY + m_box.highY);
    std::vector<double> crossings;
    for (std::size_t i = 0; i < edges(); ++i) {
        const Edge each = edge(i);
        if (each.crosses(y)) {
            crossings.push_back(each.xAt(y));
        }
    }
    std::sort(crossings.begin(), crossings.end());
    double widest = -1;
    Place point(0.5 * (m_box.lowX + m_box.highX), y, 0);
    for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) {
        if (crossings[i + 1] - crossings[i] > widest) {
            widest = crossings[i + 1] - crossings[i];
            point.x = 0.5 * (crossings[i] + crossings[i + 1]);
        }
    }
    return point;
}

std::size_t Region::stripeOf(double y) const {
    const std::size_t stripes = m_firstOf.size() - 1;
    const double part = (y - m_box.lowY) / (m_box.highY - m_box.lowY);
    // Within the box, so that the product is within the range of numbers.
    const double stripe = std::clamp(part, 0.0, 1.0) * static_cast<double>(stripes);
    return std::min(static_cast<std::size_t>(stripe), stripes - 1);
}

void Region::buildStripes() {
    std::size_t stripes = std::max<std::size_t>(edges() / 2, 1);
    for (;; stripes /= 2) {
        m_firstOf.assign(stripes + 1, 0);
        std::size_t entries = 0;
        for (std::size_t i = 0; i < edges(); ++i) {
            const Edge each = edge(i);
            const auto [low, high] = std::minmax({stripeOf(each.from.y), stripeOf(each.to.y)});
            entries += high - low + 1;
        }
        m_cost->looks += edges();
        if (stripes == 1 || entries <= stripesPerEdge * edges()) {
            break;
        }
    }
    const auto overStripes = [&](const auto& visit) {
        for (std::size_t i = 0; i < edges(); ++i) {
            const Edge each = edge(i);
            const auto [low, high] = std::minmax({stripeOf(each.from.y), stripeOf(each.to.y)});
            for (std::size_t stripe = low; stripe <= high; ++stripe) {
                visit(stripe, static_cast<std::uint32_t>(i));
            }
        }
    };
    std::vector<std::uint32_t> firstOf(stripes + 1, 0);
    overStripes([&](std::size_t stripe, std::uint32_t) { ++firstOf[stripe + 1]; });
    for (std::size_t i = 0; i < stripes; ++i) {
        firstOf[i + 1] += firstOf[i];
    }
    std::vector<std::uint32_t> next(firstOf.begin(), firstOf.end() - 1);
    m_edgesOf.resize(firstOf.back());
    overStripes(
        [&](std::size_t stripe, std::uint32_t index) { m_edgesOf[next[stripe]++] = index; });
    m_firstOf = std::move(firstOf);
}

bool Region::contains(const Place& point) {
    if (!encloses() || point.y < m_box.lowY || point.y > m_box.highY) {
        return false;
    }
    bool inside = false;
    const auto pass = [&](const Edge& each) {
        inside ^= each.crosses(point.y) && each.xAt(point.y) > point.x;
    };
    if (edges() < fewEdges) {
        for (std::size_t i = 0; i < edges(); ++i) {
            pass(edge(i));
        }
        m_cost->looks += edges();
        return inside;
    }
    if (m_firstOf.empty()) {
        buildStripes();
    }
    const std::size_t stripe = stripeOf(point.y);
    for (std::size_t i = m_firstOf[stripe]; i < m_firstOf[stripe + 1]; ++i) {
        pass(edge(m_edgesOf[i]));
    }
    m_cost->looks += m_firstOf[stripe + 1] - m_firstOf[stripe];
    return inside;
}

} // namespace converters::drawing
