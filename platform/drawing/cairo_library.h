// The drawing library, loaded when something is drawn: it brings twenty more with it, which
// programs that only send don't have to wait for.
#pragma once

#include <cairo.h>

namespace quorvane::platform {

// The functions of it that are used here, under their own names without the prefix.
struct CairoLibrary {
    decltype(&cairo_clip) clip;
    decltype(&cairo_create) create;
    decltype(&cairo_destroy) destroy;
    decltype(&cairo_fill) fill;
    decltype(&cairo_font_extents) font_extents;
    decltype(&cairo_image_surface_create_for_data) image_surface_create_for_data;
    decltype(&cairo_move_to) move_to;
    decltype(&cairo_paint) paint;
    decltype(&cairo_rectangle) rectangle;
    decltype(&cairo_restore) restore;
    decltype(&cairo_save) save;
    decltype(&cairo_select_font_face) select_font_face;
    decltype(&cairo_set_antialias) set_antialias;
    decltype(&cairo_set_font_size) set_font_size;
    decltype(&cairo_set_source_rgb) set_source_rgb;
    decltype(&cairo_set_source_surface) set_source_surface;
    decltype(&cairo_show_text) show_text;
    decltype(&cairo_status) status;
    decltype(&cairo_surface_destroy) surface_destroy;
    decltype(&cairo_text_extents) text_extents;
};

// Null when it isn't installed. Whoever has a bitmap has the library.
const CairoLibrary* Cairo();

}  // namespace quorvane::platform
