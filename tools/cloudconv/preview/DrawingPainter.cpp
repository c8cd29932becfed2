// What says most comes last, and covers what is below: ways, lines, points, arrows, starts and
// ends, gaps, numbers. Signs that would crowd are left out, of those in a square all but the first.

#include "tools/cloudconv/preview/DrawingPainter.h"

#include "tools/cloudconv/preview/LabelPlaces.h"
#include "tools/cloudconv/preview/PlotFrame.h"
#include "tools/cloudconv/preview/PlotTicks.h"
#include "tools/cloudconv/preview/SparsePlaces.h"

#include <algorithm>
#include <optional>
#include <utility>

const Pen wayPen = {{0.6, 0.6, 0.6}, 1.0, true};
const Pen gapPen = {{0.75, 0.0, 0.2}, 2.0};

namespace {

constexpr Colour white = {1.0, 1.0, 1.0};
constexpr double startRadius = 4.5;
constexpr double endRadius = 6.5;
constexpr double ringRadius = 15.0;
constexpr Place lift = {HUGE_VAL, HUGE_VAL};

bool isLine(const DrawnContour& contour) {
    return contour.kind != ContourKind::Points;
}

class DrawingPainter {
public:
    DrawingPainter(Canvas& canvas, const DrawingScene& scene, const DrawingStyle& style,
                   const PlotScale& scale)
        : m_canvas(canvas), m_scene(scene), m_style(style), m_scale(scale),
          m_labels(scale.frame()) {}

    /// @param progress  may be empty
    void paint(const std::function<bool(double)>& progress) {
        std::vector<void (DrawingPainter::*)()> steps;
        if (m_style.hasWays()) {
            steps.push_back(&DrawingPainter::drawWays);
        }
        steps.insert(steps.end(), {&DrawingPainter::drawLines, &DrawingPainter::drawPoints});
        if (m_style.hasMarks()) {
            steps.insert(steps.end(),
                         {&DrawingPainter::drawArrows, &DrawingPainter::drawStartsAndEnds,
                          &DrawingPainter::drawGaps});
        }
        if (m_style.hasMarks() && m_style.isOneByOne()) {
            steps.push_back(&DrawingPainter::drawNumbers);
        }
        m_canvas.clip(m_scale.frame());
        for (std::size_t i = 0; i < steps.size(); ++i) {
            if (progress) {
                progress(static_cast<double>(i) / static_cast<double>(steps.size()));
            }
            (this->*steps[i])();
        }
        m_canvas.unclip();
    }

private:
    /// From the end of each contour to the start of the next one.
    void drawWays() {
        std::vector<Place> ways;
        for (std::size_t i = 1; i < m_scene.contours.size(); ++i) {
            const Place& from = m_scene.contours[i - 1].places.back();
            const Place& to = m_scene.contours[i].places.front();
            if (canBeShown(from) && canBeShown(to)) {
                ways.insert(ways.end(), {m_scale.pixel(from), m_scale.pixel(to), lift});
            }
        }
        m_canvas.path(ways, wayPen);
    }

    /// Each colour in one go: that is less to write and to draw.
    void drawLines() {
        std::vector<std::pair<Colour, std::vector<Place>>> paths;
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            if (!isLine(m_scene.contours[i])) {
                continue;
            }
            const Colour colour = m_style.colourOf(i);
            auto of = std::find_if(paths.begin(), paths.end(),
                                   [&](const auto& path) { return path.first == colour; });
            if (of == paths.end()) {
                of = paths.insert(of, {colour, {}});
            }
            const std::vector<Place> path = pixelPath(m_scene.contours[i].places, m_scale);
            of->second.insert(of->second.end(), path.begin(), path.end());
            of->second.push_back(lift);
        }
        for (const auto& [colour, places] : paths) {
            m_canvas.path(places, {colour, m_style.strokeWidth()});
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
            m_canvas.dots(dots, {m_style.colourOf(i), m_style.dotWidth()});
        }
    }

