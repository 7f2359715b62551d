// How an image is prepared for Tesseract: grey, dark text on white, enlarged, cut into bands.
#pragma once

#include "platform/ScreenImage.h"
#include "platform/linux/TesseractTextRecognizer.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace glyphmill::tesseractImage {

// An 8-bit grey image, rows from the top, no padding.
struct GreyImage {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    std::uint8_t at(int x, int y) const {
        x = std::clamp(x, 0, width - 1);
        y = std::clamp(y, 0, height - 1);
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                      static_cast<std::size_t>(x)];
    }
};

// Luma, over white where the pixel is not opaque.
GreyImage toGrey(const ScreenImage &image);
// A dark ground is inverted, the ground stretched to white and the darkest ink to black.
void normalise(GreyImage &grey);
// Filled shapes darker than the ground are inverted so that their text is dark on light too.
void invertFilledPanels(GreyImage &grey, double devicePixelRatio);
GreyImage enlargeTwice(const GreyImage &source, TesseractSettings::Upscale filter);
// Rows from..to (exclusive).
GreyImage rows(const GreyImage &source, int from, int to);
// A row in the middle half with no ink, not even faint, in a run of a few such rows, with ink
// above and below; the one nearest the middle, or -1 when there is none.
int blankRowNearMiddle(const GreyImage &grey);
// The median height in pixels of the shapes that look like letters (about the x-height, since
// most letters are small ones); 0 when there are none.
int letterHeight(const GreyImage &grey);

} // namespace glyphmill::tesseractImage
