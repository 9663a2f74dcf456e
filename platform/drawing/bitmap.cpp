// Device contexts and the bitmaps that they draw into.
#include <new>
#include <utility>

#include "device_context.h"

using namespace quorvane::platform;

HDC CreateCompatibleDC(HDC) {
    return new (std::nothrow) HDC__;
}

BOOL DeleteDC(HDC dc) {
    delete dc;
    return dc != nullptr;
}

HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT, void** bits, HANDLE, DWORD) {
    const BITMAPINFOHEADER& header = info->bmiHeader;
    constexpr LONG kLongestSide = 0x4000;
    const LONG height = header.biHeight < 0 ? -header.biHeight : 0;
    const bool fits = header.biWidth > 0 && header.biWidth <= kLongestSide && height > 0 &&
                      height <= kLongestSide;
    if (!fits || header.biBitCount != 32 || header.biCompression != BI_RGB) return nullptr;
    if (!Cairo()) return nullptr;
    try {
        auto bitmap = std::make_unique<HBITMAP__>();
        bitmap->pixels.resize(static_cast<std::size_t>(header.biWidth) *
                              static_cast<std::size_t>(height));
        bitmap->surface.reset(Cairo()->image_surface_create_for_data(
            reinterpret_cast<unsigned char*>(bitmap->pixels.data()), CAIRO_FORMAT_RGB24,
            header.biWidth, height, header.biWidth * 4));
        *bits = bitmap->pixels.data();
        return bitmap.release();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

BOOL DeleteObject(HGDIOBJ object) {
    delete static_cast<HBITMAP>(object);
    return object != nullptr;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    const auto bitmap = static_cast<HBITMAP>(object);
    dc->context.reset(bitmap ? Cairo()->create(bitmap->surface.get()) : nullptr);
    dc->savedAlignments.clear();
    return std::exchange(dc->bitmap, bitmap);
}
