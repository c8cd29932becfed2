#include "tools/cloudconv/preview/CloudPicture.h"

#include "tools/cloudconv/Wording.h"
#include "tools/cloudconv/preview/Legend.h"
#include "tools/cloudconv/preview/PlotFrame.h"

namespace {

/// So fine that edges look smooth, as long as that takes no more than some megabytes.
unsigned finenessFor(const Rectangle& frame) {
    constexpr double mostCells = 4e6;
    constexpr unsigned finest = 3;
    unsigned fineness = finest;
    while (fineness > 1 && frame.width * frame.height * fineness * fineness > mostCells) {
        --fineness;
    }
    return fineness;
}

/// The colours of the values, with numbers beside them. Returns where it ends.
double drawBar(Canvas& canvas, const Interval& values, const Rectangle& bar) {
    constexpr double pixelsPerTick = 40.0;
    constexpr double tickLength = 5.0;
    constexpr double numberHeight = 9.0;
    constexpr std::size_t steps = 10;
    const Pen pen = {plotInk, 1.0};
    std::vector<Colour> colours;
    for (std::size_t i = 0; i < steps; ++i) {
        colours.push_back(scaleColour(static_cast<double>(i) / (steps - 1)));
    }
    canvas.gradient(colours, bar);
    canvas.outline({bar.left + 0.5, bar.top + 0.5, bar.width, bar.height}, pen);
    const PlotTicks ticks =
        ticksOf(values, std::max(1, static_cast<int>(bar.height / pixelsPerTick)));
    for (const PlotTick& tick : ticks.ticks) {
        const double share = (tick.value - values.low) / (values.high - values.low);
        const double y = std::floor(bar.bottom() - share * bar.height) + 0.5;
        canvas.line({bar.right(), y}, {bar.right() + tickLength, y}, pen);
        canvas.text(tick.label, {bar.right() + tickLength + 4.0, y + numberHeight / 2},
                    {plotTextSize, plotInk});
    }
    return bar.bottom();
}

/// What the colours mean. Returns where it ends.
double explainColours(Canvas& canvas, const CloudScene& scene, const Rectangle& area,
                      Legend& heading) {
    constexpr double barTop = 24.0;
    constexpr double barWidth = 22.0;
    constexpr double otherLines = 80.0;
    constexpr double highest = 320.0;
    constexpr int digits = 6;
    const Interval& values = scene.values();
    heading.heading(scene.isColouredByHeight() ? "z (no intensity)" : "Intensity");
    const double height = std::floor(std::min(highest, area.height - barTop - otherLines));
    if (!values.isEmpty() && values.low < values.high) {
        return drawBar(canvas, values, {area.left, area.top + barTop, barWidth, height});
    }
    heading.note(values.isEmpty() ? "nan or infinite everywhere"
                                  : shortText(values.low, digits) + " everywhere");
    return area.top + 2 * barTop;
}

} // namespace

std::string drawPicture(Canvas& canvas, const PictureSize& size, const CloudScene& scene,
                        const std::string& name, const std::string& summary) {
    constexpr double margin = 16.0;
    constexpr double noteGap = 24.0;
    constexpr char unit[] = "cloud coordinates";
    const PlotFrame frame = frameOf(size);
    const PlotScale scale(scene.bounds(), frame.plot, margin);
    const PlotAxes axes(scale);
    axes.drawGrid(canvas);
    canvas.image(scene.view(scale, finenessFor(frame.plot)), frame.plot);
    axes.drawAround(canvas, {"x", unit}, {"y", unit});
    drawHeading(canvas, size, name, summary);
    Legend colours(canvas, frame.legend);
    const double end = explainColours(canvas, scene, frame.legend, colours);
    Legend notes(canvas, {frame.legend.left, end + noteGap, frame.legend.width,
                          frame.legend.bottom() - end - noteGap});
    notes.note("seen from above: greater z");
    notes.note("hides what is below");
    if (scene.pointsWithoutPlace() > 0) {
        notes.note(leftOutText(scene.pointsWithoutPlace()));
    }
    return summary + "; " + colours.text() + "; " + notes.text();
}
