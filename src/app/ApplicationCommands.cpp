#include "app/ApplicationCommands.h"

#include "clipboard/ClipboardHistory.h"
#include "clipboard/ClipboardManager.h"
#include "clipboard/LineToolCommands.h"

namespace glyphmill {
namespace {

using appCommands::ClipboardAction;
using appCommands::Command;

std::optional<std::string> runPiece(const std::function<bool()> &piece, std::string_view what) {
    if (piece && piece())
        return std::nullopt;
    return std::string(what) + " is not available in this version of Glyphmill";
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

std::optional<std::string> ApplicationCommands::run(const appCommands::Request &request) {
    switch (request.command) {
    case Command::launch:
        if (handlers_.wake)
            handlers_.wake();
        return std::nullopt;
    case Command::palette:
        return runPiece(handlers_.showPalette, "the floating palette");
    case Command::settings:
        return runPiece(handlers_.showSettings, "the settings window");
    case Command::capture:
        return runPiece(handlers_.startCapture, "screen capture");
    case Command::clipboard:
        runClipboardAction(request.clipboardAction);
        return std::nullopt;
    case Command::pastePlain:
        // Silent like the hot key: the user is in another application, not looking at ours.
        manager_.pasteAsPlainText(false);
        return std::nullopt;
    case Command::restore:
        if (history_.canRestore())
            history_.restore();
        return std::nullopt;
    case Command::quit:
        if (handlers_.quit)
            handlers_.quit();
        return std::nullopt;
    case Command::service:
        break;
    }
    return "glyphmill service is answered by the Services interface";
}

void ApplicationCommands::runClipboardAction(ClipboardAction action) {
    if (auto kind = transformKindOf(action)) {
        manager_.transformClipboard(*kind, &termsStore_, false);
        return;
    }
    switch (action) {
    case ClipboardAction::clearFormatting:
        manager_.clearClipboardFormatting();
        break;
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
}

} // namespace glyphmill
