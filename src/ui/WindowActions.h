// What the windows start elsewhere in the application: the other windows, the Services help and
// the desktop's settings pages. The application installs them once at start; tests install their
// own. An action that was never installed does nothing.
#pragma once

#include <functional>

namespace glyphmill {

class ProtectedTermsStore;

struct WindowActions {
    std::function<void(ProtectedTermsStore &)> showSettingsWindow;
    // With the store the caller has at hand, or none.
    std::function<void(ProtectedTermsStore *)> showWelcomeGuide;
    std::function<void()> showServicesHelp;
    std::function<void()> openKeyboardShortcutsSettings;
    std::function<void()> openScreenRecordingSettings;
};

void installWindowActions(WindowActions actions);
const WindowActions &windowActions();

} // namespace glyphmill
