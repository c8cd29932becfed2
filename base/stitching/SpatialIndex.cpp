// Two counting sorts. The square of an end is known from its coordinates alone; how many ends each
// square has is counted, and the prefix sums of the counts say where its range begins:
//
//     ends of squares      2  0  3  1
//     ranges begin at   0  3  4  8  10      each has one number more than ends
//
// The runs are ordered in the same way, by the squares of their first ends: where a square's runs
// begin is the sum of the runs before it, and each run goes to the next free index of its square.
//
// Not done: sorting by square, which gives the same order at n log n; and an order along a curve
// that fills space, which keeps neighbours closer together. Squares are near enough as they are:
// what is kept for the ends of one square fits the fastest cache.

#include "base/stitching/SpatialIndex.h"

#include "base/LargePages.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace base {

namespace {

constexpr int runsPerSquare = 16;

/// The rows between the lowest and the highest coordinate in one direction.
struct Extent {
    double low = 0.0;
    double high = 0.0;

    double size() const { return high - low; }
};

template <typename Coordinate>
Extent extentOf(const std::vector<Point>& ends, Coordinate coordinate, double rowsPerUnit) {
    double low = HUGE_VAL;
    double high = -HUGE_VAL;
    for (const Point& end : ends) {
        const double value = end.*coordinate;
        if (std::isfinite(value)) {
            low = std::min(low, value);
            high = std::max(high, value);
        }
    }
    if (low > high) {
        return {};
    }
    return {static_cast<double>(rowOf(low, rowsPerUnit)),
            static_cast<double>(rowOf(high, rowsPerUnit))};
}

} // namespace

SpatialIndex::SpatialIndex(const std::vector<Point>& ends, const JoinDistance& distance)
    : m_ends(ends), m_rowsPerUnit(distance.rowsPerUnit()) {
    layOut(ends);
    // How many ends each square has, entered for the one behind it; then, where its range begins.
    for (const Point& end : ends) {
        ++m_begins[squareOf(end) + 1];
    }
    for (std::size_t square = 1; square < m_begins.size(); ++square) {
        m_begins[square] += m_begins[square - 1] + 1;
    }
}

/// Lays squares over all ends.
void SpatialIndex::layOut(const std::vector<Point>& ends) {
    const Extent x = extentOf(ends, &Point::x, m_rowsPerUnit);
    const Extent z = extentOf(ends, &Point::z, m_rowsPerUnit);
    const double squares = static_cast<double>(ends.size()) / (2 * runsPerSquare) + 1;
    const double side = std::max(
        {std::sqrt(x.size() * z.size() / squares), x.size() / squares, z.size() / squares, 1.0});
    m_x = {x.low, 1 / side, std::floor(x.size() / side)};
    m_z = {z.low, 1 / side, std::floor(z.size() / side)};
    m_columns = static_cast<std::uint32_t>(m_x.last) + 1;
    m_begins.resize((static_cast<std::size_t>(m_z.last) + 1) * m_columns + 1);
}

std::vector<RunNumber> SpatialIndex::runs() const {
    std::vector<std::uint32_t> squares;
    reserveLarge(squares, m_ends.size() / 2);
    // How many runs each square has, entered for the one behind it; then, where its first run goes.
    std::vector<RunNumber> next(m_begins.size());
    for (std::size_t end = 0; end < m_ends.size(); end += 2) {
        squares.push_back(squareOf(m_ends[end]));
        ++next[squares.back() + 1];
    }
    for (std::size_t square = 1; square < next.size(); ++square) {
        next[square] += next[square - 1];
    }
    std::vector<RunNumber> runs;
    reserveLarge(runs, squares.size());
    runs.resize(squares.size());
    for (std::size_t run = 0; run < squares.size(); ++run) {
        runs[next[squares[run]]++] = static_cast<RunNumber>(run);
    }
    return runs;
}

} // namespace base
