#include "platform/linux/TesseractImage.h"

#include <array>
#include <cmath>

namespace glyphmill::tesseractImage {

namespace {

std::array<std::size_t, 256> histogramOf(const GreyImage &grey) {
    std::array<std::size_t, 256> histogram{};
    for (const std::uint8_t value : grey.pixels)
        ++histogram[value];
    return histogram;
}

// The grey level that a share (0 to 1) of the pixels are darker than.
int percentile(const std::array<std::size_t, 256> &histogram, std::size_t count, double share) {
    const auto wanted = static_cast<std::size_t>(share * static_cast<double>(count));
    std::size_t seen = 0;
    int level = 0;
    while (level < 255 && (seen += histogram[static_cast<std::size_t>(level)]) <= wanted)
        ++level;
    return level;
}

std::uint8_t clampToByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

// Catmull-Rom weights for a sample at distance t (0 to 1) after the second of four neighbours.
std::array<double, 4> cubicWeights(double t) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return {(-t3 + 2 * t2 - t) / 2, (3 * t3 - 5 * t2 + 2) / 2, (-3 * t3 + 4 * t2 + t) / 2, (t3 - t2) / 2};
}

// Every 4-connected area of pixels darker than the threshold that no mark covers yet: its pixels
// are marked 1 and its box handed to `found`, which may mark more (and change pixels it marked).
struct DarkArea {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    std::size_t area = 0;
};

template <typename Found>
void forEachDarkArea(const GreyImage &grey, int threshold, std::vector<std::uint8_t> &marks, Found found) {
    const int width = grey.width;
    const std::size_t count = grey.pixels.size();
    std::vector<std::size_t> stack;
    for (std::size_t start = 0; start < count; ++start) {
        if (marks[start] != 0 || grey.pixels[start] >= threshold)
            continue;
        DarkArea box{width, grey.height, -1, -1, 0};
        stack.push_back(start);
        marks[start] = 1;
        while (!stack.empty()) {
            const std::size_t at = stack.back();
            stack.pop_back();
            ++box.area;
            const int x = static_cast<int>(at % static_cast<std::size_t>(width));
            const int y = static_cast<int>(at / static_cast<std::size_t>(width));
            box.left = std::min(box.left, x);
            box.right = std::max(box.right, x);
            box.top = std::min(box.top, y);
            box.bottom = std::max(box.bottom, y);
            const auto visit = [&](std::size_t next) {
                if (marks[next] == 0 && grey.pixels[next] < threshold) {
                    marks[next] = 1;
                    stack.push_back(next);
                }
            };
            if (x > 0)
                visit(at - 1);
            if (x + 1 < width)
                visit(at + 1);
            if (y > 0)
                visit(at - static_cast<std::size_t>(width));
            if (y + 1 < grey.height)
                visit(at + static_cast<std::size_t>(width));
        }
        found(box);
    }
}

} // namespace

// Luma, over white where the pixel is not opaque.
GreyImage toGrey(const ScreenImage &image) {
    GreyImage grey{image.width, image.height, std::vector<std::uint8_t>(image.pixels.size())};
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        const std::uint32_t argb = image.pixels[i];
        const std::uint32_t alpha = argb >> 24;
        const std::uint32_t luma =
            (299 * ((argb >> 16) & 0xff) + 587 * ((argb >> 8) & 0xff) + 114 * (argb & 0xff) + 500) / 1000;
        grey.pixels[i] = static_cast<std::uint8_t>((luma * alpha + 255 * (255 - alpha) + 127) / 255);
    }
    return grey;
}

