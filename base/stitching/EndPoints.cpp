#include "base/stitching/EndPoints.h"

#include "base/LargePages.h"

namespace base {

void EndPoints::reserve(std::size_t runs) {
    reserveLarge(m_plane, 2 * runs);
}

void EndPoints::add(const Point& first, const Point& last) {
    beginRun(2);
    append(first);
    append(last);
}

void EndPoints::add(const Point& only) {
    beginRun(1);
    append(only);
}

void EndPoints::add(const EndPoints& others) {
    for (std::size_t i = 0; i < others.size(); ++i) {
        const auto run = static_cast<RunNumber>(i);
        if (others.hasOnePoint(run)) {
            add(others[NumberedEnd::first(run)]);
        } else {
            add(others[NumberedEnd::first(run)], others[NumberedEnd::last(run)]);
        }
    }
}

bool EndPoints::hasEqualEnds(RunNumber run) const {
    return hasOnePoint(run) || (*this)[NumberedEnd::first(run)] == (*this)[NumberedEnd::last(run)];
}

/// Goes over to an index when the run has not as many points as those before it.
void EndPoints::beginRun(std::size_t points) {
    if (m_size == 0) {
        m_pointsPerRun = points;
    } else if (m_begins.empty() && points != m_pointsPerRun) {
        reserveLarge(m_begins, m_plane.capacity() / 2 + 1);
        for (std::size_t run = 0; run <= m_size; ++run) {
            m_begins.push_back(static_cast<std::uint32_t>(run * m_pointsPerRun));
        }
    }
    ++m_size;
    if (!m_begins.empty()) {
        m_begins.push_back(static_cast<std::uint32_t>(m_plane.size() + points));
    }
}

void EndPoints::append(const Point& point) {
    if (m_heights.empty() && point.y != 0.0) {
        reserveLarge(m_heights, m_plane.capacity());
        m_heights.resize(m_plane.size(), 0.0);
    }
    m_plane.push_back({point.x, point.z});
    if (!m_heights.empty() || point.y != 0.0) {
        m_heights.push_back(point.y);
    }
}

} // namespace base
