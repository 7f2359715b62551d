#include "clipboard/LineToolCommands.h"

#include "clipboard/ClipboardManager.h"
#include "clipboard/ClipboardMonitor.h"
#include "clipboard/text/TextClasses.h"
#include "platform/PlatformServices.h"

#include <optional>
#include <string>
#include <vector>

namespace glyphmill {

namespace {

template <typename Option, std::size_t count>
std::vector<std::u16string> choiceTitles(const std::array<Option, count> &options) {
    std::vector<std::u16string> titles;
    titles.reserve(count);
    for (Option option : options)
        titles.emplace_back(lineTools::choiceTitle(option));
    return titles;
}

// The chosen option, or none when the prompt was cancelled.
template <typename Option, std::size_t count>
std::optional<Option> promptForOption(Dialogs &dialogs, std::u16string_view title,
                                      std::u16string_view message, const std::array<Option, count> &options) {
    const ChoiceAnswer answer = dialogs.promptForChoice(title, message, choiceTitles(options), 0);
    if (answer.cancelled || answer.index < 0 || std::size_t(answer.index) >= count)
        return std::nullopt;
    return options[std::size_t(answer.index)];
}

// The answer trimmed of white space and line breaks; none when cancelled. An empty answer is
// the caller's to report.
std::optional<std::u16string> promptForTrimmedText(Dialogs &dialogs, std::u16string_view title,
                                                   std::u16string_view message,
                                                   std::u16string_view placeholder) {
    auto answer = dialogs.promptForText(title, message, placeholder);
    if (!answer)
        return std::nullopt;
    return std::u16string(textClasses::trimmedWhiteSpaceAndLineBreaks(*answer));
}

} // namespace

LineToolCommands::LineToolCommands(ClipboardManager &manager, Dialogs &dialogs, ClipboardMonitor &monitor,
                                   QObject *parent)
    : QObject(parent), dialogs_(dialogs), manager_(manager), monitor_(monitor) {}

LineToolCommands &LineToolCommands::shared() {
    static LineToolCommands *instance = new LineToolCommands(
        ClipboardManager::shared(), *platformServices().dialogs, ClipboardMonitor::shared());
    return *instance;
}

void LineToolCommands::run(lineTools::LineTool tool) {
    const lineTools::LineToolEntry &entry = lineTools::lineToolEntry(tool);
    switch (entry.question) {
    case lineTools::Question::none:
        if (entry.reshape)
            manager_.applyTextOperation(entry.reshape);
        else
            htmlToPlainText(); // the one that reads more than text
        return;
    case lineTools::Question::numberingStyle:
        return numberLines();
    case lineTools::Question::joinSeparator:
        return joinLines();
    case lineTools::Question::splitDelimiter:
        return splitLines();
    case lineTools::Question::pattern:
        return linesMatchingRegex();
    case lineTools::Question::needle:
        return linesContaining();
    case lineTools::Question::findReplace:
        return findAndReplaceClipboard();
    }
}

void LineToolCommands::htmlToPlainText() {
    auto text = manager_.readHTMLAsText();
    if (!text) {
        manager_.showClipboardAlert(tr("Clipboard does not contain HTML.").toStdU16String());
        return;
    }
    manager_.replaceClipboardText([&] { return ClipboardManager::normalizeLineBreaks(*text); });
}

void LineToolCommands::numberLines() {
    auto style =
        promptForOption(dialogs_, tr("Number Lines").toStdU16String(),
                        tr("Choose a numbering style.").toStdU16String(), lineTools::allNumberingStyles);
    if (!style)
        return;
    manager_.applyTextOperation(
        [style = *style](std::u16string_view text) { return lineTools::numberedLines(text, style); });
}

void LineToolCommands::joinLines() {
    auto separator = promptForOption(dialogs_, tr("Join Lines").toStdU16String(),
                                     tr("Choose a separator between joined lines.").toStdU16String(),
                                     lineTools::allJoinSeparators);
    if (!separator)
        return;
    manager_.applyTextOperation([separator = *separator](std::u16string_view text) {
        return lineTools::joinedLines(text, lineTools::separatorText(separator));
    });
}

void LineToolCommands::splitLines() {
    auto choice = promptForOption(dialogs_, tr("Split to Lines").toStdU16String(),
                                  tr("Choose how to split the clipboard text into lines.").toStdU16String(),
                                  lineTools::allSplitDelimiters);
    if (!choice)
        return;
    std::u16string delimiter;
    if (auto preset = lineTools::delimiterText(*choice)) {
        delimiter = *preset;
    } else {
        auto answer = promptForTrimmedText(dialogs_, tr("Custom Delimiter").toStdU16String(),
                                           tr("Enter the text to split on.").toStdU16String(), u"|");
        if (!answer)
            return;
        if (answer->empty()) {
            manager_.showClipboardAlert(tr("Enter a delimiter.").toStdU16String());
            return;
        }
        delimiter = std::move(*answer);
    }
    manager_.applyTextOperation(
        [&delimiter](std::u16string_view text) { return lineTools::splitText(text, delimiter); });
}

void LineToolCommands::linesMatchingRegex() {
    auto choice = promptForOption(dialogs_, tr("Lines Matching Regex").toStdU16String(),
                                  tr("Choose a pattern preset or enter your own.").toStdU16String(),
                                  lineTools::allRegexPresets);
    if (!choice)
        return;
    std::u16string pattern;
    if (auto preset = lineTools::presetPattern(*choice)) {
        pattern = *preset;
    } else {
        auto answer = promptForTrimmedText(
            dialogs_, tr("Custom Regex").toStdU16String(),
            tr("Enter a regular expression. Matching lines are copied to the clipboard.").toStdU16String(),
            u"^\\d+");
        if (!answer)
            return;
        if (answer->empty()) {
            manager_.showClipboardAlert(tr("Enter a regex pattern.").toStdU16String());
            return;
        }
        pattern = std::move(*answer);
    }
    // Checked before the clipboard is read, so an empty clipboard still hears about the pattern.
    if (!lineTools::isValidPattern(pattern)) {
        manager_.showClipboardAlert(tr("Invalid regular expression.").toStdU16String());
        return;
    }
    auto text = manager_.readText(true);
    if (!text) {
        monitor_.refresh();
        manager_.showClipboardAlert(ClipboardManager::missingTextMessage);
        return;
    }
    // Matched before anything is saved or written, so a search that is stopped changes nothing.
    lineTools::MatchingResult matched = lineTools::matchingLines(pattern, *text);
    if (matched.failure) { // the pattern compiled above: the search was stopped
        manager_.showClipboardAlert(tr("The pattern takes too long on this text.").toStdU16String());
        return;
    }
    manager_.replaceClipboardText([&matched] { return std::move(matched.lines); });
}

void LineToolCommands::linesContaining() {
    // Asked before the prompt, from the state the menu was built with: no refresh here.
    if (!monitor_.hasUsableText()) {
        manager_.showClipboardAlert(ClipboardManager::missingTextMessage);
        return;
    }
    auto needle = promptForTrimmedText(
        dialogs_, tr("Lines Containing").toStdU16String(),
        tr("Enter text or a character. Only matching lines are copied to the clipboard.").toStdU16String(),
        u"@");
    if (!needle)
        return;
    if (needle->empty()) {
        manager_.showClipboardAlert(tr("Enter text to match.").toStdU16String());
        return;
    }
    manager_.applyTextOperation(
        [&needle](std::u16string_view text) { return lineTools::containingLines(*needle, text); });
}

void LineToolCommands::findAndReplaceClipboard() {
    if (!monitor_.hasUsableText()) {
        manager_.showClipboardAlert(ClipboardManager::missingTextMessage);
        return;
    }
    auto request = dialogs_.promptFindReplace(true);
    // The find text is taken as typed: spaces are searched for, only an empty field stops here.
    if (!request || request->find.empty())
        return;
    manager_.applyTextOperation(
        [&request](std::u16string_view text) { return lineTools::replacedText(text, *request); });
}

} // namespace glyphmill
