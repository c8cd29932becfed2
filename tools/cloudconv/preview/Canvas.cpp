#include "tools/cloudconv/preview/Canvas.h"

#include "tools/cloudconv/Markup.h"
#include "tools/cloudconv/preview/Cairo.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string_view>

namespace {

cairo_status_t append(void* bytes, const unsigned char* data, unsigned length) {
    try {
        auto* const file = static_cast<std::vector<unsigned char>*>(bytes);
        file->insert(file->end(), data, data + length);
        return CAIRO_STATUS_SUCCESS;
    } catch (const std::bad_alloc&) {
        return CAIRO_STATUS_NO_MEMORY;
    }
}

cairo_surface_t* newSurface(const Cairo& cairo, PictureFormat format, const PictureSize& size,
                            std::vector<unsigned char>& bytes) {
    switch (format) {
    case PictureFormat::Svg: {
        cairo_surface_t* const surface =
            cairo.svg_surface_create_for_stream(append, &bytes, size.width, size.height);
        cairo.svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_PX);
        return surface;
    }
    case PictureFormat::Pdf:
        return cairo.pdf_surface_create_for_stream(append, &bytes, size.width, size.height);
    case PictureFormat::Png:
    case PictureFormat::Html: // A page is written without a surface.
        break;
    }
    return cairo.image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height);
}

/// Puts into an SVG what programs that do not show it can tell of it: letters are drawn as shapes.
void describeSvg(std::vector<unsigned char>& bytes, const std::string& title,
                 const std::string& description) {
    constexpr std::string_view start = "<svg ";
    const auto root = std::search(bytes.begin(), bytes.end(), start.begin(), start.end());
    const auto end = std::find(root, bytes.end(), '>');
    if (end == bytes.end()) {
        throw std::runtime_error("cairo made an SVG without a root");
    }
    const std::string inserted = "\n<title>" + escapedForMarkup(title) + "</title>\n<desc>" +
                                 escapedForMarkup(description) + "</desc>";
    bytes.insert(end + 1, inserted.begin(), inserted.end());
}

double shareBefore(Alignment alignment) {
    switch (alignment) {
    case Alignment::Centre:
        return 0.5;
    case Alignment::Right:
        return 1.0;
    case Alignment::Left:
        break;
    }
    return 0.0;
}

} // namespace

void Canvas::Destroyer::operator()(_cairo* context) const {
    Cairo::loaded().destroy(context);
}

void Canvas::Destroyer::operator()(_cairo_surface* surface) const {
    Cairo::loaded().surface_destroy(surface);
}

Canvas::Canvas(PictureFormat format, const PictureSize& size)
    : m_cairo(Cairo::loaded()), m_format(format),
      m_surface(newSurface(m_cairo, format, size, m_bytes)),
      m_context(m_cairo.create(m_surface.get())) {
    check(m_cairo.status(m_context.get()));
    m_cairo.set_line_join(m_context.get(), CAIRO_LINE_JOIN_ROUND);
    m_cairo.set_line_cap(m_context.get(), CAIRO_LINE_CAP_ROUND);
    // Letters of one shape wherever they lie: the picture does not depend on the screen.
    cairo_font_options_t* const options = m_cairo.font_options_create();
    m_cairo.font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    m_cairo.font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    m_cairo.font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    m_cairo.set_font_options(m_context.get(), options);
    m_cairo.font_options_destroy(options);
    fill({0.0, 0.0, static_cast<double>(size.width), static_cast<double>(size.height)},
         {1.0, 1.0, 1.0});
}

// The surface writes to the bytes until it is gone.
Canvas::~Canvas() {
    m_context.reset();
    m_surface.reset();
}

void Canvas::clip(const Rectangle& area) {
    m_cairo.save(m_context.get());
    m_cairo.rectangle(m_context.get(), area.left, area.top, area.width, area.height);
    m_cairo.clip(m_context.get());
}

void Canvas::unclip() {
    m_cairo.restore(m_context.get());
}

