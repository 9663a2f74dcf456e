// The product's icon, out of the .ico file that the Windows library has as a resource.
#include <winuser.h>

#include <cstring>
#include <new>
#include <vector>

#include "device_context.h"

using namespace quorvane::platform;

// The file itself, put into the library by the assembler.
asm(".section .rodata\n"
    ".balign 4\n"
    "quorvane_icon_file: .incbin \"" QUORVANE_ICON_FILE
    "\"\n"
    "quorvane_icon_file_end:\n"
    ".text\n");
extern "C" {
extern const BYTE quorvane_icon_file[] __attribute__((visibility("hidden")));
extern const BYTE quorvane_icon_file_end[] __attribute__((visibility("hidden")));
}

struct HICON__ {
    std::vector<uint32_t> pixels;
};

namespace {

constexpr UINT kIconResource = 201;
constexpr int kSide = 32;

// A picture of the file's list, as it stands in the file.
struct Entry {
    BYTE width;
    BYTE height;
    BYTE colors;
    BYTE reserved;
    WORD planes;
    WORD bitCount;
    DWORD size;
    DWORD offset;
};
static_assert(sizeof(Entry) == 16);

// The bottom line first; red, green and blue as they are without the transparency.
const BYTE* PixelsInFile() {
    WORD count;
    std::memcpy(&count, quorvane_icon_file + 4, sizeof count);
    for (WORD index = 0; index < count; ++index) {
        Entry entry;
        std::memcpy(&entry, quorvane_icon_file + 6 + index * sizeof entry, sizeof entry);
        if (entry.width == kSide && entry.bitCount == 32) {
            return quorvane_icon_file + entry.offset + sizeof(BITMAPINFOHEADER);
        }
    }
    return nullptr;
}

// Cairo wants colours multiplied by the opacity.
uint32_t Multiplied(uint32_t pixel) {
    const uint32_t alpha = pixel >> 24;
    uint32_t result = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) {
        result |= (((pixel >> shift & 0xFF) * alpha + 127) / 255) << shift;
    }
    return result;
}

HICON LoadIconFile() {
    static HICON__ icon;
    const BYTE* const pixels = PixelsInFile();
    if (!pixels) return nullptr;
    icon.pixels.resize(kSide * kSide);
    for (int line = 0; line < kSide; ++line) {
        for (int column = 0; column < kSide; ++column) {
            uint32_t pixel;
            std::memcpy(&pixel, pixels + ((kSide - 1 - line) * kSide + column) * 4, sizeof pixel);
            icon.pixels[static_cast<std::size_t>(line * kSide + column)] = Multiplied(pixel);
        }
    }
    return &icon;
}

}  // namespace

HICON LoadIconW(HINSTANCE module, LPCWSTR name) {
    if (!module || name != MAKEINTRESOURCEW(kIconResource)) return nullptr;
    try {
        static const HICON icon = LoadIconFile();
        return icon;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

BOOL DrawIcon(HDC dc, int x, int y, HICON icon) {
    if (!dc || !dc->context || !icon) return FALSE;
    const Surface surface(Cairo()->image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(icon->pixels.data()), CAIRO_FORMAT_ARGB32, kSide, kSide,
        kSide * 4));
    Cairo()->set_source_surface(dc->context.get(), surface.get(), x, y);
    Cairo()->paint(dc->context.get());
    return TRUE;
}
