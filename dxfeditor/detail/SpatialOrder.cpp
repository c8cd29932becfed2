#include "dxfeditor/detail/SpatialOrder.h"

#include "dxfeditor/detail/LargePages.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace dxfeditor {

namespace {

using Point = Run::Point;

/// Keeps all that is calculated with coordinates finite, also from what is not a number.
double bounded(double coordinate) {
    constexpr double bound = 0x1p40;
    return std::max(-bound, std::min(bound, coordinate));
}

/// Cells over the plane of the cloud that the drawing lies in, as many as there are runs for.
class CoarseGrid {
public:
    explicit CoarseGrid(const std::vector<Point>& ends) {
        double highX = m_lowX = bounded(ends[0].x);
        double highZ = m_lowZ = bounded(ends[0].z);
        for (std::size_t end = 2; end < ends.size(); end += 2) {
            const double x = bounded(ends[end].x);
            const double z = bounded(ends[end].z);
            m_lowX = std::min(m_lowX, x);
            highX = std::max(highX, x);
            m_lowZ = std::min(m_lowZ, z);
            highZ = std::max(highZ, z);
        }
        const double extentX = highX - m_lowX;
        const double extentZ = highZ - m_lowZ;
        const double cells = static_cast<double>(ends.size()) / (2 * runsPerCell) + 1;
        const double side =
            std::max(std::sqrt(extentX * extentZ / cells), std::max(extentX, extentZ) / cells);
        constexpr double leastSide = 1e-300; // Has an inverse.
        m_cellsPerUnit = side > leastSide ? 1 / side : 0;
        m_columns = static_cast<std::uint32_t>(extentX * m_cellsPerUnit) + 1;
        m_rows = static_cast<std::uint32_t>(extentZ * m_cellsPerUnit) + 1;
    }

    std::size_t size() const { return std::size_t{m_columns} * m_rows; }

    std::uint32_t cellOf(const Point& point) const {
        const auto column =
            static_cast<std::uint32_t>((bounded(point.x) - m_lowX) * m_cellsPerUnit);
        const auto row = static_cast<std::uint32_t>((bounded(point.z) - m_lowZ) * m_cellsPerUnit);
        return row * m_columns + column;
    }

private:
    static constexpr int runsPerCell = 16;

    double m_lowX;
    double m_lowZ;
    double m_cellsPerUnit;
    std::uint32_t m_columns;
    std::uint32_t m_rows;
};

} // namespace

std::vector<RunNumber> spatialOrder(const std::vector<Point>& ends) {
    const std::size_t runs = ends.size() / 2;
    std::vector<RunNumber> order;
    if (runs == 0) {
        return order;
    }
    const CoarseGrid grid(ends);
    std::vector<std::uint32_t> cells;
    reserveLarge(cells, runs);
    // How many runs are in the cells up to each; then, where the next run of the cell goes.
    std::vector<RunNumber> behind(grid.size() + 1);
    for (std::size_t run = 0; run < runs; ++run) {
        cells.push_back(grid.cellOf(ends[2 * run]));
        ++behind[cells.back() + 1];
    }
    for (std::size_t cell = 1; cell < behind.size(); ++cell) {
        behind[cell] += behind[cell - 1];
    }
    reserveLarge(order, runs);
    order.resize(runs);
    for (std::size_t run = 0; run < runs; ++run) {
        order[behind[cells[run]]++] = static_cast<RunNumber>(run);
    }
    return order;
}

} // namespace dxfeditor
