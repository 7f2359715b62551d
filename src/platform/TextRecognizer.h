// Finds the text in an image on this machine.
#pragma once

#include "platform/ScreenImage.h"

#include <optional>
#include <string>
#include <vector>

namespace glyphmill {

// One piece of text the recognizer found, with its box in normalised image coordinates: 0 to 1
// across the image, origin at the lower left, y growing upward. The text is the recognizer's best
// reading, untrimmed.
struct RecognizedFragment {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    std::u16string text;

    friend bool operator==(const RecognizedFragment &, const RecognizedFragment &) = default;
};

class TextRecognizer {
public:
    virtual ~TextRecognizer() = default;
    // Loads what recognition needs ahead of the first request; later requests reuse it.
    virtual void prepare() {}
    // The fragments in the recognizer's own order; none when recognition failed. Called on a
    // worker thread, never twice at once.
    virtual std::optional<std::vector<RecognizedFragment>> recognize(const ScreenImage &image) = 0;
};

// Answers every request with the fragments it was given (or fails), for tests.
class ScriptedTextRecognizer final : public TextRecognizer {
public:
    std::optional<std::vector<RecognizedFragment>> recognize(const ScreenImage &image) override {
        ++requests;
        lastImageWidth = image.width;
        lastImageHeight = image.height;
        if (fails)
            return std::nullopt;
        return fragments;
    }

    std::vector<RecognizedFragment> fragments;
    bool fails = false;
    int requests = 0;
    int lastImageWidth = 0;
    int lastImageHeight = 0;
};

} // namespace glyphmill
