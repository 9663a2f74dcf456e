#include "cairo_library.h"

#include <dlfcn.h>

namespace quorvane::platform {
namespace {

template <class Function>
bool Find(void* library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(dlsym(library, name));
    return function != nullptr;
}

bool FindAll(void* library, CairoLibrary& cairo) {
    return Find(library, "cairo_clip", cairo.clip) && Find(library, "cairo_create", cairo.create) &&
           Find(library, "cairo_destroy", cairo.destroy) &&
           Find(library, "cairo_fill", cairo.fill) &&
           Find(library, "cairo_font_extents", cairo.font_extents) &&
           Find(library, "cairo_image_surface_create_for_data",
                cairo.image_surface_create_for_data) &&
           Find(library, "cairo_move_to", cairo.move_to) &&
           Find(library, "cairo_paint", cairo.paint) &&
           Find(library, "cairo_rectangle", cairo.rectangle) &&
           Find(library, "cairo_restore", cairo.restore) &&
           Find(library, "cairo_save", cairo.save) &&
           Find(library, "cairo_select_font_face", cairo.select_font_face) &&
           Find(library, "cairo_set_antialias", cairo.set_antialias) &&
           Find(library, "cairo_set_font_size", cairo.set_font_size) &&
           Find(library, "cairo_set_source_rgb", cairo.set_source_rgb) &&
           Find(library, "cairo_set_source_surface", cairo.set_source_surface) &&
           Find(library, "cairo_show_text", cairo.show_text) &&
           Find(library, "cairo_status", cairo.status) &&
           Find(library, "cairo_surface_destroy", cairo.surface_destroy) &&
           Find(library, "cairo_text_extents", cairo.text_extents);
}

// Stays loaded: its own libraries keep state for the whole process.
const CairoLibrary* Load() {
    static CairoLibrary cairo;
    void* const library = dlopen("libcairo.so.2", RTLD_NOW | RTLD_NODELETE);
    return library && FindAll(library, cairo) ? &cairo : nullptr;
}

}  // namespace

const CairoLibrary* Cairo() {
    static const CairoLibrary* const cairo = Load();
    return cairo;
}

}  // namespace quorvane::platform
