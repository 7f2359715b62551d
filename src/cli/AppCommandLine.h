// The commands that the desktop application carries out: `glyphmill` alone starts it, the others
// hand a request to the running instance (starting it first when that makes sense). Both the
// command line, which checks them before handing over, and the application read them here, so
// this file stays free of Qt.
#pragma once

#include "clipboard/text/LineToolCatalogue.h"
#include "transform/TextTransformer.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace glyphmill::appCommands {

enum class Command {
    launch, // no command: start the application, or wake the running one
    palette,
    clipboard,
    pastePlain,
    restore,
    quit,
    settings,
    capture,
    service,
};

// What `glyphmill clipboard KIND` does to the clipboard: the menu's clipboard commands.
enum class ClipboardEdit {
    transform,
    clearFormatting,
    lineTool,
};

struct ClipboardAction {
    ClipboardEdit edit = ClipboardEdit::transform;
    TextTransformKind kind = TextTransformKind::smartCase;    // for ClipboardEdit::transform
    lineTools::LineTool lineTool = lineTools::LineTool::sort; // for ClipboardEdit::lineTool

    bool operator==(const ClipboardAction &) const = default;
};

struct Request {
    Command command = Command::launch;
    ClipboardAction clipboardAction;                              // for Command::clipboard
    TextTransformKind serviceKind = TextTransformKind::smartCase; // for Command::service
};

struct Parsed {
    std::optional<Request> request; // none when help was asked for or there was a mistake
    bool wantsHelp = false;
    bool wantsVersion = false;
    std::string mistake; // one line, without the "glyphmill: " prefix
};

// True for the names of the commands above (the empty list of arguments is `launch`).
bool isApplicationCommand(std::string_view name);
// The arguments after the program name.
Parsed parse(std::span<const char *const> arguments);

std::string_view commandName(Command command);
std::optional<ClipboardAction> clipboardActionNamed(std::string_view name);
std::string_view clipboardActionName(ClipboardAction action);
std::vector<std::string_view> clipboardActionNames();
// smart-case, title-case, uppercase, lowercase, capitalize-words, or a kind's title.
std::optional<TextTransformKind> transformKindNamed(std::string_view name);

} // namespace glyphmill::appCommands
