#pragma once

#include "converters/detail/drawing/contours/ContourOrder.h"
#include "converters/detail/drawing/contours/PlaceRounding.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace converters::drawing {

/// Which contours lie in which, in the plane of x and y.
///
/// Contour A lies in B when B is closed, the box of A is within that of B, its area is less, and a
/// point of A is in B by the even-odd rule: of a closed one a point well within, else the middle of
/// its longest stretch. Each contour hangs below the smallest one that it lies in, so that a walk
/// from the inside out of this tree has A before B. Where contours cross there can be more that A
/// lies in; then A hangs higher up, with a turn before theirs.
class Nesting {
public:
    struct Member {
        std::uint32_t contour;
        /// Of the members of one contour, those of a higher turn come first; the order among equals
        /// is free.
        std::uint64_t turn;
    };

    struct Range {
        const Member* first;
        const Member* last;

        bool empty() const { return first == last; }
    };

    Nesting(const std::vector<ContourShape>& contours, const PlaceRounding& rounding,
            OrderCost& cost);

    /// Those that hang below a contour, by turns, the highest first.
    Range inside(std::size_t contour) const {
        return {m_members.data() + m_firstOf[contour], m_members.data() + m_firstOf[contour + 1]};
    }
    /// Those that hang below none.
    Range outermost() const { return inside(m_firstOf.size() - 2); }

private:
    std::vector<Member> m_members;
    std::vector<std::size_t> m_firstOf;
};

} // namespace converters::drawing
