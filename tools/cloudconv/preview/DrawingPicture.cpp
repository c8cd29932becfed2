#include "tools/cloudconv/preview/DrawingPicture.h"

#include "tools/cloudconv/preview/DrawingLegend.h"
#include "tools/cloudconv/preview/DrawingPainter.h"
#include "tools/cloudconv/preview/PlotFrame.h"

std::string drawPicture(Canvas& canvas, const PictureSize& size, const DrawingScene& scene,
                        const DrawingCaption& caption, const DrawingMarks& asked,
                        const std::function<bool(double)>& progress) {
    constexpr double margin = 36.0;
    const std::vector<std::string> lines =
        caption.leftOut.empty()
            ? std::vector<std::string>{summaryOf(scene)}
            : std::vector<std::string>{summaryOf(scene), "left out: " + caption.leftOut};
    const PlotFrame frame = frameOf(size, lines.size());
    const PlotScale scale(scene.bounds, frame.plot, margin);
    const DrawingStyle style(scene, frame.plot, asked);
    const PlotAxes axes(scale);
    axes.drawGrid(canvas);
    paintDrawing(canvas, scene, style, scale, progress);
    const std::string unit = caption.unit.empty() ? "drawing units" : caption.unit;
    axes.drawAround(canvas, {"x", unit}, {caption.yName, unit});
    drawHeading(canvas, size, caption.title, lines);
    Legend legend(canvas, frame.legend);
    writeLegend(canvas, legend, scene, style, caption.unit);
    std::string words;
    for (const std::string& line : lines) {
        words += line + "; ";
    }
    return words + legend.text();
}
