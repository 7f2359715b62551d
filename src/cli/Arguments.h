// What the user asked for on the command line, checked but not yet acted on.
#pragma once

#include "clipboard/text/LineToolCatalogue.h"
#include "transform/TextTransformer.h"

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace glyphmill::cli {

enum class HelpTopic {
    overview,
    transform,
    terms,
    termsList,
    termsAdd,
    termsRemove,
    termsRestoreDefaults,
    lines,
    linesTool, // the help of ShowHelp::linesTool
    htmlToText,
    rtfToText,
    stats,
    application, // the commands the desktop application carries out
    clipboard,
    service,
};

using LinesTool = lineTools::LineTool;

struct ShowHelp {
    HelpTopic topic;
    LinesTool linesTool = LinesTool::sort; // for HelpTopic::linesTool
};

struct ShowVersion {};

enum class TermsSource {
    user,    // the user's saved list
    given,   // exactly the --term values
    none,    // --no-terms
    builtIn, // --default-terms, or --defaults without another choice
};

struct OptionOverride {
    bool TextProtectionOptions::*field;
    bool value;
};

struct TransformRequest {
    TextTransformKind kind = TextTransformKind::smartCase;
    std::optional<std::string> text; // --text, as given (UTF-8 not yet checked)
    std::optional<std::string> file; // none, with no text, means standard input
    TermsSource termsSource = TermsSource::user;
    std::vector<std::string> givenTerms;
    std::vector<OptionOverride> optionOverrides; // in the order given; a later one wins
    bool ignorePreferences = false;              // --defaults
};

enum class TermsAction { list, add, remove, restoreDefaults };

struct TermsRequest {
    TermsAction action = TermsAction::list;
    std::string text; // for add and remove, as given
};

// Where a command's text comes from: --text, a FILE, or standard input when neither is given.
struct InputSource {
    std::optional<std::string> text; // as given (UTF-8 not yet checked)
    std::optional<std::string> file;
};

struct LinesRequest {
    LinesTool tool = LinesTool::sort;
    InputSource input;
    lineTools::NumberingStyle numberingStyle = lineTools::NumberingStyle::period;
    lineTools::JoinSeparator joinSeparator = lineTools::JoinSeparator::space;
    lineTools::SplitDelimiter splitDelimiter = lineTools::SplitDelimiter::comma;
    lineTools::RegexPreset regexPreset = lineTools::RegexPreset::custom;
    // As given: the custom delimiter or pattern, the needle, or the text to find.
    std::string customText;
    std::string replacement;
    bool matchCase = false;
};

enum class TextCommand { htmlToText, rtfToText, stats };

struct TextCommandRequest {
    TextCommand command = TextCommand::stats;
    InputSource input;
};

// A command for the desktop application: the arguments, checked, go to it unchanged.
struct LaunchApplication {};

using Invocation = std::variant<ShowHelp, ShowVersion, TransformRequest, TermsRequest, LinesRequest,
                                TextCommandRequest, LaunchApplication>;

// The arguments after the program name; none starts the application. Throws Failure (usage) on anything it
// cannot accept;
// --help and --version win over such mistakes, so a confused user can still reach the help.
Invocation parseArguments(std::span<const char *const> arguments);

} // namespace glyphmill::cli
