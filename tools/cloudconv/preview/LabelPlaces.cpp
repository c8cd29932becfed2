#include "tools/cloudconv/preview/LabelPlaces.h"

#include <algorithm>
#include <array>

namespace {

bool overlap(const Rectangle& a, const Rectangle& b) {
    return a.left < b.right() && b.left < a.right() && a.top < b.bottom() && b.top < a.bottom();
}

} // namespace

void LabelPlaces::avoid(const Place& centre, double radius) {
    m_taken.push_back({centre.x - radius, centre.y - radius, 2 * radius, 2 * radius});
}

std::optional<Rectangle> LabelPlaces::take(const Place& centre, double radius, double width,
                                           double height) {
    // Right, left, above, below, then the corners: by how much of the label's size, and of the
    // mark's, its top left corner is off the middle of the mark.
    struct Side {
        double width;
        double height;
        double right;
        double down;
    };
    constexpr std::array<Side, 8> sides = {{{0.0, -0.5, 1.0, 0.0},
                                            {-1.0, -0.5, -1.0, 0.0},
                                            {-0.5, -1.0, 0.0, -1.0},
                                            {-0.5, 0.0, 0.0, 1.0},
                                            {0.0, -1.0, 0.8, -0.8},
                                            {0.0, 0.0, 0.8, 0.8},
                                            {-1.0, -1.0, -0.8, -0.8},
                                            {-1.0, 0.0, -0.8, 0.8}}};
    for (const double distance : {radius, 2 * radius, 3 * radius}) {
        for (const Side& side : sides) {
            const Rectangle label = {centre.x + side.width * width + side.right * distance,
                                     centre.y + side.height * height + side.down * distance, width,
                                     height};
            if (isFree(label)) {
                m_taken.push_back(label);
                return label;
            }
        }
    }
    return std::nullopt;
}

bool LabelPlaces::isFree(const Rectangle& label) const {
    const bool inside = label.left >= m_area.left && label.right() <= m_area.right() &&
                        label.top >= m_area.top && label.bottom() <= m_area.bottom();
    return inside && std::none_of(m_taken.begin(), m_taken.end(),
                                  [&](const Rectangle& taken) { return overlap(label, taken); });
}
