// Carries out the requests that reach the running application from the command line, whether
// given at its own start or handed over later by another `glyphmill` over D-Bus.
#pragma once

#include "cli/AppCommandLine.h"

#include <functional>
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

// What became of a request, for the one who sent it: done (for the clipboard commands: the
// clipboard changed), nothing to do (no text, nothing to restore, a question cancelled), the
// clipboard could not be written, or the piece is not available.
struct RequestOutcome {
    enum class Status { done, nothingToDo, notWritten, notAvailable };
    Status status = Status::done;
    std::string message; // one line, for every status but done

    static RequestOutcome done() { return {}; }
    static RequestOutcome nothingToDo(std::string why) { return {Status::nothingToDo, std::move(why)}; }
    static RequestOutcome notWritten() { return {Status::notWritten, "the clipboard could not be written"}; }
    bool operator==(const RequestOutcome &) const = default;
};

class ApplicationCommands {
public:
    ApplicationCommands(ClipboardManager &manager, LineToolCommands &lineTools, ClipboardHistory &history,
                        ProtectedTermsStore &termsStore, ShellHandlers handlers);

    // `service` requests are answered by the Services interface, not here.
    RequestOutcome run(const appCommands::Request &request);
    RequestOutcome runClipboardAction(appCommands::ClipboardAction action);

private:
    // The line tools report through the manager's writes; without one, says why nothing changed.
    RequestOutcome runLineTool(lineTools::LineTool tool);

    ClipboardManager &manager_;
    LineToolCommands &lineTools_;
    ClipboardHistory &history_;
    ProtectedTermsStore &termsStore_;
    ShellHandlers handlers_;
};

} // namespace glyphmill
