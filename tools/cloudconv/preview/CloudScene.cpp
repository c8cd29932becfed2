#include "tools/cloudconv/preview/CloudScene.h"

namespace {

bool hasPlace(const pcl::PointXYZI& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

/// An opaque cell.
std::uint32_t packed(const Colour& colour) {
    const auto part = [](double share) {
        constexpr double most = 255.0;
        return static_cast<std::uint32_t>(std::lround(share * most));
    };
    return 0xFF000000U | part(colour.red) << 16 | part(colour.green) << 8 | part(colour.blue);
}

/// Which point each cell of a grid shows.
class Grid {
public:
    using Cloud = pcl::PointCloud<pcl::PointXYZI>;
    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    /// @param dotSize  the diameter of a dot, in cells
    Grid(std::size_t columns, std::size_t rows, double dotSize, const CloudProjection& projection)
        : m_columns(columns), m_rows(rows), m_radius(dotSize / 2), m_projection(projection),
          m_seen(columns * rows, none) {}

    /// Shows a point as a dot around a place, where nothing is in front of it.
    void show(const Cloud& cloud, std::size_t index, const Place& centre) {
        const double nearness = m_projection.nearness(cloud[index]);
        const auto [firstRow, lastRow] = reach(centre.y, m_radius, m_rows);
        for (std::size_t row = firstRow; row < lastRow; ++row) {
            const double up = static_cast<double>(row) + 0.5 - centre.y;
            const double half = std::sqrt(std::max(m_radius * m_radius - up * up, 0.25));
            const auto [first, last] = reach(centre.x, half, m_columns);
            for (std::size_t column = first; column < last; ++column) {
                std::size_t& seen = m_seen[row * m_columns + column];
                if (seen == none || m_projection.nearness(cloud[seen]) < nearness) {
                    seen = index;
                }
            }
        }
    }

    const std::vector<std::size_t>& seen() const { return m_seen; }

private:
    /// The cells that have their middle within a distance of a place; at least one, if any is.
    static std::pair<std::size_t, std::size_t> reach(double centre, double distance,
                                                     std::size_t size) {
        const auto inside = [&](double cell) {
            return static_cast<std::size_t>(
                std::min(std::max(cell, 0.0), static_cast<double>(size)));
        };
        return {inside(std::ceil(centre - distance - 0.5)),
                inside(std::floor(centre + distance + 0.5))};
    }

    std::size_t m_columns;
    std::size_t m_rows;
    double m_radius;
    const CloudProjection& m_projection;
    std::vector<std::size_t> m_seen;
};

} // namespace

CloudScene::CloudScene(const PreviewScan& scan, CloudView view, CloudColour colour)
    : m_scan(scan), m_projection(view), m_colour(colour) {
    for (const pcl::PointXYZI& point : scan.cloud) {
        if (!hasPlace(point)) {
            ++m_withoutPlace;
            continue;
        }
        m_bounds.add(placeOf(point));
        for (std::size_t axis = 0; axis < m_sides.size(); ++axis) {
            m_sides.at(axis).add(static_cast<double>(point.data[axis]) + scan.shift.at(axis));
        }
        if (colour != CloudColour::Rgb && std::isfinite(valueOf(point))) {
            m_values.add(valueOf(point));
        }
    }
}

Place CloudScene::placeOf(const pcl::PointXYZI& point) const {
    const Place shift = m_projection.placeOf(m_scan.shift);
    const Place place = m_projection.placeOf(point);
    return {place.x + shift.x, place.y + shift.y};
}

double CloudScene::valueOf(const pcl::PointXYZI& point) const {
    return m_colour == CloudColour::Height ? static_cast<double>(point.z) + m_scan.shift[2]
                                           : static_cast<double>(point.intensity);
}

/// So large that points of an even grid or row nearly touch, within what looks like dots.
double CloudScene::dotSize(const PlotScale& scale) const {
    constexpr double filled = 0.9;
    constexpr double smallest = 1.0;
    constexpr double largest = 12.0;
    const Place low = scale.pixel({m_bounds.x.low, m_bounds.y.low});
    const Place high = scale.pixel({m_bounds.x.high, m_bounds.y.high});
    const double width = std::abs(high.x - low.x);
    const double height = std::abs(high.y - low.y);
    if (std::max(width, height) < smallest) {
        return largest;
    }
    const auto points = static_cast<double>(m_scan.cloud.size() - m_withoutPlace);
    const double spacing =
        std::max(std::sqrt(width * height / points), std::max(width, height) / points);
    return std::min(std::max(filled * spacing, smallest), largest);
}

std::uint32_t CloudScene::cellOf(std::size_t index) const {
    constexpr Colour withoutValue = {0.6, 0.6, 0.6};
    constexpr std::uint32_t opaque = 0xFF000000U;
    if (m_colour == CloudColour::Rgb) {
        return opaque | m_scan.colours[index];
    }
    const double value = valueOf(m_scan.cloud[index]);
    if (!std::isfinite(value)) {
        return packed(withoutValue);
    }
    const double range = m_values.high - m_values.low;
    return packed(scaleColour(range > 0.0 ? (value - m_values.low) / range : 0.5));
}

Image CloudScene::view(const PlotScale& scale, unsigned fineness) const {
    const Rectangle& frame = scale.frame();
    Image image;
    image.columns = static_cast<std::size_t>(frame.width) * fineness;
    image.rows = static_cast<std::size_t>(frame.height) * fineness;
    const double columnsPerPixel = static_cast<double>(image.columns) / frame.width;
    const double rowsPerPixel = static_cast<double>(image.rows) / frame.height;
    Grid grid(image.columns, image.rows, dotSize(scale) * fineness, m_projection);
    for (std::size_t i = 0; i < m_scan.cloud.size(); ++i) {
        if (hasPlace(m_scan.cloud[i])) {
            const Place pixel = scale.pixel(placeOf(m_scan.cloud[i]));
            grid.show(
                m_scan.cloud, i,
                {(pixel.x - frame.left) * columnsPerPixel, (pixel.y - frame.top) * rowsPerPixel});
        }
    }
    image.cells.reserve(grid.seen().size());
    for (const std::size_t index : grid.seen()) {
        image.cells.push_back(index == Grid::none ? 0 : cellOf(index));
    }
    return image;
}
