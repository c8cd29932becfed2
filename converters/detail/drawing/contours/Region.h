#pragma once

#include "converters/detail/drawing/contours/ContourOrder.h"
#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace converters::drawing {

/// A rectangle in the plane of x and y.
struct PlaneBox {
    double lowX = 0;
    double lowY = 0;
    double highX = 0;
    double highY = 0;

    bool contains(const PlaneBox& other) const {
        return lowX <= other.lowX && lowY <= other.lowY && other.highX <= highX &&
               other.highY <= highY;
    }
    void take(const PlaneBox& other);
};

/// What lies in something is smaller: its box is, or else its area.
struct RegionSize {
    double box = 0;
    double area = 0;

    bool operator<(const RegionSize& other) const {
        return box < other.box || (box == other.box && area < other.area);
    }
};

/// What a contour encloses, and whether points are in it.
class Region {
public:
    Region(const ContourShape& contour, const PlaceRounding& rounding, OrderCost& cost);

    const PlaneBox& box() const { return m_box; }
    /// Whether something can be in it.
    bool encloses() const;
    const RegionSize& size() const { return m_size; }
    /// A point that tells what the contour lies in. Its z is 0.
    Place inner() const { return m_inner; }

    /// Whether a point is inside, by the even-odd rule.
    bool contains(const Place& point);

private:
    struct Edge {
        Place from;
        Place to;

        bool crosses(double y) const { return (from.y <= y) != (to.y <= y); }
        double xAt(double y) const {
            return from.x + (y - from.y) / (to.y - from.y) * (to.x - from.x);
        }
    };

    Edge edge(std::size_t index) const { return {corner(index), corner(index + 1)}; }
    Place corner(std::size_t index) const { return m_rounding->inPlane(m_contour->points[index]); }
    std::size_t edges() const { return m_contour->size - 1; }
    void measure();
    Place middleOfLongestEdge() const;
    Place pointWithin() const;
    std::size_t stripeOf(double y) const;
    void buildStripes();

    const ContourShape* m_contour;
    const PlaceRounding* m_rounding;
    OrderCost* m_cost;
    PlaneBox m_box;
    RegionSize m_size;
    Place m_inner;
    /// The edges that cross each of even stripes of y, once they are asked for: those of stripe i
    /// are m_edgesOf[m_firstOf[i]] up to m_firstOf[i + 1].
    std::vector<std::uint32_t> m_firstOf;
    std::vector<std::uint32_t> m_edgesOf;
};

} // namespace converters::drawing
