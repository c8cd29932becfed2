#include "tools/cloudconv/preview/DrawingPicture.h"

#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/preview/LabelPlaces.h"
#include "tools/cloudconv/preview/Legend.h"
#include "tools/cloudconv/preview/PixelPath.h"
#include "tools/cloudconv/preview/PlotFrame.h"
#include "tools/cloudconv/preview/SparsePlaces.h"

#include <array>
#include <optional>

namespace {

constexpr Colour white = {1.0, 1.0, 1.0};
constexpr double strokeWidth = 2.0;
constexpr double startRadius = 4.5;
constexpr double endRadius = 6.5;
constexpr double ringRadius = 15.0;
constexpr double dotWidth = 4.0;
constexpr Pen jumpPen = {{0.6, 0.6, 0.6}, 1.0, true};
constexpr Pen gapPen = {{0.75, 0.0, 0.2}, 2.0};
/// Of contours that have a number in the picture, and a jump drawn to them.
constexpr std::size_t mostNumbered = 30;
constexpr std::size_t mostJumps = 200;

bool isLine(const DrawnContour& contour) {
    return contour.kind != ContourKind::Points;
}

/// @param size  1, or less where there are many
void drawArrow(Canvas& canvas, const Arrow& arrow, const Colour& colour, double size = 1.0) {
    const auto triangle = [&](double length, double width) {
        const Place& at = arrow.place;
        const Place& ahead = arrow.direction;
        return std::vector<Place>{
            {at.x + length * ahead.x, at.y + length * ahead.y},
            {at.x - length * ahead.x - width * ahead.y, at.y - length * ahead.y + width * ahead.x},
            {at.x - length * ahead.x + width * ahead.y, at.y - length * ahead.y - width * ahead.x}};
    };
    canvas.polygon(triangle(8.0 * size, 7.0 * size), white);
    canvas.polygon(triangle(6.0 * size, 5.0 * size), colour);
}

/// @param size  1, or less where there are many
void drawStart(Canvas& canvas, const Place& place, const Colour& colour, double size = 1.0) {
    canvas.disc(place, (startRadius + 1.5) * size, white);
    canvas.disc(place, startRadius * size, colour);
}

void drawEnd(Canvas& canvas, const Place& place, double size = 1.0) {
    const double radius = endRadius * size;
    canvas.outline({place.x - radius, place.y - radius, 2 * radius, 2 * radius},
                   {plotInk, 1.5 * size});
}

/// How large signs are, of 1, so that those of so many contours do not cover all there is to see.
double signSize(const Rectangle& area, std::size_t contours) {
    constexpr double roomOfLargest = 24.0;
    constexpr double smallest = 0.25;
    const double room = std::sqrt(area.width * area.height / static_cast<double>(contours));
    return std::min(std::max(room / roomOfLargest, smallest), 1.0);
}

/// The same for the dots of so many points.
double dotSize(const Rectangle& area, std::size_t points) {
    constexpr double filled = 0.5;
    constexpr double smallest = 1.5;
    const double room = std::sqrt(area.width * area.height / static_cast<double>(points));
    return std::min(std::max(filled * room, smallest), dotWidth);
}

/// The picture inside its axes.
class WalkPainter {
public:
    WalkPainter(Canvas& canvas, const DrawingScene& scene, const PlotScale& scale)
        : m_canvas(canvas), m_scene(scene), m_scale(scale), m_labels(scale.frame()),
          m_signSize(signSize(scale.frame(), scene.contours.size())) {}

    void paint() {
        m_canvas.clip(m_scale.frame());
        drawJumps();
        drawLines();
        drawPoints();
        drawArrows();
        drawStartsAndEnds();
        drawGaps();
        drawNumbers();
        m_canvas.unclip();
    }

private:
    /// From the end of each contour to the start of the next one.
    void drawJumps() {
        for (std::size_t i = 1; i < m_scene.contours.size() && i <= mostJumps; ++i) {
            const Place& from = m_scene.contours[i - 1].places.back();
            const Place& to = m_scene.contours[i].places.front();
            if (canBeShown(from) && canBeShown(to)) {
                m_canvas.line(m_scale.pixel(from), m_scale.pixel(to), jumpPen);
            }
        }
    }

    /// Each colour in one go: that is less to write and to draw.
    void drawLines() {
        constexpr Place lift = {HUGE_VAL, HUGE_VAL};
        for (std::size_t colour = 0; colour < contourColourCount; ++colour) {
            std::vector<Place> paths;
            for (std::size_t i = colour; i < m_scene.contours.size(); i += contourColourCount) {
                if (isLine(m_scene.contours[i])) {
                    const std::vector<Place> path = pixelPath(m_scene.contours[i].places, m_scale);
                    paths.insert(paths.end(), path.begin(), path.end());
                    paths.push_back(lift);
                }
            }
            m_canvas.path(paths, {contourColour(colour), std::max(strokeWidth * m_signSize, 0.8)});
        }
    }

