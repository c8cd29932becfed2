#include "tools/cloudconv/preview/Legend.h"

#include "tools/cloudconv/preview/PlotFrame.h"

namespace {

constexpr double lineHeight = 20.0;
constexpr double letterHeight = 9.0;
constexpr double signWidth = 34.0;

} // namespace

Legend::Legend(Canvas& canvas, const Rectangle& area)
    : m_canvas(canvas), m_area(area), m_line(area.top + letterHeight) {}

int Legend::room() const {
    return static_cast<int>((m_area.bottom() - m_line) / lineHeight) + 1;
}

void Legend::heading(const std::string& text, const std::string& atTheRight) {
    write(0.0, text, atTheRight, true);
}

void Legend::note(const std::string& text) {
    write(0.0, text, {}, false);
}

void Legend::row(const std::function<void(const Place&)>& drawSign, const std::string& text,
                 const std::string& atTheRight) {
    drawSign({m_area.left + signWidth / 2 - 4.0, m_line - letterHeight / 2});
    write(signWidth, text, atTheRight, false);
}

void Legend::gap() {
    m_line += lineHeight / 2;
}

void Legend::write(double left, const std::string& text, const std::string& atTheRight, bool bold) {
    const Lettering lettering = {plotTextSize, plotInk, bold};
    const Lettering small = {plotTextSize, plotGrey};
    const double taken = atTheRight.empty() ? 0.0 : m_canvas.widthOf(atTheRight, small) + 8.0;
    m_canvas.text(fitted(m_canvas, text, lettering, m_area.width - left - taken),
                  {m_area.left + left, m_line}, lettering);
    m_canvas.text(atTheRight, {m_area.right(), m_line}, small, Alignment::Right);
    m_text += (m_text.empty() ? "" : "; ") + text + (atTheRight.empty() ? "" : ' ' + atTheRight);
    m_line += lineHeight;
}
