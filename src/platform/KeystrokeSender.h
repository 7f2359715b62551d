// Synthetic keystrokes sent to whichever application has the keyboard focus.
#pragma once

namespace glyphmill {

class KeystrokeSender {
public:
    virtual ~KeystrokeSender() = default;

    // The platform's paste chord, pressed and released once. Skipped when it cannot be sent.
    virtual void postPasteKeystroke() = 0;
};

} // namespace glyphmill
