#pragma once

#include "base/stitching/EndPoints.h"
#include "base/stitching/RunEnds.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace base {

/// Which cell of a grid a coordinate is in, counted along one direction. The cells are fifteen to
/// thirty times as wide as the join distance.
using Row = std::int64_t;

/// The row of a coordinate. Never decreases from one coordinate to a greater one, not even by
/// rounding. Whole numbers, which drawings prefer, are far from the sides of their row; at some
/// 7e13 rows from zero there are no further ones, and the outermost one is endless.
inline Row rowOf(double coordinate, double rowsPerUnit) {
    constexpr double endOfRows = 0x1p46;
    // In this order, what is not a number is in the outermost row.
    const double inside = std::max(-endOfRows, std::min(endOfRows, coordinate * rowsPerUnit));
    // Not std::lround: that the row around zero is wider does no harm.
    return static_cast<Row>(inside + 0.5); // NOLINT(bugprone-incorrect-roundings)
}

/// Where the ends of runs lie, coarsely: by squares over the plane of x and z, of sixteen runs each
/// on average.
///
/// Whatever order the entities are in, contours are walked without going back and forth in a large
/// memory when what is kept for runs and ends is ordered by their squares. Nothing else depends on
/// the squares.
class SpatialIndex {
public:
    /// @param ends  the ends of all runs; have to outlive this object
    SpatialIndex(const EndPoints& ends, const JoinDistance& distance);

    Row rowOf(double coordinate) const { return base::rowOf(coordinate, m_rowsPerUnit); }

    /// The runs in the order of the squares of their first ends.
    std::vector<RunNumber> runs() const;

    /// The square of a point in these rows: a range of numbers, one for each end that lies in the
    /// square, of equal ends of one run only one, and one more. The ranges of all squares follow
    /// one another from 0 up to size().
    struct Range {
        std::uint32_t begin;
        std::uint32_t size;
    };
    Range rangeOf(Row x, Row z) const {
        const std::uint32_t* const begin = &m_begins[squareOf(x, z)];
        return {begin[0], begin[1] - begin[0]};
    }
    std::uint32_t size() const { return m_begins.back(); }

private:
    /// One direction of the plane.
    struct Axis {
        double low = 0.0;
        double squaresPerRow = 0.0;
        double last = 0.0;

        std::uint32_t operator()(Row row) const {
            const double square = (static_cast<double>(row) - low) * squaresPerRow;
            return static_cast<std::uint32_t>(square < 0.0 ? 0.0 : square < last ? square : last);
        }
    };

    void layOut();
    std::uint32_t squareOf(Row x, Row z) const { return m_z(z) * m_columns + m_x(x); }
    std::uint32_t squareOf(const Point& end) const { return squareOf(rowOf(end.x), rowOf(end.z)); }

    const EndPoints& m_ends;
    double m_rowsPerUnit;
    Axis m_x;
    Axis m_z;
    std::uint32_t m_columns = 1;
    std::vector<std::uint32_t> m_begins;
};

} // namespace base
