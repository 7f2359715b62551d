// The line tools in one table: the "Line Processing" menu, `glyphmill lines`, `glyphmill clipboard`
// and the D-Bus hand-over all read their names, titles, help and questions here. A new tool is
// one entry plus its text function in LineTools.h (and its question, if it asks a new one).
#pragma once

#include "clipboard/text/LineTools.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace glyphmill::lineTools {

enum class LineTool {
    htmlToText, // a clipboard command of the menu; on the command line it is `glyphmill html-to-text`
    sort,
    removeDuplicates,
    removeEmpty,
    bullet,
    fixWhitespace,
    number,
    join,
    split,
    matching,
    containing,
    replace,
};

// What a tool asks before it runs.
enum class Question {
    none,
    numberingStyle,
    joinSeparator,
    splitDelimiter, // a choice, then a text for a custom delimiter
    pattern,        // a preset, or a typed regular expression
    needle,         // the text a line must contain
    findReplace,
};

// Rows of the menu: groups are parted by separators.
struct MenuPlace {
    int group;
    int row;
};

struct LineToolEntry {
    LineTool tool;
    std::string_view linesName{};   // `glyphmill lines NAME`; empty when it is no such tool
    std::string_view clipboardName; // `glyphmill clipboard NAME`
    const char *menuTitle;          // untranslated
    MenuPlace menuPlace;
    Question question = Question::none;
    // The whole work of a tool that asks nothing and reads only text; null for the others.
    std::u16string (*reshape)(std::u16string_view text) = nullptr;
    std::size_t operands = 0;                  // positionals `lines NAME` needs before the optional FILE
    std::array<std::string_view, 2> options{}; // the options only this tool accepts
    std::string_view helpRows{};               // its rows in the list of `glyphmill lines --help`
    std::string_view help{};                   // `glyphmill lines NAME --help`
};

inline constexpr std::array<LineToolEntry, 12> lineToolCatalogue = {{
    {.tool = LineTool::htmlToText,
     .clipboardName = "html-to-text",
     .menuTitle = "HTML to Plain Text",
     .menuPlace = {3, 1}},
    {.tool = LineTool::sort,
     .linesName = "sort",
     .clipboardName = "sort-lines",
     .menuTitle = "Sort",
     .menuPlace = {1, 1},
     .reshape = sortedLines,
     .helpRows = "  sort                     sort the lines\n",
     .help = "Usage: glyphmill lines sort [FILE] [--text TEXT]\n\nSorts the lines.\n"},
    {.tool = LineTool::removeDuplicates,
     .linesName = "remove-duplicates",
     .clipboardName = "remove-duplicates",
     .menuTitle = "Remove Duplicates",
     .menuPlace = {1, 2},
     .reshape = uniqueLines,
     .helpRows = "  remove-duplicates        keep the first of equal lines\n",
     .help = "Usage: glyphmill lines remove-duplicates [FILE] [--text TEXT]\n\n"
             "Keeps the first of every group of equal lines.\n"},
    {.tool = LineTool::removeEmpty,
     .linesName = "remove-empty",
     .clipboardName = "remove-empty",
     .menuTitle = "Remove Empty",
     .menuPlace = {1, 3},
     .reshape = nonEmptyLines,
     .helpRows = "  remove-empty             drop the empty lines\n",
     .help = "Usage: glyphmill lines remove-empty [FILE] [--text TEXT]\n\nDrops the empty lines.\n"},
    {.tool = LineTool::bullet,
     .linesName = "bullet",
     .clipboardName = "bullet",
     .menuTitle = "Bullet",
     .menuPlace = {2, 2},
     .reshape = bulletedLines,
     .helpRows = "  bullet                   put a bullet before every line\n",
     .help = "Usage: glyphmill lines bullet [FILE] [--text TEXT]\n\nPuts a bullet before every line.\n"},
    {.tool = LineTool::fixWhitespace,
     .linesName = "fix-whitespace",
     .clipboardName = "fix-whitespace",
     .menuTitle = "Fix Whitespace",
     .menuPlace = {4, 1},
     .reshape = fixedWhitespace,
     .helpRows = "  fix-whitespace           repair white space\n",
     .help = "Usage: glyphmill lines fix-whitespace [FILE] [--text TEXT]\n\n"
             "Collapses runs of spaces and trims the ends of lines.\n"},
    {.tool = LineTool::number,
     .linesName = "number",
     .clipboardName = "number",
     .menuTitle = "Number\u2026",
     .menuPlace = {2, 1},
     .question = Question::numberingStyle,
     .options = {"--style"},
     .helpRows = "  number --style STYLE     number the lines: period, zero-padded, parenthesis\n",
     .help = "Usage: glyphmill lines number [--style period|zero-padded|parenthesis] [FILE]\n\n"
             "Numbers the lines as 7., 07. or 7); period unless --style says otherwise.\n"},
    {.tool = LineTool::join,
     .linesName = "join",
     .clipboardName = "join",
     .menuTitle = "Join\u2026",
     .menuPlace = {2, 3},
     .question = Question::joinSeparator,
     .options = {"--separator"},
     .helpRows = "  join --separator SEP     join the lines: space, comma, comma-space,\n"
                 "                           semicolon or pipe\n",
     .help = "Usage: glyphmill lines join [--separator space|comma|comma-space|semicolon|pipe] [FILE]\n\n"
             "Joins the lines into one; space unless --separator says otherwise.\n"},
    {.tool = LineTool::split,
     .linesName = "split",
     .clipboardName = "split",
     .menuTitle = "Split\u2026",
     .menuPlace = {2, 4},
     .question = Question::splitDelimiter,
     .options = {"--delimiter"},
     .helpRows = "  split --delimiter DELIM  one line per piece: comma, tab, semicolon or any\n"
                 "                           other text (trimmed)\n",
     .help = "Usage: glyphmill lines split [--delimiter comma|tab|semicolon|TEXT] [FILE]\n\n"
             "Puts every piece between delimiters on its own line; comma unless\n"
             "--delimiter says otherwise. Another TEXT is trimmed of white space.\n"},
    {.tool = LineTool::matching,
     .linesName = "matching",
     .clipboardName = "matching",
     .menuTitle = "Matching Regex",
     .menuPlace = {3, 2},
     .question = Question::pattern,
     .options = {"--preset", "--pattern"},
     .helpRows = "  matching --preset NAME   keep the lines that match: email, url, contains-at,\n"
                 "                           contains-digit or non-empty\n"
                 "  matching --pattern RE    keep the lines that match the regular expression\n",
     .help = "Usage: glyphmill lines matching (--preset NAME | --pattern PATTERN) [FILE]\n\n"
             "Keeps the lines that match. Presets: email, url, contains-at, contains-digit,\n"
             "non-empty. A PATTERN is an ICU regular expression, trimmed of white space.\n"
             "A search that takes too long (about a second, more on inputs of many\n"
             "megabytes) is stopped with status 65 and no output.\n"},
    {.tool = LineTool::containing,
     .linesName = "containing",
     .clipboardName = "containing",
     .menuTitle = "Containing\u2026",
     .menuPlace = {3, 3},
     .question = Question::needle,
     .operands = 1,
     .helpRows = "  containing TEXT          keep the lines that contain TEXT (trimmed)\n",
     .help = "Usage: glyphmill lines containing [--] TEXT [FILE]\n\n"
             "Keeps the lines that contain TEXT, trimmed of white space.\n"},
    {.tool = LineTool::replace,
     .linesName = "replace",
     .clipboardName = "find-replace",
     .menuTitle = "Find & Replace Clipboard\u2026",
     .menuPlace = {4, 2},
     .question = Question::findReplace,
     .operands = 2,
     .options = {"--match-case"},
     .helpRows = "  replace FIND REPLACEMENT replace FIND everywhere; add --match-case to\n"
                 "                           respect letter case\n",
     .help = "Usage: glyphmill lines replace [--match-case] [--] FIND REPLACEMENT [FILE]\n\n"
             "Replaces every FIND, exactly as typed, by REPLACEMENT, ignoring letter case\n"
             "unless --match-case is given. An empty FIND changes nothing.\n"},
}};

