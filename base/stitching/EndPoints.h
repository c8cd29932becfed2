#pragma once

#include "base/Prefetch.h"
#include "base/stitching/JoinDistance.h"
#include "base/stitching/RunEnds.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace base {

/// The first and the last point of each run, in the order of the numbers of the runs.
///
/// Keeps a run of one point as one point, and heights (y) only where there are any: of five million
/// lines, each point is a matter of eighty megabytes. So a run takes 32 bytes, one of one point 16,
/// and where there are both, each 4 more.
class EndPoints {
public:
    /// Asks for room for so many runs of two points or more.
    void reserve(std::size_t runs);

    /// Adds a run of two points or more.
    void add(const Point& first, const Point& last);
    /// Adds a run of one point.
    void add(const Point& only);
    /// Adds all runs of others.
    void add(const EndPoints& others);

    /// Number of runs.
    std::size_t size() const { return m_size; }

    Point operator[](NumberedEnd end) const {
        const std::size_t i = indexOf(end);
        return {m_plane[i].x, m_heights.empty() ? 0.0 : m_heights[i], m_plane[i].z};
    }

    bool hasOnePoint(RunNumber run) const {
        return indexOf(NumberedEnd::first(run)) == indexOf(NumberedEnd::last(run));
    }

    /// Whether both ends of a run are the same, as those of a run of one point.
    bool hasEqualEnds(RunNumber run) const;

    /// Asks the processor to fetch an end.
    void prefetch(NumberedEnd end) const { base::prefetch(&m_plane[indexOf(end)]); }

private:
    /// A point without its height.
    struct PlanePoint {
        double x;
        double z;
    };

    std::size_t indexOf(NumberedEnd end) const {
        const std::size_t run = end.run();
        if (m_begins.empty()) {
            return run * m_pointsPerRun + (end.isLast() ? m_pointsPerRun - 1 : 0);
        }
        return end.isLast() ? std::size_t{m_begins[run + 1]} - 1 : m_begins[run];
    }
    void beginRun(std::size_t points);
    void append(const Point& point);

    std::size_t m_size = 0;
    /// Of all runs, as long as they have equally many.
    std::size_t m_pointsPerRun = 0;
    std::vector<PlanePoint> m_plane;
    /// Of all points, or none as long as all are zero.
    std::vector<double> m_heights;
    /// Where the points of each run begin, and behind them where the last ones end; or none.
    std::vector<std::uint32_t> m_begins;
};

} // namespace base
