#pragma once

#include "tools/cloudconv/preview/Canvas.h"

#include <functional>
#include <string>

/// Lines of signs and what they mean, from above downwards.
class Legend {
public:
    Legend(Canvas& canvas, const Rectangle& area);

    /// How many lines there still is room for.
    int room() const;

    void heading(const std::string& text, const std::string& atTheRight = {});
    /// A line without a sign.
    void note(const std::string& text);
    /// @param drawSign  draws the sign around a place
    void row(const std::function<void(const Place&)>& drawSign, const std::string& text,
             const std::string& atTheRight = {});
    /// Half a line of nothing.
    void gap();

    /// All that was written, in one text.
    const std::string& text() const { return m_text; }

private:
    void write(double left, const std::string& text, const std::string& atTheRight, bool bold);

    Canvas& m_canvas;
    Rectangle m_area;
    double m_line;
    std::string m_text;
};