constexpr const LineToolEntry &lineToolEntry(LineTool tool) {
    return lineToolCatalogue[std::size_t(tool)]; // in the enum's order: checked below
}

// The tool `glyphmill lines NAME` runs.
constexpr const LineToolEntry *linesToolNamed(std::string_view name) {
    for (const auto &entry : lineToolCatalogue)
        if (!entry.linesName.empty() && entry.linesName == name)
            return &entry;
    return nullptr;
}

constexpr std::optional<LineTool> lineToolWithClipboardName(std::string_view name) {
    for (const auto &entry : lineToolCatalogue)
        if (entry.clipboardName == name)
            return entry.tool;
    return std::nullopt;
}

namespace catalogueChecks {
constexpr bool everyToolHasItsOwnEntry() {
    for (std::size_t index = 0; index < lineToolCatalogue.size(); ++index)
        if (lineToolCatalogue[index].tool != LineTool(index))
            return false;
    return true;
}
static_assert(everyToolHasItsOwnEntry(), "the catalogue lists the tools in their enum's order");

constexpr bool namesAndPlacesAreUnique() {
    for (std::size_t first = 0; first < lineToolCatalogue.size(); ++first)
        for (std::size_t second = first + 1; second < lineToolCatalogue.size(); ++second) {
            const LineToolEntry &one = lineToolCatalogue[first], &other = lineToolCatalogue[second];
            if ((!one.linesName.empty() && one.linesName == other.linesName) ||
                one.clipboardName == other.clipboardName ||
                (one.menuPlace.group == other.menuPlace.group && one.menuPlace.row == other.menuPlace.row))
                return false;
        }
    return true;
}
static_assert(namesAndPlacesAreUnique(), "two tools share a name or a menu row");

// `glyphmill lines NAME` lists and explains every tool it runs.
constexpr bool everyLinesToolHasItsHelp() {
    for (const auto &entry : lineToolCatalogue)
        if (!entry.linesName.empty() && (entry.help.empty() || entry.helpRows.empty()))
            return false;
    return true;
}
static_assert(everyLinesToolHasItsHelp(), "a lines tool lacks its help");
} // namespace catalogueChecks

} // namespace glyphmill::lineTools