// The ground is what most of a screen region is. Tesseract reads dark text on a white ground best,
// so a dark ground is inverted, and the ground is stretched to white and the darkest ink to black.
void normalise(GreyImage &grey) {
    std::array<std::size_t, 256> histogram = histogramOf(grey);
    const std::size_t count = grey.pixels.size();
    if (percentile(histogram, count, 0.5) < 128) {
        for (std::uint8_t &value : grey.pixels)
            value = static_cast<std::uint8_t>(255 - value);
        std::reverse(histogram.begin(), histogram.end());
    }
    const int ground = percentile(histogram, count, 0.5);
    const int ink = percentile(histogram, count, 0.002);
    if (ground - ink < 16)
        return;
    std::array<std::uint8_t, 256> map{};
    for (int level = 0; level < 256; ++level)
        map[static_cast<std::size_t>(level)] =
            static_cast<std::uint8_t>(std::clamp((level - ink) * 255 / (ground - ink), 0, 255));
    for (std::uint8_t &value : grey.pixels)
        value = map[value];
}

// Filled shapes darker than the ground (a highlighted menu item, a selected row, a button) hold
// light text; inverting each such rectangle makes all text dark on light. Shapes are found as
// connected dark areas that fill most of their bounding box and are large enough to hold a line
// of text.
void invertFilledPanels(GreyImage &grey, double devicePixelRatio) {
    const int width = grey.width;
    const int height = grey.height;
    const std::size_t count = grey.pixels.size();
    const int threshold = percentile(histogramOf(grey), count, 0.5) - 40;
    const int minimumHeight = static_cast<int>(12 * devicePixelRatio);
    const int minimumWidth = static_cast<int>(40 * devicePixelRatio);

    std::vector<std::uint8_t> state(count, 0); // 1 visited, 2 inverted
    forEachDarkArea(grey, threshold, state, [&](const DarkArea &box) {
        const auto [left, top, right, bottom, area] = box;
        const int boxWidth = right - left + 1;
        const int boxHeight = bottom - top + 1;
        const bool panel =
            boxWidth >= minimumWidth && boxHeight >= minimumHeight &&
            area * 10 >= static_cast<std::size_t>(boxWidth) * static_cast<std::size_t>(boxHeight) * 6;
        // The whole image is the ground, not a panel on it.
        if (!panel || (boxWidth == width && boxHeight == height))
            return;
        // The panel's own ground becomes white and its lightest pixels (the text) black.
        std::uint64_t groundSum = 0;
        int lightest = 0;
        for (int y = top; y <= bottom; ++y) {
            for (int x = left; x <= right; ++x) {
                const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                       static_cast<std::size_t>(x);
                if (state[at] == 1 && grey.pixels[at] < threshold)
                    groundSum += grey.pixels[at];
                lightest = std::max<int>(lightest, grey.pixels[at]);
            }
        }
        const double panelGround = static_cast<double>(groundSum) / static_cast<double>(area);
        const double span = std::max(1.0, lightest - panelGround);
        for (int y = top; y <= bottom; ++y) {
            for (int x = left; x <= right; ++x) {
                const std::size_t at = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                       static_cast<std::size_t>(x);
                if (state[at] == 2)
                    continue;
                grey.pixels[at] = clampToByte(255.0 * (lightest - grey.pixels[at]) / span);
                state[at] = 2;
            }
        }
    });
}

