#include "tests/component/picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

namespace quorvane {
namespace {

constexpr std::size_t kFileHeader = 14;
constexpr std::size_t kHeaders = kFileHeader + sizeof(BITMAPINFOHEADER);
constexpr std::uint32_t kGrey = 0xC0C0C0;
constexpr std::uint32_t kWhite = 0xFFFFFF;

std::size_t BytesALine(LONG width) {
    return (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
}

BITMAPINFOHEADER Header(LONG width, LONG height, WORD bitCount) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bitCount;
    header.biCompression = BI_RGB;
    return header;
}

}  // namespace

bool Picture::LooksLike(const Picture& other) const {
    constexpr int kRounding = 3;
    const auto close = [](std::uint32_t one, std::uint32_t two) {
        for (int shift = 0; shift < 24; shift += 8) {
            const int distance = int(one >> shift & 0xFF) - int(two >> shift & 0xFF);
            if (std::abs(distance) > kRounding) return false;
        }
        return true;
    };
    return width == other.width && height == other.height &&
           std::equal(pixels.begin(), pixels.end(), other.pixels.begin(), other.pixels.end(),
                      close);
}

RECT Picture::DarkWithin(const RECT& area) const {
    RECT found = {area.right, area.bottom, area.left, area.top};
    for (LONG y = area.top; y < area.bottom; ++y) {
        for (LONG x = area.left; x < area.right; ++x) {
            const std::uint32_t green = pixels[std::size_t(y * width + x)] >> 8 & 0xFF;
            if (green >= 0x80) continue;
            found = {std::min(found.left, x), std::min(found.top, y), std::max(found.right, x + 1),
                     std::max(found.bottom, y + 1)};
        }
    }
    return found.left < found.right ? found : RECT{};
}

void Picture::Erase(const RECT& area) {
    for (LONG y = area.top; y < area.bottom; ++y) {
        std::fill_n(pixels.begin() + y * width + area.left, area.right - area.left, kWhite);
    }
}

Picture ReadPicture(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    if (bytes.size() < kHeaders) return {};
    BITMAPINFOHEADER header;
    std::memcpy(&header, bytes.data() + kFileHeader, sizeof header);
    const std::size_t line = BytesALine(header.biWidth);
    if (bytes.size() < kHeaders + line * static_cast<std::size_t>(header.biHeight)) return {};
    Picture picture{header.biWidth, header.biHeight, {}};
    for (LONG y = header.biHeight; y-- > 0;) {
        const auto* next = reinterpret_cast<const unsigned char*>(bytes.data()) + kHeaders +
                           line * static_cast<std::size_t>(y);
        for (LONG x = 0; x < header.biWidth; ++x, next += 3) {
            picture.pixels.push_back(next[0] | next[1] << 8 | next[2] << 16);
        }
    }
    return picture;
}

void WritePicture(const Picture& picture, const std::filesystem::path& file) {
    const std::size_t line = BytesALine(picture.width);
    const std::size_t size = kHeaders + line * static_cast<std::size_t>(picture.height);
    std::string bytes(size, '\0');
    const auto put = [&bytes](std::size_t place, std::uint32_t value, int count) {
        for (int index = 0; index < count; ++index) bytes[place++] = char(value >> 8 * index);
    };
    put(0, 0x4D42, 2);
    put(2, static_cast<std::uint32_t>(size), 4);
    put(10, kHeaders, 4);
    const BITMAPINFOHEADER header = Header(picture.width, picture.height, 24);
    std::memcpy(bytes.data() + kFileHeader, &header, sizeof header);
    auto pixel = picture.pixels.begin();
    for (LONG y = picture.height; y-- > 0;) {
        for (LONG x = 0; x < picture.width; ++x) {
            put(kHeaders + line * std::size_t(y) + std::size_t(x) * 3, *pixel++, 3);
        }
    }
    std::ofstream(file, std::ios::binary) << bytes;
}

Canvas::Canvas(LONG width, LONG height)
    : width_(width), height_(height), dc_(CreateCompatibleDC(nullptr)) {
    BITMAPINFO info = {};
    info.bmiHeader = Header(width, -height, 32);
    bitmap_ = CreateDIBSection(dc_, &info, DIB_RGB_COLORS, &bits_, nullptr, 0);
    before_ = SelectObject(dc_, bitmap_);
    std::fill_n(static_cast<std::uint32_t*>(bits_), width * height, kGrey);
}

Canvas::~Canvas() {
    SelectObject(dc_, before_);
    DeleteObject(bitmap_);
    DeleteDC(dc_);
}

Picture Canvas::Look() const {
    const auto* const first = static_cast<const std::uint32_t*>(bits_);
    Picture picture{width_, height_, {first, first + width_ * height_}};
    for (std::uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
    return picture;
}

}  // namespace quorvane
