#pragma once

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

/// The functions of cairo that pictures are drawn with, without the "cairo_" of their names.
///
/// Cairo brings many libraries along, all of which together take longer to load than a small
/// drawing to convert: they are loaded when the first picture is drawn.
class Cairo {
public:
    /// @throws std::runtime_error where cairo is not installed
    static const Cairo& loaded();

    decltype(&cairo_arc) arc;
    decltype(&cairo_clip) clip;
    decltype(&cairo_close_path) close_path;
    decltype(&cairo_create) create;
    decltype(&cairo_destroy) destroy;
    decltype(&cairo_fill) fill;
    decltype(&cairo_font_options_create) font_options_create;
    decltype(&cairo_font_options_destroy) font_options_destroy;
    decltype(&cairo_font_options_set_antialias) font_options_set_antialias;
    decltype(&cairo_font_options_set_hint_metrics) font_options_set_hint_metrics;
    decltype(&cairo_font_options_set_hint_style) font_options_set_hint_style;
    decltype(&cairo_has_current_point) has_current_point;
    decltype(&cairo_image_surface_create) image_surface_create;
    decltype(&cairo_image_surface_get_data) image_surface_get_data;
    decltype(&cairo_image_surface_get_stride) image_surface_get_stride;
    decltype(&cairo_line_to) line_to;
    decltype(&cairo_move_to) move_to;
    decltype(&cairo_new_path) new_path;
    decltype(&cairo_new_sub_path) new_sub_path;
    decltype(&cairo_pattern_add_color_stop_rgb) pattern_add_color_stop_rgb;
    decltype(&cairo_pattern_create_linear) pattern_create_linear;
    decltype(&cairo_pattern_destroy) pattern_destroy;
    decltype(&cairo_pdf_surface_create_for_stream) pdf_surface_create_for_stream;
    decltype(&cairo_pdf_surface_set_metadata) pdf_surface_set_metadata;
    decltype(&cairo_rectangle) rectangle;
    decltype(&cairo_restore) restore;
    decltype(&cairo_rotate) rotate;
    decltype(&cairo_save) save;
    decltype(&cairo_scale) scale;
    decltype(&cairo_select_font_face) select_font_face;
    decltype(&cairo_set_dash) set_dash;
    decltype(&cairo_set_font_options) set_font_options;
    decltype(&cairo_set_font_size) set_font_size;
    decltype(&cairo_set_line_cap) set_line_cap;
    decltype(&cairo_set_line_join) set_line_join;
    decltype(&cairo_set_line_width) set_line_width;
    decltype(&cairo_set_source) set_source;
    decltype(&cairo_set_source_rgba) set_source_rgba;
    decltype(&cairo_set_source_surface) set_source_surface;
    decltype(&cairo_show_text) show_text;
    decltype(&cairo_status) status;
    decltype(&cairo_status_to_string) status_to_string;
    decltype(&cairo_stroke) stroke;
    decltype(&cairo_surface_destroy) surface_destroy;
    decltype(&cairo_surface_finish) surface_finish;
    decltype(&cairo_surface_mark_dirty) surface_mark_dirty;
    decltype(&cairo_surface_status) surface_status;
    decltype(&cairo_surface_write_to_png_stream) surface_write_to_png_stream;
    decltype(&cairo_svg_surface_create_for_stream) svg_surface_create_for_stream;
    decltype(&cairo_svg_surface_set_document_unit) svg_surface_set_document_unit;
    decltype(&cairo_text_extents) text_extents;
    decltype(&cairo_translate) translate;

private:
    Cairo();
};
