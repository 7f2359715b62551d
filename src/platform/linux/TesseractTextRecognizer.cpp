#include "platform/linux/TesseractTextRecognizer.h"

#include "platform/linux/TesseractImage.h"

#include "common/Utf8.h"

#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <thread>

namespace glyphmill {

namespace {

using tesseractImage::GreyImage;

constexpr const char *debianDataPath = "/usr/share/tesseract-ocr/5/tessdata/";

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

// Tesseract reads one band of the image; its readings are in the band's own pixels.
std::optional<std::vector<Reading>> readBand(tesseract::TessBaseAPI &api, const GreyImage &band, double scale,
                                             const TesseractSettings &settings) {
    api.SetPageSegMode(static_cast<tesseract::PageSegMode>(settings.pageSegMode));
    api.SetImage(band.pixels.data(), band.width, band.height, 1, band.width);
    api.SetSourceResolution(static_cast<int>(std::lround(settings.resolutionPerScale * scale)));
    if (api.Recognize(nullptr) != 0) {
        api.Clear();
        return std::nullopt;
    }
    std::vector<Reading> readings = read(api, settings.level, settings.noiseConfidence);
    api.Clear();
    if (settings.level == TesseractSettings::Level::words)
        readings = dropIcons(joinWords(std::move(readings), band), band);
    return readings;
}

std::unique_ptr<tesseract::TessBaseAPI> loadModel(const std::string &dataPath) {
    auto api = std::make_unique<tesseract::TessBaseAPI>();
    const char *firstPath = dataPath.empty() ? nullptr : dataPath.c_str();
    if (api->Init(firstPath, "eng", tesseract::OEM_LSTM_ONLY) != 0 &&
        (firstPath != nullptr || api->Init(debianDataPath, "eng", tesseract::OEM_LSTM_ONLY) != 0))
        return nullptr;
    // The image is inverted here when needed; Tesseract's own retry of every line in inverse is
    // slow.
    api->SetVariable("tessedit_do_invert", "0");
    return api;
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
    api_ = loadModel(settings_.dataPath);
    loadFailed_ = !api_;
    return !loadFailed_;
}

std::optional<std::vector<RecognizedFragment>> TesseractTextRecognizer::recognize(const ScreenImage &image) {
    if (image.isEmpty() ||
        image.pixels.size() != static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height))
        return std::nullopt;
    const std::lock_guard lock(mutex_);
    if (!loadLocked())
        return std::nullopt;

    GreyImage grey = tesseractImage::toGrey(image);
    if (settings_.invertDark) {
        tesseractImage::normalise(grey);
        tesseractImage::invertFilledPanels(grey, image.devicePixelRatio);
    }
    // Small text is enlarged for Tesseract; text already large reads as well without, in about
    // half the time.
    const int upscaleBelow = settings_.upscaleBelowLetterHeight;
    const bool enlarge = image.devicePixelRatio < 1.5 &&
                         settings_.upscale != TesseractSettings::Upscale::none &&
                         (upscaleBelow <= 0 || tesseractImage::letterHeight(grey) < upscaleBelow);
    const int factor = enlarge ? 2 : 1;
    // Text left at its size because it is large is as large as enlarged small text: Tesseract is
    // told the same resolution (a lower one only makes it estimate its own, and say so).
    const bool largeText =
        image.devicePixelRatio < 1.5 && !enlarge && settings_.upscale != TesseractSettings::Upscale::none;
    const double scale = std::max(image.devicePixelRatio, 1.0) * (largeText ? 2 : factor);

    // A large image is read in two bands, cut at blank rows, on two threads. The second band needs
    // a model of its own, loaded for the request only (while the first band is read) so that it
    // holds no memory between requests.
    const long parallelFrom = settings_.parallelFromPixels;
    const int split =
        parallelFrom > 0 && static_cast<long>(grey.pixels.size()) * factor * factor >= parallelFrom
            ? tesseractImage::blankRowNearMiddle(grey)
            : -1;
    struct Band {
        int top = 0;
        GreyImage image;
        std::optional<std::vector<Reading>> readings;
    };
    std::vector<Band> bands;
    if (split > 0) {
        bands.push_back({0, tesseractImage::rows(grey, 0, split), {}});
        bands.push_back({split, tesseractImage::rows(grey, split, grey.height), {}});
    } else {
        bands.push_back({0, std::move(grey), {}});
    }
    const auto readOn = [&](tesseract::TessBaseAPI &api, Band &band) {
        if (enlarge)
            band.image = tesseractImage::enlargeTwice(band.image, settings_.upscale);
        band.readings = readBand(api, band.image, scale, settings_);
    };
    if (bands.size() == 2) {
        bool secondRead = false;
        std::thread second([&] {
            if (const auto api = loadModel(settings_.dataPath)) {
                readOn(*api, bands[1]);
                api->End();
                secondRead = true;
            }
        });
        readOn(*api_, bands[0]);
        second.join();
        if (!secondRead)
            readOn(*api_, bands[1]);
    } else {
        readOn(*api_, bands[0]);
    }

    std::vector<RecognizedFragment> fragments;
    const double width = image.width * factor;
    const double height = image.height * factor;
    for (Band &band : bands) {
        if (!band.readings)
            return std::nullopt;
        const int top = band.top * factor;
        for (Reading &reading : *band.readings) {
            const Box &box = reading.box;
            fragments.push_back({box.left / width, 1.0 - (top + box.bottom) / height,
                                 (box.right - box.left) / width, (box.bottom - box.top) / height,
                                 std::move(reading.text)});
        }
    }
    return fragments;
}

} // namespace glyphmill
