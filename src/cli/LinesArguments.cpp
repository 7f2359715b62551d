#include "cli/LinesArguments.h"

#include "cli/ArgumentScanner.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace glyphmill::cli {
namespace {

using namespace lineTools;

template <typename Value> struct Choice {
    std::string_view name;
    Value value;
};

constexpr std::array<Choice<NumberingStyle>, 3> numberingStyles = {{
    {"period", NumberingStyle::period},
    {"zero-padded", NumberingStyle::zeroPadded},
    {"parenthesis", NumberingStyle::parenthesis},
}};

constexpr std::array<Choice<JoinSeparator>, 5> joinSeparators = {{
    {"space", JoinSeparator::space},
    {"comma", JoinSeparator::comma},
    {"comma-space", JoinSeparator::commaSpace},
    {"semicolon", JoinSeparator::semicolon},
    {"pipe", JoinSeparator::pipe},
}};

constexpr std::array<Choice<SplitDelimiter>, 3> splitDelimiters = {{
    {"comma", SplitDelimiter::comma},
    {"tab", SplitDelimiter::tab},
    {"semicolon", SplitDelimiter::semicolon},
}};

constexpr std::array<Choice<RegexPreset>, 5> regexPresets = {{
    {"email", RegexPreset::email},
    {"url", RegexPreset::url},
    {"contains-at", RegexPreset::containsAt},
    {"contains-digit", RegexPreset::containsDigit},
    {"non-empty", RegexPreset::nonEmpty},
}};

template <typename Value, std::size_t count>
std::optional<Value> chosen(const std::array<Choice<Value>, count> &choices, std::string_view name) {
    for (const auto &choice : choices)
        if (choice.name == name)
            return choice.value;
    return std::nullopt;
}

template <typename Value, std::size_t count>
std::string choiceList(const std::array<Choice<Value>, count> &choices) {
    std::string list;
    for (std::size_t index = 0; index < count; ++index) {
        if (index > 0)
            list += index + 1 == count ? " or " : ", ";
        list += choices[index].name;
    }
    return list;
}

template <typename Value, std::size_t count>
void takeChoice(Scanner &scanner, std::string_view option, std::string_view value,
                const std::array<Choice<Value>, count> &choices, Value &target) {
    if (auto picked = chosen(choices, value))
        target = *picked;
    else
        scanner.noteMistake(std::string(option) + " must be " + choiceList(choices) + ", not " +
                            quoted(value));
}

// The options only some tools accept, by tool.
bool acceptsOption(const LineToolEntry &tool, std::string_view name) {
    return name == "--text" || std::ranges::find(tool.options, name) != tool.options.end();
}

// The optional FILE after the operands; "-" means standard input.
void takeFile(std::vector<std::string_view> &positionals, std::size_t first, const std::string &command,
              InputSource &input) {
    if (positionals.size() > first + 1)
        failUsage("unexpected argument " + quoted(positionals[first + 1]) + " (" + command +
                  " takes one FILE at most)");
    if (positionals.size() == first + 1) {
        if (input.text)
            failUsage("give either --text or a FILE, not both");
        if (positionals[first] != "-")
            input.file = std::string(positionals[first]);
    }
}

void takeText(Scanner &scanner, std::string_view value, InputSource &input) {
    if (input.text)
        scanner.noteMistake("--text given more than once");
    input.text = std::string(value);
}

} // namespace

