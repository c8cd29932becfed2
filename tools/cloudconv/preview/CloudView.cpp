#include "tools/cloudconv/preview/CloudView.h"

namespace {

// Of the view from a corner: from the right, the front and above alike, so that x, y and z are
// equally short.
constexpr double half = 0.7071067811865476;   // 1 / sqrt(2)
constexpr double third = 0.5773502691896258;  // 1 / sqrt(3)
constexpr double sixth = 0.4082482904638631;  // 1 / sqrt(6)
constexpr double upwards = 0.816496580927726; // sqrt(2 / 3)

} // namespace

CloudProjection::CloudProjection(CloudView view) {
    switch (view) {
    case CloudView::Top:
        m_right = {1, 0, 0};
        m_up = {0, 1, 0};
        m_back = {0, 0, 1};
        m_horizontal = "x";
        m_vertical = "y";
        m_words = "seen from above";
        break;
    case CloudView::Front:
        m_right = {1, 0, 0};
        m_up = {0, 0, 1};
        m_back = {0, -1, 0};
        m_horizontal = "x";
        m_vertical = "z";
        m_words = "seen from the front";
        break;
    case CloudView::Side:
        m_right = {0, 1, 0};
        m_up = {0, 0, 1};
        m_back = {1, 0, 0};
        m_horizontal = "y";
        m_vertical = "z";
        m_words = "seen from the right";
        break;
    case CloudView::Iso:
        m_right = {half, half, 0};
        m_up = {-sixth, sixth, upwards};
        m_back = {third, -third, third};
        m_words = "seen from a corner";
        break;
    }
}

Place CloudProjection::placeOf(const std::array<double, 3>& point) const {
    const auto along = [&](const Direction& direction) {
        return direction[0] * point[0] + direction[1] * point[1] + direction[2] * point[2];
    };
    return {along(m_right), along(m_up)};
}
