// The parts of the application shell that live in their own controllers (the tray menu, the
// floating palette, the global hot keys, screen capture, the settings window). The delegate and
// the D-Bus commands reach them only through these functions, so each is plugged in at one place.
#pragma once

namespace glyphmill {

class ProtectedTermsStore;

namespace shellPieces {

// The tray icon with its menu, built for the first time.
void installMenuBar(ProtectedTermsStore &termsStore);
// When the application is woken again: the menu is rebuilt if it exists.
void rebuildMenu();
void giveTermsStoreToPalette(ProtectedTermsStore &termsStore);
// What the windows start elsewhere: each other, the Services help, the desktop's settings pages.
void installWindowActions();
// The welcome guide, unless the user has been through it.
void showWelcomeGuideIfNeeded(ProtectedTermsStore &termsStore);
// The hot-key callbacks (open the palette, start a capture, the clipboard actions) and the
// registration of the keys.
void connectHotKeyCallbacks();
void registerHotKeys();
void unregisterHotKeys();
// Closes the selection overlay if a capture is running.
void cancelScreenCapture();
void closeFloatingPalette();

// False when that piece is not part of this build, so the caller can say so.
bool showFloatingPalette();
bool showSettingsWindow();
bool startScreenCapture();

} // namespace shellPieces
} // namespace glyphmill
