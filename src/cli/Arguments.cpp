#include "cli/Arguments.h"

#include "cli/AppCommandLine.h"
#include "cli/ArgumentScanner.h"
#include "cli/Failure.h"
#include "cli/LinesArguments.h"
#include "cli/ProtectionSwitches.h"
#include "common/Utf8.h"

#include <array>
#include <string_view>

namespace glyphmill::cli {
namespace {

struct TermsActionName {
    std::string_view name;
    TermsAction action;
    HelpTopic help;
};

constexpr std::array<TermsActionName, 4> termsActionNames = {{
    {"list", TermsAction::list, HelpTopic::termsList},
    {"add", TermsAction::add, HelpTopic::termsAdd},
    {"remove", TermsAction::remove, HelpTopic::termsRemove},
    {"restore-defaults", TermsAction::restoreDefaults, HelpTopic::termsRestoreDefaults},
}};

std::optional<bool> booleanNamed(std::string_view text) {
    if (text == "true")
        return true;
    if (text == "false")
        return false;
    return std::nullopt;
}

void takeOptionOverride(Scanner &scanner, std::string_view setting, TransformRequest &request) {
    auto equals = setting.find('=');
    if (equals == std::string_view::npos) {
        scanner.noteMistake("--option needs NAME=true or NAME=false, not " + quoted(setting));
        return;
    }
    std::string_view name = setting.substr(0, equals);
    std::string_view valueText = setting.substr(equals + 1);
    const ProtectionSwitch *found = nullptr;
    for (const auto &candidate : protectionSwitches)
        if (candidate.name == name)
            found = &candidate;
    if (!found) {
        scanner.noteMistake("unknown switch " + quoted(name) +
                            " for --option (see glyphmill transform --help)");
        return;
    }
    auto value = booleanNamed(valueText);
    if (!value) {
        scanner.noteMistake("--option " + std::string(name) + " must be true or false, not " +
                            quoted(valueText));
        return;
    }
    request.optionOverrides.push_back({found->field, *value});
}

void chooseTerms(Scanner &scanner, TransformRequest &request, TermsSource source, bool &chosen) {
    if (chosen && request.termsSource != source)
        scanner.noteMistake("--term, --no-terms and --default-terms cannot be combined");
    request.termsSource = source;
    chosen = true;
}

Invocation parseTransform(std::span<const char *const> arguments) {
    Scanner scanner(arguments);
    TransformRequest request;
    std::vector<std::string_view> positionals;
    bool termsChosen = false;
    while (auto token = scanner.next()) {
        if (!token->isOption) {
            positionals.push_back(token->text);
            continue;
        }
        if (scanner.takeCommonOption(*token))
            continue;
        const std::string_view name = token->text;
        const bool takesValue = name == "--text" || name == "--term" || name == "--option";
        const bool isFlag = name == "--no-terms" || name == "--default-terms" || name == "--defaults";
        if (!takesValue && !isFlag) {
            scanner.noteUnknownOption(*token);
            continue;
        }
        if (isFlag && token->inlineValue)
            scanner.noteMistake("option " + std::string(name) + " takes no value");
        if (name == "--no-terms") {
            chooseTerms(scanner, request, TermsSource::none, termsChosen);
        } else if (name == "--default-terms") {
            chooseTerms(scanner, request, TermsSource::builtIn, termsChosen);
        } else if (name == "--defaults") {
            request.ignorePreferences = true;
        } else if (auto value = scanner.value(*token)) {
            if (name == "--text") {
                if (request.text)
                    scanner.noteMistake("--text given more than once");
                request.text = std::string(*value);
            } else if (name == "--term") {
                chooseTerms(scanner, request, TermsSource::given, termsChosen);
                request.givenTerms.emplace_back(*value);
            } else {
                takeOptionOverride(scanner, *value, request);
            }
        }
    }
    if (scanner.wantsHelp)
        return ShowHelp{HelpTopic::transform};
    if (scanner.wantsVersion)
        return ShowVersion{};
    if (scanner.mistake)
        failUsage(*scanner.mistake);

    if (positionals.empty())
        failUsage("transform needs a KIND: smart-case, title-case, uppercase, lowercase or capitalize-words");
    auto kind = appCommands::transformKindNamed(positionals[0]);
    if (!kind)
        failUsage("unknown kind " + quoted(positionals[0]) +
                  " (expected smart-case, title-case, uppercase, lowercase or capitalize-words)");
    request.kind = *kind;
    if (positionals.size() > 2)
        failUsage("unexpected argument " + quoted(positionals[2]) + " (transform takes one FILE at most)");
    if (positionals.size() == 2) {
        if (request.text)
            failUsage("give either --text or a FILE, not both");
        if (positionals[1] != "-")
            request.file = std::string(positionals[1]);
    }
    if (request.ignorePreferences && !termsChosen)
        request.termsSource = TermsSource::builtIn;
    return request;
}

Invocation parseTerms(std::span<const char *const> arguments) {
    Scanner scanner(arguments);
    std::vector<std::string_view> positionals;
    while (auto token = scanner.next()) {
        if (!token->isOption)
            positionals.push_back(token->text);
        else if (!scanner.takeCommonOption(*token))
            scanner.noteUnknownOption(*token);
    }
    const TermsActionName *action = nullptr;
    if (!positionals.empty())
        for (const auto &entry : termsActionNames)
            if (entry.name == positionals[0])
                action = &entry;
    if (scanner.wantsHelp)
        return ShowHelp{action ? action->help : HelpTopic::terms};
    if (scanner.wantsVersion)
        return ShowVersion{};
    if (scanner.mistake)
        failUsage(*scanner.mistake);

    if (positionals.empty())
        failUsage("terms needs an action: list, add, remove or restore-defaults");
    if (!action)
        failUsage("unknown terms action " + quoted(positionals[0]) +
                  " (expected list, add, remove or restore-defaults)");
    const bool takesText = action->action == TermsAction::add || action->action == TermsAction::remove;
    const std::size_t expected = takesText ? 2 : 1;
    if (positionals.size() < expected)
        failUsage("terms " + std::string(action->name) + " needs the TEXT of a term");
    if (positionals.size() > expected)
        failUsage("unexpected argument " + quoted(positionals[expected]) + " after terms " +
                  std::string(action->name));
    TermsRequest request{action->action, {}};
    if (takesText)
        request.text = std::string(positionals[1]);
    return request;
}

Invocation parseApplicationCommand(std::span<const char *const> arguments) {
    appCommands::Parsed parsed = appCommands::parse(arguments);
    if (parsed.wantsHelp) {
        std::string_view command = arguments.empty() ? "" : arguments[0];
        if (command == "clipboard")
            return ShowHelp{HelpTopic::clipboard};
        if (command == "service")
            return ShowHelp{HelpTopic::service};
        return ShowHelp{HelpTopic::application};
    }
    if (parsed.wantsVersion)
        return ShowVersion{};
    if (!parsed.request)
        failUsage(parsed.mistake);
    return LaunchApplication{};
}

} // namespace

Invocation parseArguments(std::span<const char *const> arguments) {
    if (arguments.empty() || appCommands::isApplicationCommand(arguments[0]))
        return parseApplicationCommand(arguments);
    std::string_view command = arguments[0];
    auto rest = arguments.subspan(1);
    if (command == "transform")
        return parseTransform(rest);
    if (command == "terms")
        return parseTerms(rest);
    if (command == "lines")
        return parseLines(rest);
    if (command == "html-to-text")
        return parseTextCommand(TextCommand::htmlToText, rest);
    if (command == "rtf-to-text")
        return parseTextCommand(TextCommand::rtfToText, rest);
    if (command == "stats")
        return parseTextCommand(TextCommand::stats, rest);
    if (command == "--help" || command == "-h")
        return ShowHelp{HelpTopic::overview};
    if (command == "--version")
        return ShowVersion{};
    if (command.starts_with('-'))
        failUsage("unknown option " + quoted(command) + " (see glyphmill --help)");
    failUsage("unknown command " + quoted(command) + " (see glyphmill --help)");
}

} // namespace glyphmill::cli