GreyImage enlargeTwice(const GreyImage &source, TesseractSettings::Upscale filter) {
    GreyImage result{source.width * 2, source.height * 2, {}};
    result.pixels.resize(static_cast<std::size_t>(result.width) * static_cast<std::size_t>(result.height));
    std::size_t out = 0;
    for (int y = 0; y < result.height; ++y) {
        // Pixel centres: destination y + 0.5 maps to source (y + 0.5) / 2 - 0.5.
        const double sy = (y + 0.5) / 2 - 0.5;
        const int y0 = static_cast<int>(std::floor(sy));
        const double ty = sy - y0;
        for (int x = 0; x < result.width; ++x, ++out) {
            const double sx = (x + 0.5) / 2 - 0.5;
            const int x0 = static_cast<int>(std::floor(sx));
            const double tx = sx - x0;
            switch (filter) {
            case TesseractSettings::Upscale::none:
            case TesseractSettings::Upscale::nearest:
                result.pixels[out] = source.at(x / 2, y / 2);
                break;
            case TesseractSettings::Upscale::bilinear:
                result.pixels[out] =
                    clampToByte((source.at(x0, y0) * (1 - tx) + source.at(x0 + 1, y0) * tx) * (1 - ty) +
                                (source.at(x0, y0 + 1) * (1 - tx) + source.at(x0 + 1, y0 + 1) * tx) * ty);
                break;
            case TesseractSettings::Upscale::bicubic: {
                const std::array<double, 4> wx = cubicWeights(tx);
                const std::array<double, 4> wy = cubicWeights(ty);
                double sum = 0;
                for (int j = 0; j < 4; ++j) {
                    double row = 0;
                    for (int i = 0; i < 4; ++i)
                        row += wx[static_cast<std::size_t>(i)] * source.at(x0 - 1 + i, y0 - 1 + j);
                    sum += wy[static_cast<std::size_t>(j)] * row;
                }
                result.pixels[out] = clampToByte(sum);
                break;
            }
            }
        }
    }
    return result;
}

GreyImage rows(const GreyImage &source, int from, int to) {
    const auto width = static_cast<std::size_t>(source.width);
    GreyImage part{source.width, to - from, {}};
    part.pixels.assign(
        source.pixels.begin() + static_cast<std::ptrdiff_t>(width * static_cast<std::size_t>(from)),
        source.pixels.begin() + static_cast<std::ptrdiff_t>(width * static_cast<std::size_t>(to)));
    return part;
}

int blankRowNearMiddle(const GreyImage &grey) {
    const auto width = static_cast<std::size_t>(grey.width);
    // Faint strokes (a toggle's outline, a separator) count as ink: a band must not cut them.
    std::vector<bool> inked(static_cast<std::size_t>(grey.height));
    for (std::size_t y = 0; y < inked.size(); ++y) {
        const auto row = grey.pixels.begin() + static_cast<std::ptrdiff_t>(y * width);
        inked[y] = std::any_of(row, row + static_cast<std::ptrdiff_t>(width),
                               [](std::uint8_t value) { return value < 232; });
    }
    // The middle of the run of at least three blank rows nearest the middle of the image, within
    // its middle half: a thin band of a few lines is read worse than the same lines in context.
    int best = -1;
    const int middle = grey.height / 2;
    bool inkAbove = false;
    for (int y = 0; y < grey.height;) {
        if (inked[static_cast<std::size_t>(y)]) {
            inkAbove = true;
            ++y;
            continue;
        }
        int end = y;
        while (end < grey.height && !inked[static_cast<std::size_t>(end)])
            ++end;
        const int centre = (y + end) / 2;
        if (inkAbove && end < grey.height && end - y >= 3 && centre >= grey.height / 4 &&
            centre <= grey.height * 3 / 4 &&
            (best < 0 || std::abs(centre - middle) < std::abs(best - middle)))
            best = centre;
        y = end;
    }
    return best;
}

int letterHeight(const GreyImage &grey) {
    std::vector<std::uint8_t> seen(grey.pixels.size(), 0);
    std::vector<int> heights;
    forEachDarkArea(grey, 128, seen, [&](const DarkArea &box) {
        const int boxWidth = box.right - box.left + 1;
        const int boxHeight = box.bottom - box.top + 1;
        // Letters are neither specks nor rules nor panels.
        if (boxHeight >= 4 && boxHeight <= 100 && boxWidth * 3 >= boxHeight && boxWidth <= boxHeight * 2)
            heights.push_back(boxHeight);
    });
    if (heights.empty())
        return 0;
    const auto middle = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() / 2);
    std::nth_element(heights.begin(), middle, heights.end());
    return *middle;
}

} // namespace glyphmill::tesseractImage
