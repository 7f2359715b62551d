// Text recognition on this machine with Tesseract's LSTM engine and its English model.
#pragma once

#include "platform/TextRecognizer.h"

#include <memory>
#include <mutex>
#include <string>

namespace tesseract {
class TessBaseAPI;
}

namespace glyphmill {

// How an image is prepared for Tesseract and what is kept of its answer. The defaults are the
// settings that read the accuracy corpus under bench/ocr best; the benchmark varies them.
struct TesseractSettings {
    enum class Level { words, lines };
    enum class Upscale { none, nearest, bilinear, bicubic };

    // Tesseract's page segmentation mode (tesseract::PageSegMode). Sparse text (11) finds every
    // piece of text without guessing columns, which would read a form's labels apart from its values.
    int pageSegMode = 11;
    // Words let the line assembly put a label and its value on one line even where Tesseract sees
    // two columns. With words, underscores Tesseract dropped between them are put back and icons
    // read as a letter are dropped.
    Level level = Level::words;
    // Applied to images of 1 device pixel per point, which are enlarged 2×.
    Upscale upscale = Upscale::bicubic;
    // Images of 1 device pixel per point are enlarged only when their letters are smaller than
    // this (in pixels, about the height of an x); 0 enlarges them always.
    int upscaleBelowLetterHeight = 11;
    // Images of at least this many pixels (after enlarging) are read in two bands at once on two
    // threads, cut at a blank run of rows in their middle half; the second band loads a model of
    // its own (about 6 MB) for the time of the request. 0 never.
    long parallelFromPixels = 1'000'000;
    // Pixels per inch Tesseract is told the image has, per device pixel per point after enlarging.
    int resolutionPerScale = 70;
    // All text is made dark on white: a dark ground and filled panels darker than the ground (a
    // highlighted menu item, a selected row) are inverted, and the contrast is stretched.
    bool invertDark = true;
    // Words Tesseract scores below this (0 to 100) are dropped when they hold no letter or digit,
    // or are a single character: such readings are borders, toggles and scroll bars.
    float noiseConfidence = 40.0f;
    // Where the traineddata is; empty for Tesseract's own default, then the Debian location.
    std::string dataPath;
};

class TesseractTextRecognizer final : public TextRecognizer {
public:
    explicit TesseractTextRecognizer(TesseractSettings settings = {});
    ~TesseractTextRecognizer() override;

    void prepare() override;
    std::optional<std::vector<RecognizedFragment>> recognize(const ScreenImage &image) override;

private:
    bool loadLocked();

    const TesseractSettings settings_;
    std::mutex mutex_;
    std::unique_ptr<tesseract::TessBaseAPI> api_;
    bool loadFailed_ = false;
};

} // namespace glyphmill
