#include "cli/Help.h"

#include "cli/ProtectionSwitches.h"

#include <string_view>

#if !defined(GLYPHMILL_VERSION) || !defined(GLYPHMILL_BUILD_NUMBER)
#error "the build passes GLYPHMILL_VERSION and GLYPHMILL_BUILD_NUMBER"
#endif

namespace glyphmill::cli {
namespace {

constexpr std::string_view overviewHelp =
    R"(Usage: glyphmill COMMAND [ARGUMENTS]

Changes the letter case of text while keeping links, e-mail addresses, file
paths, hashtags and mentions, code between backticks and your protected terms
exactly as they are written.

Commands:
  transform KIND [FILE]   transform text and write it to standard output
  terms ACTION            list or edit your protected terms
  lines TOOL [FILE]       sort, number, join, split, filter or edit lines
  html-to-text [FILE]     the visible text of an HTML document
  rtf-to-text [FILE]      the visible text of an RTF document
  stats [FILE]            count the lines, words and characters

Commands of the Glyphmill application (see glyphmill palette --help):
  (none)                  start Glyphmill in the tray
  palette                 open the floating palette
  clipboard KIND          transform or reshape the clipboard
  paste-plain             paste the clipboard as plain text
  restore                 restore the previous clipboard
  settings                open the settings
  capture                 capture text from the screen
  quit                    quit Glyphmill
  service KIND            transform standard input for an editor or shortcut

Options:
  -h, --help              show this help (also after any command)
  --version               show the version

Exit status: 0 done, 64 wrong usage, 65 text that is not valid UTF-8 (or a
refused delimiter, pattern, HTML or RTF document), 66 input that cannot be
read (or a file truncated while read), 69 Glyphmill application not
available, 71 out of memory or another internal error, 73 a preference file
that cannot be read or preferences that cannot be saved, 74 output that cannot
be written.
)";

constexpr std::string_view applicationHelp =
    R"(Usage: glyphmill [COMMAND]

Without a command, starts Glyphmill in the tray; when it is already running,
nothing more happens. The commands hand a request to the running Glyphmill and
end with its answer, so a desktop keyboard shortcut can run them. When none
runs, they start it in the tray first (except quit); it keeps running.

Commands:
  palette          open the floating palette
  clipboard KIND   transform or reshape the clipboard (glyphmill clipboard
                   --help lists the kinds)
  paste-plain      paste the clipboard as plain text into the focused window
  restore          restore the clipboard from before Glyphmill last changed it
  settings         open the settings
  capture          capture text from a region of the screen
  quit             quit the running Glyphmill
  service KIND     transform standard input to standard output (glyphmill
                   service --help)

Options:
  -h, --help       show this help
  --version        show the version

Exit status: 0 done (clipboard, paste-plain, restore: the clipboard changed),
1 nothing to do (no text on the clipboard, nothing to restore) or the clipboard
could not be written, 64 wrong usage, 69 Glyphmill not installed, no display
to start it on, or the request could not be delivered.
)";

constexpr std::string_view clipboardHelp =
    R"(Usage: glyphmill clipboard KIND

Changes the text on the clipboard in the running Glyphmill, as its menu does.
The previous text can be brought back with glyphmill restore.

Kinds:
  smart-case, title-case, uppercase, lowercase, capitalize-words
                      transform with your protected terms and switches
  clear-formatting    keep only the plain text
  html-to-text        the visible text of HTML
  sort-lines, remove-duplicates, remove-empty, bullet, fix-whitespace
                      the line tools
  number, join, split, matching, containing, find-replace
                      the line tools that ask a question first

Exit status: 0 the clipboard changed, 1 it holds no text (or a question was
cancelled) or could not be written, 64 wrong usage, 69 Glyphmill unavailable.
)";

constexpr std::string_view serviceHelp =
    R"(Usage: glyphmill service KIND

Transforms standard input and writes the result to standard output, for an
editor's filter command or a desktop shortcut. The running Glyphmill does the
work; when none runs, the text is transformed here with the same protected
terms and switches. White space around the text is kept.

Kinds: smart-case, title-case, uppercase, lowercase, capitalize-words.

Exit status: 0 transformed, 1 blank input (written back unchanged), 64 wrong
usage, 65 input that is not valid UTF-8, 73 a preference file that cannot be
read, 74 output that cannot be written.
)";

constexpr std::string_view transformHelpStart =
    R"(Usage: glyphmill transform KIND [FILE] [OPTIONS]

Transforms FILE, standard input (no FILE, or "-"), or the --text argument, and
writes the result to standard output byte for byte, adding nothing. The text
must be UTF-8.

Kinds (the name, or the title in quotes):
  smart-case        "Smart Case"        repair the capitals of sentences
  title-case        "Title Case"        capitalise every line as a headline
  uppercase         "UPPERCASE"
  lowercase         "lowercase"
  capitalize-words  "Capitalize Words"  a capital at the start of every word

