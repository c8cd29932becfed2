// A page has each point as a place on a grid of 2^21 steps along the scan's longest side: finer
// than a screen shows until a thousandth of the scan fills it, and 8 bytes for three coordinates.
//
// The points come in an order of which any beginning is an even selection of all: so the page shows
// the first ones at once, and draws no more of them than it can while the view moves; and of more
// points than it takes, it has the first ones.

#include "tools/cloudconv/page/ScanPage.h"

#include "tools/cloudconv/page/PageWriter.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

using nlohmann::json;

constexpr unsigned gridBits = 21;
constexpr std::uint32_t gridSteps = (1U << gridBits) - 1;
/// So that a page shows something before all of it is decoded.
constexpr std::size_t blockSize = std::size_t(1) << 18;

/// The smallest and the largest of numbers.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    double extent() const { return low < high ? high - low : 0.0; }
};

bool hasPlace(const pcl::PointXYZI& point) {
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

std::vector<std::uint32_t> indicesWithPlace(const pcl::PointCloud<pcl::PointXYZI>& cloud) {
    std::vector<std::uint32_t> indices;
    indices.reserve(cloud.size());
    for (std::size_t i = 0; i < cloud.size(); ++i) {
        if (hasPlace(cloud[i])) {
            indices.push_back(static_cast<std::uint32_t>(i));
        }
    }
    return indices;
}

/// A number with each bit flipped or not, as the bits below it have it: so numbers below a power of
/// two stay different, and below it.
std::uint32_t scrambled(std::uint32_t number) {
    // Even factors carry bits upwards only.
    for (const std::uint64_t factor : {0x6C50B47CU, 0xB82F1E52U, 0xC7AFE638U, 0x8D22F6E6U}) {
        number ^= static_cast<std::uint32_t>(number * factor & 0xFFFFFFFFU);
    }
    return number;
}

std::uint32_t reversed(std::uint32_t number, unsigned bits) {
    std::uint32_t result = 0;
    for (unsigned i = 0; i < bits; ++i) {
        result = result << 1 | (number >> i & 1U);
    }
    return result;
}

/// At most so many of them, each beginning of which is an even selection: of numbers with reversed
/// bits, 0, 4, 2, 6, 1, 5, 3, 7, the first two are one of each half, the first four one of each
/// quarter. Which one is scrambled, as scans in rows would show stripes.
std::vector<std::uint32_t> evenlyOrdered(const std::vector<std::uint32_t>& indices,
                                         std::size_t most) {
    unsigned bits = 0;
    while (std::uint64_t(1) << bits < indices.size()) {
        ++bits;
    }
    const std::uint64_t mask = (std::uint64_t(1) << bits) - 1;
    std::vector<std::uint32_t> ordered;
    const std::size_t wanted = std::min(most, indices.size());
    ordered.reserve(wanted);
    for (std::uint64_t i = 0; ordered.size() < wanted; ++i) {
        const std::uint32_t number = scrambled(static_cast<std::uint32_t>(i));
        const std::uint32_t at = reversed(static_cast<std::uint32_t>(number & mask), bits);
        if (at < indices.size()) {
            ordered.push_back(indices[at]);
        }
    }
    return ordered;
}

class ScanWriter {
public:
    explicit ScanWriter(const ScanPage& page)
        : m_page(page), m_indices(indicesWithPlace(page.cloud)), m_withPlace(m_indices.size()) {
        m_indices = evenlyOrdered(m_indices, page.mostPoints);
        for (const std::uint32_t index : m_indices) {
            const pcl::PointXYZI& point = page.cloud[index];
            for (std::size_t axis = 0; axis < m_sides.size(); ++axis) {
                m_sides.at(axis).add(static_cast<double>(point.data[axis]));
            }
            if (std::isfinite(point.intensity)) {
                m_intensities.add(static_cast<double>(point.intensity));
            }
        }
        const double longest =
            std::max({m_sides[0].extent(), m_sides[1].extent(), m_sides[2].extent()});
        m_step = longest > 0.0 ? longest / gridSteps : 1.0;
    }

    std::vector<unsigned char> write() const {
        PageWriter writer(scanPageSource(), m_page.title);
        writer.add("facts", facts());
        for (std::size_t begin = 0; begin < m_indices.size(); begin += blockSize) {
            addBlock(writer, begin, std::min(begin + blockSize, m_indices.size()));
        }
        return writer.finish();
    }

private:
    json facts() const {
        const std::size_t points = m_page.cloud.size();
        const bool hasIntensity = m_page.hasIntensity && m_intensities.low <= m_intensities.high;
        const bool hasColour = !m_page.colours.empty() && m_page.colours.size() == points;
        json lowest = {0.0, 0.0, 0.0};
        json highest = {0.0, 0.0, 0.0};
        for (std::size_t axis = 0; axis < m_sides.size() && !m_indices.empty(); ++axis) {
            lowest[axis] = m_sides.at(axis).low + m_page.shift.at(axis);
            highest[axis] = m_sides.at(axis).high + m_page.shift.at(axis);
        }
        json facts = {{"title", m_page.title},        {"points", points},
                      {"withPlace", m_withPlace},     {"shown", m_indices.size()},
                      {"limit", m_page.mostPoints},   {"lowest", lowest},
                      {"highest", highest},           {"step", m_step},
                      {"hasIntensity", hasIntensity}, {"hasColour", hasColour},
                      {"intensity", json::array()},   {"notes", m_page.notes}};
        if (hasIntensity) {
            facts["intensity"] = {m_intensities.low, m_intensities.high};
        }
        if (m_page.cloud.height > 1) {
            facts["organised"] = {m_page.cloud.width, m_page.cloud.height};
        }
        return facts;
    }

    std::uint32_t onGrid(const pcl::PointXYZI& point, std::size_t axis) const {
        const double steps =
            (static_cast<double>(point.data[axis]) - m_sides.at(axis).low) / m_step;
        return static_cast<std::uint32_t>(std::lround(std::min(steps, double(gridSteps))));
    }

    /// 0 for a point without intensity, else 1 for the lowest and 65535 for the highest.
    std::uint16_t intensityOf(const pcl::PointXYZI& point) const {
        constexpr double steps = 65534.0;
        if (!std::isfinite(point.intensity)) {
            return 0;
        }
        const double extent = m_intensities.extent();
        const double above = static_cast<double>(point.intensity) - m_intensities.low;
        return static_cast<std::uint16_t>(
            1 + std::lround(extent > 0.0 ? std::min(above / extent, 1.0) * steps : steps / 2));
    }

    void addBlock(PageWriter& writer, std::size_t begin, std::size_t end) const {
        constexpr unsigned bitsInFirst = 32 - gridBits;
        std::vector<std::uint32_t> places;
        std::vector<std::uint16_t> intensities;
        std::vector<std::uint8_t> colours;
        const bool hasColour = m_page.colours.size() == m_page.cloud.size();
        for (std::size_t i = begin; i < end; ++i) {
            const pcl::PointXYZI& point = m_page.cloud[m_indices[i]];
            const std::uint32_t y = onGrid(point, 1);
            places.push_back(onGrid(point, 0) | (y & ((1U << bitsInFirst) - 1)) << gridBits);
            places.push_back(y >> bitsInFirst | onGrid(point, 2) << (gridBits - bitsInFirst));
            if (m_page.hasIntensity) {
                intensities.push_back(intensityOf(point));
            }
            if (hasColour) {
                const std::uint32_t colour = m_page.colours[m_indices[i]];
                for (const unsigned shift : {16U, 8U, 0U}) {
                    colours.push_back(static_cast<std::uint8_t>(colour >> shift & 0xFFU));
                }
            }
        }
        writer.add("places", places);
        writer.add("intensities", intensities);
        writer.add("colours", colours);
    }

    const ScanPage& m_page;
    std::vector<std::uint32_t> m_indices;
    std::size_t m_withPlace;
    std::array<Range, 3> m_sides;
    Range m_intensities;
    double m_step = 1.0;
};

} // namespace

std::vector<unsigned char> scanPage(const ScanPage& page) {
    return ScanWriter(page).write();
}