void Canvas::fill(const Rectangle& area, const Colour& colour, double opacity) {
    use(colour, opacity);
    m_cairo.rectangle(m_context.get(), area.left, area.top, area.width, area.height);
    m_cairo.fill(m_context.get());
}

void Canvas::outline(const Rectangle& area, const Pen& pen) {
    use(pen);
    m_cairo.rectangle(m_context.get(), area.left, area.top, area.width, area.height);
    m_cairo.stroke(m_context.get());
}

void Canvas::line(const Place& from, const Place& to, const Pen& pen) {
    path({from, to}, pen);
}

void Canvas::path(const std::vector<Place>& places, const Pen& pen) {
    /// The cost of one stroke grows faster than its length.
    constexpr int mostAtOnce = 1000;
    use(pen);
    int count = 0;
    for (std::size_t i = 0; i < places.size(); ++i) {
        const Place& place = places[i];
        if (!canBeShown(place)) {
            m_cairo.new_sub_path(m_context.get());
            continue;
        }
        if (m_cairo.has_current_point(m_context.get()) == 0) {
            m_cairo.move_to(m_context.get(), place.x, place.y);
        }
        m_cairo.line_to(m_context.get(), place.x, place.y);
        if (++count % mostAtOnce == 0 && i + 1 < places.size()) {
            m_cairo.stroke(m_context.get());
            m_cairo.move_to(m_context.get(), place.x, place.y);
        }
    }
    m_cairo.stroke(m_context.get());
}

void Canvas::dots(const std::vector<Place>& places, const Pen& pen) {
    constexpr int mostAtOnce = 1000;
    use(pen);
    int count = 0;
    for (const Place& place : places) {
        m_cairo.move_to(m_context.get(), place.x, place.y);
        m_cairo.line_to(m_context.get(), place.x, place.y);
        if (++count % mostAtOnce == 0) {
            m_cairo.stroke(m_context.get());
        }
    }
    m_cairo.stroke(m_context.get());
}

void Canvas::disc(const Place& centre, double radius, const Colour& colour) {
    dots({centre}, {colour, 2 * radius});
}

void Canvas::ring(const Place& centre, double radius, const Pen& pen) {
    constexpr double fullTurn = 6.283185307179586;
    use(pen);
    m_cairo.arc(m_context.get(), centre.x, centre.y, radius, 0.0, fullTurn);
    m_cairo.close_path(m_context.get());
    m_cairo.stroke(m_context.get());
}

void Canvas::polygon(const std::vector<Place>& corners, const Colour& colour) {
    use(colour);
    for (const Place& corner : corners) {
        m_cairo.line_to(m_context.get(), corner.x, corner.y);
    }
    m_cairo.fill(m_context.get());
}

void Canvas::gradient(const std::vector<Colour>& colours, const Rectangle& area) {
    cairo_pattern_t* const pattern =
        m_cairo.pattern_create_linear(0.0, area.bottom(), 0.0, area.top);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const double offset = static_cast<double>(i) / static_cast<double>(colours.size() - 1);
        m_cairo.pattern_add_color_stop_rgb(pattern, offset, colours[i].red, colours[i].green,
                                           colours[i].blue);
    }
    m_cairo.set_source(m_context.get(), pattern);
    m_cairo.pattern_destroy(pattern);
    m_cairo.rectangle(m_context.get(), area.left, area.top, area.width, area.height);
    m_cairo.fill(m_context.get());
}

