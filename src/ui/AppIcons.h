// The application's own icons: the full-colour application icon and the tray glyph, both drawn
// from the SVGs compiled into the program.
#pragma once

#include <QIcon>

namespace glyphmill::appIcons {

// Also the window icon of the dialogs that show the application icon.
QIcon applicationIcon();
// Reads on light and dark panels alike.
QIcon trayIcon();

} // namespace glyphmill::appIcons
