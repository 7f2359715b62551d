// Carries out the requests that reach the running application from the command line, whether
// given at its own start or handed over later by another `glyphmill` over D-Bus.
#pragma once

#include "cli/AppCommandLine.h"

#include <functional>
#include <optional>
#include <string>

namespace glyphmill {

class ClipboardHistory;
class ClipboardManager;
class LineToolCommands;
class ProtectedTermsStore;

// The pieces held elsewhere. A missing or false-answering function means that piece is not
// available, and the request says so instead of doing nothing silently.
struct ShellHandlers {
    std::function<bool()> showPalette;
    std::function<bool()> showSettings;
    std::function<bool()> startCapture;
    std::function<void()> wake; // `glyphmill` again while running
    std::function<void()> quit;
};

class ApplicationCommands {
public:
    ApplicationCommands(ClipboardManager &manager, LineToolCommands &lineTools, ClipboardHistory &history,
                        ProtectedTermsStore &termsStore, ShellHandlers handlers);

    // None when the request was carried out; otherwise why it could not be, in one line.
    // `service` requests are answered by the Services interface, not here.
    std::optional<std::string> run(const appCommands::Request &request);
    void runClipboardAction(appCommands::ClipboardAction action);

private:
    ClipboardManager &manager_;
    LineToolCommands &lineTools_;
    ClipboardHistory &history_;
    ProtectedTermsStore &termsStore_;
    ShellHandlers handlers_;
};

} // namespace glyphmill
