// Shapes and letters in a device context.
#include <new>
#include <string>
#include <utility>

#include "device_context.h"
#include "platform/system/code_page.h"

using namespace quorvane::platform;

namespace {

constexpr const char* kFont = "DejaVu Sans";
constexpr double kFontSize = 13;  // pixels
constexpr int kSimpleRegion = 2;
constexpr int kRegionError = 0;

// Where to draw; null in a context without a bitmap.
cairo_t* ContextOf(HDC dc) {
    return dc ? dc->context.get() : nullptr;
}

// Edges lie on whole pixels.
void AddRectangle(cairo_t* context, int left, int top, int right, int bottom) {
    Cairo()->set_antialias(context, CAIRO_ANTIALIAS_NONE);
    Cairo()->rectangle(context, left, top, double(right) - left, double(bottom) - top);
}

}  // namespace

int SaveDC(HDC dc) {
    cairo_t* const context = ContextOf(dc);
    if (!context) return 0;
    try {
        dc->savedAlignments.push_back(dc->alignment);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    Cairo()->save(context);
    return static_cast<int>(dc->savedAlignments.size());
}

BOOL RestoreDC(HDC dc, int saved) {
    cairo_t* const context = ContextOf(dc);
    if (!context || saved < 1 || saved > static_cast<int>(dc->savedAlignments.size())) return FALSE;
    while (static_cast<int>(dc->savedAlignments.size()) >= saved) {
        dc->alignment = dc->savedAlignments.back();
        dc->savedAlignments.pop_back();
        Cairo()->restore(context);
    }
    return TRUE;
}

int IntersectClipRect(HDC dc, int left, int top, int right, int bottom) {
    cairo_t* const context = ContextOf(dc);
    if (!context) return kRegionError;
    AddRectangle(context, left, top, right, bottom);
    Cairo()->clip(context);
    return kSimpleRegion;
}

BOOL Rectangle(HDC dc, int left, int top, int right, int bottom) {
    cairo_t* const context = ContextOf(dc);
    if (!context) return FALSE;
    Cairo()->set_source_rgb(context, 0, 0, 0);
    AddRectangle(context, left, top, right, bottom);
    Cairo()->fill(context);
    if (right - left <= 2 || bottom - top <= 2) return TRUE;  // nothing but edge
    Cairo()->set_source_rgb(context, 1, 1, 1);
    AddRectangle(context, left + 1, top + 1, right - 1, bottom - 1);
    Cairo()->fill(context);
    return TRUE;
}

UINT SetTextAlign(HDC dc, UINT alignment) {
    return dc ? std::exchange(dc->alignment, alignment) : static_cast<UINT>(-1);
}

BOOL TextOutW(HDC dc, int x, int y, LPCWSTR text, int length) {
    cairo_t* const context = ContextOf(dc);
    if (!context) return FALSE;
    try {
        std::string utf8;
        if (!ToUtf8({text, static_cast<std::size_t>(length)}, utf8)) return FALSE;
        Cairo()->select_font_face(context, kFont, CAIRO_FONT_SLANT_NORMAL,
                                  CAIRO_FONT_WEIGHT_NORMAL);
        Cairo()->set_font_size(context, kFontSize);
        cairo_text_extents_t extents;
        Cairo()->text_extents(context, utf8.c_str(), &extents);
        cairo_font_extents_t font;
        Cairo()->font_extents(context, &font);
        const bool centred = dc->alignment == (TA_CENTER | TA_BASELINE);
        Cairo()->move_to(context, centred ? x - static_cast<int>(extents.x_advance / 2) : x,
                         centred ? y : y + font.ascent);
        Cairo()->set_source_rgb(context, 0, 0, 0);
        Cairo()->show_text(context, utf8.c_str());
    } catch (const std::bad_alloc&) {
        return FALSE;
    }
    return Cairo()->status(context) == CAIRO_STATUS_SUCCESS;
}
