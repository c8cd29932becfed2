#pragma once

#include "converters/detail/drawing/geometry/Vector.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

/// In which order contours are best walked. Points are looked at only, never changed; the caller
/// turns and moves what the answer says.
///
/// Both functions give the same answer on every processor, also where the last bits of coordinates
/// differ: they compare coordinates rounded to 2^-36 or so of the drawing's extent, and among equal
/// ways the contour that comes first in the input is taken. What is no finite number is taken as
/// some place. Time is about n log n in the number of contours, and linear in that of points, for
/// hostile input, too, where the answer may be less good.
namespace converters::drawing {

/// A contour as far as its order matters.
struct ContourShape {
    /// At least one point. Those of a closed contour end with a copy of the first.
    const Point* points;
    std::size_t size;
    bool closed;
    /// Where a closed contour may start: indexes into `points`, ascending; none for anywhere.
    const std::size_t* starts = nullptr;
    std::size_t numberOfStarts = 0;
};

/// The next contour to walk.
struct ContourVisit {
    /// Index into the contours asked about.
    std::size_t contour;
    /// Where a closed contour starts and ends now: index into its points, below size - 1; 0 of
    /// open contours and of those of one point.
    std::size_t firstPoint;
    /// Whether an open contour is walked from its end; closed ones keep their direction.
    bool reversed;
};

/// What finding an order has cost, in looks at places, boxes and edges, and who is told how far it
/// is.
struct OrderCost {
    std::uint64_t looks = 0;
    /// Called with the part that is done, 0 to 1; may be empty. What it throws ends the work.
    std::function<void(double)> progress = {};

    /// Tells of large numbers of steps alone, now and then: of a share of a stage, which goes on
    /// from one part of the work to another.
    void report(double begin, double end, std::size_t step, std::size_t steps) const {
        constexpr std::size_t stepsPerReport = 1 << 12;
        if (step % stepsPerReport == stepsPerReport - 1 && progress) {
            progress(begin +
                     (end - begin) * static_cast<double>(step) / static_cast<double>(steps));
        }
    }
};

/// An order with short ways between the contours: the nearest next, improved by exchanges (2-opt
/// and Or-opt among neighbours). Begins near the origin.
///
/// @param cost  what it has cost is added there, and how far it is is told there, if not null
std::vector<ContourVisit> nearestOrder(const std::vector<ContourShape>& contours,
                                       OrderCost* cost = nullptr);

/// An order in which contours inside others come before these, part by part: what lies in a closed
/// contour, then that contour, then the next part. Among equals as nearestOrder().
///
/// Inside is meant in the plane of x and y, by the even-odd rule. Contours that cross or equal each
/// other have no order between them.
///
/// @param cost  what it has cost is added there, and how far it is is told there, if not null
std::vector<ContourVisit> insideFirstOrder(const std::vector<ContourShape>& contours,
                                           OrderCost* cost = nullptr);

} // namespace converters::drawing
