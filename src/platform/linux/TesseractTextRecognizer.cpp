#include "platform/linux/TesseractTextRecognizer.h"

#include "transform/Utf8.h"

#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace glyphmill {

namespace {

constexpr const char *debianDataPath = "/usr/share/tesseract-ocr/5/tessdata/";

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

std::uint8_t clampToByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
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
    std::vector<std::size_t> stack;
    for (std::size_t start = 0; start < count; ++start) {
        if (state[start] != 0 || grey.pixels[start] >= threshold)
            continue;
        int left = width, right = -1, top = height, bottom = -1;
        std::size_t area = 0;
        stack.push_back(start);
        state[start] = 1;
        while (!stack.empty()) {
            const std::size_t at = stack.back();
            stack.pop_back();
            ++area;
            const int x = static_cast<int>(at % static_cast<std::size_t>(width));
            const int y = static_cast<int>(at / static_cast<std::size_t>(width));
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
            const auto visit = [&](std::size_t next) {
                if (state[next] == 0 && grey.pixels[next] < threshold) {
                    state[next] = 1;
                    stack.push_back(next);
                }
            };
            if (x > 0)
                visit(at - 1);
            if (x + 1 < width)
                visit(at + 1);
            if (y > 0)
                visit(at - static_cast<std::size_t>(width));
            if (y + 1 < height)
                visit(at + static_cast<std::size_t>(width));
        }
        const int boxWidth = right - left + 1;
        const int boxHeight = bottom - top + 1;
        const bool panel =
            boxWidth >= minimumWidth && boxHeight >= minimumHeight &&
            area * 10 >= static_cast<std::size_t>(boxWidth) * static_cast<std::size_t>(boxHeight) * 6;
        // The whole image is the ground, not a panel on it.
        if (!panel || (boxWidth == width && boxHeight == height))
            continue;
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
    }
}

// Catmull-Rom weights for a sample at distance t (0 to 1) after the second of four neighbours.
std::array<double, 4> cubicWeights(double t) {
    const double t2 = t * t;
    const double t3 = t2 * t;
    return {(-t3 + 2 * t2 - t) / 2, (3 * t3 - 5 * t2 + 2) / 2, (-3 * t3 + 4 * t2 + t) / 2, (t3 - t2) / 2};
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

bool hasLetterOrDigit(std::u16string_view text) {
    return std::any_of(text.begin(), text.end(), [](char16_t unit) {
        return (unit >= u'0' && unit <= u'9') || (unit >= u'A' && unit <= u'Z') ||
               (unit >= u'a' && unit <= u'z') || unit >= 0x00C0;
    });
}

bool isSpace(char16_t unit) {
    return unit == u' ' || unit == u'\n' || unit == u'\t' || unit == u'\r';
}

std::u16string trimmed(std::u16string_view text) {
    while (!text.empty() && isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back()))
        text.remove_suffix(1);
    return std::u16string(text);
}

std::size_t visibleLength(std::u16string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char16_t unit) { return !isSpace(unit); }));
}

struct Box {
    int left = 0, top = 0, right = 0, bottom = 0;
};

// A word or a line as Tesseract read it, in pixels of the image it was given.
struct Reading {
    std::u16string text;
    Box box;
    int line = 0;      // Tesseract's text line, counted from 0
    int inkLeft = 0;   // left edge of the first character
    int inkRight = 0;  // right edge of the last character
    int baseline = -1; // at the middle of the word; -1 when unknown
};