    void drawArrows() {
        SparsePlaces sparse(m_style.arrowSpacing());
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            if (!hasSigns(m_scene.contours[i])) {
                continue;
            }
            const std::vector<Place> path = pixelPath(m_scene.contours[i].places, m_scale);
            for (const Arrow& arrow : arrowsAlong(path, m_style.shortestWithArrows())) {
                if (sparse.take(arrow.place)) {
                    drawArrow(m_canvas, arrow, m_style.colourOf(i), m_style.signSize());
                }
            }
        }
    }

    void drawStartsAndEnds() {
        SparsePlaces starts(m_style.startSpacing());
        SparsePlaces ends(m_style.endSpacing());
        const double size = m_style.signSize();
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            const DrawnContour& contour = m_scene.contours[i];
            const Place& start = contour.places.front();
            if (!hasSigns(contour)) {
                continue;
            }
            if (canBeShown(start) && starts.take(m_scale.pixel(start))) {
                drawStart(m_canvas, m_scale.pixel(start), m_style.colourOf(i), size);
            }
            for (const Place& end : {start, contour.places.back()}) {
                if (contour.kind == ContourKind::Open && canBeShown(end) &&
                    ends.take(m_scale.pixel(end))) {
                    drawOpenEnd(m_canvas, m_scale.pixel(end), size);
                    m_labels.avoid(m_scale.pixel(end), endRadius * size);
                }
            }
        }
    }

    void drawGaps() {
        constexpr int digits = 3;
        const Lettering lettering = {plotTextSize, gapPen.colour, true};
        SparsePlaces sparse(ringRadius);
        const double least = ringRadius * std::max(m_style.signSize(), 0.6);
        for (const DrawnGap& gap : m_scene.gaps) {
            const Place first = m_scale.pixel(gap.first);
            const Place second = m_scale.pixel(gap.second);
            const Place middle = {(first.x + second.x) / 2, (first.y + second.y) / 2};
            if (!sparse.take(middle)) {
                continue;
            }
            const double radius = std::max(least, distanceOf(first, second) / 2 + least);
            m_canvas.ring(middle, radius, gapPen);
            m_labels.avoid(middle, radius);
            drawLabel("gap " + shortText(gap.distance, digits), middle, radius, lettering);
        }
    }

    void drawNumbers() {
        for (std::size_t i = 0; i < m_scene.contours.size(); ++i) {
            const Place& start = m_scene.contours[i].places.front();
            if (isLine(m_scene.contours[i]) && canBeShown(start)) {
                const Place pixel = m_scale.pixel(start);
                m_labels.avoid(pixel, startRadius);
                drawLabel(std::to_string(i + 1), pixel, startRadius,
                          {plotTextSize, m_style.colourOf(i), true});
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

    /// Whether a contour is large enough for signs not to hide it.
    bool hasSigns(const DrawnContour& contour) const {
        Bounds bounds;
        for (const Place& place : contour.places) {
            if (canBeShown(place)) {
                bounds.add(m_scale.pixel(place));
            }
        }
        return isLine(contour) && !bounds.isEmpty() &&
               std::max(bounds.x.high - bounds.x.low, bounds.y.high - bounds.y.low) >=
                   m_style.leastWithSigns();
    }

    Canvas& m_canvas;
    const DrawingScene& m_scene;
    const DrawingStyle& m_style;
    const PlotScale& m_scale;
    LabelPlaces m_labels;
};

} // namespace

void drawArrow(Canvas& canvas, const Arrow& arrow, const Colour& colour, double size) {
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

void drawStart(Canvas& canvas, const Place& place, const Colour& colour, double size) {
    canvas.disc(place, (startRadius + 1.5) * size, white);
    canvas.disc(place, startRadius * size, colour);
}

void drawOpenEnd(Canvas& canvas, const Place& place, double size) {
    const double radius = endRadius * size;
    canvas.outline({place.x - radius, place.y - radius, 2 * radius, 2 * radius},
                   {plotInk, std::max(1.5 * size, 0.8)});
}

void paintDrawing(Canvas& canvas, const DrawingScene& scene, const DrawingStyle& style,
                  const PlotScale& scale, const std::function<bool(double)>& progress) {
    DrawingPainter(canvas, scene, style, scale).paint(progress);
}
