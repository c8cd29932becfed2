#pragma once

#include <opencv2/core/types.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace converters {

/// A point of a contour: its place in the plane that is looked at, and its height over that plane.
struct PlanePoint {
    double u;
    double v;
    double height;
};

/// Finds out where contours meet themselves.
///
/// Segments are looked up in a grid along the direction in which most of them run, so that the
/// strokes of a hatch are compared with their neighbours only: the cost grows with the points. For
/// contours so tangled that it would not, the work ends at a bound.
class Crossings {
public:
    /// @param nearness  an end of an open contour this near to another part touches it; parts that
    ///                  differ more in height do not meet
    explicit Crossings(double nearness) : m_nearness(nearness) {}

    /// The first place that is found where a contour meets itself: a closed one by crossing, an
    /// open one by touching, too. Neighbouring segments do not meet.
    ///
    /// @param points  finite; of a closed contour the last is a copy of the first
    std::optional<PlanePoint> find(std::vector<PlanePoint> points, bool closed);

    /// How many contours were not looked at to the end.
    std::size_t unfinished() const { return m_unfinished; }

private:
    double m_nearness;
    std::uint64_t m_tests = 0;
    std::size_t m_unfinished = 0;
};

} // namespace converters
