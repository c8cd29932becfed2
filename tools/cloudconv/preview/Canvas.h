#pragma once

#include "tools/cloudconv/preview/PictureFormat.h"
#include "tools/cloudconv/preview/PictureSize.h"
#include "tools/cloudconv/preview/Plane.h"
#include "tools/cloudconv/preview/PlotColours.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The names that cairo gave its types.
struct _cairo;         // NOLINT(bugprone-reserved-identifier)
struct _cairo_surface; // NOLINT(bugprone-reserved-identifier)
class Cairo;

/// How a line is drawn.
struct Pen {
    Colour colour;
    double width;
    bool dashed = false;
};

/// How a text is set.
struct Lettering {
    double size;
    Colour colour;
    bool bold = false;
};

/// Where a text lies along its line, relative to its place.
enum class Alignment { Left, Centre, Right };

/// A grid of colours, row by row from the top, as 0xAARRGGBB with the parts multiplied by A.
struct Image {
    std::size_t columns = 0;
    std::size_t rows = 0;
    std::vector<std::uint32_t> cells;
};

/// A picture that is drawn on, with a white ground. Places are pixels with y down.
///
/// The same calls give the same bytes, as long as the font stays the same.
class Canvas {
public:
    /// @throws std::bad_alloc, std::runtime_error where cairo is not installed
    Canvas(PictureFormat format, const PictureSize& size);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    /// Nothing is drawn outside of this until unclip().
    void clip(const Rectangle& area);
    void unclip();

    void fill(const Rectangle& area, const Colour& colour, double opacity = 1.0);
    void outline(const Rectangle& area, const Pen& pen);
    void line(const Place& from, const Place& to, const Pen& pen);
    /// Lines from place to place. One that cannot be shown lifts the pen; one by itself is a dot.
    void path(const std::vector<Place>& places, const Pen& pen);
    /// A dot on each place.
    void dots(const std::vector<Place>& places, const Pen& pen);
    void disc(const Place& centre, double radius, const Colour& colour);
    void ring(const Place& centre, double radius, const Pen& pen);
    void polygon(const std::vector<Place>& corners, const Colour& colour);
    /// Colours that run into each other, evenly spaced from the bottom to the top of the area.
    void gradient(const std::vector<Colour>& colours, const Rectangle& area);
    /// An image that fills the area.
    void image(const Image& image, const Rectangle& area);

    /// A text whose base line begins, ends or has its middle at a place. It has to be printable
    /// UTF-8.
    void text(const std::string& text, const Place& place, const Lettering& lettering,
              Alignment alignment = Alignment::Left);
    /// The same, from below upwards.
    void uprightText(const std::string& text, const Place& place, const Lettering& lettering,
                     Alignment alignment);
    double widthOf(const std::string& text, const Lettering& lettering);

    /// The bytes of the file. Nothing can be drawn afterwards.
    ///
    /// @param title  says what is shown, where the format has a place for that: printable UTF-8
    /// @param description  says more
    /// @throws std::bad_alloc, std::runtime_error
    std::vector<unsigned char> finish(const std::string& title, const std::string& description);

private:
    struct Destroyer {
        void operator()(_cairo* context) const;
        void operator()(_cairo_surface* surface) const;
    };

    void use(const Pen& pen);
    void use(const Colour& colour, double opacity = 1.0);
    void use(const Lettering& lettering);
    void check(int status) const;

    const Cairo& m_cairo;
    PictureFormat m_format;
    std::vector<unsigned char> m_bytes;
    std::unique_ptr<_cairo_surface, Destroyer> m_surface;
    std::unique_ptr<_cairo, Destroyer> m_context;
};