    void drawPoints() {
        SparsePlaces sparse(1.0);
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            std::vector<Place> dots;
            for (const Place& place : m_scene.contours[i].places) {
                if (!isLine(m_scene.contours[i]) && canBeShown(place) &&
                    sparse.take(m_scale.pixel(place))) {
                    dots.push_back(m_scale.pixel(place));
                }
            }
            m_canvas.dots(dots, {contourColour(i), dotSize(m_scale.frame(), m_scene.points)});
        }
    }

    void drawArrows() {
        SparsePlaces sparse(18.0);
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            if (!isLine(m_scene.contours[i])) {
                continue;
            }
            for (const Arrow& arrow : arrowsAlong(pixelPath(m_scene.contours[i].places, m_scale))) {
                if (sparse.take(arrow.place)) {
                    drawArrow(m_canvas, arrow, contourColour(i), std::max(m_signSize, 0.5));
                }
            }
        }
    }

    void drawStartsAndEnds() {
        SparsePlaces starts(3.0);
        SparsePlaces ends(3.0);
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            const DrawnContour& contour = m_scene.contours[i];
            if (!isLine(contour)) {
                continue;
            }
            if (canBeShown(contour.places.front()) &&
                starts.take(m_scale.pixel(contour.places.front()))) {
                drawStart(m_canvas, m_scale.pixel(contour.places.front()), contourColour(i),
                          m_signSize);
            }
            for (const Place& end : {contour.places.front(), contour.places.back()}) {
                if (contour.kind == ContourKind::Open && canBeShown(end) &&
                    ends.take(m_scale.pixel(end))) {
                    drawEnd(m_canvas, m_scale.pixel(end), m_signSize);
                    m_labels.avoid(m_scale.pixel(end), endRadius);
                }
            }
        }
    }

    void drawGaps() {
        constexpr int digits = 3;
        constexpr Lettering lettering = {plotTextSize, gapPen.colour, true};
        SparsePlaces sparse(ringRadius);
        for (const DrawnGap& gap : m_scene.gaps) {
            const Place first = m_scale.pixel(gap.first);
            const Place second = m_scale.pixel(gap.second);
            const Place middle = {(first.x + second.x) / 2, (first.y + second.y) / 2};
            if (!sparse.take(middle)) {
                continue;
            }
            const double radius = std::max(ringRadius, distanceOf(first, second) / 2 + ringRadius);
            m_canvas.ring(middle, radius, gapPen);
            m_labels.avoid(middle, radius);
            drawLabel("gap " + shortText(gap.distance, digits), middle, radius, lettering);
        }
    }

    void drawNumbers() {
        for (std::size_t i = 0; i < m_scene.contours.size() && i < mostNumbered; ++i) {
            const Place& start = m_scene.contours[i].places.front();
            if (isLine(m_scene.contours[i]) && canBeShown(start)) {
                const Place pixel = m_scale.pixel(start);
                m_labels.avoid(pixel, startRadius);
                drawLabel(std::to_string(i + 1), pixel, startRadius,
                          {plotTextSize, contourColour(i), true});
            }
        }
    }

    void drawLabel(const std::string& text, const Place& centre, double radius,
                   const Lettering& lettering) {
        constexpr double margin = 3.0;
        constexpr double letterHeight = 9.0;
        const double width = m_canvas.widthOf(text, lettering) + 2 * margin;
        const std::optional<Rectangle> place =
            m_labels.take(centre, radius + margin, width, letterHeight + 2 * margin);
        if (place.has_value()) {
            constexpr double opacity = 0.8;
            m_canvas.fill(*place, white, opacity);
            m_canvas.text(text, {place->left + margin, place->bottom() - margin}, lettering);
        }
    }

    Canvas& m_canvas;
    const DrawingScene& m_scene;
    const PlotScale& m_scale;
    LabelPlaces m_labels;
    double m_signSize;
};

/// "closed", or "open by 0.002".
std::string kindText(const DrawnContour& contour) {
    constexpr int digits = 3;
    return nameOf(contour.kind) +
           (contour.gap > 0.0 ? " by " + shortText(contour.gap, digits) : std::string());
}

/// The indices of contours to list, at most so many: the open ones first when not all can be.
std::vector<std::size_t> listed(const DrawingScene& scene, std::size_t most) {
    std::vector<std::size_t> indices(scene.contours.size());
    for (std::size_t i = 0; i < indices.size(); ++i) {
        indices[i] = i;
    }
    if (indices.size() > most) {
        std::stable_partition(indices.begin(), indices.end(), [&](std::size_t i) {
            return scene.contours[i].kind == ContourKind::Open;
        });
        indices.resize(most);
        std::sort(indices.begin(), indices.end());
    }
    return indices;
}

