#include "tools/cloudconv/preview/DrawingStyle.h"

namespace {

/// Contours that have a line of the legend each, and a way drawn to them.
constexpr std::size_t mostOneByOne = 20;

/// The side of the square that each of so many things has in an area, in pixels.
double roomFor(std::size_t number, const Rectangle& area) {
    return std::sqrt(area.width * area.height /
                     static_cast<double>(std::max<std::size_t>(number, 1)));
}

double signSizeFor(double room) {
    constexpr double roomOfLargest = 80.0;
    constexpr double smallest = 0.35;
    return std::min(std::max(room / roomOfLargest, smallest), 1.0);
}

double dotWidthFor(double room) {
    constexpr double filled = 0.5;
    constexpr double smallest = 1.5;
    constexpr double largest = 4.0;
    return std::min(std::max(filled * room, smallest), largest);
}

} // namespace

DrawingStyle::DrawingStyle(const DrawingScene& scene, const Rectangle& area,
                           const DrawingMarks& asked)
    : m_scene(scene), m_isOneByOne(scene.contours.size() <= mostOneByOne),
      m_isByLayer(scene.layers.size() > 1), m_hasMarks(asked.marks),
      m_hasWays(asked.ways || (asked.marks && m_isOneByOne)),
      m_signSize(signSizeFor(roomFor(scene.contours.size(), area))),
      m_dotWidth(dotWidthFor(roomFor(scene.points, area))) {}

Colour DrawingStyle::colourOf(std::size_t contour) const {
    if (m_isOneByOne) {
        return contourColour(contour);
    }
    return m_isByLayer ? colourOfLayer(m_scene.contours[contour].layer)
                       : colourOf(m_scene.contours[contour].kind);
}

Colour DrawingStyle::colourOf(ContourKind kind) const {
    return contourColour(static_cast<std::size_t>(kind));
}

double DrawingStyle::strokeWidth() const {
    constexpr double widest = 2.0;
    constexpr double thinnest = 0.9;
    return std::max(widest * m_signSize, thinnest);
}
