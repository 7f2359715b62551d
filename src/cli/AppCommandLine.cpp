#include "cli/AppCommandLine.h"

#include "cli/Failure.h"
#include "common/Utf8.h"

#include <array>

namespace glyphmill::appCommands {
namespace {

struct CommandEntry {
    std::string_view name;
    Command command;
};

constexpr std::array<CommandEntry, 8> commandNames = {{
    {"palette", Command::palette},
    {"clipboard", Command::clipboard},
    {"paste-plain", Command::pastePlain},
    {"restore", Command::restore},
    {"quit", Command::quit},
    {"settings", Command::settings},
    {"capture", Command::capture},
    {"service", Command::service},
}};

struct KindEntry {
    std::string_view name;
    TextTransformKind kind;
};

// Also the first clipboard commands; clear-formatting and the line tools come after them.
constexpr std::array<KindEntry, 5> kindNames = {{
    {"smart-case", TextTransformKind::smartCase},
    {"title-case", TextTransformKind::titleCase},
    {"uppercase", TextTransformKind::uppercase},
    {"lowercase", TextTransformKind::lowercase},
    {"capitalize-words", TextTransformKind::capitalizeWords},
}};

const CommandEntry *commandEntry(std::string_view name) {
    for (const auto &entry : commandNames)
        if (entry.name == name)
            return &entry;
    return nullptr;
}

constexpr std::string_view clearFormattingName = "clear-formatting";

} // namespace

bool isApplicationCommand(std::string_view name) {
    return commandEntry(name) != nullptr;
}

std::string_view commandName(Command command) {
    for (const auto &entry : commandNames)
        if (entry.command == command)
            return entry.name;
    return {};
}

std::optional<ClipboardAction> clipboardActionNamed(std::string_view name) {
    for (const auto &entry : kindNames)
        if (entry.name == name)
            return ClipboardAction{.edit = ClipboardEdit::transform, .kind = entry.kind};
    if (name == clearFormattingName)
        return ClipboardAction{.edit = ClipboardEdit::clearFormatting};
    if (auto tool = lineTools::lineToolWithClipboardName(name))
        return ClipboardAction{.edit = ClipboardEdit::lineTool, .lineTool = *tool};
    return std::nullopt;
}

std::string_view clipboardActionName(ClipboardAction action) {
    switch (action.edit) {
    case ClipboardEdit::transform:
        for (const auto &entry : kindNames)
            if (entry.kind == action.kind)
                return entry.name;
        break;
    case ClipboardEdit::clearFormatting:
        return clearFormattingName;
    case ClipboardEdit::lineTool:
        return lineTools::lineToolEntry(action.lineTool).clipboardName;
    }
    return {};
}

std::vector<std::string_view> clipboardActionNames() {
    std::vector<std::string_view> names;
    for (const auto &entry : kindNames)
        names.push_back(entry.name);
    names.push_back(clearFormattingName);
    for (const auto &entry : lineTools::lineToolCatalogue)
        names.push_back(entry.clipboardName);
    return names;
}

std::optional<TextTransformKind> transformKindNamed(std::string_view name) {
    for (const auto &entry : kindNames)
        if (entry.name == name)
            return entry.kind;
    return textTransformKindFromTitle(utf8::decodeLossy(name));
}

Parsed parse(std::span<const char *const> arguments) {
    Parsed parsed;
    std::vector<std::string_view> positionals;
    bool optionsEnded = false;
    for (std::string_view argument : arguments) {
        if (optionsEnded || argument == "-" || !argument.starts_with('-')) {
            positionals.push_back(argument);
        } else if (argument == "--") {
            optionsEnded = true;
        } else if (argument == "--help" || argument == "-h") {
            parsed.wantsHelp = true;
        } else if (argument == "--version") {
            parsed.wantsVersion = true;
        } else if (parsed.mistake.empty()) {
            parsed.mistake = "unknown option " + cli::quoted(argument) + " (see glyphmill --help)";
        }
    }
    if (parsed.wantsHelp || parsed.wantsVersion || !parsed.mistake.empty())
        return parsed;

    Request request;
    if (positionals.empty()) {
        parsed.request = request;
        return parsed;
    }
    const CommandEntry *entry = commandEntry(positionals[0]);
    if (!entry) {
        parsed.mistake = "unknown command " + cli::quoted(positionals[0]) + " (see glyphmill --help)";
        return parsed;
    }
    request.command = entry->command;
    const bool takesKind = entry->command == Command::clipboard || entry->command == Command::service;
    const std::size_t expected = takesKind ? 2 : 1;
    if (positionals.size() < expected) {
        parsed.mistake = std::string(entry->name) + " needs a KIND (see glyphmill " +
                         std::string(entry->name) + " --help)";
        return parsed;
    }
    if (positionals.size() > expected) {
        parsed.mistake = "unexpected argument " + cli::quoted(positionals[expected]) + " after " +
                         std::string(entry->name);
        return parsed;
    }
    if (entry->command == Command::clipboard) {
        auto action = clipboardActionNamed(positionals[1]);
        if (!action) {
            parsed.mistake =
                "unknown clipboard kind " + cli::quoted(positionals[1]) + " (see glyphmill clipboard --help)";
            return parsed;
        }
        request.clipboardAction = *action;
    } else if (entry->command == Command::service) {
        auto kind = transformKindNamed(positionals[1]);
        if (!kind) {
            parsed.mistake = "unknown kind " + cli::quoted(positionals[1]) +
                             " (expected smart-case, title-case, uppercase, lowercase or capitalize-words)";
            return parsed;
        }
        request.serviceKind = *kind;
    }
    parsed.request = request;
    return parsed;
}

} // namespace glyphmill::appCommands