Invocation parseLines(std::span<const char *const> arguments) {
    Scanner scanner(arguments);
    std::vector<std::string_view> positionals;
    // The tool decides which options exist, so the first positional is found before options count.
    const LineToolEntry *tool = nullptr;
    LinesRequest request;
    bool patternGiven = false, presetGiven = false;
    while (auto token = scanner.next()) {
        if (!token->isOption) {
            if (positionals.empty())
                tool = linesToolNamed(token->text);
            positionals.push_back(token->text);
            continue;
        }
        if (scanner.takeCommonOption(*token))
            continue;
        const std::string_view name = token->text;
        if (!tool || !acceptsOption(*tool, name)) {
            scanner.noteUnknownOption(*token);
            continue;
        }
        if (name == "--match-case") {
            if (token->inlineValue)
                scanner.noteMistake("option --match-case takes no value");
            request.matchCase = true;
            continue;
        }
        auto value = scanner.value(*token);
        if (!value)
            continue;
        if (name == "--text") {
            takeText(scanner, *value, request.input);
        } else if (name == "--style") {
            takeChoice(scanner, name, *value, numberingStyles, request.numberingStyle);
        } else if (name == "--separator") {
            takeChoice(scanner, name, *value, joinSeparators, request.joinSeparator);
        } else if (name == "--delimiter") {
            auto named = chosen(splitDelimiters, *value);
            request.splitDelimiter = named.value_or(SplitDelimiter::custom);
            request.customText = named ? std::string() : std::string(*value);
        } else if (name == "--preset") {
            presetGiven = true;
            takeChoice(scanner, name, *value, regexPresets, request.regexPreset);
        } else {
            patternGiven = true;
            request.customText = std::string(*value);
        }
    }
    if (scanner.wantsHelp) {
        if (tool)
            return ShowHelp{HelpTopic::linesTool, tool->tool};
        return ShowHelp{HelpTopic::lines};
    }
    if (scanner.wantsVersion)
        return ShowVersion{};
    if (positionals.empty())
        failUsage("lines needs a TOOL (see glyphmill lines --help)");
    if (!tool)
        failUsage("unknown tool " + quoted(positionals[0]) + " (see glyphmill lines --help)");
    if (scanner.mistake)
        failUsage(*scanner.mistake);

    request.tool = tool->tool;
    const std::string command = "lines " + std::string(tool->linesName);
    if (request.tool == LinesTool::matching) {
        if (patternGiven == presetGiven)
            failUsage("lines matching needs either --preset or --pattern");
        if (patternGiven)
            request.regexPreset = RegexPreset::custom;
    }
    if (positionals.size() < 1 + tool->operands)
        failUsage(command +
                  (tool->operands == 1 ? " needs the TEXT to look for" : " needs FIND and REPLACEMENT"));
    if (request.tool == LinesTool::containing)
        request.customText = std::string(positionals[1]);
    if (request.tool == LinesTool::replace) {
        request.customText = std::string(positionals[1]);
        request.replacement = std::string(positionals[2]);
    }
    takeFile(positionals, 1 + tool->operands, command, request.input);
    return request;
}

Invocation parseTextCommand(TextCommand command, std::span<const char *const> arguments) {
    Scanner scanner(arguments);
    std::vector<std::string_view> positionals;
    TextCommandRequest request{command, {}};
    while (auto token = scanner.next()) {
        if (!token->isOption)
            positionals.push_back(token->text);
        else if (scanner.takeCommonOption(*token))
            continue;
        else if (token->text != "--text")
            scanner.noteUnknownOption(*token);
        else if (auto value = scanner.value(*token))
            takeText(scanner, *value, request.input);
    }
    if (scanner.wantsHelp) {
        switch (command) {
        case TextCommand::htmlToText:
            return ShowHelp{HelpTopic::htmlToText};
        case TextCommand::rtfToText:
            return ShowHelp{HelpTopic::rtfToText};
        case TextCommand::stats:
            return ShowHelp{HelpTopic::stats};
        }
    }
    if (scanner.wantsVersion)
        return ShowVersion{};
    if (scanner.mistake)
        failUsage(*scanner.mistake);
    const char *name = command == TextCommand::htmlToText  ? "html-to-text"
                       : command == TextCommand::rtfToText ? "rtf-to-text"
                                                           : "stats";
    takeFile(positionals, 0, name, request.input);
    return request;
}

} // namespace glyphmill::cli
