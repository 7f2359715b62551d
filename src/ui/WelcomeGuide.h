// The welcome guide: a four-page window shown at first start and from Settings. Finishing it
// marks onboarding as completed; closing it with the close box does not, so it comes back.
#pragma once

#include <QSize>

#include <optional>

class QWidget;

namespace glyphmill {

class AppSettings;
class Pasteboard;
class PreferenceStore;
class ProtectedTermsStore;

// Remembers the store; opens the guide unless onboarding was completed.
void showWelcomeGuideIfNeeded(ProtectedTermsStore &store);
// Remembers the store if one is given. An open guide is only brought forward, keeping its page
// and sample; otherwise a new window opens on the first page.
void showWelcomeGuide(ProtectedTermsStore *store);
// Marks onboarding as completed and closes the guide.
void finishWelcomeGuide();
// The open guide's window, or none.
QWidget *existingWelcomeWindow();

// The window's fixed size for the available area of the primary screen, or for no screen.
QSize welcomeGuideSize(std::optional<QSize> availableScreenSize);

// Where the guide finds what it uses. Unset fields fall back to the shared settings, the
// installed clipboard and preference store, and the desktop's reduced-motion setting (read when
// a window is built). Setting an environment also closes any open guide and forgets the
// remembered store, so tests start afresh.
struct WelcomeGuideEnvironment {
    AppSettings *settings = nullptr;
    Pasteboard *pasteboard = nullptr;
    PreferenceStore *preferences = nullptr;
    std::optional<bool> reduceMotion;
};
void setWelcomeGuideEnvironment(const WelcomeGuideEnvironment &environment);

} // namespace glyphmill
