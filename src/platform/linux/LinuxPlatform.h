// Hands the Linux implementations of the platform services to the shared controllers.
#pragma once

namespace glyphmill {

// Call once at start, on the main thread, after the QApplication exists (the clipboard, the dialogs
// and the hot keys need it) and before the first shared controller is made. The services live
// until the process ends; calling again installs the same ones.
void installLinuxPlatformServices();

} // namespace glyphmill