void Canvas::image(const Image& image, const Rectangle& area) {
    const auto columns = static_cast<int>(image.columns);
    const auto rows = static_cast<int>(image.rows);
    const std::unique_ptr<_cairo_surface, Destroyer> surface(
        m_cairo.image_surface_create(CAIRO_FORMAT_ARGB32, columns, rows));
    check(m_cairo.surface_status(surface.get()));
    const auto stride = static_cast<std::size_t>(m_cairo.image_surface_get_stride(surface.get()));
    unsigned char* const pixels = m_cairo.image_surface_get_data(surface.get());
    const std::size_t rowSize = image.columns * sizeof(std::uint32_t);
    for (std::size_t row = 0; row < image.rows; ++row) {
        std::memcpy(pixels + row * stride, image.cells.data() + row * image.columns, rowSize);
    }
    m_cairo.surface_mark_dirty(surface.get());
    m_cairo.save(m_context.get());
    m_cairo.translate(m_context.get(), area.left, area.top);
    m_cairo.scale(m_context.get(), area.width / columns, area.height / rows);
    m_cairo.set_source_surface(m_context.get(), surface.get(), 0.0, 0.0);
    m_cairo.rectangle(m_context.get(), 0.0, 0.0, columns, rows);
    m_cairo.fill(m_context.get());
    m_cairo.restore(m_context.get());
}

void Canvas::text(const std::string& text, const Place& place, const Lettering& lettering,
                  Alignment alignment) {
    const double before = shareBefore(alignment) * widthOf(text, lettering);
    m_cairo.move_to(m_context.get(), place.x - before, place.y);
    use(lettering.colour);
    m_cairo.show_text(m_context.get(), text.c_str());
    m_cairo.new_path(m_context.get());
}

void Canvas::uprightText(const std::string& text, const Place& place, const Lettering& lettering,
                         Alignment alignment) {
    constexpr double quarterTurn = 1.5707963267948966;
    m_cairo.save(m_context.get());
    m_cairo.translate(m_context.get(), place.x, place.y);
    m_cairo.rotate(m_context.get(), -quarterTurn);
    this->text(text, {0.0, 0.0}, lettering, alignment);
    m_cairo.restore(m_context.get());
}

double Canvas::widthOf(const std::string& text, const Lettering& lettering) {
    use(lettering);
    cairo_text_extents_t extents = {};
    m_cairo.text_extents(m_context.get(), text.c_str(), &extents);
    return extents.x_advance;
}

std::vector<unsigned char> Canvas::finish(const std::string& title,
                                          const std::string& description) {
    check(m_cairo.status(m_context.get()));
    if (m_format == PictureFormat::Png) {
        check(m_cairo.surface_write_to_png_stream(m_surface.get(), append, &m_bytes));
    }
    if (m_format == PictureFormat::Pdf) {
        m_cairo.pdf_surface_set_metadata(m_surface.get(), CAIRO_PDF_METADATA_TITLE, title.c_str());
        m_cairo.pdf_surface_set_metadata(m_surface.get(), CAIRO_PDF_METADATA_SUBJECT,
                                         description.c_str());
        // No date: the same picture is the same file.
        m_cairo.pdf_surface_set_metadata(m_surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
    }
    m_cairo.surface_finish(m_surface.get());
    check(m_cairo.surface_status(m_surface.get()));
    if (m_format == PictureFormat::Svg) {
        describeSvg(m_bytes, title, description);
    }
    return std::move(m_bytes);
}

void Canvas::use(const Pen& pen) {
    constexpr double dash = 4.0;
    use(pen.colour);
    m_cairo.set_line_width(m_context.get(), pen.width);
    m_cairo.set_dash(m_context.get(), &dash, pen.dashed ? 1 : 0, 0.0);
}

void Canvas::use(const Colour& colour, double opacity) {
    m_cairo.set_source_rgba(m_context.get(), colour.red, colour.green, colour.blue, opacity);
}

void Canvas::use(const Lettering& lettering) {
    // A font that Debian installs with cairo; any other system gives the nearest it has.
    m_cairo.select_font_face(m_context.get(), "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                             lettering.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    m_cairo.set_font_size(m_context.get(), lettering.size);
}

void Canvas::check(int status) const {
    if (status == CAIRO_STATUS_NO_MEMORY) {
        throw std::bad_alloc();
    }
    if (status != CAIRO_STATUS_SUCCESS) {
        throw std::runtime_error(std::string("the picture could not be drawn: ") +
                                 m_cairo.status_to_string(static_cast<cairo_status_t>(status)));
    }
}
