#pragma once

#include "tools/cloudconv/preview/Plane.h"

#include <optional>
#include <vector>

/// Finds room for labels, so that none covers another one, a mark, or the edge of the picture.
class LabelPlaces {
public:
    /// @param area  where labels may be
    explicit LabelPlaces(const Rectangle& area) : m_area(area) {}

    /// Keeps labels off a mark.
    void avoid(const Place& centre, double radius);

    /// Takes room for a label beside a mark; none when there is none.
    std::optional<Rectangle> take(const Place& centre, double radius, double width, double height);

private:
    bool isFree(const Rectangle& label) const;

    Rectangle m_area;
    std::vector<Rectangle> m_taken;
};
