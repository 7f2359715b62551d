#include "app/ApplicationCommands.h"

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/LineToolCommands.h"

namespace glyphmill {
namespace {

using appCommands::ClipboardAction;
using appCommands::Command;

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

std::optional<TextTransformKind> transformKindOf(ClipboardAction action) {
    switch (action) {
    case ClipboardAction::smartCase:
        return TextTransformKind::smartCase;
    case ClipboardAction::titleCase:
        return TextTransformKind::titleCase;
    case ClipboardAction::uppercase:
        return TextTransformKind::uppercase;
    case ClipboardAction::lowercase:
        return TextTransformKind::lowercase;
    case ClipboardAction::capitalizeWords:
        return TextTransformKind::capitalizeWords;
    default:
        return std::nullopt;
    }
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
    if (auto kind = transformKindOf(action))
        return outcomeOf(manager_.transformClipboard(*kind, &termsStore_, false));
    if (action == ClipboardAction::clearFormatting)
        return outcomeOf(manager_.clearClipboardFormatting());
    return runLineTool(action);
}

RequestOutcome ApplicationCommands::runLineTool(ClipboardAction action) {
    std::optional<bool> written; // the last write of the tool, if it wrote
    const QMetaObject::Connection watch = QObject::connect(
        &manager_, &ClipboardManager::clipboardReplaced, [&written](bool succeeded) { written = succeeded; });
    switch (action) {
    case ClipboardAction::htmlToText:
        lineTools_.htmlToPlainText();
        break;
    case ClipboardAction::sortLines:
        lineTools_.sortLines();
        break;
    case ClipboardAction::removeDuplicates:
        lineTools_.removeDuplicateLines();
        break;
    case ClipboardAction::removeEmpty:
        lineTools_.removeEmptyLines();
        break;
    case ClipboardAction::bullet:
        lineTools_.bulletLines();
        break;
    case ClipboardAction::fixWhitespace:
        lineTools_.fixWhitespace();
        break;
    case ClipboardAction::number:
        lineTools_.numberLines();
        break;
    case ClipboardAction::join:
        lineTools_.joinLines();
        break;
    case ClipboardAction::split:
        lineTools_.splitLines();
        break;
    case ClipboardAction::matching:
        lineTools_.linesMatchingRegex();
        break;
    case ClipboardAction::containing:
        lineTools_.linesContaining();
        break;
    case ClipboardAction::findReplace:
        lineTools_.findAndReplaceClipboard();
        break;
    default:
        break;
    }
    QObject::disconnect(watch);
    if (written)
        return *written ? RequestOutcome::done() : RequestOutcome::notWritten();
    if (action == ClipboardAction::htmlToText && !manager_.readHTMLAsText())
        return RequestOutcome::nothingToDo("the clipboard holds no HTML");
    if (!manager_.readText(true))
        return RequestOutcome::nothingToDo(std::string(noTextMessage));
    // A question was cancelled or its answer refused.
    return RequestOutcome::nothingToDo("the clipboard was left unchanged");
}

} // namespace glyphmill