Options:
  --text TEXT          transform TEXT instead of reading input
  --term TEXT          protect TEXT; repeat for more. These replace your list
  --no-terms           protect no terms
  --default-terms      protect the built-in terms instead of your list
  --option NAME=BOOL   turn a protection switch on (true) or off (false)
  --defaults           ignore your preferences: the built-in terms and every
                       switch on; --term, --no-terms, --default-terms and
                       --option still apply on top
  -h, --help           show this help
  --version            show the version
  --                   end of options: what follows is KIND or FILE

Switches for --option (as set in Glyphmill's settings, all on until turned
off there; code between backticks is always kept unless turned off here):
)";

constexpr std::string_view termsHelp =
    R"(Usage: glyphmill terms ACTION

Your protected terms keep their exact letter case in every transform.

Actions:
  list               print the terms, one a line, in list order
  add TEXT           add TEXT at the end of the list
  remove TEXT        remove every term equal to TEXT, ignoring letter case
  restore-defaults   replace the list by the built-in terms

Options:
  -h, --help         show this help (also after an action)
  --version          show the version
  --                 end of options: what follows is the ACTION or TEXT
)";

constexpr std::string_view termsListHelp = R"(Usage: glyphmill terms list

Prints your protected terms in list order, one a line.
)";

constexpr std::string_view termsAddHelp = R"(Usage: glyphmill terms add [--] TEXT

Adds TEXT at the end of your protected terms. White space around it is
trimmed; a blank TEXT, or one already in the list in any letter case, leaves
the list as it is.
)";

constexpr std::string_view termsRemoveHelp = R"(Usage: glyphmill terms remove [--] TEXT

Removes every protected term equal to TEXT, ignoring letter case.
)";

constexpr std::string_view termsRestoreDefaultsHelp = R"(Usage: glyphmill terms restore-defaults

Replaces your protected terms by the built-in list, dropping every term you
added.
)";

constexpr std::string_view linesHelpHead =
    R"(Usage: glyphmill lines TOOL [ARGUMENTS] [FILE] [OPTIONS]

Reshapes FILE, standard input (no FILE, or "-"), or the --text argument line
by line, and writes the result to standard output. Lines end at LF; a CR stays
part of its line. The text must be UTF-8.

Tools:
)";

constexpr std::string_view linesHelpTail = R"(
Options:
  --text TEXT              use TEXT instead of reading input
  -h, --help               show this help (also after a tool)
  --version                show the version
  --                       end of options
)";

std::string linesHelp() {
    std::string help(linesHelpHead);
    for (const auto &entry : lineTools::lineToolCatalogue)
        help += entry.helpRows;
    help += linesHelpTail;
    return help;
}

constexpr std::string_view htmlToTextHelp = R"(Usage: glyphmill html-to-text [FILE] [--text TEXT]

Writes the text a reader of the HTML document sees, with LF line breaks. The
document's encoding is UTF-8 unless a byte order mark or a <meta> charset says
otherwise.
)";

constexpr std::string_view rtfToTextHelp = R"(Usage: glyphmill rtf-to-text [FILE] [--text TEXT]

Writes the text a reader of the RTF document sees: LF after each paragraph,
TAB between table cells.
)";

constexpr std::string_view statsHelp = R"(Usage: glyphmill stats [FILE] [--text TEXT]

Writes one line with the counts of lines, words and characters (as a reader
counts them) of the UTF-8 text.
)";

std::string linesToolHelp(LinesTool tool) {
    const std::string_view help = lineTools::lineToolEntry(tool).help;
    return help.empty() ? linesHelp() : std::string(help);
}

std::string transformHelp() {
    std::string text(transformHelpStart);
    for (const auto &entry : protectionSwitches) {
        text += "  ";
        text += entry.name;
        text.append(entry.name.size() < 29 ? 29 - entry.name.size() : 1, ' ');
        text += entry.summary;
        text += '\n';
    }
    return text;
}

} // namespace

std::string helpText(const ShowHelp &request) {
    const HelpTopic topic = request.topic;
    switch (topic) {
    case HelpTopic::overview:
        return std::string(overviewHelp);
    case HelpTopic::transform:
        return transformHelp();
    case HelpTopic::terms:
        return std::string(termsHelp);
    case HelpTopic::termsList:
        return std::string(termsListHelp);
    case HelpTopic::termsAdd:
        return std::string(termsAddHelp);
    case HelpTopic::termsRemove:
        return std::string(termsRemoveHelp);
    case HelpTopic::termsRestoreDefaults:
        return std::string(termsRestoreDefaultsHelp);
    case HelpTopic::lines:
        return linesHelp();
    case HelpTopic::linesTool:
        return linesToolHelp(request.linesTool);
    case HelpTopic::htmlToText:
        return std::string(htmlToTextHelp);
    case HelpTopic::rtfToText:
        return std::string(rtfToTextHelp);
    case HelpTopic::stats:
        return std::string(statsHelp);
    case HelpTopic::application:
        return std::string(applicationHelp);
    case HelpTopic::clipboard:
        return std::string(clipboardHelp);
    case HelpTopic::service:
        return std::string(serviceHelp);
    }
    return std::string(overviewHelp);
}

std::string versionText() {
    return "glyphmill " GLYPHMILL_VERSION " (build " GLYPHMILL_BUILD_NUMBER ")\n";
}

} // namespace glyphmill::cli
