// Counts the paste keystrokes instead of sending them, for tests.
#pragma once

#include "platform/KeystrokeSender.h"

namespace glyphmill {

class RecordingKeystrokeSender final : public KeystrokeSender {
public:
    void postPasteKeystroke() override { ++pasteKeystrokes; }
    int pasteKeystrokes = 0;
};

} // namespace glyphmill
