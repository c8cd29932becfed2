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

/// Hands the ends of all runs to the visitor, of equal ends of one run only one.
template <typename Visitor>
void visitEnds(const EndPoints& ends, Visitor visitor) {
    for (std::size_t i = 0; i < ends.size(); ++i) {
        const auto run = static_cast<RunNumber>(i);
        const Point first = ends[NumberedEnd::first(run)];
        visitor(first);
        if (!ends.hasOnePoint(run)) {
            if (const Point last = ends[NumberedEnd::last(run)]; !(first == last)) {
                visitor(last);
            }
        }
    }
}

/// The lowest and the highest coordinate in one direction.
class Extent {
public:
    void add(double coordinate) {
        if (std::isfinite(coordinate)) {
            m_low = std::min(m_low, coordinate);
            m_high = std::max(m_high, coordinate);
        }
    }
    /// The row of the lowest; 0 when there is none.
    double lowRow(double rowsPerUnit) const { return isEmpty() ? 0.0 : row(m_low, rowsPerUnit); }
    /// Rows up to that of the highest.
    double rows(double rowsPerUnit) const {
        return isEmpty() ? 0.0 : row(m_high, rowsPerUnit) - row(m_low, rowsPerUnit);
    }

private:
    static double row(double coordinate, double rowsPerUnit) {
        return static_cast<double>(rowOf(coordinate, rowsPerUnit));
    }
    bool isEmpty() const { return m_low > m_high; }

    double m_low = HUGE_VAL;
    double m_high = -HUGE_VAL;
};

} // namespace

SpatialIndex::SpatialIndex(const EndPoints& ends, const JoinDistance& distance)
    : m_ends(ends), m_rowsPerUnit(distance.rowsPerUnit()) {
    layOut();
    // How many ends each square has, entered for the one behind it; then, where its range begins.
    visitEnds(ends, [&](const Point& end) { ++m_begins[squareOf(end) + 1]; });
    for (std::size_t square = 1; square < m_begins.size(); ++square) {
        m_begins[square] += m_begins[square - 1] + 1;
    }
}

/// Lays squares over all ends.
void SpatialIndex::layOut() {
    Extent x;
    Extent z;
    visitEnds(m_ends, [&](const Point& end) {
        x.add(end.x);
        z.add(end.z);
    });
    const double xRows = x.rows(m_rowsPerUnit);
    const double zRows = z.rows(m_rowsPerUnit);
    const double squares = static_cast<double>(m_ends.size()) / runsPerSquare + 1;
    const double side =
        std::max({std::sqrt(xRows * zRows / squares), xRows / squares, zRows / squares, 1.0});
    m_x = {x.lowRow(m_rowsPerUnit), 1 / side, std::floor(xRows / side)};
    m_z = {z.lowRow(m_rowsPerUnit), 1 / side, std::floor(zRows / side)};
    m_columns = static_cast<std::uint32_t>(m_x.last) + 1;
    m_begins.resize((static_cast<std::size_t>(m_z.last) + 1) * m_columns + 1);
}

std::vector<RunNumber> SpatialIndex::runs() const {
    std::vector<std::uint32_t> squares;
    reserveLarge(squares, m_ends.size());
    // How many runs each square has, entered for the one behind it; then, where its first run goes.
    std::vector<RunNumber> next(m_begins.size());
    for (std::size_t run = 0; run < m_ends.size(); ++run) {
        squares.push_back(squareOf(m_ends[NumberedEnd::first(static_cast<RunNumber>(run))]));
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