std::vector<Reading> read(tesseract::TessBaseAPI &api, TesseractSettings::Level wanted,
                          float noiseConfidence) {
    std::vector<Reading> readings;
    const std::unique_ptr<tesseract::ResultIterator> iterator(api.GetIterator());
    const tesseract::PageIteratorLevel level =
        wanted == TesseractSettings::Level::words ? tesseract::RIL_WORD : tesseract::RIL_TEXTLINE;
    if (!iterator || iterator->Empty(tesseract::RIL_SYMBOL))
        return readings;
    int line = -1;
    bool keep = false;
    do {
        if (iterator->IsAtBeginningOf(tesseract::RIL_TEXTLINE))
            ++line;
        if (iterator->IsAtBeginningOf(level)) {
            const std::unique_ptr<char[]> utf8(iterator->GetUTF8Text(level));
            Reading reading;
            keep = utf8 && iterator->BoundingBox(level, &reading.box.left, &reading.box.top,
                                                 &reading.box.right, &reading.box.bottom);
            if (keep) {
                reading.text = utf8::decodeLossy(utf8.get());
                reading.line = line;
                const bool noise = !hasLetterOrDigit(reading.text) || visibleLength(reading.text) == 1;
                keep = !(noise && iterator->Confidence(level) < noiseConfidence);
                int x1 = 0, y1 = 0, x2 = 0, y2 = 0;
                if (iterator->Baseline(level, &x1, &y1, &x2, &y2) && x2 != x1)
                    reading.baseline =
                        y1 + (y2 - y1) * ((reading.box.left + reading.box.right) / 2 - x1) / (x2 - x1);
                reading.inkLeft = reading.box.left;
                int left = 0, top = 0, right = 0, bottom = 0;
                if (iterator->BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom))
                    reading.inkLeft = left;
                reading.inkRight = reading.box.right;
            }
            if (keep)
                readings.push_back(std::move(reading));
        } else if (keep) {
            int left = 0, top = 0, right = 0, bottom = 0;
            if (iterator->BoundingBox(tesseract::RIL_SYMBOL, &left, &top, &right, &bottom))
                readings.back().inkRight = right;
        }
    } while (iterator->Next(tesseract::RIL_SYMBOL));
    return readings;
}

// The share of the columns from..to (exclusive) with ink just under the baseline, where an
// underscore or an underline runs.
double lowInk(const GreyImage &grey, int from, int to, int baseline, int height) {
    if (to <= from)
        return 0;
    const int top = baseline + std::max(1, height / 20);
    const int bottom = baseline + height * 35 / 100;
    int inked = 0;
    for (int x = from; x < to; ++x) {
        for (int y = top; y <= bottom; ++y) {
            if (grey.at(x, y) < 192) {
                ++inked;
                break;
            }
        }
    }
    return static_cast<double>(inked) / (to - from);
}

// Tesseract drops underscores in names like read_count, or splits the word at them. Two words of
// one line are one when nothing but an underscore, or nothing at all, lies between them.
std::vector<Reading> joinWords(std::vector<Reading> words, const GreyImage &grey) {
    std::vector<Reading> joined;
    for (Reading &word : words) {
        if (!joined.empty() && joined.back().line == word.line) {
            Reading &previous = joined.back();
            const int height =
                std::max(previous.box.bottom - previous.box.top, word.box.bottom - word.box.top);
            const int gap = word.inkLeft - previous.inkRight;
            const int baseline = previous.baseline;
            // An underline runs under the letters too; an underscore only between them.
            const bool underlined =
                baseline < 0 ||
                lowInk(grey, previous.box.left, previous.box.left + height / 2, baseline, height) >= 0.75;
            const bool hasUnderscore = previous.text.ends_with(u'_') || word.text.starts_with(u'_');
            const char16_t *glue = nullptr;
            if (gap * 100 <= height * 15) {
                // Touching: one word, with an underscore when one runs across the join unread.
                // The unread underscore may lie in either word's box, so look on both sides of both edges.
                double ink = 0;
                for (const int edge : {previous.inkRight, word.inkLeft})
                    ink = std::max({ink, lowInk(grey, edge - height / 3, edge, baseline, height),
                                    lowInk(grey, edge, edge + height / 3, baseline, height)});
                const bool stroke = !underlined && !hasUnderscore && ink >= 0.75;
                glue = stroke ? u"_" : u"";
            } else if (gap <= height * 3 / 2 && !underlined &&
                       lowInk(grey, previous.inkRight + 1, word.inkLeft - 1, baseline, height) >= 0.75) {
                glue = u"_";
            }
            if (glue != nullptr) {
                previous.text = trimmed(previous.text) + glue + trimmed(word.text);
                previous.box = {std::min(previous.box.left, word.box.left),
                                std::min(previous.box.top, word.box.top),
                                std::max(previous.box.right, word.box.right),
                                std::max(previous.box.bottom, word.box.bottom)};
                previous.inkRight = word.inkRight;
                continue;
            }
        }
        joined.push_back(std::move(word));
    }
    return joined;
}

