// What the handles of drawing stand for.
#pragma once

#include <wingdi.h>

#include <memory>
#include <vector>

#include "cairo_library.h"

namespace quorvane::platform {

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { Cairo()->surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;

struct ContextDeleter {
    void operator()(cairo_t* context) const { Cairo()->destroy(context); }
};
using Context = std::unique_ptr<cairo_t, ContextDeleter>;

}  // namespace quorvane::platform

struct HBITMAP__ {
    std::vector<uint32_t> pixels;
    quorvane::platform::Surface surface;  // over the pixels
};

struct HDC__ {
    HBITMAP bitmap = nullptr;             // the caller's
    quorvane::platform::Context context;  // draws into the bitmap; null while there is none
    UINT alignment = 0;
    std::vector<UINT> savedAlignments;  // one for each state of the context that is put aside
};
