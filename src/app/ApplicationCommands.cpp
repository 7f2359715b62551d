#include "app/ApplicationCommands.h"

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/LineToolCommands.h"

namespace glyphmill {
namespace {

using appCommands::ClipboardAction;
using appCommands::ClipboardEdit;
using appCommands::Command;
using lineTools::LineTool;

constexpr std::string_view noTextMessage = "the clipboard holds no text";

RequestOutcome runPiece(const std::function<bool()> &piece, std::string_view what) {
    if (piece && piece())
        return RequestOutcome::done();
    return {RequestOutcome::Status::notAvailable,
            std::string(what) + " is not available in this version of Glyphmill"};
}

RequestOutcome outcomeOf(ClipboardManager::Outcome outcome) {
    switch (outcome) {
    case ClipboardManager::Outcome::changed:
        return RequestOutcome::done();
    case ClipboardManager::Outcome::noText:
        return RequestOutcome::nothingToDo(std::string(noTextMessage));
    case ClipboardManager::Outcome::notWritten:
        break;
    }
    return RequestOutcome::notWritten();
}

} // namespace

ApplicationCommands::ApplicationCommands(ClipboardManager &manager, LineToolCommands &lineTools,
                                         ClipboardHistory &history, ProtectedTermsStore &termsStore,
                                         ShellHandlers handlers)
    : manager_(manager), lineTools_(lineTools), history_(history), termsStore_(termsStore),
      handlers_(std::move(handlers)) {}

RequestOutcome ApplicationCommands::run(const appCommands::Request &request) {
    switch (request.command) {
    case Command::launch:
        if (handlers_.wake)
            handlers_.wake();
        return RequestOutcome::done();
    case Command::palette:
        return runPiece(handlers_.showPalette, "the floating palette");
    case Command::settings:
        return runPiece(handlers_.showSettings, "the settings window");
    case Command::capture:
        return runPiece(handlers_.startCapture, "screen capture");
    case Command::clipboard:
        return runClipboardAction(request.clipboardAction);
    case Command::pastePlain:
        // Silent like the hot key: the user is in another application, not looking at ours.
        return outcomeOf(manager_.pasteAsPlainText(false));
    case Command::restore:
        if (!history_.canRestore())
            return RequestOutcome::nothingToDo("nothing to restore");
        return history_.restore() ? RequestOutcome::done() : RequestOutcome::notWritten();
    case Command::quit:
        if (handlers_.quit)
            handlers_.quit();
        return RequestOutcome::done();
    case Command::service:
        break;
    }
    return {RequestOutcome::Status::notAvailable, "glyphmill service is answered by the Services interface"};
}

RequestOutcome ApplicationCommands::runClipboardAction(ClipboardAction action) {
    switch (action.edit) {
    case ClipboardEdit::transform:
        return outcomeOf(manager_.transformClipboard(action.kind, &termsStore_, false));
    case ClipboardEdit::clearFormatting:
        return outcomeOf(manager_.clearClipboardFormatting());
    case ClipboardEdit::lineTool:
        break;
    }
    return runLineTool(action.lineTool);
}

RequestOutcome ApplicationCommands::runLineTool(LineTool tool) {
    std::optional<bool> written; // the last write of the tool, if it wrote
    const QMetaObject::Connection watch = QObject::connect(
        &manager_, &ClipboardManager::clipboardReplaced, [&written](bool succeeded) { written = succeeded; });
    lineTools_.run(tool);
    QObject::disconnect(watch);
    if (written)
        return *written ? RequestOutcome::done() : RequestOutcome::notWritten();
    if (tool == LineTool::htmlToText && !manager_.readHTMLAsText())
        return RequestOutcome::nothingToDo("the clipboard holds no HTML");
    if (!manager_.readText(true))
        return RequestOutcome::nothingToDo(std::string(noTextMessage));
    // A question was cancelled or its answer refused.
    return RequestOutcome::nothingToDo("the clipboard was left unchanged");
}

} // namespace glyphmill
