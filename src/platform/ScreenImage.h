// The pixels of a screen or of a part of it, as the platform grabbed them.
#pragma once

#include <cstdint>
#include <vector>

namespace glyphmill {

struct ScreenImage {
    // In device pixels.
    int width = 0;
    int height = 0;
    // Device pixels per point of the screen the image came from.
    double devicePixelRatio = 1.0;
    // 0xAARRGGBB, rows from the top, no padding (the layout of QImage::Format_ARGB32).
    std::vector<std::uint32_t> pixels;

    bool isEmpty() const { return width <= 0 || height <= 0; }
};

} // namespace glyphmill
