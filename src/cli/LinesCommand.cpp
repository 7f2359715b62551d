#include "cli/Commands.h"

#include "cli/InputOutput.h"
#include "clipboard/text/HtmlText.h"
#include "clipboard/text/RtfReader.h"
#include "clipboard/text/TextClasses.h"
#include "clipboard/text/TextStatistics.h"
#include "common/Utf8.h"

namespace glyphmill::cli {
namespace {

using namespace lineTools;

InputBytes inputBytes(const InputSource &source) {
    return source.file ? InputBytes::fromFile(*source.file) : InputBytes::fromStandardInput();
}

std::u16string readText(const InputSource &source) {
    if (source.text)
        return decodeText(*source.text, "input");
    return decodeText(inputBytes(source).bytes(), "input");
}

// A typed argument loses the white space around it; nothing left is refused with the message.
std::u16string trimmedArgument(const std::string &argument, std::string_view what, const char *blankMessage) {
    std::u16string text(textClasses::trimmedWhiteSpaceAndLineBreaks(decodeText(argument, what)));
    if (text.empty())
        fail(ExitStatus::invalidText, blankMessage);
    return text;
}

std::u16string splitDelimiter(const LinesRequest &request) {
    if (auto named = delimiterText(request.splitDelimiter))
        return std::u16string(*named);
    return trimmedArgument(request.customText, "the delimiter", "Enter a delimiter.");
}

std::u16string regexPattern(const LinesRequest &request) {
    std::u16string pattern =
        request.regexPreset == RegexPreset::custom
            ? trimmedArgument(request.customText, "the pattern", "Enter a regex pattern.")
            : std::u16string(*presetPattern(request.regexPreset));
    // Checked before the input is read.
    if (!isValidPattern(pattern))
        fail(ExitStatus::invalidText, "Invalid regular expression.");
    return pattern;
}

// Numbering is line by line, so a long text is numbered and written a piece of whole lines at a
// time: on one-character lines the whole numbered text would be five times the input.
void writeNumberedLines(std::u16string_view text, NumberingStyle style) {
    constexpr std::size_t pieceUnits = std::size_t(1) << 20;
    std::size_t firstNumber = 1;
    do {
        std::size_t end = text.size();
        if (text.size() > pieceUnits) {
            const std::size_t lineFeed = text.find(u'\n', pieceUnits);
            if (lineFeed != std::u16string_view::npos)
                end = lineFeed + 1;
        }
        const std::u16string_view piece = text.substr(0, end);
        writeStandardOutput(numberedLines(piece, style, firstNumber));
        firstNumber += lineCount(piece);
        text.remove_prefix(end);
    } while (!text.empty());
}

} // namespace

ExitStatus runLines(const LinesRequest &request) {
    const LineToolEntry &tool = lineToolEntry(request.tool);
    // Arguments are checked before a possibly long input is read.
    std::u16string argument;
    FindReplaceRequest replacement;
    switch (tool.question) {
    case Question::splitDelimiter:
        argument = splitDelimiter(request);
        break;
    case Question::pattern:
        argument = regexPattern(request);
        break;
    case Question::needle:
        argument = trimmedArgument(request.customText, "the text to look for", "Enter text to match.");
        break;
    case Question::findReplace:
        // The find text is searched for exactly as typed, white space included.
        replacement = {decodeText(request.customText, "the find text"),
                       decodeText(request.replacement, "the replacement"), request.matchCase};
        break;
    case Question::none:
    case Question::numberingStyle:
    case Question::joinSeparator:
        break;
    }

    const std::u16string text = readText(request.input);
    std::u16string result;
    switch (tool.question) {
    case Question::none:
        result = tool.reshape(text);
        break;
    case Question::numberingStyle:
        writeNumberedLines(text, request.numberingStyle);
        return ExitStatus::success;
    case Question::joinSeparator:
        result = joinedLines(text, separatorText(request.joinSeparator));
        break;
    case Question::splitDelimiter:
        result = splitText(text, argument);
        break;
    case Question::pattern: {
        MatchingResult matched = matchingLines(argument, text);
        // The pattern compiled, so the search was stopped. Nothing reaches standard output: a
        // partial result would look like a whole one.
        if (matched.failure)
            fail(ExitStatus::invalidText, "The pattern takes too long on this text.");
        result = std::move(matched.lines);
        break;
    }
    case Question::needle:
        result = containingLines(argument, text);
        break;
    case Question::findReplace:
        // An empty find text changes nothing.
        result = replacement.find.empty() ? text : replacedText(text, replacement);
        break;
    }
    writeStandardOutput(result);
    return ExitStatus::success;
}

ExitStatus runTextCommand(const TextCommandRequest &request) {
    if (request.command == TextCommand::stats) {
        std::string line;
        utf8::encode(TextStatistics::compute(readText(request.input)).displayText(), line);
        line += '\n';
        writeStandardOutput(line);
        return ExitStatus::success;
    }
    // The markup's bytes go to the readers undecoded: they find the document's own encoding.
    std::optional<InputBytes> input;
    std::string_view bytes;
    if (request.input.text) {
        bytes = *request.input.text;
    } else {
        input.emplace(inputBytes(request.input));
        bytes = input->bytes();
    }
    if (request.command == TextCommand::htmlToText) {
        auto visible = clipboard::htmlVisibleText(bytes);
        if (!visible)
            fail(ExitStatus::invalidText, "input is not an HTML document");
        writeStandardOutput(textClasses::normalizeLineBreaks(*visible));
    } else {
        auto visible = clipboard::rtfVisibleText(bytes);
        if (!visible)
            fail(ExitStatus::invalidText, "input is not an RTF document (it must start with \"{\\rtf\")");
        writeStandardOutput(*visible);
    }
    return ExitStatus::success;
}

} // namespace glyphmill::cli
