#include "tools/cloudconv/preview/Cairo.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace {

/// A library that stays until the program ends.
class Library {
public:
    explicit Library(const char* name) : m_handle(dlopen(name, RTLD_NOW | RTLD_LOCAL)) {
        if (m_handle == nullptr) {
            throw std::runtime_error(std::string("pictures need cairo: ") + dlerror());
        }
    }

    template <typename Function>
    void find(const char* name, Function*& function) const {
        function = reinterpret_cast<Function*>(dlsym(m_handle, name));
        if (function == nullptr) {
            throw std::runtime_error(std::string("pictures need another cairo: ") + dlerror());
        }
    }

private:
    void* m_handle;
};

} // namespace

const Cairo& Cairo::loaded() {
    static const Cairo cairo;
    return cairo;
}

Cairo::Cairo() {
    const Library library("libcairo.so.2");
    library.find("cairo_arc", arc);
    library.find("cairo_clip", clip);
    library.find("cairo_close_path", close_path);
    library.find("cairo_create", create);
    library.find("cairo_destroy", destroy);
    library.find("cairo_fill", fill);
    library.find("cairo_font_options_create", font_options_create);
    library.find("cairo_font_options_destroy", font_options_destroy);
    library.find("cairo_font_options_set_antialias", font_options_set_antialias);
    library.find("cairo_font_options_set_hint_metrics", font_options_set_hint_metrics);
    library.find("cairo_font_options_set_hint_style", font_options_set_hint_style);
    library.find("cairo_has_current_point", has_current_point);
    library.find("cairo_image_surface_create", image_surface_create);
    library.find("cairo_image_surface_get_data", image_surface_get_data);
    library.find("cairo_image_surface_get_stride", image_surface_get_stride);
    library.find("cairo_line_to", line_to);
    library.find("cairo_move_to", move_to);
    library.find("cairo_new_path", new_path);
    library.find("cairo_new_sub_path", new_sub_path);
    library.find("cairo_pattern_add_color_stop_rgb", pattern_add_color_stop_rgb);
    library.find("cairo_pattern_create_linear", pattern_create_linear);
    library.find("cairo_pattern_destroy", pattern_destroy);
    library.find("cairo_pdf_surface_create_for_stream", pdf_surface_create_for_stream);
    library.find("cairo_pdf_surface_set_metadata", pdf_surface_set_metadata);
    library.find("cairo_rectangle", rectangle);
    library.find("cairo_restore", restore);
    library.find("cairo_rotate", rotate);
    library.find("cairo_save", save);
    library.find("cairo_scale", scale);
    library.find("cairo_select_font_face", select_font_face);
    library.find("cairo_set_dash", set_dash);
    library.find("cairo_set_font_options", set_font_options);
    library.find("cairo_set_font_size", set_font_size);
    library.find("cairo_set_line_cap", set_line_cap);
    library.find("cairo_set_line_join", set_line_join);
    library.find("cairo_set_line_width", set_line_width);
    library.find("cairo_set_source", set_source);
    library.find("cairo_set_source_rgba", set_source_rgba);
    library.find("cairo_set_source_surface", set_source_surface);
    library.find("cairo_show_text", show_text);
    library.find("cairo_status", status);
    library.find("cairo_status_to_string", status_to_string);
    library.find("cairo_stroke", stroke);
    library.find("cairo_surface_destroy", surface_destroy);
    library.find("cairo_surface_finish", surface_finish);
    library.find("cairo_surface_mark_dirty", surface_mark_dirty);
    library.find("cairo_surface_status", surface_status);
    library.find("cairo_surface_write_to_png_stream", surface_write_to_png_stream);
    library.find("cairo_svg_surface_create_for_stream", svg_surface_create_for_stream);
    library.find("cairo_svg_surface_set_document_unit", svg_surface_set_document_unit);
    library.find("cairo_text_extents", text_extents);
    library.find("cairo_translate", translate);
}