// Icons before a label are read as a letter or a symbol with high confidence. A one-character
// word that is about square, as tall as the other words of its line and nearly solid ink is such
// a shape, not text; letters as tall as that are either narrow or open.
std::vector<Reading> dropIcons(std::vector<Reading> words, const GreyImage &grey) {
    std::vector<Reading> kept;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const Box &box = words[i].box;
        const int width = box.right - box.left;
        const int height = box.bottom - box.top;
        int tallest = 0;
        for (std::size_t j = 0; j < words.size(); ++j)
            if (j != i && words[j].line == words[i].line)
                tallest = std::max(tallest, words[j].box.bottom - words[j].box.top);
        bool icon = visibleLength(words[i].text) == 1 && tallest > 0 && height * 10 >= tallest * 8 &&
                    width * 5 >= height * 4 && width * 4 <= height * 5;
        if (icon) {
            std::size_t ink = 0;
            for (int y = box.top; y < box.bottom; ++y)
                for (int x = box.left; x < box.right; ++x)
                    ink += grey.at(x, y) < 192 ? 1 : 0;
            icon = ink * 10 >= static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 7;
        }
        if (!icon)
            kept.push_back(std::move(words[i]));
    }
    return kept;
}

} // namespace

TesseractTextRecognizer::TesseractTextRecognizer(TesseractSettings settings)
    : settings_(std::move(settings)) {}

TesseractTextRecognizer::~TesseractTextRecognizer() {
    if (api_)
        api_->End();
}

void TesseractTextRecognizer::prepare() {
    const std::lock_guard lock(mutex_);
    loadLocked();
}

bool TesseractTextRecognizer::loadLocked() {
    if (api_)
        return true;
    if (loadFailed_)
        return false;
    auto api = std::make_unique<tesseract::TessBaseAPI>();
    const char *firstPath = settings_.dataPath.empty() ? nullptr : settings_.dataPath.c_str();
    if (api->Init(firstPath, "eng", tesseract::OEM_LSTM_ONLY) != 0 &&
        (firstPath != nullptr || api->Init(debianDataPath, "eng", tesseract::OEM_LSTM_ONLY) != 0)) {
        loadFailed_ = true;
        return false;
    }
    // The image is inverted here when needed; Tesseract's own retry of every line in inverse is
    // slow.
    api->SetVariable("tessedit_do_invert", "0");
    api_ = std::move(api);
    return true;
}

std::optional<std::vector<RecognizedFragment>> TesseractTextRecognizer::recognize(const ScreenImage &image) {
    if (image.isEmpty() ||
        image.pixels.size() != static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height))
        return std::nullopt;
    const std::lock_guard lock(mutex_);
    if (!loadLocked())
        return std::nullopt;

    GreyImage grey = toGrey(image);
    if (settings_.invertDark) {
        normalise(grey);
        invertFilledPanels(grey, image.devicePixelRatio);
    }
    double scale = std::max(image.devicePixelRatio, 1.0);
    if (image.devicePixelRatio < 1.5 && settings_.upscale != TesseractSettings::Upscale::none) {
        grey = enlargeTwice(grey, settings_.upscale);
        scale *= 2;
    }

    api_->SetPageSegMode(static_cast<tesseract::PageSegMode>(settings_.pageSegMode));
    api_->SetImage(grey.pixels.data(), grey.width, grey.height, 1, grey.width);
    api_->SetSourceResolution(static_cast<int>(std::lround(settings_.resolutionPerScale * scale)));
    if (api_->Recognize(nullptr) != 0) {
        api_->Clear();
        return std::nullopt;
    }

    std::vector<Reading> readings = read(*api_, settings_.level, settings_.noiseConfidence);
    if (settings_.level == TesseractSettings::Level::words)
        readings = dropIcons(joinWords(std::move(readings), grey), grey);
    std::vector<RecognizedFragment> fragments;
    const double width = grey.width;
    const double height = grey.height;
    for (Reading &reading : readings) {
        const Box &box = reading.box;
        fragments.push_back({box.left / width, 1.0 - box.bottom / height, (box.right - box.left) / width,
                             (box.bottom - box.top) / height, std::move(reading.text)});
    }
    api_->Clear();
    return fragments;
}

} // namespace glyphmill
