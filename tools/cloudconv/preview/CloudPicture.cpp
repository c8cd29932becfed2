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
    if (scene.colour() == CloudColour::Rgb) {
        heading.heading("Colours of the file");
        return area.top;
    }
    heading.heading(scene.colour() == CloudColour::Height ? "Height (z)" : "Intensity");
    const double height = std::floor(std::min(highest, area.height - barTop - otherLines));
    if (!values.isEmpty() && values.low < values.high) {
        return drawBar(canvas, values, {area.left, area.top + barTop, barWidth, height});
    }
    heading.note(values.isEmpty() ? "nan or infinite everywhere"
                                  : shortText(values.low, digits) + " everywhere");
    return area.top + 2 * barTop;
}

/// The box around the cloud as the picture shows it.
Bounds boundsOfBox(const CloudScene& scene) {
    Bounds bounds;
    for (const double x : {scene.sides()[0].low, scene.sides()[0].high}) {
        for (const double y : {scene.sides()[1].low, scene.sides()[1].high}) {
            for (const double z : {scene.sides()[2].low, scene.sides()[2].high}) {
                bounds.add(scene.projection().placeOf(std::array<double, 3>{x, y, z}));
            }
        }
    }
    return bounds;
}

/// The edges of the box around the cloud, which are what axes are to other views.
void drawBox(Canvas& canvas, const CloudScene& scene, const PlotScale& scale) {
    const Pen pen = {{0.72, 0.72, 0.72}, 1.0};
    const std::array<Interval, 3>& sides = scene.sides();
    const auto pixelOf = [&](unsigned corner) {
        std::array<double, 3> place = {};
        for (unsigned axis = 0; axis < place.size(); ++axis) {
            const bool isHigh = (corner >> axis & 1U) != 0;
            place.at(axis) = isHigh ? sides.at(axis).high : sides.at(axis).low;
        }
        return scale.pixel(scene.projection().placeOf(place));
    };
    for (unsigned corner = 0; corner < 8; ++corner) {
        for (unsigned axis = 0; axis < 3; ++axis) {
            if ((corner >> axis & 1U) == 0) {
                canvas.line(pixelOf(corner), pixelOf(corner | 1U << axis), pen);
            }
        }
    }
}

/// "x: -5 to 5".
void nameSidesOfBox(Legend& legend, const CloudScene& scene) {
    constexpr std::array<const char*, 3> names = {"x", "y", "z"};
    constexpr int digits = 6;
    for (std::size_t axis = 0; axis < names.size(); ++axis) {
        const Interval& side = scene.sides().at(axis);
        legend.note(std::string(names.at(axis)) + ": " + shortText(side.low, digits) + " to " +
                    shortText(side.high, digits));
    }
}

void noteView(Legend& notes, const CloudScene& scene) {
    const std::string& words = scene.projection().words();
    if (scene.projection().horizontalName().empty()) {
        notes.note(words + ": x to the right,");
        notes.note("y into the depth, z upwards");
        nameSidesOfBox(notes, scene);
    } else {
        notes.note(words + ": what is nearer");
        notes.note("hides what is behind");
    }
    if (scene.pointsWithoutPlace() > 0) {
        notes.note(leftOutText(scene.pointsWithoutPlace()));
    }
}

} // namespace

std::string drawPicture(Canvas& canvas, const PictureSize& size, const CloudScene& scene,
                        const std::string& name, const std::string& summary) {
    constexpr double margin = 16.0;
    constexpr double noteGap = 24.0;
    constexpr char unit[] = "cloud coordinates";
    const PlotFrame frame = frameOf(size);
    const CloudProjection& projection = scene.projection();
    const bool hasAxes = !projection.horizontalName().empty();
    const PlotScale scale(hasAxes ? scene.bounds() : boundsOfBox(scene), frame.plot, margin);
    if (hasAxes) {
        PlotAxes(scale).drawGrid(canvas);
    } else {
        drawBox(canvas, scene, scale);
    }
    canvas.image(scene.view(scale, finenessFor(frame.plot)), frame.plot);
    if (hasAxes) {
        PlotAxes(scale).drawAround(canvas, {projection.horizontalName(), unit},
                                   {projection.verticalName(), unit});
    }
    drawHeading(canvas, size, name, {summary});
    Legend colours(canvas, frame.legend);
    const double end = explainColours(canvas, scene, frame.legend, colours);
    Legend notes(canvas, {frame.legend.left, end + noteGap, frame.legend.width,
                          frame.legend.bottom() - end - noteGap});
    noteView(notes, scene);
    return summary + "; " + colours.text() + "; " + notes.text();
}