void listContours(Canvas& canvas, Legend& legend, const DrawingScene& scene,
                  const std::string& unit, int kept) {
    constexpr double half = 13.0;
    constexpr int digits = 4;
    const auto most = static_cast<std::size_t>(std::max(0, legend.room() - kept));
    legend.heading("Contours", unit.empty() ? "length" : "length (" + unit + ')');
    const std::vector<std::size_t> indices = listed(scene, most);
    for (const std::size_t i : indices) {
        const DrawnContour& contour = scene.contours[i];
        const auto sign = [&](const Place& at) {
            if (isLine(contour)) {
                canvas.line({at.x - half, at.y}, {at.x + half, at.y},
                            {contourColour(i), strokeWidth + 1.0});
            } else {
                canvas.dots({{at.x - half / 2, at.y}, at, {at.x + half / 2, at.y}},
                            {contourColour(i), dotWidth});
            }
        };
        legend.row(sign, std::to_string(i + 1) + "  " + kindText(contour),
                   isLine(contour) ? shortText(contour.length, digits) : "");
    }
    if (indices.size() < scene.contours.size()) {
        legend.note("and " + std::to_string(scene.contours.size() - indices.size()) + " more");
    }
}

void explainSigns(Canvas& canvas, Legend& legend, const DrawingScene& scene) {
    const auto has = [&](ContourKind kind) {
        return std::any_of(scene.contours.begin(), scene.contours.end(),
                           [&](const DrawnContour& contour) { return contour.kind == kind; });
    };
    const bool hasOpen = has(ContourKind::Open);
    if (hasOpen || has(ContourKind::Closed) || has(ContourKind::Circle)) {
        legend.row([&](const Place& at) { drawStart(canvas, at, plotGrey); }, "start of a contour");
        legend.row(
            [&](const Place& at) {
                drawArrow(canvas, {at, {1.0, 0.0}}, plotGrey);
            },
            "direction of the walk");
    }
    if (scene.contours.size() > 1) {
        legend.row(
            [&](const Place& at) {
                canvas.line({at.x - 13.0, at.y}, {at.x + 13.0, at.y}, jumpPen);
            },
            "way to the next contour");
    }
    if (hasOpen) {
        legend.row([&](const Place& at) { drawEnd(canvas, at); }, "open end");
    }
    if (!scene.gaps.empty()) {
        constexpr int digits = 3;
        const auto smallest = std::min_element(
            scene.gaps.begin(), scene.gaps.end(),
            [](const DrawnGap& a, const DrawnGap& b) { return a.distance < b.distance; });
        const std::string width = shortText(smallest->distance, digits);
        legend.row([&](const Place& at) { canvas.ring(at, 7.0, gapPen); },
                   scene.gaps.size() == 1 ? "gap of " + width
                                          : counted(scene.gaps.size(), "gap") + " from " + width);
    }
}

/// "5 contours (1 open, 2 closed, 1 circle, 1 of points), 690 points".
std::string summaryOf(const DrawingScene& scene) {
    std::array<std::size_t, 4> counts = {};
    for (const DrawnContour& contour : scene.contours) {
        ++counts[static_cast<std::size_t>(contour.kind)];
    }
    std::string kinds;
    for (std::size_t kind = 0; kind < counts.size(); ++kind) {
        if (counts[kind] > 0) {
            kinds += kinds.empty() ? "" : ", ";
            const auto named = static_cast<ContourKind>(kind);
            kinds += std::to_string(counts[kind]) + (named == ContourKind::Points ? " of " : " ") +
                     nameOf(named);
        }
    }
    return counted(scene.contours.size(), "contour") + " (" + kinds + "), " +
           counted(scene.points, "point");
}

} // namespace

std::string drawPicture(Canvas& canvas, const PictureSize& size, const DrawingScene& scene,
                        const std::string& name, const std::string& unit) {
    constexpr double margin = 36.0;
    /// Lines of the legend for all but contours.
    constexpr int otherLines = 9;
    const PlotFrame frame = frameOf(size);
    const PlotScale scale(scene.bounds, frame.plot, margin);
    const PlotAxes axes(scale);
    axes.drawGrid(canvas);
    WalkPainter(canvas, scene, scale).paint();
    const std::string axisUnit = unit.empty() ? "drawing units" : unit;
    axes.drawAround(canvas, {"x", axisUnit}, {scene.hasLines ? "y, the cloud's z" : "y", axisUnit});
    const std::string summary = summaryOf(scene);
    drawHeading(canvas, size, name, summary);
    Legend legend(canvas, frame.legend);
    listContours(canvas, legend, scene, unit, otherLines);
    legend.gap();
    explainSigns(canvas, legend, scene);
    if (scene.pointsWithoutPlace > 0) {
        legend.gap();
        legend.note(leftOutText(scene.pointsWithoutPlace));
    }
    return summary + "; " + legend.text();
}
