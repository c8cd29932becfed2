#include "tools/cloudconv/preview/DrawingLegend.h"

#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/preview/DrawingPainter.h"
#include "tools/cloudconv/preview/PlotFrame.h"
#include "tools/cloudconv/preview/PlotTicks.h"

#include <array>

namespace {

constexpr std::size_t kindCount = 4;
/// Lines of the legend for all but contours.
constexpr int otherLines = 9;
constexpr int lengthDigits = 4;
constexpr int gapDigits = 3;

/// Contours that have a line of the legend together.
struct Sum {
    std::size_t contours = 0;
    double length = 0.0;

    void add(const DrawnContour& contour) {
        ++contours;
        length += contour.length;
    }
};

class DrawingLegend {
public:
    DrawingLegend(Canvas& canvas, Legend& legend, const DrawingScene& scene,
                  const DrawingStyle& style, const std::string& unit)
        : m_canvas(canvas), m_legend(legend), m_scene(scene), m_style(style),
          m_length(unit.empty() ? "length" : "length (" + unit + ')'),
          m_room(static_cast<std::size_t>(std::max(0, legend.room() - otherLines))) {
        for (const DrawnContour& contour : scene.contours) {
            m_kinds.at(static_cast<std::size_t>(contour.kind)).add(contour);
        }
    }

    void write() {
        if (m_style.isOneByOne()) {
            listContours();
        } else if (m_style.isByLayer()) {
            listLayers();
        } else {
            listKinds();
        }
        m_legend.gap();
        explainSigns();
        if (m_scene.pointsWithoutPlace > 0) {
            m_legend.gap();
            m_legend.note(leftOutText(m_scene.pointsWithoutPlace));
        }
    }

private:
    bool has(ContourKind kind) const {
        return m_kinds.at(static_cast<std::size_t>(kind)).contours > 0;
    }

    void row(const Colour& colour, bool isLine, const std::string& text, double length) {
        constexpr double half = 13.0;
        constexpr double thickness = 3.0;
        const auto sign = [&](const Place& at) {
            if (isLine) {
                m_canvas.line({at.x - half, at.y}, {at.x + half, at.y}, {colour, thickness});
            } else {
                m_canvas.dots({{at.x - half / 2, at.y}, at, {at.x + half / 2, at.y}},
                              {colour, thickness + 1.0});
            }
        };
        m_legend.row(sign, text, isLine ? shortText(length, lengthDigits) : "");
    }

    void listContours() {
        m_legend.heading("Contours", m_length);
        const std::vector<std::size_t> indices = listed();
        for (const std::size_t i : indices) {
            const DrawnContour& contour = m_scene.contours[i];
            const std::string gap =
                contour.gap > 0.0 ? " by " + shortText(contour.gap, gapDigits) : std::string();
            row(m_style.colourOf(i), contour.kind != ContourKind::Points,
                std::to_string(i + 1) + "  " + nameOf(contour.kind) + gap, contour.length);
        }
        writeMore(m_scene.contours.size() - indices.size(), "contour", "contours");
    }

    /// The contours that there is room for: the open ones first when not for all.
    std::vector<std::size_t> listed() const {
        std::vector<std::size_t> indices(m_scene.contours.size());
        for (std::size_t i = 0; i < indices.size(); ++i) {
            indices[i] = i;
        }
        if (indices.size() > m_room) {
            std::stable_partition(indices.begin(), indices.end(), [&](std::size_t i) {
                return m_scene.contours[i].kind == ContourKind::Open;
            });
            indices.resize(m_room);
            std::sort(indices.begin(), indices.end());
        }
        return indices;
    }

