// Pictures: what the control draws, and files of what it should draw.
#pragma once

#include <windows.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace quorvane {

struct Picture {
    LONG width = 0;
    LONG height = 0;
    std::vector<std::uint32_t> pixels;  // 0x00RRGGBB, the top line first

    // No more than a rounding error between the colours of any two pixels.
    bool LooksLike(const Picture& other) const;
    // The smallest rectangle around what is dark inside the area; empty when nothing is.
    RECT DarkWithin(const RECT& area) const;
    // Paints the area white.
    void Erase(const RECT& area);
};

// A bitmap file of 24 bits a pixel; an empty picture when there is none.
Picture ReadPicture(const std::filesystem::path& file);
void WritePicture(const Picture& picture, const std::filesystem::path& file);

// A device context that draws into a grey picture.
class Canvas {
public:
    Canvas(LONG width, LONG height);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    HDC Dc() const { return dc_; }
    Picture Look() const;

private:
    LONG width_;
    LONG height_;
    HDC dc_;
    void* bits_ = nullptr;
    HBITMAP bitmap_;
    HGDIOBJ before_;
};

}  // namespace quorvane
