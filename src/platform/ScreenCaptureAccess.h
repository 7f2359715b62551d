// Whether the program may read the pixels of the screen. X11 lets every client grab the screen;
// sessions that guard it (Wayland) answer through their own consent.
#pragma once

namespace glyphmill {

class ScreenCaptureAccess {
public:
    virtual ~ScreenCaptureAccess() = default;
    // Answers without asking the user.
    virtual bool hasAccess() = 0;
    // Asks the system for access where it can ask; answers whether access is granted now.
    virtual bool requestAccess() = 0;
};

class InMemoryScreenCaptureAccess final : public ScreenCaptureAccess {
public:
    bool hasAccess() override {
        ++preflights;
        return granted;
    }
    bool requestAccess() override {
        ++requests;
        if (grantOnRequest)
            granted = true;
        return granted;
    }

    bool granted = true;
    bool grantOnRequest = false;
    int preflights = 0;
    int requests = 0;
};

} // namespace glyphmill