    /// The layers of the greatest length when there is no room for all.
    void listLayers() {
        std::vector<Sum> sums(m_scene.layers.size());
        for (const DrawnContour& contour : m_scene.contours) {
            sums[contour.layer].add(contour);
        }
        std::vector<std::size_t> order(sums.size());
        for (std::size_t i = 0; i < order.size(); ++i) {
            order[i] = i;
        }
        if (order.size() > m_room) {
            std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
                return sums[a].length > sums[b].length;
            });
            order.resize(m_room);
            std::sort(order.begin(), order.end());
        }
        m_legend.heading("Layers", m_length);
        for (const std::size_t layer : order) {
            row(m_style.colourOfLayer(layer), true,
                m_scene.layers[layer] + " (" + std::to_string(sums[layer].contours) + ')',
                sums[layer].length);
        }
        writeMore(sums.size() - order.size(), "layer", "layers");
    }

    void listKinds() {
        m_legend.heading("Contours", m_length);
        for (std::size_t i = 0; i < kindCount; ++i) {
            const auto kind = static_cast<ContourKind>(i);
            if (has(kind)) {
                row(m_style.colourOf(kind), kind != ContourKind::Points,
                    std::to_string(m_kinds.at(i).contours) + "  " + nameOf(kind),
                    m_kinds.at(i).length);
            }
        }
    }

    void writeMore(std::size_t more, const std::string& singular, const std::string& plural) {
        if (more > 0) {
            m_legend.note("and " + counted(more, "more " + singular, "more " + plural));
        }
    }

    void explainSigns() {
        const bool hasLines = m_kinds.back().contours < m_scene.contours.size();
        if (m_style.hasMarks() && hasLines) {
            m_legend.row([&](const Place& at) { drawStart(m_canvas, at, plotGrey); },
                         "start of a contour");
            m_legend.row(
                [&](const Place& at) {
                    drawArrow(m_canvas, {at, {1.0, 0.0}}, plotGrey);
                },
                "direction of the walk");
        }
        if (m_style.hasWays() && m_scene.contours.size() > 1) {
            m_legend.row(
                [&](const Place& at) {
                    m_canvas.line({at.x - 13.0, at.y}, {at.x + 13.0, at.y}, wayPen);
                },
                "way to the next contour");
        }
        if (m_style.hasMarks() && has(ContourKind::Open)) {
            m_legend.row([&](const Place& at) { drawOpenEnd(m_canvas, at); }, "open end");
        }
        if (m_style.hasMarks() && !m_scene.gaps.empty()) {
            explainGaps();
        }
    }

    void explainGaps() {
        const auto smallest = std::min_element(
            m_scene.gaps.begin(), m_scene.gaps.end(),
            [](const DrawnGap& a, const DrawnGap& b) { return a.distance < b.distance; });
        const std::string width = shortText(smallest->distance, gapDigits);
        m_legend.row([&](const Place& at) { m_canvas.ring(at, 7.0, gapPen); },
                     m_scene.gaps.size() == 1
                         ? "gap of " + width
                         : counted(m_scene.gaps.size(), "gap") + " from " + width);
    }

    Canvas& m_canvas;
    Legend& m_legend;
    const DrawingScene& m_scene;
    const DrawingStyle& m_style;
    std::string m_length;
    /// Lines for contours, layers or kinds.
    std::size_t m_room;
    std::array<Sum, kindCount> m_kinds = {};
};

} // namespace

void writeLegend(Canvas& canvas, Legend& legend, const DrawingScene& scene,
                 const DrawingStyle& style, const std::string& unit) {
    DrawingLegend(canvas, legend, scene, style, unit).write();
}

std::string summaryOf(const DrawingScene& scene) {
    std::array<std::size_t, kindCount> counts = {};
    for (const DrawnContour& contour : scene.contours) {
        ++counts.at(static_cast<std::size_t>(contour.kind));
    }
    std::string kinds;
    for (std::size_t kind = 0; kind < counts.size(); ++kind) {
        if (counts.at(kind) > 0) {
            kinds += kinds.empty() ? "" : ", ";
            const auto named = static_cast<ContourKind>(kind);
            kinds += std::to_string(counts.at(kind)) +
                     (named == ContourKind::Points ? " of " : " ") + nameOf(named);
        }
    }
    return counted(scene.contours.size(), "contour") + " (" + kinds + "), " +
           counted(scene.points, "point");
}
