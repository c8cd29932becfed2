#include "tools/cloudconv/preview/PlotFrame.h"

namespace {

constexpr double edge = 20.0;
constexpr double headingLine = 18.0;
constexpr Lettering numberLettering = {plotTextSize, plotInk};
constexpr Lettering nameLettering = {13.0, plotInk};
constexpr double numberGap = 8.0;
constexpr double numberHeight = 9.0;

int mostTicks(double pixels, double pixelsPerTick) {
    return std::max(1, static_cast<int>(pixels / pixelsPerTick));
}

/// Lines are sharp in the middle of pixels.
double sharp(double pixel) {
    return std::floor(pixel) + 0.5;
}

bool isContinuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The text without what exceeds this many bytes at each end; characters stay whole.
std::string shortened(const std::string& text, std::size_t kept) {
    std::size_t first = kept;
    std::size_t second = text.size() - kept;
    while (first > 0 && isContinuation(text[first])) {
        --first;
    }
    while (second < text.size() && isContinuation(text[second])) {
        ++second;
    }
    return text.substr(0, first) + "\xE2\x80\xA6" + text.substr(second);
}

/// "x - 4512000 (mm)" when labels count from 4512000; without the unit where there is no room.
std::string axisText(Canvas& canvas, const AxisName& axis, double origin, double room) {
    constexpr int allDigits = 15;
    const std::string sign = origin < 0.0 ? " + " : " \xE2\x88\x92 ";
    const std::string name =
        axis.name + (origin == 0.0 ? "" : sign + shortText(std::abs(origin), allDigits));
    const std::string whole = name + " (" + axis.unit + ')';
    return canvas.widthOf(whole, nameLettering) <= room ? whole : name;
}

} // namespace

PlotFrame frameOf(const PictureSize& size, std::size_t lines) {
    constexpr double left = 92.0;
    const double top = 48.0 + headingLine * static_cast<double>(lines);
    constexpr double bottom = 58.0;
    constexpr double widestLegend = 250.0;
    constexpr double legendShare = 0.36;
    const double legend = std::min(widestLegend, std::floor(size.width * legendShare));
    const double height = size.height - top - bottom;
    const Rectangle plot = {left, top, size.width - left - legend - edge, height};
    return {plot, {plot.right() + edge, top, legend - edge, height}};
}

void drawHeading(Canvas& canvas, const PictureSize& size, const std::string& name,
                 const std::vector<std::string>& lines) {
    constexpr double nameLine = 30.0;
    constexpr double firstLine = 50.0;
    const Lettering bold = {16.0, plotInk, true};
    const Lettering small = {plotTextSize, plotGrey};
    const double width = size.width - 2 * edge;
    canvas.text(fitted(canvas, name, bold, width), {edge, nameLine}, bold);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        canvas.text(fitted(canvas, lines[i], small, width),
                    {edge, firstLine + headingLine * static_cast<double>(i)}, small);
    }
}

PlotAxes::PlotAxes(const PlotScale& scale)
    : m_scale(scale), m_x(ticksOf(scale.shownX(), mostTicks(scale.frame().width, 75.0))),
      m_y(ticksOf(scale.shownY(), mostTicks(scale.frame().height, 50.0))) {}

void PlotAxes::drawGrid(Canvas& canvas) const {
    const Pen pen = {{0.9, 0.9, 0.9}, 1.0};
    const Rectangle& frame = m_scale.frame();
    for (const PlotTick& tick : m_x.ticks) {
        const double x = sharp(m_scale.pixel({tick.value, 0.0}).x);
        canvas.line({x, frame.top}, {x, frame.bottom()}, pen);
    }
    for (const PlotTick& tick : m_y.ticks) {
        const double y = sharp(m_scale.pixel({0.0, tick.value}).y);
        canvas.line({frame.left, y}, {frame.right(), y}, pen);
    }
}

void PlotAxes::drawAround(Canvas& canvas, const AxisName& x, const AxisName& y) const {
    constexpr double tickLength = 5.0;
    constexpr double nameBelow = 46.0;
    constexpr double nameGap = 12.0;
    const Pen pen = {plotInk, 1.0};
    const Rectangle& frame = m_scale.frame();
    for (const PlotTick& tick : m_x.ticks) {
        const double at = sharp(m_scale.pixel({tick.value, 0.0}).x);
        canvas.line({at, frame.bottom()}, {at, frame.bottom() + tickLength}, pen);
        canvas.text(tick.label, {at, frame.bottom() + numberGap + 1.5 * numberHeight},
                    numberLettering, Alignment::Centre);
    }
    double widest = 0.0;
    for (const PlotTick& tick : m_y.ticks) {
        const double at = sharp(m_scale.pixel({0.0, tick.value}).y);
        canvas.line({frame.left - tickLength, at}, {frame.left, at}, pen);
        canvas.text(tick.label, {frame.left - numberGap, at + numberHeight / 2}, numberLettering,
                    Alignment::Right);
        widest = std::max(widest, canvas.widthOf(tick.label, numberLettering));
    }
    canvas.outline({sharp(frame.left), sharp(frame.top), frame.width, frame.height}, pen);
    const std::string below = axisText(canvas, x, m_x.origin, frame.width);
    canvas.text(below, {frame.left + frame.width / 2, frame.bottom() + nameBelow}, nameLettering,
                Alignment::Centre);
    const std::string beside = axisText(canvas, y, m_y.origin, frame.height);
    canvas.uprightText(beside,
                       {frame.left - numberGap - widest - nameGap, frame.top + frame.height / 2},
                       nameLettering, Alignment::Centre);
}

std::string fitted(Canvas& canvas, const std::string& text, const Lettering& lettering,
                   double width) {
    constexpr std::size_t mostBytes = 1000;
    std::string result = text.size() > mostBytes ? shortened(text, mostBytes / 2) : text;
    const std::string whole = result;
    for (std::size_t kept = whole.size() / 2; kept > 0 && canvas.widthOf(result, lettering) > width;
         --kept) {
        result = shortened(whole, kept);
    }
    return result;
}
